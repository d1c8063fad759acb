#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace hostkit {

/// A box with edges along the axes, in double; empty at first.
struct DoubleBox
{
    using Point = std::array<double, 3>;

    /// A point that is not finite is left out.
    void add(const Point& point)
    {
        if (!std::isfinite(point[0]) || !std::isfinite(point[1]) || !std::isfinite(point[2])) {
            return;
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], point[axis]);
            high[axis] = std::max(high[axis], point[axis]);
        }
    }

    bool empty() const { return low[0] > high[0]; }

    Point corner(unsigned int index) const
    {
        return {index & 1u ? high[0] : low[0], index & 2u ? high[1] : low[1], index & 4u ? high[2] : low[2]};
    }

    double center(std::size_t axis) const { return (low[axis] + high[axis]) / 2.0; }

    /// The longest edge; of a box that is not empty.
    double extent() const { return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]}); }

    /// The largest coordinate, whatever its sign; of a box that is not empty.
    double reach() const
    {
        double most = 0.0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            most = std::max({most, std::fabs(low[axis]), std::fabs(high[axis])});
        }
        return most;
    }

    /// So far from 0 along this axis that floats have few digits left for what is in it.
    bool isFar(std::size_t axis) const
    {
        constexpr double farRatio = 64.0;
        return extent() > 0.0 && std::fabs(center(axis)) > farRatio * extent();
    }

    static constexpr double infinity = std::numeric_limits<double>::infinity();
    Point low{infinity, infinity, infinity};
    Point high{-infinity, -infinity, -infinity};
};

} // namespace hostkit
