#pragma once

#include "contracts/vis/OruVisualization.h"
#include "contracts/vis/kelvar_vis_api.h"

/// A named view of the scene. It draws nothing and has no extent.
class KELVAR_VIS_API OruVisViewpoint : public OruVisualization
{
public:
    static const QString typeString;

    explicit OruVisViewpoint(OruModifiedGroup& modifiedGroup);

    /// The view matrix: model to eye coordinates, x right, y up, z towards the viewer; key "matrix".
    OruPropertyAdaptor<Kelvar::Math::Matrix> matrix;
};
