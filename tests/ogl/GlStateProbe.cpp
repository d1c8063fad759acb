#include "tests/ogl/GlStateProbe.h"

#include "contracts/ogl/OruOglGl.h"

#include <sstream>

namespace kelvartest {

namespace {

using Names = std::initializer_list<GLenum>;

constexpr Names hostile = {
    GL_DEPTH_TEST, GL_STENCIL_TEST,  GL_ALPHA_TEST,    GL_LIGHTING,        GL_FOG,
    GL_BLEND,      GL_CULL_FACE,     GL_LINE_STIPPLE,  GL_POLYGON_STIPPLE, GL_COLOR_LOGIC_OP,
    GL_TEXTURE_2D, GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_CLIP_PLANE0,     GL_LINE_SMOOTH};
constexpr Names otherCapabilities = {GL_POLYGON_OFFSET_FILL, GL_SCISSOR_TEST, GL_MULTISAMPLE,
                                     GL_VERTEX_ARRAY,        GL_NORMAL_ARRAY, GL_COLOR_ARRAY,
                                     GL_TEXTURE_COORD_ARRAY};
constexpr Names placing = {GL_MATRIX_MODE, GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX, GL_TEXTURE_MATRIX,
                           GL_VIEWPORT};
constexpr Names drawing = {
    GL_CURRENT_COLOR,      GL_CURRENT_TEXTURE_COORDS, GL_POLYGON_MODE,   GL_SHADE_MODEL,
    GL_LINE_WIDTH,         GL_LINE_STIPPLE_PATTERN,   GL_BLEND_SRC,      GL_BLEND_DST,
    GL_BLEND_EQUATION,     GL_LOGIC_OP_MODE,          GL_CULL_FACE_MODE, GL_DEPTH_FUNC,
    GL_TEXTURE_BINDING_2D, GL_ACTIVE_TEXTURE};
constexpr Names depthsAndBindings = {GL_ATTRIB_STACK_DEPTH,        GL_CLIENT_ATTRIB_STACK_DEPTH,
                                     GL_MODELVIEW_STACK_DEPTH,     GL_PROJECTION_STACK_DEPTH,
                                     GL_ARRAY_BUFFER_BINDING,      GL_ELEMENT_ARRAY_BUFFER_BINDING,
                                     GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER_BINDING};
constexpr Names pixels = {GL_PACK_ALIGNMENT,  GL_PACK_ROW_LENGTH,  GL_PACK_SKIP_ROWS,    GL_PACK_SKIP_PIXELS,
                          GL_PACK_SWAP_BYTES, GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS,
                          GL_RED_SCALE,       GL_GREEN_BIAS,       GL_MAP_COLOR,         GL_READ_BUFFER,
                          GL_DRAW_BUFFER};

} // namespace

std::string glStateText()
{
    std::ostringstream text;
    text << std::hex;
    for (const Names& names : {hostile, otherCapabilities}) {
        for (const GLenum capability : names) {
            text << capability << (glIsEnabled(capability) ? " on\n" : " off\n");
        }
    }
    for (const Names& names : {placing, drawing, depthsAndBindings, pixels}) {
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
    GLint environment = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &environment);
    text << "environment " << environment << '\n';
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
    glCullFace(GL_FRONT_AND_BACK);
    glLineStipple(1, 0);
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    glLogicOp(GL_CLEAR);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glLineWidth(3.0f);
    const GLdouble nothing[] = {0.0, 0.0, 0.0, -1.0};
    glClipPlane(GL_CLIP_PLANE0, nothing);
    const GLubyte red[] = {255, 0, 0, 255};
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, red);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
}

HostileState::~HostileState()
{
    glPopAttrib();
    glDeleteTextures(1, &texture_);
}

} // namespace kelvartest
