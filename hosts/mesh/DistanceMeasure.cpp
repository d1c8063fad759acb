#include "hosts/mesh/DistanceMeasure.h"

#include "hosts/mesh/internal/MeasurePainter.h"
#include "hosts/mesh/internal/MeasureText.h"

namespace hostkit {

const QString DistanceMeasure::typeString = QStringLiteral("hostkit.measure.distance");

DistanceMeasure::DistanceMeasure(OruModifiedGroup& modifiedGroup)
    : Measure(modifiedGroup, typeString, QStringLiteral("from"), QStringLiteral("to"))
{}

DistanceMeasure::~DistanceMeasure() = default;

Measure::Segments DistanceMeasure::segments() const
{
    return {{first(), second()}};
}

QString DistanceMeasure::text(const Kelvar::Math::NumberFormat& format) const
{
    return MeasureText(format, unit()).distance(first(), second());
}

void DistanceMeasure::drawFlat(MeasurePainter& painter, const std::vector<QPointF>& ends,
                               const QString& label) const
{
    painter.drawEnd(ends[0]);
    painter.drawEnd(ends[1]);
    painter.drawLabelOn(ends[0], ends[1], label);
}

} // namespace hostkit
