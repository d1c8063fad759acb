#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/internal/PickQuery.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace hostkit {

/// A pick that takes the sides of triangles alone.
class SideQuery : public PickQuery
{
public:
    explicit SideQuery(const OruVisPickVolume& volume)
        : PickQuery(volume, halfPixel)
    {}

    void test(const Kelvar::Math::Vector3& a, const Kelvar::Math::Vector3& b, const Kelvar::Math::Vector3& c,
              uint32_t triangle)
    {
        const std::array<Corner, 3> corners{corner(a), corner(b), corner(c)};
        for (std::size_t side = 0; side < 3; ++side) {
            testSide(corners[side], corners[(side + 1) % 3], triangle);
        }
    }

private:
    /// The piece of a line between two corners, 0 at the first to 1 at the second, in which none of some
    /// linear functions is negative.
    class Piece
    {
    public:
        /// Takes off where a function with these values at the corners is negative.
        void cut(double first, double second)
        {
            if (first < 0.0 && second < 0.0) {
                end_ = -1.0;
            } else if (first < 0.0) {
                begin_ = std::max(begin_, first / (first - second));
            } else if (second < 0.0) {
                end_ = std::min(end_, first / (first - second));
            }
        }

        bool empty() const { return begin_ > end_; }

        /// The nearer of its two ends.
        Corner nearest(const Corner& a, const Corner& b) const
        {
            const Corner first = between(a, b, begin_);
            const Corner second = between(a, b, end_);
            return first.z * second.w <= second.z * first.w ? first : second;
        }

    private:
        static Corner between(const Corner& a, const Corner& b, double share)
        {
            const auto mixed = [share](double from, double to) { return from + share * (to - from); };
            return {mixed(a.x, b.x), mixed(a.y, b.y), mixed(a.z, b.z), mixed(a.w, b.w)};
        }

        double begin_ = 0.0;
        double end_ = 1.0;
    };

    static constexpr double halfPixel = 0.5;

    void testSide(const Corner& a, const Corner& b, uint32_t triangle)
    {
        const double right = volume().width() - halfPixel;
        const double top = volume().height() - halfPixel;
        Piece inside;
        inside.cut(a.x + halfPixel * a.w, b.x + halfPixel * b.w);
        inside.cut(right * a.w - a.x, right * b.w - b.x);
        inside.cut(a.y + halfPixel * a.w, b.y + halfPixel * b.w);
        inside.cut(top * a.w - a.y, top * b.w - b.y);
        inside.cut(a.z, b.z);
        inside.cut(a.w - a.z, b.w - b.z);
        if (inside.empty()) {
            return;
        }
        const Corner hit = inside.nearest(a, b);
        if (hit.w > 0.0) {
            offer(hit.z / hit.w, pixel(hit.x / hit.w, volume().width()),
                  pixel(hit.y / hit.w, volume().height()), triangle);
        }
    }

    /// The row or column in which a point of the window lies.
    static int pixel(double at, int count)
    {
        return std::clamp(static_cast<int>(std::floor(at + halfPixel)), 0, count - 1);
    }
};

} // namespace hostkit
