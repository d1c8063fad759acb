#include "hosts/mesh/Measures.h"

#include "contracts/ogl/OruOglFlatState.h"
#include "hosts/mesh/BoxMeasure.h"
#include "hosts/mesh/DistanceMeasure.h"
#include "hosts/mesh/PartPlace.h"
#include "hosts/mesh/internal/MeasurePainter.h"
#include "hosts/mesh/internal/MeasureText.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace hostkit {

using Kelvar::Math::NumberFormat;
using Kelvar::Math::Vector3;

namespace {

/// Over the scene, below the axes in the corner.
constexpr int orderOfMeasures = 50;

/// What floats tell of a place in a scene.
constexpr int reliableDigits = 6;

template <typename T>
std::unique_ptr<Measure> made(OruModifiedGroup& group)
{
    return std::make_unique<T>(group);
}

/// What the list can make by type text.
struct Maker
{
    const QString& type;
    std::unique_ptr<Measure> (*make)(OruModifiedGroup& group);
};

const Maker makers[] = {
    {DistanceMeasure::typeString, made<DistanceMeasure>},
    {BoxMeasure::typeString, made<BoxMeasure>},
};

const char* const titles = "name\tkind\tlength\tdx\tdy\tdz\tx1\ty1\tz1\tx2\ty2\tz2\tunit\n";

Vector3 without(const Origin& origin, const Point& point)
{
    return Vector3(static_cast<float>(point[0] - origin[0]), static_cast<float>(point[1] - origin[1]),
                   static_cast<float>(point[2] - origin[2]));
}

/// The last digit that means something of points that are kept as floats without the origin.
int lastExponent(const Point& first, const Point& second, const Origin& origin)
{
    double largest = 0.0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        largest =
            std::max({largest, std::abs(first[axis] - origin[axis]), std::abs(second[axis] - origin[axis])});
    }
    return MeasureText::exponentOf(largest) - reliableDigits;
}

QString lineOf(const Measure& measure, const Origin& origin)
{
    const Point first = measure.first();
    const Point second = measure.second();
    const int exponent = lastExponent(first, second, origin);
    const auto number = [&](double value) { return MeasureText::rounded(NumberFormat(), value, exponent); };
    QStringList cells{measure.name(), measure.kindName(), number(MeasureText::length(first, second))};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        cells.append(number(second[axis] - first[axis]));
    }
    for (const Point& point : {first, second}) {
        std::transform(point.begin(), point.end(), std::back_inserter(cells), number);
    }
    cells.append(measure.unit());
    return cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
}

} // namespace

const QString Measures::typeString = QStringLiteral("hostkit.measures");
const QString Measures::usualName = QStringLiteral("measures");

Measures::Measures(OruModifiedGroup& modifiedGroup)
    : OruVisList(modifiedGroup, usualName)
    , painter_(std::make_unique<MeasurePainter>())
    , view_(PartView::none())
{
    setType(typeString);
}

Measures::~Measures() = default;

QString Measures::freeName(const QString& kind) const
{
    QString name = kind;
    for (int number = 2; childByName(name); ++number) {
        name = QStringLiteral("%1.%2").arg(kind).arg(number);
    }
    return name;
}

QString Measures::text() const
{
    const Origin origin = PartPlace::originBeside(*this);
    QString lines;
    for (unsigned int i = 0; i < size(); ++i) {
        if (const auto* const measure = dynamic_cast<const Measure*>(at(i))) {
            lines += lineOf(*measure, origin);
        }
    }
    return lines.isEmpty() ? lines : QLatin1String(titles) + lines;
}

OruProperties* Measures::makeChild(const QString& /*name*/, const QString& type)
{
    const auto* const maker = std::find_if(std::begin(makers), std::end(makers),
                                           [&](const Maker& each) { return each.type == type; });
    return maker == std::end(makers) ? nullptr : maker->make(group).release();
}

/// With another origin the measures are elsewhere in the scene.
void Measures::update(const DrawContext& context)
{
    const Origin origin = PartPlace::originBeside(*this);
    if (origin != origin_) {
        origin_ = origin;
        askAgain();
    }
    OruVisList::update(context);
}

void Measures::draw3d(const DrawContext& context)
{
    view_ = PartView::of(context);
    OruVisList::draw3d(context);
}

void Measures::draw2d(const DrawContext& context)
{
    OruVisList::draw2d(context);
    if (pointer_) {
        drawPointer(context);
    }
}

QPointF Measures::pixelOf(const Point& point) const
{
    return MeasurePainter::pixelOf(without(PartPlace::originBeside(*this), point), *view_);
}

void Measures::drawPointer(const DrawContext& context)
{
    painter_->ready(context, MeasurePainter::usualColor(), MeasurePainter::usualTextSize);
    const OruOglFlatState state;
    state.blend();
    const QPointF at = pixelOf(pointer_->at);
    if (pointer_->from) {
        const QPointF from = pixelOf(*pointer_->from);
        painter_->drawLine(from, at);
        painter_->drawEnd(from);
        painter_->drawLabelOn(
            from, at, MeasureText(context.format, pointer_->unit).distance(*pointer_->from, pointer_->at));
    }
    painter_->drawMark(at, pointer_->kind);
}

int Measures::drawOrder() const
{
    return orderOfMeasures;
}

} // namespace hostkit
