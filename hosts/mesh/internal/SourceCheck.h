#pragma once

#include "hosts/mesh/MeshSource.h"

namespace hostkit {

/// Throws std::runtime_error with the reason when a position is not finite or an index is out of range.
void checkSource(const MeshSource& source);

} // namespace hostkit
