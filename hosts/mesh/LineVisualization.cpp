#include "hosts/mesh/LineVisualization.h"

#include <utility>

namespace hostkit {

namespace {

constexpr float usualWidth = 2.0f;

} // namespace

const QString LineVisualization::typeString = QStringLiteral("hostkit.lines");

LineVisualization::LineVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const LineSet> lines)
    : ThinVisualization(modifiedGroup,
                        {Primitive::Lines, typeString, QStringLiteral("lineWidth"), usualWidth}, lines,
                        lines->hierarchy.tree(), &lines->indices)
    , lines_(std::move(lines))
{}

LineVisualization::~LineVisualization() = default;

PartVisualization::Content LineVisualization::content() const
{
    return {QStringLiteral("segments"), static_cast<int>(lines_->segmentCount())};
}

std::optional<PartVisualization::Hit> LineVisualization::pickShape(const OruVisPickVolume& volume) const
{
    return inFrontOfSurfaces(lines_->hierarchy.pick(volume, drawnWidth()));
}

} // namespace hostkit
