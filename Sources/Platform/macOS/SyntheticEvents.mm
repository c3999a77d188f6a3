#include "Platform/SyntheticEvents.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"
#include "Platform/macOS/Retained.h"

#include <CoreGraphics/CoreGraphics.h>

namespace quillon::macos {

namespace {

class MacEventSource final : public EventSource {
public:
    explicit MacEventSource(Retained<CGEventSourceRef> source) : source(std::move(source)) {}

    [[nodiscard]] CGEventSourceRef native() const { return source.get(); }

private:
    Retained<CGEventSourceRef> source;
};

CGEventSourceRef _Nullable nativeSource(const EventSource* source) {
    return source != nullptr ? static_cast<const MacEventSource*>(source)->native() : nullptr;
}

class MacSyntheticEvent final : public SyntheticEvent {
public:
    explicit MacSyntheticEvent(Retained<CGEventRef> event) : event(std::move(event)) {}

    void setIntegerValueField(SystemEventField field, std::int64_t value) override {
        CGEventSetIntegerValueField(event.get(), static_cast<CGEventField>(field), value);
    }
    void setDoubleValueField(SystemEventField field, double value) override {
        CGEventSetDoubleValueField(event.get(), static_cast<CGEventField>(field), value);
    }
    void setFlags(EventFlags flags) override { CGEventSetFlags(event.get(), flags); }
    void setLocation(const DisplayPoint& location) override { CGEventSetLocation(event.get(), toNSPoint(location)); }
    void postToPid(ProcessID pid) override { CGEventPostToPid(pid, event.get()); }

private:
    Retained<CGEventRef> event;
};

/// Null when there is no event. Takes over the caller's reference.
std::unique_ptr<SyntheticEvent> adoptEvent(CGEventRef _Nullable event) {
    return event != nullptr ? std::make_unique<MacSyntheticEvent>(Retained<CGEventRef>::adopt(event)) : nullptr;
}

class MacSyntheticEvents final : public SyntheticEvents {
public:
    std::shared_ptr<EventSource> makeEventSource(EventSourceState state) override {
        auto source = Retained<CGEventSourceRef>::adopt(CGEventSourceCreate(static_cast<CGEventSourceStateID>(state)));
        return source.get() != nullptr ? std::make_shared<MacEventSource>(std::move(source)) : nullptr;
    }

    std::unique_ptr<SyntheticEvent> makeMouseEvent(const EventSource* source, SystemEventType type,
                                                   const DisplayPoint& location, MouseButton button) override {
        return adoptEvent(CGEventCreateMouseEvent(nativeSource(source), static_cast<CGEventType>(type),
                                                  toNSPoint(location), static_cast<CGMouseButton>(button)));
    }

    std::unique_ptr<SyntheticEvent> makeScrollWheelEvent(const EventSource* source, ScrollEventUnit unit,
                                                         std::int32_t wheel1, std::int32_t wheel2) override {
        constexpr std::uint32_t wheelCount = 2;
        constexpr std::int32_t unusedWheel = 0;
        return adoptEvent(CGEventCreateScrollWheelEvent2(nativeSource(source), static_cast<CGScrollEventUnit>(unit),
                                                         wheelCount, wheel1, wheel2, unusedWheel));
    }
};

} // namespace

std::unique_ptr<SyntheticEvents> makeSyntheticEvents() {
    return std::make_unique<MacSyntheticEvents>();
}

} // namespace quillon::macos
