#pragma once

#include "hosts/mesh/AnyShape.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Progress.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <optional>

namespace hostkit {

/// Makes from what a file gives the shape that its `primitive` asks for, by the builder of that shape.
class KELVAR_MESH_API ShapeBuilder
{
public:
    /// Nothing when nothing is left to be shown. Throws what the builders throw: std::runtime_error with the
    /// reason.
    static std::optional<AnyShape> build(MeshSource source, const ReportShare& report);
};

} // namespace hostkit
