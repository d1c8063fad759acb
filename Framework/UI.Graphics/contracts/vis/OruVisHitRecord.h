#pragma once

#include "contracts/vis/kelvar_vis_api.h"

/// One hit: what was hit, and how far away.
///
/// A value. Hits are compared by `name` alone.
struct KELVAR_VIS_API OruVisHitRecord
{
    /// The name of no object: white, the clear color of a selection pass.
    static constexpr unsigned int INVALID_NAME = 0xFFFFFF;

    /// Window depth of the hit, 0.0 near to 1.0 far; 0.0 for a hit in 2D; -1.0 for no hit.
    double distance = -1.0;

    unsigned int name = INVALID_NAME;
};
