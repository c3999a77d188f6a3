#include "PellamKit/PellamSettingsView.h"

#include "HeldWeakly.h"
#include "PellamKit/PellamLocalization.h"
#include "PellamKit/PellamSettingsMetrics.h"
#include "PellamKit/PellamSettingsWindowSizer.h"
#include "PellamKit/PellamWindowHelper.h"
#include "Platform/LoginItem.h"
#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace quillon::PellamSettingsView {

namespace {

class SettingsWindow : private HeldWeakly<SettingsWindow> {
    friend HeldWeakly<SettingsWindow>;

public:
    SettingsWindow(const std::string& appName, bool showsLaunchAtLogin, std::unique_ptr<PellamSettingsContent> content);

    void show();
    void showAgain();

private:
    [[nodiscard]] WindowContent form();
    [[nodiscard]] FormSection generalSection();
    void setLaunchAtLogin(bool launches);
    void contentWillChange();
    void scrollToTopRepeatedly();

    const bool showsLaunchAtLogin;
    const std::unique_ptr<PellamSettingsContent> appSettings;
    bool launchAtLogin = platform().loginItem().isEnabled();
    bool isRebuildScheduled = false;
    const std::shared_ptr<TitledWindow> window;
    const PellamSettingsWindowSizer sizer;
    const RegistrationToken closeObserver;
};

SettingsWindow::SettingsWindow(const std::string& appName, bool showsLaunchAtLogin,
                               std::unique_ptr<PellamSettingsContent> content)
    : showsLaunchAtLogin(showsLaunchAtLogin), appSettings(std::move(content)),
      window(
          platform().titledWindows().makeWindow(L10n::format("settings.title", "%@ — Impostazioni", appName), form())),
      sizer(window), closeObserver(window->observeWillClose(
                         weakly([](SettingsWindow& self) { self.appSettings->windowWillClose(); }))) {
    appSettings->willChange = weakly([](SettingsWindow& self) { self.contentWillChange(); });
}

void SettingsWindow::show() {
    window->setContentSize(
        PellamSettingsMetrics::contentSize(window->fittingSize(), PellamWindowHelper::activeScreen()));
    PellamWindowHelper::centreOnActiveDisplay(*window);
    PellamWindowHelper::bringForward(*window);
    scrollToTopRepeatedly();
}

void SettingsWindow::showAgain() {
    sizer.clamp();
    PellamWindowHelper::bringForwardAgain(window);
}

WindowContent SettingsWindow::form() {
    auto sections = appSettings->sections();
    if (showsLaunchAtLogin) {
        sections.push_back(generalSection());
    }
    return Form{.sections = std::move(sections),
                .closing = {.title = L10n::string("settings.done", "Fine"),
                            .action = PellamWindowHelper::closeKeyWindow,
                            .isCancel = true},
                .minimumSize = PellamSettingsMetrics::minimumContentSize};
}

FormSection SettingsWindow::generalSection() {
    return {L10n::string("settings.general", "Generali"),
            {{.title = L10n::string("settings.launch_at_login", "Apri all’accesso"),
              .note = {},
              .control = Switch{launchAtLogin, weakly([](SettingsWindow& self, bool launches) {
                                    self.setLaunchAtLogin(launches);
                                })}}}};
}

void SettingsWindow::setLaunchAtLogin(bool launches) {
    auto& item = platform().loginItem();
    const bool succeeded = launches ? item.registerItem() : item.unregisterItem();
    launchAtLogin = succeeded ? launches : item.isEnabled();
    contentWillChange();
}

/// However much changes in one turn, the window is given its new content once.
void SettingsWindow::contentWillChange() {
    if (std::exchange(isRebuildScheduled, true)) {
        return;
    }
    platform().scheduler().mainAsync(weakly([](SettingsWindow& self) {
        self.isRebuildScheduled = false;
        self.window->setContent(self.form());
    }));
}

/// The form opens at its first section, wherever the platform scrolls it meanwhile.
void scrollToTop(TitledWindow& window) {
    window.clearFirstResponder();
    const auto extent = window.scrollExtent();
    if (!extent) {
        return;
    }
    const double overhang = std::max(extent->documentHeight - extent->visibleHeight, 0.0);
    window.scrollTo(extent->isDocumentFlipped ? 0 : overhang);
}

void SettingsWindow::scrollToTopRepeatedly() {
    for (const auto delay : PellamSettingsMetrics::scrollSettleDelays) {
        platform().scheduler().mainAfter(delay, weakly([](SettingsWindow& self) { scrollToTop(*self.window); }));
    }
}

/// Kept for the rest of the run once it is made.
OneTimeValue<std::unique_ptr<SettingsWindow>> settingsWindowValue;

std::unique_ptr<SettingsWindow>& settingsWindow() {
    return settingsWindowValue.get([] { return std::unique_ptr<SettingsWindow>(); });
}

} // namespace

void showWindow(std::string_view appName, bool showsLaunchAtLogin, const AppSettings& appSettings) {
    auto& window = settingsWindow();
    if (window) {
        window->showAgain();
        return;
    }
    window = std::make_unique<SettingsWindow>(std::string(appName), showsLaunchAtLogin, appSettings());
    window->show();
}

} // namespace quillon::PellamSettingsView
