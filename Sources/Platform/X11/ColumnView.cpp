#include "Platform/X11/ColumnView.h"

#include "Platform/X11/Controls.h"

#include <QIcon>
#include <QPainter>
#include <QVBoxLayout>

#include <cmath>

namespace quillon::x11 {

namespace {

class IconView final : public QWidget {
public:
    explicit IconView(const Size& size) {
        setFixedSize(static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)));
    }

private:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        windowIcon().paint(&painter, rect());
    }
};

class DividerView final : public QWidget {
public:
    DividerView() {
        constexpr int padding = 4;
        setFixedHeight(2 * padding + 1);
    }

private:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(0, height() / 2, width(), 1, lineColor(palette()));
    }
};

TextLabel* makeText(const Label& label) {
    auto* text = new TextLabel(label);
    text->setAlignment(Qt::AlignCenter);
    return text;
}

} // namespace

ColumnView::ColumnView(const Column& column) {
    auto* layout = new QVBoxLayout(this);
    const int padding = static_cast<int>(std::lround(column.padding));
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(static_cast<int>(std::lround(column.spacing)));
    for (const auto& item : column.items) {
        add(*layout, item);
    }
    setFixedWidth(static_cast<int>(std::lround(column.width)));
}

void ColumnView::add(QVBoxLayout& layout, const ColumnItem& item) {
    if (const auto* icon = std::get_if<ApplicationIcon>(&item)) {
        layout.addWidget(new IconView(icon->size), 0, Qt::AlignHCenter);
    } else if (const auto* label = std::get_if<Label>(&item)) {
        layout.addWidget(makeText(*label));
    } else if (const auto* block = std::get_if<TextBlock>(&item)) {
        constexpr int betweenTexts = 4;
        auto* texts = new QVBoxLayout;
        texts->setSpacing(betweenTexts);
        for (const auto& text : block->labels) {
            texts->addWidget(makeText(text));
        }
        layout.addLayout(texts);
    } else if (const auto* button = std::get_if<Button>(&item)) {
        layout.addWidget(new PushButton(*button), 0, Qt::AlignHCenter);
    } else {
        layout.addWidget(new DividerView);
    }
}

QSize ColumnView::fittingSize() const {
    return {width(), heightForWidth(width())};
}

} // namespace quillon::x11
