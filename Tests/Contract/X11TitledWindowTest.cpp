// What the contract leaves to X11: how Qt's widgets show a form.

#include "ContractTest.h"
#include "X11WindowUser.h"

#include "Platform/Screens.h"
#include "Platform/TitledWindow.h"
#include "Platform/X11/DesktopAppearance.h"
#include "Platform/X11/TitledWindows.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFont>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

#include <fmt/format.h>

#include <cstdlib>

namespace quillon::x11 {
namespace {

using contract::rowOf;

constexpr KeyPress tab{48, 0};
constexpr KeyPress space{49, 0};
constexpr KeyPress escape{53, 0};

/// A form that is longer than its window.
class X11TitledWindowTest : public contract::ContractTest {
protected:
    void SetUp() override {
        window = desktop().titledWindows().makeWindow("Contratto", form(buttons));
        window->setContentSize({420, 400});
        window->makeKeyAndOrderFront();
        ASSERT_TRUE(eventually([&] { return desktop().titledWindows().keyWindow() == window.get(); }));
    }
    void TearDown() override { window.reset(); }

    Form form(const RowItems& recorder) {
        FormSection long1{"Lunga", {}};
        for (int number = 0; number < 12; ++number) {
            long1.rows.push_back({.title = "Riga " + std::to_string(number),
                                  .note = "Nota " + std::to_string(number),
                                  .control = Switch{false, [](bool) {}}});
        }
        return {.sections = {{"Prima",
                              {{.title = "Scelta",
                                .note = "Nota della scelta",
                                .control = Picker{{"uno", "due", "tre"}, 1, [](std::size_t) {}}},
                               {.title = "Scorciatoia", .note = {}, .control = recorder}}},
                             long1},
                .closing = {.title = "Fine", .action = [this] { ++closings; }, .isCancel = true},
                .minimumSize = {420, 400}};
    }
    QWidget& widget() { return static_cast<X11TitledWindow&>(*window).qtWidget(); }
    QScrollBar& scrollBar() { return *widget().findChild<QScrollArea*>()->verticalScrollBar(); }
    contract::WindowUser& user() { return *world->windowUser(); }

    const RowItems buttons{Label{"niente"}, Button{"Rimuovi", [] {}}, Button{"Modifica…", [] {}}};
    const RowItems oneButton{Label{"Premi un tasto"}, Button{"Annulla", [] {}}};
    std::unique_ptr<TitledWindow> window;
    int closings = 0;
};

TEST_F(X11TitledWindowTest, AWheelOverAPickerScrollsTheForm) {
    auto& picker = *rowOf(*window, "Scelta").findChild<QComboBox*>();
    static_cast<contract::X11WindowUser&>(user()).turnWheel(picker);
    EXPECT_TRUE(eventually([&] { return scrollBar().value() > 0; }));
    EXPECT_EQ(picker.currentText(), "due");
}

TEST_F(X11TitledWindowTest, EscapeInAnOpenListClosesTheListAlone) {
    world->pressKey(tab);
    ASSERT_TRUE(eventually([&] { return user().focusedRow(*window) == "Scelta"; }));
    world->pressKey(space);
    ASSERT_TRUE(eventually([] { return QApplication::activePopupWidget() != nullptr; }));
    world->pressKey(escape);
    EXPECT_TRUE(eventually([] { return QApplication::activePopupWidget() == nullptr; }));
    EXPECT_TRUE(stays([&] { return closings == 0; }));
    world->pressKey(escape);
    EXPECT_TRUE(eventually([&] { return closings == 1; }));
}

TEST_F(X11TitledWindowTest, TheScrollPositionStaysWithNewContent) {
    window->scrollTo(150);
    window->setContent(form(oneButton));
    pass(contract::quietTime);
    EXPECT_EQ(scrollBar().value(), 150);
}

TEST_F(X11TitledWindowTest, WhereAButtonWasPressedTheNextOneHasTheFocus) {
    rowOf(*window, "Scorciatoia").findChildren<QPushButton*>().back()->setFocus();
    window->setContent(form(oneButton));
    pass(contract::quietTime);
    EXPECT_EQ(user().focusedRow(*window), "Scorciatoia");
    window->setContent(form(buttons));
    pass(contract::quietTime);
    const auto* focused = qobject_cast<QPushButton*>(widget().focusWidget());
    ASSERT_NE(focused, nullptr);
    EXPECT_EQ(focused->text(), "Modifica…");
}

TEST_F(X11TitledWindowTest, TheTabKeyGoesFromTopToBottomAndBringsEachControlIntoView) {
    window->setContent(form(oneButton));
    world->pressKey(tab);
    EXPECT_TRUE(eventually([&] { return user().focusedRow(*window) == "Scelta"; }));
    world->pressKey(tab);
    EXPECT_TRUE(eventually([&] { return user().focusedRow(*window) == "Scorciatoia"; }));
    const auto* button = qobject_cast<QPushButton*>(widget().focusWidget());
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), "Annulla");
    user().focus(*window, "Riga 11");
    const auto* area = widget().findChild<QScrollArea*>();
    const auto& last = rowOf(*window, "Riga 11");
    const QRect place(last.mapTo(area->viewport(), QPoint()), last.size());
    EXPECT_TRUE(area->viewport()->rect().contains(place));
}

TEST_F(X11TitledWindowTest, EveryControlHasANameAndItsNoteAsDescription) {
    const auto text = [](QWidget& control, QAccessible::Text kind) {
        return QAccessible::queryAccessibleInterface(&control)->text(kind);
    };
    auto& picker = *rowOf(*window, "Scelta").findChild<QComboBox*>();
    // Its own name is its value, as everywhere in Qt on Linux; screen readers read the label that it is related to.
    const auto labels = QAccessible::queryAccessibleInterface(&picker)->relations(QAccessible::Label);
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels.front().first->text(QAccessible::Name), "Scelta");
    EXPECT_EQ(text(picker, QAccessible::Description), "Nota della scelta");
    auto& onOff = *rowOf(*window, "Riga 3").findChild<QCheckBox*>();
    EXPECT_EQ(text(onOff, QAccessible::Name), "Riga 3");
    EXPECT_EQ(text(onOff, QAccessible::Description), "Nota 3");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&onOff)->role(), QAccessible::CheckBox);
    auto& remove = *rowOf(*window, "Scorciatoia").findChild<QPushButton*>();
    EXPECT_EQ(text(remove, QAccessible::Name), "Rimuovi");
    EXPECT_EQ(text(remove, QAccessible::Description), "Scorciatoia");
}

TEST_F(X11TitledWindowTest, AnOpenWindowFollowsTheDesktopsColours) {
    const auto contrast = [&](const std::string& text) {
        for (const auto* label : widget().findChildren<QLabel*>()) {
            if (label->text().toStdString() == text) {
                const auto& palette = label->palette();
                return palette.color(QPalette::WindowText).lightness() - palette.color(QPalette::Window).lightness();
            }
        }
        return 0;
    };
    constexpr int readable = 80;
    EXPECT_LT(contrast("Riga 1"), -readable);
    EXPECT_LT(contrast("Nota 1"), -readable);
    QApplication::setPalette(QPalette(QColor(36, 36, 38)));
    EXPECT_TRUE(eventually([&] { return contrast("Riga 1") > readable && contrast("Nota 1") > readable; }));
    QApplication::setPalette(QPalette(QColor(244, 244, 246)));
    EXPECT_TRUE(eventually([&] { return contrast("Riga 1") < -readable && contrast("Nota 1") < -readable; }));
}

TEST_F(X11TitledWindowTest, AnOpenWindowFollowsTheDesktopsFont) {
    const auto before = window->fittingSize();
    const auto usual = QApplication::font();
    auto larger = usual;
    larger.setPointSizeF(usual.pointSizeF() * 1.5);
    QApplication::setFont(larger);
    EXPECT_TRUE(eventually([&] { return window->fittingSize().height > before.height * 1.2; }));
    QApplication::setFont(usual);
    EXPECT_TRUE(eventually([&] { return window->fittingSize() == before; }));
}

TEST_F(X11TitledWindowTest, WhoMovesItToAnotherMonitorIsTold) {
    const auto whole = desktop().screens().screens().front().frame.size;
    const auto half = static_cast<int>(whole.width / 2);
    const auto height = static_cast<int>(whole.height);
    const e2e::Environment environment{{"DISPLAY", std::getenv("DISPLAY")}, {"PATH", std::getenv("PATH")}};
    const auto divide = [&](const char* name, int left, const char* output) {
        const auto place = fmt::format("{}/250x{}/250+{}+0", half, height, left);
        return e2e::run({"xrandr", "--setmonitor", name, place, output}, environment).status;
    };
    ASSERT_EQ(divide("left", 0, "screen"), 0);
    ASSERT_EQ(divide("right", half, "none"), 0);
    if (!eventually([&] { return desktop().screens().screens().size() == 2; })) {
        GTEST_SKIP() << "the X server does not tell of monitors that are only named";
    }
    window->setFrameOrigin({20, 20});
    pass(contract::quietTime);
    ASSERT_TRUE(window->screen());
    EXPECT_EQ(window->screen()->frame.minX(), 0);
    int changes = 0;
    const auto observer = window->observeDidChangeScreen([&changes] { ++changes; });
    window->setFrameOrigin({60, 20});
    EXPECT_TRUE(stays([&] { return changes == 0; }));
    window->setFrameOrigin({half + 20.0, 20});
    EXPECT_TRUE(eventually([&] { return changes == 1; }));
    EXPECT_EQ(window->screen()->frame.minX(), half);
}

TEST_F(X11TitledWindowTest, TheFittingSizeLeavesNothingToScrollAndCutsNoText) {
    const auto fitting = window->fittingSize();
    window->setContentSize(fitting);
    pass(contract::quietTime);
    EXPECT_EQ(scrollBar().maximum(), 0);
    for (const auto* label : widget().findChildren<QLabel*>()) {
        if (label->isVisible()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
        }
    }
}

TEST_F(X11TitledWindowTest, FarLongerTextsMakeTheFormLongerNotWider) {
    const auto before = window->fittingSize();
    auto content = form(buttons);
    for (int repetition = 0; repetition < 20; ++repetition) {
        content.sections[0].rows[0].note += " ancora qualche parola";
    }
    window->setContent(content);
    EXPECT_EQ(window->fittingSize().width, before.width);
    EXPECT_GT(window->fittingSize().height, before.height);
}

TEST(X11DesktopFont, IsReadFromItsDescription) {
    EXPECT_EQ(fontOf("Cantarell 11").family(), "Cantarell");
    EXPECT_EQ(fontOf("Cantarell 11").pointSizeF(), 11);
    EXPECT_EQ(fontOf("Noto Sans,  10.5").family(), "Noto Sans");
    EXPECT_EQ(fontOf("Noto Sans,  10.5").pointSizeF(), 10.5);
    EXPECT_EQ(fontOf("Ubuntu Bold Italic 12").family(), "Ubuntu");
    EXPECT_EQ(fontOf("DejaVu Sans").family(), "DejaVu Sans");
    EXPECT_EQ(fontOf("DejaVu Sans").pointSizeF(), fontOf("").pointSizeF());
    EXPECT_EQ(fontOf("0").pointSizeF(), fontOf("").pointSizeF());
    EXPECT_FALSE(fontOf("").family().isEmpty());
}

} // namespace
} // namespace quillon::x11
