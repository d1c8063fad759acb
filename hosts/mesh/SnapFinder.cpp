#include "hosts/mesh/SnapFinder.h"

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/PartPlace.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/mesh/internal/WindowMap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Vector3;

namespace {

/// How far a surface goes back for each pixel beside: what is seen at a steeper slant may be passed over.
constexpr double steepest = 4.0;

/// Pixels about a corner that are asked whether it shows: of a corner of an outline the middle one may be
/// background.
constexpr int shownPixels = 3;

/// So many of the best are asked whether they show.
constexpr std::size_t mostTries = 8;

/// Nobody can tell places in the window apart that are nearer to each other: the front one is meant.
constexpr double samePlace = 0.5;

struct Candidate
{
    SnapFinder::Kind kind;
    /// From the middle of the pixel that was asked about, in pixels.
    double distance;
    /// In the window, and in the scene.
    Point window;
    Point point;

    /// Corners first, then what is nearer in the window, then to the eye.
    bool operator<(const Candidate& other) const
    {
        return std::tie(kind, distance, window[2]) < std::tie(other.kind, other.distance, other.window[2]);
    }
    bool operator==(const Candidate& other) const { return kind == other.kind && point == other.point; }
};

/// Finds what of a part's features lies near a pixel.
class NearQuery
{
public:
    using Kind = SnapFinder::Kind;

    NearQuery(const PartVisualization& part, const PartView& view, const QPoint& pixel, double reach)
        : toScene_(PartPlace::inScene(part))
        , map_(DoubleMatrix(view.modelView) * DoubleMatrix(view.projection), view.viewport)
        , volume_(OruVisViewVolume::ofWindow((toScene_ * DoubleMatrix(view.modelView)).toMatrix(),
                                             view.projection, view.viewport, pixel.x() - reach,
                                             pixel.y() - reach, 2.0 * reach + 1.0, 2.0 * reach + 1.0))
        , x_(pixel.x() + 0.5)
        , y_(pixel.y() + 0.5)
        , reach_(reach)
    {}

    bool mayImprove(const BoxTree::Box& box) const { return volume_.meets(box.data(), box.data() + 3); }
    static double nearness(const BoxTree::Box& /*box*/) { return 0.0; }

    Point placed(const Vector3& position) const
    {
        const double at[] = {position.x, position.y, position.z};
        double scene[4];
        toScene_.transform(at, scene);
        return {scene[0], scene[1], scene[2]};
    }

    void testPoint(const Point& point) { offer(Kind::Vertex, point); }

    void testSegment(const Point& from, const Point& to)
    {
        offer(Kind::Vertex, from);
        offer(Kind::Vertex, to);
        const Point a = map_.windowOf(from);
        const Point b = map_.windowOf(to);
        const double wayX = b[0] - a[0];
        const double wayY = b[1] - a[1];
        const double square = wayX * wayX + wayY * wayY;
        if (square > 0.0) {
            const double share = std::clamp(((x_ - a[0]) * wayX + (y_ - a[1]) * wayY) / square, 0.0, 1.0);
            const auto mixed = [&](std::size_t axis) { return from[axis] + share * (to[axis] - from[axis]); };
            offer(Kind::Edge, {mixed(0), mixed(1), mixed(2)});
        }
    }

    const std::vector<Candidate>& found() const { return found_; }

private:
    void offer(Kind kind, const Point& point)
    {
        const Point window = map_.windowOf(point);
        const double distance = std::hypot(window[0] - x_, window[1] - y_);
        if (distance <= reach_) {
            found_.push_back({kind, distance, window, point});
        }
    }

    DoubleMatrix toScene_;
    WindowMap map_;
    OruVisViewVolume volume_;
    double x_, y_;
    double reach_;
    std::vector<Candidate> found_;
};

std::vector<Candidate> candidatesOf(const PartVisualization& part, NearQuery query)
{
    const PartVisualization::Features features = part.features();
    const std::vector<Vector3>& positions = part.shape().positions;
    if (!features.tree) {
        return {};
    }
    features.tree->search(query, [&](std::size_t place) {
        const std::size_t item = features.order ? (*features.order)[place] : place;
        if (item >= features.count) {
            return;
        }
        if (features.ends) {
            const uint32_t* const ends = &(*features.ends)[2 * item];
            query.testSegment(query.placed(positions[ends[0]]), query.placed(positions[ends[1]]));
        } else {
            query.testPoint(query.placed(positions[item]));
        }
    });
    return query.found();
}

/// The nearest to the eye of those at the same place in the window.
const Candidate& frontOf(const std::vector<Candidate>& all, const Candidate& found)
{
    const Candidate* front = &found;
    for (const Candidate& each : all) {
        const double apart = std::hypot(each.window[0] - found.window[0], each.window[1] - found.window[1]);
        if (each.kind == found.kind && apart < samePlace && each.window[2] < front->window[2]) {
            front = &each;
        }
    }
    return *front;
}

} // namespace

SnapFinder::SnapFinder(const PartView& view, double reach, const DepthAt& depthAt)
    : view_(view)
    , reach_(reach)
    , depthAt_(depthAt)
{}

/// What a step towards the eye that is as long as a pixel is wide does to the depth.
double SnapFinder::depthPerPixel() const
{
    const double pixel = 2.0 / (static_cast<double>(view_.projection(1, 1)) * view_.viewport.height);
    return 0.5 * pixel * std::abs(static_cast<double>(view_.projection(2, 2)));
}

bool SnapFinder::shows(const Point& window) const
{
    const QPoint pixel(static_cast<int>(std::floor(window[0])), static_cast<int>(std::floor(window[1])));
    const auto seen = depthAt_(pixel, shownPixels);
    return seen && std::abs(*seen - window[2]) <= steepest * 0.5 * shownPixels * depthPerPixel();
}

SnapFinder::Snap SnapFinder::find(const PartVisualization& part, const QPoint& pixel, double depth) const
{
    std::vector<Candidate> found = candidatesOf(part, NearQuery(part, view_, pixel, reach_));
    const double perPixel = depthPerPixel();
    const auto behind = [&](const Candidate& each) {
        const double beside = each.distance + shownPixels;
        return each.window[2] > depth + steepest * beside * perPixel;
    };
    found.erase(std::remove_if(found.begin(), found.end(), behind), found.end());
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    const auto end = found.begin() + static_cast<std::ptrdiff_t>(std::min(found.size(), mostTries));
    const auto best =
        std::find_if(found.begin(), end, [this](const Candidate& each) { return shows(each.window); });
    if (best != end) {
        return {frontOf(found, *best).point, best->kind};
    }
    const WindowMap map(DoubleMatrix(view_.modelView) * DoubleMatrix(view_.projection), view_.viewport);
    return {map.placeOf({pixel.x() + 0.5, pixel.y() + 0.5, depthAt_(pixel, 1).value_or(depth)}), Kind::Face};
}

} // namespace hostkit
