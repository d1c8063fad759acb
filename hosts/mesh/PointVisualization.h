#pragma once

#include "hosts/mesh/PointSet.h"
#include "hosts/mesh/ThinVisualization.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <memory>
#include <optional>

namespace hostkit {

/// A part that is a cloud of points: drawn as squares, discs where the GL takes several samples a pixel, and
/// picked as squares. Their size has the key "pointSize".
class KELVAR_MESH_API PointVisualization : public ThinVisualization
{
public:
    static const QString typeString;

    /// The points are shared and not null.
    PointVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const PointSet> points);
    ~PointVisualization() override;

    const PointSet& points() const { return *points_; }
    Content content() const override;

protected:
    std::optional<Hit> pickShape(const OruVisPickVolume& volume) const override;

private:
    std::shared_ptr<const PointSet> points_;
};

} // namespace hostkit
