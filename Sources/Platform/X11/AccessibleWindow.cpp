#include "Platform/X11/AccessibleWindow.h"

#include "Platform/X11/SafeText.h"

#include <cstdlib>

namespace quillon::x11 {

namespace {

/// More than a desktop has, and more windows than an application has.
constexpr std::size_t mostApplications = 500;
constexpr std::size_t mostWindows = 500;
/// How far two measures of the same thing may differ, in pixels.
constexpr int tolerance = 2;

struct Candidate {
    AccessibleReference reference;
    int childCount = 0;
    std::string title;
    PixelRect extents;
};

/// Not what a program says that has no idea.
bool isPlausible(const PixelRect& extents) {
    constexpr int limit = 1'000'000;
    const auto isFair = [](int number) { return number > -limit && number < limit; };
    return isFair(extents.x) && isFair(extents.y) && isFair(extents.width) && isFair(extents.height);
}

bool areClose(int one, int other) {
    return std::abs(one - other) <= tolerance;
}

bool haveSameSize(const PixelRect& one, const PixelRect& other) {
    return areClose(one.width, other.width) && areClose(one.height, other.height);
}

bool haveSamePlace(const PixelRect& one, const PixelRect& other) {
    return areClose(one.x, other.x) && areClose(one.y, other.y);
}

/// How well a candidate fits the window, and where in truth the rectangle lies whose extents it tells.
struct Fit {
    int points = 0;
    PixelRect place;
};

// What must be equal at least: the size and one of the others.
constexpr int titlePoints = 1;
constexpr int placePoints = 1;
constexpr int sizePoints = 2;
constexpr int enoughPoints = 3;

Fit fit(const AccessibleWindowTraits& traits, const Candidate& candidate) {
    const auto& extents = candidate.extents;
    // For the one that fits in no way: in the middle, as behind a border of equal width.
    Fit best{0,
             {traits.client.x + (traits.client.width - extents.width) / 2,
              traits.client.y + (traits.client.height - extents.height) / 2, extents.width, extents.height}};
    // Qt and browsers tell the client area; GTK 3 adds the window manager's frame to it; GTK 4 leaves its shadow out
    // and always tells the origin.
    for (const auto& place : {traits.client, traits.framed, traits.visible}) {
        const int points =
            haveSameSize(place, extents) ? sizePoints + (haveSamePlace(place, extents) ? placePoints : 0) : 0;
        if (points > best.points) {
            best = {points, place};
        }
    }
    best.points += candidate.title == traits.title ? titlePoints : 0;
    return best;
}

/// The applications of that process.
std::vector<AccessibleReference> applicationsOf(AccessibilityBus& bus, ProcessID pid, Deadline deadline,
                                                AccessibilityError& error) {
    const AccessibleReference registry{"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
    const auto [result, all] = childrenOf(bus, registry, mostApplications, deadline);
    // An invalid one: nobody has registered yet.
    error = result == AccessibilityError::invalidUIElement ? AccessibilityError::noValue : result;
    std::vector<QDBusMessage> questions;
    for (const auto& application : all) {
        questions.push_back(methodCall({"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
                                       "GetConnectionUnixProcessID", {application.service}));
    }
    const auto answers = bus.call(questions, deadline);
    std::vector<AccessibleReference> applications;
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (numberIn(answers[index]) == static_cast<std::uint32_t>(pid)) {
            applications.push_back(all[index]);
        }
    }
    return applications;
}

std::vector<Candidate> windowsOf(AccessibilityBus& bus, const AccessibleReference& application, Deadline deadline,
                                 AccessibilityError& error) {
    const auto [listError, windows] = childrenOf(bus, application, mostWindows, deadline);
    error = listError;
    std::vector<QDBusMessage> questions;
    for (const auto& window : windows) {
        questions.push_back(propertyRead(window, accessibleInterface, "Name"));
        questions.push_back(extentsCall(window));
        questions.push_back(propertyRead(window, accessibleInterface, "ChildCount"));
    }
    const auto answers = bus.call(questions, deadline);
    std::vector<Candidate> result;
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const auto* own = &answers[3 * index];
        if (const auto extents = extentsIn(own[1]); extents && isPlausible(*extents)) {
            result.push_back({windows[index], static_cast<int>(propertyNumber(own[2]).value_or(0)),
                              safeText(propertyText(own[0]).value_or(QString()).toStdString()), *extents});
        } else if (error == AccessibilityError::success &&
                   resultOf(own[1], "(iiii)") == AccessibilityError::cannotComplete) {
            error = AccessibilityError::cannotComplete;
        }
    }
    return result;
}

AccessibleWindow make(AccessibilityBus& bus, const Candidate& candidate, const PixelRect& place) {
    const PixelPoint offset{place.x - candidate.extents.x, place.y - candidate.extents.y};
    return {AccessibilityError::success,
            std::make_shared<AccessibleNode>(AccessibleNode{candidate.reference, 0, candidate.childCount}),
            std::make_shared<AccessibleTree>(bus, offset)};
}

} // namespace

AccessibleWindow findAccessibleWindow(AccessibilityBus& bus, const AccessibleWindowTraits& traits, Deadline deadline) {
    auto error = AccessibilityError::success;
    std::vector<Candidate> candidates;
    for (const auto& application : applicationsOf(bus, traits.owner, deadline, error)) {
        for (auto& window : windowsOf(bus, application, deadline, error)) {
            candidates.push_back(std::move(window));
        }
    }
    const Candidate* best = nullptr;
    Fit bestFit;
    const bool isUnmistakable = traits.isOnlyOne && candidates.size() == 1;
    for (const auto& candidate : candidates) {
        const auto found = fit(traits, candidate);
        if ((found.points >= enoughPoints || isUnmistakable) && (best == nullptr || found.points > bestFit.points)) {
            best = &candidate;
            bestFit = found;
        }
    }
    if (best != nullptr) {
        return make(bus, *best, bestFit.place);
    }
    return {error == AccessibilityError::success ? AccessibilityError::noValue : error};
}

} // namespace quillon::x11
