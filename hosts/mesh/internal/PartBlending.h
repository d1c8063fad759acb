#pragma once

#include <memory>

class OruOglCache;
class OruOglTextureStages;

namespace hostkit {

struct Shape;

/// Mixes what is drawn within a scope with the picture as the material of a shape has it: by `opacity`, and
/// by the alpha of vertices and texture if the material blends. Stands on the state of OruOglTransparency.
class PartBlending
{
public:
    PartBlending(const Shape& shape, float opacity, OruOglCache& cache);
    ~PartBlending();
    PartBlending(const PartBlending&) = delete;
    PartBlending& operator=(const PartBlending&) = delete;

private:
    std::unique_ptr<OruOglTextureStages> stages_;
};

} // namespace hostkit
