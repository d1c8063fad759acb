#pragma once

#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/PointSet.h"
#include "hosts/mesh/Progress.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <memory>

namespace hostkit {

/// Makes a PointSet from what a file gives: takes each point that an index names, orders them and builds the
/// hierarchy for picking. A million points take about a fifth of a second.
///
/// Points that stand in one place stay apart. Where one normal is no direction the points have none.
class KELVAR_MESH_API PointSetBuilder
{
public:
    /// Null when there is no point. Throws std::runtime_error with the reason: a position that is not finite,
    /// an index that is out of range. What `report` throws passes through.
    static std::shared_ptr<const PointSet> build(MeshSource source, const ReportShare& report);
};

} // namespace hostkit
