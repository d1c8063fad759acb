#pragma once

#include "Scene/navigation/OruPropertyAdaptor.h"
#include "hosts/mesh/Point.h"

#include <QString>

namespace hostkit {

/// A point as three numbers of a node; the keys are the point's with X, Y and Z behind it.
struct PointProperty
{
    PointProperty(OruProperties& owner, const QString& key)
        : x(owner, key + QLatin1Char('X'), 0.0, QString())
        , y(owner, key + QLatin1Char('Y'), 0.0, QString())
        , z(owner, key + QLatin1Char('Z'), 0.0, QString())
    {}

    Point value() const { return {x.value(), y.value(), z.value()}; }

    void setValue(const Point& point)
    {
        x.setValue(point[0]);
        y.setValue(point[1]);
        z.setValue(point[2]);
    }

    QString unit() const { return x.getUnit(); }

    void setUnit(const QString& unit)
    {
        for (OruPropertyAdaptor<double>* const each : {&x, &y, &z}) {
            each->setUnit(unit);
        }
    }

    OruPropertyAdaptor<double> x, y, z;
};

} // namespace hostkit
