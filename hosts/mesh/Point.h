#pragma once

#include <array>

namespace hostkit {

/// A place in double precision, x, y, z, in whatever frame the owner says.
using Point = std::array<double, 3>;

} // namespace hostkit
