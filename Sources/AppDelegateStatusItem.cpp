// The status item and its menu.

#include "AppDelegate.h"

#include "Defaults.h"
#include "PellamKit/PellamAboutView.h"
#include "PellamKit/PellamMenuBarPill.h"
#include "PellamKit/PellamSettingsView.h"
#include "PellamKit/PellamStatusItemVisibility.h"
#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"
#include "QuillonSettingsContent.h"
#include "Text.h"
#include "WindowDetector.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

namespace quillon {

namespace {

constexpr std::string_view applicationName = "Quillon";

/// In points.
constexpr double iconSize = 16;

MenuItem informativeItem(std::string title) {
    MenuItem item;
    item.title = std::move(title);
    item.isEnabled = false;
    return item;
}

std::string toolTip(std::size_t pinnedWindows) {
    std::string text(applicationName);
    if (pinnedWindows > 0) {
        text += fmt::format(" — {} finestre fissate", pinnedWindows);
    }
    return text;
}

/// By label; windows of the same label keep the set's order.
std::vector<PinnedWindow> sortedByLabel(const std::unordered_set<PinnedWindow>& windows) {
    std::vector<PinnedWindow> sorted(windows.begin(), windows.end());
    std::ranges::stable_sort(sorted, {},
                             [](const PinnedWindow& window) { return canonicalComposition(window.displayLabel()); });
    return sorted;
}

} // namespace

/// The pill's colours are fixed by now.
void AppDelegate::migrateLegacyPillColorKey() {
    if (Defaults::boolForKey(Defaults::didMigratePillColor)) {
        return;
    }
    auto& defaults = platform().userDefaults();
    defaults.remove(Defaults::menuBarPillColor);
    defaults.set(Defaults::didMigratePillColor, true);
}

void AppDelegate::createStatusItem() {
    if (!PellamStatusItemVisibility::isVisible()) {
        return;
    }
    statusItem = platform().statusBar().makeStatusItem();
    statusItem->setAutosaveName("QuillonStatusItem");
    updateIcon();
    statusItem->setMenu(makeMenu());
}

void AppDelegate::applyStatusItemVisibility() {
    if (!PellamStatusItemVisibility::isVisible()) {
        statusItem.reset();
    } else if (!statusItem) {
        createStatusItem();
    }
}

void AppDelegate::updateIcon() {
    auto* button = statusItem ? statusItem->button() : nullptr;
    if (button == nullptr) {
        return;
    }
    const auto count = tracker.pinnedWindows().size();
    button->setImage(PellamMenuBarPill::icon(count > 0 ? "pin.fill" : "pin", iconSize, FontWeight::semibold,
                                             SystemColor::red, std::string(applicationName)));
    button->setTitle("");
    button->setToolTip(toolTip(count));
}

/// An empty menu, which gets its items whenever it opens.
std::shared_ptr<Menu> AppDelegate::makeMenu() {
    auto menu = std::make_shared<Menu>();
    menu->delegate = weak_from_this();
    return menu;
}

bool AppDelegate::openMenuAtPointer() {
    return platform().statusBar().popUpMenuAtPointer(makeMenu());
}

void AppDelegate::menuNeedsUpdate(Menu& menu) {
    auto& items = menu.items;
    items.clear();
    items.push_back(actionItem("Informazioni su Quillon", &AppDelegate::openAbout));
    items.push_back(MenuItem::separator());
    items.push_back(candidateItem());
    if (!tracker.pinnedWindows().empty()) {
        items.push_back(MenuItem::separator());
        items.push_back(informativeItem("Finestre fissate"));
        for (const auto& window : sortedByLabel(tracker.pinnedWindows())) {
            items.push_back(pinnedItem(window));
        }
        items.push_back(MenuItem::separator());
        items.push_back(actionItem("Sblocca tutte", &AppDelegate::unpinAllAction));
    }
    items.push_back(MenuItem::separator());
    items.push_back(actionItem("Impostazioni…", &AppDelegate::openSettings, ","));
    items.push_back(MenuItem::separator());
    items.push_back(actionItem("Esci da Quillon", &AppDelegate::quit, "q"));
}

MenuItem AppDelegate::actionItem(std::string title, void (AppDelegate::*action)(const MenuItem& sender),
                                 std::string keyEquivalent) {
    MenuItem item;
    item.title = std::move(title);
    item.action = MenuAction(weakly(std::mem_fn(action)));
    item.keyEquivalent = std::move(keyEquivalent);
    return item;
}

/// Pins or unpins the window in front. Opening this menu does not always leave another application's window there,
/// hence the remembered one.
MenuItem AppDelegate::candidateItem() {
    constexpr std::size_t longestName = 30;
    auto candidate = WindowDetector::getFrontmostForeignWindow();
    if (!candidate) {
        candidate = lastForeignWindow;
    }
    if (!candidate) {
        return informativeItem("Nessuna finestra da fissare");
    }
    auto item = actionItem(fmt::format("{} «{}»", tracker.isPinned(candidate->windowID) ? "Sblocca" : "Fissa",
                                       cutToCharacters(candidate->titleOrOwnerName(), longestName)),
                           &AppDelegate::toggleFrontmost);
    item.representedObject = *candidate;
    return item;
}

MenuItem AppDelegate::pinnedItem(const PinnedWindow& window) {
    auto item = actionItem("  " + window.displayLabel(), &AppDelegate::unpinMenuItem);
    item.representedObject = window.windowID;
    item.isOn = true;
    return item;
}

void AppDelegate::openAbout(const MenuItem& /*sender*/) {
    PellamAboutView::showWindow(applicationName);
}

/// What is pinned may have changed since the menu was opened.
void AppDelegate::toggleFrontmost(const MenuItem& sender) {
    if (const auto* window = std::any_cast<ForeignWindow>(&sender.representedObject)) {
        togglePin(*window);
    }
}

void AppDelegate::unpinMenuItem(const MenuItem& sender) {
    if (const auto* windowID = std::any_cast<WindowID>(&sender.representedObject)) {
        tracker.unpin(*windowID);
    }
}

void AppDelegate::unpinAllAction(const MenuItem& /*sender*/) {
    tracker.unpinAll();
}

void AppDelegate::openSettings(const MenuItem& /*sender*/) {
    PellamSettingsView::showWindow(applicationName, true, [this] {
        return std::make_unique<QuillonSettingsContent>(tracker, shared_from_this());
    });
}

void AppDelegate::quit(const MenuItem& /*sender*/) {
    tracker.unpinAll();
    sharedApplication().terminate();
}

} // namespace quillon
