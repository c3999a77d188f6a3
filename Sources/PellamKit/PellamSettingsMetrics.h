#pragma once

#include "Platform/Geometry.h"
#include "Platform/Scheduler.h"
#include "Platform/Screens.h"

#include <array>
#include <optional>

/// The settings window's sizes, in points, and times. Main thread.
namespace quillon::PellamSettingsMetrics {

/// When the form is scrolled to its top after the window was made: its layout settles over several turns.
inline constexpr std::array<Seconds, 3> scrollSettleDelays{Seconds(0), Seconds(0.05), Seconds(0.25)};

inline constexpr Size minimumContentSize{420, 400};

/// The size for a content that wants `fitting`: at most four fifths of what the screen leaves free, title bar included,
/// and never less than the minimum.
[[nodiscard]] Size contentSize(const Size& fitting, const std::optional<Screen>& screen);

} // namespace quillon::PellamSettingsMetrics
