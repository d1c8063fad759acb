#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

struct OruOglTexture;

/// What textures make of the colors of the surfaces that are drawn within a scope. Nothing at first.
///
/// For the 3D pass, in which no texture is on and texture matrices are the identity. At the end the enables,
/// bindings and environments of all units and the active unit are as they were.
class KELVAR_OGL_API OruOglTextureStages
{
public:
    OruOglTextureStages();
    ~OruOglTextureStages();
    OruOglTextureStages(const OruOglTextureStages&) = delete;
    OruOglTextureStages& operator=(const OruOglTextureStages&) = delete;

    /// Multiplies the color of the surface, lit or not, and its alpha with those of the texture.
    void multiply(const OruOglTexture& texture) const;

    /// Lets the color of the surface show through, however dark the texture is: it counts by `share`, 0 to 1,
    /// and the texture by the rest. Alphas are multiplied.
    void mix(const OruOglTexture& texture, float share) const;

    /// Multiplies alpha with `factor`, 0 to 1, behind what the other two do; takes a unit of its own. `blank`
    /// is any texture.
    void scaleAlpha(float factor, const OruOglTexture& blank) const;
};
