// The global shortcut, with real key presses.

#include "EndToEndTest.h"
#include "EvdevKeys.h"

#include <csignal>
#include <fstream>
#include <sstream>

namespace quillon::e2e {

namespace {

using Keys = std::vector<std::uint8_t>;

const Keys controlSuperP{controlKey, superKey, pKey};
/// On the keyboard that the test server starts with.
constexpr std::uint16_t controlSuperBits = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

/// With a terminal in front, whose program writes down every byte that it is given.
class Shortcut : public EndToEndTest {
protected:
    explicit Shortcut(const DesktopOptions& options = {}) : EndToEndTest(options) {}

    void SetUp() override {
        terminal = startProgram({"xterm", "-e", "sh", "-c", "stty raw -echo && : >\"$1\" && exec cat >>\"$1\"", "sh",
                                 receivedFile().string()});
        ASSERT_TRUE(client.waitUntil([&] { return std::filesystem::exists(receivedFile()); }));
        activate(terminal.window);
    }

    void startLogging() {
        ASSERT_EQ(quillon.command({"defaults", "write", "debugLogging", "true"}).status, 0);
        quillon.start();
    }

    /// What the terminal was given since the last call, up to now: a space bar's press, which is left out, ends it.
    std::string typed() {
        client.type({spaceKey});
        const auto all = [this] {
            std::ifstream file(receivedFile(), std::ios::binary);
            return std::string(std::istreambuf_iterator<char>(file), {}).substr(alreadyTyped);
        };
        std::string text;
        EXPECT_TRUE(client.waitUntil([&] {
            text = all();
            return text.ends_with(' ');
        })) << "the keyboard is stuck";
        alreadyTyped += text.size();
        return text.substr(0, text.size() - 1);
    }

    testing::AssertionResult becomesPinned(bool pinned = true) {
        const auto expected = pinned ? std::vector<Window>{terminal.window} : std::vector<Window>{};
        return client.waitUntil([&] { return quillon.pinned() == expected; })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "The terminal is " << (pinned ? "not pinned" : "still pinned");
    }
    /// The keys pin the terminal, unpin it again and are not typed into it.
    void expectToggles(const Keys& keys) {
        client.type(keys);
        EXPECT_TRUE(becomesPinned());
        client.type(keys);
        EXPECT_TRUE(becomesPinned(false));
        EXPECT_EQ(typed(), "");
    }
    void expectTyped(const Keys& keys) {
        client.type(keys);
        EXPECT_NE(typed(), "");
        EXPECT_TRUE(quillon.pinned().empty());
    }

    testing::AssertionResult statusSays(const std::string& text) {
        std::string output;
        return client.waitUntil([&] {
            output = quillon.command({"status"}).output;
            return output.find(text) != std::string::npos;
        })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << output;
    }
    testing::AssertionResult logs(const std::string& text) {
        return client.waitUntil([&] { return quillon.log().find(text) != std::string::npos; })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << quillon.log();
    }

    /// Changes the description of the keyboard by a sed script.
    void editKeyboard(const std::string& script) {
        runOnDesktop(
            {"sh", "-c", "xkbcomp -w0 \"$DISPLAY\" - | sed \"$1\" | xkbcomp -w0 - \"$DISPLAY\"", "sh", script});
    }

    Started terminal;

private:
    [[nodiscard]] std::filesystem::path receivedFile() const { return desktop.directory() / "received"; }

    std::size_t alreadyTyped = 0;
};

class ShortcutOn : public Shortcut, public testing::WithParamInterface<WindowManager> {
protected:
    ShortcutOn() : Shortcut({.windowManager = GetParam()}) {}
};

TEST_P(ShortcutOn, PinsAndUnpinsTheWindowInFrontAndIsNotTypedIntoIt) {
    quillon.start();
    expectToggles(controlSuperP);
    EXPECT_TRUE(statusSays("Scorciatoia: ⌃⌘P, attiva\n"));
    EXPECT_EQ(client.activeWindow(), terminal.window);
}

TEST_P(ShortcutOn, ShowsThePanelAsSoonAsAnotherApplicationIsInFront) {
    quillon.start();
    client.type(controlSuperP);
    ASSERT_TRUE(becomesPinned());
    const auto cover = coverEverything();
    ASSERT_TRUE(client.waitUntil([&] { return panels().size() == 1; }));
    EXPECT_TRUE(shows(panels().front(), terminal.window));
}

INSTANTIATE_TEST_SUITE_P(WindowManagers, ShortcutOn, testing::Values(WindowManager::openbox, WindowManager::xfwm4));

TEST_F(Shortcut, LeavesEveryNearMissAlone) {
    quillon.start();
    expectTyped({pKey});
    expectTyped({controlKey, pKey});
    expectTyped({superKey, pKey});
    expectTyped({controlKey, superKey, shiftKey, pKey});
    expectTyped({controlKey, superKey, altKey, pKey});
    expectTyped({controlKey, superKey, oKey});
    expectToggles(controlSuperP);
}

TEST_F(Shortcut, TogglesOncePerRepeatOfAHeldKey) {
    startLogging();
    const auto toggles = [&] {
        const auto log = quillon.log();
        std::size_t count = 0;
        for (auto found = log.find("togglePin: "); found != std::string::npos;
             found = log.find("togglePin: ", found + 1)) {
            const auto* expected = count % 2 == 0 ? "togglePin: Pinned " : "togglePin: Unpinned ";
            EXPECT_EQ(log.compare(found, std::string(expected).size(), expected), 0);
            ++count;
        }
        return count;
    };
    client.turnAutoRepeatOn();
    client.pressKey(controlKey);
    client.pressKey(superKey);
    client.pressKey(pKey);
    EXPECT_TRUE(client.waitUntil([&] { return toggles() >= 5; }));
    client.releaseKey(pKey);
    client.releaseKey(superKey);
    client.releaseKey(controlKey);
    EXPECT_EQ(typed(), "");
    EXPECT_TRUE(becomesPinned(toggles() % 2 == 1));
}

TEST_F(Shortcut, LeavesKeysAloneThatArePressedWhileItsKeyIsStillDown) {
    quillon.start();
    client.pressKey(controlKey);
    client.pressKey(superKey);
    client.pressKey(pKey);
    client.releaseKey(superKey);
    client.releaseKey(controlKey);
    client.pressKey(oKey);
    client.releaseKey(pKey);
    client.releaseKey(oKey);
    EXPECT_EQ(typed(), "o");
    EXPECT_TRUE(becomesPinned());
}

TEST_F(Shortcut, WorksWhateverLocksAreOn) {
    quillon.start();
    for (const auto lock : {capsLockKey, numLockKey, capsLockKey}) {
        client.type({lock});
        expectToggles(controlSuperP);
    }
}

TEST_F(Shortcut, StaysInItsPlaceWhenTheLayoutChanges) {
    quillon.start();
    for (const Command& layout : {Command{"setxkbmap", "ru"},
                                  {"setxkbmap", "us", "-variant", "dvorak"},
                                  {"setxkbmap", "fr"},
                                  {"setxkbmap", "jp"},
                                  {"setxkbmap", "us"}}) {
        runOnDesktop(layout);
        expectToggles(controlSuperP);
    }
}

TEST_F(Shortcut, WorksInTheSecondOfTwoLayouts) {
    quillon.start();
    // The Menu key, which the shortcut does not need, switches.
    runOnDesktop({"setxkbmap", "us,ru", "-option", "grp:menu_toggle"});
    constexpr std::uint8_t menuKey = 135;
    client.type({menuKey});
    client.type({pKey});
    ASSERT_NE(typed(), "p");
    expectToggles(controlSuperP);
    expectTyped({controlKey, pKey});
}

TEST_F(Shortcut, FollowsTheModifiersToOtherKeys) {
    quillon.start();
    runOnDesktop({"setxkbmap", "us", "-option", "altwin:swap_alt_win"});
    // Answered after the change, which reaches the program at the same time as the keys would.
    EXPECT_TRUE(statusSays("attiva"));
    expectToggles({controlKey, altKey, pKey});
    expectTyped(controlSuperP);
}

TEST_F(Shortcut, WorksOnAKeyboardWithOtherKeyNumbers) {
    quillon.start();
    // P and O change their numbers.
    editKeyboard("s/<AD09> = 32;/<AD09> = 33;/;t;s/<AD10> = 33;/<AD10> = 32;/");
    // Answered after the change, which reaches the program at the same time as the keys would.
    EXPECT_TRUE(statusSays("attiva"));
    expectToggles({controlKey, superKey, oKey});
    expectTyped(controlSuperP);
}

TEST_F(Shortcut, HeldByAnotherProgramIsReportedAndTakenWhenItIsFree) {
    const XClient other(desktop.displayName());
    ASSERT_TRUE(other.grabKey(pKey, controlSuperBits));
    startLogging();
    EXPECT_TRUE(statusSays("Scorciatoia: ⌃⌘P, usata da un altro programma"));
    EXPECT_TRUE(logs("hotkey: held by another program keyCode=35"));
    client.type(controlSuperP);
    EXPECT_EQ(typed(), "");
    EXPECT_TRUE(quillon.pinned().empty());
    other.ungrabKey(pKey, controlSuperBits);
    EXPECT_TRUE(statusSays("Scorciatoia: ⌃⌘P, attiva"));
    EXPECT_TRUE(logs("hotkey: reaches the tap keyCode=35"));
    expectToggles(controlSuperP);
}

TEST_F(Shortcut, HeldByAnotherProgramWithOneLockOnlyIsNotHalfTaken) {
    const XClient other(desktop.displayName());
    constexpr std::uint16_t numLockBit = XCB_MOD_MASK_2;
    ASSERT_TRUE(other.grabKey(pKey, controlSuperBits | numLockBit));
    quillon.start();
    EXPECT_TRUE(statusSays("usata da un altro programma"));
    expectTyped(controlSuperP);
    other.ungrabKey(pKey, controlSuperBits | numLockBit);
    EXPECT_TRUE(statusSays("attiva"));
    expectToggles(controlSuperP);
}

TEST_F(Shortcut, MissingOnTheKeyboardIsReportedAndWorksOnOneThatHasIt) {
    startLogging();
    EXPECT_TRUE(statusSays("attiva"));
    editKeyboard("s/<AD10>/<GONE>/");
    EXPECT_TRUE(statusSays("Scorciatoia: ⌃⌘P, che su questa tastiera manca"));
    EXPECT_TRUE(logs("hotkey: missing on the keyboard keyCode=35"));
    expectTyped(controlSuperP);
    editKeyboard("s/<GONE>/<AD10>/");
    EXPECT_TRUE(statusSays("Scorciatoia: ⌃⌘P, attiva"));
    expectToggles(controlSuperP);
}

TEST_F(Shortcut, IsTheStoredOne) {
    quillon.writeSettings(R"({"shortcutKeyCode": 31, "shortcutModifiers": 524288})"); // O, Option
    quillon.start();
    EXPECT_TRUE(statusSays("Scorciatoia: ⌥O, attiva"));
    expectToggles({altKey, oKey});
    expectTyped(controlSuperP);
}

TEST_F(Shortcut, IsFreeAgainWhenTheProgramEnds) {
    quillon.start();
    expectToggles(controlSuperP);
    ASSERT_EQ(quillon.stop(), 0);
    client.type(controlSuperP);
    EXPECT_NE(typed(), "");
    EXPECT_TRUE(client.grabKey(pKey, controlSuperBits));
}

TEST_F(Shortcut, DoesNotFreezeTheKeyboardWhenTheProgramIsKilledWhileItsKeyIsDown) {
    quillon.start();
    expectToggles(controlSuperP);
    quillon.program().send(SIGSTOP);
    client.type(controlSuperP);
    quillon.program().send(SIGKILL);
    ASSERT_TRUE(quillon.program().waitForExit(stepBound));
    // The press that nobody has answered is lost; what follows it is not.
    std::ignore = typed();
    client.type({oKey});
    EXPECT_EQ(typed(), "o");
}

TEST_F(Shortcut, OutOfRangeStopsTheProgramWithAMessageThatNamesTheKey) {
    constexpr int aborted = 128 + SIGABRT;
    for (const auto& [key, settings] :
         {std::pair{"shortcutKeyCode", R"({"shortcutKeyCode": 65536, "shortcutModifiers": 1310720})"},
          std::pair{"shortcutKeyCode", R"({"shortcutKeyCode": -1, "shortcutModifiers": 1310720})"},
          std::pair{"shortcutModifiers", R"({"shortcutKeyCode": 35, "shortcutModifiers": -1})"}}) {
        quillon.writeSettings(settings);
        const auto outcome = quillon.command({});
        EXPECT_EQ(outcome.status, aborted) << settings;
        EXPECT_NE(outcome.errors.find(key), std::string::npos) << outcome.errors;
    }
}

/// Values that this program never stores.
class DamagedHotkeyRecord : public Shortcut, public testing::WithParamInterface<const char*> {};

TEST_P(DamagedHotkeyRecord, IsReplaced) {
    quillon.writeSettings(std::string(R"({"PellamRegisteredHotkeys": )") + GetParam() + "}");
    quillon.start();
    EXPECT_EQ(quillon.program().errors(), "");
    const auto expected =
        R"([{"actionTitle":"Fissa o sblocca finestra","keyCode":35,"modifiers":1310720,"activeContext":"anywhere"}])";
    const auto base64 = run({"sh", "-c", "printf %s \"$1\" | base64 --wrap=0", "sh", expected}, desktop.environment());
    ASSERT_EQ(base64.status, 0);
    std::ifstream file(quillon.settingsFile(), std::ios::binary);
    const std::string settings(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(settings.find('"' + base64.output + '"'), std::string::npos) << settings;
    expectToggles(controlSuperP);
}

INSTANTIATE_TEST_SUITE_P(Values, DamagedHotkeyRecord,
                         testing::Values("\"rubbish\"", "17", R"({"data": "!!!"})", R"({"data": "W3sia2V5Q29kZSI6"})"));

} // namespace

} // namespace quillon::e2e
