#pragma once

#include "Platform/Geometry.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillon::simulated {

/// A window of a simulated application. Tests may change its members at any time.
struct OpenWindow {
    WindowID windowID = 0;
    ProcessID ownerPID = 0;
    std::optional<std::string> title;
    DisplayRect bounds;
    std::int64_t layer = 0;
    int space = 1;
    bool isMinimised = false;
    bool isDesktopElement = false;
    /// Whether the screen capture offers it.
    bool canBeShared = true;
    /// Alters what the window server says of the window, for instance by leaving fields out.
    std::function<void(WindowDescription&)> alterDescription;
};

struct OpenApplication {
    RunningApplication identity;
    bool isHidden = false;
};

/// What is open on the desktop; the ports answer from it.
class DesktopModel {
public:
    /// Stops the test when there is none.
    [[nodiscard]] OpenApplication& application(ProcessID pid);
    [[nodiscard]] OpenWindow& window(WindowID windowID);

    [[nodiscard]] const OpenApplication* findApplication(ProcessID pid) const;
    [[nodiscard]] const OpenWindow* findWindow(WindowID windowID) const;
    [[nodiscard]] bool isOnScreen(const OpenWindow& window) const;
    /// The application's frontmost window of layer 0 on the screen.
    [[nodiscard]] const OpenWindow* focusedWindow(ProcessID pid) const;
    void bringToFront(WindowID windowID);
    /// Above its application's other windows, but not above those of others that cover all of them.
    void raise(WindowID windowID);

    std::vector<OpenApplication> applications;
    /// Front to back.
    std::vector<OpenWindow> windows;
    std::optional<ProcessID> frontmost;
    int currentSpace = 1;
};

} // namespace quillon::simulated
