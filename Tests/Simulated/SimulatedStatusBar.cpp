#include "Simulated/SimulatedStatusBar.h"

#include "Simulated/Misuse.h"

#include <algorithm>
#include <cctype>

namespace quillon::simulated {

namespace {

std::string describeKeyEquivalent(const MenuItem& item) {
    if (item.keyEquivalent.empty()) {
        return "";
    }
    const auto letter = static_cast<unsigned char>(item.keyEquivalent.front());
    const auto holds = [&](ModifierFlags flag) { return (item.keyEquivalentModifierMask & flag) != 0; };
    return fmt::format(" {}{}{}{}{}", holds(modifierFlagControl) ? "⌃" : "", holds(modifierFlagOption) ? "⌥" : "",
                       holds(modifierFlagShift) || std::isupper(letter) != 0 ? "⇧" : "",
                       holds(modifierFlagCommand) ? "⌘" : "", static_cast<char>(std::toupper(letter)));
}

std::string describe(const MenuItem& item) {
    if (item.isSeparator) {
        return "---";
    }
    const auto title = item.isEnabled ? item.title : "[" + item.title + "]";
    return (item.isOn ? "✓ " : "") + title + describeKeyEquivalent(item);
}

} // namespace

std::vector<std::string> describe(const std::vector<MenuItem>& items) {
    std::vector<std::string> lines;
    for (const auto& item : items) {
        lines.push_back(describe(item));
        if (item.submenu) {
            for (const auto& line : describe(item.submenu->items)) {
                lines.push_back("> " + line);
            }
        }
    }
    return lines;
}

void SimulatedStatusBarButton::setImage(std::shared_ptr<Image> image) {
    require("StatusBarButton::setImage");
    currentImage = bar.images.require(image, "StatusBarButton::setImage");
    bar.journal.record("statusBarButton.setImage {}", currentImage ? currentImage->description() : "none");
}

void SimulatedStatusBarButton::setTitle(std::string_view title) {
    require("StatusBarButton::setTitle");
    bar.journal.record("statusBarButton.setTitle {}", title);
    currentTitle = title;
}

void SimulatedStatusBarButton::setToolTip(std::string_view toolTip) {
    require("StatusBarButton::setToolTip");
    bar.journal.record("statusBarButton.setToolTip {}", toolTip);
    currentToolTip = toolTip;
}

void SimulatedStatusBarButton::setRemoved() {
    isRemoved = true;
    currentImage.reset();
}

void SimulatedStatusBarButton::require(std::string_view operation) const {
    bar.scheduler.requireMain(operation);
    if (isRemoved) {
        misuse(fmt::format("{} after its item was removed", operation));
    }
}

SimulatedStatusItem::SimulatedStatusItem(SimulatedStatusBar& bar)
    : bar(bar), ownButton(*bar.buttons.emplace_back(std::make_unique<SimulatedStatusBarButton>(bar))) {
    bar.living.push_back(this);
}

SimulatedStatusItem::~SimulatedStatusItem() {
    bar.scheduler.requireMain("destroying a status item");
    bar.journal.record("statusItem.destroy");
    if (bar.open && bar.open->owner == this) {
        bar.open.reset();
    }
    ownButton.setRemoved();
    std::erase(bar.living, this);
}

void SimulatedStatusItem::setAutosaveName(std::string_view name) {
    bar.scheduler.requireMain("StatusItem::setAutosaveName");
    bar.journal.record("statusItem.setAutosaveName {}", name);
    currentAutosaveName = name;
    if (const auto remembered = bar.rememberedPositions.find(currentAutosaveName);
        remembered != bar.rememberedPositions.end()) {
        currentPosition = remembered->second;
    }
}

SimulatedStatusBarButton* SimulatedStatusItem::button() {
    bar.scheduler.requireMain("StatusItem::button");
    return bar.givesButtons ? &ownButton : nullptr;
}

void SimulatedStatusItem::setMenu(std::shared_ptr<Menu> menu) {
    bar.scheduler.requireMain("StatusItem::setMenu");
    bar.journal.record("statusItem.setMenu");
    currentMenu = std::move(menu);
}

double SimulatedStatusItem::position() const {
    return currentPosition;
}

void SimulatedStatusItem::drag(double newPosition) {
    currentPosition = newPosition;
    if (!currentAutosaveName.empty()) {
        bar.rememberedPositions[currentAutosaveName] = newPosition;
    }
}

double SimulatedStatusBar::thickness() const {
    scheduler.requireMain("StatusBar::thickness");
    return currentThickness;
}

std::unique_ptr<StatusItem> SimulatedStatusBar::makeStatusItem() {
    scheduler.requireMain("StatusBar::makeStatusItem");
    journal.record("statusBar.makeStatusItem");
    return std::make_unique<SimulatedStatusItem>(*this);
}

bool SimulatedStatusBar::showsItems() const {
    scheduler.requireMain("StatusBar::showsItems");
    return isPresent;
}

bool SimulatedStatusBar::popUpMenuAtPointer(std::shared_ptr<Menu> menu) {
    scheduler.requireMain("StatusBar::popUpMenuAtPointer");
    if (!menu) {
        misuse("StatusBar::popUpMenuAtPointer without a menu");
    }
    journal.record("statusBar.popUpMenuAtPointer");
    if (open) {
        return false;
    }
    openMenu(nullptr, *menu);
    return true;
}

void SimulatedStatusBar::click(SimulatedStatusItem& item) {
    if (!isPresent) {
        misuse("a click on a status item of a desktop without a status bar");
    }
    if (open) {
        misuse("a click on a status item while a menu is open");
    }
    if (!item.menu()) {
        misuse("a click on a status item without a menu");
    }
    openMenu(&item, *item.menu());
}

void SimulatedStatusBar::openMenu(const SimulatedStatusItem* owner, Menu& menu) {
    if (const auto delegate = menu.delegate.lock()) {
        delegate->menuNeedsUpdate(menu);
    }
    open = std::make_unique<OpenMenu>(OpenMenu{owner, menu.items});
}

const std::vector<MenuItem>& SimulatedStatusBar::openItems() const {
    if (!open) {
        misuse("no menu is open");
    }
    return open->items;
}

void SimulatedStatusBar::choose(std::string_view title) {
    const auto& items = openItems();
    const auto isWanted = [&](const MenuItem& item) { return !item.isSeparator && item.title == title; };
    if (std::ranges::count_if(items, isWanted) != 1) {
        misuse(fmt::format("the open menu has not one item «{}»", title));
    }
    const auto chosen = *std::ranges::find_if(items, isWanted);
    const auto* action = std::get_if<MenuAction>(&chosen.action);
    if (!chosen.isEnabled || action == nullptr) {
        misuse(fmt::format("the item «{}» cannot be chosen", title));
    }
    open.reset();
    (*action)(chosen);
}

void SimulatedStatusBar::dismissMenu() {
    static_cast<void>(openItems());
    open.reset();
}

} // namespace quillon::simulated
