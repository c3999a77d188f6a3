#pragma once

#include "Platform/SyntheticEvents.h"
#include "Simulated/Journal.h"
#include "Simulated/SimulatedScheduler.h"

#include <map>
#include <optional>
#include <vector>

namespace quillon::simulated {

/// An event as its receiver got it.
struct PostedEvent {
    SystemEventType type = SystemEventType::scrollWheel;
    DisplayPoint location = {};
    EventFlags flags = 0;
    ProcessID pid = 0;
    bool hasSource = false;
    /// Of a mouse event.
    std::optional<MouseButton> button = {};
    /// Of a scroll event.
    std::optional<ScrollEventUnit> unit = {};
    std::int32_t wheel1 = 0;
    std::int32_t wheel2 = 0;
    std::map<SystemEventField, std::int64_t> integers = {};
    std::map<SystemEventField, double> doubles = {};
};

class SimulatedSyntheticEvents final : public SyntheticEvents {
public:
    SimulatedSyntheticEvents(SimulatedScheduler& scheduler, Journal& journal)
        : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] std::shared_ptr<EventSource> makeEventSource(EventSourceState state) override;
    [[nodiscard]] std::unique_ptr<SyntheticEvent> makeMouseEvent(const EventSource* source, SystemEventType type,
                                                                 const DisplayPoint& location,
                                                                 MouseButton button) override;
    [[nodiscard]] std::unique_ptr<SyntheticEvent> makeScrollWheelEvent(const EventSource* source, ScrollEventUnit unit,
                                                                       std::int32_t wheel1,
                                                                       std::int32_t wheel2) override;

    /// While set, no source can be made.
    void setSourcesFailing(bool fails) { areSourcesFailing = fails; }
    /// While set, no event can be made.
    void setEventsFailing(bool fails) { areEventsFailing = fails; }
    /// Every event that was posted, in order.
    [[nodiscard]] const std::vector<PostedEvent>& posted() const { return postedEvents; }

private:
    class Event;

    /// Stops the test when the source is not one that lives.
    void requireSource(const EventSource* source) const;

    SimulatedScheduler& scheduler;
    Journal& journal;
    std::vector<std::weak_ptr<EventSource>> sources;
    std::vector<PostedEvent> postedEvents;
    bool areSourcesFailing = false;
    bool areEventsFailing = false;
};

} // namespace quillon::simulated
