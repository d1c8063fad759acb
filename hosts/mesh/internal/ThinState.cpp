#include "hosts/mesh/internal/ThinState.h"

#include "contracts/ogl/OruOglGl.h"

namespace hostkit {

namespace {

void setPixels(Primitive primitive, float pixels)
{
    (primitive == Primitive::Lines ? glLineWidth : glPointSize)(pixels);
}

} // namespace

ThinState::ThinState(Primitive primitive, int pixels, bool lit, const float* glow)
    : primitive_(primitive)
    , darkened_(!lit && glIsEnabled(GL_LIGHTING))
    , glows_(darkened_ && glow)
{
    glGetFloatv(primitive == Primitive::Lines ? GL_LINE_WIDTH : GL_POINT_SIZE, &pixelsBefore_);
    setPixels(primitive, static_cast<float>(pixels));
    if (darkened_) {
        glDisable(GL_LIGHTING);
    }
    if (glows_) {
        glSecondaryColor3fv(glow);
        glEnable(GL_COLOR_SUM);
    }
}

ThinState::~ThinState()
{
    if (glows_) {
        glDisable(GL_COLOR_SUM);
        glSecondaryColor3f(0.0f, 0.0f, 0.0f);
    }
    if (darkened_) {
        glEnable(GL_LIGHTING);
    }
    setPixels(primitive_, pixelsBefore_);
}

float ThinState::widest(Primitive primitive)
{
    float range[2] = {1.0f, 1.0f};
    glGetFloatv(primitive == Primitive::Lines ? GL_ALIASED_LINE_WIDTH_RANGE : GL_ALIASED_POINT_SIZE_RANGE,
                range);
    return range[1];
}

} // namespace hostkit
