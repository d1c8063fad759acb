#pragma once

#include "contracts/ogl/OruOglMeshBuffer.h"

#include <memory>

namespace hostkit {

/// The GL buffer of a shape, for all parts of a scene that show it.
class PartBuffer
{
public:
    /// Null ahead of the first draw.
    std::unique_ptr<OruOglMeshBuffer> mesh;
};

} // namespace hostkit
