#pragma once

#include <memory>

class QCoreApplication;
class QApplication;

namespace quillon::x11 {

// Qt's application object, of which a process has one at a time. Neither takes options from the command line nor writes
// on the standard error, except one line before Qt ends the process because it cannot go on. Main thread.

/// For a command: an event loop alone.
[[nodiscard]] std::unique_ptr<QCoreApplication> makeCoreApplication();

/// For the running program, which shows menus: a second connection to the display that the environment names, which
/// must be there.
[[nodiscard]] std::unique_ptr<QApplication> makeApplication();

} // namespace quillon::x11
