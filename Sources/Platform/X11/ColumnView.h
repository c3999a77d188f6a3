#pragma once

#include "Platform/WindowContent.h"

#include <QWidget>

class QVBoxLayout;

namespace quillon::x11 {

/// Items one beneath the other, centred. Main thread.
class ColumnView final : public QWidget {
public:
    explicit ColumnView(const Column& column);

    [[nodiscard]] QSize fittingSize() const;

private:
    void add(QVBoxLayout& layout, const ColumnItem& item);
};

} // namespace quillon::x11
