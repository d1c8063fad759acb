#include "hosts/mesh/TriangleHierarchy.h"

#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/internal/PickQuery.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace hostkit {

namespace {

using Filter = TriangleHierarchy::Filter;
using Hit = TriangleHierarchy::Hit;
using Kelvar::Math::Vector3;

/// Whether 0 lies between the smallest and the largest.
bool straddles(double a, double b, double c)
{
    return std::min({a, b, c}) <= 0.0 && std::max({a, b, c}) >= 0.0;
}

/// A pixel is covered when its center is a sum of the corners with factors that are not negative: the part of
/// a triangle behind the eye drops out without clipping.
class TriangleQuery : public PickQuery
{
public:
    /// `filter` may be null.
    explicit TriangleQuery(const OruVisPickVolume& volume, const Filter* filter = nullptr)
        : PickQuery(volume)
        , filter_(filter)
    {}

    void test(const Vector3& a, const Vector3& b, const Vector3& c, uint32_t triangle)
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

/// A pick that takes the sides of triangles alone.
class SideQuery : public PickQuery
{
public:
    explicit SideQuery(const OruVisPickVolume& volume)
        : PickQuery(volume, halfPixel)
    {}

    void test(const Vector3& a, const Vector3& b, const Vector3& c, uint32_t triangle)
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

bool isFinite(const Vector3& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace

TriangleHierarchy TriangleHierarchy::build(const std::vector<Vector3>& positions,
                                           const std::vector<uint32_t>& indices)
{
    TriangleHierarchy hierarchy;
    hierarchy.positions_ = positions.data();
    hierarchy.indices_ = indices.data();
    const auto boxOf = [&](uint32_t triangle) {
        const uint32_t* const corners = &indices[3 * std::size_t{triangle}];
        return BoxTree::boxOf(positions[corners[0]], positions[corners[1]], positions[corners[2]]);
    };
    std::vector<BoxTree::Item> items;
    items.reserve(indices.size() / 3);
    for (std::size_t at = 0; at + 2 < indices.size(); at += 3) {
        const bool usable = std::all_of(&indices[at], &indices[at] + 3, [&](uint32_t corner) {
            return corner < positions.size() && isFinite(positions[corner]);
        });
        if (usable) {
            const auto triangle = static_cast<uint32_t>(at / 3);
            items.push_back(BoxTree::itemOf(boxOf(triangle), triangle));
        }
    }
    hierarchy.tree_ = BoxTree::build(items, boxOf);
    hierarchy.triangles_.reserve(items.size());
    for (const BoxTree::Item& item : items) {
        hierarchy.triangles_.push_back(item.number);
    }
    return hierarchy;
}

template <typename Question>
std::optional<Hit> TriangleHierarchy::run(Question query) const
{
    tree_.search(query, [&](std::size_t place) {
        const uint32_t* corners = indices_ + 3 * std::size_t{triangles_[place]};
        query.test(positions_[corners[0]], positions_[corners[1]], positions_[corners[2]], triangles_[place]);
    });
    const auto& best = query.best();
    return best ? std::make_optional(Hit{best->depth, best->centerDistance, best->item}) : std::nullopt;
}

std::optional<Hit> TriangleHierarchy::pick(const OruVisPickVolume& volume) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(TriangleQuery(volume));
}

std::optional<Hit> TriangleHierarchy::pick(const OruVisPickVolume& volume, const Filter& takes) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(TriangleQuery(volume, &takes));
}

std::optional<Hit> TriangleHierarchy::pickSides(const OruVisPickVolume& volume) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(SideQuery(volume));
}

std::size_t TriangleHierarchy::byteSize() const
{
    return triangles_.capacity() * sizeof(uint32_t) + tree_.byteSize();
}

} // namespace hostkit
