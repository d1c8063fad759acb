#include "contracts/ogl/OruOgl2D.h"

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

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
