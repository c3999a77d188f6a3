#pragma once

#include "AXScroller.h"
#include "UnitTest.h"

namespace quillon {

inline const std::string scrollQueue = "local.quillon.floating.axprobe";

/// Base of the tests of scrolling through Accessibility: a window and its element, to which scroll areas are added.
class AXScrollerTest : public UnitTest {
protected:
    static constexpr DisplayRect bounds{{100, 50}, {800, 600}};

    AXScrollerTest() { turnLoggingOn(); }

    simulated::SimulatedElement& element() { return *desktop.accessibility().window(windowID); }
    void store(std::string_view key, PropertyValue value) { desktop.userDefaults().store(key, std::move(value)); }
    /// What was set or performed, and for how long a task slept.
    Lines takeActions() { return desktop.journal().take({"accessibility.", "scheduler.sleep"}); }
    std::size_t walks() {
        const auto calls = desktop.accessibility().takeCalls();
        const auto walk = fmt::format("window {} copyAttributeValue AXChildren", windowID);
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), walk));
    }
    /// The calls that find the one bar of the one area, and those that follow.
    Lines walkThen(const Lines& following) const {
        Lines calls{fmt::format("application {} copyAttributeValue AXWindows", app),
                    ofWindow + "copyAttributeValue AXPosition",
                    ofWindow + "copyAttributeValue AXSize",
                    ofWindow + "setMessagingTimeout 0.25",
                    ofWindow + "copyAttributeValue AXRole",
                    ofWindow + "copyAttributeValue AXChildren",
                    ofArea + "copyAttributeValue AXRole",
                    ofArea + "copyAttributeValue AXChildren",
                    ofBar + "copyAttributeValue AXRole",
                    ofBar + "copyAttributeValue AXChildren",
                    ofArea + "copyAttributeValue AXVerticalScrollBar",
                    ofBar + "isAttributeSettable AXValue"};
        calls.insert(calls.end(), following.begin(), following.end());
        return calls;
    }

    const ProcessID app = desktop.launch("Note");
    const WindowID windowID = desktop.openWindow(app, "Spesa", bounds);
    const std::string number = std::to_string(windowID);
    // How the calls name the elements.
    const std::string ofWindow = "window " + number + " ";
    const std::string ofArea = ofWindow + "> AXScrollArea 0 ";
    const std::string ofBar = ofArea + "> AXScrollBar 0 ";
};

} // namespace quillon
