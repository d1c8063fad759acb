#include "hosts/mesh/internal/PartBlending.h"

#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglTextureStages.h"
#include "hosts/mesh/Shape.h"

namespace hostkit {

namespace {

/// Whatever alpha the pixels come with.
void blendBy(float opacity)
{
    glBlendColor(0.0f, 0.0f, 0.0f, opacity);
    glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
}

} // namespace

PartBlending::PartBlending(const Shape& shape, float opacity, OruOglCache& cache)
{
    glPushAttrib(GL_COLOR_BUFFER_BIT);
    if (shape.material.alpha != Material::Alpha::Blend) {
        blendBy(opacity);
    } else if (!shape.colors.empty() && opacity < 1.0f) {
        // The colors of vertices take the place of the current color, and of the opacity that it holds.
        stages_ = std::make_unique<OruOglTextureStages>();
        stages_->scaleAlpha(opacity, cache.blank());
    }
}

PartBlending::~PartBlending()
{
    stages_.reset();
    glPopAttrib();
}

} // namespace hostkit
