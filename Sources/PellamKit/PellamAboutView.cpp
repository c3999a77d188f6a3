#include "PellamKit/PellamAboutView.h"

#include "PellamKit/PellamLocalization.h"
#include "PellamKit/PellamWindowHelper.h"
#include "Platform/Bundle.h"
#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"

#include <string>

namespace quillon::PellamAboutView {

namespace {

/// Kept for the rest of the run once it is made.
OneTimeValue<std::shared_ptr<TitledWindow>> aboutWindowValue;

std::shared_ptr<TitledWindow>& aboutWindow() {
    return aboutWindowValue.get([] { return std::shared_ptr<TitledWindow>(); });
}

std::string version() {
    return platform().bundle().textForInfoDictionaryKey("CFBundleShortVersionString").value_or("1.0");
}

WindowContent content(const std::string& appName) {
    return Column{
        .items =
            {
                ApplicationIcon{{64, 64}},
                Label{appName, TextStyle::title},
                Label{L10n::format("about.version", "Versione %@", version())},
                Divider{},
                TextBlock{{
                    Label{L10n::string("about.made_for", "Realizzato per Halvery")},
                    Label{L10n::string("about.description", "Una finestra flottante ridimensionabile per le tue app."),
                          TextStyle::caption},
                }},
                Button{L10n::string("about.close", "Chiudi"), PellamWindowHelper::closeKeyWindow},
            },
        .width = 300,
        .spacing = 12,
        .padding = 24,
    };
}

std::shared_ptr<TitledWindow> makeWindow(const std::string& appName) {
    std::shared_ptr<TitledWindow> window = platform().titledWindows().makeWindow(
        L10n::format("about.title", "Informazioni su %@", appName), content(appName));
    window->setContentSize(window->fittingSize());
    PellamWindowHelper::centreOnActiveDisplay(*window);
    return window;
}

} // namespace

void showWindow(std::string_view appName) {
    auto& window = aboutWindow();
    if (window) {
        PellamWindowHelper::bringForwardAgain(window);
        return;
    }
    window = makeWindow(std::string(appName));
    PellamWindowHelper::bringForward(*window);
}

} // namespace quillon::PellamAboutView
