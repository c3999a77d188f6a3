#include "Simulated/SimulatedSyntheticEvents.h"

#include "Simulated/Misuse.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace quillon::simulated {

namespace {

void requireLocation(const DisplayPoint& location, std::string_view operation) {
    if (!std::isfinite(location.x) || !std::isfinite(location.y)) {
        misuse(fmt::format("{} with a location that is no point", operation));
    }
}

std::string_view nameOf(const EventSource* source) {
    return source != nullptr ? "source" : "no source";
}

} // namespace

class SimulatedSyntheticEvents::Event final : public SyntheticEvent {
public:
    Event(SimulatedSyntheticEvents& events, PostedEvent made) : events(events), event(std::move(made)) {}

    void setIntegerValueField(SystemEventField field, std::int64_t value) override {
        record("setIntegerValueField", fmt::format("{} {}", static_cast<std::uint32_t>(field), value));
        event.integers[field] = value;
    }
    void setDoubleValueField(SystemEventField field, double value) override {
        record("setDoubleValueField", fmt::format("{} {}", static_cast<std::uint32_t>(field), value));
        event.doubles[field] = value;
    }
    void setFlags(EventFlags flags) override {
        record("setFlags", fmt::format("{:#x}", flags));
        event.flags = flags;
    }
    void setLocation(const DisplayPoint& location) override {
        record("setLocation", fmt::format("{},{}", location.x, location.y));
        requireLocation(location, "SyntheticEvent::setLocation");
        event.location = location;
    }
    void postToPid(ProcessID pid) override {
        record("postToPid", fmt::format("{}", pid));
        event.pid = pid;
        events.postedEvents.push_back(event);
    }

private:
    void record(std::string_view operation, std::string_view details) {
        events.scheduler.requireMain(fmt::format("SyntheticEvent::{}", operation));
        events.journal.record("event.{} {}", operation, details);
    }

    SimulatedSyntheticEvents& events;
    PostedEvent event;
};

std::shared_ptr<EventSource> SimulatedSyntheticEvents::makeEventSource(EventSourceState state) {
    scheduler.requireMain("SyntheticEvents::makeEventSource");
    journal.record("syntheticEvents.makeEventSource {}", static_cast<std::int32_t>(state));
    if (areSourcesFailing) {
        return nullptr;
    }
    auto source = std::make_shared<EventSource>();
    sources.push_back(source);
    return source;
}

std::unique_ptr<SyntheticEvent> SimulatedSyntheticEvents::makeMouseEvent(const EventSource* source,
                                                                         SystemEventType type,
                                                                         const DisplayPoint& location,
                                                                         MouseButton button) {
    scheduler.requireMain("SyntheticEvents::makeMouseEvent");
    requireSource(source);
    requireLocation(location, "SyntheticEvents::makeMouseEvent");
    journal.record("syntheticEvents.makeMouseEvent {} {} {},{} {}", nameOf(source), static_cast<std::uint32_t>(type),
                   location.x, location.y, static_cast<std::uint32_t>(button));
    if (areEventsFailing) {
        return nullptr;
    }
    PostedEvent event{.type = type, .location = location, .hasSource = source != nullptr, .button = button};
    return std::make_unique<Event>(*this, std::move(event));
}

std::unique_ptr<SyntheticEvent> SimulatedSyntheticEvents::makeScrollWheelEvent(const EventSource* source,
                                                                               ScrollEventUnit unit,
                                                                               std::int32_t wheel1,
                                                                               std::int32_t wheel2) {
    scheduler.requireMain("SyntheticEvents::makeScrollWheelEvent");
    requireSource(source);
    journal.record("syntheticEvents.makeScrollWheelEvent {} {} {} {}", nameOf(source), static_cast<std::uint32_t>(unit),
                   wheel1, wheel2);
    if (areEventsFailing) {
        return nullptr;
    }
    PostedEvent event{.hasSource = source != nullptr, .unit = unit, .wheel1 = wheel1, .wheel2 = wheel2};
    return std::make_unique<Event>(*this, std::move(event));
}

void SimulatedSyntheticEvents::requireSource(const EventSource* source) const {
    const bool lives =
        std::any_of(sources.begin(), sources.end(), [&](const auto& entry) { return entry.lock().get() == source; });
    if (source != nullptr && !lives) {
        misuse("an event was made with a source that is gone");
    }
}

} // namespace quillon::simulated
