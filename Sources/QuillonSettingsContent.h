#pragma once

#include "HeldWeakly.h"
#include "PellamKit/MenuBarPillSettings.h"
#include "PellamKit/MenuBarVisibilitySettings.h"
#include "PellamKit/PellamPermissionWatcher.h"
#include "PellamKit/PellamSettingsContent.h"
#include "PellamKit/PellamShortcutRecorder.h"
#include "Platform/Registration.h"

#include <memory>
#include <string_view>
#include <vector>

namespace quillon {

class AppDelegate;
class PinnedWindowTracker;
class WindowOverlay;

/// What this application puts into the settings window. Its switches and its picker stand for values of the user
/// defaults: they write at once and show what is stored, whoever has stored it. Main thread.
class QuillonSettingsContent final : public PellamSettingsContent, private HeldWeakly<QuillonSettingsContent> {
    friend HeldWeakly<QuillonSettingsContent>;

public:
    /// The tracker belongs to the delegate, which the content keeps alive.
    QuillonSettingsContent(PinnedWindowTracker& tracker, std::shared_ptr<AppDelegate> delegate);
    ~QuillonSettingsContent() override;

    [[nodiscard]] std::vector<FormSection> sections() override;
    void windowWillClose() override;

private:
    [[nodiscard]] PellamShortcutRecorder::Configuration recorderConfiguration() const;
    void observe(std::string_view key, void (WindowOverlay::*apply)());
    void stateWillChange() const;

    [[nodiscard]] FormSection shortcutSection();
    [[nodiscard]] FormSection permissionsSection() const;

    PinnedWindowTracker& tracker;
    const std::shared_ptr<AppDelegate> delegate;
    const std::unique_ptr<PellamPermissionWatcher> accessibility;
    const std::unique_ptr<PellamPermissionWatcher> screenRecording;
    const std::unique_ptr<PellamPermissionWatcher> postEvent;
    PellamShortcutRecorder shortcutRecorder;
    MenuBarPillSettings pillSettings;
    MenuBarVisibilitySettings visibilitySettings;
    std::vector<RegistrationToken> observers;
};

} // namespace quillon
