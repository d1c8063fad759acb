#pragma once

#include "hosts/mesh/LineSet.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Progress.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <memory>

namespace hostkit {

/// Makes a LineSet from what a file gives: drops segments whose ends stand in one place and vertices that no
/// segment uses, orders the rest and builds the hierarchy for picking. A million segments take about a fifth
/// of a second.
///
/// Where one normal is no direction the lines have none.
class KELVAR_MESH_API LineSetBuilder
{
public:
    /// Null when no segment is left. Throws std::runtime_error with the reason: a position that is not
    /// finite, an index that is out of range. What `report` throws passes through.
    static std::shared_ptr<const LineSet> build(MeshSource source, const ReportShare& report);
};

} // namespace hostkit
