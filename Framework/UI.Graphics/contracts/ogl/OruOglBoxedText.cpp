#include "contracts/ogl/OruOglBoxedText.h"

#include "contracts/ogl/OruOglFlatState.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/ogl/OruOglViewport.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int shadowAlpha = 96;

/// Pixels from `left` and `bottom` on, right and up.
struct Box
{
    int left;
    int bottom;
    int width;
    int height;
};

/// Where a box of length `extent` starts, and to which side of the point its shadow falls: -1, 0 or 1.
struct Side
{
    int start;
    int shadow;
};

Side sideOf(Qt::Alignment alignment, Qt::Alignment below, Qt::Alignment centered, int point, int extent)
{
    if (alignment & below) {
        return {point - extent, -1};
    }
    if (alignment & centered) {
        return {point - extent / 2, 0};
    }
    return {point, 1};
}

void coverBox(const Box& box)
{
    const float x = static_cast<float>(box.left) - 0.5f;
    const float y = static_cast<float>(box.bottom) - 0.5f;
    glRectf(x, y, x + static_cast<float>(box.width), y + static_cast<float>(box.height));
}

void fillBox(const Box& box, const QColor& color)
{
    glColor(color);
    coverBox(box);
}

/// A coordinate from which lengths can be counted on without an overflow; none beyond can be seen.
int nearby(int coordinate)
{
    constexpr int farthest = 1 << 24;
    return std::clamp(coordinate, -farthest, farthest);
}

/// From the pixels of the window to those of the viewport. Who names a side may know the width of the
/// viewport alone; in one that begins further right the box would be cut off at the left edge.
void moveIntoViewport(Box& box)
{
    const OruOglViewport viewport = glGetViewport();
    box.left -= viewport.x;
    box.bottom -= viewport.y;
    if (viewport.x > 0) {
        box.left = std::max(box.left, 0);
    }
}

Box shrunk(const Box& box, int by)
{
    return {box.left + by, box.bottom + by, box.width - 2 * by, box.height - 2 * by};
}

/// The border of `box`, each pixel once.
void drawFrame(const Box& box, int width, const QColor& color)
{
    const int inner = box.height - 2 * width;
    fillBox({box.left, box.bottom, box.width, width}, color);
    fillBox({box.left, box.bottom + box.height - width, box.width, width}, color);
    fillBox({box.left, box.bottom + width, width, inner}, color);
    fillBox({box.left + box.width - width, box.bottom + width, width, inner}, color);
}

/// The part of the shifted box that the box itself does not cover.
void drawShadow(const Box& box, int shiftX, int shiftY)
{
    const QColor color(0, 0, 0, shadowAlpha);
    const int besideX = shiftX < 0 ? box.left + shiftX : box.left + box.width;
    const int besideY = shiftY < 0 ? box.bottom + shiftY : box.bottom + box.height;
    fillBox({besideX, box.bottom + shiftY, std::abs(shiftX), box.height}, color);
    fillBox({box.left + std::max(shiftX, 0), besideY, box.width - std::abs(shiftX), std::abs(shiftY)}, color);
}

} // namespace

OruOglBoxedText::OruOglBoxedText(OruOglText& boxedText)
    : text(&boxedText)
{
    clear();
}

void OruOglBoxedText::clear()
{
    floating = false;
    alignment_ = Qt::AlignRight | Qt::AlignTop;
    frame_ = Qt::black;
    fill_ = Qt::white;
}

void OruOglBoxedText::setAlignment(Qt::Alignment alignment)
{
    alignment_ = alignment;
}

void OruOglBoxedText::setColor(const QColor& frame, const QColor& fill)
{
    frame_ = frame;
    fill_ = fill;
}

QSize OruOglBoxedText::size(const QString& string) const
{
    const QSize inner = text->size(string);
    const int border = 2 * (frameWidth + margin);
    return inner.isEmpty() ? QSize(0, 0) : inner + QSize(border, border);
}

void OruOglBoxedText::draw(const QPoint& point, const QString& string) const
{
    const QSize extent = size(string);
    if (extent.isEmpty()) {
        return;
    }
    const Side x = sideOf(alignment_, Qt::AlignLeft, Qt::AlignHCenter, nearby(point.x()), extent.width());
    const Side y = sideOf(alignment_, Qt::AlignBottom, Qt::AlignVCenter, nearby(point.y()), extent.height());
    Box box{x.start, y.start, extent.width(), extent.height()};
    if (floating) {
        moveIntoViewport(box);
    }
    {
        const OruOglFlatState state;
        if (text->selectMode()) {
            coverBox(box);
            return;
        }
        state.blend();
        if (floating) {
            drawShadow(box, x.shadow * shadowWidth, y.shadow * shadowWidth);
        }
        fillBox(shrunk(box, frameWidth), fill_);
        drawFrame(box, frameWidth, frame_);
    }
    drawText(QPoint(box.left, box.bottom) + QPoint(frameWidth + margin, frameWidth + margin), string);
}

void OruOglBoxedText::drawText(const QPoint& lowerLeft, const QString& string) const
{
    const Kelvar::Math::Angle angle = text->angle();
    text->setAngle(angle_);
    text->draw(lowerLeft, string);
    text->setAngle(angle);
}
