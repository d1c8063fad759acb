#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/ogl/kelvar_ogl_api.h"

struct OruOglFeatures;

/// The GL state in which flat things are drawn over a picture, for the length of a scope.
///
/// Inside: filled polygons with all their edges, flat plain color; no depth, stencil, alpha or depth bounds
/// test, lighting, fog, blend, culling, stipple, smoothing, polygon offset, logic operation or clip plane; no
/// texture of any target in any unit, unit 0 active, without a texture matrix and a sampler object; no shader
/// program, program pipeline, ARB program or ATI fragment shader. What a context is too old for is left out.
/// The scissor, the color mask, the draw buffer, the conversion to sRGB and the matrices are the caller's.
/// At the end all that is as it was, the current color, line width and texture bindings included.
class KELVAR_OGL_API OruOglFlatState
{
public:
    OruOglFlatState();
    ~OruOglFlatState();
    OruOglFlatState(const OruOglFlatState&) = delete;
    OruOglFlatState& operator=(const OruOglFlatState&) = delete;

    /// Mixes what is drawn from here on with the picture by its alpha. The picture's own alpha grows opaque.
    void blend() const;

private:
    void unbindPrograms(const OruOglFeatures& features);

    // What no attribute entry saves; 0 where nothing was bound.
    unsigned int program_ = 0;
    unsigned int pipeline_ = 0;
    unsigned int sampler_ = 0;
    Kelvar::Math::Matrix textureMatrix_;
};
