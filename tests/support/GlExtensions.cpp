// Extension functions come as pointers, so they are recorded where a library asks for them.

#include "tests/support/GlExtensions.h"
#include "tests/support/GlRecorder.h"

#include <GL/gl.h>
#include <dlfcn.h>

#include <map>

namespace kelvartest {

std::set<std::string>& missingExtensions()
{
    static std::set<std::string> names;
    return names;
}

namespace {

using AnyFunction = void (*)();
using Lookup = AnyFunction (*)(const GLubyte*);

AnyFunction driverFunction(const char* name)
{
    static const auto lookup = reinterpret_cast<Lookup>(dlsym(RTLD_NEXT, "glXGetProcAddressARB"));
    return lookup(reinterpret_cast<const GLubyte*>(name));
}

#define COUNTED(function, names, sign)                                                                       \
    void function(GLsizei n, names* objects)                                                                 \
    {                                                                                                        \
        GlRecorder::instance().objects(sign n);                                                              \
        reinterpret_cast<decltype(&function)>(driverFunction(#function))(n, objects);                        \
    }

COUNTED(glGenFramebuffersEXT, GLuint, +)
COUNTED(glDeleteFramebuffersEXT, const GLuint, -)
COUNTED(glGenRenderbuffersEXT, GLuint, +)
COUNTED(glDeleteRenderbuffersEXT, const GLuint, -)

#undef COUNTED

void glBindFramebufferEXT(GLenum target, GLuint name)
{
    GlRecorder::instance().note(name == 0 ? "bind window" : "bind target");
    reinterpret_cast<decltype(&glBindFramebufferEXT)>(driverFunction("glBindFramebufferEXT"))(target, name);
}

void glRenderbufferStorageEXT(GLenum target, GLenum format, GLsizei width, GLsizei height)
{
    GlRecorder::instance().note("storage " + glName(format));
    reinterpret_cast<decltype(&glRenderbufferStorageEXT)>(driverFunction("glRenderbufferStorageEXT"))(
        target, format, width, height);
}

} // namespace
} // namespace kelvartest

extern "C" __attribute__((visibility("default"))) kelvartest::AnyFunction
glXGetProcAddressARB(const GLubyte* wanted)
{
    using namespace kelvartest;
    static const std::map<std::string, AnyFunction> seen = {
        {"glBindFramebufferEXT", reinterpret_cast<AnyFunction>(&glBindFramebufferEXT)},
        {"glRenderbufferStorageEXT", reinterpret_cast<AnyFunction>(&glRenderbufferStorageEXT)},
        {"glGenFramebuffersEXT", reinterpret_cast<AnyFunction>(&glGenFramebuffersEXT)},
        {"glDeleteFramebuffersEXT", reinterpret_cast<AnyFunction>(&glDeleteFramebuffersEXT)},
        {"glGenRenderbuffersEXT", reinterpret_cast<AnyFunction>(&glGenRenderbuffersEXT)},
        {"glDeleteRenderbuffersEXT", reinterpret_cast<AnyFunction>(&glDeleteRenderbuffersEXT)},
    };
    const auto* const name = reinterpret_cast<const char*>(wanted);
    if (missingExtensions().count(name)) {
        return nullptr;
    }
    const auto found = seen.find(name);
    return found != seen.end() ? found->second : driverFunction(name);
}
