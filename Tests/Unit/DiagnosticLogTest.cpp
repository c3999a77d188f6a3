#include "DiagnosticLog.h"

#include "UnitTest.h"

namespace quillon {
namespace {

const std::string logDirectory = "/Users/anna/Library/Logs/Quillon";

class DiagnosticLogTest : public UnitTest {
protected:
    void log(const std::string& message) {
        wplog([&] { return message; });
        desktop.runUntilIdle();
    }
    std::optional<std::string> content() { return desktop.fileSystem().content(logPath); }
};

using DiagnosticLogEdgeCases = DiagnosticLogTest;
using DiagnosticLogDeathTest = DiagnosticLogTest;

TEST_F(DiagnosticLogEdgeCases, WithLoggingAbsentOrFalseNoDirectoryOrFileIsCreated) {
    const auto before = desktop.fileSystem().paths();
    log("never");
    desktop.userDefaults().store("debugLogging", false);
    log("never either");
    EXPECT_EQ(desktop.fileSystem().paths(), before);
}

TEST_F(DiagnosticLogEdgeCases, TurningLoggingOnWhileRunningStartsWithTheNextCall) {
    log("before");
    turnLoggingOn();
    log("after");
    EXPECT_EQ(takeLog(), Lines{"after"});
    desktop.userDefaults().store("debugLogging", false);
    log("off again");
    EXPECT_EQ(takeLog(), Lines{});
}

TEST_F(DiagnosticLogEdgeCases, TwoLinesFromDifferentThreadsAppearWhole) {
    turnLoggingOn();
    const auto first = desktop.scheduler().makeSerialQueue("first");
    const auto second = desktop.scheduler().makeSerialQueue("second");
    first->async([] { wplog([] { return std::string("from the first"); }); });
    second->async([] { wplog([] { return std::string("from the second"); }); });
    EXPECT_EQ(takeLog(), (Lines{"from the first", "from the second"}));
}

TEST_F(DiagnosticLogEdgeCases, ThroughASymbolicLinkNothingIsWritten) {
    turnLoggingOn();
    auto& files = desktop.fileSystem();
    files.createDirectory(logDirectory, 0700);
    files.close(files.openForAppending("/Users/anna/Library/target", 0600));
    files.makeSymbolicLink("/Users/anna/Library/target", logPath);
    log("nowhere");
    EXPECT_EQ(files.content("/Users/anna/Library/target"), "");
    EXPECT_EQ(content(), std::nullopt);
}

TEST_F(DiagnosticLogEdgeCases, ANewFileHasPermissions0600AndItsFolder0700) {
    turnLoggingOn();
    log("first");
    EXPECT_EQ(desktop.fileSystem().permissions(logPath), 0600U);
    EXPECT_EQ(desktop.fileSystem().permissions(logDirectory), 0700U);
    EXPECT_EQ(desktop.fileSystem().permissions("/Users/anna/Library/Logs"), 0700U);
}

TEST_F(DiagnosticLogEdgeCases, AMessageThatEndsInALineFeedProducesAnEmptyLine) {
    turnLoggingOn();
    log("done\n");
    EXPECT_EQ(content(), "2026-03-01 14:05:09.123  done\n\n");
}

TEST_F(DiagnosticLogTest, ALineIsTheTimeTwoBlanksTheMessageAndALineFeed) {
    turnLoggingOn();
    log("Launched successfully");
    desktop.advance(Seconds(0.5));
    log("later");
    EXPECT_EQ(content(), "2026-03-01 14:05:09.123  Launched successfully\n"
                         "2026-03-01 14:05:09.623  later\n");
}

TEST_F(DiagnosticLogTest, AMessageIsOnlyBuiltWhileLoggingIsOn) {
    int built = 0;
    const auto message = [&] {
        ++built;
        return std::string("message");
    };
    wplog(message);
    EXPECT_EQ(built, 0);
    turnLoggingOn();
    wplog(message);
    EXPECT_EQ(built, 1);
}

TEST_F(DiagnosticLogTest, WhileOffACallIsOneReadOfTheSetting) {
    const int before = desktop.userDefaults().reads();
    wplog([] { return std::string("message"); });
    EXPECT_EQ(desktop.userDefaults().reads(), before + 1);
}

TEST_F(DiagnosticLogTest, TheCallerDoesNotWaitForTheFile) {
    turnLoggingOn();
    wplog([] { return std::string("message"); });
    EXPECT_EQ(desktop.scheduler().waitingTasks("local.quillon.floating.log"), 1U);
    EXPECT_EQ(desktop.fileSystem().permissions(logDirectory), std::nullopt);
    EXPECT_EQ(takeLog(), Lines{"message"});
}

TEST_F(DiagnosticLogTest, TheFileIsOpenedAndClosedForEveryLineAndTheFolderCreatedOnce) {
    turnLoggingOn();
    desktop.journal().clear();
    log("one");
    EXPECT_EQ(desktop.fileSystem().openDescriptors(), 0U);
    log("two");
    EXPECT_EQ(desktop.journal().take({"fileSystem.openForAppending"}),
              Lines(2, "fileSystem.openForAppending " + logPath + " 600"));
    desktop.userDefaults().store("debugLogging", true);
    log("three");
    EXPECT_EQ(desktop.journal().take({"fileSystem.createDirectory"}), Lines{});
    EXPECT_EQ(takeLog(), (Lines{"one", "two", "three"}));
}

TEST_F(DiagnosticLogTest, TheFolderIsCreatedPrivate) {
    turnLoggingOn();
    desktop.journal().clear();
    log("one");
    EXPECT_EQ(desktop.journal().take({"fileSystem.createDirectory"}).front(),
              "fileSystem.createDirectory " + logDirectory + " 700");
}

TEST_F(DiagnosticLogTest, AFolderThatIsRemovedDuringTheRunIsNotCreatedAgain) {
    turnLoggingOn();
    log("kept");
    desktop.fileSystem().remove(logDirectory);
    log("lost");
    EXPECT_EQ(desktop.fileSystem().permissions(logDirectory), std::nullopt);
}

TEST_F(DiagnosticLogTest, TheNextRunCreatesTheFolderAgain) {
    turnLoggingOn();
    log("kept");
    desktop.fileSystem().remove(logDirectory);
    const PlatformScope nextRun(desktop);
    log("new");
    EXPECT_EQ(content(), "2026-03-01 14:05:09.123  new\n");
}

TEST_F(DiagnosticLogTest, AnExistingFileGrows) {
    turnLoggingOn();
    auto& files = desktop.fileSystem();
    files.createDirectory(logDirectory, 0755);
    const int descriptor = files.openForAppending(logPath, 0644);
    files.write(descriptor, "earlier\n");
    files.close(descriptor);
    log("now");
    EXPECT_EQ(content(), "earlier\n2026-03-01 14:05:09.123  now\n");
    EXPECT_EQ(files.permissions(logPath), 0644U);
}

TEST_F(DiagnosticLogTest, TextThatIsNotUTF8IsDroppedBeforeAnythingIsCreated) {
    turnLoggingOn();
    const auto before = desktop.fileSystem().paths();
    log("broken \xff");
    EXPECT_EQ(desktop.fileSystem().paths(), before);
    log("whole « è »");
    EXPECT_EQ(takeLog(), Lines{"whole « è »"});
}

TEST_F(DiagnosticLogTest, ALineThatCannotBeWrittenIsDroppedSilently) {
    turnLoggingOn();
    log("first");
    desktop.fileSystem().setOpeningFails(true);
    log("not opened");
    desktop.fileSystem().setOpeningFails(false);
    desktop.fileSystem().setFull(true);
    log("disk full");
    desktop.fileSystem().setFull(false);
    desktop.fileSystem().setPermissions(logPath, 0400);
    log("not writable");
    desktop.fileSystem().setPermissions(logPath, 0600);
    log("last");
    EXPECT_EQ(takeLog(), (Lines{"first", "last"}));
}

TEST_F(DiagnosticLogTest, AFolderThatCannotBeCreatedLosesTheLines) {
    turnLoggingOn();
    desktop.fileSystem().setPermissions("/Users/anna/Library", 0500);
    log("nowhere");
    EXPECT_EQ(content(), std::nullopt);
}

TEST_F(DiagnosticLogDeathTest, WithoutALibraryFolderTheProcessStops) {
    turnLoggingOn();
    desktop.fileSystem().setUserLibraryDirectory(std::nullopt);
    EXPECT_DEATH(log("message"), "the system reports no user Library directory");
}

} // namespace
} // namespace quillon
