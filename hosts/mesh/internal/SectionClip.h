#pragma once

#include "contracts/ogl/OruOglGl.h"
#include "hosts/mesh/SectionPlanes.h"

namespace hostkit {

/// While it lives, section planes clip what is drawn: all active ones but `spared`, which may be null. The
/// matrices of the scene are loaded when it is made.
class SectionClip
{
public:
    explicit SectionClip(const SectionPlanes& planes, const SectionPlane* spared = nullptr)
    {
        glPushAttrib(GL_TRANSFORM_BIT | GL_ENABLE_BIT);
        for (const SectionPlane* const plane : planes.active()) {
            if (plane != spared) {
                clipBy(*plane);
            }
        }
    }

    /// By one plane alone.
    explicit SectionClip(const SectionPlane& plane)
    {
        glPushAttrib(GL_TRANSFORM_BIT | GL_ENABLE_BIT);
        clipBy(plane);
    }
    ~SectionClip() { glPopAttrib(); }
    SectionClip(const SectionClip&) = delete;
    SectionClip& operator=(const SectionClip&) = delete;

private:
    static void clipBy(const SectionPlane& plane)
    {
        const GLenum name = GL_CLIP_PLANE0 + static_cast<GLenum>(plane.axis());
        glClipPlane(name, plane.kept().data());
        glEnable(name);
    }
};

} // namespace hostkit
