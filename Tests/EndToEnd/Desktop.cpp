#include "Desktop.h"

#include "XClient.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <tuple>
#include <unistd.h>

namespace quillon::e2e {

namespace {

/// A program that writes one line into a pipe, whose number it is told, when it is ready.
struct Announced {
    std::unique_ptr<Program> program;
    std::string line;
};

Announced startAnnounced(Command command, const Environment& environment, int deathSignal) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    command.back() += std::to_string(pipe[1]);
    auto program = std::make_unique<Program>(command, environment,
                                             Program::Options{.inherited = {pipe[1]}, .deathSignal = deathSignal});
    close(pipe[1]);
    const auto line = readLine(pipe[0], stepBound);
    close(pipe[0]);
    if (!line) {
        throw std::runtime_error(command.front() + " did not start: " + program->errors());
    }
    return {std::move(program), *line};
}

} // namespace

Desktop::Desktop(const DesktopOptions& options) {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillon-desktop-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no directory for the desktop");
    }
    root = pattern;
    makeDirectories();
    startServer(options);
    startSessionBus(options);
    startWindowManager(options);
}

Desktop::~Desktop() {
    accessibilityBus.reset();
    while (!programs.empty()) {
        programs.pop_back();
    }
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

void Desktop::makeDirectories() {
    const auto* path = std::getenv("PATH");
    variables = {
        {"PATH", path != nullptr ? path : "/usr/bin:/bin"},
        {"LANG", "C.UTF-8"},
        {"LC_ALL", "C.UTF-8"},
        {"NO_AT_BRIDGE", "1"},
        {"GTK_A11Y", "none"},
        {"QT_ACCESSIBILITY", "0"},
        {"GTK_THEME", "Adwaita"},
        {"QT_QPA_PLATFORM", "xcb"},
        {"QT_STYLE_OVERRIDE", "Fusion"},
    };
    // The sanitizers of the program under test.
    for (const auto* options : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(options)) {
            variables[options] = value;
        }
    }
    const std::array<std::pair<const char*, const char*>, 6> directories{{
        {"HOME", "home"},
        {"XDG_CONFIG_HOME", "config"},
        {"XDG_STATE_HOME", "state"},
        {"XDG_DATA_HOME", "data"},
        {"XDG_CACHE_HOME", "cache"},
        {"XDG_RUNTIME_DIR", "runtime"},
    }};
    for (const auto& [variable, name] : directories) {
        const auto directory = root / name;
        std::filesystem::create_directory(directory);
        std::filesystem::permissions(directory, std::filesystem::perms::owner_all);
        variables[variable] = directory.string();
    }
    const auto gtk = root / "config" / "gtk-3.0";
    std::filesystem::create_directory(gtk);
    std::ofstream(gtk / "settings.ini") << "[Settings]\ngtk-cursor-blink=0\ngtk-enable-animations=0\n";
}

void Desktop::startServer(const DesktopOptions& options) {
    // Without auto-repeat (-r): on a busy machine a key may stay down for long before its release is looked at.
    Command command{"Xvfb", "-r", "-screen", "0", "1600x1200x24", "-noreset", "-nolisten", "tcp"};
    command.insert(command.end(), options.serverOptions.begin(), options.serverOptions.end());
    command.insert(command.end(), {"-displayfd", ""});
    // Asked to end, the server removes its lock file and socket.
    auto server = startAnnounced(command, variables, SIGTERM);
    variables["DISPLAY"] = ":" + server.line;
    programs.push_back(std::move(server.program));
}

void Desktop::startSessionBus(const DesktopOptions& options) {
    const auto address = "unix:path=" + (root / "runtime" / "bus").string();
    std::string configuration = "--session";
    if (!options.hasAccessibility) {
        // Of a bus that can start no service.
        const auto file = root / "bus.conf";
        std::ofstream(file) << "<busconfig><type>session</type><listen>" << address
                            << "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                               "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n";
        configuration = "--config-file=" + file.string();
    }
    auto bus = startAnnounced({"dbus-daemon", configuration, "--nofork", "--address=" + address, "--print-address="},
                              variables, SIGKILL);
    variables["DBUS_SESSION_BUS_ADDRESS"] = address;
    programs.push_back(std::move(bus.program));
}

void Desktop::startWindowManager(const DesktopOptions& options) {
    XClient client(displayName());
    client.setResourceManager("Xft.dpi:\t" + std::to_string(options.dpi) + "\n");
    if (options.windowManager == WindowManager::none) {
        return;
    }
    const bool compositing = options.windowManager == WindowManager::xfwm4;
    programs.push_back(start(compositing ? Command{"xfwm4", "--compositor=on"} : Command{"openbox", "--sm-disable"}));
    const bool ready = client.waitUntil([&] { return !compositing || client.hasCompositor(); }) &&
                       client.waitUntil([&] { return client.managesNewWindows(); });
    if (!ready) {
        throw std::runtime_error("the window manager did not start: " + programs.back()->errors());
    }
}

void Desktop::startAccessibilityBus() {
    accessibilityBus.reset();
    const auto sockets = root / "runtime" / "at-spi";
    std::filesystem::remove_all(sockets);
    for (const auto* variable : {"NO_AT_BRIDGE", "GTK_A11Y", "QT_ACCESSIBILITY"}) {
        variables.erase(variable);
    }
    variables["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    accessibilityBus = start({"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"});
    const bool isListening = XClient(displayName()).waitUntil([&] {
        return std::filesystem::exists(sockets) && !std::filesystem::is_empty(sockets);
    });
    if (!isListening) {
        throw std::runtime_error("the accessibility bus did not start: " + accessibilityBus->errors());
    }
}

void Desktop::setAccessibilityEnabled(bool isEnabled) {
    if (!accessibilityBus) {
        startAccessibilityBus();
    }
    std::ignore = askAccessibilityBus("Set", {std::string("variant:boolean:") + (isEnabled ? "true" : "false")});
}

bool Desktop::isAccessibilityEnabled() const {
    return askAccessibilityBus("Get", {}).find("boolean true") != std::string::npos;
}

std::string Desktop::askAccessibilityBus(const std::string& method, const Command& arguments) const {
    Command command{"dbus-send",
                    "--session",
                    "--print-reply",
                    "--dest=org.a11y.Bus",
                    "/org/a11y/bus",
                    "org.freedesktop.DBus.Properties." + method,
                    "string:org.a11y.Status",
                    "string:IsEnabled"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto outcome = run(command, variables);
    if (outcome.status != 0) {
        throw std::runtime_error("the accessibility bus does not answer: " + outcome.errors);
    }
    return outcome.output;
}

void Desktop::stopServer() {
    auto& server = *programs.front();
    server.send(SIGTERM);
    server.waitForExit(stepBound);
}

std::unique_ptr<Program> Desktop::start(const Command& command) const {
    return std::make_unique<Program>(command, variables);
}

} // namespace quillon::e2e
