#pragma once

#include "Platform/Images.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The status item's image: a system symbol, on a pill of its own where the user wants one. Main thread.
namespace quillon::PellamMenuBarPill {

/// Null when the system has no such symbol. Without a tint and a pill, the menu bar colours the image.
[[nodiscard]] std::shared_ptr<Image> icon(std::string_view symbolName, double pointSize, FontWeight weight,
                                          const std::optional<Color>& tint,
                                          const std::optional<std::string>& accessibilityDescription);

} // namespace quillon::PellamMenuBarPill
