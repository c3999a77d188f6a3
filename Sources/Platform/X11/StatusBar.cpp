#include "Platform/StatusBar.h"

#include "Platform/X11/DesktopAppearance.h"
#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/Handlers.h"
#include "Platform/X11/NotifierHost.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/PopUpMenu.h"
#include "Platform/X11/StatusNotifierItem.h"
#include "Platform/X11/TrayIcon.h"
#include "Platform/X11/TrayManager.h"

namespace quillon::x11 {

namespace {

/// The desktop's places for icons, and what goes with them.
struct Trays {
    Trays(Connection& connection, Scheduler& scheduler, DesktopAppearance& appearance)
        : connection(connection), scheduler(scheduler), appearance(appearance), formats(connection),
          manager(connection), menus(connection, scheduler) {
        appearance.follow();
        host.onChange = manager.onChange = [this] { changes.call(Change::places); };
        appearance.onChange = [this] { changes.call(Change::appearance); };
    }

    [[nodiscard]] bool hasHost() const { return host.state() == NotifierHost::State::present; }
    [[nodiscard]] bool hasManager() const { return manager.window() != XCB_NONE; }
    /// Panels over D-Bus go first, as they draw the menu in their own style. Until it is known whether there is one
    /// the icon waits, so that it does not move.
    [[nodiscard]] bool isManagerInUse() const { return hasManager() && host.state() == NotifierHost::State::absent; }

    Connection& connection;
    Scheduler& scheduler;
    DesktopAppearance& appearance;
    PictureFormats formats;
    NotifierHost host;
    TrayManager manager;
    PopUpMenu menus;
    enum class Change { places, appearance };
    Handlers<Change> changes;
};

/// Shown by the panel over D-Bus if there is one, else in the XEmbed tray if there is one. One at a time: panels know
/// one icon of a process.
class X11StatusItem final : public StatusItem, private StatusBarButton {
public:
    explicit X11StatusItem(Trays& trays) : trays(trays) {
        placesChange = trays.changes.add(Trays::Change::places, [this] { place(); });
        appearanceChange = trays.changes.add(Trays::Change::appearance, [this] { showImage(); });
    }
    ~X11StatusItem() override { trays.menus.close(); }

    void setAutosaveName(std::string_view newName) override { name = newName; }
    [[nodiscard]] StatusBarButton* button() override { return this; }
    /// The item is complete with its menu, and placed.
    void setMenu(std::shared_ptr<Menu> newMenu) override {
        menu = std::move(newMenu);
        if (notifier) {
            notifier->setMenu(menu);
        }
        place();
    }

private:
    void setImage(std::shared_ptr<Image> newImage) override {
        image = std::move(newImage);
        showImage();
    }
    // Trays show no text beside their icons.
    void setTitle(std::string_view /*title*/) override {}
    void setToolTip(std::string_view newToolTip) override {
        toolTip = newToolTip;
        showToolTip();
    }

    void place() {
        if (!menu) {
            return;
        }
        if (!trays.isManagerInUse()) {
            icon.reset();
        } else if (!icon || icon->tray() != trays.manager.window()) {
            icon = std::make_unique<TrayIcon>(trays.connection, trays.scheduler, trays.formats, trays.manager, name);
            icon->onClick = [this] { openMenu(); };
            showImage();
            showToolTip();
        }
        if (!trays.hasHost()) {
            notifier.reset();
            return;
        }
        if (!notifier) {
            notifier = std::make_unique<StatusNotifierItem>(name);
            notifier->onClick = [this] { openMenu(); };
            notifier->setMenu(menu);
            showImage();
            showToolTip();
        }
        trays.host.registerItem(notifier->service());
    }

    void showImage() {
        const auto appearance = trays.appearance.current();
        if (icon) {
            icon->setImage(image, appearance);
        }
        if (notifier) {
            notifier->setImage(image, appearance);
        }
    }

    void showToolTip() {
        if (icon) {
            icon->setToolTip(toolTip);
        }
        if (notifier) {
            notifier->setToolTip(toolTip);
        }
    }

    void openMenu() { trays.menus.open(menu); }

    Trays& trays;
    std::string name;
    std::shared_ptr<Image> image;
    std::string toolTip;
    std::shared_ptr<Menu> menu;
    std::unique_ptr<TrayIcon> icon;
    std::unique_ptr<StatusNotifierItem> notifier;
    RegistrationToken placesChange;
    RegistrationToken appearanceChange;
};

class X11StatusBar final : public StatusBar {
public:
    X11StatusBar(Connection& connection, Scheduler& scheduler, DesktopAppearance& appearance)
        : connection(connection), scheduler(scheduler), appearance(appearance) {}

    /// Trays scale the icon to a size of their own, whatever it was drawn for; this is the height of a menu bar.
    [[nodiscard]] double thickness() const override { return 24; }
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override {
        return std::make_unique<X11StatusItem>(trays());
    }
    [[nodiscard]] bool showsItems() const override { return trays().hasHost() || trays().hasManager(); }
    bool popUpMenuAtPointer(std::shared_ptr<Menu> menu) override { return trays().menus.open(std::move(menu)); }

private:
    /// Made with the first need: a command that only looks at windows has none.
    Trays& trays() const {
        if (!usedTrays) {
            usedTrays = std::make_unique<Trays>(connection, scheduler, appearance);
        }
        return *usedTrays;
    }

    Connection& connection;
    Scheduler& scheduler;
    DesktopAppearance& appearance;
    mutable std::unique_ptr<Trays> usedTrays;
};

} // namespace

std::unique_ptr<StatusBar> makeStatusBar(Connection& connection, Scheduler& scheduler, DesktopAppearance& appearance) {
    return std::make_unique<X11StatusBar>(connection, scheduler, appearance);
}

} // namespace quillon::x11
