// The part of AXScroller that tries whether scrolling a window through its scroll bar works.

#include "AXScroller.h"

#include "AccessibilityReading.h"
#include "Defaults.h"
#include "DiagnosticLog.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Text.h"
#include "WindowLevelManager.h"

#include <fmt/format.h>

#include <optional>
#include <string>

namespace quillon::AXScroller {

namespace {

/// How far the bar is moved, as a part of its range.
constexpr double stroke = 0.1;
/// The bar is moved forward when it is further than this from its end, as a part of its range.
constexpr double roomAtEnd = 0.15;
/// Time for the application to scroll, or to take the focus.
constexpr Seconds settlingTime{0.2};

struct BarState {
    std::optional<double> value;
    std::optional<double> min;
    std::optional<double> max;
    AccessibilitySettable settable;
};

std::string frontmostName() {
    const auto application = platform().workspace().frontmostApplication();
    return application ? application->localizedName.value_or("?") : "?";
}

std::string orNil(const std::optional<double>& number) {
    return number ? describe(*number) : "nil";
}

BarState readBar(const AccessibilityElement& bar) {
    BarState state;
    state.settable = bar.isAttributeSettable("AXValue");
    state.value = copyDouble(bar, "AXValue");
    state.min = copyDouble(bar, "AXMinValue");
    state.max = copyDouble(bar, "AXMaxValue");
    wplog([&] {
        return fmt::format("axprobe: scrollbar value={} min={} max={} settable={} (err={})", orNil(state.value),
                           orNil(state.min), orNil(state.max), describe(state.settable.isSettable),
                           describe(state.settable.error));
    });
    return state;
}

/// Null when the window has no bar to try; the log then says why.
std::shared_ptr<AccessibilityElement> findBar(ProcessID pid, WindowID windowID) {
    const auto window = WindowLevelManager::axWindow(pid, windowID);
    if (!window) {
        wplog([] { return "axprobe: could not find the AX window — cannot proceed"; });
        return nullptr;
    }
    const auto areas = scrollAreas(window);
    wplog([&] { return fmt::format("axprobe: found {} AXScrollArea(s)", areas.size()); });
    if (areas.empty()) {
        wplog([] { return "axprobe: RESULT — no scroll area in this window. Nothing to drive."; });
        return nullptr;
    }
    auto bar = copyElement(*areas.front(), "AXVerticalScrollBar");
    if (!bar) {
        wplog([] { return "axprobe: RESULT — scroll area has no vertical scroll bar."; });
    }
    return bar;
}

/// Where the bar at `value` is moved to; none when it cannot be moved, and the log then says why.
std::optional<double> targetOf(const BarState& state) {
    if (!state.settable.isSettable || !state.value) {
        wplog([] { return "axprobe: RESULT — the scroll position is NOT settable. This route is closed."; });
        return std::nullopt;
    }
    const double max = state.max.value_or(1.0);
    const double range = max - state.min.value_or(0.0);
    if (!(range > 0)) {
        wplog([] { return "axprobe: RESULT — zero scroll range, nothing to move."; });
        return std::nullopt;
    }
    const bool hasRoom = *state.value < max - roomAtEnd * range;
    return hasRoom ? *state.value + range * stroke : *state.value - range * stroke;
}

const char* verdict(bool hasMoved, bool hasFocusChanged) {
    if (!hasMoved) {
        return "axprobe: RESULT — the set was accepted but nothing moved. This route is closed.";
    }
    return hasFocusChanged ? "axprobe: RESULT — scrolled, but the frontmost app CHANGED. Focus was stolen."
                           : "axprobe: RESULT — SCROLLED, and focus did not move. This route WORKS.";
}

void run(ProcessID pid, WindowID windowID) {
    const auto frontmostBefore = frontmostName();
    wplog([&] { return fmt::format("axprobe: START pid={} wid={} frontmost={}", pid, windowID, frontmostBefore); });
    const auto bar = findBar(pid, windowID);
    if (!bar) {
        return;
    }
    const auto state = readBar(*bar);
    const auto target = targetOf(state);
    if (!target) {
        return;
    }
    const double before = *state.value;
    const auto error = bar->setAttributeValue("AXValue", *target);
    wplog(
        [&] { return fmt::format("axprobe: set value {:.4f} -> {:.4f} result={}", before, *target, describe(error)); });
    platform().scheduler().sleep(settlingTime);
    const double after = copyDouble(*bar, "AXValue").value_or(before);
    const auto frontmostNow = frontmostName();
    const bool hasMoved = after != before;
    wplog([&] {
        return fmt::format("axprobe: value after={} moved={} frontmost={} (was {})", describe(after),
                           describe(hasMoved), frontmostNow, frontmostBefore);
    });
    wplog([&] { return verdict(hasMoved, frontmostNow != frontmostBefore); });
}

} // namespace

void probe(ProcessID pid, WindowID windowID) {
    if (Defaults::boolForKey(Defaults::axScrollProbe)) {
        queue().async([=] { run(pid, windowID); });
    }
}

} // namespace quillon::AXScroller
