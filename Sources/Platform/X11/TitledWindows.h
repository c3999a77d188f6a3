#pragma once

#include "Platform/TitledWindow.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Handlers.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace quillon {
struct Menu;
}

namespace quillon::x11 {

class DesktopAppearance;
class FormView;
class X11Application;
class X11TitledWindows;

/// A window of Qt's. One of Qt's own pixels is a point here.
class X11TitledWindow final : public TitledWindow {
public:
    X11TitledWindow(X11TitledWindows& owner, const std::string& title, WindowContent content);
    ~X11TitledWindow() override;

    void setContent(WindowContent content) override;
    [[nodiscard]] Size fittingSize() const override;
    [[nodiscard]] Size contentSize() const override;
    void setContentSize(const Size& size) override;
    [[nodiscard]] ScreenRect frame() const override;
    void setFrame(const ScreenRect& frame, bool display) override;
    void setFrameOrigin(const ScreenPoint& origin) override;
    void center() override;
    [[nodiscard]] std::optional<Screen> screen() const override;
    [[nodiscard]] RegistrationToken observeDidChangeScreen(std::function<void()> callback) override;
    [[nodiscard]] bool isVisible() const override;
    void setCollectionBehavior(CollectionBehavior newBehavior) override { behavior = newBehavior; }
    void makeKeyAndOrderFront() override;
    void close() override;
    [[nodiscard]] RegistrationToken observeWillClose(std::function<void()> callback) override;
    void clearFirstResponder() override;
    [[nodiscard]] std::optional<ScrollExtent> scrollExtent() const override;
    void scrollTo(double y) override;

    [[nodiscard]] QWidget& qtWidget() const;
    /// Asks the window manager to give it the keyboard focus.
    void activate() const;

private:
    class Widget;
    enum class Event { screenChange, closing };

    void replaceView(QWidget* newView);
    /// Keeps up with the application's main menu.
    void updateKeyEquivalents();
    void followScreen();
    [[nodiscard]] Margins margins() const;

    X11TitledWindows& owner;
    std::unique_ptr<Widget> widget;
    QWidget* view = nullptr;
    /// The same as `view` when it is a form, else null.
    FormView* form = nullptr;
    CollectionBehavior behavior;
    std::optional<ScreenRect> lastScreen;
    std::shared_ptr<Menu> menuOfKeys;
    Handlers<Event> observers;
};

class X11TitledWindows final : public TitledWindows {
    friend X11TitledWindow;

public:
    /// All must outlive the port.
    X11TitledWindows(Connection& connection, Screens& screens, const ClientWindows& clientWindows,
                     DesktopAppearance& appearance, X11Application& application);
    ~X11TitledWindows() override;

    [[nodiscard]] std::unique_ptr<TitledWindow> makeWindow(const std::string& title, WindowContent content) override;
    [[nodiscard]] Size frameSize(const Size& contentSize) const override;
    [[nodiscard]] TitledWindow* keyWindow() const override;

private:
    [[nodiscard]] Margins defaultMargins() const;

    Connection& connection;
    Screens& screens;
    const ClientWindows& clientWindows;
    DesktopAppearance& appearance;
    X11Application& application;
    /// In the order in which they were last brought to the front.
    std::vector<X11TitledWindow*> windows;
    /// Asked for on first use.
    mutable std::optional<Margins> askedMargins;
};

} // namespace quillon::x11
