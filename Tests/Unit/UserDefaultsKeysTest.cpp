// Every key of the user defaults, read by the part of the program that reads it: absent, as it is meant to be stored,
// with another type, and out of range.

#include "AXScroller.h"
#include "AppDelegate.h"
#include "DiagnosticLog.h"
#include "OverlayTest.h"
#include "PellamKit/PellamMenuBarPill.h"
#include "PellamKit/PellamStatusItemVisibility.h"
#include "PropertyText.h"

#include <functional>
#include <limits>

namespace quillon {
namespace {

constexpr std::int64_t largestInteger = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallestInteger = std::numeric_limits<std::int64_t>::min();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const PropertyData data{std::byte{1}};

using Stored = std::optional<PropertyValue>;

std::string text(const Stored& stored) {
    return stored ? propertyText(*stored) : "absent";
}

struct Truth {
    Stored stored;
    bool isTrue;
};

/// How a key that is false by default reads.
const std::vector<Truth> truths{
    {{}, false},
    {true, true},
    {false, false},
    {std::int64_t{1}, true},
    {std::int64_t{0}, false},
    {0.05, true},
    {0.0, false},
    {"YES", true},
    {"no", false},
    {"", false},
    {"0007", true},
    {data, false},
    {nan, true},
    {std::int64_t{-1}, true},
    {largestInteger, true},
};

class UserDefaultsKeysTest : public OverlayTest {
protected:
    void store(std::string_view key, const Stored& stored) {
        if (stored) {
            desktop.userDefaults().store(key, *stored);
        } else {
            desktop.userDefaults().remove(key);
        }
    }

    void expectFalseByDefault(std::string_view key, const std::function<bool()>& reads) {
        for (const auto& [stored, isTrue] : truths) {
            store(key, stored);
            EXPECT_EQ(reads(), isTrue) << key << " is " << text(stored);
        }
    }

    /// The program starts with what is stored.
    std::shared_ptr<AppDelegate> launch() {
        desktop.journal().clear();
        auto delegate = std::make_shared<AppDelegate>();
        delegate->applicationDidFinishLaunching();
        return delegate;
    }
    std::string shortcut(const Stored& keyCode, const Stored& modifiers) {
        store("shortcutKeyCode", keyCode);
        store("shortcutModifiers", modifiers);
        return launch()->shortcutDisplayString();
    }
};

using UserDefaultsKeysDeathTest = UserDefaultsKeysTest;

TEST_F(UserDefaultsKeysTest, CaptureRate) {
    struct Case {
        Stored stored;
        /// Seconds.
        double interval;
    };
    show();
    for (const auto& [stored, interval] : {
             Case{{}, 1.0 / 30},
             Case{60.0, 1.0 / 60},
             Case{0.5, 2},
             Case{std::int64_t{15}, 1.0 / 15},
             Case{"24 fps", 1.0 / 24},
             Case{true, 1},
             Case{data, 1.0 / 30},
             Case{"veloce", 1.0 / 30},
             Case{0.0, 1.0 / 30},
             Case{-5.0, 1.0 / 30},
             Case{smallestInteger, 1.0 / 30},
             Case{nan, 1.0 / 30},
             Case{0.001, 10},
             Case{infinite, 0},
         }) {
        store("captureRate", stored);
        overlay->applyCaptureRate();
        desktop.runUntilIdle();
        EXPECT_EQ(capture().latestStream()->configuration().minimumFrameInterval, (MediaTime{interval, 600}))
            << text(stored);
    }
}

TEST_F(UserDefaultsKeysTest, ForwardEvents) {
    struct Case {
        Stored stored;
        bool below27;
        bool from27;
    };
    for (const auto& [stored, below27, from27] : {
             Case{{}, true, false},
             Case{true, true, true},
             Case{false, false, false},
             Case{std::int64_t{0}, true, false},
             Case{largestInteger, true, false},
             Case{1.0, true, false},
             Case{"NO", true, false},
             Case{data, true, false},
         }) {
        store("forwardEvents", stored);
        desktop.processInfo().setOperatingSystemVersion({26, 9, 9});
        EXPECT_EQ(WindowOverlay::forwardEvents(), below27) << text(stored);
        desktop.processInfo().setOperatingSystemVersion({27, 0, 0});
        EXPECT_EQ(WindowOverlay::forwardEvents(), from27) << text(stored);
    }
}

TEST_F(UserDefaultsKeysTest, PinToAllSpaces) {
    expectFalseByDefault("pinToAllSpaces", [&] {
        create();
        return panel().collectionBehavior().canJoinAllSpaces;
    });
}

TEST_F(UserDefaultsKeysTest, AxScrollSensitivity) {
    struct Case {
        Stored stored;
        /// That a scroll of 100 points leads to.
        double value;
    };
    auto& area = desktop.accessibility().window(windowID)->addScrollArea(realBounds);
    auto& bar = area.addVerticalScrollBar(0.5);
    for (const auto& [stored, value] : {
             Case{{}, 0.35},
             Case{0.001, 0.4},
             Case{"0.002", 0.3},
             Case{std::int64_t{1}, 0},
             Case{true, 0},
             Case{false, 0.35},
             Case{data, 0.35},
             Case{"viel", 0.35},
             Case{0.0, 0.35},
             Case{-1.0, 0.35},
             Case{nan, 0.35},
             Case{infinite, 0},
         }) {
        store("axScrollSensitivity", stored);
        bar.setAttribute("AXValue", 0.5);
        AXScroller::scroll(app, windowID, 100, {300, 300});
        desktop.runUntilIdle();
        EXPECT_DOUBLE_EQ(bar.number("AXValue"), value) << text(stored);
    }
}

TEST_F(UserDefaultsKeysTest, AxScrollProbe) {
    turnLoggingOn();
    expectFalseByDefault("axScrollProbe", [&] {
        AXScroller::probe(app, windowID);
        return !takeLog().empty();
    });
}

TEST_F(UserDefaultsKeysTest, DebugLogging) {
    expectFalseByDefault("debugLogging", [&] {
        wplog([] { return std::string("a line"); });
        return takeLog() == Lines{"a line"};
    });
}

TEST_F(UserDefaultsKeysTest, ShortcutKeyCode) {
    struct Case {
        Stored stored;
        std::string shortcut;
    };
    for (const auto& [stored, text] : {
             Case{{}, "⌃⌘P"},
             Case{std::int64_t{96}, "⌘F5"},
             Case{std::int64_t{65535}, "⌘?65535"},
             Case{std::int64_t{0}, "⌃⌘P"},
             Case{96.9, "⌘F5"},
             Case{"96", "⌘F5"},
             Case{true, "⌘S"},
             Case{data, "⌃⌘P"},
             Case{"F5", "⌃⌘P"},
             Case{nan, "⌃⌘P"},
         }) {
        EXPECT_EQ(shortcut(stored, std::int64_t{0x100000}), text) << quillon::text(stored);
    }
}

TEST_F(UserDefaultsKeysTest, ShortcutModifiers) {
    struct Case {
        Stored stored;
        std::string shortcut;
    };
    for (const auto& [stored, text] : {
             Case{{}, "⌃⌘P"},
             Case{std::int64_t{0x100000}, "⌘F5"},
             Case{largestInteger, "⌃⌥⇧⌘F5"},
             Case{std::int64_t{0}, "⌃⌘P"},
             Case{131072.5, "⇧F5"},
             Case{infinite, "⌃⌥⇧⌘F5"},
             Case{"131072", "⇧F5"},
             Case{true, "F5"},
             Case{data, "⌃⌘P"},
             Case{"Maiusc", "⌃⌘P"},
         }) {
        EXPECT_EQ(shortcut(std::int64_t{96}, stored), text) << quillon::text(stored);
    }
}

TEST_F(UserDefaultsKeysDeathTest, AShortcutOutOfRangeStopsTheProcess) {
    for (const auto& [keyCode, modifiers] : {std::pair<Stored, Stored>{std::int64_t{65536}, std::int64_t{1}},
                                             {std::int64_t{-1}, std::int64_t{1}},
                                             {1e300, std::int64_t{1}},
                                             {"99999", std::int64_t{1}},
                                             {std::int64_t{1}, std::int64_t{-1}},
                                             {std::int64_t{1}, -infinite}}) {
        EXPECT_DEATH(shortcut(keyCode, modifiers), "programming error: shortcut");
    }
}

TEST_F(UserDefaultsKeysTest, PellamRegisteredHotkeysIsReadByNobodyAndReplacedAtLaunch) {
    const std::string key = "PellamRegisteredHotkeys";
    launch();
    const auto published = desktop.userDefaults().object(key);
    ASSERT_TRUE(published);
    EXPECT_TRUE(std::holds_alternative<PropertyData>(*published));
    for (const Stored& stored : {Stored(true), Stored("[]"), Stored(PropertyData{}), Stored(largestInteger)}) {
        store(key, stored);
        EXPECT_EQ(launch()->shortcutDisplayString(), "⌃⌘P");
        EXPECT_EQ(desktop.userDefaults().object(key), published) << text(stored);
    }
}

TEST_F(UserDefaultsKeysTest, DidPromptForAccessibilityStableIdentity) {
    desktop.accessibility().setTrusted(false);
    expectFalseByDefault("didPromptForAccessibilityStableIdentity", [&] {
        launch();
        return desktop.journal().take({"accessibility.promptForTrust"}).empty();
    });
}

TEST_F(UserDefaultsKeysTest, MenuBarPillEnabled) {
    expectFalseByDefault("menuBarPillEnabled", [&] {
        const auto icon = PellamMenuBarPill::icon("pin", 16, FontWeight::semibold, SystemColor::red, std::nullopt);
        return desktop.images().require(icon, "the test")->description() != "pin semibold 16 red";
    });
}

TEST_F(UserDefaultsKeysTest, MenuBarPillColorHasNoEffectAndIsDeletedAtLaunch) {
    for (const Stored& stored : {Stored("blue"), Stored(true), Stored(largestInteger), Stored(data)}) {
        store("menuBarPillColor", stored);
        store("didMigratePillColorV2", {});
        const auto delegate = launch();
        EXPECT_EQ(desktop.statusBar().items().at(0)->button()->image()->description(), "pin semibold 16 red");
        EXPECT_EQ(desktop.userDefaults().object("menuBarPillColor"), std::nullopt) << text(stored);
    }
}

TEST_F(UserDefaultsKeysTest, DidMigratePillColorV2) {
    expectFalseByDefault("didMigratePillColorV2", [&] {
        store("menuBarPillColor", "blue");
        launch();
        return desktop.userDefaults().object("menuBarPillColor").has_value();
    });
}

TEST_F(UserDefaultsKeysTest, PellamStatusItemVisibilityHidden) {
    expectFalseByDefault("PellamStatusItemVisibility.Hidden.local.quillon.floating", [&] {
        const auto delegate = launch();
        EXPECT_EQ(desktop.statusBar().items().empty(), !PellamStatusItemVisibility::isVisible());
        return !PellamStatusItemVisibility::isVisible();
    });
}

} // namespace
} // namespace quillon
