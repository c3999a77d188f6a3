// The diagnostic log as a file.

#include "EndToEndTest.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace quillon::e2e {

namespace {

namespace fs = std::filesystem;

class Log : public EndToEndTest {
protected:
    void switchOn() { ASSERT_EQ(quillon.command({"defaults", "write", "debugLogging", "true"}).status, 0); }
    [[nodiscard]] bool logs(const std::string& text) const {
        return client.waitUntil([&] { return quillon.log().find(text) != std::string::npos; });
    }
};

TEST_F(Log, IsNotThereUnlessSwitchedOn) {
    quillon.start();
    EXPECT_EQ(quillon.stop(), 0);
    EXPECT_FALSE(fs::exists(quillon.logFile().parent_path()));
}

TEST_F(Log, HasOneTimedLineForEachMessageAndIsPrivate) {
    const auto source = startSample();
    const auto cover = coverEverything();
    switchOn();
    quillon.start();
    std::ignore = pinAndShow(source.window());
    ASSERT_TRUE(logs("overlay: first frame 640x480px for 640.0x480.0pt @1.0x wid=" + std::to_string(source.window())));
    const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}  [A-Za-z].*)");
    std::istringstream lines(quillon.log());
    for (std::string text; std::getline(lines, text);) {
        EXPECT_TRUE(std::regex_match(text, line)) << text;
    }
    EXPECT_EQ(fs::status(quillon.logFile()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(quillon.logFile().parent_path()).permissions(), fs::perms::owner_all);
}

TEST_F(Log, IsNotWrittenThroughASymbolicLink) {
    const auto victim = desktop.directory() / "victim.txt";
    std::ofstream(victim) << "precious\n";
    fs::create_directories(quillon.logFile().parent_path());
    fs::create_symlink(victim, quillon.logFile());
    const auto source = startSample();
    const auto cover = coverEverything();
    switchOn();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    EXPECT_TRUE(shows(panel, source.window()));
    EXPECT_EQ(quillon.stop(), 0);
    EXPECT_EQ(quillon.program().errors(), "");
    EXPECT_EQ(quillon.log(), "precious\n");
    EXPECT_TRUE(fs::is_symlink(quillon.logFile()));
}

TEST_F(Log, OnAFullDiskIsLostSilently) {
    // A file that takes nothing, laid over the log in a mount namespace of the program's own.
    const auto directory = quillon.logFile().parent_path();
    fs::create_directories(directory);
    std::ofstream(quillon.logFile()).flush();
    const std::string script = "mount --bind /dev/full \"$1\" && shift && exec \"$@\"";
    const Command isolated{"unshare", "--user", "--map-current-user",      "--keep-caps", "--mount", "sh", "-c",
                           script,    "sh",     quillon.logFile().string()};
    auto attempt = isolated;
    attempt.push_back("true");
    if (run(attempt, desktop.environment()).status != 0) {
        GTEST_SKIP() << "this system lets nobody make a mount namespace";
    }
    const auto source = startSample();
    const auto cover = coverEverything();
    switchOn();
    quillon.start(isolated);
    const auto panel = pinAndShow(source.window());
    EXPECT_TRUE(shows(panel, source.window()));
    EXPECT_EQ(quillon.stop(), 0);
    EXPECT_EQ(quillon.program().errors(), "");
    EXPECT_EQ(quillon.log(), "");
}

struct BadTitle {
    std::string name;
    std::string bytes;
};

void PrintTo(const BadTitle& title, std::ostream* stream) {
    *stream << title.name;
}

class TitleOf : public Log, public testing::WithParamInterface<BadTitle> {};

TEST_P(TitleOf, AnyKindIsPinnedListedAndLoggedSafely) {
    const auto source = startSample();
    client.setTitle(source.window(), GetParam().bytes);
    const auto cover = coverEverything();
    switchOn();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    EXPECT_TRUE(shows(panel, source.window()));

    const auto number = std::to_string(source.window());
    const auto list = quillon.command({"list"}).output;
    EXPECT_TRUE(list.starts_with(number + "\t")) << list;
    EXPECT_EQ(list.find('\n'), list.size() - 1) << list;
    // Forty characters at most, which may be of many bytes each.
    EXPECT_LT(list.size(), 1200U);
    for (const auto& text : {list, quillon.command({"--list-windows"}).output}) {
        for (const char byte : text) {
            const auto code = static_cast<unsigned char>(byte);
            EXPECT_TRUE(code >= 0x20 || byte == '\n' || byte == '\t') << static_cast<int>(code);
        }
        EXPECT_NO_THROW(std::ignore = fs::u8path(text)) << text;
    }

    ASSERT_TRUE(logs("overlay: first frame "));
    const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}  [A-Za-z].*)");
    std::istringstream lines(quillon.log());
    for (std::string text; std::getline(lines, text);) {
        EXPECT_LT(text.size(), 5000U);
        EXPECT_TRUE(std::regex_match(text, line)) << text;
    }
    EXPECT_NE(quillon.log().find("overlay: resolved SCWindow for wid=" + number + " title='"), std::string::npos);
    EXPECT_EQ(quillon.unpin(source.window()).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Titles, TitleOf,
                         testing::Values(BadTitle{"Empty", ""}, BadTitle{"Huge", std::string(100000, 'x')},
                                         BadTitle{"NotUtf8", "a\xff\xfe\xc3(\xed\xa0\x80z"},
                                         BadTitle{"ControlCharacters", "one\ntwo\rthree\x1b[31mred\tafter\x7f\x01"},
                                         BadTitle{"FormatLetters", "%s%n{} {0} '; $(reboot)"},
                                         BadTitle{"Combining", "e" +
                                                                   [] {
                                                                       std::string marks;
                                                                       for (int count = 0; count < 2000; ++count) {
                                                                           marks += "\xcc\x81";
                                                                       }
                                                                       return marks;
                                                                   }()}),
                         [](const auto& title) { return title.param.name; });

class WindowWithoutAProcessNumber : public EndToEndTest {};

TEST_F(WindowWithoutAProcessNumber, IsPinnedAndGoesWithItsProcess) {
    const auto source = startSample({"--no-pid"});
    const auto cover = coverEverything();
    ASSERT_TRUE(client.property(source.window(), "_NET_WM_PID").empty());
    quillon.start();
    const auto panel = pinAndShow(source.window());
    EXPECT_TRUE(shows(panel, source.window()));
    activate(source.window());
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(source.window(), panel); }));
    activate(cover.window());
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover.window()); }));
    source.program->send(SIGKILL);
    EXPECT_TRUE(isGone(panel, pruningBound));
    EXPECT_TRUE(quillon.pinned().empty());
}

} // namespace

} // namespace quillon::e2e
