#pragma once

#include "AppDelegate.h"
#include "UnitTest.h"

#include <memory>

namespace quillon {

inline constexpr DisplayRect here{{100, 50}, {800, 600}};

/// Base of tests of the delegate: it is not launched yet, and two applications have a window each.
class DelegateTest : public UnitTest {
protected:
    void launch() {
        delegate->applicationDidFinishLaunching();
        desktop.runUntilIdle();
    }
    /// Until the window of the application has been remembered.
    void activate(ProcessID pid) {
        desktop.activate(pid);
        desktop.advance(Seconds(0.1));
    }

    ProcessID notes = desktop.launch("Note");
    ProcessID mail = desktop.launch("Mail");
    WindowID shopping = desktop.openWindow(notes, "Spesa", here);
    WindowID inbox = desktop.openWindow(mail, "Posta", here);
    std::shared_ptr<AppDelegate> delegate = std::make_shared<AppDelegate>();
};

} // namespace quillon
