#include "contracts/ogl/internal/OruOglFeatures.h"

#include "contracts/ogl/OruOglGl.h"

#include <algorithm>
#include <cstdio>
#include <string>

// Younger than the OpenGL that is needed: null where the system's library lacks them.
#pragma weak glBindSampler
#pragma weak glBindProgramPipeline

namespace {

/// A context has a feature from a version on (10 times its number), or by an extension.
struct Feature
{
    const char* extension;
    int version;
    GLenum capability;
};

constexpr int never = 1000;
constexpr Feature samplerObjects{"GL_ARB_sampler_objects", 33, 0};
constexpr Feature programPipelines{"GL_ARB_separate_shader_objects", 41, 0};

constexpr Feature framebufferObjects{"GL_ARB_framebuffer_object", 30, 0};

constexpr Feature anisotropicFilter{"GL_EXT_texture_filter_anisotropic", 46,
                                    GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT};

constexpr Feature textureTargets[] = {
    {"", 0, GL_TEXTURE_1D},
    {"", 0, GL_TEXTURE_2D},
    {"", 0, GL_TEXTURE_3D},
    {"", 0, GL_TEXTURE_CUBE_MAP},
    {"GL_ARB_texture_rectangle", 31, GL_TEXTURE_RECTANGLE},
};

constexpr Feature capabilities[] = {
    {"GL_ARB_vertex_program", never, GL_VERTEX_PROGRAM_ARB},
    {"GL_ARB_fragment_program", never, GL_FRAGMENT_PROGRAM_ARB},
    {"GL_ATI_fragment_shader", never, GL_FRAGMENT_SHADER_ATI},
    {"GL_EXT_depth_bounds_test", never, GL_DEPTH_BOUNDS_TEST_EXT},
};

std::string text(GLenum name)
{
    const GLubyte* const found = glGetString(name);
    return found ? reinterpret_cast<const char*>(found) : "";
}

/// The texts in which a context tells what it has.
struct Texts
{
    std::string version = text(GL_VERSION);
    std::string extensions = text(GL_EXTENSIONS);

    bool operator==(const Texts& other) const
    {
        return version == other.version && extensions == other.extensions;
    }

    bool tell(const Feature& feature) const
    {
        int major = 0;
        int minor = 0;
        std::sscanf(version.c_str(), "%d.%d", &major, &minor);
        const std::string word = std::string(" ") + feature.extension + " ";
        return 10 * major + minor >= feature.version ||
               (" " + extensions + " ").find(word) != std::string::npos;
    }
};

template <std::size_t Count>
std::vector<unsigned int> present(const Feature (&features)[Count], const Texts& texts)
{
    std::vector<unsigned int> result;
    for (const Feature& feature : features) {
        if (texts.tell(feature)) {
            result.push_back(feature.capability);
        }
    }
    return result;
}

int number(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

/// Mesa's software renderers have the filter, too: they take three times as long with it, and textures that
/// mirror come out shifted.
float anisotropyToldBy(const Texts& texts)
{
    const std::string renderer = text(GL_RENDERER);
    const bool software =
        renderer.find("llvmpipe") != std::string::npos || renderer.find("softpipe") != std::string::npos;
    GLfloat most = 1.0f;
    if (!software && texts.tell(anisotropicFilter)) {
        glGetFloatv(anisotropicFilter.capability, &most);
    }
    return most;
}

OruOglFeatures featuresToldBy(const Texts& texts)
{
    OruOglFeatures features;
    features.bindSampler = texts.tell(samplerObjects) ? &glBindSampler : nullptr;
    features.bindPipeline = texts.tell(programPipelines) ? &glBindProgramPipeline : nullptr;
    features.textureTargets = present(textureTargets, texts);
    features.capabilities = present(capabilities, texts);
    features.framebuffers = texts.tell(framebufferObjects);
    features.textureUnits = std::max(number(GL_MAX_TEXTURE_UNITS), 1);
    features.clipPlanes = number(GL_MAX_CLIP_PLANES);
    features.anisotropy = anisotropyToldBy(texts);
    return features;
}

} // namespace

const OruOglFeatures& OruOglFeatures::ofContext()
{
    // To compare the texts takes a small part of the time in which they are searched.
    thread_local Texts seen;
    thread_local OruOglFeatures features = featuresToldBy(seen);
    const Texts now;
    if (!(now == seen)) {
        seen = now;
        features = featuresToldBy(seen);
    }
    return features;
}
