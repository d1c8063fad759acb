#pragma once

#include "hosts/mesh/TexturePoint.h"

struct aiUVTransform;

namespace hostkit {

/// A map of texture coordinates: the identity unless made otherwise.
class TextureTransform
{
public:
    TextureTransform() = default;

    /// What a glTF file asks for: scale, then turn, then shift, about the upper left corner of the picture.
    /// assimp hands it on as a transform about the center, with a shift that its own step gets wrong; so the
    /// numbers of the file are worked out from that again.
    static TextureTransform ofGltf(const aiUVTransform& handedOn);

    TexturePoint operator()(const TexturePoint& point) const;

private:
    float toS_[3] = {1.0f, 0.0f, 0.0f};
    float toT_[3] = {0.0f, 1.0f, 0.0f};
};

} // namespace hostkit
