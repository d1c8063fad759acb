#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/math/kelvar_math_api.h"

#include <memory>
#include <vector>

namespace Kelvar {
namespace Math {

/// Points on the unit circle of the XY plane, computed once per number of segments and kept. Any thread.
class KELVAR_MATH_API CircleTable
{
public:
    static constexpr int minSegments = 3;
    static constexpr int maxSegments = 4096;

    /// The corners of the regular polygon with that many segments, counter-clockwise from (1, 0, 0); the
    /// first is not repeated. A count outside the limits counts as the nearest limit. Never null, and valid
    /// as long as it is held.
    static std::shared_ptr<const std::vector<Vector3>> points(int segments);

    /// Gives up all tables: those that nobody holds are freed. The next points() computes its table anew.
    static void clear();
};

} // namespace Math
} // namespace Kelvar
