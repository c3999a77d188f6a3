#pragma once

#include "Platform/Images.h"

#include <QImage>

class QPainter;

namespace quillon::x11 {

/// An image of this platform, as all are that the port makes. Main thread.
class DrawableImage : public Image {
public:
    void setTemplate(bool isTemplate) override { colouredByPlace = isTemplate; }
    [[nodiscard]] bool isTemplate() const { return colouredByPlace; }

    /// Draws the whole image into the rectangle of a painter whose y axis points up, as it is, template or not.
    virtual void draw(QPainter& painter, const WindowRect& rect, Appearance appearance) const = 0;

protected:
    explicit DrawableImage(bool isTemplate) : colouredByPlace(isTemplate) {}

private:
    bool colouredByPlace;
};

/// The image in the middle of a picture of that size in pixels, as large as fits; transparent around it. A template
/// is coloured to go with the appearance.
[[nodiscard]] QImage render(const Image& image, QSize pixels, Appearance appearance);

} // namespace quillon::x11
