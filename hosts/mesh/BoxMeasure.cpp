#include "hosts/mesh/BoxMeasure.h"

#include "hosts/mesh/internal/MeasurePainter.h"
#include "hosts/mesh/internal/MeasureText.h"

#include <algorithm>
#include <cstddef>

namespace hostkit {

const QString BoxMeasure::typeString = QStringLiteral("hostkit.measure.box");

BoxMeasure::BoxMeasure(OruModifiedGroup& modifiedGroup)
    : Measure(modifiedGroup, typeString, QStringLiteral("min"), QStringLiteral("max"))
{}

BoxMeasure::~BoxMeasure() = default;

/// Bit 0, 1 and 2 of a corner's number choose the larger x, y and z; an edge sets one of them.
Measure::Segments BoxMeasure::segments() const
{
    const Point low = first();
    const Point high = second();
    const auto corner = [&](unsigned int bits) {
        return Point{bits & 1 ? high[0] : low[0], bits & 2 ? high[1] : low[1], bits & 4 ? high[2] : low[2]};
    };
    Segments edges;
    for (unsigned int from = 0; from < 8; ++from) {
        for (const unsigned int axis : {1U, 2U, 4U}) {
            if (!(from & axis)) {
                edges.emplace_back(corner(from), corner(from | axis));
            }
        }
    }
    return edges;
}

QString BoxMeasure::text(const Kelvar::Math::NumberFormat& format) const
{
    return MeasureText(format, unit()).sizes(first(), second());
}

void BoxMeasure::drawFlat(MeasurePainter& painter, const std::vector<QPointF>& ends,
                          const QString& label) const
{
    const auto [left, right] = std::minmax_element(
        ends.begin(), ends.end(), [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); });
    const auto lowest = std::min_element(ends.begin(), ends.end(),
                                         [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); });
    painter.drawLabelBelow(QPointF((left->x() + right->x()) / 2.0, lowest->y()), label);
}

} // namespace hostkit
