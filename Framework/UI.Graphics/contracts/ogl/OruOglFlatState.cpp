#include "contracts/ogl/OruOglFlatState.h"

#include "contracts/ogl/OruOglGl.h"

namespace {

constexpr GLbitfield savedGroups = GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT | GL_LINE_BIT |
                                   GL_POLYGON_BIT | GL_LIGHTING_BIT | GL_TEXTURE_BIT | GL_TRANSFORM_BIT;

constexpr GLenum disturbing[] = {
    GL_DEPTH_TEST,
    GL_STENCIL_TEST,
    GL_ALPHA_TEST,
    GL_LIGHTING,
    GL_FOG,
    GL_COLOR_SUM,
    GL_BLEND,
    GL_CULL_FACE,
    GL_LINE_STIPPLE,
    GL_POLYGON_STIPPLE,
    GL_LINE_SMOOTH,
    GL_POLYGON_SMOOTH,
    GL_COLOR_LOGIC_OP,
    GL_POLYGON_OFFSET_FILL,
    GL_POLYGON_OFFSET_LINE,
    GL_TEXTURE_1D,
    GL_TEXTURE_2D,
    GL_TEXTURE_3D,
    GL_TEXTURE_CUBE_MAP,
    GL_MULTISAMPLE,
    GL_TEXTURE_GEN_S,
    GL_TEXTURE_GEN_T,
    GL_TEXTURE_GEN_R,
    GL_TEXTURE_GEN_Q,
    GL_CLIP_PLANE0,
    GL_CLIP_PLANE1,
    GL_CLIP_PLANE2,
    GL_CLIP_PLANE3,
    GL_CLIP_PLANE4,
    GL_CLIP_PLANE5,
};

} // namespace

OruOglFlatState::OruOglFlatState()
{
    glPushAttrib(savedGroups);
    glActiveTexture(GL_TEXTURE0);
    for (const GLenum capability : disturbing) {
        glDisable(capability);
    }
    glShadeModel(GL_FLAT);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

OruOglFlatState::~OruOglFlatState()
{
    glPopAttrib();
}

void OruOglFlatState::blend() const
{
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
}
