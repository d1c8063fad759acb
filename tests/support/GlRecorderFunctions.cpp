// The recorded gl* functions. Each one is defined here, in the test program, writes its line and calls the
// real function behind it, so that the shared libraries' calls are seen without any help of theirs.

#include "tests/support/GlRecorder.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <dlfcn.h>

#include <sstream>

namespace kelvartest {

#define NAMED(value) std::make_pair(value, #value)

std::string glName(unsigned value)
{
    static const std::map<unsigned, std::string> names = {NAMED(GL_MODELVIEW),
                                                          NAMED(GL_PROJECTION),
                                                          NAMED(GL_DEPTH_TEST),
                                                          NAMED(GL_LESS),
                                                          NAMED(GL_NORMALIZE),
                                                          NAMED(GL_CULL_FACE),
                                                          NAMED(GL_FRONT_AND_BACK),
                                                          NAMED(GL_DIFFUSE),
                                                          NAMED(GL_COLOR_MATERIAL),
                                                          NAMED(GL_SMOOTH),
                                                          NAMED(GL_FLAT),
                                                          NAMED(GL_LIGHT_MODEL_TWO_SIDE),
                                                          NAMED(GL_POLYGON_OFFSET_FILL),
                                                          NAMED(GL_LIGHTING),
                                                          NAMED(GL_LINE_STIPPLE),
                                                          NAMED(GL_LINE_STRIP),
                                                          NAMED(GL_TEXTURE_2D)};
    const auto found = names.find(value);
    if (found != names.end()) {
        return found->second;
    }
    std::ostringstream text;
    text << "0x" << std::hex << value;
    return text.str();
}

#undef NAMED

namespace {

/// How the arguments of one kind read in a line.
struct Enum
{
    unsigned value;
};
struct Bits
{
    unsigned value;
};

std::ostream& operator<<(std::ostream& out, Enum argument)
{
    return out << glName(argument.value);
}
std::ostream& operator<<(std::ostream& out, Bits argument)
{
    return out << "0x" << std::hex << argument.value << std::dec;
}

template <typename... Arguments>
void record(const char* name, Arguments... arguments)
{
    if (!GlRecorder::instance().recording()) {
        return;
    }
    std::ostringstream out;
    out << name << '(';
    [[maybe_unused]] const char* separator = "";
    ((out << separator, out << arguments, separator = ", "), ...);
    out << ')';
    GlRecorder::instance().note(out.str());
}

template <typename Function>
Function real(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace
} // namespace kelvartest

using kelvartest::Bits;
using kelvartest::Enum;
using kelvartest::GlRecorder;

// TRACKED(function, (parameters), (arguments), statement for the recorder's books, shown arguments...)
#define TRACKED(function, parameters, arguments, statement, ...)                                             \
    extern "C" __attribute__((visibility("default"))) void function parameters                               \
    {                                                                                                        \
        static const auto forward = kelvartest::real<void(*) parameters>(#function);                         \
        kelvartest::record(__VA_ARGS__);                                                                     \
        forward arguments;                                                                                   \
        [[maybe_unused]] GlRecorder& recorder = GlRecorder::instance();                                      \
        statement;                                                                                           \
    }

#define RECORDED(function, parameters, arguments, ...)                                                       \
    TRACKED(function, parameters, arguments, (void)0, __VA_ARGS__)

TRACKED(glMatrixMode, (GLenum mode), (mode), recorder.matrixMode(mode), "glMatrixMode", Enum{mode})
TRACKED(glPushMatrix, (), (), recorder.pushMatrix(1), "glPushMatrix")
TRACKED(glPopMatrix, (), (), recorder.pushMatrix(-1), "glPopMatrix")
TRACKED(glPushAttrib, (GLbitfield mask), (mask), recorder.pushAttributes(), "glPushAttrib", Bits{mask})
TRACKED(glPopAttrib, (), (), recorder.popAttributes(), "glPopAttrib")
TRACKED(glBegin, (GLenum mode), (mode), recorder.primitive(true), "glBegin", Enum{mode})
TRACKED(glEnd, (), (), recorder.primitive(false), "glEnd")
TRACKED(glGenTextures, (GLsizei n, GLuint* names), (n, names), recorder.objects(n), "glGenTextures", n)
TRACKED(glDeleteTextures, (GLsizei n, const GLuint* names), (n, names), recorder.objects(-n),
        "glDeleteTextures", n)
TRACKED(glGenBuffers, (GLsizei n, GLuint* names), (n, names), recorder.objects(n), "glGenBuffers", n)
TRACKED(glDeleteBuffers, (GLsizei n, const GLuint* names), (n, names), recorder.objects(-n),
        "glDeleteBuffers", n)

RECORDED(glLoadIdentity, (), (), "glLoadIdentity")
RECORDED(glLoadMatrixf, (const GLfloat* m), (m), "glLoadMatrixf", m[0], m[5], m[10], m[12], m[13], m[14])
RECORDED(glMultMatrixf, (const GLfloat* m), (m), "glMultMatrixf", m[0], m[5], m[10], m[12], m[13], m[14])
RECORDED(glOrtho, (GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f),
         (l, r, b, t, n, f), "glOrtho", l, r, b, t, n, f)
RECORDED(glViewport, (GLint x, GLint y, GLsizei w, GLsizei h), (x, y, w, h), "glViewport", x, y, w, h)
RECORDED(glEnable, (GLenum cap), (cap), "glEnable", Enum{cap})
RECORDED(glDisable, (GLenum cap), (cap), "glDisable", Enum{cap})
RECORDED(glDepthFunc, (GLenum func), (func), "glDepthFunc", Enum{func})
RECORDED(glColorMaterial, (GLenum face, GLenum mode), (face, mode), "glColorMaterial", Enum{face}, Enum{mode})
RECORDED(glShadeModel, (GLenum mode), (mode), "glShadeModel", Enum{mode})
RECORDED(glLightModeli, (GLenum name, GLint value), (name, value), "glLightModeli", Enum{name}, value)
RECORDED(glLightModelfv, (GLenum name, const GLfloat* v), (name, v), "glLightModelfv", Enum{name}, v[0], v[1],
         v[2], v[3])
RECORDED(glLightfv, (GLenum light, GLenum name, const GLfloat* v), (light, name, v), "glLightfv", Enum{light},
         Enum{name}, v[0], v[1], v[2])
RECORDED(glPolygonOffset, (GLfloat factor, GLfloat units), (factor, units), "glPolygonOffset", factor, units)
RECORDED(glPolygonMode, (GLenum face, GLenum mode), (face, mode), "glPolygonMode", Enum{face}, Enum{mode})
RECORDED(glClearColor, (GLfloat r, GLfloat g, GLfloat b, GLfloat a), (r, g, b, a), "glClearColor", r, g, b, a)
RECORDED(glClearStencil, (GLint s), (s), "glClearStencil", s)
RECORDED(glClear, (GLbitfield mask), (mask), "glClear", Bits{mask})
RECORDED(glVertex2i, (GLint x, GLint y), (x, y), "glVertex2i", x, y)
RECORDED(glLineWidth, (GLfloat width), (width), "glLineWidth", width)
RECORDED(glLineStipple, (GLint factor, GLushort pattern), (factor, pattern), "glLineStipple", factor,
         Bits{pattern})
RECORDED(glLogicOp, (GLenum op), (op), "glLogicOp", Enum{op})
RECORDED(glColor4ub, (GLubyte r, GLubyte g, GLubyte b, GLubyte a), (r, g, b, a), "glColor4ub", +r, +g, +b, +a)
RECORDED(glFinish, (), (), "glFinish")
RECORDED(glDrawBuffer, (GLenum buffer), (buffer), "glDrawBuffer", Enum{buffer})
RECORDED(glReadBuffer, (GLenum buffer), (buffer), "glReadBuffer", Enum{buffer})
RECORDED(glReadPixels, (GLint x, GLint y, GLsizei w, GLsizei h, GLenum f, GLenum t, void* data),
         (x, y, w, h, f, t, data), "glReadPixels", x, y, w, h, Enum{f}, Enum{t}, "...")
RECORDED(glGetIntegerv, (GLenum name, GLint* values), (name, values), "glGetIntegerv", Enum{name})
RECORDED(glGetFloatv, (GLenum name, GLfloat* values), (name, values), "glGetFloatv", Enum{name})
RECORDED(glDrawElements, (GLenum mode, GLsizei count, GLenum type, const void* indices),
         (mode, count, type, indices), "glDrawElements", Enum{mode}, count, Enum{type}, "...")
RECORDED(glMultiDrawElements,
         (GLenum mode, const GLsizei* counts, GLenum type, const void* const* indices, GLsizei draws),
         (mode, counts, type, indices, draws), "glMultiDrawElements", Enum{mode}, Enum{type}, draws)
RECORDED(glBufferSubData, (GLenum target, GLintptr offset, GLsizeiptr size, const void* data),
         (target, offset, size, data), "glBufferSubData", Enum{target}, offset, size)

extern "C" __attribute__((visibility("default"))) void glBufferData(GLenum target, GLsizeiptr size,
                                                                    const void* data, GLenum usage)
{
    static const auto forward = kelvartest::real<decltype(&glBufferData)>("glBufferData");
    kelvartest::record("glBufferData", Enum{target}, size);
    forward(target, GlRecorder::instance().refusesBuffer() ? 0 : size, data, usage);
}
