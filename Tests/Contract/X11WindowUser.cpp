#include "X11WindowUser.h"

#include "Platform/X11/TitledWindows.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScrollArea>

#include <stdexcept>

namespace quillon::contract {

namespace {

constexpr Seconds bound = e2e::stepBound;
constexpr std::uint8_t tabKey = 23;

QWidget& widgetOf(TitledWindow& window) {
    return dynamic_cast<x11::X11TitledWindow&>(window).qtWidget();
}

QString plain(const QPushButton& button) {
    return button.text().replace("&&", "&");
}

void collectTexts(const QWidget& widget, std::vector<std::string>& texts);

void collectTexts(const QLayout& layout, std::vector<std::string>& texts) {
    for (int index = 0; index < layout.count(); ++index) {
        auto* const item = layout.itemAt(index);
        if (item->widget() != nullptr) {
            collectTexts(*item->widget(), texts);
        } else if (item->layout() != nullptr) {
            collectTexts(*item->layout(), texts);
        }
    }
}

void collectTexts(const QWidget& widget, std::vector<std::string>& texts) {
    if (!widget.isVisibleTo(widget.window())) {
        return;
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        texts.push_back(label->text().toStdString());
    } else if (const auto* button = qobject_cast<const QPushButton*>(&widget)) {
        texts.push_back(plain(*button).toStdString());
    } else if (const auto* picker = qobject_cast<const QComboBox*>(&widget)) {
        texts.push_back(picker->currentText().toStdString());
    } else if (const auto* area = qobject_cast<const QScrollArea*>(&widget)) {
        collectTexts(*area->widget(), texts);
    } else if (widget.layout() != nullptr) {
        collectTexts(*widget.layout(), texts);
    }
}

template <class Control>
Control& controlOf(TitledWindow& window, const std::string& row) {
    auto* const control = rowOf(window, row).findChild<Control*>();
    if (control == nullptr) {
        throw std::runtime_error("no such control in the row " + row);
    }
    return *control;
}

} // namespace

QWidget& rowOf(TitledWindow& window, const std::string& title) {
    for (const auto* label : widgetOf(window).findChildren<QLabel*>()) {
        if (label->text().toStdString() == title && label->isVisibleTo(label->window())) {
            return *label->parentWidget();
        }
    }
    throw std::runtime_error("there is no row " + title);
}

std::vector<std::string> X11WindowUser::texts(TitledWindow& window) {
    std::vector<std::string> texts;
    collectTexts(*widgetOf(window).layout(), texts);
    return texts;
}

bool X11WindowUser::isOn(TitledWindow& window, const std::string& row) {
    return controlOf<QCheckBox>(window, row).isChecked();
}

std::optional<std::string> X11WindowUser::focusedRow(TitledWindow& window) {
    const auto* focused = widgetOf(window).focusWidget();
    const auto* title = focused == nullptr
                            ? nullptr
                            : focused->parentWidget()->findChild<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    return title != nullptr ? std::optional(title->text().toStdString()) : std::nullopt;
}

void X11WindowUser::press(TitledWindow& window, const std::string& button) {
    for (auto* candidate : widgetOf(window).findChildren<QPushButton*>()) {
        if (plain(*candidate).toStdString() == button && candidate->isVisible()) {
            click(*candidate);
            return;
        }
    }
    throw std::runtime_error("there is no button " + button);
}

void X11WindowUser::turnSwitch(TitledWindow& window, const std::string& row, bool on) {
    auto& control = controlOf<QCheckBox>(window, row);
    if (control.isChecked() == on) {
        throw std::runtime_error("the switch stands there already");
    }
    click(control);
}

void X11WindowUser::choose(TitledWindow& window, const std::string& row, const std::string& option) {
    auto& picker = controlOf<QComboBox>(window, row);
    click(picker);
    const auto isOpen = [] { return QApplication::activePopupWidget() != nullptr; };
    const int index = picker.findText(QString::fromStdString(option));
    if (index < 0 || !world.runUntil(isOpen, bound)) {
        throw std::runtime_error("the option cannot be chosen");
    }
    const auto& list = *picker.view();
    const auto place = list.visualRect(list.model()->index(index, 0)).center();
    const auto onScreen = list.viewport()->mapToGlobal(place);
    client.movePointer(onScreen.x(), onScreen.y());
    // A list that has just opened takes no click for the length of a double-click.
    constexpr Seconds doubleClick{0.5};
    while (isOpen()) {
        clickAtPointer();
        world.runUntil([&] { return !isOpen(); }, doubleClick);
    }
}

void X11WindowUser::focus(TitledWindow& window, const std::string& row) {
    constexpr int mostSteps = 30;
    for (int step = 0; step < mostSteps && focusedRow(window) != row; ++step) {
        const auto* before = widgetOf(window).focusWidget();
        client.type({tabKey});
        world.runUntil([&] { return widgetOf(window).focusWidget() != before; }, bound);
    }
}

void X11WindowUser::clickCloseButton(TitledWindow& window) {
    client.closeWindow(static_cast<e2e::Window>(widgetOf(window).winId()));
}

void X11WindowUser::pointAt(QWidget& control) const {
    for (auto* ancestor = control.parentWidget(); ancestor != nullptr; ancestor = ancestor->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(ancestor)) {
            area->ensureWidgetVisible(&control);
        }
    }
    const auto middle = control.mapToGlobal(control.rect().center());
    client.movePointer(middle.x(), middle.y());
}

void X11WindowUser::click(QWidget& control) const {
    pointAt(control);
    clickAtPointer();
}

void X11WindowUser::turnWheel(QWidget& control) const {
    constexpr std::uint8_t wheelDown = 5;
    pointAt(control);
    clickAtPointer(wheelDown);
}

void X11WindowUser::clickAtPointer(std::uint8_t button) const {
    client.pressButton(button);
    client.releaseButton(button);
}

} // namespace quillon::contract
