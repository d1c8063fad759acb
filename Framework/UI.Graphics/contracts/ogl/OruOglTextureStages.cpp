#include "contracts/ogl/OruOglTextureStages.h"

#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglTexture.h"

namespace {

constexpr GLenum surfaceUnit = GL_TEXTURE0;
constexpr GLenum alphaUnit = GL_TEXTURE1;

struct Setting
{
    GLenum name;
    GLenum value;
};

/// The operands and scales that a combination does not set are those of a new context.
constexpr Setting mixing[] = {
    {GL_TEXTURE_ENV_MODE, GL_COMBINE}, {GL_COMBINE_RGB, GL_INTERPOLATE}, {GL_SRC0_RGB, GL_PRIMARY_COLOR},
    {GL_SRC1_RGB, GL_TEXTURE},         {GL_SRC2_RGB, GL_CONSTANT},       {GL_OPERAND2_RGB, GL_SRC_ALPHA},
    {GL_COMBINE_ALPHA, GL_MODULATE},   {GL_SRC0_ALPHA, GL_TEXTURE},      {GL_SRC1_ALPHA, GL_PRIMARY_COLOR},
};
constexpr Setting scalingAlpha[] = {
    {GL_TEXTURE_ENV_MODE, GL_COMBINE}, {GL_COMBINE_RGB, GL_REPLACE}, {GL_SRC0_RGB, GL_PREVIOUS},
    {GL_COMBINE_ALPHA, GL_MODULATE},   {GL_SRC0_ALPHA, GL_PREVIOUS}, {GL_SRC1_ALPHA, GL_CONSTANT},
};

void turnOn(GLenum unit, const OruOglTexture& texture)
{
    glActiveTexture(unit);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture.name);
}

template <std::size_t Count>
void combine(const Setting (&settings)[Count], float constantAlpha)
{
    for (const Setting& setting : settings) {
        glTexEnvi(GL_TEXTURE_ENV, setting.name, static_cast<GLint>(setting.value));
    }
    const float constant[4] = {0.0f, 0.0f, 0.0f, constantAlpha};
    glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, constant);
}

} // namespace

OruOglTextureStages::OruOglTextureStages()
{
    glPushAttrib(GL_TEXTURE_BIT);
}

OruOglTextureStages::~OruOglTextureStages()
{
    glPopAttrib();
}

void OruOglTextureStages::multiply(const OruOglTexture& texture) const
{
    turnOn(surfaceUnit, texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

void OruOglTextureStages::mix(const OruOglTexture& texture, float share) const
{
    turnOn(surfaceUnit, texture);
    combine(mixing, share);
}

void OruOglTextureStages::scaleAlpha(float factor, const OruOglTexture& blank) const
{
    turnOn(alphaUnit, blank);
    combine(scalingAlpha, factor);
    glActiveTexture(surfaceUnit);
}
