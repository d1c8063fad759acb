#include "contracts/vis/OruVisViewpoint.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/math/Matrix.h"

const QString OruVisViewpoint::typeString = QStringLiteral("vis.viewpoint");

OruVisViewpoint::OruVisViewpoint(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , matrix(*this, QStringLiteral("matrix"), Kelvar::Math::Matrix::Identity, QString())
{}
