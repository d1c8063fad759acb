#include "hosts/mesh/Measure.h"

#include "contracts/core/OruPropertyKind.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/ogl/OruOglFlatState.h"
#include "contracts/ogl/OruOglTransparency.h"
#include "hosts/mesh/PartPlace.h"
#include "hosts/mesh/internal/MeasureLines.h"
#include "hosts/mesh/internal/MeasurePainter.h"
#include "hosts/mesh/internal/PointProperty.h"

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

namespace {

constexpr OruPropertyKind textSizes = OruPropertyKind::of<int>().from(1).to(100);

} // namespace

Measure::Measure(OruModifiedGroup& modifiedGroup, const QString& type, const QString& firstKey,
                 const QString& secondKey)
    : OruVisualization(modifiedGroup, type)
    , color(*this, QStringLiteral("color"), MeasurePainter::usualColor(), QString())
    , textSize(*this, QStringLiteral("textSize"), MeasurePainter::usualTextSize, QString())
    , first_(std::make_unique<PointProperty>(*this, firstKey))
    , second_(std::make_unique<PointProperty>(*this, secondKey))
    , painter_(std::make_unique<MeasurePainter>())
    , view_(PartView::none())
{
    textSize.setKind(textSizes);
}

Measure::~Measure() = default;

Point Measure::first() const
{
    return first_->value();
}

Point Measure::second() const
{
    return second_->value();
}

void Measure::setPoints(const Point& first, const Point& second)
{
    first_->setValue(first);
    second_->setValue(second);
}

QString Measure::unit() const
{
    return first_->unit();
}

void Measure::setUnit(const QString& unit)
{
    first_->setUnit(unit);
    second_->setUnit(unit);
}

Vector3 Measure::inScene(const Point& point) const
{
    const Origin origin = PartPlace::originBeside(*this);
    return Vector3(static_cast<float>(point[0] - origin[0]), static_cast<float>(point[1] - origin[1]),
                   static_cast<float>(point[2] - origin[2]));
}

std::vector<Vector3> Measure::endsInScene() const
{
    std::vector<Vector3> ends;
    for (const auto& [from, to] : segments()) {
        ends.push_back(inScene(from));
        ends.push_back(inScene(to));
    }
    return ends;
}

void Measure::draw3d(const DrawContext& context)
{
    view_ = PartView::of(context);
    if (!context.defer(*this)) {
        const OruOglTransparency state;
        drawTransparent3d(context);
    }
}

/// Behind all parts, which may hide it.
void Measure::drawTransparent3d(const DrawContext& context)
{
    const float width = lineWidth() * MeasurePainter::lineWidthFor(textSize.value());
    MeasureLines(color.value(), width).draw(endsInScene(), context.projection, context.viewport);
}

void Measure::draw2d(const DrawContext& context)
{
    painter_->ready(context, color.value(), textSize.value());
    const OruOglFlatState state;
    state.blend();
    std::vector<QPointF> ends;
    for (const Vector3& end : endsInScene()) {
        ends.push_back(MeasurePainter::pixelOf(end, *view_));
    }
    drawFlat(*painter_, ends, text(context.format));
}

BoundingBox Measure::bounds() const
{
    BoundingBox box;
    box.add(inScene(first()));
    box.add(inScene(second()));
    return box;
}

} // namespace hostkit
