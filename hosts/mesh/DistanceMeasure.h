#pragma once

#include "hosts/mesh/Measure.h"

namespace hostkit {

/// The way from one point to another: its length, and how far it goes along each axis. The points have the
/// keys "fromX" to "toZ".
class KELVAR_MESH_API DistanceMeasure : public Measure
{
public:
    static const QString typeString;

    explicit DistanceMeasure(OruModifiedGroup& modifiedGroup);
    ~DistanceMeasure() override;

    QString kindName() const override { return QStringLiteral("distance"); }
    QString text(const Kelvar::Math::NumberFormat& format) const override;

protected:
    Segments segments() const override;
    float lineWidth() const override { return 1.0f; }
    void drawFlat(MeasurePainter& painter, const std::vector<QPointF>& ends,
                  const QString& label) const override;
};

} // namespace hostkit
