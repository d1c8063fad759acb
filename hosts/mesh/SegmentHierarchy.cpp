#include "hosts/mesh/SegmentHierarchy.h"

#include "hosts/mesh/internal/WindowQuery.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace hostkit {

namespace {

/// A segment as it is drawn, along the axis of the window that it runs along: one step a pixel.
struct Steps
{
    /// x, y and depth.
    using Point = std::array<double, 3>;

    Steps(const Point& from, const Point& to)
        : along(std::abs(to[0] - from[0]) >= std::abs(to[1] - from[1]) ? 0 : 1)
        , start(from[along])
        , way(to[along] - from[along])
        , startAcross(from[1 - along])
        , slope((to[1 - along] - startAcross) / way)
        , startDepth(from[2])
        , depthSlope((to[2] - startDepth) / way)
    {}

    double across(int step) const { return startAcross + slope * (step - start); }
    double depth(int step) const { return startDepth + depthSlope * (step - start); }

    /// A pixel is drawn when the line leaves the diamond about its center, so that of connected lines each
    /// draws its own pixels.
    bool leavesDiamond(int step) const
    {
        const double sign = way < 0.0 ? -1.0 : 1.0;
        const double off = across(step) - std::floor(across(step) + 0.5);
        const double rise = slope * sign;
        double exit = (0.5 - off) / (1.0 + rise);
        if (off + rise * exit < 0.0) {
            exit = (0.5 + off) / (1.0 - rise);
        }
        const double done = (step - start) * sign + exit;
        return done > 0.0 && done <= std::abs(way);
    }

    /// 0: x, 1: y.
    std::size_t along;
    double start, way;
    double startAcross, slope;
    double startDepth, depthSlope;
};

class SegmentQuery : public WindowQuery
{
public:
    SegmentQuery(const OruVisPickVolume& volume, int width)
        : WindowQuery(volume, width)
        , width_(width)
    {}

    void test(const Kelvar::Math::Vector3& from, const Kelvar::Math::Vector3& to, uint32_t item)
    {
        if (const auto seen = inView(corner(from), corner(to))) {
            const auto& [a, b] = *seen;
            testSteps(Steps({a.x / a.w, a.y / a.w, a.z / a.w}, {b.x / b.w, b.y / b.w, b.z / b.w}), item);
        }
    }

private:
    void testSteps(const Steps& line, uint32_t item)
    {
        if (line.way == 0.0) {
            return;
        }
        const std::array<int, 2> sizes{volume().width(), volume().height()};
        const double low = std::min(line.start, line.start + line.way);
        const Span steps =
            clipped(std::floor(low), std::ceil(low + std::abs(line.way)) + 1.0, sizes[line.along]);
        for (int step = steps.first; step < steps.end; ++step) {
            if (!line.leavesDiamond(step)) {
                continue;
            }
            const double lowest = std::ceil(line.across(step) - 0.5 * width_);
            const Span covered = clipped(lowest, lowest + width_, sizes[1 - line.along]);
            const double depth = std::clamp(line.depth(step), 0.0, 1.0);
            for (int across = covered.first; across < covered.end; ++across) {
                line.along == 0 ? offer(depth, step, across, item) : offer(depth, across, step, item);
            }
        }
    }

    int width_;
};

} // namespace

std::optional<PickHit> SegmentHierarchy::pick(const OruVisPickVolume& volume, int width) const
{
    if (tree_.size() == 0 || volume.empty()) {
        return std::nullopt;
    }
    SegmentQuery query(volume, width);
    tree_.search(query, [&](std::size_t place) {
        const uint32_t* const ends = indices_ + 2 * place;
        query.test(positions_[ends[0]], positions_[ends[1]], static_cast<uint32_t>(place));
    });
    return query.best();
}

} // namespace hostkit
