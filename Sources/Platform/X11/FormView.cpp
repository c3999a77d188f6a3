#include "Platform/X11/FormView.h"

#include "Platform/X11/Controls.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace quillon::x11 {

namespace {

// In points.
constexpr int sideMargin = 24;
constexpr int topMargin = 20;
constexpr int sectionSpacing = 22;
constexpr int rowMargin = 16;
constexpr double boxRadius = 10;

/// A thin handle and nothing else, to be seen on light and on dark.
constexpr auto scrollBarStyle = "QScrollBar:vertical { width: 12px; background: transparent; margin: 0; }"
                                "QScrollBar::handle { background: rgba(128, 128, 132, 150); min-height: 32px;"
                                " border-radius: 4px; margin: 2px; }"
                                "QScrollBar::handle:hover { background: rgba(128, 128, 132, 220); }"
                                "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                                "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }";

} // namespace

/// Title and note at the left, controls at the right.
class FormRowView final : public QWidget {
public:
    explicit FormRowView(const FormRow& row);

    [[nodiscard]] bool canShow(const FormRow& other) const { return haveSameControls(row, other); }
    void setRow(const FormRow& newRow);
    /// Those that take the keyboard focus, from left to right.
    [[nodiscard]] const std::vector<QWidget*>& controls() const { return focusable; }

private:
    void addControls(QHBoxLayout& line);
    void addItem(QHBoxLayout& line, const RowItem& item);
    void add(QHBoxLayout& line, QWidget* widget, bool takesFocus);
    void showTexts();
    void showControls();

    FormRow row;
    TextLabel* title = new TextLabel;
    TextLabel* note = new TextLabel(Label{{}, TextStyle::caption});
    /// One for each item, or the one control.
    std::vector<QWidget*> widgets;
    std::vector<QWidget*> focusable;
};

FormRowView::FormRowView(const FormRow& row) : row(row) {
    constexpr int verticalMargin = 9;
    constexpr int titleToNote = 3;
    constexpr int betweenItems = 6;
    auto* line = new QHBoxLayout(this);
    line->setSpacing(betweenItems);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(titleToNote);
    texts->addStretch();
    texts->addWidget(title);
    texts->addWidget(note);
    texts->addStretch();
    line->addLayout(texts, 1);
    title->setHidden(row.title.empty());
    note->setHidden(row.note.empty());
    addControls(*line);
    if (!focusable.empty()) {
        title->setBuddy(focusable.front());
    }
    const bool endsWithBox = !focusable.empty() && focusable.back() == widgets.back();
    line->setContentsMargins(rowMargin, verticalMargin, endsWithBox ? rowMargin - focusMargin : rowMargin,
                             verticalMargin);
    showTexts();
}

void FormRowView::addControls(QHBoxLayout& line) {
    if (const auto* description = std::get_if<Switch>(&row.control)) {
        add(line, new SwitchControl(*description), true);
    } else if (const auto* picker = std::get_if<Picker>(&row.control)) {
        add(line, new PickerControl(*picker), true);
    } else {
        for (const auto& item : std::get<RowItems>(row.control)) {
            addItem(line, item);
        }
    }
}

void FormRowView::addItem(QHBoxLayout& line, const RowItem& item) {
    if (const auto* label = std::get_if<Label>(&item)) {
        auto* text = new TextLabel(*label);
        text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        add(line, text, false);
    } else if (const auto* button = std::get_if<Button>(&item)) {
        add(line, new PushButton(*button), true);
    } else {
        add(line, new BadgeView(std::get<Badge>(item)), false);
    }
}

void FormRowView::add(QHBoxLayout& line, QWidget* widget, bool takesFocus) {
    line.addWidget(widget, 0, Qt::AlignVCenter);
    widgets.push_back(widget);
    if (takesFocus) {
        focusable.push_back(widget);
    }
}

void FormRowView::setRow(const FormRow& newRow) {
    row = newRow;
    showTexts();
    showControls();
}

void FormRowView::showTexts() {
    title->setText(QString::fromStdString(row.title));
    note->setText(QString::fromStdString(row.note));
    for (auto* widget : focusable) {
        const bool isButton = std::holds_alternative<RowItems>(row.control);
        // A button is known by its own title; what it is for stands beside it.
        widget->setAccessibleName(isButton ? QString() : title->text());
        widget->setAccessibleDescription(isButton && note->text().isEmpty() ? title->text()
                                         : isButton                         ? title->text() + ". " + note->text()
                                                                            : note->text());
    }
}

void FormRowView::showControls() {
    if (const auto* description = std::get_if<Switch>(&row.control)) {
        static_cast<SwitchControl*>(widgets.front())->setSwitch(*description);
        return;
    }
    if (const auto* picker = std::get_if<Picker>(&row.control)) {
        static_cast<PickerControl*>(widgets.front())->setPicker(*picker);
        return;
    }
    const auto& items = std::get<RowItems>(row.control);
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (const auto* label = std::get_if<Label>(&items[index])) {
            static_cast<TextLabel*>(widgets[index])->setLabel(*label);
        } else if (const auto* button = std::get_if<Button>(&items[index])) {
            static_cast<PushButton*>(widgets[index])->setButton(*button);
        } else {
            static_cast<BadgeView*>(widgets[index])->setBadge(std::get<Badge>(items[index]));
        }
    }
}

/// The box around the rows of a section.
class FormBox final : public QWidget {
private:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const auto line = lineColor(palette());
        painter.setPen(line);
        painter.setBrush(palette().color(QPalette::Base));
        constexpr double halfPixel = 0.5;
        painter.drawRoundedRect(QRectF(rect()).adjusted(halfPixel, halfPixel, -halfPixel, -halfPixel), boxRadius,
                                boxRadius);
        painter.setRenderHint(QPainter::Antialiasing, false);
        for (int index = 1; index < layout()->count(); ++index) {
            const int top = layout()->itemAt(index)->geometry().top();
            painter.fillRect(rowMargin, top, width() - rowMargin, 1, line);
        }
    }
};

/// A title and beneath it a box of rows.
class FormSectionView final : public QWidget {
public:
    explicit FormSectionView(const FormSection& section) {
        constexpr int titleToBox = 8;
        constexpr int titleIndent = 4;
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(titleToBox);
        title->setIndent(titleIndent);
        layout->addWidget(title);
        layout->addWidget(box);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(0);
        setSection(section);
    }

    void setSection(const FormSection& section) {
        title->setText(QString::fromStdString(section.title));
        title->setHidden(section.title.empty());
        box->setAccessibleName(title->text());
        for (std::size_t index = 0; index < section.rows.size(); ++index) {
            setRow(index, section.rows[index]);
        }
        while (rows.size() > section.rows.size()) {
            discard(*rows.back());
            rows.pop_back();
        }
        box->update();
    }

    void collectControls(std::vector<QWidget*>& controls) const {
        for (const auto* row : rows) {
            controls.insert(controls.end(), row->controls().begin(), row->controls().end());
        }
    }

private:
    void setRow(std::size_t index, const FormRow& wanted) {
        if (index < rows.size() && rows[index]->canShow(wanted)) {
            rows[index]->setRow(wanted);
            return;
        }
        auto* made = new FormRowView(wanted);
        column->insertWidget(static_cast<int>(index), made);
        made->show();
        if (index == rows.size()) {
            rows.push_back(made);
            return;
        }
        auto* const old = std::exchange(rows[index], made);
        passOnFocus(*old, *made);
        discard(*old);
    }

    /// To the control that stands as far from the end: where the user pressed a button she finds the next one.
    static void passOnFocus(const FormRowView& from, const FormRowView& to) {
        const auto& before = from.controls();
        const auto focused = std::ranges::find_if(before, &QWidget::hasFocus);
        if (focused != before.end() && !to.controls().empty()) {
            const auto fromEnd = std::min(static_cast<std::size_t>(before.end() - focused), to.controls().size());
            to.controls()[to.controls().size() - fromEnd]->setFocus(Qt::OtherFocusReason);
        }
    }

    /// One of its controls may be telling of a click just now.
    void discard(FormRowView& row) {
        column->removeWidget(&row);
        row.hide();
        row.deleteLater();
    }

    TextLabel* title = new TextLabel(TextLabel::Style{.isBold = true});
    FormBox* box = new FormBox;
    QVBoxLayout* column = new QVBoxLayout(box);
    std::vector<FormRowView*> rows;
};

FormView::FormView(const Form& form)
    : scrolling(new QScrollArea(this)), document(new QWidget), column(new QVBoxLayout(document)),
      footer(new QWidget(this)), closing(new PushButton(form.closing)), minimum(form.minimumSize) {
    constexpr int footerMargin = 10;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(scrolling, 1);
    layout->addWidget(footer);
    auto* footerLine = new QHBoxLayout(footer);
    footerLine->setContentsMargins(sideMargin, footerMargin + 1, sideMargin - focusMargin, footerMargin);
    footerLine->addStretch();
    column->setSpacing(sectionSpacing);
    scrolling->setFrameShape(QFrame::NoFrame);
    scrolling->setWidgetResizable(true);
    scrolling->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrolling->verticalScrollBar()->setStyleSheet(scrollBarStyle);
    scrolling->setWidget(document);
    // Takes the keys that scroll when no control has the focus, but is no stop on the way of the Tab key.
    scrolling->setFocusPolicy(Qt::NoFocus);
    setFocusProxy(scrolling);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* focused) { reveal(focused); });
    connect(scrolling->verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] { evenMargins(); });
    evenMargins();
    // The button comes after the rows, so that the first step from the scroll area leads to the first row.
    fitSections(form.sections);
    footerLine->addWidget(closing);
    orderTabs();
}

void FormView::setForm(const Form& form) {
    minimum = form.minimumSize;
    closing->setButton(form.closing);
    fitSections(form.sections);
    orderTabs();
}

void FormView::fitSections(const std::vector<FormSection>& wanted) {
    for (std::size_t index = 0; index < wanted.size(); ++index) {
        if (index < sections.size()) {
            sections[index]->setSection(wanted[index]);
        } else {
            sections.push_back(new FormSectionView(wanted[index]));
            column->addWidget(sections.back());
            sections.back()->show();
        }
    }
    while (sections.size() > wanted.size()) {
        column->removeWidget(sections.back());
        sections.back()->hide();
        sections.back()->deleteLater();
        sections.pop_back();
    }
}

/// From top to bottom, whatever was made last.
void FormView::orderTabs() {
    std::vector<QWidget*> controls;
    for (const auto* section : sections) {
        section->collectControls(controls);
    }
    controls.push_back(closing);
    for (std::size_t index = 1; index < controls.size(); ++index) {
        setTabOrder(controls[index - 1], controls[index]);
    }
}

/// A control that the keyboard has come to is seen with its whole row.
void FormView::reveal(QWidget* focused) {
    if (focused != nullptr && document->isAncestorOf(focused)) {
        auto* const row = focused->parentWidget();
        const QRect place(row->mapTo(document, QPoint()), row->size());
        scrolling->ensureVisible(place.center().x(), place.center().y(), 0, place.height() / 2 + 1);
    }
}

/// The scroll bar lies in the margin, so that the boxes stand in the middle with it and without it.
void FormView::evenMargins() {
    const auto* bar = scrolling->verticalScrollBar();
    const int barWidth = bar->maximum() > bar->minimum() ? bar->sizeHint().width() : 0;
    column->setContentsMargins(sideMargin, topMargin, sideMargin - barWidth, topMargin);
}

QSize FormView::fittingSize() const {
    // Wide enough for the longest title beside its control and for notes of about two lines.
    constexpr int comfortableWidth = 35; // in heights of a line
    const int width = std::max({comfortableWidth * QFontMetrics(QApplication::font()).height(),
                                static_cast<int>(std::ceil(minimum.width)), document->minimumSizeHint().width()});
    const int height = document->heightForWidth(width) + footer->sizeHint().height();
    return {width, std::max(height, static_cast<int>(std::ceil(minimum.height)))};
}

void FormView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    evenMargins();
}

void FormView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(0, footer->y(), width(), 1, lineColor(palette()));
}

} // namespace quillon::x11
