#pragma once

#include "contracts/vis/kelvar_vis_api.h"

/// The one place that gives out hit names.
///
/// A name is 1 to 0xFFFFFE: it fits into the bits of a color, and neither black nor white is one. Names that
/// were given back come to the end of a queue, so that a name seen at a press is not another object's at the
/// release. Any thread. OruVisHitName pairs the two calls.
class KELVAR_VIS_API OruVisHitNames
{
public:
    OruVisHitNames() = delete;

    /// A name that no one else holds. Throws std::length_error when all 16,777,214 are in use.
    static unsigned int acquire();

    /// Takes back a name that acquire() gave and that was not given back since.
    static void release(unsigned int name);
};
