#include "hosts/mesh/PointVisualization.h"

#include <utility>

namespace hostkit {

namespace {

constexpr float usualSize = 3.0f;

} // namespace

const QString PointVisualization::typeString = QStringLiteral("hostkit.points");

PointVisualization::PointVisualization(OruModifiedGroup& modifiedGroup,
                                       std::shared_ptr<const PointSet> points)
    : ThinVisualization(modifiedGroup,
                        {Primitive::Points, typeString, QStringLiteral("pointSize"), usualSize}, points,
                        points->hierarchy.tree(), nullptr)
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
