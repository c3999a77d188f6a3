#include "Simulated/SimulatedTitledWindows.h"

#include "Simulated/Frames.h"
#include "Simulated/Misuse.h"

#include <algorithm>
#include <cmath>

namespace quillon::simulated {

namespace {

using Lines = std::vector<std::string>;

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

void append(Lines& lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

std::string describe(const Label& label) {
    switch (label.style) {
    case TextStyle::body:
        return label.text;
    case TextStyle::title:
        return "# " + label.text;
    case TextStyle::caption:
        return "(" + label.text + ")";
    case TextStyle::captionWarning:
        return "!" + label.text + "!";
    }
    misuse("a label of an unknown style");
}

std::string describe(const Button& button) {
    return "[" + button.title + (button.isCancel ? " ⎋]" : "]");
}

std::string describe(const RowItems& items) {
    std::string text;
    for (const auto& item : items) {
        text += text.empty() ? "" : " ";
        text += std::visit(Overloaded{
                               [](const Badge& badge) { return "{" + badge.symbolName + " " + badge.title + "}"; },
                               [](const auto& other) { return describe(other); },
                           },
                           item);
    }
    return text;
}

std::string describe(const Picker& picker) {
    return "<" + (picker.selected ? picker.options.at(*picker.selected) : "") + ">";
}

Lines describe(const FormRow& row) {
    const auto control = std::visit(Overloaded{
                                        [](const Switch& onOff) { return std::string(onOff.isOn ? "on" : "off"); },
                                        [](const auto& other) { return describe(other); },
                                    },
                                    row.control);
    Lines lines{row.title + ": " + control};
    if (!row.note.empty()) {
        lines.push_back("    " + row.note);
    }
    return lines;
}

Lines describe(const Form& form) {
    Lines lines;
    for (const auto& section : form.sections) {
        append(lines, simulated::describe(section));
    }
    lines.push_back(describe(form.closing));
    return lines;
}

Lines describe(const TextBlock& block) {
    Lines lines;
    for (const auto& label : block.labels) {
        lines.push_back(describe(label));
    }
    return lines;
}

Lines describe(const Column& column) {
    Lines lines;
    for (const auto& item : column.items) {
        append(lines, std::visit(Overloaded{
                                     [](const ApplicationIcon& icon) {
                                         return Lines{fmt::format("icon {}x{}", icon.size.width, icon.size.height)};
                                     },
                                     [](const Divider&) { return Lines{"---"}; },
                                     [](const TextBlock& block) { return describe(block); },
                                     [](const auto& other) { return Lines{describe(other)}; },
                                 },
                                 item));
    }
    return lines;
}

/// The buttons among some items.
std::vector<const Button*> buttonsAmong(const auto& items) {
    std::vector<const Button*> buttons;
    for (const auto& item : items) {
        if (const auto* button = std::get_if<Button>(&item)) {
            buttons.push_back(button);
        }
    }
    return buttons;
}

std::vector<const Button*> buttonsOf(const FormRow& row) {
    const auto* items = std::get_if<RowItems>(&row.control);
    return items == nullptr ? std::vector<const Button*>() : buttonsAmong(*items);
}

std::vector<const Button*> buttonsOf(const WindowContent& content) {
    if (const auto* column = std::get_if<Column>(&content)) {
        return buttonsAmong(column->items);
    }
    const auto& form = std::get<Form>(content);
    std::vector<const Button*> buttons;
    for (const auto& section : form.sections) {
        for (const auto& row : section.rows) {
            const auto inRow = buttonsOf(row);
            buttons.insert(buttons.end(), inRow.begin(), inRow.end());
        }
    }
    buttons.push_back(&form.closing);
    return buttons;
}

const Button& oneButton(const std::vector<const Button*>& buttons, std::string_view title) {
    const auto isWanted = [&](const Button* button) { return button->title == title; };
    if (std::ranges::count_if(buttons, isWanted) != 1) {
        misuse(fmt::format("there is not one button «{}»", title));
    }
    return **std::ranges::find_if(buttons, isWanted);
}

void requireControl(const FormRow& row, std::string_view operation) {
    const auto* control = std::get_if<Switch>(&row.control);
    const auto* picker = std::get_if<Picker>(&row.control);
    if ((control != nullptr && !control->setOn) || (picker != nullptr && !picker->select)) {
        misuse(fmt::format("{} with a control «{}» that does nothing", operation, row.title));
    }
    if (picker != nullptr && picker->selected && *picker->selected >= picker->options.size()) {
        misuse(fmt::format("{} with a selection in «{}» that is none of its options", operation, row.title));
    }
}

void requireContent(const WindowContent& content, std::string_view operation) {
    for (const auto* button : buttonsOf(content)) {
        if (!button->action) {
            misuse(fmt::format("{} with a button «{}» that does nothing", operation, button->title));
        }
    }
    if (const auto* form = std::get_if<Form>(&content)) {
        for (const auto& section : form->sections) {
            for (const auto& row : section.rows) {
                requireControl(row, operation);
            }
        }
    }
}

double sharedArea(const ScreenRect& one, const ScreenRect& other) {
    const double width = std::min(one.maxX(), other.maxX()) - std::max(one.minX(), other.minX());
    const double height = std::min(one.maxY(), other.maxY()) - std::max(one.minY(), other.minY());
    return one.intersects(other) ? width * height : 0;
}

} // namespace

std::vector<std::string> describe(const FormSection& section) {
    Lines lines{"= " + section.title};
    for (const auto& row : section.rows) {
        append(lines, describe(row));
    }
    return lines;
}

std::vector<std::string> describe(const WindowContent& content) {
    return std::visit([](const auto& kind) { return describe(kind); }, content);
}

SimulatedTitledWindow::SimulatedTitledWindow(SimulatedTitledWindows& windows, std::string title, WindowContent content,
                                             const Size& fittingSize)
    : windows(windows), ownTitle(std::move(title)), currentContent(std::move(content)),
      currentFittingSize(fittingSize), currentFrame{{0, 0}, windows.frameSize(fittingSize)}, screenChanges([this] {
          this->windows.scheduler.requireMain("ending an observation of a window's screen");
          this->windows.journal.record("titledWindow.endObservingDidChangeScreen");
      }),
      closings([this] {
          this->windows.scheduler.requireMain("ending an observation of a window's closing");
          this->windows.journal.record("titledWindow.endObservingWillClose");
      }) {
    formScrollExtent = {fittingSize.height, fittingSize.height, true};
    lastScreenFrame = screenFrame();
    windows.living.push_back(this);
}

SimulatedTitledWindow::~SimulatedTitledWindow() {
    windows.scheduler.requireMain("destroying a titled window");
    if (isPerforming) {
        misuse("a titled window was destroyed by an action of its content");
    }
    std::erase(windows.living, this);
    std::erase(windows.orderedIn, this);
    windows.journal.record("titledWindow.destroy");
}

void SimulatedTitledWindow::setContent(WindowContent newContent) {
    windows.scheduler.requireMain("TitledWindow::setContent");
    requireContent(newContent, "TitledWindow::setContent");
    windows.journal.record("titledWindow.setContent");
    const auto focusedBefore = focused ? std::optional(*findRow(*focused)) : std::nullopt;
    currentContent = std::move(newContent);
    const auto* focusedNow = focused ? findRow(*focused) : nullptr;
    if (focusedNow == nullptr || !haveSameControls(*focusedBefore, *focusedNow)) {
        focused.reset();
    }
}

Size SimulatedTitledWindow::fittingSize() const {
    windows.scheduler.requireMain("TitledWindow::fittingSize");
    return currentFittingSize;
}

Size SimulatedTitledWindow::contentSize() const {
    windows.scheduler.requireMain("TitledWindow::contentSize");
    return {currentFrame.size.width, currentFrame.size.height - titleBarHeight};
}

void SimulatedTitledWindow::setContentSize(const Size& size) {
    windows.scheduler.requireMain("TitledWindow::setContentSize");
    const auto newSize = windows.frameSize(size);
    const ScreenRect frame{{currentFrame.minX(), currentFrame.maxY() - newSize.height}, newSize};
    requireFrame(frame, "TitledWindow::setContentSize");
    windows.journal.record("titledWindow.setContentSize {}x{}", size.width, size.height);
    place(frame);
}

ScreenRect SimulatedTitledWindow::frame() const {
    windows.scheduler.requireMain("TitledWindow::frame");
    return currentFrame;
}

void SimulatedTitledWindow::setFrame(const ScreenRect& frame, bool display) {
    windows.scheduler.requireMain("TitledWindow::setFrame");
    requireFrame(frame, "TitledWindow::setFrame");
    windows.journal.record("titledWindow.setFrame {} display={}", describe(frame), display);
    place(frame);
}

void SimulatedTitledWindow::setFrameOrigin(const ScreenPoint& origin) {
    windows.scheduler.requireMain("TitledWindow::setFrameOrigin");
    requireFrame({origin, currentFrame.size}, "TitledWindow::setFrameOrigin");
    windows.journal.record("titledWindow.setFrameOrigin {},{}", origin.x, origin.y);
    place({origin, currentFrame.size});
}

void SimulatedTitledWindow::center() {
    windows.scheduler.requireMain("TitledWindow::center");
    windows.journal.record("titledWindow.center");
    if (const auto main = windows.screens.mainScreen()) {
        const auto& [origin, size] = main->visibleFrame;
        place({{origin.x + (size.width - currentFrame.size.width) * 0.5,
                origin.y + (size.height - currentFrame.size.height) * 0.5},
               currentFrame.size});
    }
}

std::optional<Screen> SimulatedTitledWindow::screen() const {
    windows.scheduler.requireMain("TitledWindow::screen");
    std::optional<Screen> most;
    for (const auto& screen : windows.screens.screens()) {
        const auto least = most ? sharedArea(most->frame, currentFrame) : 0;
        if (sharedArea(screen.frame, currentFrame) > least) {
            most = screen;
        }
    }
    return most;
}

RegistrationToken SimulatedTitledWindow::observeDidChangeScreen(std::function<void()> callback) {
    windows.scheduler.requireMain("TitledWindow::observeDidChangeScreen");
    windows.journal.record("titledWindow.observeDidChangeScreen");
    return screenChanges.add(std::move(callback));
}

bool SimulatedTitledWindow::isVisible() const {
    windows.scheduler.requireMain("TitledWindow::isVisible");
    return std::ranges::find(windows.orderedIn, this) != windows.orderedIn.end();
}

void SimulatedTitledWindow::setCollectionBehavior(CollectionBehavior behavior) {
    windows.scheduler.requireMain("TitledWindow::setCollectionBehavior");
    windows.journal.record("titledWindow.setCollectionBehavior moveToActiveSpace={}", behavior.moveToActiveSpace);
    currentBehavior = behavior;
}

void SimulatedTitledWindow::makeKeyAndOrderFront() {
    windows.scheduler.requireMain("TitledWindow::makeKeyAndOrderFront");
    windows.journal.record("titledWindow.makeKeyAndOrderFront");
    if (!currentSpace || currentBehavior.moveToActiveSpace) {
        currentSpace = windows.model.currentSpace;
    }
    windows.model.currentSpace = *currentSpace;
    std::erase(windows.orderedIn, this);
    windows.orderedIn.insert(windows.orderedIn.begin(), this);
}

void SimulatedTitledWindow::close() {
    if (!isVisible()) {
        misuse("TitledWindow::close of a window that is not on screen");
    }
    windows.journal.record("titledWindow.close");
    closings.notify();
    std::erase(windows.orderedIn, this);
}

RegistrationToken SimulatedTitledWindow::observeWillClose(std::function<void()> callback) {
    windows.scheduler.requireMain("TitledWindow::observeWillClose");
    windows.journal.record("titledWindow.observeWillClose");
    return closings.add(std::move(callback));
}

void SimulatedTitledWindow::clearFirstResponder() {
    windows.scheduler.requireMain("TitledWindow::clearFirstResponder");
    windows.journal.record("titledWindow.clearFirstResponder");
    focused.reset();
}

std::optional<ScrollExtent> SimulatedTitledWindow::scrollExtent() const {
    windows.scheduler.requireMain("TitledWindow::scrollExtent");
    return std::holds_alternative<Form>(currentContent) ? formScrollExtent : std::nullopt;
}

void SimulatedTitledWindow::scrollTo(double y) {
    if (!scrollExtent()) {
        misuse("TitledWindow::scrollTo without a scroll view");
    }
    if (!std::isfinite(y)) {
        misuse("TitledWindow::scrollTo a place that is none");
    }
    windows.journal.record("titledWindow.scrollTo {}", y);
    scrolledTo = y;
}

bool SimulatedTitledWindow::isKey() const {
    return windows.keyWindow() == this;
}

std::optional<std::string> SimulatedTitledWindow::firstResponder() const {
    return focused ? std::optional(findRow(*focused)->title) : std::nullopt;
}

void SimulatedTitledWindow::press(std::string_view button) {
    takeClick();
    perform(oneButton(buttonsOf(currentContent), button).action);
}

void SimulatedTitledWindow::press(std::string_view row, std::string_view button) {
    takeClick();
    perform(oneButton(buttonsOf(*findRow(indexOfRow(row))), button).action);
}

void SimulatedTitledWindow::turnSwitch(std::string_view row, bool on) {
    takeClick();
    auto& state = control<Switch>(row);
    if (std::exchange(state.isOn, on) == on) {
        misuse(fmt::format("the switch «{}» is turned to where it stands", row));
    }
    perform([setOn = state.setOn, on] { setOn(on); });
}

void SimulatedTitledWindow::choose(std::string_view row, std::string_view option) {
    takeClick();
    auto& picker = control<Picker>(row);
    const auto found = std::ranges::find(picker.options, option);
    if (found == picker.options.end()) {
        misuse(fmt::format("«{}» has no option «{}»", row, option));
    }
    const auto index = static_cast<std::size_t>(found - picker.options.begin());
    if (std::exchange(picker.selected, index) != index) {
        perform([select = picker.select, index] { select(index); });
    }
}

void SimulatedTitledWindow::focus(std::string_view row) {
    takeClick();
    focused = indexOfRow(row);
}

void SimulatedTitledWindow::scroll(double y) {
    requireInput();
    if (!scrollExtent()) {
        misuse("the user scrolls what does not scroll");
    }
    scrolledTo = y;
}

void SimulatedTitledWindow::drag(const ScreenPoint& origin) {
    takeClick();
    place({origin, currentFrame.size});
}

void SimulatedTitledWindow::clickCloseButton() {
    requireInput();
    close();
}

void SimulatedTitledWindow::pressEscape() {
    requireInput();
    const auto buttons = buttonsOf(currentContent);
    const auto cancel = std::ranges::find_if(buttons, [](const Button* button) { return button->isCancel; });
    if (cancel != buttons.end()) {
        perform((*cancel)->action);
    }
}

void SimulatedTitledWindow::requireInput() const {
    if (!isVisible()) {
        misuse("input on a titled window that is not on screen");
    }
    if (isPerforming) {
        misuse("input while the titled window performs an action");
    }
}

void SimulatedTitledWindow::takeClick() {
    requireInput();
    std::erase(windows.orderedIn, this);
    windows.orderedIn.insert(windows.orderedIn.begin(), this);
    windows.workspace.setFrontmost(SimulatedProcessInfo::ownPID);
}

/// Takes a copy: the action may hand the window other content.
void SimulatedTitledWindow::perform(std::function<void()> action) {
    isPerforming = true;
    action();
    isPerforming = false;
}

void SimulatedTitledWindow::place(const ScreenRect& frame) {
    currentFrame = frame;
    noteScreen();
}

void SimulatedTitledWindow::noteScreen() {
    const auto now = screenFrame();
    if (std::exchange(lastScreenFrame, now) != now) {
        windows.scheduler.mainAsync(weakly([](SimulatedTitledWindow& self) { self.screenChanges.notify(); }));
    }
}

std::optional<ScreenRect> SimulatedTitledWindow::screenFrame() const {
    const auto now = screen();
    return now ? std::optional(now->frame) : std::nullopt;
}

const FormRow* SimulatedTitledWindow::findRow(const RowIndex& index) const {
    const auto* form = std::get_if<Form>(&currentContent);
    const auto [section, row] = index;
    const bool exists = form != nullptr && section < form->sections.size() && row < form->sections[section].rows.size();
    return exists ? &form->sections[section].rows[row] : nullptr;
}

SimulatedTitledWindow::RowIndex SimulatedTitledWindow::indexOfRow(std::string_view title) const {
    std::vector<RowIndex> found;
    if (const auto* form = std::get_if<Form>(&currentContent)) {
        for (std::size_t section = 0; section < form->sections.size(); ++section) {
            for (std::size_t row = 0; row < form->sections[section].rows.size(); ++row) {
                if (form->sections[section].rows[row].title == title) {
                    found.emplace_back(section, row);
                }
            }
        }
    }
    if (found.size() != 1) {
        misuse(fmt::format("there is not one row «{}»", title));
    }
    return found.front();
}

template <class Control>
Control& SimulatedTitledWindow::control(std::string_view row) {
    const auto [section, number] = indexOfRow(row);
    auto* found = std::get_if<Control>(&std::get<Form>(currentContent).sections[section].rows[number].control);
    if (found == nullptr) {
        misuse(fmt::format("the row «{}» has another control", row));
    }
    return *found;
}

std::unique_ptr<TitledWindow> SimulatedTitledWindows::makeWindow(const std::string& title, WindowContent content) {
    scheduler.requireMain("TitledWindows::makeWindow");
    requireContent(content, "TitledWindows::makeWindow");
    journal.record("titledWindows.makeWindow {}", title);
    return std::make_unique<SimulatedTitledWindow>(*this, title, std::move(content), fittingSize);
}

Size SimulatedTitledWindows::frameSize(const Size& contentSize) const {
    scheduler.requireMain("TitledWindows::frameSize");
    return {contentSize.width, contentSize.height + SimulatedTitledWindow::titleBarHeight};
}

SimulatedTitledWindow* SimulatedTitledWindows::keyWindow() const {
    scheduler.requireMain("TitledWindows::keyWindow");
    return workspace.isProgramActive() && !orderedIn.empty() ? orderedIn.front() : nullptr;
}

SimulatedTitledWindow& SimulatedTitledWindows::window(std::string_view title) const {
    const auto isWanted = [&](const SimulatedTitledWindow* window) { return window->title() == title; };
    if (std::ranges::count_if(living, isWanted) != 1) {
        misuse(fmt::format("there is not one window «{}»", title));
    }
    return **std::ranges::find_if(living, isWanted);
}

void SimulatedTitledWindows::screensChanged() {
    for (auto* window : living) {
        window->noteScreen();
    }
}

} // namespace quillon::simulated
