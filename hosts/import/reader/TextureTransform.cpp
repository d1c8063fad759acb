#include "hosts/import/reader/TextureTransform.h"

#include <assimp/material.h>

#include <cmath>

namespace hostkit {

TextureTransform TextureTransform::ofGltf(const aiUVTransform& handedOn)
{
    const float sine = std::sin(-handedOn.mRotation);
    const float cosine = std::cos(-handedOn.mRotation);
    const aiVector2D& scale = handedOn.mScaling;
    const float shiftS = handedOn.mTranslation.x - 0.5f * scale.x * (1.0f - cosine + sine);
    const float shiftDown =
        0.5f * scale.y * (sine + cosine - 1.0f) + 1.0f - scale.y - handedOn.mTranslation.y;
    TextureTransform result;
    result.toS_[0] = cosine * scale.x;
    result.toS_[1] = -sine * scale.y;
    result.toS_[2] = shiftS + sine * scale.y;
    result.toT_[0] = sine * scale.x;
    result.toT_[1] = cosine * scale.y;
    result.toT_[2] = 1.0f - shiftDown - cosine * scale.y;
    return result;
}

TexturePoint TextureTransform::operator()(const TexturePoint& point) const
{
    return {toS_[0] * point.s + toS_[1] * point.t + toS_[2], toT_[0] * point.s + toT_[1] * point.t + toT_[2]};
}

} // namespace hostkit
