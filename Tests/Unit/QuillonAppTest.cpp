#include "QuillonApp.h"

#include "AppDelegate.h"
#include "UnitTest.h"

#include <algorithm>

namespace quillon {
namespace {

constexpr DisplayRect here{{100, 50}, {800, 600}};

using QuillonAppTest = UnitTest;
using QuillonAppDeathTest = UnitTest;

TEST_F(QuillonAppTest, TheDelegateIsSetBeforeTheLoopRunsAndLivesAsLong) {
    auto& application = *desktop.sharedApplication();
    application.whileRunning([&] {
        EXPECT_NE(application.delegate(), nullptr);
        application.terminate();
    });
    EXPECT_EQ(runQuillonApp(), 0);
    EXPECT_EQ(application.delegate(), nullptr);
    EXPECT_EQ(desktop.journal().take({"application."}),
              (Lines{"application.setDelegate", "application.run", "application.setMainMenu",
                     "application.setActivationPolicy accessory", "application.terminate"}));
}

TEST_F(QuillonAppTest, AWholeRunFromPinToQuit) {
    turnLoggingOn();
    const auto notes = desktop.launch("Note");
    const auto windowID = desktop.openWindow(notes, "Spesa", here);
    const auto mail = desktop.launch("Mail");
    auto& application = *desktop.sharedApplication();
    application.whileRunning([&] {
        desktop.activate(notes);
        desktop.advance(Seconds(1));
        application.delegate()->performScriptCommand({"toggle", {}});
        desktop.advance(Seconds(1));
        desktop.activate(mail);
        desktop.advance(Seconds(1));
        ASSERT_EQ(desktop.panels().stack().size(), 1U);
        const auto& panel = *desktop.panels().stack().front();
        EXPECT_EQ(panel.level(), floatingWindowLevel);
        EXPECT_EQ(panel.alphaValue(), 1);
        EXPECT_NE(panel.contentView()->sublayers().front()->contents(), nullptr);
        application.terminate();
    });
    EXPECT_EQ(runQuillonApp(), 0);
    EXPECT_TRUE(desktop.panels().all().empty());

    const auto number = std::to_string(windowID);
    const auto log = takeLog();
    const auto launched = std::find(log.begin(), log.end(), "Launched successfully");
    ASSERT_NE(launched, log.end());
    EXPECT_EQ(Lines(launched + 1, log.end()),
              (Lines{
                  "pin: overlay created for wid=" + number,
                  "togglePin: Pinned 'Spesa' (wid=" + number + ")",
                  "overlay: resolved SCWindow for wid=" + number + " title='Spesa'",
                  "overlay: bringToFront wid=" + number,
                  "overlay: stream starting wid=" + number + " maxFPS=30.0",
                  "overlay: first frame 1600x1200px for 800.0x600.0pt @2.0x wid=" + number,
                  "overlay: hideOverlay wid=" + number,
              }));
}

TEST_F(QuillonAppDeathTest, WithoutAnApplicationObjectTheProcessStops) {
    desktop.removeApplicationObject();
    EXPECT_DEATH(runQuillonApp(), "there is no shared application");
}

} // namespace
} // namespace quillon
