#pragma once

#include <array>

namespace hostkit {

/// A place in double precision, x, y, z: what is added to coordinates that are kept near 0 for the sake of
/// floats.
using Origin = std::array<double, 3>;

} // namespace hostkit
