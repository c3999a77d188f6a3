// The settings window and the About window, used as a user does: with the pointer, with the keyboard and through what
// they tell a screen reader.

#include "AccessibleControls.h"
#include "EndToEndTest.h"
#include "EvdevKeys.h"
#include "FrameCounter.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <tuple>

namespace quillon::e2e {

namespace {

using Role = AccessibleControl::Role;

constexpr std::uint32_t allWorkspaces = 0xffffffff;

constexpr auto captureRate = "Frequenza massima di aggiornamento";
constexpr auto interaction = "Interagisci con la finestra flottante";
constexpr auto allSpaces = "Mostra su tutte le Scrivanie";
constexpr auto pill = "Mostra lo sfondo dell’icona";
constexpr auto iconVisibility = "Mostra l’icona nella barra dei menu";
constexpr auto launchAtLogin = "Apri all’accesso";

class OwnWindows : public EndToEndTest {
protected:
    explicit OwnWindows(const DesktopOptions& options = {}) : EndToEndTest(options) {}

    void SetUp() override {
        desktop.startAccessibilityBus();
        controls = std::make_unique<AccessibleControls>(desktop.environment());
        givesFocus = true;
    }
    void TearDown() override {
        EXPECT_EQ(quillon.command({"status"}).status, 0) << "Quillon has ended";
        EXPECT_EQ(quillon.program().errors(), "");
    }

    /// The window that the command opens or brings forward, once it has the focus; not the one that has it before.
    [[nodiscard]] Window open(const std::string& command = "settings", Window before = XCB_NONE) {
        EXPECT_EQ(quillon.command({command}).status, 0);
        EXPECT_TRUE(client.waitUntil([&] {
            const auto active = client.activeWindow();
            return active != before && client.isViewable(active) && client.ownerOf(active) == quillon.pid();
        })) << "no window has become active";
        return client.activeWindow();
    }
    /// What is shown now of that role and name; the first one, or the only one behind another control.
    [[nodiscard]] std::optional<AccessibleControl> find(Role role, const std::string& name) const {
        for (const auto& control : controls->of(quillon.pid())) {
            if (control.role == role && control.name == name && control.isShowing) {
                return control;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] testing::AssertionResult appears(Role role, const std::string& name) const {
        return client.waitUntil([&] { return find(role, name).has_value(); })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "«" << name << "» is not shown";
    }
    [[nodiscard]] testing::AssertionResult disappears(Role role, const std::string& name) const {
        return client.waitUntil([&] { return !find(role, name); })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "«" << name << "» is still shown";
    }
    [[nodiscard]] testing::AssertionResult isSwitched(const std::string& name, bool isOn) const {
        return client.waitUntil([&] {
            const auto control = find(Role::checkBox, name);
            return control && control->isChecked == isOn;
        })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "«" << name << "» is not switched " << (isOn ? "on" : "off");
    }
    void click(int x, int y) const {
        client.movePointer(x, y);
        client.pressButton(1);
        client.releaseButton(1);
    }
    /// With the pointer, in the middle of it.
    void click(Role role, const std::string& name) const {
        ASSERT_TRUE(appears(role, name));
        const auto place = find(role, name)->place;
        click(place.x + place.width / 2, place.y + place.height / 2);
    }
    void closeByEscape(Window window) const {
        client.type({escapeKey});
        EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(window); })) << "Escape does not close it";
    }

    [[nodiscard]] std::string stored(const std::string& key) const {
        return quillon.command({"defaults", "read", key}).output;
    }
    [[nodiscard]] testing::AssertionResult storesInFile(const std::string& key, const std::string& value) const {
        return client.waitUntil([&] { return stored(key) == value + "\n"; })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << key << " is " << stored(key);
    }

    std::unique_ptr<AccessibleControls> controls;
};

class SettingsWindowOn : public OwnWindows, public testing::WithParamInterface<WindowManager> {
protected:
    SettingsWindowOn() : OwnWindows({.windowManager = GetParam()}) {}

    [[nodiscard]] std::string nameOf(const std::string& picture) const {
        return picture + (GetParam() == WindowManager::xfwm4 ? "-xfwm4" : "");
    }
};

/// With two pinned windows and another application in front.
class SettingsWindowWithPanels : public SettingsWindowOn {
protected:
    void SetUp() override {
        SettingsWindowOn::SetUp();
        first = startSample({"--place", "60,100,400,300"});
        second = startSample({"--place", "60,500,400,300"});
        cover = coverEverything();
        quillon.start();
        panelsShown = {pinAndShow(first.window()), pinAndShow(second.window())};
    }

    Sample first;
    Sample second;
    Sample cover;
    std::vector<Window> panelsShown;
};

TEST_P(SettingsWindowWithPanels, TheCaptureRateIsStoredAndBothCopiesFollowAtOnce) {
    const auto window = open();
    play(first.window(), 60);
    play(second.window(), 60);
    click(Role::comboBox, "30 fps");
    ASSERT_TRUE(appears(Role::listItem, "5 fps"));
    keepPicture(nameOf("settings-capture-rates"));
    click(Role::listItem, "5 fps");
    EXPECT_TRUE(storesInFile("captureRate", "5.0"));
    EXPECT_EQ(client.activeWindow(), window);
    for (const auto panel : panelsShown) {
        EXPECT_NEAR(FrameCounter(desktop.displayName()).framesPerSecond(panel, Milliseconds(3000)), 5, 0.7);
    }
}

TEST_P(SettingsWindowWithPanels, AClickOnACopyGoesWhereTheInteractionSwitchSays) {
    const auto window = open();
    EXPECT_TRUE(isSwitched(interaction, true));
    const auto middle = [&](Window panel) {
        const auto place = client.place(panel).value_or(Rect());
        click(place.x + place.width / 2, place.y + place.height / 2);
    };
    middle(panelsShown[0]);
    EXPECT_TRUE(client.holdsFor([&] { return client.activeWindow() == window; }, Milliseconds(500)));
    click(Role::checkBox, interaction);
    EXPECT_TRUE(storesInFile("forwardEvents", "false"));
    EXPECT_TRUE(isSwitched(interaction, false));
    middle(panelsShown[0]);
    EXPECT_TRUE(client.waitUntil([&] { return client.activeWindow() == first.window(); }));
}

TEST_P(SettingsWindowWithPanels, BothCopiesGoOnAllWorkspacesAndBack) {
    const auto window = open();
    const auto workspaceOf = [&](Window panel) { return client.property(panel, "_NET_WM_DESKTOP"); };
    const auto areOn = [&](std::uint32_t workspace) {
        return client.waitUntil([&] {
            return std::all_of(panelsShown.begin(), panelsShown.end(), [&](Window panel) {
                return workspaceOf(panel) == std::vector<std::uint32_t>{workspace};
            });
        });
    };
    ASSERT_TRUE(areOn(0));
    click(Role::checkBox, allSpaces);
    EXPECT_TRUE(storesInFile("pinToAllSpaces", "true"));
    EXPECT_TRUE(areOn(allWorkspaces));
    click(Role::checkBox, allSpaces);
    EXPECT_TRUE(storesInFile("pinToAllSpaces", "false"));
    EXPECT_TRUE(areOn(0));
    EXPECT_EQ(client.activeWindow(), window);
}

INSTANTIATE_TEST_SUITE_P(WindowManagers, SettingsWindowWithPanels,
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4));

TEST_P(SettingsWindowOn, ShowsItsTextsAndTellsThemToAScreenReader) {
    quillon.start();
    const auto window = open();
    ASSERT_TRUE(appears(Role::frame, "Quillon — Impostazioni"));
    for (const auto* name :
         {"Finestre flottanti", "Scorciatoia da tastiera", "Autorizzazioni", "Icona della barra dei menu",
          "Barra dei menu", "Generali", "Fissa o sblocca la finestra", "⌃⌘P", "Accessibilità",
          "Invio di clic e scorrimento", "Registrazione schermo", "Autorizzato", "Autorizzata"}) {
        EXPECT_TRUE(appears(Role::label, name));
    }
    EXPECT_TRUE(isSwitched(interaction, true));
    for (const auto* name : {allSpaces, pill, launchAtLogin}) {
        EXPECT_TRUE(isSwitched(name, false));
    }
    EXPECT_TRUE(isSwitched(iconVisibility, true));
    for (const auto* name : {"Rimuovi", "Modifica…", "Consenti accesso", "Fine"}) {
        EXPECT_TRUE(appears(Role::button, name));
    }
    for (const auto& control : controls->of(quillon.pid())) {
        const std::set usable{Role::button, Role::checkBox, Role::comboBox};
        EXPECT_TRUE(!usable.contains(control.role) || !control.isShowing || !control.name.empty())
            << "a control without a name, " << control.description;
    }
    EXPECT_NE(find(Role::checkBox, interaction)->description, "");
    EXPECT_EQ(find(Role::comboBox, "30 fps")->label, captureRate);
    keepPicture(nameOf("settings"));
    closeByEscape(window);
}

TEST_P(SettingsWindowOn, IsOneWindowThatComesForwardAgain) {
    const auto other = startSample({"--place", "100,100,1300,900"});
    quillon.start();
    const auto window = open();
    activate(other.window());
    ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(other.window(), window); }));
    EXPECT_EQ(open(), window);
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(window, other.window()); }));
    const auto isClosed = [&] {
        return client.waitUntil([&] { return client.visibleWindowsOf(quillon.pid()).empty(); });
    };
    const std::vector<std::function<void()>> ways{[&] { client.type({escapeKey}); },
                                                  [&] { click(Role::button, "Fine"); },
                                                  [&] { client.closeWindow(client.activeWindow()); }};
    for (const auto& close : ways) {
        close();
        EXPECT_TRUE(isClosed());
        EXPECT_TRUE(client.waitUntil([&] { return client.activeWindow() == other.window(); }));
        std::ignore = open();
        EXPECT_EQ(client.managedWindowsOf(quillon.pid()).size(), 1U);
    }
}

TEST_P(SettingsWindowOn, OpensAgainOnTheWorkspaceThatTheUserIsOn) {
    quillon.start();
    closeByEscape(open());
    client.switchToDesktop(1);
    ASSERT_TRUE(client.waitUntil([&] { return client.currentDesktop() == 1; }));
    const auto window = open();
    EXPECT_TRUE(client.isViewable(window));
    EXPECT_TRUE(client.holdsFor([&] { return client.currentDesktop() == 1; }, Milliseconds(300)));
    EXPECT_EQ(client.property(window, "_NET_WM_DESKTOP"), std::vector<std::uint32_t>{1});
    // It stays there.
    client.switchToDesktop(0);
    EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(window); }));
}

TEST_P(SettingsWindowOn, OpensOnTheScreenOfThePointer) {
    runOnDesktop({"xrandr", "--setmonitor", "left", "800/200x1200/300+0+0", "screen"});
    runOnDesktop({"xrandr", "--setmonitor", "right", "800/200x1200/300+800+0", "none"});
    quillon.start();
    Window window = XCB_NONE;
    for (const int left : {800, 0}) {
        client.movePointer(left + 700, 1100);
        window = open(left == 0 ? "about" : "settings", window);
        constexpr double middle = 400;
        Rect place;
        EXPECT_TRUE(client.waitUntil([&] {
            place = client.place(window).value_or(Rect());
            return std::abs(place.x + place.width / 2.0 - left - middle) < 8;
        })) << place.x
            << "+" << place.width;
        EXPECT_GE(place.x, left);
        EXPECT_LE(place.x + place.width, left + 800);
    }
}

TEST_P(SettingsWindowOn, StaysOnAScreenThatShrinks) {
    quillon.start();
    const auto window = open();
    client.moveResize(window, {1000, 250, client.place(window)->width, client.place(window)->height});
    ASSERT_TRUE(client.waitUntil([&] { return client.place(window)->x == 1000; }));
    runOnDesktop({"xrandr", "--newmode", "smaller", "30", "1000", "1000", "1000", "1000", "700", "700", "700", "700"});
    runOnDesktop({"xrandr", "--addmode", "screen", "smaller"});
    runOnDesktop({"xrandr", "--output", "screen", "--mode", "smaller"});
    Rect place;
    const auto fits = [&] {
        place = client.place(window).value_or(Rect());
        return place.x >= 0 && place.y >= 0 && place.x + place.width <= 1000 && place.y + place.height <= 700 &&
               place.height <= 0.8 * 700;
    };
    EXPECT_TRUE(client.waitUntil([&] { return client.holdsFor(fits, Milliseconds(300)); }))
        << place.x << "," << place.y << " " << place.width << "x" << place.height;
    keepPicture(nameOf("settings-small-screen"));
    closeByEscape(window);
}

TEST_P(SettingsWindowOn, CanBeUsedWithTheKeyboardAlone) {
    quillon.start();
    const auto window = open();
    const auto focused = [&] {
        for (const auto& control : controls->of(quillon.pid())) {
            if (control.isFocused &&
                (control.role == Role::button || control.role == Role::checkBox || control.role == Role::comboBox)) {
                return control.name;
            }
        }
        return std::string();
    };
    // Until it has opened at its first section for good.
    EXPECT_TRUE(client.holdsFor([&] { return focused().empty(); }, Milliseconds(600)))
        << "something has the focus from the start";
    // A picker is read by its value, after the title that labels it.
    const std::vector<std::string> expected{"30 fps",           interaction, allSpaces,      "Rimuovi",     "Modifica…",
                                            "Consenti accesso", pill,        iconVisibility, launchAtLogin, "Fine"};
    for (const auto& name : expected) {
        client.type({tabKey});
        ASSERT_TRUE(client.waitUntil([&] { return focused() == name; })) << focused() << " instead of " << name;
        if (name == "30 fps") {
            client.type({downKey});
            EXPECT_TRUE(storesInFile("captureRate", "60.0"));
        } else if (name == allSpaces) {
            client.type({spaceKey});
            EXPECT_TRUE(storesInFile("pinToAllSpaces", "true"));
            EXPECT_EQ(focused(), name) << "the focus is lost with the change";
        }
    }
    client.type({shiftKey, tabKey});
    ASSERT_TRUE(client.waitUntil([&] { return focused() == launchAtLogin; }));
    client.type({tabKey});
    client.type({spaceKey});
    EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(window); }));
}

TEST_P(SettingsWindowOn, APermissionTurnsIntoABadgeByItself) {
    quillon.start();
    const auto window = open();
    ASSERT_TRUE(appears(Role::button, "Consenti accesso"));
    desktop.setAccessibilityEnabled(true);
    EXPECT_TRUE(disappears(Role::button, "Consenti accesso"));
    desktop.setAccessibilityEnabled(false);
    EXPECT_TRUE(appears(Role::button, "Consenti accesso"));
    click(Role::button, "Consenti accesso");
    EXPECT_TRUE(disappears(Role::button, "Consenti accesso"));
    EXPECT_EQ(client.managedWindowsOf(quillon.pid()), std::vector{window}) << "the program asks the user once more";
    EXPECT_TRUE(desktop.isAccessibilityEnabled());
}

INSTANTIATE_TEST_SUITE_P(WindowManagers, SettingsWindowOn,
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4));

class SettingsWindow : public OwnWindows {
protected:
    [[nodiscard]] std::filesystem::path autostart() const {
        return std::filesystem::path(desktop.environment().at("XDG_CONFIG_HOME")) / "autostart";
    }
    [[nodiscard]] std::filesystem::path loginItem() const { return autostart() / "local.quillon.floating.desktop"; }
    [[nodiscard]] static std::string content(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(SettingsWindow, ShowsHidesAndExplainsTheIcon) {
    const auto tray =
        desktop.start({"trayer", "--edge", "bottom", "--align", "right", "--height", "24", "--widthtype", "request"});
    quillon.start();
    const auto icon = [&] { return client.visibleWindowNamed("QuillonStatusItem"); };
    ASSERT_TRUE(client.waitUntil([&] { return icon().has_value(); }));
    const auto window = open();
    const auto look = [&] {
        const auto found = icon();
        return found ? seenAt(*found) : Picture();
    };
    const auto plain = look();
    click(Role::checkBox, pill);
    EXPECT_TRUE(storesInFile("menuBarPillEnabled", "true"));
    EXPECT_TRUE(client.waitUntil([&] { return look() != plain; })) << "the icon has no background";

    const auto note = "Per ripristinare l’icona, riapri Quillon dalla cartella Applicazioni.";
    EXPECT_FALSE(find(Role::label, note));
    click(Role::checkBox, iconVisibility);
    EXPECT_TRUE(storesInFile("PellamStatusItemVisibility.Hidden.local.quillon.floating", "true"));
    EXPECT_TRUE(appears(Role::label, note));
    EXPECT_TRUE(client.waitUntil([&] { return !icon(); }));
    keepPicture("settings-icon-hidden");
    click(Role::checkBox, iconVisibility);
    EXPECT_TRUE(disappears(Role::label, note));
    EXPECT_TRUE(client.waitUntil([&] { return icon().has_value(); }));
    EXPECT_EQ(client.activeWindow(), window);
}

TEST_F(SettingsWindow, LaunchesAtLoginByAnAutostartEntry) {
    quillon.start();
    std::ignore = open();
    EXPECT_TRUE(isSwitched(launchAtLogin, false));
    click(Role::checkBox, launchAtLogin);
    ASSERT_TRUE(client.waitUntil([&] { return std::filesystem::exists(loginItem()); }));
    EXPECT_NE(content(loginItem()).find("Exec=\"" + quillonPath() + "\"\n"), std::string::npos) << content(loginItem());
    EXPECT_TRUE(isSwitched(launchAtLogin, true));
    click(Role::checkBox, launchAtLogin);
    EXPECT_TRUE(client.waitUntil([&] { return !std::filesystem::exists(loginItem()); }));
    EXPECT_TRUE(isSwitched(launchAtLogin, false));
}

TEST_F(SettingsWindow, PutsTheSwitchBackWhenTheLoginItemCannotBeWritten) {
    // A file in the directory's place: the superuser cannot write there either.
    std::ofstream(autostart()) << "";
    quillon.start();
    std::ignore = open();
    click(Role::checkBox, launchAtLogin);
    EXPECT_TRUE(client.waitUntil([&] {
        return client.holdsFor(
            [&] {
                const auto control = find(Role::checkBox, launchAtLogin);
                return control && !control->isChecked;
            },
            Milliseconds(300));
    }));
    EXPECT_FALSE(std::filesystem::exists(loginItem()));
    click(Role::checkBox, allSpaces);
    EXPECT_TRUE(storesInFile("pinToAllSpaces", "true"));
}

TEST_F(SettingsWindow, FollowsTheSettingsFileAndSurvivesWhatIsWrongInIt) {
    quillon.start();
    std::ignore = open();
    quillon.writeSettings(R"({"forwardEvents": false, "pinToAllSpaces": true})");
    EXPECT_TRUE(isSwitched(interaction, false));
    EXPECT_TRUE(isSwitched(allSpaces, true));
    quillon.writeSettings(R"({"captureRate": "presto", "forwardEvents": [1], "pinToAllSpaces": "forse",
                              "menuBarPillEnabled": {"a": null}, "shortcutKeyCode": -1, "shortcutModifiers": 1e300})");
    EXPECT_TRUE(isSwitched(interaction, true));
    EXPECT_TRUE(isSwitched(allSpaces, false));
    click(Role::checkBox, allSpaces);
    EXPECT_TRUE(storesInFile("pinToAllSpaces", "true"));
}

TEST_F(SettingsWindow, TakesTranslatedTextsAndSurvivesWhatIsWrongInThem) {
    const auto table = std::filesystem::path(desktop.environment().at("XDG_DATA_HOME")) / "quillon" / "de";
    std::filesystem::create_directories(table);
    std::ofstream(table / "Localizable.json") << R"({"settings.done": "Fertig", "settings.title": "%d %@ %s %n %@ %",
        "settings.general": 5, "shortcut.change": null, "about.version": "%@%@%1$@%99$@", "about.close": "",
        "unknown.key": "nichts", "shortcut.clear": ["Weg"]})";
    quillon.start({"env", "LANG=de_DE.UTF-8", "LC_ALL=de_DE.UTF-8"});
    const auto window = open();
    EXPECT_TRUE(appears(Role::button, "Fertig"));
    EXPECT_TRUE(appears(Role::button, "Modifica…"));
    EXPECT_TRUE(appears(Role::button, "Rimuovi"));
    EXPECT_TRUE(appears(Role::label, "Generali"));
    closeByEscape(window);
    const auto about = open("about");
    EXPECT_TRUE(appears(Role::label, "Realizzato per Halvery"));
    client.closeWindow(about);
    EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(about); }));
}

TEST_F(SettingsWindow, IsClosedWhileTheProgramEnds) {
    quillon.start();
    std::ignore = open();
    EXPECT_EQ(quillon.stop(), 0);
    quillon.start();
}

class ShortcutRecorder : public SettingsWindow {
protected:
    void SetUp() override {
        SettingsWindow::SetUp();
        other = startSample({"--place", "60,100,400,300"});
        activate(other.window());
        quillon.start();
        window = open();
    }
    void record() {
        click(Role::button, "Modifica…");
        ASSERT_TRUE(appears(Role::label, "Premi la scorciatoia…"));
        ASSERT_TRUE(appears(Role::button, "Annulla"));
        ASSERT_TRUE(disappears(Role::button, "Rimuovi"));
    }
    /// The keys pin the other application's window when it is in front, and unpin it again.
    void expectToggles(const std::vector<std::uint8_t>& keys) {
        activate(other.window());
        client.type(keys);
        EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned() == other.windows; }));
        client.type(keys);
        EXPECT_TRUE(client.waitUntil([&] { return quillon.pinned().empty(); }));
    }
    void expectDoesNothing(const std::vector<std::uint8_t>& keys) {
        activate(other.window());
        client.type(keys);
        EXPECT_TRUE(client.holdsFor([&] { return quillon.pinned().empty(); }, Milliseconds(300)));
    }

    const std::vector<std::uint8_t> builtIn{controlKey, superKey, pKey};
    const std::vector<std::uint8_t> chosen{controlKey, superKey, kKey};
    Sample other;
    Window window = 0;
};

TEST_F(ShortcutRecorder, TakesAShortcutWithAModifierAndRefusesOneWithout) {
    record();
    keepPicture("settings-recording");
    client.type({kKey});
    EXPECT_TRUE(appears(Role::label, "Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F"));
    client.type({shiftKey, kKey});
    EXPECT_TRUE(appears(Role::label, "Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F"));
    EXPECT_TRUE(appears(Role::button, "Annulla"));
    keepPicture("settings-needs-modifier");
    client.type(chosen);
    EXPECT_TRUE(appears(Role::label, "⌃⌘K"));
    EXPECT_TRUE(storesInFile("shortcutKeyCode", "40"));
    EXPECT_TRUE(storesInFile("shortcutModifiers", std::to_string(0x40000 + 0x100000)));
    EXPECT_TRUE(appears(Role::button, "Modifica…"));
    expectToggles(chosen);
    expectDoesNothing(builtIn);
}

TEST_F(ShortcutRecorder, TakesAFunctionKeyAlone) {
    record();
    client.type({f5Key});
    EXPECT_TRUE(appears(Role::label, "F5"));
    expectToggles({f5Key});
}

TEST_F(ShortcutRecorder, KeepsTheOldShortcutAfterEscapeAndAfterAnnulla) {
    record();
    client.type({escapeKey});
    EXPECT_TRUE(appears(Role::label, "⌃⌘P"));
    EXPECT_TRUE(client.isViewable(window)) << "the Escape key closes the window as well";
    record();
    click(Role::button, "Annulla");
    EXPECT_TRUE(appears(Role::label, "⌃⌘P"));
    expectToggles(builtIn);
}

TEST_F(ShortcutRecorder, RecordsTheCurrentShortcutInsteadOfPinning) {
    activate(other.window());
    ASSERT_EQ(open(), window);
    record();
    client.type(builtIn);
    EXPECT_TRUE(appears(Role::label, "⌃⌘P"));
    EXPECT_TRUE(client.holdsFor([&] { return quillon.pinned().empty(); }, Milliseconds(300)));
    EXPECT_TRUE(storesInFile("shortcutKeyCode", "35"));
    expectToggles(builtIn);
}

TEST_F(ShortcutRecorder, ClearsTheShortcut) {
    click(Role::button, "Rimuovi");
    EXPECT_TRUE(appears(Role::label, "Non impostata"));
    EXPECT_TRUE(disappears(Role::button, "Rimuovi"));
    expectDoesNothing(builtIn);
    ASSERT_EQ(open(), window);
    record();
    client.type(chosen);
    EXPECT_TRUE(appears(Role::label, "⌃⌘K"));
    expectToggles(chosen);
}

TEST_F(ShortcutRecorder, StopsWhenTheWindowIsClosed) {
    record();
    client.closeWindow(window);
    ASSERT_TRUE(client.waitUntil([&] { return !client.isViewable(window); }));
    expectToggles(builtIn);
    std::ignore = open();
    EXPECT_TRUE(appears(Role::button, "Modifica…"));
}

TEST_F(OwnWindows, AboutTellsTheVersionAndCloses) {
    quillon.start();
    const auto window = open("about");
    ASSERT_TRUE(appears(Role::frame, "Informazioni su Quillon"));
    const auto version = quillon.command({"--version"}).output;
    EXPECT_TRUE(appears(Role::label, "Versione " + version.substr(8, version.size() - 9)));
    keepPicture("about");
    EXPECT_EQ(open("about"), window);
    const auto settings = open("settings", window);
    EXPECT_EQ(open("about", settings), window);
    click(Role::button, "Chiudi");
    EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(window); }));
    EXPECT_TRUE(client.isViewable(settings)) << "the wrong window was closed";
}

} // namespace

} // namespace quillon::e2e
