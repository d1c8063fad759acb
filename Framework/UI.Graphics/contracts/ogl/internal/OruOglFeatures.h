#pragma once

#include <vector>

/// What the current context has of the OpenGL that came after version 2.1, or beside it, as far as a host's
/// use of it reaches into what is drawn with the fixed pipeline.
struct OruOglFeatures
{
    /// glBindSampler and glBindProgramPipeline; null where there are no such objects.
    void (*bindSampler)(unsigned int unit, unsigned int sampler) = nullptr;
    void (*bindPipeline)(unsigned int pipeline) = nullptr;

    /// What can be enabled in each texture unit and in the context as a whole.
    std::vector<unsigned int> textureTargets;
    std::vector<unsigned int> capabilities;

    bool framebuffers = false; ///< There are framebuffer objects.
    int textureUnits = 1;      ///< Those of the fixed pipeline.
    int clipPlanes = 0;
    float anisotropy = 1.0f; ///< The most that a texture's filter should have; 1: none.

    /// Those of the context that is current in this thread; the reference is good until the next call. Raises
    /// no GL error.
    static const OruOglFeatures& ofContext();
};
