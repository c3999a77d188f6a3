// The status item in trays of both kinds, and its menu, used as a user does.

#include "EndToEndTest.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>

namespace quillon::e2e {

namespace {

/// Keys of the test server's keyboard.
constexpr std::uint8_t returnKey = 36;
constexpr std::uint8_t escapeKey = 9;
constexpr std::uint8_t downKey = 116;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class StatusItemBase : public EndToEndTest {
protected:
    void TearDown() override {
        EndToEndTest::TearDown();
        if (expectsSilence) {
            EXPECT_EQ(quillon.program().errors(), "");
        }
    }

    /// The one window of the program that is on screen, which no panel is.
    [[nodiscard]] std::optional<Window> menu() const { return onlyWindowOf(quillon.pid()); }
    [[nodiscard]] std::optional<Window> onlyWindowOf(pid_t process) const {
        const auto shown = client.visibleWindowsOf(process);
        return shown.size() == 1 ? std::optional(shown.front()) : std::nullopt;
    }
    [[nodiscard]] testing::AssertionResult menuOpens() const { return menuOfOpens(quillon.pid()); }
    /// Until it is drawn, since it has the pointer and the keyboard only then.
    [[nodiscard]] testing::AssertionResult menuOfOpens(pid_t process) const {
        const bool isDrawn = client.waitUntil([&] {
            const auto window = onlyWindowOf(process);
            return window && isMostlyOneColour(seenAt(*window));
        });
        return isDrawn ? testing::AssertionSuccess() : testing::AssertionFailure() << "no menu";
    }
    /// As a menu is, and nothing that a test shows beneath it; the screen's own black does not count.
    static bool isMostlyOneColour(const Picture& picture) {
        constexpr std::uint32_t colourBits = 0xffffff;
        std::map<std::uint32_t, std::size_t> counts;
        for (const auto pixel : picture.pixels) {
            ++counts[pixel & colourBits];
        }
        return std::any_of(counts.begin(), counts.end(), [&](const auto& entry) {
            return entry.first != 0 && entry.second > picture.pixels.size() / 2;
        });
    }
    [[nodiscard]] testing::AssertionResult menuCloses() const {
        return client.waitUntil([&] { return !menu(); }) ? testing::AssertionSuccess()
                                                         : testing::AssertionFailure() << "the menu stays";
    }
    /// Clicks with the pointer on the item that as many presses of the arrow key reach.
    void choose(int steps) {
        const auto place = client.place(menu().value()).value();
        // Nothing is marked while the pointer is outside.
        client.movePointer(place.x - 20, place.y);
        Picture plain;
        do {
            plain = client.screenPicture(place);
        } while (!client.holdsFor([&] { return client.screenPicture(place) == plain; }, Milliseconds(100)));
        Picture marked = plain;
        for (int step = 0; step < steps; ++step) {
            const auto before = marked;
            client.type({downKey});
            ASSERT_TRUE(client.waitUntil([&] {
                marked = client.screenPicture(place);
                return marked != before;
            }));
        }
        int top = place.height;
        int bottom = 0;
        for (int y = 0; y < place.height; ++y) {
            const int middle = place.width / 2;
            if (marked.at(4, y) != plain.at(4, y) || marked.at(middle, y) != plain.at(middle, y)) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
        ASSERT_LT(top, bottom) << "no item is marked";
        click(place.x + place.width / 2, place.y + (top + bottom) / 2);
    }
    void click(int x, int y) {
        client.movePointer(x, y);
        client.pressButton(1);
        client.releaseButton(1);
    }

    /// What a panel says over D-Bus; waits until it says it.
    [[nodiscard]] std::unique_ptr<Program> startPanel(const std::vector<std::string>& arguments = {"watch"}) const {
        Command command{SAMPLE_PANEL_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        auto panel = desktop.start(command);
        EXPECT_TRUE(client.waitUntil([&] { return !panel->errors().empty(); })) << "the panel did not start";
        return panel;
    }

    /// Only the log is for messages.
    bool expectsSilence = true;
};

// Of the menu without pinned windows.
constexpr int candidateItem = 2;

class StatusItemInTray : public StatusItemBase {
protected:
    [[nodiscard]] std::unique_ptr<Program> startTray(const std::vector<std::string>& looks = {}) const {
        Command command{"trayer", "--edge", "bottom", "--align", "right", "--height", "24", "--widthtype", "request"};
        command.insert(command.end(), looks.begin(), looks.end());
        return desktop.start(command);
    }
    /// Where the icon is, once the tray has taken it.
    [[nodiscard]] std::optional<Rect> icon() const {
        const auto window = client.visibleWindowNamed("QuillonStatusItem");
        const auto place = window ? client.place(*window) : std::nullopt;
        return place && place->width > 8 && place->y > 1100 ? place : std::nullopt;
    }
    [[nodiscard]] testing::AssertionResult iconAppears() const {
        return client.waitUntil([&] { return icon().has_value(); }) ? testing::AssertionSuccess()
                                                                    : testing::AssertionFailure() << "no icon";
    }
    void clickIcon() {
        const auto place = icon().value();
        click(place.x + place.width / 2, place.y + place.height / 2);
    }
    /// Whether the icon shows so many pixels that are more red than anything else.
    [[nodiscard]] std::size_t redPixels() const {
        const auto place = icon();
        if (!place) {
            return 0;
        }
        const auto seen = client.screenPicture(*place);
        return static_cast<std::size_t>(std::count_if(seen.pixels.begin(), seen.pixels.end(), [](std::uint32_t pixel) {
            constexpr std::uint32_t channel = 0xff;
            const auto red = (pixel >> 16) & channel;
            return red > 180 && red > 2 * ((pixel >> 8) & channel) && red > 2 * (pixel & channel);
        }));
    }
};

TEST_F(StatusItemInTray, OpensItsMenuWithAClickAndPinsTheWindowInFront) {
    const auto tray = startTray();
    const auto source = startSample();
    activate(source.window());
    quillon.start();
    ASSERT_TRUE(iconAppears());
    ASSERT_TRUE(client.waitUntil([&] { return redPixels() > 10; }));
    const auto outline = redPixels();
    clickIcon();
    ASSERT_TRUE(menuOpens());
    keepPicture("status-menu");
    choose(candidateItem);
    EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned() == source.windows; }));
    EXPECT_EQ(client.activeWindow(), source.window());
    EXPECT_TRUE(client.waitUntil([&] { return redPixels() > outline; })) << "the icon shows no pin";
}

TEST_F(StatusItemInTray, ListsPinnedWindowsAndUnpinsOne) {
    const auto tray = startTray();
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    ASSERT_EQ(quillon.pin(source.window()).status, 0);
    ASSERT_TRUE(iconAppears());
    ASSERT_TRUE(client.waitUntil([&] { return panels().size() == 1; }));
    clickIcon();
    ASSERT_TRUE(client.waitUntil([&] { return panels().size() == 2 && isMostlyOneColour(seenAt(panels().back())); }));
    keepPicture("status-menu-pinned");
    // Past the heading, which cannot be chosen.
    client.type({downKey});
    client.type({downKey});
    client.type({downKey});
    client.type({returnKey});
    EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned().empty(); }));
    EXPECT_EQ(client.activeWindow(), cover.window());
}

TEST_F(StatusItemInTray, ClosesTheMenuWithAClickElsewhere) {
    const auto tray = startTray();
    const auto cover = coverEverything();
    quillon.start();
    ASSERT_TRUE(iconAppears());
    clickIcon();
    ASSERT_TRUE(menuOpens());
    click(300, 300);
    EXPECT_TRUE(menuCloses());
    clickIcon();
    ASSERT_TRUE(menuOpens());
    // The second click on the icon closes the menu and opens no other.
    clickIcon();
    EXPECT_TRUE(menuCloses());
    EXPECT_TRUE(client.holdsFor([&] { return !menu(); }, Milliseconds(300)));
    EXPECT_EQ(client.activeWindow(), cover.window());
}

TEST_F(StatusItemInTray, ComesBackWhenTheTrayIsRestarted) {
    auto tray = startTray();
    quillon.start();
    ASSERT_TRUE(iconAppears());
    for (int round = 0; round < 3; ++round) {
        tray->send(round == 1 ? SIGTERM : SIGKILL);
        tray->waitForExit(stepBound);
        EXPECT_TRUE(client.waitUntil([&] { return !icon() && !menu(); })) << "the icon is left behind";
        tray = startTray();
        ASSERT_TRUE(iconAppears());
    }
    clickIcon();
    EXPECT_TRUE(menuOpens());
}

TEST_F(StatusItemInTray, AppearsWhenATrayComesUpLater) {
    quillon.start();
    EXPECT_TRUE(client.holdsFor([&] { return !icon(); }, Milliseconds(300)));
    const auto tray = startTray();
    ASSERT_TRUE(iconAppears());
    clickIcon();
    EXPECT_TRUE(menuOpens());
}

TEST_F(StatusItemInTray, KeepsItsMenuUsableWhenTheTrayDies) {
    auto tray = startTray();
    const auto source = startSample();
    activate(source.window());
    quillon.start();
    ASSERT_TRUE(iconAppears());
    clickIcon();
    ASSERT_TRUE(menuOpens());
    tray->send(SIGKILL);
    tray->waitForExit(stepBound);
    EXPECT_TRUE(client.holdsFor([&] { return menu().has_value(); }, Milliseconds(300)));
    choose(candidateItem);
    EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned() == source.windows; }));
    tray = startTray();
    EXPECT_TRUE(iconAppears());
}

TEST_F(StatusItemInTray, WorksWithoutASessionBus) {
    expectsSilence = false;
    const auto tray = startTray();
    const auto source = startSample();
    activate(source.window());
    auto environment = desktop.environment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus";
    Program program({quillonPath()}, environment);
    ASSERT_TRUE(iconAppears());
    clickIcon();
    ASSERT_TRUE(menuOfOpens(program.pid()));
    client.type({escapeKey});
    EXPECT_TRUE(client.waitUntil([&] { return client.visibleWindowsOf(program.pid()).empty(); }));
    EXPECT_EQ(linesOf(program.errors()).size(), 1U) << program.errors();
    EXPECT_EQ(client.activeWindow(), source.window());
}

TEST_F(StatusItemInTray, FollowsThePreferenceForDarkLooks) {
    ASSERT_EQ(quillon.command({"defaults", "write", "menuBarPillEnabled", "true"}).status, 0);
    const auto tray = startTray();
    quillon.start();
    ASSERT_TRUE(iconAppears());
    // The pill's left part, where no glyph is.
    const auto pill = [&] {
        const auto place = icon().value_or(Rect{0, 0, 1, 1});
        return client.screenPicture(place).at(place.width / 8, place.height / 2) & 0xff;
    };
    constexpr std::uint32_t lightPill = 200;
    constexpr std::uint32_t darkPill = 100;
    EXPECT_TRUE(client.waitUntil([&] { return pill() < darkPill; }));
    auto portal = startPanel({"portal", "dark"});
    EXPECT_TRUE(client.waitUntil([&] { return pill() > lightPill; }));
    portal.reset();
    portal = startPanel({"portal", "light"});
    EXPECT_TRUE(client.waitUntil([&] { return pill() < darkPill; }));
}

TEST_F(StatusItemInTray, FillsTheHeightOfALargePanel) {
    const auto tray = startTray({"--height", "64"});
    quillon.start();
    EXPECT_TRUE(client.waitUntil([&] { return icon() && icon()->width > 50 && redPixels() > 300; }));
}

/// The icon as it is for a user, on a panel of a colour.
class StatusItemLooks : public StatusItemInTray, public testing::WithParamInterface<std::tuple<bool, bool>> {};

TEST_P(StatusItemLooks, AreKept) {
    const auto [isDark, hasPill] = GetParam();
    const std::string panel = isDark ? "dark" : "light";
    const auto name = "status-" + panel + (hasPill ? "-pill" : "");
    ASSERT_EQ(quillon.command({"defaults", "write", "menuBarPillEnabled", hasPill ? "true" : "false"}).status, 0);
    const auto portal = startPanel({"portal", panel});
    const auto tray = startTray(
        {"--height", "64", "--transparent", "true", "--alpha", "0", "--tint", isDark ? "0x202020" : "0xeeeeee"});
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    // The tray widens the icon to its height in a second step.
    ASSERT_TRUE(client.waitUntil([&] { return icon() && icon()->width > 50 && redPixels() > 100; }));
    keepPicture(name);
    const auto outline = redPixels();
    ASSERT_EQ(quillon.pin(source.window()).status, 0);
    ASSERT_TRUE(client.waitUntil([&] { return redPixels() > outline; }));
    keepPicture(name + "-pinned");
}

INSTANTIATE_TEST_SUITE_P(Panels, StatusItemLooks, testing::Combine(testing::Bool(), testing::Bool()));

class StatusItemWithoutTray : public StatusItemBase {};

TEST_F(StatusItemWithoutTray, OpensTheMenuAtThePointerWhenOpenedAgain) {
    const auto source = startSample();
    activate(source.window());
    quillon.start();
    client.movePointer(700, 500);
    const auto second = quillon.command({});
    EXPECT_EQ(second.status, 0) << second.errors;
    ASSERT_TRUE(menuOpens());
    const auto place = client.place(menu().value()).value();
    EXPECT_NEAR(place.x, 700, 8);
    EXPECT_NEAR(place.y, 500, 8);
    choose(candidateItem);
    EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned() == source.windows; }));
    EXPECT_EQ(client.activeWindow(), source.window());
}

TEST_F(StatusItemWithoutTray, OpensTheMenuForACommand) {
    const auto source = startSample();
    activate(source.window());
    quillon.start();
    ASSERT_EQ(quillon.command({"menu"}).status, 0);
    ASSERT_TRUE(menuOpens());
    client.type({escapeKey});
    EXPECT_TRUE(menuCloses());
    EXPECT_EQ(client.activeWindow(), source.window());
}

/// As when the command is bound to a key, which is still down.
TEST_F(StatusItemWithoutTray, OpensTheMenuOnceTheKeyboardIsFree) {
    quillon.start();
    const auto cookie =
        xcb_grab_keyboard(client.xcb(), 0, client.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(client.xcb(), cookie, nullptr));
    ASSERT_TRUE(reply && reply->status == XCB_GRAB_STATUS_SUCCESS);
    ASSERT_EQ(quillon.command({"menu"}).status, 0);
    EXPECT_TRUE(client.holdsFor([&] { return !menu(); }, Milliseconds(300)));
    xcb_ungrab_keyboard(client.xcb(), XCB_CURRENT_TIME);
    xcb_flush(client.xcb());
    ASSERT_TRUE(menuOpens());
    client.type({escapeKey});
    EXPECT_TRUE(menuCloses());
}

class StatusItemOverDBus : public StatusItemInTray {
protected:
    /// The service of the item that the panel was told of last; waits for it.
    [[nodiscard]] std::string service(const Program& panel) const {
        std::vector<std::string> lines;
        std::ignore = client.waitUntil([&] {
            lines = linesOf(panel.output());
            return !lines.empty();
        });
        return lines.empty() ? "" : lines.back();
    }
    std::vector<std::string> ask(const std::vector<std::string>& arguments) const {
        Command command{SAMPLE_PANEL_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return linesOf(run(command, desktop.environment()).output);
    }
    /// The numbers and the texts of the menu.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> menuItems(const std::string& item) const {
        std::vector<std::pair<std::string, std::string>> items;
        for (const auto& line : ask({"menu", item})) {
            const auto tabulation = line.find('\t');
            items.emplace_back(line.substr(0, tabulation), line.substr(tabulation + 1));
        }
        return items;
    }
    static std::vector<std::string> texts(const std::vector<std::pair<std::string, std::string>>& items) {
        std::vector<std::string> result;
        for (const auto& item : items) {
            result.push_back(item.second);
        }
        return result;
    }
};

TEST_F(StatusItemOverDBus, TellsItsLooksAndItsMenu) {
    const auto panel = startPanel();
    const auto source = startSample({"--title", "Conti & note_1"});
    activate(source.window());
    quillon.start();
    const auto item = service(*panel);
    ASSERT_NE(item, "");
    const auto icon = ask({"icon", item});
    ASSERT_GE(icon.size(), 6U);
    EXPECT_EQ(icon[0], "Category ApplicationStatus");
    EXPECT_EQ(icon[1], "Id QuillonStatusItem");
    EXPECT_EQ(icon[4], "ToolTip Quillon");
    for (const std::string size : {"16x16", "22x22", "24x24", "32x32", "48x48", "64x64"}) {
        EXPECT_TRUE(std::any_of(icon.begin(), icon.end(), [&](const std::string& line) {
            return line.starts_with("pixmap " + size + " ");
        })) << size;
    }

    const auto items = menuItems(item);
    EXPECT_EQ(texts(items),
              (std::vector<std::string>{"Informazioni su Quillon", "---", "Fissa «Conti & note__1»", "---",
                                        "Impostazioni… Control+,", "---", "Esci da Quillon Control+Q"}));
    ask({"click", item, items.at(2).first});
    EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned() == source.windows; }));
    EXPECT_EQ(ask({"icon", item}).at(4), "ToolTip Quillon — 1 finestre fissate");
    // The menu is asked for anew each time it opens.
    const auto pinned = texts(menuItems(item));
    ASSERT_EQ(pinned.size(), 12U);
    EXPECT_EQ(pinned[2], "Sblocca «Conti & note__1»");
    EXPECT_EQ(pinned[4], "[Finestre fissate]");
    EXPECT_TRUE(pinned[5].ends_with(" on")) << pinned[5];
    EXPECT_EQ(client.activeWindow(), source.window());
}

TEST_F(StatusItemOverDBus, KnowsTheItemsOfTheMenuThatIsShown) {
    const auto panel = startPanel();
    const auto source = startSample();
    activate(source.window());
    quillon.start();
    const auto item = service(*panel);
    const auto first = menuItems(item);
    EXPECT_EQ(menuItems(item), first) << "a menu that looks the same keeps its numbers";
    ASSERT_EQ(quillon.pin(source.window()).status, 0);
    ask({"menu", item});
    // What a panel still shows is out of date by now, and must not be taken for something else.
    for (const auto& entry : first) {
        ask({"click", item, entry.first});
    }
    EXPECT_EQ(quillon.pinned(), source.windows);
    EXPECT_TRUE(quillon.program().isRunning());
}

TEST_F(StatusItemOverDBus, OpensItsOwnMenuForAPanelThatShowsNone) {
    const auto panel = startPanel();
    quillon.start();
    client.movePointer(400, 300);
    ask({"activate", service(*panel)});
    EXPECT_TRUE(menuOpens());
}

TEST_F(StatusItemOverDBus, ComesBackWhenThePanelIsRestarted) {
    auto panel = startPanel();
    quillon.start();
    ASSERT_NE(service(*panel), "");
    for (int round = 0; round < 3; ++round) {
        panel->send(SIGKILL);
        panel->waitForExit(stepBound);
        panel = startPanel();
        EXPECT_NE(service(*panel), "");
        EXPECT_EQ(menuItems(service(*panel)).size(), 7U);
    }
}

TEST_F(StatusItemOverDBus, MovesBetweenTheKindsOfTrays) {
    const auto tray = startTray();
    quillon.start();
    ASSERT_TRUE(iconAppears());
    auto panel = startPanel();
    ASSERT_NE(service(*panel), "");
    EXPECT_TRUE(client.waitUntil([&] { return !icon(); })) << "the icon is shown twice";
    panel.reset();
    EXPECT_TRUE(iconAppears());
}

TEST_F(StatusItemOverDBus, DoesNotWaitForAPanelThatHangs) {
    const auto panel = startPanel();
    const auto tray = startTray();
    panel->send(SIGSTOP);
    quillon.start();
    EXPECT_EQ(quillon.command({"list"}).status, 0);
    EXPECT_TRUE(iconAppears());
    panel->send(SIGCONT);
    EXPECT_TRUE(client.waitUntil([&] { return !linesOf(panel->output()).empty(); })) << "the panel is overlooked";
}

} // namespace

} // namespace quillon::e2e
