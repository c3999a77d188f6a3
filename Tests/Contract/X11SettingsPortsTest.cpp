// What the files and programs of a desktop make of the ports behind the settings window.

#include "Platform/X11/LoginItem.h"
#include "Platform/X11/URLOpening.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <sys/wait.h>

namespace quillon::x11 {
namespace {

/// A directory of the test's own.
class SettingsPortsTest : public testing::Test {
protected:
    SettingsPortsTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "quillon-ports-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = pattern;
    }
    ~SettingsPortsTest() override {
        for (const auto& [name, value] : before) {
            if (value) {
                setenv(name.c_str(), value->c_str(), 1);
            } else {
                unsetenv(name.c_str());
            }
        }
        std::filesystem::remove_all(directory);
    }

    void setVariable(const std::string& name, const std::string& value) {
        const auto* old = std::getenv(name.c_str());
        before.emplace_back(name, old != nullptr ? std::optional<std::string>(old) : std::nullopt);
        setenv(name.c_str(), value.c_str(), 1);
    }
    static std::string content(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path directory;

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> before;
};

class X11LoginItemTest : public SettingsPortsTest {
protected:
    void SetUp() override {
        setVariable("XDG_CONFIG_HOME", directory.string());
        item.emplace();
    }
    void write(const std::string& text) const {
        std::filesystem::create_directories(entry.parent_path());
        std::ofstream(entry) << text;
    }

    std::optional<X11LoginItem> item;
    const std::filesystem::path entry = directory / "autostart" / "local.quillon.floating.desktop";
};

TEST_F(X11LoginItemTest, WritesAnEntryThatStartsTheRunningProgram) {
    ASSERT_TRUE(item->registerItem());
    const auto text = content(entry);
    const auto program = std::filesystem::read_symlink("/proc/self/exe").string();
    EXPECT_TRUE(text.starts_with("[Desktop Entry]\nType=Application\nName=Quillon\n")) << text;
    EXPECT_NE(text.find("\nExec=\"" + program + "\"\n"), std::string::npos) << text;
}

TEST_F(X11LoginItemTest, KeepsWhatTheUserChangedInAnEntry) {
    const std::string edited = "# mia\n[Desktop Entry]\nExec=quillon --input-routing=scroll\nName=Mio\n";
    write(edited + "X-GNOME-Autostart-enabled=false\nHidden = true\n");
    EXPECT_FALSE(item->isEnabled());
    EXPECT_TRUE(item->registerItem());
    EXPECT_TRUE(item->isEnabled());
    EXPECT_EQ(content(entry), edited);
}

TEST_F(X11LoginItemTest, ReadsOnlyTheMainGroup) {
    write("[Desktop Entry]\nExec=quillon\n#Hidden=true\n[Desktop Action A]\nHidden=true\n");
    EXPECT_TRUE(item->isEnabled());
    write("[Desktop Action A]\nExec=quillon\n");
    EXPECT_FALSE(item->isEnabled());
}

TEST_F(X11LoginItemTest, ReplacesAFileThatIsNoEntry) {
    for (const auto* text : {"", "\xff\xfe garbage", "[Desktop Entry]\nExec=\n"}) {
        write(text);
        EXPECT_FALSE(item->isEnabled());
        EXPECT_TRUE(item->registerItem());
        EXPECT_TRUE(item->isEnabled());
    }
}

TEST_F(X11LoginItemTest, FailsWhereNothingCanBeWritten) {
    std::ofstream(entry.parent_path()) << "";
    EXPECT_FALSE(item->registerItem());
    EXPECT_FALSE(item->isEnabled());
    EXPECT_FALSE(item->unregisterItem());
    EXPECT_EQ(content(entry.parent_path()), "");
}

TEST(X11LoginItemQuoting, SurvivesEveryPath) {
    EXPECT_EQ(quotedForExec("/usr/bin/quillon"), R"("/usr/bin/quillon")");
    EXPECT_EQ(quotedForExec("/home/io/le mie app/qu'illon"), R"("/home/io/le mie app/qu'illon")");
    // The value's own backslashes are doubled, then those that the quotes want.
    EXPECT_EQ(quotedForExec(R"(/a"b)"), R"("/a\\"b")");
    EXPECT_EQ(quotedForExec("/a$b`c"), R"("/a\\$b\\`c")");
    EXPECT_EQ(quotedForExec(R"(/a\b)"), R"("/a\\\\b")");
    EXPECT_EQ(quotedForExec("/100%f"), R"("/100%%f")");
    EXPECT_EQ(quotedForExec("/a\nb"), R"("/a\nb")");
}

constexpr auto accessibilityPage = "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
constexpr auto recordingPage = "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";

/// With programs that write down how they were called.
class X11URLOpeningTest : public SettingsPortsTest {
protected:
    void SetUp() override {
        setVariable("PATH", directory.string());
        setVariable("XDG_CURRENT_DESKTOP", "");
    }
    void install(const std::string& name) const {
        const auto program = directory / name;
        std::ofstream(program) << "#!/bin/sh\necho \"${0##*/}\" \"$@\" >'" << called().string() << ".new'\n/bin/mv '"
                               << called().string() << ".new' '" << called().string() << "'\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }
    /// What the URL starts; empty when nothing is started for a while.
    [[nodiscard]] std::string startedBy(std::string_view url, std::chrono::milliseconds bound) const {
        std::filesystem::remove(called());
        openURL(url);
        const auto deadline = std::chrono::steady_clock::now() + bound;
        while (!std::filesystem::exists(called()) && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return content(called());
    }
    [[nodiscard]] std::string startedBy(std::string_view url) const { return startedBy(url, std::chrono::seconds(10)); }
    void expectNothingStartedBy(std::string_view url) const {
        EXPECT_EQ(startedBy(url, std::chrono::milliseconds(200)), "") << url;
    }

private:
    [[nodiscard]] std::filesystem::path called() const { return directory / "called"; }
};

TEST_F(X11URLOpeningTest, OpensThePagesOfTheDesktopInUse) {
    for (const auto* program : {"gnome-control-center", "systemsettings", "xfce4-settings-manager"}) {
        install(program);
    }
    setVariable("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    EXPECT_EQ(startedBy(accessibilityPage), "gnome-control-center universal-access\n");
    EXPECT_EQ(startedBy(recordingPage), "gnome-control-center privacy\n");
    setVariable("XDG_CURRENT_DESKTOP", "KDE");
    EXPECT_EQ(startedBy(accessibilityPage), "systemsettings kcm_access\n");
    EXPECT_EQ(startedBy(recordingPage), "systemsettings\n");
    setVariable("XDG_CURRENT_DESKTOP", "XFCE");
    EXPECT_EQ(startedBy(accessibilityPage), "xfce4-settings-manager\n");
}

TEST_F(X11URLOpeningTest, TakesWhatIsInstalledOnAnotherDesktop) {
    install("systemsettings");
    setVariable("XDG_CURRENT_DESKTOP", "GNOME");
    EXPECT_EQ(startedBy(accessibilityPage), "systemsettings kcm_access\n");
}

TEST_F(X11URLOpeningTest, HandsOtherAddressesToTheDesktop) {
    install("xdg-open");
    EXPECT_EQ(startedBy("https://example.org/a%20b?c=d"), "xdg-open https://example.org/a%20b?c=d\n");
    EXPECT_EQ(startedBy("mailto:io@example.org"), "xdg-open mailto:io@example.org\n");
}

TEST_F(X11URLOpeningTest, DoesNothingWithoutAProgramOrAnAddress) {
    for (const auto* url : {accessibilityPage, recordingPage, "https://example.org/"}) {
        expectNothingStartedBy(url);
    }
    install("xdg-open");
    for (const auto* url : {"", "--help", "nulla", "/etc/passwd", "http://[", "%"}) {
        expectNothingStartedBy(url);
    }
}

TEST_F(X11URLOpeningTest, LeavesNoZombieBehind) {
    install("xdg-open");
    ASSERT_NE(startedBy("https://example.org/"), "");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace
} // namespace quillon::x11
