#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

/// The GL state in which flat things are drawn over a picture, for the length of a scope.
///
/// Inside: filled polygons, flat plain colour; no depth or stencil or alpha test, lighting, fog, texture,
/// blend, culling, stipple, smoothing, polygon offset, logic operation or clip plane. The scissor, the colour
/// mask, the draw buffer and the matrices are the caller's. At the end all that is as it was, the current
/// colour, line width and texture binding of unit 0 included.
class KELVAR_OGL_API OruOglFlatState
{
public:
    OruOglFlatState();
    ~OruOglFlatState();
    OruOglFlatState(const OruOglFlatState&) = delete;
    OruOglFlatState& operator=(const OruOglFlatState&) = delete;

    /// Mixes what is drawn from here on with the picture by its alpha. The picture's own alpha grows opaque.
    void blend() const;
};
