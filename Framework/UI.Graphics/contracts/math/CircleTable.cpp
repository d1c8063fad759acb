#include "contracts/math/CircleTable.h"

#include "contracts/math/Angle.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace Kelvar {
namespace Math {

namespace {

using Points = std::vector<Vector3>;

/// The scenes of several threads share the tables, and each gives them up when it ends.
struct Tables
{
    std::mutex turns;
    std::map<int, std::shared_ptr<const Points>> bySegments;
};

/// Never destroyed, so that a scene with static storage can still clear it on its way out.
Tables& tables()
{
    static Tables& all = *new Tables;
    return all;
}

Points polygon(int segments)
{
    Points points;
    points.reserve(static_cast<std::size_t>(segments));
    for (int i = 0; i < segments; ++i) {
        const Angle angle(360.0 * i / segments);
        points.emplace_back(static_cast<float>(angle.cos()), static_cast<float>(angle.sin()), 0.0f);
    }
    return points;
}

} // namespace

std::shared_ptr<const Points> CircleTable::points(int segments)
{
    const int count = std::clamp(segments, minSegments, maxSegments);
    Tables& all = tables();
    const std::lock_guard<std::mutex> turn(all.turns);
    std::shared_ptr<const Points>& table = all.bySegments[count];
    if (!table) {
        table = std::make_shared<const Points>(polygon(count));
    }
    return table;
}

void CircleTable::clear()
{
    Tables& all = tables();
    const std::lock_guard<std::mutex> turn(all.turns);
    all.bySegments.clear();
}

} // namespace Math
} // namespace Kelvar
