#pragma once

#include "hosts/mesh/Measure.h"

namespace hostkit {

/// A box along the axes, and its three sizes. The corners have the keys "minX" to "maxZ".
class KELVAR_MESH_API BoxMeasure : public Measure
{
public:
    static const QString typeString;

    explicit BoxMeasure(OruModifiedGroup& modifiedGroup);
    ~BoxMeasure() override;

    QString kindName() const override { return QStringLiteral("box"); }
    QString text(const Kelvar::Math::NumberFormat& format) const override;

protected:
    Segments segments() const override;
    float lineWidth() const override { return 0.5f; }
    void drawFlat(MeasurePainter& painter, const std::vector<QPointF>& ends,
                  const QString& label) const override;
};

} // namespace hostkit
