#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

/// The GL state in which transparent things of a scene are drawn over the solid ones, for the length of a
/// scope: mixed with the picture by their alpha, and without writing depth. The picture's own alpha grows
/// opaque. At the end blending and depth writes are as they were.
class KELVAR_OGL_API OruOglTransparency
{
public:
    OruOglTransparency();
    ~OruOglTransparency();
    OruOglTransparency(const OruOglTransparency&) = delete;
    OruOglTransparency& operator=(const OruOglTransparency&) = delete;
};
