#pragma once

#include "Scene/render/internal/OruSceneRenderRecovery.h"
#include "contracts/ogl/OruOglGl.h"

/// Saves the OpenGL attributes and both matrix stacks round a frame and puts them back, after an exception
/// too: what an abandoned pass has pushed comes off first, then the frame's own entries.
///
/// The attributes are pushed first and popped last, which also brings the host's matrix mode back.
class OruSceneFrameState
{
public:
    explicit OruSceneFrameState(OruSceneRender& render)
        : stacks_()
        , recovery_(render)
    {}
    OruSceneFrameState(const OruSceneFrameState&) = delete;
    OruSceneFrameState& operator=(const OruSceneFrameState&) = delete;

private:
    struct Stacks
    {
        Stacks()
        {
            glPushAttrib(OruOglAllAttribBits);
            glMatrixMode(GL_PROJECTION);
            glPushMatrix();
            glMatrixMode(GL_MODELVIEW);
            glPushMatrix();
        }
        ~Stacks()
        {
            glMatrixMode(GL_PROJECTION);
            glPopMatrix();
            glMatrixMode(GL_MODELVIEW);
            glPopMatrix();
            glPopAttrib();
        }
        Stacks(const Stacks&) = delete;
        Stacks& operator=(const Stacks&) = delete;
    };

    Stacks stacks_;
    OruSceneRenderRecovery recovery_;
};
