#pragma once

#include "hosts/mesh/LineSet.h"
#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/PointSet.h"

#include <memory>
#include <variant>

namespace hostkit {

/// A surface, lines or points, shared and not null.
using AnyShape = std::variant<std::shared_ptr<const Mesh>, std::shared_ptr<const LineSet>,
                              std::shared_ptr<const PointSet>>;

} // namespace hostkit
