#pragma once

#include "Platform/StatusBar.h"
#include "Simulated/SimulatedImages.h"
#include "Simulated/SimulatedScheduler.h"

#include <map>
#include <string>
#include <vector>

namespace quillon::simulated {

class SimulatedStatusBar;
class SimulatedStatusItem;

/// A line of text for each item: "---" for a separator, "[title]" for a disabled item, "✓ title" for one with a check
/// mark, "title ⇧⌘Z" for one with a key equivalent; the items of a submenu follow their own line, each after "> ".
[[nodiscard]] std::vector<std::string> describe(const std::vector<MenuItem>& items);

/// Stops the test when it is used after its item was removed.
class SimulatedStatusBarButton final : public StatusBarButton {
public:
    explicit SimulatedStatusBarButton(SimulatedStatusBar& bar) : bar(bar) {}

    void setImage(std::shared_ptr<Image> image) override;
    void setTitle(std::string_view title) override;
    void setToolTip(std::string_view toolTip) override;

    /// Null for none.
    [[nodiscard]] const std::shared_ptr<SimulatedImage>& image() const { return currentImage; }
    [[nodiscard]] const std::string& title() const { return currentTitle; }
    [[nodiscard]] const std::string& toolTip() const { return currentToolTip; }

private:
    friend SimulatedStatusItem;

    void setRemoved();
    void require(std::string_view operation) const;

    SimulatedStatusBar& bar;
    bool isRemoved = false;
    std::shared_ptr<SimulatedImage> currentImage;
    /// As the system makes it.
    std::string currentTitle = "Item";
    std::string currentToolTip;
};

class SimulatedStatusItem final : public StatusItem {
public:
    explicit SimulatedStatusItem(SimulatedStatusBar& bar);
    ~SimulatedStatusItem() override;

    void setAutosaveName(std::string_view name) override;
    [[nodiscard]] SimulatedStatusBarButton* button() override;
    void setMenu(std::shared_ptr<Menu> menu) override;

    [[nodiscard]] const std::string& autosaveName() const { return currentAutosaveName; }
    /// Null before any was set.
    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return currentMenu; }
    /// Distance from the bar's right end, in points.
    [[nodiscard]] double position() const;
    /// The user drags it there. The bar remembers that for the next item of the same autosave name.
    void drag(double newPosition);

private:
    SimulatedStatusBar& bar;
    SimulatedStatusBarButton& ownButton;
    std::string currentAutosaveName;
    std::shared_ptr<Menu> currentMenu;
    double currentPosition = 0;
};

/// A bar 24 points high. One menu is open at a time.
class SimulatedStatusBar final : public StatusBar {
public:
    SimulatedStatusBar(SimulatedScheduler& scheduler, const SimulatedImages& images, Journal& journal)
        : scheduler(scheduler), images(images), journal(journal) {}

    [[nodiscard]] double thickness() const override;
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override;
    [[nodiscard]] bool showsItems() const override;
    /// False while another menu is open.
    bool popUpMenuAtPointer(std::shared_ptr<Menu> menu) override;

    /// Announced by nobody; a change of the screens is.
    void setThickness(double thickness) { currentThickness = thickness; }
    /// Whether the desktop has a status bar at all.
    void setPresent(bool present) { isPresent = present; }
    /// Whether items are given a button.
    void setGivesButtons(bool gives) { givesButtons = gives; }

    /// The living items in the order of their creation.
    [[nodiscard]] const std::vector<SimulatedStatusItem*>& items() const { return living; }
    /// The user clicks on the item: its menu opens.
    void click(SimulatedStatusItem& item);
    [[nodiscard]] bool isMenuOpen() const { return open != nullptr; }
    /// What the open menu shows.
    [[nodiscard]] const std::vector<MenuItem>& openItems() const;
    /// The user chooses the one item of that title in the open menu, which closes before anything is done.
    void choose(std::string_view title);
    /// The user closes the open menu without choosing anything.
    void dismissMenu();

private:
    friend SimulatedStatusBarButton;
    friend SimulatedStatusItem;

    /// A menu on screen: what it held when it opened.
    struct OpenMenu {
        /// Null for a menu at the pointer.
        const SimulatedStatusItem* owner;
        std::vector<MenuItem> items;
    };

    void openMenu(const SimulatedStatusItem* owner, Menu& menu);

    SimulatedScheduler& scheduler;
    const SimulatedImages& images;
    Journal& journal;
    std::vector<SimulatedStatusItem*> living;
    /// Those of removed items too, to notice a use of one.
    std::vector<std::unique_ptr<SimulatedStatusBarButton>> buttons;
    /// By autosave name.
    std::map<std::string, double> rememberedPositions;
    std::unique_ptr<OpenMenu> open;
    double currentThickness = 24;
    bool isPresent = true;
    bool givesButtons = true;
};

} // namespace quillon::simulated
