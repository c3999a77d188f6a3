// Starting where something is missing: one clear line and the documented exit status.

#include "EndToEndTest.h"

#include <algorithm>

namespace quillon::e2e {

namespace {

constexpr int noDisplay = 3;

void expectOneLineAndStatus(const Outcome& outcome, int status) {
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_GT(outcome.errors.size(), 1U);
}

class Start : public EndToEndTest {
protected:
    [[nodiscard]] static Outcome runIn(const Environment& environment, const std::vector<std::string>& arguments = {}) {
        Command command{quillonPath()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command, environment);
    }
};

TEST_F(Start, WithoutADisplay) {
    auto environment = desktop.environment();
    environment.erase("DISPLAY");
    expectOneLineAndStatus(runIn(environment), noDisplay);
    expectOneLineAndStatus(runIn(environment, {"--list-windows"}), noDisplay);
}

TEST_F(Start, UnderWaylandWithoutAnXServer) {
    auto environment = desktop.environment();
    environment.erase("DISPLAY");
    environment["WAYLAND_DISPLAY"] = "wayland-0";
    const auto outcome = runIn(environment);
    expectOneLineAndStatus(outcome, noDisplay);
    EXPECT_NE(outcome.errors.find("Wayland"), std::string::npos) << outcome.errors;
}

TEST_F(Start, WithADisplayThatDoesNotAnswer) {
    auto environment = desktop.environment();
    environment["DISPLAY"] = ":32000";
    expectOneLineAndStatus(runIn(environment), noDisplay);
}

TEST_F(Start, HelpAndVersionNeedNoDisplay) {
    const Environment nothing{{"PATH", desktop.environment().at("PATH")}};
    for (const std::string option : {"--help", "--version"}) {
        const auto outcome = runIn(nothing, {option});
        EXPECT_EQ(outcome.status, 0) << option;
        EXPECT_NE(outcome.output, "") << option;
        EXPECT_EQ(outcome.errors, "") << option;
    }
}

TEST_F(Start, WithoutASessionBus) {
    auto environment = desktop.environment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus";
    const auto outcome = runIn(environment, {"list"});
    EXPECT_TRUE(outcome.status && *outcome.status > 0 && *outcome.status < 128) << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
}

TEST(StartOnAServer, WithoutCompositeSaysSo) {
    const Desktop desktop({.windowManager = WindowManager::none, .serverOptions = {"-extension", "Composite"}});
    const auto outcome = run({quillonPath()}, desktop.environment());
    expectOneLineAndStatus(outcome, noDisplay);
    EXPECT_NE(outcome.errors.find("Composite"), std::string::npos) << outcome.errors;
}

TEST(StartOnAServer, WithoutAWindowManagerStillRuns) {
    const Desktop desktop({.windowManager = WindowManager::none});
    QuillonProgram quillon(desktop);
    quillon.start();
    EXPECT_EQ(quillon.command({"list"}).status, 0);
    EXPECT_EQ(quillon.command({"toggle"}).status, 1);
    EXPECT_EQ(quillon.stop(), 0);
}

} // namespace

} // namespace quillon::e2e
