// GLEW declares all of OpenGL and must come ahead of every other header that does.
#include <GL/glew.h>

#include "Scene/core/internal/OruSceneCaptureTarget.h"
#include "contracts/ogl/OruOglGl.h"

OruSceneCaptureTarget::OruSceneCaptureTarget(int width, int height)
{
    glGenFramebuffersEXT(1, &frame_);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, frame_);
    attachColor(width, height);
    attachDepth(width, height);
}

OruSceneCaptureTarget::~OruSceneCaptureTarget()
{
    release();
}

void OruSceneCaptureTarget::attachColor(int width, int height)
{
    glGenRenderbuffersEXT(1, &color_);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, color_);
    glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, GL_RGB, width, height);
    glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_RENDERBUFFER_EXT, color_);
}

void OruSceneCaptureTarget::attachDepth(int width, int height)
{
    glGenRenderbuffersEXT(1, &depth_);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, depth_);
    glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, OruOglDepthComponent24, width, height);
    glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT, GL_RENDERBUFFER_EXT, depth_);
}

bool OruSceneCaptureTarget::complete() const
{
    return glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) == GL_FRAMEBUFFER_COMPLETE_EXT;
}

void OruSceneCaptureTarget::release()
{
    if (frame_) {
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        discard();
    }
}

void OruSceneCaptureTarget::discard()
{
    glDeleteRenderbuffersEXT(1, &color_);
    glDeleteRenderbuffersEXT(1, &depth_);
    glDeleteFramebuffersEXT(1, &frame_);
    frame_ = color_ = depth_ = 0;
}
