#include "hosts/mesh/PointVisualization.h"

#include <cstdint>
#include <utility>

namespace hostkit {

namespace {

/// Of the points of a scan, and of a few, which would be lost to the eye at that size.
constexpr float usualSize = 3.0f;
constexpr float sizeOfFew = 7.0f;
constexpr uint32_t mostFew = 1000;

float firstSize(const PointSet& points)
{
    return points.pointCount() > mostFew ? usualSize : sizeOfFew;
}

} // namespace

const QString PointVisualization::typeString = QStringLiteral("hostkit.points");

PointVisualization::PointVisualization(OruModifiedGroup& modifiedGroup,
                                       std::shared_ptr<const PointSet> points)
    : ThinVisualization(modifiedGroup,
                        {Primitive::Points, typeString, QStringLiteral("pointSize"), firstSize(*points)},
                        points, points->hierarchy.tree(), nullptr)
    , points_(std::move(points))
{}

PointVisualization::~PointVisualization() = default;

PartVisualization::Content PointVisualization::content() const
{
    return {QStringLiteral("points"), static_cast<int>(points_->pointCount())};
}

std::optional<PartVisualization::Hit> PointVisualization::pickShape(const OruVisPickVolume& volume) const
{
    return inFrontOfSurfaces(points_->hierarchy.pick(volume, drawnWidth()));
}

} // namespace hostkit
