#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quillon::x11 {

/// The directory that the environment variable names, else the place inside the home directory; none when the user
/// has no home directory. A relative path in the variable counts as none, as the desktop's rules for directories
/// want it. `placeInHome` begins with a slash.
[[nodiscard]] std::optional<std::string> userDirectory(const char* variable, const std::string& placeInHome);

/// Where programs look for their data, the user's own place first: XDG_DATA_HOME and XDG_DATA_DIRS or their defaults.
[[nodiscard]] std::vector<std::string> dataDirectories();

/// Creates the directory and those above it that are missing, with those permission bits. Errors show when the
/// directory is used.
void createDirectories(const std::string& path, unsigned permissions);

} // namespace quillon::x11
