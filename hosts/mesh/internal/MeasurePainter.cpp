#include "hosts/mesh/internal/MeasurePainter.h"

#include "contracts/ogl/OruOglBoxedText.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

#include <QRectF>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace hostkit {

using Kelvar::Math::Vector3;

namespace {

const QColor plateColor(22, 27, 35, 225);
const QColor rimColor(0, 0, 0, 200);

/// Pixels at the usual text size.
constexpr double endRadius = 3.0;
constexpr double markRadius = 6.0;
constexpr double labelGap = 10.0;
constexpr float rimWidth = 2.0f;

/// A mark is a polygon whose first corner lies in that direction, degrees from the right.
struct MarkShape
{
    int corners;
    double first;
};

/// In the order of SnapFinder::Kind: a square, a triangle and a circle.
constexpr MarkShape markShapes[] = {{4, 45.0}, {3, 90.0}, {24, 0.0}};

void addPolygon(const QPointF& center, const MarkShape& shape, double radius)
{
    constexpr double degree = 3.14159265358979323846 / 180.0;
    for (int i = 0; i < shape.corners; ++i) {
        const double angle = (shape.first + 360.0 * i / shape.corners) * degree;
        glVertex2d(center.x() + radius * std::cos(angle), center.y() + radius * std::sin(angle));
    }
}

void fillDisc(const QPointF& center, double radius, const QColor& color)
{
    glColor(color);
    glBegin(GL_POLYGON);
    addPolygon(center, markShapes[static_cast<std::size_t>(SnapFinder::Kind::Face)], radius);
    glEnd();
}

/// The lines that `add` adds, in a color and with a dark rim; the width is put back by whoever set the state.
template <typename Add>
void drawRimmed(GLenum primitive, const QColor& color, float width, const Add& add)
{
    for (const bool rim : {true, false}) {
        glColor(rim ? rimColor : color);
        glLineWidth(rim ? width + rimWidth : width);
        glBegin(primitive);
        add();
        glEnd();
    }
}

} // namespace

QColor MeasurePainter::usualColor()
{
    return {255, 214, 64};
}

float MeasurePainter::lineWidthFor(int textSize)
{
    return std::max(1.0f, std::round(2.0f * static_cast<float>(textSize) / usualTextSize));
}

QPointF MeasurePainter::pixelOf(const Vector3& place, const PartView& view)
{
    const Vector3 window = place.project(view.modelView, view.projection, view.viewport.data());
    return {static_cast<double>(window.x) - view.viewport.x - 0.5,
            static_cast<double>(window.y) - view.viewport.y - 0.5};
}

void MeasurePainter::ready(const OruVisualization::DrawContext& context, const QColor& color, int textSize)
{
    color_ = color;
    viewport_ = QSize(context.viewport.width, context.viewport.height);
    if (!text_ || cache_ != &context.cache || textSize_ != textSize) {
        cache_ = &context.cache;
        textSize_ = textSize;
        text_ = std::make_unique<OruOglText>(context.cache, static_cast<unsigned int>(std::max(1, textSize)),
                                             OruOglText::defaultFace);
    }
}

void MeasurePainter::drawEnd(const QPointF& at) const
{
    fillDisc(at, endRadius * scale() + 1.0, rimColor);
    fillDisc(at, endRadius * scale(), color_);
}

void MeasurePainter::drawMark(const QPointF& at, SnapFinder::Kind kind) const
{
    drawRimmed(GL_LINE_LOOP, color_, lineWidthFor(textSize_),
               [&] { addPolygon(at, markShapes[static_cast<std::size_t>(kind)], markRadius * scale()); });
}

void MeasurePainter::drawLine(const QPointF& from, const QPointF& to) const
{
    drawRimmed(GL_LINES, color_, lineWidthFor(textSize_), [&] {
        glVertex2d(from.x(), from.y());
        glVertex2d(to.x(), to.y());
    });
}

QSize MeasurePainter::plateSize(const QString& text) const
{
    return OruOglBoxedText(*text_).size(text);
}

void MeasurePainter::drawLabelOn(const QPointF& from, const QPointF& to, const QString& text)
{
    const QSize plate = plateSize(text);
    const double gap = labelGap * scale();
    const QPointF way = to - from;
    const bool fits =
        std::abs(way.x()) > plate.width() + 4.0 * gap || std::abs(way.y()) > plate.height() + 4.0 * gap;
    const QPointF middle = (from + to) / 2.0;
    const double above = std::max(from.y(), to.y()) + gap + plate.height() / 2.0;
    drawLabel(fits ? middle : QPointF(middle.x(), above), text);
}

void MeasurePainter::drawLabelBelow(const QPointF& at, const QString& text)
{
    drawLabel(at - QPointF(0.0, labelGap * scale() + plateSize(text).height() / 2.0), text);
}

/// In the viewport as a whole, if its middle is near it. A view that moves by less than a pixel, as for the
/// samples of a picture, leaves the label where it is: it would blur.
void MeasurePainter::drawLabel(const QPointF& center, const QString& text)
{
    const QSize plate = plateSize(text);
    const QPointF way = center - kept_;
    if (std::max(std::abs(way.x()), std::abs(way.y())) >= 1.0) {
        kept_ = center;
    }
    const auto inside = [](double at, int extent, int room) {
        const double half = extent / 2.0 + 1.0;
        return static_cast<int>(std::floor(std::clamp(at, std::min(half, room - half), room - half)));
    };
    const QRectF near =
        QRectF(QPointF(), viewport_).adjusted(-plate.width(), -plate.height(), plate.width(), plate.height());
    if (!near.contains(kept_)) {
        return;
    }
    OruOglBoxedText box(*text_);
    box.setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    box.setColor(color_, plateColor);
    text_->setColor(Qt::white);
    box.draw(QPoint(inside(kept_.x(), plate.width(), viewport_.width()),
                    inside(kept_.y(), plate.height(), viewport_.height())),
             text);
}

} // namespace hostkit
