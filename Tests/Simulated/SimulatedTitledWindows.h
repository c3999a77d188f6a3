#pragma once

#include "HeldWeakly.h"
#include "Platform/TitledWindow.h"
#include "Simulated/DesktopModel.h"
#include "Simulated/Observers.h"
#include "Simulated/SimulatedScreens.h"
#include "Simulated/SimulatedWorkspace.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::simulated {

class SimulatedTitledWindows;

/// A line of text for each thing that is shown: "= Generali" for a section, "Titolo: on" for a row, its note after four
/// blanks. A switch is "on" or "off", a picker "<30 fps>", a label its text, "(text)" as a caption and "!text!" as a
/// warning, "# text" as a title, a button "[Fine]" or "[Fine ⎋]", a badge "{symbol text}".
[[nodiscard]] std::vector<std::string> describe(const FormSection& section);
[[nodiscard]] std::vector<std::string> describe(const WindowContent& content);

/// What a user does to a control brings the window to the front and makes the program active, as a click does. The
/// control shows its new state before its action is called. Controls are named by their texts, of which there has to be
/// one each.
class SimulatedTitledWindow final : public TitledWindow, private HeldWeakly<SimulatedTitledWindow> {
    friend HeldWeakly<SimulatedTitledWindow>;

public:
    static constexpr double titleBarHeight = 28;

    SimulatedTitledWindow(SimulatedTitledWindows& windows, std::string title, WindowContent content,
                          const Size& fittingSize);
    ~SimulatedTitledWindow() override;

    void setContent(WindowContent newContent) override;
    [[nodiscard]] Size fittingSize() const override;
    [[nodiscard]] Size contentSize() const override;
    /// The upper left corner stays where it is.
    void setContentSize(const Size& size) override;
    [[nodiscard]] ScreenRect frame() const override;
    void setFrame(const ScreenRect& frame, bool display) override;
    void setFrameOrigin(const ScreenPoint& origin) override;
    /// On the main screen.
    void center() override;
    [[nodiscard]] std::optional<Screen> screen() const override;
    [[nodiscard]] RegistrationToken observeDidChangeScreen(std::function<void()> callback) override;
    [[nodiscard]] bool isVisible() const override;
    void setCollectionBehavior(CollectionBehavior behavior) override;
    void makeKeyAndOrderFront() override;
    void close() override;
    [[nodiscard]] RegistrationToken observeWillClose(std::function<void()> callback) override;
    void clearFirstResponder() override;
    [[nodiscard]] std::optional<ScrollExtent> scrollExtent() const override;
    void scrollTo(double y) override;

    [[nodiscard]] const std::string& title() const { return ownTitle; }
    [[nodiscard]] const WindowContent& content() const { return currentContent; }
    /// What it shows, as `describe` tells it.
    [[nodiscard]] std::vector<std::string> lines() const { return describe(currentContent); }
    [[nodiscard]] bool isKey() const;
    [[nodiscard]] CollectionBehavior collectionBehavior() const { return currentBehavior; }
    /// None before it was shown.
    [[nodiscard]] std::optional<int> space() const { return currentSpace; }
    /// Not at either end before anything has scrolled.
    [[nodiscard]] double scrollPosition() const { return scrolledTo; }
    /// The title of the row whose control has the keyboard focus.
    [[nodiscard]] std::optional<std::string> firstResponder() const;

    void setFittingSize(const Size& size) { currentFittingSize = size; }
    /// Of a form; a column never scrolls.
    void setScrollExtent(std::optional<ScrollExtent> extent) { formScrollExtent = extent; }

    // What the user does.
    void press(std::string_view button);
    void press(std::string_view row, std::string_view button);
    void turnSwitch(std::string_view row, bool on);
    void choose(std::string_view row, std::string_view option);
    void focus(std::string_view row);
    void scroll(double y);
    void drag(const ScreenPoint& origin);
    void clickCloseButton();
    /// Presses the cancel button, if there is one.
    void pressEscape();

private:
    friend SimulatedTitledWindows;

    /// A row by the numbers of its section and of itself.
    using RowIndex = std::pair<std::size_t, std::size_t>;

    /// Stops the test unless the user can do something to the window now.
    void requireInput() const;
    /// A click somewhere in it.
    void takeClick();
    void perform(std::function<void()> action);
    void place(const ScreenRect& frame);
    void noteScreen();
    [[nodiscard]] std::optional<ScreenRect> screenFrame() const;
    /// Null when there is no such row.
    [[nodiscard]] const FormRow* findRow(const RowIndex& index) const;
    [[nodiscard]] RowIndex indexOfRow(std::string_view title) const;
    /// The row's control of that type; stops the test when it has another one.
    template <class Control>
    [[nodiscard]] Control& control(std::string_view row);

    SimulatedTitledWindows& windows;
    std::string ownTitle;
    WindowContent currentContent;
    Size currentFittingSize;
    ScreenRect currentFrame;
    std::optional<ScreenRect> lastScreenFrame;
    CollectionBehavior currentBehavior;
    std::optional<int> currentSpace;
    std::optional<ScrollExtent> formScrollExtent;
    double scrolledTo = 120;
    std::optional<RowIndex> focused;
    bool isPerforming = false;
    Observers<> screenChanges;
    Observers<> closings;
};

/// One of them is key while this program is the active one: the one that is in front of the others.
class SimulatedTitledWindows final : public TitledWindows {
public:
    SimulatedTitledWindows(DesktopModel& model, SimulatedScreens& screens, SimulatedWorkspace& workspace,
                           SimulatedScheduler& scheduler, Journal& journal)
        : model(model), screens(screens), workspace(workspace), scheduler(scheduler), journal(journal) {}

    [[nodiscard]] std::unique_ptr<TitledWindow> makeWindow(const std::string& title, WindowContent content) override;
    [[nodiscard]] Size frameSize(const Size& contentSize) const override;
    [[nodiscard]] SimulatedTitledWindow* keyWindow() const override;

    /// The living windows in the order of their creation.
    [[nodiscard]] const std::vector<SimulatedTitledWindow*>& all() const { return living; }
    /// The visible ones, front to back.
    [[nodiscard]] const std::vector<SimulatedTitledWindow*>& stack() const { return orderedIn; }
    /// The living window of that title.
    [[nodiscard]] SimulatedTitledWindow& window(std::string_view title) const;
    /// Of the windows that are made from now on.
    void setFittingSize(const Size& size) { fittingSize = size; }
    /// The screens have changed under the windows.
    void screensChanged();

private:
    friend SimulatedTitledWindow;

    DesktopModel& model;
    SimulatedScreens& screens;
    SimulatedWorkspace& workspace;
    SimulatedScheduler& scheduler;
    Journal& journal;
    Size fittingSize{480, 640};
    std::vector<SimulatedTitledWindow*> living;
    std::vector<SimulatedTitledWindow*> orderedIn;
};

} // namespace quillon::simulated
