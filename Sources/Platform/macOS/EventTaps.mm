#include "Platform/EventTap.h"

#include "Platform/macOS/Ports.h"
#include "Platform/macOS/Retained.h"

#include <CoreGraphics/CoreGraphics.h>

namespace quillon::macos {

namespace {

class MacSystemEvent final : public SystemEvent {
public:
    /// Null for an event without fields.
    explicit MacSystemEvent(CGEventRef event) : event(event) {}

    std::int64_t integerValueField(SystemEventField field) const override {
        return event != nullptr ? CGEventGetIntegerValueField(event, static_cast<CGEventField>(field)) : 0;
    }
    EventFlags flags() const override { return event != nullptr ? CGEventGetFlags(event) : 0; }

private:
    CGEventRef event;
};

/// The type is then the whole message: what comes with it is not to be looked at.
bool saysThatTapIsDisabled(CGEventType type) {
    return type == kCGEventTapDisabledByTimeout || type == kCGEventTapDisabledByUserInput;
}

class MacEventTap final : public EventTap {
public:
    MacEventTap(EventTapLocation location, EventTapPlacement placement, EventTapOptions options,
                EventMask eventsOfInterest, EventTapCallback callback)
        : callback(std::move(callback)),
          port(Retained<CFMachPortRef>::adopt(CGEventTapCreate(
              static_cast<CGEventTapLocation>(location), static_cast<CGEventTapPlacement>(placement),
              static_cast<CGEventTapOptions>(options), eventsOfInterest, &MacEventTap::handle, this))) {
        if (isCreated()) {
            CGEventTapEnable(port.get(), false); // It is created enabled.
        }
    }
    ~MacEventTap() override {
        if (isCreated()) {
            CGEventTapEnable(port.get(), false);
            // Ends the run loop source too. Without it the window server would keep the tap in its list.
            CFMachPortInvalidate(port.get());
        }
    }

    /// False when the system has refused.
    [[nodiscard]] bool isCreated() const { return port.get() != nullptr; }

    void addToMainRunLoop() override {
        const auto source =
            Retained<CFRunLoopSourceRef>::adopt(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port.get(), 0));
        CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopCommonModes);
    }
    void setEnabled(bool enabled) override { CGEventTapEnable(port.get(), enabled); }

    // The window server shows every event to the tap.
    void expect(std::optional<KeyPress> /*press*/) override {}
    KeyPressReach reach() const override { return KeyPressReach::reaches; }
    void setOnReachChange(std::function<void()> /*callback*/) override {}

private:
    /// On the main thread, from its run loop. Null drops the event.
    static CGEventRef _Nullable handle(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event, void* tap) {
        // The callback may end the tap, and with it the callback.
        const EventTapCallback running = static_cast<MacEventTap*>(tap)->callback;
        const MacSystemEvent seen(saysThatTapIsDisabled(type) ? nullptr : event);
        return running(static_cast<SystemEventType>(type), seen) == TappedEvent::swallowed ? nullptr : event;
    }

    EventTapCallback callback;
    Retained<CFMachPortRef> port;
};

class MacEventTaps final : public EventTaps {
public:
    std::unique_ptr<EventTap> create(EventTapLocation location, EventTapPlacement placement, EventTapOptions options,
                                     EventMask eventsOfInterest, EventTapCallback callback) override {
        auto tap = std::make_unique<MacEventTap>(location, placement, options, eventsOfInterest, std::move(callback));
        return tap->isCreated() ? std::move(tap) : nullptr;
    }
};

} // namespace

std::unique_ptr<EventTaps> makeEventTaps() {
    return std::make_unique<MacEventTaps>();
}

} // namespace quillon::macos
