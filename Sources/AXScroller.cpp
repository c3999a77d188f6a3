#include "AXScroller.h"

#include "AccessibilityReading.h"
#include "Defaults.h"
#include "DiagnosticLog.h"
#include "Platform/Clock.h"
#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"
#include "WindowLevelManager.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <unordered_map>

namespace quillon::AXScroller {

namespace {

using Elements = std::vector<std::shared_ptr<AccessibilityElement>>;

constexpr Seconds messagingTimeout{0.25};
/// The window has depth 0.
constexpr int deepestLevel = 11;
constexpr std::size_t mostScrollAreas = 8;
constexpr std::chrono::seconds cacheLife{5};
/// Scroll-bar value (0 to 1) per point of scroll delta.
constexpr double defaultSensitivity = 0.0015;
/// A change of the scroll-bar value of up to this much is not worth a call.
constexpr double negligibleChange = 1e-5;

/// A scrollable region.
struct Area {
    DisplayRect frame;
    /// Its vertical scroll bar, whose value can be set.
    std::shared_ptr<AccessibilityElement> bar;
};

struct Resolved {
    /// Never empty.
    std::vector<Area> areas;
    WallTime time;
};

/// On `queue`.
struct Caches {
    std::unordered_map<WindowID, Resolved> resolved;
    /// What the log last said of a window's areas.
    std::unordered_map<WindowID, std::string> lastLoggedShape;
};

OneTimeValue<std::shared_ptr<SerialQueue>> queueValue;
OneTimeValue<Caches> cachesValue;

Caches& caches() {
    return cachesValue.get([] { return Caches(); });
}

void collectScrollAreas(const std::shared_ptr<AccessibilityElement>& element, int depth, Elements& list) {
    if (depth > deepestLevel || list.size() >= mostScrollAreas) {
        return;
    }
    if (copyString(*element, "AXRole") == "AXScrollArea") {
        list.push_back(element);
    }
    const auto read = element->copyAttributeValue("AXChildren");
    const auto* children = read.get<Elements>();
    if (children == nullptr) {
        return;
    }
    for (const auto& child : *children) {
        collectScrollAreas(child, depth + 1, list);
    }
}

/// None when the scroll area cannot be scrolled this way.
std::optional<Area> makeArea(const AccessibilityElement& scrollArea) {
    auto bar = copyElement(scrollArea, "AXVerticalScrollBar");
    if (!bar || !bar->isAttributeSettable("AXValue").isSettable) {
        return std::nullopt;
    }
    const auto frame = frameOf(scrollArea);
    return frame ? std::optional(Area{*frame, std::move(bar)}) : std::nullopt;
}

/// Each area as width, height and origin, without decimals.
std::string shapeOf(const std::vector<Area>& areas) {
    std::string shape;
    for (const auto& [frame, bar] : areas) {
        // Adding 0 turns the -0 that truncation may yield into 0.
        shape += fmt::format("{}{:.0f}x{:.0f}@{:.0f},{:.0f}", shape.empty() ? "" : " ",
                             std::trunc(frame.size.width) + 0.0, std::trunc(frame.size.height) + 0.0,
                             std::trunc(frame.minX()) + 0.0, std::trunc(frame.minY()) + 0.0);
    }
    return shape;
}

/// A window whose layout does not change is logged once.
void logShape(WindowID windowID, const std::vector<Area>& areas) {
    const auto shape = shapeOf(areas);
    auto& lastShape = caches().lastLoggedShape[windowID];
    if (shape != lastShape) {
        wplog([&] {
            return fmt::format("axscroll: resolved {} scrollable area(s) for wid={}: {}", areas.size(), windowID,
                               shape);
        });
        lastShape = shape;
    }
}

/// The wall clock may be set back, and what lies in its future is not fresh either.
bool isFresh(const Resolved& resolved) {
    return std::chrono::abs(platform().clock().now() - resolved.time) < cacheLife;
}

/// The window's scrollable areas, looked up afresh when what is remembered is too old; null when there are none.
const std::vector<Area>* resolveAreas(ProcessID pid, WindowID windowID) {
    auto& resolved = caches().resolved;
    if (const auto entry = resolved.find(windowID); entry != resolved.end() && isFresh(entry->second)) {
        return &entry->second.areas;
    }
    const auto window = WindowLevelManager::axWindow(pid, windowID);
    if (!window) {
        wplog([&] { return fmt::format("axscroll: no AX window for wid={}", windowID); });
        return nullptr;
    }
    std::vector<Area> areas;
    for (const auto& scrollArea : scrollAreas(window)) {
        if (auto area = makeArea(*scrollArea)) {
            areas.push_back(std::move(*area));
        }
    }
    if (areas.empty()) {
        wplog([&] {
            return fmt::format("axscroll: no settable scroll bar in wid={}; scrolling unavailable here", windowID);
        });
        return nullptr;
    }
    auto& stored = resolved[windowID];
    stored = {std::move(areas), platform().clock().now()};
    logShape(windowID, stored.areas);
    return &stored.areas;
}

double extentOf(const Area& area) {
    return area.frame.size.width * area.frame.size.height;
}

/// The bar of the smallest area under the point; null when there is none.
std::shared_ptr<AccessibilityElement> barUnder(ProcessID pid, WindowID windowID, const DisplayPoint& point) {
    const auto* areas = resolveAreas(pid, windowID);
    if (areas == nullptr) {
        return nullptr;
    }
    const Area* smallest = nullptr;
    for (const auto& area : *areas) {
        if (area.frame.contains(point) && (smallest == nullptr || extentOf(area) < extentOf(*smallest))) {
            smallest = &area;
        }
    }
    return smallest != nullptr ? smallest->bar : nullptr;
}

double sensitivity() {
    const double stored = Defaults::doubleForKey(Defaults::axScrollSensitivity);
    return stored > 0 ? stored : defaultSensitivity;
}

void scrollNow(ProcessID pid, WindowID windowID, double deltaY, const DisplayPoint& point) {
    const auto bar = barUnder(pid, windowID, point);
    if (!bar) {
        return;
    }
    const auto value = copyDouble(*bar, "AXValue");
    if (!value) {
        caches().resolved.erase(windowID);
        return;
    }
    const double newValue = std::clamp(*value - deltaY * sensitivity(), 0.0, 1.0);
    // Negated, so that what is not a number, in the event or in the bar, stops here too.
    if (!(std::abs(newValue - *value) > negligibleChange)) {
        return;
    }
    const auto error = bar->setAttributeValue("AXValue", newValue);
    if (error != AccessibilityError::success) {
        wplog([&] { return fmt::format("axscroll: set failed err={}, dropping the cached bar", describe(error)); });
        caches().resolved.erase(windowID);
    }
}

} // namespace

SerialQueue& queue() {
    return *queueValue.get([] { return platform().scheduler().makeSerialQueue("local.quillon.floating.axprobe"); });
}

Elements scrollAreas(const std::shared_ptr<AccessibilityElement>& window) {
    window->setMessagingTimeout(messagingTimeout);
    Elements list;
    collectScrollAreas(window, 0, list);
    return list;
}

void scroll(ProcessID pid, WindowID windowID, double deltaY, DisplayPoint point) {
    queue().async([=] { scrollNow(pid, windowID, deltaY, point); });
}

void forget(WindowID windowID) {
    queue().async([=] { caches().resolved.erase(windowID); });
}

} // namespace quillon::AXScroller
