#include "contracts/ogl/OruOglTransparency.h"

#include "contracts/ogl/OruOglGl.h"

OruOglTransparency::OruOglTransparency()
{
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
}

OruOglTransparency::~OruOglTransparency()
{
    glPopAttrib();
}
