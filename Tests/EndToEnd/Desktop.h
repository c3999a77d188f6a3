#pragma once

#include "Program.h"

#include <array>
#include <filesystem>
#include <memory>
#include <ostream>

namespace quillon::e2e {

enum class WindowManager {
    none,
    openbox,
    /// With its compositor on.
    xfwm4,
};
/// For the names of tests.
inline void PrintTo(WindowManager windowManager, std::ostream* stream) {
    constexpr std::array names{"none", "openbox", "xfwm4"};
    *stream << names.at(static_cast<std::size_t>(windowManager));
}

struct DesktopOptions {
    WindowManager windowManager = WindowManager::openbox;
    /// The Xft.dpi resource.
    int dpi = 96;
    /// Whether an accessibility bus is installed.
    bool hasAccessibility = true;
    /// For the X server, beside those that every test needs.
    std::vector<std::string> serverOptions{};
};

/// A desktop of the test's own: an X server, a D-Bus session, a window manager and empty user directories. All
/// of it ends with the object.
class Desktop {
public:
    explicit Desktop(const DesktopOptions& options);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// What programs of this desktop run with: nothing of the environment of the test but the path, and settings
    /// that keep the pictures of toolkits still (no blinking, no animations).
    [[nodiscard]] const Environment& environment() const { return variables; }
    [[nodiscard]] const std::string& displayName() const { return variables.at("DISPLAY"); }
    [[nodiscard]] const std::filesystem::path& directory() const { return root; }

    [[nodiscard]] std::unique_ptr<Program> start(const Command& command) const;

    /// Starts the accessibility bus, or a new one in its place. Programs that are started from now on are on it.
    void startAccessibilityBus();
    /// Switches the session's accessibility on or off, as the desktop's own settings do. Starts the bus if there is
    /// none.
    void setAccessibilityEnabled(bool isEnabled);
    /// Starts the bus if there is none.
    [[nodiscard]] bool isAccessibilityEnabled() const;

    /// The X server ends, and everything on it with it.
    void stopServer();

private:
    void makeDirectories();
    void startServer(const DesktopOptions& options);
    void startSessionBus(const DesktopOptions& options);
    void startWindowManager(const DesktopOptions& options);
    [[nodiscard]] std::string askAccessibilityBus(const std::string& method, const Command& arguments) const;

    std::filesystem::path root;
    Environment variables;
    /// In the order of their start; ended in the opposite order.
    std::vector<std::unique_ptr<Program>> programs;
    std::unique_ptr<Program> accessibilityBus;
};

} // namespace quillon::e2e
