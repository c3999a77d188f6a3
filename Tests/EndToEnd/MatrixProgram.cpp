#include "MatrixProgram.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <tuple>

#include <unistd.h>

namespace quillon::e2e {

namespace {

std::optional<Rect> readRect(const std::string& text) {
    Rect rect;
    return std::sscanf(text.c_str(), "%d,%d,%d,%d", &rect.x, &rect.y, &rect.width, &rect.height) == 4
               ? std::optional(rect)
               : std::nullopt;
}

struct Place {
    int x = 0;
    int y = 0;
};

Place middleOf(const Rect& rect) {
    return {rect.x + rect.width / 2, rect.y + rect.height / 2};
}

bool isInstalled(const std::string& path) {
    return access(path.c_str(), X_OK) == 0;
}

/// What it writes on its standard output, without the end of the line.
std::string outputOf(const Command& command, const Desktop& desktop) {
    auto text = run(command, desktop.environment()).output;
    return text.substr(0, text.find('\n'));
}

/// The first word that begins with a digit.
std::string numberIn(const std::string& text) {
    const auto start = text.find_first_of("0123456789");
    return start == std::string::npos ? text : text.substr(start, text.find_first_of(" )-+~", start) - start);
}

/// A program with a button, a check box, a list and a text, which tells what happens to them after it has told where
/// they are, as SampleGTK.py describes it.
class ProgramWithEvents : public MatrixProgram {
public:
    [[nodiscard]] bool isReady(Interaction& user) override {
        alreadySeen = 0;
        return happens(user, "ready");
    }
    [[nodiscard]] bool click(Interaction& user) override {
        const Lines parts{"button", "check", "row"};
        return std::all_of(parts.begin(), parts.end(), [&](const auto& clicked) {
            clickMiddle(user, clicked);
            return happens(user, clicked);
        });
    }
    [[nodiscard]] bool doubleClick(Interaction& user) override {
        const auto place = middleOf(part(user, "second"));
        user.doubleClick(place.x, place.y);
        return happens(user, "selected secondo");
    }
    [[nodiscard]] bool rightClick(Interaction& user) override {
        const auto before = user.visibleWindowsOfSource();
        clickMiddle(user, "text", right);
        return user.waitUntil([&] { return user.visibleWindowsOfSource() > before; });
    }
    [[nodiscard]] bool dragSelect(Interaction& user) override {
        const auto first = part(user, "first");
        const auto second = part(user, "second");
        const int y = middleOf(first).y;
        // GTK 4 gives up the PRIMARY selection when a press ends one, and when it claims it again within the same
        // millisecond, it takes the one for the other and selects from there on.
        user.click(first.x + 1, y);
        user.waitAfterClicks();
        user.moveTo(first.x + 1, y);
        user.press();
        user.dragThrough({{first.x + 10, y}, {second.x, y}, {second.x + second.width, y}});
        user.release();
        return happens(user, "selected primo secondo");
    }
    [[nodiscard]] bool wheel(Interaction& user) override { return turnWheel(user, wheelDown, "vertical"); }
    [[nodiscard]] bool horizontalWheel(Interaction& user) override { return turnWheel(user, wheelRight, "horizontal"); }

protected:
    /// All lines so far.
    [[nodiscard]] virtual Lines events(const Interaction& user) const = 0;

private:
    [[nodiscard]] Rect part(const Interaction& user, const std::string& wanted) const {
        const auto beginning = "part " + wanted + " ";
        for (const auto& line : events(user)) {
            if (line.starts_with(beginning)) {
                return readRect(line.substr(beginning.size())).value_or(Rect());
            }
        }
        return {};
    }
    /// Waits for a line that begins like this, after those that there were when the last one had come.
    [[nodiscard]] bool happens(Interaction& user, const std::string& beginning) {
        return user.waitUntil([&] {
            const auto lines = events(user);
            const auto from = lines.begin() + static_cast<std::ptrdiff_t>(std::min(alreadySeen, lines.size()));
            const bool happened =
                std::any_of(from, lines.end(), [&](const auto& line) { return line.starts_with(beginning); });
            alreadySeen = happened ? lines.size() : alreadySeen;
            return happened;
        });
    }
    void clickMiddle(Interaction& user, const std::string& clicked, std::uint8_t button = left) const {
        const auto place = middleOf(part(user, clicked));
        user.click(place.x, place.y, button);
    }
    [[nodiscard]] bool turnWheel(Interaction& user, std::uint8_t direction, const std::string& event) {
        alreadySeen = events(user).size();
        const auto place = middleOf(part(user, "text"));
        user.turnWheel(place.x, place.y, direction, 2);
        return happens(user, event);
    }

    std::size_t alreadySeen = 0;
};

/// Of those beside this file.
class SampleProgram : public ProgramWithEvents {
public:
    SampleProgram(std::string toolkit, Command start, Command check)
        : toolkit(std::move(toolkit)), start(std::move(start)), check(std::move(check)) {}

    [[nodiscard]] std::string name() const override { return toolkit; }
    [[nodiscard]] Command command(const Desktop& desktop) override {
        if (!isInstalled(check.front()) || run(check, desktop.environment()).status != 0) {
            return {};
        }
        eventsFile = desktop.directory() / "events";
        auto whole = start;
        whole.push_back(eventsFile.string());
        return whole;
    }
    [[nodiscard]] std::string version(const Desktop& /*desktop*/) const override {
        return numberIn(linesOf(eventsFile).front());
    }

private:
    [[nodiscard]] Lines events(const Interaction& /*user*/) const override { return linesOf(eventsFile); }

    std::string toolkit;
    Command start;
    /// Succeeds when all is installed.
    Command check;
    std::filesystem::path eventsFile;
};

std::shared_ptr<MatrixProgram> gtk(const std::string& version) {
    return std::make_shared<SampleProgram>(
        "GTK " + version.substr(0, 1), Command{"/usr/bin/python3", SAMPLES "/SampleGTK.py", version},
        Command{"/usr/bin/python3", "-c", "import gi; gi.require_version('Gtk', '" + version + "')"});
}

std::shared_ptr<MatrixProgram> qt(const std::string& version) {
    return std::make_shared<SampleProgram>("Qt " + version,
                                           Command{"/usr/bin/python3", SAMPLES "/SampleQt.py", version},
                                           Command{"/usr/bin/python3", "-c", "import PyQt" + version});
}

class TkProgram final : public SampleProgram {
public:
    TkProgram()
        : SampleProgram("Tk", {"/usr/bin/wish", SAMPLES "/SampleTk.tcl"}, {"/usr/bin/test", "-x", "/usr/bin/wish"}) {}

    [[nodiscard]] std::optional<std::string> obstacle(MatrixAction action) const override {
        return action == MatrixAction::accessibilityScroll ? std::optional<std::string>("not on the accessibility bus")
                                                           : std::nullopt;
    }
};

/// A page with the same parts, whose title is what has happened.
class Chromium final : public ProgramWithEvents {
public:
    [[nodiscard]] bool isLarge() const override { return true; }
    [[nodiscard]] std::string name() const override { return "Chromium"; }
    [[nodiscard]] Command command(const Desktop& desktop) override {
        if (!isInstalled(path)) {
            return {};
        }
        // It refuses its sandbox to root, and shows its parts to the accessibility bus only when it is told to.
        return {path,
                "--app=file://" SAMPLES "/SamplePage.html",
                "--user-data-dir=" + (desktop.directory() / "chromium").string(),
                "--no-sandbox",
                "--no-first-run",
                "--disable-gpu",
                "--disable-background-networking",
                "--disable-component-update",
                "--password-store=basic",
                "--force-renderer-accessibility"};
    }
    [[nodiscard]] std::string version(const Desktop& desktop) const override {
        return numberIn(outputOf({path, "--version"}, desktop));
    }
    [[nodiscard]] std::optional<std::string> obstacle(MatrixAction action) const override {
        return action == MatrixAction::accessibilityScroll
                   ? std::optional<std::string>("tells the accessibility bus of no scroll bars")
                   : std::nullopt;
    }

private:
    [[nodiscard]] Lines events(const Interaction& user) const override {
        Lines lines;
        std::istringstream title(user.titleOf(user.sourceWindow()));
        for (std::string line; std::getline(title, line, ';');) {
            lines.push_back(line);
        }
        return lines;
    }

    static constexpr auto path = "/usr/bin/chromium";
};

/// The mouse belongs to the program in the terminal until it has been clicked once.
class Xterm final : public MatrixProgram {
public:
    [[nodiscard]] std::string name() const override { return "xterm"; }
    [[nodiscard]] Command command(const Desktop& desktop) override {
        if (!isInstalled(path)) {
            return {};
        }
        clicks = desktop.directory() / "clicks";
        const auto script = desktop.directory() / "script";
        std::ofstream(script) << "while [ \"$(stty size)\" != '38 116' ]; do sleep 0.05; done\n"
                                 "stty raw -echo\n"
                                 "seq -f '%g\r' 100 200\n"
                                 "printf '\\033[2J\\033[Hprimo secondo terzo\\033[?1000h'\n"
                                 "dd bs=1 count=6 of="
                              << clicks.string() << "\nprintf '\\033[?1000l\\r\\nfine'\nexec sleep 1000\n";
        return {path, "-fn", "6x13", "-b", "2", "-bw", "0", "+sb", "-e", "sh", script.string()};
    }
    [[nodiscard]] bool isReady(Interaction& user) override {
        return user.waitUntil([&] { return std::filesystem::exists(clicks); });
    }
    [[nodiscard]] std::string version(const Desktop& desktop) const override {
        return numberIn(outputOf({path, "-version"}, desktop).substr(std::string_view("XTerm(").size()));
    }
    [[nodiscard]] std::optional<std::string> obstacle(MatrixAction action) const override {
        switch (action) {
        case MatrixAction::horizontalWheel:
            return "nothing scrolls sideways";
        case MatrixAction::accessibilityScroll:
            return "not on the accessibility bus";
        default:
            return std::nullopt;
        }
    }

    [[nodiscard]] bool click(Interaction& user) override {
        user.click(xOf(3), lineY);
        // What a terminal sends for a press.
        constexpr std::uintmax_t reportSize = 6;
        return user.waitUntil([&] { return std::filesystem::file_size(clicks) == reportSize; });
    }
    [[nodiscard]] bool doubleClick(Interaction& user) override {
        user.doubleClick(xOf(8), lineY);
        return user.becomesSelected("secondo");
    }
    /// xterm has no menu at the right button: it moves the selection's end.
    [[nodiscard]] bool rightClick(Interaction& user) override {
        user.turnWheel(xOf(0), lineY, wheelDown, 10);
        user.waitAfterClicks();
        user.click(xOf(0) - 2, lineY);
        user.click(xOf(5) - 2, lineY, right);
        return user.becomesSelected("primo");
    }
    [[nodiscard]] bool dragSelect(Interaction& user) override {
        user.moveTo(xOf(0) - 2, lineY);
        user.press();
        user.dragThrough({{xOf(2), lineY}, {xOf(8), lineY}, {xOf(13) - 2, lineY}});
        user.release();
        return user.becomesSelected("primo secondo");
    }
    [[nodiscard]] bool wheel(Interaction& user) override {
        return user.changesPicture([&] { user.turnWheel(xOf(3), lineY, wheelUp, 3); });
    }
    [[nodiscard]] bool horizontalWheel(Interaction& user) override {
        return user.changesPicture([&] { user.turnWheel(xOf(3), lineY, wheelRight, 3); });
    }

private:
    static constexpr auto path = "/usr/bin/xterm";
    /// Of the font 6x13, within the border of 2 pixels.
    static constexpr int xOf(int column) { return 2 + 6 * column + 3; }
    static constexpr int lineY = 2 + 6;

    std::filesystem::path clicks;
};

/// A page wider and higher than the window, full of large words.
class Writer final : public MatrixProgram {
public:
    [[nodiscard]] bool isLarge() const override { return true; }
    [[nodiscard]] std::string name() const override { return "LibreOffice Writer"; }
    [[nodiscard]] Command command(const Desktop& desktop) override {
        if (!isInstalled(path) || !std::filesystem::exists("/usr/lib/libreoffice/program/libvclplug_gtk3lo.so")) {
            return {};
        }
        const auto directory = desktop.directory() / "writer";
        writeSettings(directory);
        // The first start only fills the directory.
        const auto profile = "-env:UserInstallation=file://" + directory.string();
        std::ignore = run({path, profile, "--headless", "--terminate_after_init"}, desktop.environment());
        const auto document = desktop.directory() / "testo.fodt";
        std::ofstream(document) << text();
        return {"/usr/bin/env",
                "SAL_USE_VCLPLUGIN=gtk3",
                path,
                "-env:UserInstallation=file://" + directory.string(),
                "--norestore",
                "--nologo",
                "--nolockcheck",
                document.string()};
    }
    [[nodiscard]] bool isReady(Interaction& user) override {
        return user.waitUntil([&] { return user.titleOf(user.sourceWindow()).starts_with("testo"); }) &&
               user.hasSettled(Milliseconds(700));
    }
    [[nodiscard]] std::string version(const Desktop& desktop) const override {
        return numberIn(
            outputOf({"/usr/bin/dpkg-query", "--show", "--showformat=${Version}", "libreoffice-writer"}, desktop)
                .substr(2));
    }

    /// What the double-click has selected is selected no more.
    [[nodiscard]] bool click(Interaction& user) override {
        return doubleClick(user) && user.changesPicture([&] { user.click(x + 150, y + 60); });
    }
    [[nodiscard]] bool doubleClick(Interaction& user) override {
        user.doubleClick(x, y);
        return user.waitUntil([&] {
            const auto selected = user.selected();
            return selected == "primo" || selected == "secondo" || selected == "terzo";
        });
    }
    [[nodiscard]] bool rightClick(Interaction& user) override {
        const auto before = user.visibleWindowsOfSource();
        user.click(x, y, right);
        return user.waitUntil([&] { return user.visibleWindowsOfSource() > before; });
    }
    /// In another line than the double-click, whose word would be dragged away.
    [[nodiscard]] bool dragSelect(Interaction& user) override {
        constexpr int otherY = y + 70;
        user.moveTo(x, otherY);
        user.press();
        user.dragThrough({{x + 20, otherY}, {x + 100, otherY}, {x + 200, otherY}});
        user.release();
        return user.waitUntil([&] {
            constexpr std::size_t longestWord = 7;
            return user.selected().size() > longestWord;
        });
    }
    [[nodiscard]] bool wheel(Interaction& user) override {
        return user.changesPicture([&] { user.turnWheel(x, y, wheelDown, 2); });
    }
    [[nodiscard]] bool horizontalWheel(Interaction& user) override {
        return user.changesPicture([&] { user.turnWheel(x, y, wheelRight, 2); });
    }

private:
    static constexpr auto path = "/usr/lib/libreoffice/program/soffice.bin";
    /// In the page, below all bars.
    static constexpr int x = 250;
    static constexpr int y = 330;

    /// No tip of the day, which would be a window of its own, and no window of the screen's size.
    static void writeSettings(const std::filesystem::path& directory) {
        std::filesystem::create_directories(directory / "user");
        std::ofstream(directory / "user" / "registrymodifications.xcu") << R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="ShowTipOfTheDay"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="FirstRun"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Setup/Office/Factories/org.openoffice.Setup:Factory['com.sun.star.text.TextDocument']">
<prop oor:name="ooSetupFactoryWindowAttributes"><value>150,100,700,498;1;0,0,0,0;</value></prop></item>
</oor:items>
)";
    }
    static std::string text() {
        std::string document = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
    xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
    xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
    xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
    office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text">
<office:styles><style:default-style style:family="paragraph">
<style:text-properties fo:font-size="24pt"/></style:default-style></office:styles>
<office:automatic-styles><style:page-layout style:name="page"><style:page-layout-properties
    fo:page-width="40cm" fo:page-height="30cm" fo:margin="0.5cm"/></style:page-layout></office:automatic-styles>
<office:master-styles><style:master-page style:name="Standard" style:page-layout-name="page"/></office:master-styles>
<office:body><office:text>)";
        for (int line = 0; line < 100; ++line) {
            document += "<text:p>primo secondo terzo primo secondo terzo primo secondo terzo</text:p>";
        }
        return document + "</office:text></office:body></office:document>";
    }
};

} // namespace

std::vector<std::shared_ptr<MatrixProgram>> matrixPrograms() {
    return {std::make_shared<Xterm>(),    std::make_shared<TkProgram>(), gtk("3.0"), gtk("4.0"), qt("5"), qt("6"),
            std::make_shared<Chromium>(), std::make_shared<Writer>()};
}

} // namespace quillon::e2e
