#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/math/kelvar_math_api.h"

#include <vector>

namespace Kelvar {
namespace Math {

/// Points on the unit circle of the XY plane, computed once per number of segments and kept. One thread.
class KELVAR_MATH_API CircleTable
{
public:
    static constexpr int MinSegments = 3;
    static constexpr int MaxSegments = 4096;

    /// The corners of the regular polygon with that many segments, counter-clockwise from (1, 0, 0); the
    /// first is not repeated. A count outside the limits counts as the nearest limit. Valid until clear().
    static const std::vector<Vector3>& points(int segments);

    /// Frees all tables. The next points() computes its table anew.
    static void clear();
};

} // namespace Math
} // namespace Kelvar
