#include "hosts/mesh/TriangleHierarchy.h"

#include "contracts/math/Matrix.h"
#include "contracts/vis/OruVisPickVolume.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <limits>
#include <utility>

namespace hostkit {

namespace {

using Box = TriangleHierarchy::Box;
using Filter = TriangleHierarchy::Filter;
using Hit = TriangleHierarchy::Hit;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

constexpr std::size_t trianglesPerLeaf = 8;

/// A half of a tree with as many leaves is built in a thread of its own.
constexpr std::size_t leavesPerThread = 16384;

/// Depths are compared as a 24 bit depth buffer does it, so that a face parallel to the screen is a tie.
constexpr double depthSteps = 16777216.0;

/// Bound of the relative rounding error of the sums of a few products below.
constexpr double roundingError = 1e-14;

std::size_t leafCountFor(std::size_t triangles)
{
    return (triangles + trianglesPerLeaf - 1) / trianglesPerLeaf;
}

constexpr Box emptyBox()
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    return {inf, inf, inf, -inf, -inf, -inf};
}

void grow(Box& box, const Box& other)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        box[axis] = std::min(box[axis], other[axis]);
        box[axis + 3] = std::max(box[axis + 3], other[axis + 3]);
    }
}

Box boxOf(const Vector3& a, const Vector3& b, const Vector3& c)
{
    return {std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y}), std::min({a.z, b.z, c.z}),
            std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y}), std::max({a.z, b.z, c.z})};
}

bool isFinite(const Vector3& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// A linear function of the homogeneous model point (x, y, z, 1).
using Linear = std::array<double, 4>;

Linear combine(double a, const Linear& f, double b, const Linear& g)
{
    Linear sum{};
    for (std::size_t i = 0; i < 4; ++i) {
        sum[i] = a * f[i] + b * g[i];
    }
    return sum;
}

double at(const Linear& f, const Vector3& p)
{
    return f[0] * p.x + f[1] * p.y + f[2] * p.z + f[3];
}

/// The half space where a linear function is not negative; answers for whole boxes.
class HalfSpace
{
public:
    /// @param magnitude  bounds the terms that `inside` was made from: what its rounding error is relative to
    HalfSpace(const Linear& inside, const Linear& magnitude)
        : inside_(inside)
        , magnitude_(magnitude)
    {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            farthest_[axis] = inside[axis] > 0.0 ? axis + 3 : axis;
        }
    }

    /// The largest value of the function in the box.
    double farthest(const Box& box) const
    {
        return inside_[0] * box[farthest_[0]] + inside_[1] * box[farthest_[1]] +
               inside_[2] * box[farthest_[2]] + inside_[3];
    }

    /// False when the box lies outside for certain, whatever the rounding.
    bool meets(const Box& box) const
    {
        const double value = farthest(box);
        return !(value < 0.0 && value < -roundingError * magnitudeIn(box));
    }

private:
    double magnitudeIn(const Box& box) const
    {
        double sum = magnitude_[3];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sum += magnitude_[axis] * std::abs(static_cast<double>(box[farthest_[axis]]));
        }
        return sum;
    }

    Linear inside_;
    Linear magnitude_;
    std::array<std::size_t, 3> farthest_{};
};

/// A corner of a triangle in homogeneous window coordinates: x and y in pixels from the center of the
/// window's first pixel, z the window depth, each times w.
struct Corner
{
    double x, y, z, w;
};

using Corners = std::array<Corner, 3>;

/// Rows or columns of the window; none when first > last.
struct Range
{
    int first, last;
};

/// The rows or columns that a triangle may cover, in one of the two coordinates; rather one too many than one
/// too few, and all of them when a part of the triangle lies behind the eye.
Range reach(const Corners& corners, double Corner::*coordinate, int count)
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
bool straddles(double a, double b, double c)
{
    return std::min({a, b, c}) <= 0.0 && std::max({a, b, c}) >= 0.0;
}

/// The piece of a line between two corners, 0 at the first to 1 at the second, in which none of some linear
/// functions is negative.
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

/// One pick: the window's frame and the best hit so far.
///
/// All is done before the division by w. A half space of the window is then a plane in model space also under
/// perspective, and a pixel is covered when its center is a sum of the corners with factors that are not
/// negative: the part of a triangle behind the eye drops out without clipping.
class Query
{
public:
    /// `filter` may be null; `rim` is what counts beyond the centers of the outermost pixels.
    explicit Query(const OruVisPickVolume& volume, const Filter* filter = nullptr, double rim = 0.0)
        : volume_(volume)
        , filter_(filter)
        , columns_(windowColumns(volume))
        , sides_{above(x(), -rim), above(y(), -rim), below(x(), volume.width() - 1.0 + rim),
                 below(y(), volume.height() - 1.0 + rim), HalfSpace(z(), absolute(z()))}
        , depthLimit_(nearerThan(1.0))
    {}

    bool mayImprove(const Box& box) const
    {
        if (!depthLimit_.meets(box)) {
            return false;
        }
        return std::all_of(sides_.begin(), sides_.end(),
                           [&box](const HalfSpace& side) { return side.meets(box); });
    }

    /// Orders boxes by the nearest depth in them: larger is nearer to the eye.
    double nearness(const Box& box) const { return depthLimit_.farthest(box); }

    void test(const Vector3& a, const Vector3& b, const Vector3& c, uint32_t triangle)
    {
        const Corners corners{corner(a), corner(b), corner(c)};
        const Range rows = reach(corners, &Corner::y, volume_.height());
        const Range columns = reach(corners, &Corner::x, volume_.width());
        for (int row = rows.first; row <= rows.last; ++row) {
            for (int column = columns.first; column <= columns.last; ++column) {
                testPixel(corners, column, row, triangle);
            }
        }
    }

    const std::optional<Hit>& best() const { return best_; }

protected:
    Corner corner(const Vector3& p) const { return {at(x(), p), at(y(), p), at(z(), p), at(w(), p)}; }
    const OruVisPickVolume& volume() const { return volume_; }

    /// The model point is the sum of the corners with those factors, divided by their sum: for the filter.
    void offer(double exactDepth, int column, int row, uint32_t triangle,
               const std::array<double, 3>& factors = {})
    {
        const double step = std::floor(exactDepth * depthSteps + 0.5);
        const Hit hit{static_cast<float>(step / depthSteps),
                      volume_.distanceFromCenter(volume_.x() + column + 0.5, volume_.y() + row + 0.5),
                      triangle};
        if ((best_ && !isBetter(hit, *best_)) || !isTaken(triangle, factors)) {
            return;
        }
        if (!best_ || hit.depth < best_->depth) {
            depthLimit_ = nearerThan(std::min(1.0, (step + 0.75) / depthSteps));
        }
        best_ = hit;
    }

private:
    using Columns = std::array<Linear, 4>;

    static Columns windowColumns(const OruVisPickVolume& volume)
    {
        const Matrix& matrix = volume.toWindow();
        Columns columns{};
        for (int column = 0; column < 4; ++column) {
            for (int row = 0; row < 4; ++row) {
                columns[column][row] = matrix(row, column);
            }
        }
        columns[0] = combine(1.0, columns[0], -(volume.x() + 0.5), columns[3]);
        columns[1] = combine(1.0, columns[1], -(volume.y() + 0.5), columns[3]);
        return columns;
    }

    const Linear& x() const { return columns_[0]; }
    const Linear& y() const { return columns_[1]; }
    const Linear& z() const { return columns_[2]; }
    const Linear& w() const { return columns_[3]; }

    static Linear absolute(Linear f)
    {
        for (double& each : f) {
            each = std::abs(each);
        }
        return f;
    }

    /// f / w >= limit
    HalfSpace above(const Linear& f, double limit) const
    {
        return {combine(1.0, f, -limit, w()), combine(1.0, absolute(f), std::abs(limit), absolute(w()))};
    }

    /// f / w <= limit
    HalfSpace below(const Linear& f, double limit) const
    {
        return {combine(-1.0, f, limit, w()), combine(1.0, absolute(f), std::abs(limit), absolute(w()))};
    }

    HalfSpace nearerThan(double depth) const { return below(z(), depth); }

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
        if (depth >= 0.0 && depth <= 1.0) {
            offer(depth, column, row, triangle, {ofA, ofB, ofC});
        }
    }

    bool isTaken(uint32_t triangle, const std::array<double, 3>& factors) const
    {
        if (!filter_) {
            return true;
        }
        const double sum = factors[0] + factors[1] + factors[2];
        return (*filter_)(triangle, {factors[0] / sum, factors[1] / sum, factors[2] / sum});
    }

    static bool isBetter(const Hit& hit, const Hit& than)
    {
        if (hit.depth != than.depth) {
            return hit.depth < than.depth;
        }
        if (hit.centerDistance != than.centerDistance) {
            return hit.centerDistance < than.centerDistance;
        }
        return hit.triangle < than.triangle;
    }

    const OruVisPickVolume& volume_;
    const Filter* filter_;
    Columns columns_;
    std::array<HalfSpace, 5> sides_;
    HalfSpace depthLimit_;
    std::optional<Hit> best_;
};

/// A pick that takes the sides of triangles alone.
class SideQuery : public Query
{
public:
    explicit SideQuery(const OruVisPickVolume& volume)
        : Query(volume, nullptr, halfPixel)
    {}

    void test(const Vector3& a, const Vector3& b, const Vector3& c, uint32_t triangle)
    {
        const Corners corners{corner(a), corner(b), corner(c)};
        for (std::size_t side = 0; side < 3; ++side) {
            testSide(corners[side], corners[(side + 1) % 3], triangle);
        }
    }

private:
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

} // namespace

/// Orders the triangles by halving them again and again along the longest axis of their centers' box, down to
/// the leaves, and collects the boxes on the way back.
class TriangleHierarchy::Builder
{
public:
    explicit Builder(TriangleHierarchy& hierarchy)
        : hierarchy_(hierarchy)
    {}

    void run(std::size_t positionCount, std::size_t triangleCount)
    {
        collect(positionCount, triangleCount);
        if (entries_.empty()) {
            return;
        }
        const std::size_t leaves = leafCountFor(entries_.size());
        hierarchy_.triangles_.resize(entries_.size());
        hierarchy_.boxes_.resize(2 * leaves - 1);
        split(0, 0, leaves);
    }

private:
    struct Entry
    {
        std::array<float, 3> center;
        uint32_t triangle;
    };

    const Vector3& corner(uint32_t triangle, std::size_t which) const
    {
        return hierarchy_.positions_[hierarchy_.indices_[3 * std::size_t{triangle} + which]];
    }

    Box boxOfTriangle(uint32_t triangle) const
    {
        return boxOf(corner(triangle, 0), corner(triangle, 1), corner(triangle, 2));
    }

    bool isUsable(uint32_t triangle, std::size_t positionCount) const
    {
        for (std::size_t which = 0; which < 3; ++which) {
            if (hierarchy_.indices_[3 * std::size_t{triangle} + which] >= positionCount ||
                !isFinite(corner(triangle, which))) {
                return false;
            }
        }
        return true;
    }

    void collect(std::size_t positionCount, std::size_t triangleCount)
    {
        entries_.reserve(triangleCount);
        for (std::size_t i = 0; i < triangleCount; ++i) {
            const auto triangle = static_cast<uint32_t>(i);
            if (!isUsable(triangle, positionCount)) {
                continue;
            }
            const Box box = boxOfTriangle(triangle);
            entries_.push_back({{0.5F * box[0] + 0.5F * box[3], 0.5F * box[1] + 0.5F * box[4],
                                 0.5F * box[2] + 0.5F * box[5]},
                                triangle});
        }
    }

    std::size_t firstOf(std::size_t leaf) const { return std::min(leaf * trianglesPerLeaf, entries_.size()); }

    Box split(std::size_t node, std::size_t firstLeaf, std::size_t leafCount)
    {
        const std::size_t first = firstOf(firstLeaf);
        const std::size_t last = firstOf(firstLeaf + leafCount);
        if (leafCount == 1) {
            return hierarchy_.boxes_[node] = fillLeaf(first, last);
        }
        const std::size_t half = leafCount / 2;
        halve(first, firstOf(firstLeaf + half), last);
        Box box = emptyBox();
        if (half >= leavesPerThread) {
            // The halves share nothing. Without a thread to be had the first one runs after the second.
            std::future<Box> beside = std::async([=] { return split(node + 1, firstLeaf, half); });
            box = split(node + 2 * half, firstLeaf + half, leafCount - half);
            grow(box, beside.get());
        } else {
            box = split(node + 1, firstLeaf, half);
            grow(box, split(node + 2 * half, firstLeaf + half, leafCount - half));
        }
        return hierarchy_.boxes_[node] = box;
    }

    Box fillLeaf(std::size_t first, std::size_t last)
    {
        Box box = emptyBox();
        for (std::size_t i = first; i < last; ++i) {
            hierarchy_.triangles_[i] = entries_[i].triangle;
            grow(box, boxOfTriangle(entries_[i].triangle));
        }
        return box;
    }

    /// Of the box of the triangles' centers; a sample of them is good enough for that.
    std::size_t longestAxis(std::size_t first, std::size_t last) const
    {
        const std::size_t stride = 1 + (last - first) / 64;
        Box box = emptyBox();
        for (std::size_t i = first; i < last; i += stride) {
            const auto& [x, y, z] = entries_[i].center;
            grow(box, {x, y, z, x, y, z});
        }
        std::array<double, 3> extent{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            extent[axis] = static_cast<double>(box[axis + 3]) - box[axis];
        }
        return std::max_element(extent.begin(), extent.end()) - extent.begin();
    }

    /// Puts what belongs before `middle` along the longest axis there. A quickselect whose partition has no
    /// branch on the data; std::nth_element takes over for the last few and where equal centers stop
    /// progress.
    void halve(std::size_t first, std::size_t middle, std::size_t last)
    {
        const std::size_t axis = longestAxis(first, last);
        for (int round = 0; round < 16 && last - first > 32; ++round) {
            const float pivot = pivotFor(axis, first, middle, last);
            const std::size_t cut = partition(axis, pivot, first, last);
            if (cut == first) {
                break;
            }
            (cut <= middle ? first : last) = cut;
        }
        std::nth_element(entries_.data() + first, entries_.data() + middle, entries_.data() + last,
                         [axis](const Entry& a, const Entry& b) { return a.center[axis] < b.center[axis]; });
    }

    /// An estimate, from a sample, of the coordinate at `middle` of the ordered range.
    float pivotFor(std::size_t axis, std::size_t first, std::size_t middle, std::size_t last) const
    {
        constexpr std::size_t sampleSize = 15;
        std::array<float, sampleSize> sample;
        const std::size_t stride = (last - first) / sampleSize;
        for (std::size_t i = 0; i < sampleSize; ++i) {
            sample[i] = entries_[first + i * stride + stride / 2].center[axis];
        }
        std::sort(sample.begin(), sample.end());
        return sample[(middle - first) * sampleSize / (last - first)];
    }

    /// Moves what lies below the pivot to the front; returns where the rest begins.
    std::size_t partition(std::size_t axis, float pivot, std::size_t first, std::size_t last)
    {
        std::size_t cut = first;
        for (std::size_t i = first; i < last; ++i) {
            const Entry entry = entries_[i];
            entries_[i] = entries_[cut];
            entries_[cut] = entry;
            cut += entry.center[axis] < pivot ? 1 : 0;
        }
        return cut;
    }

    TriangleHierarchy& hierarchy_;
    std::vector<Entry> entries_;
};

TriangleHierarchy TriangleHierarchy::build(const std::vector<Vector3>& positions,
                                           const std::vector<uint32_t>& indices)
{
    TriangleHierarchy hierarchy;
    hierarchy.positions_ = positions.data();
    hierarchy.indices_ = indices.data();
    Builder(hierarchy).run(positions.size(), indices.size() / 3);
    return hierarchy;
}

template <typename Question>
std::optional<Hit> TriangleHierarchy::run(Question query) const
{
    const auto testLeaf = [&](std::size_t leaf) {
        const std::size_t last = std::min((leaf + 1) * trianglesPerLeaf, triangles_.size());
        for (std::size_t i = leaf * trianglesPerLeaf; i < last; ++i) {
            const uint32_t* corners = indices_ + 3 * std::size_t{triangles_[i]};
            query.test(positions_[corners[0]], positions_[corners[1]], positions_[corners[2]], triangles_[i]);
        }
    };
    struct Subtree
    {
        std::size_t node, firstLeaf, leafCount;
    };
    // One entry a level and one more: the tree is balanced.
    std::array<Subtree, 64> waiting;
    waiting[0] = {0, 0, leafCountFor(triangles_.size())};
    for (std::size_t count = 1; count > 0;) {
        const auto [node, firstLeaf, leafCount] = waiting[--count];
        if (!query.mayImprove(boxes_[node])) {
            continue;
        }
        if (leafCount == 1) {
            testLeaf(firstLeaf);
            continue;
        }
        const std::size_t half = leafCount / 2;
        Subtree nearer{node + 1, firstLeaf, half};
        Subtree farther{node + 2 * half, firstLeaf + half, leafCount - half};
        if (query.nearness(boxes_[nearer.node]) < query.nearness(boxes_[farther.node])) {
            std::swap(nearer, farther);
        }
        waiting[count++] = farther;
        waiting[count++] = nearer;
    }
    return query.best();
}

std::optional<Hit> TriangleHierarchy::pick(const OruVisPickVolume& volume) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(Query(volume));
}

std::optional<Hit> TriangleHierarchy::pick(const OruVisPickVolume& volume, const Filter& takes) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(Query(volume, &takes));
}

std::optional<Hit> TriangleHierarchy::pickSides(const OruVisPickVolume& volume) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(SideQuery(volume));
}

std::size_t TriangleHierarchy::byteSize() const
{
    return triangles_.capacity() * sizeof(uint32_t) + boxes_.capacity() * sizeof(Box);
}

} // namespace hostkit
