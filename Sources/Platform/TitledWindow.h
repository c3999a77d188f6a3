#pragma once

#include "Platform/Geometry.h"
#include "Platform/Panel.h"
#include "Platform/Registration.h"
#include "Platform/Screens.h"
#include "Platform/WindowContent.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quillon {

/// What a scroll view shows of its document; heights in points.
struct ScrollExtent {
    double documentHeight = 0;
    double visibleHeight = 0;
    /// The document's y runs downwards.
    bool isDocumentFlipped = false;
};

/// A window of the program's own, titled and closable, neither resizable nor miniaturisable (NSWindow with
/// NSWindowStyleMaskTitled and NSWindowStyleMaskClosable, releasedWhenClosed NO). Closing hides it and keeps all it
/// shows. Destroying it takes it off the screen. Main thread; coordinates in points.
class TitledWindow {
public:
    TitledWindow() = default;
    TitledWindow(const TitledWindow&) = delete;
    TitledWindow& operator=(const TitledWindow&) = delete;
    virtual ~TitledWindow() = default;

    /// Shows other content. Rows that the same controls can show keep theirs (`haveSameControls`), and with them the
    /// keyboard focus and the scroll position. May be called by an action of the content.
    virtual void setContent(WindowContent content) = 0;
    /// The size that the content wants, laid out (the fitting size of the content view controller's view).
    [[nodiscard]] virtual Size fittingSize() const = 0;

    /// Of the area without the title bar.
    [[nodiscard]] virtual Size contentSize() const = 0;
    virtual void setContentSize(const Size& size) = 0;
    /// With the title bar.
    [[nodiscard]] virtual ScreenRect frame() const = 0;
    /// With `display` the content is redrawn before the call returns.
    virtual void setFrame(const ScreenRect& frame, bool display) = 0;
    virtual void setFrameOrigin(const ScreenPoint& origin) = 0;
    /// Where the platform puts a window that has no better place.
    virtual void center() = 0;
    /// The screen it lies on most; none while it is on no screen.
    [[nodiscard]] virtual std::optional<Screen> screen() const = 0;
    /// Called after the window came to lie on another screen (NSWindowDidChangeScreenNotification).
    [[nodiscard]] virtual RegistrationToken observeDidChangeScreen(std::function<void()> callback) = 0;

    /// Ordered in, whether covered or not.
    [[nodiscard]] virtual bool isVisible() const = 0;
    virtual void setCollectionBehavior(CollectionBehavior behavior) = 0;
    /// Shows it in front of the program's other windows and gives it the keyboard focus.
    virtual void makeKeyAndOrderFront() = 0;
    /// As its close button does.
    virtual void close() = 0;
    /// Called before the window goes off the screen because it was closed (NSWindowWillCloseNotification).
    [[nodiscard]] virtual RegistrationToken observeWillClose(std::function<void()> callback) = 0;

    /// No control has the keyboard focus (makeFirstResponder: with nil).
    virtual void clearFirstResponder() = 0;
    /// Of the first scroll view in the content, depth-first; none without one that has a document.
    [[nodiscard]] virtual std::optional<ScrollExtent> scrollExtent() const = 0;
    /// Scrolls the same view so that this y of its document stands at its edge: the upper one when the document is
    /// flipped, else the lower one.
    virtual void scrollTo(double y) = 0;
};

/// Makes titled windows. Main thread.
class TitledWindows {
public:
    virtual ~TitledWindows() = default;

    /// Not shown yet; nothing in it has the keyboard focus at first.
    [[nodiscard]] virtual std::unique_ptr<TitledWindow> makeWindow(const std::string& title, WindowContent content) = 0;
    /// Of the frame around a content of that size (frameRectForContentRect:styleMask:).
    [[nodiscard]] virtual Size frameSize(const Size& contentSize) const = 0;
    /// The one that has the keyboard focus; null when none of them does.
    [[nodiscard]] virtual TitledWindow* keyWindow() const = 0;
};

} // namespace quillon
