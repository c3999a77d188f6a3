// By a click on the copy the user gets to the real window, wherever the window manager keeps it.

#include "EndToEndTest.h"
#include "EvdevKeys.h"

#include <tuple>

namespace quillon::e2e {

namespace {

constexpr std::uint8_t left = 1;
constexpr std::uint32_t otherWorkspace = 1;

/// What makes a click on the copy lead to the real window.
struct Route {
    const char* name;
    std::vector<std::string> arguments;
    bool isForwarding;
    bool wantsCommand;
};
void PrintTo(const Route& route, std::ostream* stream) {
    *stream << route.name;
}

using Parameters = std::tuple<WindowManager, Route>;

class SwitchToWindow : public EndToEndTest, public testing::WithParamInterface<Parameters> {
protected:
    SwitchToWindow() : EndToEndTest({.windowManager = std::get<WindowManager>(GetParam())}) {}

    /// The first of two windows of a program is pinned, and another program covers both.
    void pinCovered() {
        const auto& route = std::get<Route>(GetParam());
        sample = startSample({"--windows", "2", "--place", "200,150,500,400"});
        activate(sample.windows[1]);
        cover = coverEverything();
        quillon.start({}, route.arguments);
        for (const auto& [key, value] : {std::pair{"forwardEvents", route.isForwarding}, {"debugLogging", true}}) {
            ASSERT_EQ(quillon.command({"defaults", "write", key, value ? "true" : "false"}).status, 0);
        }
        panel = pinAndShow(source());
        ASSERT_TRUE(shows(panel, source()));
    }
    [[nodiscard]] Window source() const { return sample.windows[0]; }
    void clickCopy() {
        const auto place = client.place(panel).value_or(Rect());
        client.movePointer(place.x + 60, place.y + 60);
        const bool wantsCommand = std::get<Route>(GetParam()).wantsCommand;
        if (wantsCommand) {
            client.pressKey(superKey);
        }
        client.pressButton(left);
        client.releaseButton(left);
        if (wantsCommand) {
            client.releaseKey(superKey);
        }
    }
    void minimise(Window window) {
        client.minimise(window);
        ASSERT_TRUE(client.waitUntil([&] { return !client.isViewable(window); }));
        // openbox moves the frame about for a moment more.
        ASSERT_TRUE(client.waitUntil([&] {
            const auto place = client.place(window);
            return client.holdsFor([&] { return client.place(window) == place; }, Milliseconds(200));
        }));
    }
    /// The user sends the window to the other workspace and stays where she is.
    void sendAway(Window window) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = client.atom("_NET_WM_DESKTOP");
        constexpr std::uint32_t sourcePager = 2;
        message.data.data32[0] = otherWorkspace;
        message.data.data32[1] = sourcePager;
        xcb_send_event(client.xcb(), 0, client.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(client.xcb());
        ASSERT_TRUE(client.waitUntil([&] {
            return client.property(window, "_NET_WM_DESKTOP") == std::vector<std::uint32_t>{otherWorkspace} &&
                   !client.isViewable(window);
        }));
        ASSERT_TRUE(client.isViewable(panel)) << "the copy went away with the window";
    }
    [[nodiscard]] testing::AssertionResult isInFront(Window window) {
        const auto holds = [&] {
            return client.activeWindow() == window && client.isViewable(window) && !client.isAbove(panel, window);
        };
        if (client.waitUntil(holds) && client.holdsFor(holds, Milliseconds(300))) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "active is " << client.activeWindow() << ", the window is "
                                           << (client.isViewable(window) ? "shown" : "not shown") << "\n"
                                           << quillon.log();
    }
    void TearDown() override {
        EXPECT_EQ(quillon.program().errors(), "");
        EndToEndTest::TearDown();
    }

    Sample sample;
    std::optional<Sample> cover;
    Window panel = 0;
};

TEST_P(SwitchToWindow, ThatIsCovered) {
    pinCovered();
    clickCopy();
    EXPECT_TRUE(isInFront(source()));
    EXPECT_TRUE(client.isAbove(source(), cover->window()));
    EXPECT_TRUE(client.isAbove(cover->window(), sample.windows[1])) << "the program's other window came along";
}

TEST_P(SwitchToWindow, ThatIsMinimised) {
    pinCovered();
    minimise(source());
    clickCopy();
    EXPECT_TRUE(isInFront(source()));
    EXPECT_TRUE(client.isAbove(source(), cover->window()));
}

TEST_P(SwitchToWindow, WhoseProgramHasMinimisedAllOfThem) {
    pinCovered();
    minimise(sample.windows[1]);
    minimise(source());
    clickCopy();
    EXPECT_TRUE(isInFront(source()));
    EXPECT_FALSE(client.isViewable(sample.windows[1]));
}

TEST_P(SwitchToWindow, OnAnotherWorkspace) {
    pinCovered();
    sendAway(source());
    clickCopy();
    EXPECT_TRUE(isInFront(source()));
    EXPECT_EQ(client.currentDesktop(), otherWorkspace);
    EXPECT_EQ(client.property(source(), "_NET_WM_DESKTOP"), std::vector<std::uint32_t>{otherWorkspace})
        << "the window was fetched instead";
}

TEST_P(SwitchToWindow, ThatIsMinimisedOnAnotherWorkspace) {
    pinCovered();
    sendAway(source());
    minimise(source());
    ASSERT_TRUE(client.waitUntil([&] {
        return client.property(source(), "WM_STATE").at(0) == 3; /* IconicState */
    }));
    clickCopy();
    EXPECT_TRUE(isInFront(source()));
    EXPECT_EQ(client.currentDesktop(), otherWorkspace);
}

TEST_P(SwitchToWindow, ThatHasClosedDoesNothing) {
    pinCovered();
    client.closeWindow(source());
    clickCopy();
    EXPECT_TRUE(isGone(panel, pruningBound));
    EXPECT_EQ(client.activeWindow(), cover->window());
}

INSTANTIATE_TEST_SUITE_P(
    Desktops, SwitchToWindow,
    testing::Combine(testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                     testing::Values(Route{"CommandClick", {}, true, true}, Route{"ForwardingOff", {}, false, false},
                                     Route{"ScrollRouting", {"--input-routing=scroll"}, true, false})),
    [](const auto& test) {
        return std::string(std::get<WindowManager>(test.param) == WindowManager::xfwm4 ? "xfwm4" : "openbox") +
               std::get<Route>(test.param).name;
    });

} // namespace

} // namespace quillon::e2e
