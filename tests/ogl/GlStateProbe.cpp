#include "tests/ogl/GlStateProbe.h"

#include "contracts/ogl/OruOglGl.h"

#include <QOpenGLContext>

#include <sstream>

namespace kelvartest {

namespace {

using Names = std::initializer_list<GLenum>;

constexpr Names hostile = {GL_DEPTH_TEST,
                           GL_STENCIL_TEST,
                           GL_ALPHA_TEST,
                           GL_LIGHTING,
                           GL_FOG,
                           GL_BLEND,
                           GL_CULL_FACE,
                           GL_LINE_STIPPLE,
                           GL_POLYGON_STIPPLE,
                           GL_COLOR_LOGIC_OP,
                           GL_CLIP_PLANE0,
                           GL_LINE_SMOOTH,
                           GL_VERTEX_PROGRAM_ARB,
                           GL_FRAGMENT_PROGRAM_ARB};
/// Of each texture unit.
constexpr Names targets = {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP,
                           GL_TEXTURE_RECTANGLE};
constexpr Names generators = {GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T};
constexpr Names inUnits = {GL_TEXTURE_MATRIX, GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_3D,
                           GL_SAMPLER_BINDING, GL_CURRENT_TEXTURE_COORDS};
constexpr GLenum usedUnits = 3;
constexpr Names otherCapabilities = {GL_POLYGON_OFFSET_FILL, GL_SCISSOR_TEST, GL_MULTISAMPLE,
                                     GL_VERTEX_ARRAY,        GL_NORMAL_ARRAY, GL_COLOR_ARRAY,
                                     GL_TEXTURE_COORD_ARRAY};
constexpr Names placing = {GL_MATRIX_MODE, GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX, GL_VIEWPORT};
constexpr Names drawing = {GL_CURRENT_COLOR,   GL_EDGE_FLAG,
                           GL_POLYGON_MODE,    GL_SHADE_MODEL,
                           GL_LINE_WIDTH,      GL_LINE_STIPPLE_PATTERN,
                           GL_BLEND_SRC,       GL_BLEND_DST,
                           GL_BLEND_EQUATION,  GL_LOGIC_OP_MODE,
                           GL_CULL_FACE_MODE,  GL_DEPTH_FUNC,
                           GL_CURRENT_PROGRAM, GL_PROGRAM_PIPELINE_BINDING,
                           GL_ACTIVE_TEXTURE,  GL_DEPTH_WRITEMASK,
                           GL_BLEND_COLOR,     GL_ALPHA_TEST_REF};
constexpr Names depthsAndBindings = {GL_ATTRIB_STACK_DEPTH,        GL_CLIENT_ATTRIB_STACK_DEPTH,
                                     GL_MODELVIEW_STACK_DEPTH,     GL_PROJECTION_STACK_DEPTH,
                                     GL_ARRAY_BUFFER_BINDING,      GL_ELEMENT_ARRAY_BUFFER_BINDING,
                                     GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER_BINDING};
constexpr Names pixels = {GL_PACK_ALIGNMENT,  GL_PACK_ROW_LENGTH,  GL_PACK_SKIP_ROWS,    GL_PACK_SKIP_PIXELS,
                          GL_PACK_SWAP_BYTES, GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS,
                          GL_RED_SCALE,       GL_GREEN_BIAS,       GL_MAP_COLOR,         GL_READ_BUFFER,
                          GL_DRAW_BUFFER};

void addCapabilities(std::ostream& text, const Names& names)
{
    for (const GLenum capability : names) {
        text << capability << (glIsEnabled(capability) ? " on\n" : " off\n");
    }
}

void addNumbers(std::ostream& text, const Names& names)
{
    for (const GLenum name : names) {
        GLfloat numbers[16] = {};
        glGetFloatv(name, numbers);
        text << name;
        for (const GLfloat number : numbers) {
            text << ' ' << number;
        }
        text << '\n';
    }
}

/// A texture of a single red texel, bound.
GLuint redTexture(GLenum target)
{
    const GLubyte red[] = {255, 0, 0, 255};
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(target, name);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    if (target == GL_TEXTURE_1D) {
        glTexImage1D(target, 0, GL_RGBA, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, red);
    } else if (target == GL_TEXTURE_3D) {
        glTexImage3D(target, 0, GL_RGBA, 1, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, red);
    } else {
        const bool cube = target == GL_TEXTURE_CUBE_MAP;
        for (GLenum face = 0; face < (cube ? 6U : 1U); ++face) {
            glTexImage2D(cube ? GL_TEXTURE_CUBE_MAP_POSITIVE_X + face : target, 0, GL_RGBA, 1, 1, 0, GL_RGBA,
                         GL_UNSIGNED_BYTE, red);
        }
    }
    return name;
}

/// Extensions are no part of the library that is linked.
template <typename Function>
Function extension(const char* name)
{
    return reinterpret_cast<Function>(QOpenGLContext::currentContext()->getProcAddress(name));
}

void loadArbProgram(GLenum target, GLuint name, const std::string& text)
{
    extension<PFNGLBINDPROGRAMARBPROC>("glBindProgramARB")(target, name);
    extension<PFNGLPROGRAMSTRINGARBPROC>("glProgramStringARB")(
        target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
}

} // namespace

std::string glStateText()
{
    std::ostringstream text;
    text << std::hex;
    addCapabilities(text, hostile);
    addCapabilities(text, otherCapabilities);
    for (const Names& names : {placing, drawing, depthsAndBindings, pixels}) {
        addNumbers(text, names);
    }
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    for (GLenum unit = 0; unit < usedUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        addCapabilities(text, targets);
        addCapabilities(text, generators);
        addNumbers(text, inUnits);
        GLint environment = 0;
        glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &environment);
        text << "environment " << environment << '\n';
    }
    glActiveTexture(static_cast<GLenum>(active));
    return text.str();
}

HostileState::HostileState()
{
    glPushAttrib(OruOglAllAttribBits);
    for (const GLenum capability : hostile) {
        glEnable(capability);
    }
    glDepthFunc(GL_NEVER);
    glStencilFunc(GL_NEVER, 0, 0);
    glAlphaFunc(GL_NEVER, 0.0f);
    glBlendFunc(GL_ONE, GL_ONE);
    glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, -2.0f);
    glFogf(GL_FOG_END, -1.0f);
    glCullFace(GL_FRONT_AND_BACK);
    glLineStipple(1, 0);
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    glLogicOp(GL_CLEAR);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glLineWidth(3.0f);
    const GLdouble nothing[] = {0.0, 0.0, 0.0, -1.0};
    glClipPlane(GL_CLIP_PLANE0, nothing);
    glEdgeFlag(GL_FALSE);
    bindTextures();
    bindPrograms();
}

void HostileState::bindTextures()
{
    for (GLenum unit = 0; unit < usedUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        for (const GLenum target : targets) {
            textures_.push_back(redTexture(target));
            glEnable(target);
        }
        for (const GLenum generator : generators) {
            glEnable(generator);
        }
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
        glMatrixMode(GL_TEXTURE);
        glScalef(0.0f, 0.0f, 0.0f);
        glMatrixMode(GL_MODELVIEW);
    }
    glGenSamplers(1, &sampler_); // wants mipmaps
    glBindSampler(0, sampler_);
}

void HostileState::bindPrograms()
{
    const char* const red = "void main() { gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0); }";
    program_ = glCreateShaderProgramv(GL_FRAGMENT_SHADER, 1, &red);
    glUseProgram(program_);
    glGenProgramPipelines(1, &pipeline_);
    glUseProgramStages(pipeline_, GL_FRAGMENT_SHADER_BIT, program_);
    glBindProgramPipeline(pipeline_);
    extension<PFNGLGENPROGRAMSARBPROC>("glGenProgramsARB")(2, arbPrograms_);
    loadArbProgram(GL_VERTEX_PROGRAM_ARB, arbPrograms_[0],
                   "!!ARBvp1.0 MOV result.position, {2, 2, 2, 1}; END");
    loadArbProgram(GL_FRAGMENT_PROGRAM_ARB, arbPrograms_[1],
                   "!!ARBfp1.0 MOV result.color, {1, 0, 0, 1}; END");
}

HostileState::~HostileState()
{
    glUseProgram(0);
    glDeleteProgram(program_);
    glDeleteProgramPipelines(1, &pipeline_);
    extension<PFNGLDELETEPROGRAMSARBPROC>("glDeleteProgramsARB")(2, arbPrograms_);
    glDeleteSamplers(1, &sampler_);
    glMatrixMode(GL_TEXTURE);
    for (GLenum unit = 0; unit < usedUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glLoadIdentity();
    }
    glPopAttrib();
    glDeleteTextures(static_cast<GLsizei>(textures_.size()), textures_.data());
}

} // namespace kelvartest
