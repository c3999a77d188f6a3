#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The keys of the user defaults and the rules for reading them. Nothing registers defaults: an absent key
/// reads as false or 0, and every reader applies its own default to that. Any thread.
namespace quillon::Defaults {

/// Double, frames per second.
inline constexpr std::string_view captureRate = "captureRate";
/// Bool.
inline constexpr std::string_view forwardEvents = "forwardEvents";
/// Bool.
inline constexpr std::string_view pinToAllSpaces = "pinToAllSpaces";
/// Integer, the global shortcut's virtual key code.
inline constexpr std::string_view shortcutKeyCode = "shortcutKeyCode";
/// Integer, the global shortcut's modifier bits.
inline constexpr std::string_view shortcutModifiers = "shortcutModifiers";
/// Bool; set by hand.
inline constexpr std::string_view debugLogging = "debugLogging";
/// Double, scroll-bar value per point of scroll delta; set by hand.
inline constexpr std::string_view axScrollSensitivity = "axScrollSensitivity";
/// Bool; scrolling through Accessibility is tried when a copy gets its first picture; set by hand.
inline constexpr std::string_view axScrollProbe = "axScrollProbe";
/// Bool; the system's Accessibility prompt was shown once.
inline constexpr std::string_view didPromptForAccessibility = "didPromptForAccessibilityStableIdentity";
/// Bool; the status icon is drawn on a pill.
inline constexpr std::string_view menuBarPillEnabled = "menuBarPillEnabled";
/// No longer read by anything; deleted at launch.
inline constexpr std::string_view menuBarPillColor = "menuBarPillColor";
/// Bool; `menuBarPillColor` was deleted.
inline constexpr std::string_view didMigratePillColor = "didMigratePillColorV2";

/// The value when it is stored as a truth; none for any other value.
[[nodiscard]] std::optional<bool> storedBool(std::string_view key);

/// The value as a truth (NSUserDefaults boolForKey:): a number is true unless it is 0; a text is true when it
/// starts, after blanks and a sign and zeros, with Y, y, T, t or a digit from 1 to 9; anything else is false.
[[nodiscard]] bool boolForKey(std::string_view key);

/// The value as a number (NSUserDefaults doubleForKey:): a truth is 1 or 0, a text counts as the number it
/// starts with; anything else is 0.
[[nodiscard]] double doubleForKey(std::string_view key);

/// The value as a whole number (NSUserDefaults integerForKey:): a truth is 1 or 0, a number loses its decimals, a
/// text counts as the whole number it starts with; what is too large is the largest there is; anything else is 0.
[[nodiscard]] std::int64_t integerForKey(std::string_view key);

} // namespace quillon::Defaults
