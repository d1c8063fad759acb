#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/TriangleHierarchy.h"
#include "hosts/mesh/internal/PickQuery.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace hostkit {

/// A pick that takes the surfaces of triangles.
///
/// A pixel is covered when its center is a sum of the corners with factors that are not negative: the part of
/// a triangle behind the eye drops out without clipping.
class TriangleQuery : public PickQuery
{
public:
    using Filter = TriangleHierarchy::Filter;

    /// `filter` may be null.
    explicit TriangleQuery(const OruVisPickVolume& volume, const Filter* filter = nullptr)
        : PickQuery(volume)
        , filter_(filter)
    {}

    void test(const Kelvar::Math::Vector3& a, const Kelvar::Math::Vector3& b, const Kelvar::Math::Vector3& c,
              uint32_t triangle)
    {
        const Corners corners{corner(a), corner(b), corner(c)};
        const Range rows = reach(corners, &Corner::y, volume().height());
        const Range columns = reach(corners, &Corner::x, volume().width());
        for (int row = rows.first; row <= rows.last; ++row) {
            for (int column = columns.first; column <= columns.last; ++column) {
                testPixel(corners, column, row, triangle);
            }
        }
    }

private:
    using Corners = std::array<Corner, 3>;

    /// Rows or columns of the window; none when first > last.
    struct Range
    {
        int first, last;
    };

    /// The rows or columns that a triangle may cover, in one of the two coordinates; rather one too many than
    /// one too few, and all of them when a part of the triangle lies behind the eye.
    static Range reach(const Corners& corners, double Corner::*coordinate, int count)
    {
        double lowest = std::numeric_limits<double>::infinity();
        double highest = -lowest;
        for (const Corner& each : corners) {
            if (!(each.w > 0.0)) {
                return {0, count - 1};
            }
            lowest = std::min(lowest, each.*coordinate / each.w);
            highest = std::max(highest, each.*coordinate / each.w);
        }
        return {static_cast<int>(std::min<double>(count, std::max(0.0, lowest))),
                static_cast<int>(std::max(-1.0, std::min(count - 1.0, highest + 1.0)))};
    }

    /// Whether 0 lies between the smallest and the largest.
    static bool straddles(double a, double b, double c)
    {
        return std::min({a, b, c}) <= 0.0 && std::max({a, b, c}) >= 0.0;
    }

    void testPixel(Corners corners, int column, int row, uint32_t triangle)
    {
        for (Corner& each : corners) {
            each.x -= column * each.w;
            each.y -= row * each.w;
        }
        const auto& [a, b, c] = corners;
        if (!straddles(a.x, b.x, c.x) || !straddles(a.y, b.y, c.y)) {
            return;
        }
        const double ofA = b.x * c.y - b.y * c.x;
        const double ofB = c.x * a.y - c.y * a.x;
        const double ofC = a.x * b.y - a.y * b.x;
        const double sum = ofA * a.w + ofB * b.w + ofC * c.w;
        const bool covered = sum > 0.0 ? ofA >= 0.0 && ofB >= 0.0 && ofC >= 0.0
                                       : sum < 0.0 && ofA <= 0.0 && ofB <= 0.0 && ofC <= 0.0;
        if (!covered) {
            return;
        }
        const double depth = (ofA * a.z + ofB * b.z + ofC * c.z) / sum;
        // The model point is the sum of the corners with these factors, divided by their sum.
        const double total = ofA + ofB + ofC;
        if (!(depth >= 0.0 && depth <= 1.0)) {
            return;
        }
        const auto hit = better(depth, column, row, triangle);
        if (hit && (!filter_ || (*filter_)(triangle, {ofA / total, ofB / total, ofC / total}))) {
            take(*hit);
        }
    }

    const Filter* filter_;
};

} // namespace hostkit
