#include "ContractTest.h"
#include "WindowUser.h"

#include "Platform/Application.h"
#include "Platform/KeyMonitor.h"
#include "Platform/NotificationCenter.h"
#include "Platform/TitledWindow.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace quillon::contract {
namespace {

using Lines = std::vector<std::string>;

constexpr KeyPress escape{53, 0};
constexpr KeyPress plainP{35, 0};

/// A window with a row of each kind, whose controls change the state that it shows.
class TitledWindowContract : public ContractTest {
protected:
    void SetUp() override {
        if (world->windowUser() == nullptr) {
            GTEST_SKIP() << "no program can use its own windows as the user does on this desktop";
        }
        window = desktop().titledWindows().makeWindow("Contratto", content());
        window->setContentSize(window->fittingSize());
    }
    void TearDown() override { window.reset(); }

    [[nodiscard]] WindowContent content() {
        const auto accessItems =
            isGranted ? RowItems{Badge{"Autorizzata", "checkmark.circle.fill"}}
                      : RowItems{Label{"manca", TextStyle::caption}, Button{"Consenti", [this] {
                                                                                isGranted = true;
                                                                                window->setContent(content());
                                                                            }}};
        return Form{
            .sections = {{"Generali",
                          {{.title = "Interruttore",
                            .note = "Una spiegazione",
                            .control = Switch{isOn,
                                              [this](bool on) {
                                                  isOn = on;
                                                  changes.push_back(on ? "on" : "off");
                                              }}},
                           {.title = "Scelta",
                            .note = {},
                            .control = Picker{{"uno", "due", "tre"},
                                              selected,
                                              [this](std::size_t index) {
                                                  selected = index;
                                                  changes.push_back("option " + std::to_string(index));
                                              }}}}},
                         {"Permessi", {{.title = "Accesso", .note = {}, .control = accessItems}}}},
            .closing = {.title = "Fine", .action = [this] { changes.emplace_back("closing"); }, .isCancel = true},
            .minimumSize = {420, 400}};
    }

    void show() {
        window->makeKeyAndOrderFront();
        desktop().sharedApplication()->activateIgnoringOtherApps();
        ASSERT_TRUE(eventually([&] { return desktop().titledWindows().keyWindow() == window.get(); }));
    }
    WindowUser& user() { return *world->windowUser(); }
    bool eventuallyChanged(const Lines& expected) {
        return eventually([&] { return changes == expected; });
    }

    std::unique_ptr<TitledWindow> window;
    bool isOn = false;
    bool isGranted = false;
    std::optional<std::size_t> selected = 1;
    Lines changes;
};

TEST_F(TitledWindowContract, ANewWindowIsNotShown) {
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(desktop().titledWindows().keyWindow(), nullptr);
}

TEST_F(TitledWindowContract, TheTextsOfItsContentAreShownInTheirOrder) {
    show();
    EXPECT_EQ(user().texts(*window), (Lines{"Generali", "Interruttore", "Una spiegazione", "Scelta", "due", "Permessi",
                                            "Accesso", "manca", "Consenti", "Fine"}));
    EXPECT_FALSE(user().isOn(*window, "Interruttore"));
}

TEST_F(TitledWindowContract, APickerMayShowNoneOfItsOptions) {
    selected.reset();
    window->setContent(content());
    show();
    EXPECT_EQ(user().texts(*window), (Lines{"Generali", "Interruttore", "Una spiegazione", "Scelta", "", "Permessi",
                                            "Accesso", "manca", "Consenti", "Fine"}));
    user().choose(*window, "Scelta", "uno");
    EXPECT_TRUE(eventuallyChanged({"option 0"}));
}

TEST_F(TitledWindowContract, TheTextsOfAColumnAreShownInTheirOrder) {
    window = desktop().titledWindows().makeWindow(
        "Colonna", Column{.items = {ApplicationIcon{{64, 64}}, Label{"Nome", TextStyle::title}, Divider{},
                                    TextBlock{{Label{"Primo"}, Label{"Secondo"}}},
                                    Button{"Chiudi", [this] { changes.emplace_back("column"); }}},
                          .width = 300,
                          .spacing = 12,
                          .padding = 24});
    window->setContentSize(window->fittingSize());
    show();
    EXPECT_EQ(user().texts(*window), (Lines{"Nome", "Primo", "Secondo", "Chiudi"}));
    EXPECT_EQ(window->scrollExtent(), std::nullopt);
    user().press(*window, "Chiudi");
    EXPECT_TRUE(eventuallyChanged({"column"}));
}

TEST_F(TitledWindowContract, ItsContentWantsAtLeastTheFormsMinimumSize) {
    EXPECT_GE(window->fittingSize().width, 420);
    EXPECT_GE(window->fittingSize().height, 400);
}

TEST_F(TitledWindowContract, ItsFrameIsItsContentAndATitleBar) {
    const Size size{500, 450};
    window->setContentSize(size);
    EXPECT_EQ(window->contentSize(), size);
    const auto framed = desktop().titledWindows().frameSize(size);
    EXPECT_GT(framed.height, size.height);
    EXPECT_EQ(window->frame().size, framed);
    show();
    EXPECT_TRUE(eventually([&] { return window->frame().size == framed && window->contentSize() == size; }));
}

TEST_F(TitledWindowContract, ItStandsWhereItIsPutBeforeItIsShownAndAfterwards) {
    window->setFrameOrigin({200, 150});
    EXPECT_EQ(window->frame().origin, (ScreenPoint{200, 150}));
    show();
    pass(quietTime);
    EXPECT_EQ(window->frame().origin, (ScreenPoint{200, 150}));
    window->setFrameOrigin({260, 170});
    EXPECT_EQ(window->frame().origin, (ScreenPoint{260, 170}));
    pass(quietTime);
    EXPECT_EQ(window->frame().origin, (ScreenPoint{260, 170}));
}

TEST_F(TitledWindowContract, ItTakesAFrame) {
    show();
    const ScreenRect frame{{120, 90}, desktop().titledWindows().frameSize({480, 420})};
    window->setFrame(frame, true);
    EXPECT_EQ(window->frame(), frame);
    pass(quietTime);
    EXPECT_EQ(window->frame(), frame);
    EXPECT_EQ(window->contentSize(), (Size{480, 420}));
}

TEST_F(TitledWindowContract, InTheCentreItLiesOnAScreen) {
    window->center();
    show();
    const auto screen = window->screen();
    ASSERT_TRUE(screen);
    EXPECT_NEAR(window->frame().minX() + window->frame().size.width / 2,
                screen->visibleFrame.minX() + screen->visibleFrame.size.width / 2, 1);
}

TEST_F(TitledWindowContract, FarFromEveryScreenItLiesOnNone) {
    window->setFrameOrigin({-9000, -9000});
    EXPECT_FALSE(window->screen());
}

TEST_F(TitledWindowContract, ShowingItMakesTheProgramTheActiveOne) {
    const auto other = world->openWindow("Altra", {{50, 50}, {300, 200}});
    int activations = 0;
    const auto observer = desktop().notificationCenter().addObserver(applicationDidBecomeActiveNotification,
                                                                     [&activations] { ++activations; });
    show();
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(eventually([&] { return activations == 1; }));
    world->activate(other);
    EXPECT_TRUE(eventually([&] { return desktop().titledWindows().keyWindow() == nullptr; }));
    show();
    EXPECT_TRUE(eventually([&] { return activations == 2; }));
}

TEST_F(TitledWindowContract, TheOneInFrontOfTwoHasTheKeyboardFocus) {
    show();
    const auto second = desktop().titledWindows().makeWindow("Secondo", content());
    second->makeKeyAndOrderFront();
    EXPECT_TRUE(eventually([&] { return desktop().titledWindows().keyWindow() == second.get(); }));
    show();
}

TEST_F(TitledWindowContract, ClosingHidesItAndKeepsWhatItShows) {
    show();
    Lines told;
    const auto observer =
        window->observeWillClose([&] { told.emplace_back(window->isVisible() ? "visible" : "gone"); });
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(told, Lines{"visible"});
    EXPECT_TRUE(eventually([&] { return desktop().titledWindows().keyWindow() == nullptr; }));
    const auto before = user().texts(*window);
    show();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(user().texts(*window), before);
}

TEST_F(TitledWindowContract, ItsCloseButtonDoesTheSame) {
    show();
    int closings = 0;
    const auto observer = window->observeWillClose([&closings] { ++closings; });
    user().clickCloseButton(*window);
    EXPECT_TRUE(eventually([&] { return !window->isVisible(); }));
    EXPECT_EQ(closings, 1);
}

TEST_F(TitledWindowContract, WhoHasStoppedObservingIsNotTold) {
    show();
    int closings = 0;
    auto observer = window->observeWillClose([&closings] { ++closings; });
    observer.reset();
    window->close();
    EXPECT_EQ(closings, 0);
}

TEST_F(TitledWindowContract, ItsControlsDoWhatTheContentSays) {
    show();
    user().turnSwitch(*window, "Interruttore", true);
    EXPECT_TRUE(eventuallyChanged({"on"}));
    EXPECT_TRUE(user().isOn(*window, "Interruttore"));
    user().choose(*window, "Scelta", "tre");
    EXPECT_TRUE(eventuallyChanged({"on", "option 2"}));
    user().press(*window, "Fine");
    EXPECT_TRUE(eventuallyChanged({"on", "option 2", "closing"}));
}

TEST_F(TitledWindowContract, EscapePressesTheCancelButton) {
    show();
    world->pressKey(escape);
    EXPECT_TRUE(eventuallyChanged({"closing"}));
}

TEST_F(TitledWindowContract, AnActionMayGiveTheWindowOtherContent) {
    show();
    user().press(*window, "Consenti");
    const Lines granted{"Generali", "Interruttore", "Una spiegazione", "Scelta", "due",
                        "Permessi", "Accesso",      "Autorizzata",     "Fine"};
    EXPECT_TRUE(eventually([&] { return user().texts(*window) == granted; }));
}

TEST_F(TitledWindowContract, NewValuesAreShownWithoutCallingTheActions) {
    show();
    isOn = true;
    selected = 0;
    window->setContent(content());
    EXPECT_TRUE(user().isOn(*window, "Interruttore"));
    EXPECT_EQ(user().texts(*window).at(4), "uno");
    EXPECT_TRUE(stays([&] { return changes.empty(); }));
}

TEST_F(TitledWindowContract, NothingHasTheFocusAtFirst) {
    show();
    EXPECT_TRUE(stays([&] { return !user().focusedRow(*window); }));
}

TEST_F(TitledWindowContract, TheFocusStaysWhileTheSameControlsAreShown) {
    show();
    user().focus(*window, "Scelta");
    ASSERT_EQ(user().focusedRow(*window), "Scelta");
    isOn = true;
    isGranted = true;
    window->setContent(content());
    EXPECT_TRUE(stays([&] { return user().focusedRow(*window) == "Scelta"; }));
    window->clearFirstResponder();
    EXPECT_TRUE(stays([&] { return !user().focusedRow(*window); }));
}

TEST_F(TitledWindowContract, AFormHasADocumentThatScrolls) {
    show();
    const auto extent = window->scrollExtent();
    ASSERT_TRUE(extent);
    EXPECT_GT(extent->documentHeight, 0);
    EXPECT_GT(extent->visibleHeight, 0);
    window->scrollTo(0);
}

class KeyMonitorContract : public TitledWindowContract {
protected:
    RegistrationToken monitor(TappedEvent answer) {
        return desktop().keyMonitors().addLocalMonitor([this, answer](const KeyEvent& event) {
            events.push_back(event);
            return answer;
        });
    }
    bool eventuallySeen(std::size_t count) {
        return eventually([&] { return events.size() == count; });
    }

    std::vector<KeyEvent> events;
};

TEST_F(KeyMonitorContract, AMonitorSeesKeysWithTheirModifiers) {
    show();
    const auto token = monitor(TappedEvent::swallowed);
    ASSERT_NE(token, nullptr);
    world->pressKey(plainP);
    ASSERT_TRUE(eventuallySeen(1));
    world->pressKey({0, eventFlagMaskShift | eventFlagMaskAlternate});
    ASSERT_TRUE(eventuallySeen(2));
    world->pressKey(controlCommandP);
    ASSERT_TRUE(eventuallySeen(3));
    EXPECT_EQ(events[0].keyCode, 35);
    // A platform may set bits that have no name here.
    const auto named = [](const KeyEvent& event) {
        return event.modifierFlags &
               (modifierFlagShift | modifierFlagControl | modifierFlagOption | modifierFlagCommand);
    };
    EXPECT_EQ(named(events[0]), 0U);
    EXPECT_EQ(events[1].keyCode, 0);
    EXPECT_EQ(named(events[1]), modifierFlagShift | modifierFlagOption);
    EXPECT_EQ(events[2].keyCode, 35);
    EXPECT_EQ(named(events[2]), modifierFlagControl | modifierFlagCommand);
}

TEST_F(KeyMonitorContract, WhatItSwallowsReachesNoControl) {
    show();
    const auto token = monitor(TappedEvent::swallowed);
    world->pressKey(escape);
    ASSERT_TRUE(eventuallySeen(1));
    EXPECT_TRUE(stays([&] { return changes.empty(); }));
}

TEST_F(KeyMonitorContract, WhatItLetsPassDoesWhatItDoes) {
    show();
    const auto token = monitor(TappedEvent::passes);
    world->pressKey(escape);
    ASSERT_TRUE(eventuallySeen(1));
    EXPECT_TRUE(eventuallyChanged({"closing"}));
}

TEST_F(KeyMonitorContract, AMonitorEndsWithItsTokenAlsoFromWithin) {
    show();
    RegistrationToken token;
    token = desktop().keyMonitors().addLocalMonitor([&](const KeyEvent& event) {
        events.push_back(event);
        token.reset();
        return TappedEvent::swallowed;
    });
    world->pressKey(plainP);
    ASSERT_TRUE(eventuallySeen(1));
    world->pressKey(escape);
    EXPECT_TRUE(eventuallyChanged({"closing"}));
    EXPECT_EQ(events.size(), 1U);
}

TEST_F(KeyMonitorContract, KeysInOtherProgramsAreNotSeen) {
    show();
    const auto token = monitor(TappedEvent::swallowed);
    const auto other = world->openWindow("Altra", {{50, 50}, {300, 200}});
    world->activate(other);
    ASSERT_TRUE(eventually([&] { return desktop().titledWindows().keyWindow() == nullptr; }));
    const auto before = world->keyPressesOf(other, plainP.keyCode);
    world->pressKey(plainP);
    EXPECT_TRUE(eventually([&] { return world->keyPressesOf(other, plainP.keyCode) > before; }));
    EXPECT_TRUE(events.empty());
}

} // namespace
} // namespace quillon::contract
