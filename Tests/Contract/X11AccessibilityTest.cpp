// What programs of each toolkit tell on the accessibility bus, and what becomes of a bus or a program that fails.

#include "Desktop.h"
#include "XClient.h"

#include "AccessibilityReading.h"
#include "Platform/X11/QtApplication.h"
#include "Platform/X11/X11Platform.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <future>

namespace quillon::x11 {
namespace {

using Element = std::shared_ptr<AccessibilityElement>;
using Elements = std::vector<Element>;
using Clock = std::chrono::steady_clock;

constexpr Seconds shortTimeout{0.25};

struct RunningWindow {
    std::unique_ptr<e2e::Program> program;
    e2e::Window window = 0;
};

struct ScrollArea {
    DisplayRect frame;
    Element bar;
};

class X11AccessibilityTest : public testing::Test {
protected:
    explicit X11AccessibilityTest(const e2e::DesktopOptions& options = {}) : desktop(options) {
        for (const auto& [name, value] : desktop.environment()) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        auto connection = std::move(std::get<std::unique_ptr<Connection>>(Connection::open()));
        application = makeApplication(connection->scale());
        platform = std::make_unique<X11Platform>(std::move(connection));
    }

    RunningWindow start(const e2e::Command& command) {
        RunningWindow started{desktop.start(command)};
        EXPECT_TRUE(client.waitUntil([&] {
            const auto windows = client.managedWindowsOf(started.program->pid());
            started.window = windows.empty() ? 0 : windows.front();
            return started.window != 0 && client.isViewable(started.window);
        }));
        return started;
    }
    Elements windowsOf(ProcessID pid) {
        const auto read = platform->accessibility().applicationElement(pid)->copyAttributeValue("AXWindows");
        const auto* elements = read.get<Elements>();
        return elements != nullptr ? *elements : Elements();
    }
    /// On another thread than the main one, as in use.
    template <class Action>
    static auto elsewhere(Action action) {
        return std::async(std::launch::async, action).get();
    }
    AccessibilityError errorOfChildren(ProcessID pid) {
        return elsewhere([&] { return windowsOf(pid).at(0)->copyAttributeValue("AXChildren").error; });
    }

    static void collect(const Element& element, int depth, std::vector<ScrollArea>& areas) {
        constexpr int deepest = 11;
        if (depth > deepest) {
            return;
        }
        const auto frame = frameOf(*element);
        const auto bar = copyElement(*element, "AXVerticalScrollBar");
        if (copyString(*element, "AXRole") == "AXScrollArea" && frame && bar &&
            bar->isAttributeSettable("AXValue").isSettable) {
            areas.push_back({*frame, bar});
        }
        const auto children = element->copyAttributeValue("AXChildren");
        if (const auto* elements = children.get<Elements>()) {
            for (const auto& child : *elements) {
                collect(child, depth + 1, areas);
            }
        }
    }
    /// Those that can be scrolled and are on the screen, once there are any.
    std::vector<ScrollArea> awaitAreas(ProcessID pid) {
        std::vector<ScrollArea> areas;
        EXPECT_TRUE(client.waitUntil([&] {
            areas.clear();
            elsewhere([&] {
                for (const auto& window : windowsOf(pid)) {
                    collect(window, 0, areas);
                }
            });
            return !areas.empty();
        }));
        return areas;
    }

    e2e::Desktop desktop;
    e2e::XClient client{desktop.displayName()};
    std::unique_ptr<QApplication> application;
    std::unique_ptr<X11Platform> platform;
};

/// A program of a toolkit under a window manager; GTK draws shadows only where there is a compositor.
struct Toolkit {
    const char* name;
    e2e::Command command;
    e2e::WindowManager windowManager = e2e::WindowManager::openbox;
};
void PrintTo(const Toolkit& toolkit, std::ostream* stream) {
    *stream << toolkit.name;
}

class X11AccessibilityOfToolkits : public X11AccessibilityTest, public testing::WithParamInterface<Toolkit> {
protected:
    X11AccessibilityOfToolkits() : X11AccessibilityTest({.windowManager = GetParam().windowManager}) {}

    RunningWindow startOnBus() {
        desktop.startAccessibilityBus();
        auto command = GetParam().command;
        if (command.front() == "featherpad") {
            const auto text = desktop.directory() / "text.txt";
            std::ofstream file(text);
            for (int line = 1; line <= 500; ++line) {
                file << line << "\n";
            }
            command.push_back(text.string());
        }
        return start(command);
    }
    [[nodiscard]] e2e::Picture screen() const { return client.wholeScreen(); }
};

/// The smallest rectangle with all that differs; empty when nothing does.
DisplayRect changes(const e2e::Picture& before, const e2e::Picture& after) {
    int left = before.width;
    int top = before.height;
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            if (before.at(x, y) != after.at(x, y)) {
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, y);
                bottom = std::max(bottom, y + 1);
            }
        }
    }
    return {{double(left), double(top)}, {double(std::max(right - left, 0)), double(std::max(bottom - top, 0))}};
}

TEST_P(X11AccessibilityOfToolkits, TheBarScrollsWhatItsAreaShows) {
    const auto program = startOnBus();
    const auto areas = awaitAreas(program.program->pid());
    ASSERT_FALSE(areas.empty());
    const auto& [frame, bar] = areas.front();
    const auto before = screen();
    elsewhere([&] {
        EXPECT_EQ(copyDouble(*bar, "AXValue"), 0);
        EXPECT_EQ(bar->setAttributeValue("AXValue", 0.5), AccessibilityError::success);
        EXPECT_NEAR(copyDouble(*bar, "AXValue").value_or(-1), 0.5, 0.01);
    });
    // What changes lies in the area, and fills most of its height.
    DisplayRect changed;
    EXPECT_TRUE(client.waitUntil([&] {
        changed = changes(before, screen());
        return changed.size.height > frame.size.height / 2;
    }));
    EXPECT_GE(changed.minX(), frame.minX() - 1);
    EXPECT_GE(changed.minY(), frame.minY() - 1);
    EXPECT_LE(changed.maxX(), frame.maxX() + 1);
    EXPECT_LE(changed.maxY(), frame.maxY() + 1);
    elsewhere([&] {
        EXPECT_EQ(bar->setAttributeValue("AXValue", 1.0), AccessibilityError::success);
        EXPECT_NEAR(copyDouble(*bar, "AXValue").value_or(-1), 1, 0.01);
    });
}

TEST_P(X11AccessibilityOfToolkits, TheAreaMovesWithTheWindow) {
    const auto program = startOnBus();
    client.moveResize(program.window, {300, 200, 700, 500});
    ASSERT_TRUE(client.waitUntil([&] {
        const auto place = client.place(program.window);
        return place && place->x == 300 && place->y == 200;
    }));
    const auto before = awaitAreas(program.program->pid()).at(0).frame;
    client.moveResize(program.window, {340, 230, 700, 500});
    EXPECT_TRUE(client.waitUntil([&] {
        const auto after = awaitAreas(program.program->pid()).at(0).frame;
        return after == DisplayRect{{before.minX() + 40, before.minY() + 30}, before.size};
    }));
}

TEST_P(X11AccessibilityOfToolkits, TheSmallestStepMovesTheBar) {
    const auto program = startOnBus();
    const auto bar = awaitAreas(program.program->pid()).at(0).bar;
    elsewhere([&] {
        const double start = 0.5;
        bar->setAttributeValue("AXValue", start);
        const auto before = copyDouble(*bar, "AXValue").value();
        EXPECT_EQ(bar->setAttributeValue("AXValue", before + 0.0001), AccessibilityError::success);
        const auto after = copyDouble(*bar, "AXValue").value();
        EXPECT_GT(after, before);
        EXPECT_EQ(bar->setAttributeValue("AXValue", after - 0.0001), AccessibilityError::success);
        EXPECT_LT(copyDouble(*bar, "AXValue").value(), after);
    });
}

INSTANTIATE_TEST_SUITE_P(
    Toolkits, X11AccessibilityOfToolkits,
    testing::Values(Toolkit{"GTK3", {"gtk3-demo"}}, Toolkit{"GTK4", {"gtk4-demo"}},
                    Toolkit{"Qt5", {"featherpad", "--standalone"}},
                    Toolkit{"GTK3Composited", {"gtk3-demo"}, e2e::WindowManager::xfwm4},
                    Toolkit{"GTK4Composited", {"gtk4-demo"}, e2e::WindowManager::xfwm4},
                    Toolkit{"Qt5Composited", {"featherpad", "--standalone"}, e2e::WindowManager::xfwm4}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(X11AccessibilityTest, WithoutABusWindowsAreThereAndTheirContentIsNot) {
    const auto program = start({SAMPLE_WINDOW_PROGRAM});
    EXPECT_EQ(windowsOf(program.program->pid()).size(), 1U);
    EXPECT_EQ(errorOfChildren(program.program->pid()), AccessibilityError::apiDisabled);
}

TEST_F(X11AccessibilityTest, AProgramThatIsNotOnTheBusHasNoContent) {
    desktop.startAccessibilityBus();
    const auto program = start({SAMPLE_WINDOW_PROGRAM});
    EXPECT_EQ(errorOfChildren(program.program->pid()), AccessibilityError::noValue);
}

TEST_F(X11AccessibilityTest, TheProcessIsTrustedWhileTheBusThatIsThereIsSwitchedOn) {
    const auto becomes = [&](bool trusted) {
        return client.waitUntil([&] {
            QCoreApplication::processEvents();
            return platform->accessibility().isProcessTrusted() == trusted;
        });
    };
    EXPECT_FALSE(platform->accessibility().isProcessTrusted());
    for (int bus = 0; bus < 2; ++bus) {
        desktop.startAccessibilityBus();
        for (const bool enabled : {true, false}) {
            desktop.setAccessibilityEnabled(enabled);
            EXPECT_TRUE(becomes(enabled));
        }
    }
}

TEST_F(X11AccessibilityTest, ABusThatComesLaterOrAnewIsFound) {
    const auto early = start({SAMPLE_WINDOW_PROGRAM});
    EXPECT_EQ(errorOfChildren(early.program->pid()), AccessibilityError::apiDisabled);
    for (int round = 0; round < 2; ++round) {
        desktop.startAccessibilityBus();
        const auto program = start({"gtk3-demo"});
        EXPECT_FALSE(awaitAreas(program.program->pid()).empty());
    }
}

TEST_F(X11AccessibilityTest, AProgramThatHangsHoldsUpNobodyForLongerThanTheTimeout) {
    desktop.startAccessibilityBus();
    const auto hung = start({"gtk3-demo"});
    const auto other = start({"gtk3-demo"});
    const auto bar = awaitAreas(hung.program->pid()).at(0).bar;
    const auto otherBar = awaitAreas(other.program->pid()).at(0).bar;
    const auto window = windowsOf(hung.program->pid()).at(0);
    window->setMessagingTimeout(shortTimeout);
    bar->setMessagingTimeout(shortTimeout);
    hung.program->send(SIGSTOP);

    const auto timeOf = [](const std::function<AccessibilityError()>& call, AccessibilityError expected) {
        return elsewhere([&] {
            const auto begin = Clock::now();
            EXPECT_EQ(call(), expected);
            return Seconds(Clock::now() - begin).count();
        });
    };
    // Qt's timers may be early by a twentieth.
    const double shortest = shortTimeout.count() * 0.9;
    constexpr double longest = 0.4;
    for (const auto& call : std::vector<std::function<AccessibilityError()>>{
             [&] { return window->copyAttributeValue("AXChildren").error; },
             [&] { return bar->copyAttributeValue("AXValue").error; },
             [&] { return bar->isAttributeSettable("AXValue").error; },
             [&] { return bar->setAttributeValue("AXValue", 0.5); }}) {
        const auto time = timeOf(call, AccessibilityError::cannotComplete);
        EXPECT_GE(time, shortest);
        EXPECT_LE(time, longest);
    }
    // While one waits for it, the others and what the server knows are as fast as ever.
    auto waiting = std::async(std::launch::async, [&] { return bar->copyAttributeValue("AXValue").error; });
    constexpr double fast = 0.1;
    EXPECT_LE(timeOf([&] { return otherBar->copyAttributeValue("AXValue").error; }, AccessibilityError::success), fast);
    EXPECT_LE(timeOf([&] { return window->copyAttributeValue("AXTitle").error; }, AccessibilityError::success), fast);
    EXPECT_EQ(waiting.get(), AccessibilityError::cannotComplete);

    hung.program->send(SIGCONT);
    EXPECT_TRUE(client.waitUntil([&] {
        return elsewhere([&] { return bar->copyAttributeValue("AXValue").error; }) == AccessibilityError::success;
    }));
}

TEST_F(X11AccessibilityTest, ElementsWaitAsLongAsTheOneThatTheyCameFrom) {
    desktop.startAccessibilityBus();
    const auto program = start({"gtk3-demo"});
    awaitAreas(program.program->pid());
    const auto window = windowsOf(program.program->pid()).at(0);
    window->setMessagingTimeout(shortTimeout);
    std::vector<ScrollArea> areas;
    elsewhere([&] { collect(window, 0, areas); });
    ASSERT_FALSE(areas.empty());
    program.program->send(SIGSTOP);
    const auto begin = Clock::now();
    EXPECT_EQ(elsewhere([&] { return areas.front().bar->copyAttributeValue("AXValue").error; }),
              AccessibilityError::cannotComplete);
    EXPECT_LE(Seconds(Clock::now() - begin).count(), 0.4);
    program.program->send(SIGCONT);
}

TEST_F(X11AccessibilityTest, ABusThatHangsHoldsUpTheStartForAMomentAndIsListenedToLater) {
    desktop.setAccessibilityEnabled(true);
    const auto owner = e2e::run({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                                 "org.freedesktop.DBus.GetConnectionUnixProcessID", "string:org.a11y.Bus"},
                                desktop.environment());
    ASSERT_EQ(owner.status, 0) << owner.errors;
    const auto number = owner.output.find("uint32 ");
    ASSERT_NE(number, std::string::npos) << owner.output;
    const auto launcher = static_cast<pid_t>(std::stoi(owner.output.substr(number + 7)));
    kill(launcher, SIGSTOP);
    for (const double longest : {0.4, 0.05}) {
        const auto begin = Clock::now();
        EXPECT_FALSE(platform->accessibility().isProcessTrusted());
        EXPECT_LE(Seconds(Clock::now() - begin).count(), longest);
    }
    kill(launcher, SIGCONT);
    EXPECT_TRUE(client.waitUntil([&] {
        QCoreApplication::processEvents();
        return platform->accessibility().isProcessTrusted();
    }));
}

class X11AccessibilityOfBadPrograms : public X11AccessibilityTest, public testing::WithParamInterface<const char*> {};

TEST_P(X11AccessibilityOfBadPrograms, AWalkThroughTheWindowEnds) {
    desktop.startAccessibilityBus();
    const auto program = start({SAMPLE_ACCESSIBLE_PROGRAM, GetParam()});
    const auto pid = program.program->pid();
    ASSERT_EQ(errorOfChildren(pid), AccessibilityError::success);
    const auto window = windowsOf(pid).at(0);
    window->setMessagingTimeout(shortTimeout);
    std::vector<ScrollArea> areas;
    const auto begin = Clock::now();
    elsewhere([&] { collect(window, 0, areas); });
    EXPECT_LT(Seconds(Clock::now() - begin).count(), 10);
    EXPECT_TRUE(areas.empty());
    // The limits are those of one walk. The slow one first gets done with what it was asked.
    EXPECT_TRUE(client.waitUntil([&] { return errorOfChildren(pid) == AccessibilityError::success; }));
}

INSTANTIATE_TEST_SUITE_P(Ways, X11AccessibilityOfBadPrograms,
                         testing::Values("endless", "circle", "crowd", "slow", "nonsense"),
                         [](const auto& test) { return std::string(test.param); });

/// With a program that lies about the places and sizes in its window.
class X11AccessibilityOfLiars : public X11AccessibilityTest {
protected:
    /// Ready to be asked.
    RunningWindow startLiar(const char* way) {
        desktop.startAccessibilityBus();
        auto started = start({SAMPLE_ACCESSIBLE_PROGRAM, way});
        EXPECT_EQ(errorOfChildren(started.program->pid()), AccessibilityError::success);
        return started;
    }
    /// Where the area lies that begins at 10,50 in the window.
    [[nodiscard]] DisplayRect trueFrame(e2e::Window window) const {
        const auto place = client.place(window).value_or(e2e::Rect());
        return {{place.x + 10.0, place.y + 50.0}, {380, 250}};
    }
    void expectAreaInTheRealWindow(const char* way) {
        const auto liar = startLiar(way);
        const auto areas = awaitAreas(liar.program->pid());
        ASSERT_EQ(areas.size(), 1U);
        const auto& [frame, bar] = areas.front();
        EXPECT_EQ(frame, trueFrame(liar.window));
        elsewhere([&scrolled = bar] {
            EXPECT_EQ(scrolled->setAttributeValue("AXValue", 0.5), AccessibilityError::success);
            EXPECT_EQ(copyDouble(*scrolled, "AXValue"), 0.5);
        });
    }
};

TEST_F(X11AccessibilityOfLiars, AWindowThatTellsAnotherPlaceIsFoundAndItsAreaLiesInTheRealOne) {
    expectAreaInTheRealWindow("displaced");
}

TEST_F(X11AccessibilityOfLiars, AWindowThatTellsAnotherSizeIsTakenForOneBehindABorder) {
    expectAreaInTheRealWindow("swollen");
}

TEST_F(X11AccessibilityOfLiars, AnAreaWithoutBoundsIsUnderNoPointAndItsBarCannotBeSet) {
    const auto liar = startLiar("boundless");
    elsewhere([&] {
        const auto read = windowsOf(liar.program->pid()).at(0)->copyAttributeValue("AXChildren");
        const auto* children = read.get<Elements>();
        ASSERT_NE(children, nullptr);
        ASSERT_EQ(children->size(), 1U);
        const auto& area = children->front();
        EXPECT_EQ(copyString(*area, "AXRole"), "AXScrollArea");
        const auto frame = frameOf(*area);
        ASSERT_TRUE(frame);
        const auto inWindow = trueFrame(liar.window);
        EXPECT_FALSE(frame->contains(inWindow.origin));
        const auto bar = copyElement(*area, "AXVerticalScrollBar");
        ASSERT_NE(bar, nullptr);
        EXPECT_FALSE(bar->isAttributeSettable("AXValue").isSettable);
        EXPECT_EQ(copyDouble(*bar, "AXValue"), std::nullopt);
        EXPECT_NE(bar->setAttributeValue("AXValue", 0.5), AccessibilityError::success);
    });
}

} // namespace
} // namespace quillon::x11
