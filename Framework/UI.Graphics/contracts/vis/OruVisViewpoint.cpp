#include "contracts/vis/OruVisViewpoint.h"

const QString OruVisViewpoint::typeString = QString("vis.viewpoint");

OruVisViewpoint::OruVisViewpoint(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , matrix(*this, QString("matrix"), Kelvar::Math::Matrix::Identity, QString())
{}
