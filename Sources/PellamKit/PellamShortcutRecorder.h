#pragma once

#include "HeldWeakly.h"
#include "PellamKit/Binding.h"
#include "Platform/EventTap.h"
#include "Platform/KeyMonitor.h"
#include "Platform/Panel.h"
#include "Platform/Registration.h"
#include "Platform/WindowContent.h"

#include <cstdint>
#include <functional>
#include <string>

namespace quillon {

/// The line of the settings that shows a global shortcut, clears it and records a new one from the keys that the user
/// presses. Main thread.
class PellamShortcutRecorder : private HeldWeakly<PellamShortcutRecorder> {
    friend HeldWeakly<PellamShortcutRecorder>;

public:
    struct Configuration {
        std::string label;
        /// 0 without modifiers stands for no shortcut.
        Binding<std::uint16_t> keyCode;
        Binding<ModifierFlags> modifiers;
        /// The shortcut for the user to read.
        std::function<std::string()> displayString;
        /// Called after a new shortcut was stored; may be empty.
        std::function<void()> onChanged = {};
        /// Takes the shortcut away.
        std::function<void()> onClear;
        /// The global shortcut's tap, which is off while recording so that the keys of the shortcut in force can be
        /// recorded; null when there is none.
        std::function<EventTap*()> eventTapToDisable;
        /// Told true when recording starts and false when it ends; may be empty.
        std::function<void(bool)> onRecordingChanged = {};
    };

    explicit PellamShortcutRecorder(Configuration configuration);
    ~PellamShortcutRecorder();

    [[nodiscard]] FormRow row();
    [[nodiscard]] bool isRecording() const { return state.isRecording; }
    /// Leaves the shortcut as it is. Does nothing while nothing is recorded.
    void stopRecording();

    /// Called before each change of what `row` shows; may be empty.
    std::function<void()> willChange;

private:
    struct State {
        bool isRecording = false;
        /// The last key was refused for lack of a modifier.
        bool needsModifier = false;

        bool operator==(const State&) const = default;
    };

    [[nodiscard]] bool isSet() const;
    [[nodiscard]] RowItems idleItems();
    [[nodiscard]] RowItems recordingItems();
    void startRecording();
    void keyDown(const KeyEvent& event);
    void clear();
    void setState(const State& newState);
    void notifyWillChange() const;
    void enableEventTapAgain();

    Configuration configuration;
    State state;
    /// While recording; null when there was none to disable.
    EventTap* disabledTap = nullptr;
    /// While recording; empty when the system refused it.
    RegistrationToken localMonitor;
};

} // namespace quillon
