#include "contracts/ogl/OruOglCanvas.h"

#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglFeatures.h"

// Younger than the OpenGL that is needed: null where the system's library lacks them.
#pragma weak glGenFramebuffers
#pragma weak glBindFramebuffer
#pragma weak glDeleteFramebuffers
#pragma weak glFramebufferTexture2D
#pragma weak glFramebufferRenderbuffer
#pragma weak glCheckFramebufferStatus
#pragma weak glGenRenderbuffers
#pragma weak glBindRenderbuffer
#pragma weak glDeleteRenderbuffers
#pragma weak glRenderbufferStorage

OruOglCanvas::~OruOglCanvas()
{
    release();
}

void OruOglCanvas::release()
{
    if (frame_) {
        glDeleteFramebuffers(1, &frame_);
        glDeleteRenderbuffers(1, &stencil_);
        glDeleteTextures(1, &texture_);
    }
    frame_ = texture_ = stencil_ = 0;
    width_ = height_ = 0;
}

bool OruOglCanvas::resize(int width, int height)
{
    if (frame_ && width == width_ && height == height_) {
        return true;
    }
    release();
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    if (!OruOglFeatures::ofContext().framebuffers || width < 1 || height < 1 || width > most ||
        height > most) {
        return false;
    }
    width_ = width;
    height_ = height;
    GLint before = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &before);
    glGenFramebuffers(1, &frame_);
    glBindFramebuffer(GL_FRAMEBUFFER, frame_);

    glPushAttrib(GL_TEXTURE_BIT);
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glPopAttrib();
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);

    // Drivers have a stencil together with a depth, and seldom alone.
    glGenRenderbuffers(1, &stencil_);
    glBindRenderbuffer(GL_RENDERBUFFER, stencil_);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, stencil_);

    const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before));
    if (!complete) {
        release();
    }
    return complete;
}

OruOglCanvas::Drawing::Drawing(const OruOglCanvas& canvas)
{
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &frameBefore_);
    glPushAttrib(GL_VIEWPORT_BIT);
    glBindFramebuffer(GL_FRAMEBUFFER, canvas.frame_);
    glViewport(0, 0, canvas.width_, canvas.height_);
}

OruOglCanvas::Drawing::~Drawing()
{
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(frameBefore_));
    glPopAttrib();
}
