#pragma once

#include "hosts/mesh/Primitive.h"

namespace hostkit {

/// The GL state in which points or lines are drawn in a 3D pass, for the length of a scope: so many pixels
/// wide, and without light where there are no normals.
class ThinState
{
public:
    /// `glow` is added to all colors, red, green and blue; null: nothing. Light shows the material's emission
    /// anyway.
    ThinState(Primitive primitive, int pixels, bool lit, const float* glow);
    ~ThinState();
    ThinState(const ThinState&) = delete;
    ThinState& operator=(const ThinState&) = delete;

    /// The most pixels that the context can draw.
    static float widest(Primitive primitive);

private:
    Primitive primitive_;
    float pixelsBefore_ = 1.0f;
    /// The light is put out for the scope.
    bool darkened_;
    bool glows_;
};

} // namespace hostkit
