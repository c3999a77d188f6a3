#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace quillon {

/// A process identifier (pid_t).
using ProcessID = std::int32_t;

struct OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;

    auto operator<=>(const OperatingSystemVersion&) const = default;
};

/// This process and the system under it (NSProcessInfo, NSBundle). Any thread; the answers do not change
/// while the process runs.
class ProcessInfo {
public:
    virtual ~ProcessInfo() = default;

    [[nodiscard]] virtual ProcessID processIdentifier() const = 0;
    /// The name of the program that the process runs.
    [[nodiscard]] virtual std::string processName() const = 0;
    /// The macOS version whose input routing the platform follows.
    [[nodiscard]] virtual OperatingSystemVersion operatingSystemVersion() const = 0;
    /// The main bundle's identifier; none when the program does not run from a bundle.
    [[nodiscard]] virtual std::optional<std::string> bundleIdentifier() const = 0;
};

} // namespace quillon
