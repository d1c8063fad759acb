#include "contracts/ogl/OruOgl2D.h"

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

namespace {

constexpr float offCentre = 0.125f;

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
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(viewport_);
    // A line two pixels wide along pixel centres would end on centres too, and which of them it then covers
    // depends on whether the framebuffer is upside down. A small step off the centres decides it.
    glTranslatef(offCentre, offCentre, 0.0f);
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
