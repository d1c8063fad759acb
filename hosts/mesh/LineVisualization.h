#pragma once

#include "hosts/mesh/LineSet.h"
#include "hosts/mesh/ThinVisualization.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <memory>
#include <optional>

namespace hostkit {

/// A part that is lines, picked by what is drawn. Their width has the key "lineWidth".
class KELVAR_MESH_API LineVisualization : public ThinVisualization
{
public:
    static const QString typeString;

    /// The lines are shared and not null.
    LineVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const LineSet> lines);
    ~LineVisualization() override;

    const LineSet& lines() const { return *lines_; }
    Content content() const override;

protected:
    std::optional<Hit> pickShape(const OruVisPickVolume& volume) const override;

private:
    std::shared_ptr<const LineSet> lines_;
};

} // namespace hostkit
