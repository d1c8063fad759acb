#include "contracts/ogl/OruOglFlatState.h"

#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglFeatures.h"

namespace {

constexpr GLbitfield savedGroups = GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT | GL_LINE_BIT |
                                   GL_POLYGON_BIT | GL_LIGHTING_BIT | GL_SCISSOR_BIT | GL_TEXTURE_BIT |
                                   GL_TRANSFORM_BIT;

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
    GL_MULTISAMPLE,
    // Those of unit 0, the only one whose textures are ever on again.
    GL_TEXTURE_GEN_S,
    GL_TEXTURE_GEN_T,
    GL_TEXTURE_GEN_R,
    GL_TEXTURE_GEN_Q,
};

unsigned int binding(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return static_cast<unsigned int>(value);
}

/// Leaves unit 0 active.
void disableTextures(const OruOglFeatures& features)
{
    for (int unit = features.textureUnits - 1; unit >= 0; --unit) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        for (const GLenum target : features.textureTargets) {
            glDisable(target);
        }
    }
}

void disableTheRest(const OruOglFeatures& features)
{
    for (const GLenum capability : disturbing) {
        glDisable(capability);
    }
    for (const GLenum capability : features.capabilities) {
        glDisable(capability);
    }
    for (int plane = 0; plane < features.clipPlanes; ++plane) {
        glDisable(GL_CLIP_PLANE0 + static_cast<GLenum>(plane));
    }
}

/// By hand, since the stack of texture matrices may have room for a single one.
void loadTextureMatrix(const Kelvar::Math::Matrix& matrix)
{
    glPushAttrib(GL_TRANSFORM_BIT);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(matrix.data());
    glPopAttrib();
}

} // namespace

OruOglFlatState::OruOglFlatState()
{
    const OruOglFeatures& features = OruOglFeatures::ofContext();
    glPushAttrib(savedGroups);
    disableTextures(features);
    disableTheRest(features);
    glGetFloatv(GL_TEXTURE_MATRIX, textureMatrix_.data());
    loadTextureMatrix(Kelvar::Math::Matrix());
    glShadeModel(GL_FLAT);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEdgeFlag(GL_TRUE);
    unbindPrograms(features);
}

void OruOglFlatState::unbindPrograms(const OruOglFeatures& features)
{
    program_ = binding(GL_CURRENT_PROGRAM);
    if (program_ != 0) {
        glUseProgram(0);
    }
    pipeline_ = features.bindPipeline ? binding(GL_PROGRAM_PIPELINE_BINDING) : 0;
    if (pipeline_ != 0) {
        features.bindPipeline(0);
    }
    sampler_ = features.bindSampler ? binding(GL_SAMPLER_BINDING) : 0;
    if (sampler_ != 0) {
        features.bindSampler(0, 0);
    }
}

OruOglFlatState::~OruOglFlatState()
{
    const OruOglFeatures& features = OruOglFeatures::ofContext();
    if (sampler_ != 0) {
        features.bindSampler(0, sampler_);
    }
    if (pipeline_ != 0) {
        features.bindPipeline(pipeline_);
    }
    if (program_ != 0) {
        glUseProgram(program_);
    }
    loadTextureMatrix(textureMatrix_);
    glPopAttrib();
}

void OruOglFlatState::blend() const
{
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
}
