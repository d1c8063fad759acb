#pragma once

namespace hostkit {

/// What the indices of a shape make.
enum class Primitive
{
    Triangles,
    Lines,
    Points
};

} // namespace hostkit
