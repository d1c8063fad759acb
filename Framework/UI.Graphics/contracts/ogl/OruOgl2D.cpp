#include "contracts/ogl/OruOgl2D.h"

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

#include <algorithm>
#include <cstdint>

namespace {

struct Span
{
    std::int64_t begin;
    std::int64_t end;
};

Span common(int begin, int length, int otherBegin, int otherLength)
{
    const std::int64_t last = std::min(std::int64_t{begin} + length, std::int64_t{otherBegin} + otherLength);
    const std::int64_t first = std::max(begin, otherBegin);
    return {first, std::max(first, last)};
}

/// Viewports do not clip the width of a line: half of it would show beyond the edge, in another view perhaps.
void clipAt(const OruOglViewport& viewport)
{
    int box[] = {viewport.x, viewport.y, viewport.width, viewport.height};
    if (glIsEnabled(GL_SCISSOR_TEST)) {
        glGetIntegerv(GL_SCISSOR_BOX, box);
    }
    const Span x = common(viewport.x, viewport.width, box[0], box[2]);
    const Span y = common(viewport.y, viewport.height, box[1], box[3]);
    glEnable(GL_SCISSOR_TEST);
    glScissor(static_cast<int>(x.begin), static_cast<int>(y.begin), static_cast<int>(x.end - x.begin),
              static_cast<int>(y.end - y.begin));
}

} // namespace

OruOgl2D::OruOgl2D(const OruOglViewport& viewport)
    : viewport_(viewport)
{}

OruOgl2D::~OruOgl2D()
{
    end();
}

void OruOgl2D::begin() const
{
    if (state_) {
        return;
    }
    state_ = std::make_unique<OruOglFlatState>();
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    clipAt(viewport_);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(viewport_);
    glTranslated(-static_cast<double>(viewport_.x), -static_cast<double>(viewport_.y), 0.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
}

void OruOgl2D::end() const
{
    if (!state_) {
        return;
    }
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    state_.reset();
}
