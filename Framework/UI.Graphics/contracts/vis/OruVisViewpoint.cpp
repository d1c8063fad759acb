#include "contracts/vis/OruVisViewpoint.h"

const QString OruVisViewpoint::typeString = QStringLiteral("vis.viewpoint");

OruVisViewpoint::OruVisViewpoint(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , matrix(*this, QStringLiteral("matrix"), Kelvar::Math::Matrix::Identity, QString())
{}
