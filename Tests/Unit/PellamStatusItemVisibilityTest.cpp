#include "PellamKit/PellamStatusItemVisibility.h"

#include "UnitTest.h"

namespace quillon {
namespace {

const std::string hiddenKey = "PellamStatusItemVisibility.Hidden.local.quillon.floating";
const std::string posted = "notificationCenter.post kit.pellam.PellamKit.StatusItemVisibilityDidChange";

class PellamStatusItemVisibilityTest : public UnitTest {
protected:
    /// What was written and posted since the last call.
    Lines changes() { return desktop.journal().take({"userDefaults.", "notificationCenter.post"}); }
};

using PellamStatusItemVisibilityEdgeCases = PellamStatusItemVisibilityTest;

TEST_F(PellamStatusItemVisibilityEdgeCases, WhatIsNoChangeIsNeitherStoredNorPosted) {
    PellamStatusItemVisibility::setVisible(true);
    EXPECT_EQ(changes(), Lines{});
    PellamStatusItemVisibility::setVisible(false);
    changes();
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_EQ(changes(), Lines{});
}

TEST_F(PellamStatusItemVisibilityEdgeCases, ReopeningWhileTheItemIsShownChangesAndPostsNothing) {
    PellamStatusItemVisibility::handleReopen();
    EXPECT_EQ(changes(), Lines{});
    EXPECT_TRUE(PellamStatusItemVisibility::isVisible());
}

TEST_F(PellamStatusItemVisibilityTest, AFreshInstallationShowsTheItem) {
    EXPECT_TRUE(PellamStatusItemVisibility::isVisible());
}

TEST_F(PellamStatusItemVisibilityTest, HidingStoresAndAnnouncesIt) {
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_EQ(changes(), (Lines{"userDefaults.set " + hiddenKey + "=true", posted}));
    EXPECT_FALSE(PellamStatusItemVisibility::isVisible());
}

TEST_F(PellamStatusItemVisibilityTest, ShowingAgainStoresAndAnnouncesIt) {
    desktop.userDefaults().store(hiddenKey, true);
    PellamStatusItemVisibility::setVisible(true);
    EXPECT_EQ(changes(), (Lines{"userDefaults.set " + hiddenKey + "=false", posted}));
    EXPECT_TRUE(PellamStatusItemVisibility::isVisible());
}

TEST_F(PellamStatusItemVisibilityTest, TheChangeIsStoredBeforeItIsAnnounced) {
    std::vector<bool> seen;
    const auto observer =
        desktop.notificationCenter().addObserver(PellamStatusItemVisibility::didChangeNotification,
                                                 [&] { seen.push_back(PellamStatusItemVisibility::isVisible()); });
    PellamStatusItemVisibility::setVisible(false);
    PellamStatusItemVisibility::setVisible(true);
    EXPECT_EQ(seen, (std::vector{false, true}));
}

TEST_F(PellamStatusItemVisibilityTest, ReopeningBringsAHiddenItemBack) {
    desktop.userDefaults().store(hiddenKey, true);
    PellamStatusItemVisibility::handleReopen();
    EXPECT_EQ(changes(), (Lines{"userDefaults.set " + hiddenKey + "=false", posted}));
    PellamStatusItemVisibility::handleReopen();
    EXPECT_EQ(changes(), Lines{});
}

TEST_F(PellamStatusItemVisibilityTest, WithoutABundleIdentifierTheKeyEndsInUnknown) {
    desktop.processInfo().setBundleIdentifier(std::nullopt);
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_EQ(changes().front(), "userDefaults.set PellamStatusItemVisibility.Hidden.unknown=true");
}

} // namespace
} // namespace quillon
