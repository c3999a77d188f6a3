#pragma once

#include "Platform/Images.h"
#include "Platform/Menu.h"

#include <memory>
#include <string>
#include <string_view>

namespace quillon {

/// What a status item looks like (NSStatusBarButton). Main thread.
class StatusBarButton {
public:
    virtual ~StatusBarButton() = default;

    /// Null for no image.
    virtual void setImage(std::shared_ptr<Image> image) = 0;
    virtual void setTitle(std::string_view title) = 0;
    virtual void setToolTip(std::string_view toolTip) = 0;
};

/// An icon with a menu in the system's status bar (NSStatusItem). It comes back by itself when the bar was away.
/// Destroying it removes it from the bar. Main thread.
class StatusItem {
public:
    StatusItem() = default;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    virtual ~StatusItem() = default;

    /// The name under which the system remembers where the user has put the item.
    virtual void setAutosaveName(std::string_view name) = 0;
    /// Null when the system gives the item none.
    [[nodiscard]] virtual StatusBarButton* button() = 0;
    /// Opened by a click on the item. Its delegate is asked right before.
    virtual void setMenu(std::shared_ptr<Menu> menu) = 0;
};

/// The row of small icons that the desktop keeps on screen (NSStatusBar.systemStatusBar). Main thread.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// Height of the bar, in points.
    [[nodiscard]] virtual double thickness() const = 0;
    /// As wide as its content (NSVariableStatusItemLength).
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
    /// False while the desktop has no place for status items at all.
    [[nodiscard]] virtual bool showsItems() const = 0;
    /// Opens a menu at the pointer, after asking its delegate, and returns; at once where the platform lets menus
    /// stay open by themselves, otherwise when it has closed. False when it cannot be opened now.
    virtual bool popUpMenuAtPointer(std::shared_ptr<Menu> menu) = 0;
};

} // namespace quillon
