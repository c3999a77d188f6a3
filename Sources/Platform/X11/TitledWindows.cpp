#include "Platform/X11/TitledWindows.h"

#include "Platform/X11/Application.h"
#include "Platform/X11/ColumnView.h"
#include "Platform/X11/Controls.h"
#include "Platform/X11/DesktopAppearance.h"
#include "Platform/X11/FormView.h"
#include "Platform/X11/FrameMargins.h"
#include "Platform/X11/PopUpMenu.h"
#include "Platform/X11/WindowManager.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillon::x11 {

namespace {

// A title bar with a close button and no other.
constexpr auto titledWindowFlags =
    Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

QSize toQtSize(const Size& size) {
    return {static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height))};
}

/// Where Qt sees the pixel: it scales each screen by itself and leaves its corner where it is.
QPoint toQtPoint(const PixelRect& rect) {
    const auto screens = QGuiApplication::screens();
    const auto holder = std::ranges::find_if(screens, [&](const QScreen* screen) {
        const auto place = screen->geometry();
        return QRect(place.topLeft(), place.size() * screen->devicePixelRatio()).contains(rect.x, rect.y);
    });
    const auto* screen = holder != screens.end() ? *holder : QGuiApplication::primaryScreen();
    const auto corner = screen->geometry().topLeft();
    return corner + (QPointF(rect.x, rect.y) - corner).toPoint() / screen->devicePixelRatio();
}

QPoint toPixel(const QPoint& point, const QScreen& screen) {
    const auto corner = screen.geometry().topLeft();
    return corner + (point - corner) * screen.devicePixelRatio();
}

/// Boxes inside boxes tell each other of a new size one by one, a turn of the event loop each: here the inner ones come
/// first.
void settleLayouts(const QWidget& outermost) {
    const auto inside = outermost.findChildren<QWidget*>();
    for (auto widget = inside.rbegin(); widget != inside.rend(); ++widget) {
        if (auto* layout = (*widget)->layout()) {
            layout->invalidate();
            layout->activate();
        }
    }
}

/// The server knows by then what Qt has asked of it, so that what is asked on another connection comes later.
void finishRequestsOfQt() {
    auto* const xcb = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const Reply<xcb_get_input_focus_reply_t> answer(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

double sharedArea(const ScreenRect& one, const ScreenRect& other) {
    const double width = std::min(one.maxX(), other.maxX()) - std::max(one.minX(), other.minX());
    const double height = std::min(one.maxY(), other.maxY()) - std::max(one.minY(), other.minY());
    return std::max(width, 0.0) * std::max(height, 0.0);
}

void addKeyEquivalents(QWidget& widget, const Menu& menu) {
    for (const auto& item : menu.items) {
        if (item.submenu) {
            addKeyEquivalents(widget, *item.submenu);
        } else if (const auto keys = keysOf(item); !keys.isEmpty()) {
            auto* action = new QAction(&widget);
            action->setShortcut(keys);
            QObject::connect(action, &QAction::triggered, action, [item] { performMenuItem(item); });
            widget.addAction(action);
        }
    }
}

} // namespace

/// A main window, which Qt tells screen readers of as a window.
class X11TitledWindow::Widget final : public QMainWindow {
public:
    explicit Widget(X11TitledWindow& owner) : QMainWindow(nullptr, titledWindowFlags), owner(owner) {
        setCentralWidget(new QWidget);
        auto* layout = new QVBoxLayout(centralWidget());
        layout->setContentsMargins(0, 0, 0, 0);
    }

private:
    void closeEvent(QCloseEvent* event) override {
        if (isVisible()) {
            owner.observers.call(Event::closing);
        }
        event->accept();
    }
    /// Labels with a size of their own do not take that of their window, and are not told.
    void changeEvent(QEvent* event) override {
        QMainWindow::changeEvent(event);
        if (event->type() == QEvent::FontChange) {
            for (auto* label : findChildren<QLabel*>()) {
                QCoreApplication::sendEvent(label, event);
            }
        }
    }
    /// What no control has used. (As a shortcut of the button, Escape would also press it when it closes a list.)
    void keyPressEvent(QKeyEvent* event) override {
        if (event->keyCombination() == QKeyCombination(Qt::Key_Escape)) {
            pressCancelButton();
        } else {
            QMainWindow::keyPressEvent(event);
        }
    }
    void pressCancelButton() const {
        for (auto* child : findChildren<QPushButton*>()) {
            const auto* button = dynamic_cast<PushButton*>(child);
            if (button != nullptr && button->isCancel()) {
                child->click();
                return;
            }
        }
    }
    void moveEvent(QMoveEvent* event) override {
        QMainWindow::moveEvent(event);
        owner.followScreen();
    }

    X11TitledWindow& owner;
};

X11TitledWindow::X11TitledWindow(X11TitledWindows& owner, const std::string& title, WindowContent content)
    : owner(owner), widget(std::make_unique<Widget>(*this)) {
    widget->setWindowTitle(QString::fromStdString(title));
    setContent(std::move(content));
    setContentSize(fittingSize());
    owner.windows.push_back(this);
}

X11TitledWindow::~X11TitledWindow() {
    std::erase(owner.windows, this);
}

QWidget& X11TitledWindow::qtWidget() const {
    return *widget;
}

void X11TitledWindow::setContent(WindowContent content) {
    const auto* newForm = std::get_if<Form>(&content);
    if (newForm == nullptr) {
        form = nullptr;
        replaceView(new ColumnView(std::get<Column>(content)));
    } else if (form != nullptr) {
        form->setForm(*newForm);
        settleLayouts(*widget);
    } else {
        form = new FormView(*newForm);
        replaceView(form);
    }
}

void X11TitledWindow::replaceView(QWidget* newView) {
    widget->centralWidget()->layout()->addWidget(newView);
    newView->show();
    if (view != nullptr) {
        // One of its buttons may be telling of a click just now.
        view->hide();
        view->deleteLater();
    }
    view = newView;
    clearFirstResponder();
}

Size X11TitledWindow::fittingSize() const {
    settleLayouts(*widget);
    const auto size = form != nullptr ? form->fittingSize() : static_cast<ColumnView*>(view)->fittingSize();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

Size X11TitledWindow::contentSize() const {
    return {static_cast<double>(widget->width()), static_cast<double>(widget->height())};
}

void X11TitledWindow::setContentSize(const Size& size) {
    widget->setFixedSize(toQtSize(size));
}

Margins X11TitledWindow::margins() const {
    const auto actual =
        isVisible() ? owner.clientWindows.margins(static_cast<xcb_window_t>(widget->winId())).frame : Margins();
    return actual.top > 0 ? actual : owner.defaultMargins();
}

ScreenRect X11TitledWindow::frame() const {
    const auto origin = toPixel(widget->pos(), *widget->screen());
    const auto [left, right, top, bottom] = margins();
    const auto pixels = [scale = owner.connection.scale()](int points) {
        return static_cast<int>(std::lround(points * scale));
    };
    return owner.connection.flipped(owner.connection.toPoints(
        {origin.x(), origin.y(), pixels(widget->width()) + left + right, pixels(widget->height()) + top + bottom}));
}

void X11TitledWindow::setFrame(const ScreenRect& frame, bool display) {
    const auto [left, right, top, bottom] = margins();
    const double scale = owner.connection.scale();
    setContentSize({frame.size.width - (left + right) / scale, frame.size.height - (top + bottom) / scale});
    widget->move(toQtPoint(owner.connection.toPixels(owner.connection.flipped(frame))));
    if (display && isVisible()) {
        widget->repaint();
    }
}

void X11TitledWindow::setFrameOrigin(const ScreenPoint& origin) {
    widget->move(toQtPoint(owner.connection.toPixels(owner.connection.flipped({origin, frame().size}))));
}

void X11TitledWindow::center() {
    if (const auto main = owner.screens.mainScreen()) {
        const auto size = frame().size;
        const auto& [origin, available] = main->visibleFrame;
        setFrameOrigin(
            {origin.x + (available.width - size.width) / 2, origin.y + (available.height - size.height) / 2});
    }
}

std::optional<Screen> X11TitledWindow::screen() const {
    const auto place = frame();
    const auto all = owner.screens.screens();
    const auto shared = [&place](const Screen& screen) { return sharedArea(screen.frame, place); };
    const auto most = std::ranges::max_element(all, {}, shared);
    return most != all.end() && shared(*most) > 0 ? std::optional(*most) : std::nullopt;
}

RegistrationToken X11TitledWindow::observeDidChangeScreen(std::function<void()> callback) {
    return observers.add(Event::screenChange, std::move(callback));
}

void X11TitledWindow::followScreen() {
    const auto now = screen();
    if (!now) {
        return;
    }
    const auto before = std::exchange(lastScreen, now->frame);
    if (before && *before != now->frame) {
        observers.call(Event::screenChange);
    }
}

bool X11TitledWindow::isVisible() const {
    return widget->isVisible();
}

void X11TitledWindow::makeKeyAndOrderFront() {
    updateKeyEquivalents();
    std::erase(owner.windows, this);
    owner.windows.push_back(this);
    widget->show();
    widget->raise();
    followScreen();
    finishRequestsOfQt();
    activate();
}

void X11TitledWindow::activate() const {
    const auto window = static_cast<xcb_window_t>(widget->winId());
    if (!owner.clientWindows.hasManager()) {
        widget->activateWindow();
    } else if (behavior.moveToActiveSpace) {
        activateHere(owner.connection, window);
    } else {
        x11::activate(owner.connection, window);
    }
    owner.connection.flush();
}

void X11TitledWindow::updateKeyEquivalents() {
    const auto& menu = owner.application.currentMainMenu();
    if (std::exchange(menuOfKeys, menu) == menu) {
        return;
    }
    qDeleteAll(widget->actions());
    if (menu) {
        addKeyEquivalents(*widget, *menu);
    }
}

void X11TitledWindow::close() {
    widget->close();
}

RegistrationToken X11TitledWindow::observeWillClose(std::function<void()> callback) {
    return observers.add(Event::closing, std::move(callback));
}

/// The view itself has it then, with the keys that scroll.
void X11TitledWindow::clearFirstResponder() {
    view->setFocus();
}

std::optional<ScrollExtent> X11TitledWindow::scrollExtent() const {
    if (form == nullptr) {
        return std::nullopt;
    }
    const auto& area = form->scrollArea();
    return ScrollExtent{.documentHeight = static_cast<double>(area.widget()->height()),
                        .visibleHeight = static_cast<double>(area.viewport()->height()),
                        .isDocumentFlipped = true};
}

void X11TitledWindow::scrollTo(double y) {
    if (form != nullptr) {
        form->scrollArea().verticalScrollBar()->setValue(static_cast<int>(std::lround(y)));
    }
}

X11TitledWindows::X11TitledWindows(Connection& connection, Screens& screens, const ClientWindows& clientWindows,
                                   DesktopAppearance& appearance, X11Application& application)
    : connection(connection), screens(screens), clientWindows(clientWindows), appearance(appearance),
      application(application) {
    application.onActivate = [this] {
        const auto front = std::ranges::find_if(windows.rbegin(), windows.rend(), &X11TitledWindow::isVisible);
        if (front != windows.rend()) {
            (*front)->activate();
        }
    };
}

X11TitledWindows::~X11TitledWindows() = default;

std::unique_ptr<TitledWindow> X11TitledWindows::makeWindow(const std::string& title, WindowContent content) {
    appearance.follow();
    return std::make_unique<X11TitledWindow>(*this, title, std::move(content));
}

Size X11TitledWindows::frameSize(const Size& contentSize) const {
    const auto [left, right, top, bottom] = defaultMargins();
    return {contentSize.width + (left + right) / connection.scale(),
            contentSize.height + (top + bottom) / connection.scale()};
}

Margins X11TitledWindows::defaultMargins() const {
    if (!askedMargins) {
        QWidget sample(nullptr, titledWindowFlags);
        // Frames of windows that can be resized are wider in some themes.
        sample.setFixedSize(100, 100);
        const auto window = static_cast<xcb_window_t>(sample.winId());
        finishRequestsOfQt();
        askedMargins = askFrameMargins(connection, clientWindows, window);
    }
    return *askedMargins;
}

TitledWindow* X11TitledWindows::keyWindow() const {
    const auto key = std::ranges::find_if(
        windows, [](const auto* window) { return &window->qtWidget() == QApplication::activeWindow(); });
    return key != windows.end() ? *key : nullptr;
}

} // namespace quillon::x11
