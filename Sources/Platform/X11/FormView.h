#pragma once

#include "Platform/WindowContent.h"

#include <QWidget>

#include <vector>

class QScrollArea;
class QVBoxLayout;

namespace quillon::x11 {

class FormSectionView;
class PushButton;

/// A form: boxes of rows, one for each section, in an area that scrolls, and the closing button beneath. Main thread.
class FormView final : public QWidget {
public:
    explicit FormView(const Form& form);

    /// Shows another form in the same widgets, as far as they can show it.
    void setForm(const Form& form);
    /// With nothing scrolled away.
    [[nodiscard]] QSize fittingSize() const;
    [[nodiscard]] QScrollArea& scrollArea() { return *scrolling; }

private:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void fitSections(const std::vector<FormSection>& wanted);
    void orderTabs();
    void reveal(QWidget* focused);
    void evenMargins();

    QScrollArea* scrolling;
    QWidget* document;
    QVBoxLayout* column;
    std::vector<FormSectionView*> sections;
    QWidget* footer;
    PushButton* closing;
    Size minimum;
};

} // namespace quillon::x11
