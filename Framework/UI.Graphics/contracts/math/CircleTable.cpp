#include "contracts/math/CircleTable.h"

#include "contracts/math/Angle.h"

#include <algorithm>
#include <map>

namespace Kelvar {
namespace Math {

namespace {

/// Never destroyed, so that a scene with static storage can still clear it on its way out.
std::map<int, std::vector<Vector3>>& tables()
{
    static auto& all = *new std::map<int, std::vector<Vector3>>();
    return all;
}

std::vector<Vector3> polygon(int segments)
{
    std::vector<Vector3> points;
    points.reserve(static_cast<std::size_t>(segments));
    for (int i = 0; i < segments; ++i) {
        const Angle angle(360.0 * i / segments);
        points.emplace_back(static_cast<float>(angle.cos()), static_cast<float>(angle.sin()), 0.0f);
    }
    return points;
}

} // namespace

const std::vector<Vector3>& CircleTable::points(int segments)
{
    const int count = std::clamp(segments, MinSegments, MaxSegments);
    std::vector<Vector3>& table = tables()[count];
    if (table.empty()) {
        table = polygon(count);
    }
    return table;
}

void CircleTable::clear()
{
    tables().clear();
}

} // namespace Math
} // namespace Kelvar
