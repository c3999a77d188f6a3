#pragma once

#include "HeldWeakly.h"
#include "Platform/EventTap.h"
#include "Simulated/Journal.h"
#include "Simulated/SimulatedAccessibility.h"
#include "Simulated/SimulatedScheduler.h"

#include <vector>

namespace quillon::simulated {

class SimulatedEventTaps;

class SimulatedEventTap final : public EventTap, private HeldWeakly<SimulatedEventTap> {
    friend HeldWeakly<SimulatedEventTap>;

public:
    SimulatedEventTap(SimulatedEventTaps& taps, EventTapOptions options, EventMask eventsOfInterest,
                      EventTapCallback callback)
        : taps(taps), options(options), eventsOfInterest(eventsOfInterest), callback(std::move(callback)) {}
    ~SimulatedEventTap() override;

    void addToMainRunLoop() override;
    void setEnabled(bool enabled) override;
    void expect(std::optional<KeyPress> press) override;
    [[nodiscard]] KeyPressReach reach() const override;
    void setOnReachChange(std::function<void()> callback) override;

    [[nodiscard]] bool isEnabled() const { return enabled; }
    /// The system switches the enabled tap off and tells it so.
    void disableBySystem(SystemEventType reason);
    /// Calls the callback, whatever the mask says.
    TappedEvent deliver(SystemEventType type, const SystemEvent& event);

private:
    friend SimulatedEventTaps;

    [[nodiscard]] bool sees(SystemEventType type, const KeyPress& press) const;
    void announceReach();

    SimulatedEventTaps& taps;
    EventTapOptions options;
    EventMask eventsOfInterest;
    EventTapCallback callback;
    std::function<void()> onReachChange;
    std::optional<KeyPress> expected;
    KeyPressReach announcedReach = KeyPressReach::reaches;
    bool isInRunLoop = false;
    bool enabled = false;
};

/// Taps need the Accessibility permission, for being made as well as for seeing anything.
class SimulatedEventTaps final : public EventTaps {
public:
    SimulatedEventTaps(const SimulatedAccessibility& accessibility, SimulatedScheduler& scheduler, Journal& journal)
        : accessibility(accessibility), scheduler(scheduler), journal(journal) {}

    [[nodiscard]] std::unique_ptr<EventTap> create(EventTapLocation location, EventTapPlacement placement,
                                                   EventTapOptions options, EventMask eventsOfInterest,
                                                   EventTapCallback callback) override;

    /// The living taps in the order in which they see an event.
    [[nodiscard]] const std::vector<SimulatedEventTap*>& all() const { return living; }
    /// While true, the system makes no taps, not even for a trusted process.
    void refuse(bool refuses) { refusesAll = refuses; }
    /// From now on a tap sees the key press that it expects and no other one.
    void showOnlyWhatIsExpected() { showsEveryKey = false; }
    /// Another program claims the key press, gives it back, or the keyboard is changed.
    void setReach(const KeyPress& press, KeyPressReach reach);

    /// The user presses a key.
    TappedEvent pressKey(std::uint16_t keyCode, EventFlags flags);

private:
    friend SimulatedEventTap;

    [[nodiscard]] KeyPressReach reachOf(const KeyPress& press) const;

    const SimulatedAccessibility& accessibility;
    SimulatedScheduler& scheduler;
    Journal& journal;
    std::vector<SimulatedEventTap*> living;
    std::vector<std::pair<KeyPress, KeyPressReach>> reaches;
    bool refusesAll = false;
    bool showsEveryKey = true;
    bool isInCallback = false;
};

} // namespace quillon::simulated
