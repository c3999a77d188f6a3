#pragma once

#include <memory>

class QCoreApplication;
class QApplication;

namespace quillon::x11 {

// Qt's application object, of which a process has one at a time. Neither takes options from the command line nor writes
// on the standard error, except one line before Qt ends the process because it cannot go on. Main thread.

/// For a command: an event loop alone.
[[nodiscard]] std::unique_ptr<QCoreApplication> makeCoreApplication();

/// For the running program, which shows menus and windows: a second connection to the display that the environment
/// names, which must be there. `scale` is in pixels per point, which Qt calls device-independent pixels.
[[nodiscard]] std::unique_ptr<QApplication> makeApplication(double scale);

} // namespace quillon::x11
