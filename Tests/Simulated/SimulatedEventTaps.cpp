#include "Simulated/SimulatedEventTaps.h"

#include "Simulated/Misuse.h"

#include <algorithm>

namespace quillon::simulated {

namespace {

/// What a `KeyPress` tells apart.
constexpr EventFlags keyPressModifiers =
    eventFlagMaskShift | eventFlagMaskControl | eventFlagMaskAlternate | eventFlagMaskCommand;

class KeyEvent final : public SystemEvent {
public:
    KeyEvent(std::uint16_t keyCode, EventFlags flags) : keyCode(keyCode), eventFlags(flags) {}

    [[nodiscard]] std::int64_t integerValueField(SystemEventField field) const override {
        return field == SystemEventField::keyboardEventKeycode ? keyCode : 0;
    }
    [[nodiscard]] EventFlags flags() const override { return eventFlags; }

private:
    std::uint16_t keyCode;
    EventFlags eventFlags;
};

std::string text(const std::optional<KeyPress>& press) {
    return press ? fmt::format("keyCode={} modifiers={:#x}", press->keyCode, press->modifiers) : "none";
}

} // namespace

SimulatedEventTap::~SimulatedEventTap() {
    taps.scheduler.requireMain("destroying an event tap");
    if (taps.isInCallback) {
        misuse("an event tap was destroyed by the callback of one");
    }
    std::erase(taps.living, this);
    taps.journal.record("eventTap.destroy");
}

void SimulatedEventTap::addToMainRunLoop() {
    taps.scheduler.requireMain("EventTap::addToMainRunLoop");
    if (std::exchange(isInRunLoop, true)) {
        misuse("EventTap::addToMainRunLoop for the second time");
    }
    taps.journal.record("eventTap.addToMainRunLoop");
}

void SimulatedEventTap::setEnabled(bool newEnabled) {
    taps.scheduler.requireMain("EventTap::setEnabled");
    taps.journal.record("eventTap.setEnabled {}", newEnabled);
    enabled = newEnabled;
}

void SimulatedEventTap::expect(std::optional<KeyPress> press) {
    taps.scheduler.requireMain("EventTap::expect");
    if (press && (press->modifiers & ~keyPressModifiers) != 0) {
        misuse(fmt::format("EventTap::expect with the modifiers {:#x}", press->modifiers));
    }
    taps.journal.record("eventTap.expect {}", text(press));
    expected = press;
    announceReach();
}

KeyPressReach SimulatedEventTap::reach() const {
    taps.scheduler.requireMain("EventTap::reach");
    return expected ? taps.reachOf(*expected) : KeyPressReach::reaches;
}

void SimulatedEventTap::setOnReachChange(std::function<void()> newCallback) {
    taps.scheduler.requireMain("EventTap::setOnReachChange");
    taps.journal.record("eventTap.setOnReachChange");
    onReachChange = std::move(newCallback);
}

void SimulatedEventTap::disableBySystem(SystemEventType reason) {
    if (reason != SystemEventType::tapDisabledByTimeout && reason != SystemEventType::tapDisabledByUserInput) {
        misuse("an event tap is switched off by a kind of event that does not say so");
    }
    if (!enabled || !isInRunLoop) {
        misuse("an event tap that is off is switched off");
    }
    enabled = false;
    deliver(reason, KeyEvent(0, 0));
}

TappedEvent SimulatedEventTap::deliver(SystemEventType type, const SystemEvent& event) {
    if (std::exchange(taps.isInCallback, true)) {
        misuse("an event during the callback of an event tap");
    }
    const auto result = callback(type, event);
    taps.isInCallback = false;
    return options == EventTapOptions::listenOnly ? TappedEvent::passes : result;
}

bool SimulatedEventTap::sees(SystemEventType type, const KeyPress& press) const {
    return enabled && isInRunLoop && (eventsOfInterest & eventMaskBit(type)) != 0 &&
           (taps.showsEveryKey || press == expected);
}

void SimulatedEventTap::announceReach() {
    if (std::exchange(announcedReach, reach()) == announcedReach) {
        return;
    }
    taps.scheduler.mainAsync(weakly([](SimulatedEventTap& tap) {
        if (tap.onReachChange) {
            tap.onReachChange();
        }
    }));
}

std::unique_ptr<EventTap> SimulatedEventTaps::create(EventTapLocation location, EventTapPlacement placement,
                                                     EventTapOptions options, EventMask eventsOfInterest,
                                                     EventTapCallback callback) {
    scheduler.requireMain("EventTaps::create");
    if (!callback) {
        misuse("EventTaps::create without a callback");
    }
    journal.record("eventTaps.create location={} placement={} options={} mask={:#x}", static_cast<int>(location),
                   static_cast<int>(placement), static_cast<int>(options), eventsOfInterest);
    if (refusesAll || !accessibility.isProcessTrusted()) {
        return nullptr;
    }
    auto tap = std::make_unique<SimulatedEventTap>(*this, options, eventsOfInterest, std::move(callback));
    living.insert(placement == EventTapPlacement::headInsert ? living.begin() : living.end(), tap.get());
    return tap;
}

void SimulatedEventTaps::setReach(const KeyPress& press, KeyPressReach reach) {
    std::erase_if(reaches, [&](const auto& entry) { return entry.first == press; });
    reaches.emplace_back(press, reach);
    for (auto* tap : living) {
        tap->announceReach();
    }
}

TappedEvent SimulatedEventTaps::pressKey(std::uint16_t keyCode, EventFlags flags) {
    const KeyPress press{keyCode, flags & keyPressModifiers};
    switch (reachOf(press)) {
    case KeyPressReach::missingOnKeyboard:
        misuse(fmt::format("pressing {}, which the keyboard does not have", text(press)));
    case KeyPressReach::heldByAnotherProgram:
        return TappedEvent::passes;
    case KeyPressReach::reaches:
        break;
    }
    // A callback may make other taps.
    const auto present = living;
    for (auto* tap : present) {
        if (accessibility.isProcessTrusted() && tap->sees(SystemEventType::keyDown, press) &&
            tap->deliver(SystemEventType::keyDown, KeyEvent(keyCode, flags)) == TappedEvent::swallowed) {
            return TappedEvent::swallowed;
        }
    }
    return TappedEvent::passes;
}

KeyPressReach SimulatedEventTaps::reachOf(const KeyPress& press) const {
    const auto found =
        std::find_if(reaches.begin(), reaches.end(), [&](const auto& entry) { return entry.first == press; });
    return found == reaches.end() ? KeyPressReach::reaches : found->second;
}

} // namespace quillon::simulated
