#include "Interaction.h"

#include <fstream>
#include <tuple>

namespace quillon::e2e {

Lines linesOf(const std::filesystem::path& path) {
    Lines lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string joined(const Lines& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line + "\n";
    }
    return text;
}

void Interaction::moveTo(int x, int y) {
    const auto place = client.place(panel).value_or(Rect());
    pointer = {place.x + x, place.y + y};
    client.movePointer(pointer.x, pointer.y);
}

void Interaction::press(std::uint8_t button) {
    client.pressButton(button);
    // Its wheel a window gets at once.
    if (button < wheelUp || button > wheelRight) {
        client.waitForWindowManager();
    }
}

void Interaction::click(int x, int y, std::uint8_t button) {
    moveTo(x, y);
    press(button);
    waitAsAHandDoes();
    release(button);
}

void Interaction::doubleClick(int x, int y) {
    click(x, y);
    waitAsAHandDoes();
    click(x, y);
}

void Interaction::turnWheel(int x, int y, std::uint8_t direction, int steps) {
    moveTo(x, y);
    for (int step = 0; step < steps; ++step) {
        press(direction);
        release(direction);
    }
}

void Interaction::dragThrough(const std::vector<std::pair<int, int>>& places) {
    for (const auto& [x, y] : places) {
        moveTo(x, y);
        waitAsAHandDoes();
    }
}

void Interaction::waitAsAHandDoes() const {
    std::ignore = client.holdsFor([] { return true; }, Milliseconds(50));
}

void Interaction::waitAfterClicks() const {
    std::ignore = client.holdsFor([] { return true; }, Milliseconds(600));
}

bool Interaction::hasSettled(Milliseconds quietTime) const {
    return waitUntil([&] {
        const auto seen = seenAt(source);
        return client.holdsFor([&] { return seenAt(source) == seen; }, quietTime);
    });
}

testing::AssertionResult Interaction::becomesSelected(const std::string& text) {
    std::optional<std::string> seen;
    const bool same = waitUntil([&] {
        seen = client.selectedText();
        return seen == text;
    });
    return same ? testing::AssertionSuccess()
                : testing::AssertionFailure() << "selected is \"" << seen.value_or("nothing") << '"';
}

std::string Interaction::titleOf(Window window) const {
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        client.xcb(),
        xcb_get_property(client.xcb(), 0, window, client.atom("_NET_WM_NAME"), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
        nullptr));
    return reply ? std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                               static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))
                 : std::string();
}

Window Interaction::startSourceProgram(const Command& command) {
    auto started = startProgram(command);
    sourceProgram = std::move(started.program);
    source = started.window;
    return source;
}

void Interaction::pinCovered(Window window, Milliseconds quietTime) {
    source = window;
    cover = coverEverything();
    ASSERT_TRUE(client.waitUntil([&] {
        client.activate(cover->window());
        return client.holdsFor([&] { return client.activeWindow() == cover->window(); }, quietTime);
    }));
    quillon.start();
    panel = pinAndShow(source);
    ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover->window()); }));
    changesBefore = focus.changes().size();
}

testing::AssertionResult Interaction::isUndisturbed() {
    if (!client.waitUntil(
            [&] { return client.isAbove(cover->window(), source) && client.activeWindow() == cover->window(); })) {
        return testing::AssertionFailure() << "the other window lost its place or the focus";
    }
    const auto changes = focus.changes();
    for (auto index = changesBefore; index < changes.size() && !mayTakeFocus; ++index) {
        if (changes[index].owner != cover->program->pid()) {
            return testing::AssertionFailure() << "the focus went to window " << changes[index].window;
        }
    }
    return client.pointer() == pointer ? testing::AssertionSuccess()
                                       : testing::AssertionFailure() << "the pointer was moved";
}

void Interaction::TearDown() {
    if (cover && !isSwitchExpected) {
        EXPECT_TRUE(isUndisturbed());
    }
    EndToEndTest::TearDown();
}

} // namespace quillon::e2e
