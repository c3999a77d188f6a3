#include "Platform/X11/Controls.h"

#include "Platform/X11/Painting.h"
#include "Platform/X11/Symbols.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOptionButton>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace quillon::x11 {

namespace {

constexpr double cornerRadius = 6;
constexpr double captionScale = 0.88;

bool isDark(const QPalette& palette) {
    constexpr int middle = 128;
    return palette.color(QPalette::Window).lightness() < middle;
}

QColor mixed(const QColor& one, const QColor& other, double partOfOther) {
    const auto mix = [partOfOther](int first, int second) {
        return static_cast<int>(std::lround(first + (second - first) * partOfOther));
    };
    return {mix(one.red(), other.red()), mix(one.green(), other.green()), mix(one.blue(), other.blue())};
}

TextLabel::Style styleOf(TextStyle style) {
    switch (style) {
    case TextStyle::title:
        return {.scale = 1.5, .isBold = true};
    case TextStyle::caption:
        return {.scale = captionScale, .ink = Ink::secondary};
    case TextStyle::captionWarning:
        return {.scale = captionScale, .ink = Ink::warning};
    case TextStyle::body:
        break;
    }
    return {};
}

/// Where a mark of a letter to choose a button by would be read.
QString withoutMnemonics(const std::string& text) {
    return QString::fromStdString(text).replace('&', "&&");
}

int widthOf(const QFontMetricsF& metrics, const QString& text) {
    // Wrapping measures a little differently, hence one more.
    return static_cast<int>(std::ceil(metrics.horizontalAdvance(text))) + 1;
}

int heightOfControl(const QFontMetrics& metrics) {
    constexpr int paddings = 14;
    return metrics.height() + paddings;
}

/// The box of a button or a picker, or a switch's track, and the mark of the keyboard focus.
void drawBox(QPainter& painter, const QWidget& control, const QRectF& box, double radius, const QColor& fill) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, radius, radius);
    if (control.hasFocus()) {
        constexpr double ringWidth = 2;
        constexpr double outset = 2;
        painter.setPen(QPen(control.palette().color(QPalette::Highlight), ringWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(box.adjusted(-outset, -outset, outset, outset), radius + outset, radius + outset);
    }
}

QRectF boxIn(const QWidget& control) {
    return QRectF(control.rect()).adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin);
}

QColor buttonColor(const QWidget& control, bool isPressed) {
    const auto& palette = control.palette();
    const auto plain = palette.color(QPalette::Button);
    const double emphasis = isPressed ? 0.16 : control.underMouse() ? 0.07 : 0;
    return mixed(plain, palette.color(QPalette::ButtonText), emphasis);
}

/// The mouse leaves the keyboard focus where it is, so that only those who use the keyboard see the mark.
void prepare(QWidget& control) {
    control.setFocusPolicy(Qt::TabFocus);
    control.setAttribute(Qt::WA_Hover);
    control.setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

} // namespace

QColor colorOf(Ink ink, const QPalette& palette) {
    const bool onDark = isDark(palette);
    switch (ink) {
    case Ink::secondary:
        return onDark ? QColor(176, 176, 182) : QColor(94, 94, 100);
    case Ink::warning:
        return onDark ? QColor(255, 170, 64) : QColor(174, 82, 0);
    case Ink::granted:
        return onDark ? QColor(98, 214, 130) : QColor(20, 120, 58);
    case Ink::primary:
        break;
    }
    return palette.color(QPalette::WindowText);
}

QColor lineColor(const QPalette& palette) {
    constexpr double strength = 0.12;
    return mixed(palette.color(QPalette::Base), palette.color(QPalette::WindowText), strength);
}

TextLabel::TextLabel(const Style& style) : style(style) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    applyStyle();
}

TextLabel::TextLabel(const Label& label) : TextLabel(styleOf(label.style)) {
    setLabel(label);
}

void TextLabel::setLabel(const Label& label) {
    setText(QString::fromStdString(label.text));
    style = styleOf(label.style);
    applyStyle();
}

void TextLabel::applyStyle() {
    auto font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * style.scale);
    font.setBold(style.isBold);
    if (font != this->font()) {
        setFont(font);
    }
    // This one colour alone: a label that had all of them would not be told of other ones.
    const auto color = colorOf(style.ink, QApplication::palette());
    if (color != palette().color(QPalette::WindowText)) {
        QPalette own;
        own.setColor(QPalette::WindowText, color);
        setPalette(own);
    }
}

void TextLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
        applyStyle();
    }
}

int TextLabel::widthOfOneLine() const {
    return widthOf(QFontMetricsF(font()), text());
}

/// In one line; Qt would choose the shape of a card.
QSize TextLabel::sizeHint() const {
    const int width = widthOfOneLine();
    return {width, heightForWidth(width)};
}

QSize TextLabel::minimumSizeHint() const {
    constexpr int shortestLine = 12; // in heights of a line
    return {std::min(widthOfOneLine(), shortestLine * fontMetrics().height()), fontMetrics().height()};
}

PushButton::PushButton(const Button& button) {
    prepare(*this);
    setAutoDefault(true); // the Return key presses it as the space bar does
    connect(this, &QPushButton::clicked, this, [this] {
        // What it does may give the button another action.
        if (const auto pressed = action) {
            pressed();
        }
    });
    setButton(button);
}

void PushButton::setButton(const Button& button) {
    setText(withoutMnemonics(button.title));
    action = button.action;
    cancels = button.isCancel;
}

QSize PushButton::sizeHint() const {
    constexpr int paddings = 28;
    constexpr int narrowest = 76;
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width() + paddings;
    return {std::max(width, narrowest) + 2 * focusMargin, heightOfControl(fontMetrics()) + 2 * focusMargin};
}

void PushButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawBox(painter, *this, boxIn(*this), cornerRadius, buttonColor(*this, isDown()));
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
}

SwitchControl::SwitchControl(const Switch& description) {
    prepare(*this);
    connect(this, &QCheckBox::toggled, this, [this](bool isOn) {
        if (const auto set = setOn) {
            set(isOn);
        }
    });
    setSwitch(description);
}

void SwitchControl::setSwitch(const Switch& description) {
    const QSignalBlocker blocker(this);
    setChecked(description.isOn);
    setOn = description.setOn;
    update();
}

QSize SwitchControl::sizeHint() const {
    constexpr int width = 42;
    constexpr int height = 24;
    return {width + 2 * focusMargin, height + 2 * focusMargin};
}

bool SwitchControl::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void SwitchControl::paintEvent(QPaintEvent* /*event*/) {
    constexpr double inset = 3;
    const auto track = boxIn(*this);
    const auto on = palette().color(QPalette::Highlight);
    const auto off = isDark(palette()) ? QColor(118, 118, 124) : QColor(142, 142, 147);
    const auto color = isChecked() ? on : off;
    QPainter painter(this);
    drawBox(painter, *this, track, track.height() / 2,
            mixed(color, palette().color(QPalette::WindowText), isDown() || underMouse() ? 0.1 : 0));
    const double side = track.height() - 2 * inset;
    const double left = isChecked() ? track.right() - inset - side : track.left() + inset;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(left, track.top() + inset, side, side));
}

PickerControl::PickerControl(const Picker& picker) {
    prepare(*this);
    connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (const auto choose = select) {
            choose(static_cast<std::size_t>(index));
        }
    });
    setPicker(picker);
}

void PickerControl::setPicker(const Picker& picker) {
    const QSignalBlocker blocker(this);
    QStringList options;
    QStringList shown;
    std::ranges::transform(picker.options, std::back_inserter(options), QString::fromStdString);
    for (int index = 0; index < count(); ++index) {
        shown.append(itemText(index));
    }
    // An open list stays open unless there is another one to show.
    if (options != shown) {
        clear();
        addItems(options);
        updateGeometry();
    }
    setCurrentIndex(picker.selected ? static_cast<int>(*picker.selected) : -1);
    select = picker.select;
    update();
}

namespace {

constexpr int pickerPadding = 12;
/// The two arrows of a picker and what is around them.
constexpr int arrowsWidth = 28;

/// One upwards, one downwards: a list opens, at the value.
void drawArrows(QPainter& painter, const QPointF& middle, const QColor& color) {
    constexpr double halfWidth = 3.5;
    constexpr double height = 3.5;
    constexpr double distance = 2.5;
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double direction : {-1.0, 1.0}) {
        const double foot = middle.y() + direction * distance;
        const QPointF points[] = {
            {middle.x() - halfWidth, foot}, {middle.x(), foot + direction * height}, {middle.x() + halfWidth, foot}};
        painter.drawPolyline(points, 3);
    }
}

} // namespace

QSize PickerControl::sizeHint() const {
    int widest = 0;
    for (int index = 0; index < count(); ++index) {
        widest = std::max(widest, widthOf(QFontMetricsF(font()), itemText(index)));
    }
    return {widest + pickerPadding + arrowsWidth + 2 * focusMargin, heightOfControl(fontMetrics()) + 2 * focusMargin};
}

void PickerControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const auto box = boxIn(*this);
    drawBox(painter, *this, box, cornerRadius, buttonColor(*this, false));
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(box.adjusted(pickerPadding, 0, -arrowsWidth, 0), Qt::AlignVCenter | Qt::AlignLeft, currentText());
    drawArrows(painter, {box.right() - arrowsWidth / 2.0, box.center().y()}, colorOf(Ink::secondary, palette()));
}

void PickerControl::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

class BadgeView::SymbolView final : public QWidget {
public:
    void setSymbol(const std::string& name) {
        symbol = findSymbol(name);
        setVisible(symbol != nullptr);
        updateGeometry();
        update();
    }
    [[nodiscard]] QSize sizeHint() const override {
        const auto [width, height] = symbol != nullptr ? symbolSize(*symbol, fontMetrics().ascent()) : Size();
        return {static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(height))};
    }

private:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        drawUpwards(painter, height(), 1);
        drawSymbol(painter, *symbol, {{0, 0}, {static_cast<double>(width()), static_cast<double>(height())}},
                   FontWeight::semibold, colorOf(Ink::granted, palette()));
    }

    const Symbol* symbol = nullptr;
};

BadgeView::BadgeView(const Badge& badge)
    : symbol(new SymbolView), title(new TextLabel(TextLabel::Style{.ink = Ink::granted})) {
    constexpr int gap = 6;
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gap);
    layout->addWidget(symbol, 0, Qt::AlignVCenter);
    layout->addWidget(title, 0, Qt::AlignVCenter);
    setBadge(badge);
}

void BadgeView::setBadge(const Badge& badge) {
    symbol->setSymbol(badge.symbolName);
    title->setText(QString::fromStdString(badge.title));
}

} // namespace quillon::x11
