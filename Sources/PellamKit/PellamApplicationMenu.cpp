#include "PellamKit/PellamApplicationMenu.h"

#include "PellamKit/PellamLocalization.h"
#include "Platform/Application.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"
#include "Platform/ProcessInfo.h"

namespace quillon::PellamApplicationMenu {

namespace {

std::string applicationName() {
    const auto name = platform().bundle().textForInfoDictionaryKey("CFBundleName");
    return name ? *name : platform().processInfo().processName();
}

MenuItem standardItem(std::string title, StandardAction action, std::string keyEquivalent) {
    MenuItem item;
    item.title = std::move(title);
    item.action = action;
    item.keyEquivalent = std::move(keyEquivalent);
    return item;
}

MenuItem submenuItem(const std::string& title, std::vector<MenuItem> items) {
    MenuItem item;
    item.title = title;
    item.submenu = std::make_shared<Menu>();
    item.submenu->title = title;
    item.submenu->items = std::move(items);
    return item;
}

std::vector<MenuItem> applicationItems() {
    return {standardItem(L10n::format("menu.quit", "Esci da %@", applicationName()), StandardAction::terminate, "q")};
}

std::vector<MenuItem> editItems() {
    return {
        standardItem(L10n::string("menu.undo", "Annulla"), StandardAction::undo, "z"),
        standardItem(L10n::string("menu.redo", "Ripeti"), StandardAction::redo, "Z"),
        MenuItem::separator(),
        standardItem(L10n::string("menu.cut", "Taglia"), StandardAction::cut, "x"),
        standardItem(L10n::string("menu.copy", "Copia"), StandardAction::copy, "c"),
        standardItem(L10n::string("menu.paste", "Incolla"), StandardAction::paste, "v"),
        MenuItem::separator(),
        standardItem(L10n::string("menu.selectAll", "Seleziona tutto"), StandardAction::selectAll, "a"),
    };
}

} // namespace

void install() {
    auto& application = sharedApplication();
    const auto menu = std::make_shared<Menu>();
    menu->items = {submenuItem("", applicationItems()),
                   submenuItem(L10n::string("menu.edit", "Modifica"), editItems())};
    application.setMainMenu(menu);
}

} // namespace quillon::PellamApplicationMenu
