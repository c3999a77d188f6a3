#pragma once

#include "Platform/SystemEvent.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace quillon {

/// Where events are seen (CGEventTapLocation).
enum class EventTapLocation : std::uint32_t {
    hid = 0,
    session = 1,
    annotatedSession = 2,
};

/// Among other taps at the same place (CGEventTapPlacement).
enum class EventTapPlacement : std::uint32_t {
    headInsert = 0,
    tailAppend = 1,
};

/// CGEventTapOptions.
enum class EventTapOptions : std::uint32_t {
    /// May drop events.
    defaultTap = 0,
    listenOnly = 1,
};

/// Kinds of events: bit 1 << n stands for the `SystemEventType` n (CGEventMask). The two kinds that say that the
/// tap was switched off arrive unasked.
using EventMask = std::uint64_t;

[[nodiscard]] constexpr EventMask eventMaskBit(SystemEventType type) {
    return EventMask{1} << static_cast<std::uint32_t>(type);
}

/// What becomes of an event.
enum class TappedEvent {
    passes,
    /// No application sees it.
    swallowed,
};

/// `event` has no fields and no flags when the type says that the tap was switched off.
using EventTapCallback = std::function<TappedEvent(SystemEventType type, const SystemEvent& event)>;

/// A key going down while exactly these of the modifiers Shift, Control, Alternate and Command are held.
struct KeyPress {
    std::uint16_t keyCode = 0; ///< virtual key code, by position on a US keyboard (kVK_ANSI_P is 35)
    EventFlags modifiers = 0;

    bool operator==(const KeyPress&) const = default;
};

/// Whether a tap gets to see the key press that it expects.
enum class KeyPressReach {
    reaches,
    /// Another program has claimed it for itself.
    heldByAnotherProgram,
    /// The keyboard has no such key, or no such modifier.
    missingOnKeyboard,
};

/// Sees input events before any application does (a CFMachPort made with CGEventTapCreate, with its run loop
/// source). Made switched off and outside the run loop. Destroying it ends it. Main thread; the callback runs on
/// the main thread, in the common modes of its run loop, after `addToMainRunLoop` and while the tap is enabled.
class EventTap {
public:
    EventTap() = default;
    EventTap(const EventTap&) = delete;
    EventTap& operator=(const EventTap&) = delete;
    virtual ~EventTap() = default;

    virtual void addToMainRunLoop() = 0;
    virtual void setEnabled(bool enabled) = 0;

    /// Names the one key press that the callback may swallow, none for no press at all. Where the window server
    /// shows every event to a tap, this changes nothing; elsewhere only this press reaches the callback. A press
    /// that another program holds, or whose key is missing, is tried again until it reaches the tap.
    virtual void expect(std::optional<KeyPress> press) = 0;
    /// Of the press that is expected; `reaches` when there is none.
    [[nodiscard]] virtual KeyPressReach reach() const = 0;
    /// Called on the main thread after every change of `reach`, never from within `expect`.
    virtual void setOnReachChange(std::function<void()> callback) = 0;
};

/// Makes event taps. Main thread.
class EventTaps {
public:
    virtual ~EventTaps() = default;

    /// Null when the system refuses (CGEventTapCreate without the Accessibility permission).
    [[nodiscard]] virtual std::unique_ptr<EventTap> create(EventTapLocation location, EventTapPlacement placement,
                                                           EventTapOptions options, EventMask eventsOfInterest,
                                                           EventTapCallback callback) = 0;
};

} // namespace quillon
