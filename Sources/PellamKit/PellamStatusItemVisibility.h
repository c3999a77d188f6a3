#pragma once

#include <string_view>

/// Whether the user has hidden the status item. Main thread.
namespace quillon::PellamStatusItemVisibility {

/// Local notification, posted after each change.
inline constexpr std::string_view didChangeNotification = "kit.pellam.PellamKit.StatusItemVisibilityDidChange";

[[nodiscard]] bool isVisible();
/// Stores and announces the change; does nothing when it is none.
void setVisible(bool visible);
/// The user opened the running application again: the way back to a hidden item.
void handleReopen();

} // namespace quillon::PellamStatusItemVisibility
