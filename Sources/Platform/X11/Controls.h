#pragma once

#include "Platform/WindowContent.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace quillon::x11 {

// What the program's own windows are made of: Qt's widgets with a flat look in the colours of the application's palette
// and with its font, both of which they follow. The mouse does not move the keyboard focus to them. Main thread.

/// Of texts and symbols.
enum class Ink { primary, secondary, warning, granted };

/// `palette` tells whether what lies behind is light or dark.
[[nodiscard]] QColor colorOf(Ink ink, const QPalette& palette);
/// What the mark of the keyboard focus needs around a control, whose box therefore is that much smaller on each side.
inline constexpr int focusMargin = 3;

/// Of the thin lines around and between things.
[[nodiscard]] QColor lineColor(const QPalette& palette);

/// A text that wraps when it must.
class TextLabel final : public QLabel {
public:
    struct Style {
        /// Of the application's font.
        double scale = 1;
        bool isBold = false;
        Ink ink = Ink::primary;

        bool operator==(const Style&) const = default;
    };

    TextLabel() : TextLabel(Style()) {}
    explicit TextLabel(const Style& style);
    explicit TextLabel(const Label& label);

    void setLabel(const Label& label);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    void changeEvent(QEvent* event) override;
    void applyStyle();
    [[nodiscard]] int widthOfOneLine() const;

    Style style;
};

class PushButton final : public QPushButton {
public:
    explicit PushButton(const Button& button);

    void setButton(const Button& button);
    /// The Escape key presses it, which is the window's affair.
    [[nodiscard]] bool isCancel() const { return cancels; }
    [[nodiscard]] QSize sizeHint() const override;

private:
    void paintEvent(QPaintEvent* event) override;

    std::function<void()> action;
    bool cancels = false;
};

class SwitchControl final : public QCheckBox {
public:
    explicit SwitchControl(const Switch& description);

    void setSwitch(const Switch& description);
    [[nodiscard]] QSize sizeHint() const override;

private:
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void paintEvent(QPaintEvent* event) override;

    std::function<void(bool)> setOn;
};

class PickerControl final : public QComboBox {
public:
    explicit PickerControl(const Picker& picker);

    void setPicker(const Picker& picker);
    [[nodiscard]] QSize sizeHint() const override;

private:
    void paintEvent(QPaintEvent* event) override;
    /// Scrolls what lies behind: the value of a closed picker does not change by accident.
    void wheelEvent(QWheelEvent* event) override;

    std::function<void(std::size_t)> select;
};

class BadgeView final : public QWidget {
public:
    explicit BadgeView(const Badge& badge);

    void setBadge(const Badge& badge);

private:
    class SymbolView;

    SymbolView* symbol;
    TextLabel* title;
};

} // namespace quillon::x11
