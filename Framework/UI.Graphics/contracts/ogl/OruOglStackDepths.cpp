#include "contracts/ogl/OruOglStackDepths.h"

#include "contracts/ogl/OruOglGl.h"

namespace {

constexpr int unknownDepth = -1;

int depth(GLenum name)
{
    GLint value = unknownDepth;
    glGetIntegerv(name, &value);
    return value;
}

/// Inside glBegin a query gives an error and no answer: that is how an open primitive shows.
void closePrimitive()
{
    if (depth(GL_ATTRIB_STACK_DEPTH) == unknownDepth) {
        glEnd();
        glGetError();
    }
}

void popMatrices(GLenum mode, int from, int to)
{
    if (from <= to) {
        return;
    }
    glMatrixMode(mode);
    for (; from > to; --from) {
        glPopMatrix();
    }
}

} // namespace

OruOglStackDepths::OruOglStackDepths()
    : attributes_(depth(GL_ATTRIB_STACK_DEPTH))
    , modelView_(depth(GL_MODELVIEW_STACK_DEPTH))
    , projection_(depth(GL_PROJECTION_STACK_DEPTH))
    , matrixMode_(depth(GL_MATRIX_MODE))
{}

void OruOglStackDepths::restore() const
{
    closePrimitive();
    for (int now = depth(GL_ATTRIB_STACK_DEPTH); now > attributes_; --now) {
        glPopAttrib();
    }
    popMatrices(GL_MODELVIEW, depth(GL_MODELVIEW_STACK_DEPTH), modelView_);
    popMatrices(GL_PROJECTION, depth(GL_PROJECTION_STACK_DEPTH), projection_);
    glMatrixMode(static_cast<GLenum>(matrixMode_));
}
