#include "tests/scene/GlewStandIn.h"

#include <GL/glew.h>

#include <dlfcn.h>

#include <utility>

namespace kelvartest {

namespace {

using Pointers = std::vector<std::pair<std::string, void**>>;

const Pointers& pointers()
{
#define NAMED(function) std::make_pair(#function, reinterpret_cast<void**>(&(function)))
    static const Pointers all = {NAMED(glBindFramebufferEXT),
                                 NAMED(glBindRenderbufferEXT),
                                 NAMED(glCheckFramebufferStatusEXT),
                                 NAMED(glDeleteFramebuffersEXT),
                                 NAMED(glDeleteRenderbuffersEXT),
                                 NAMED(glFramebufferRenderbufferEXT),
                                 NAMED(glFramebufferTexture1DEXT),
                                 NAMED(glFramebufferTexture2DEXT),
                                 NAMED(glFramebufferTexture3DEXT),
                                 NAMED(glGenerateMipmapEXT),
                                 NAMED(glGenFramebuffersEXT),
                                 NAMED(glGenRenderbuffersEXT),
                                 NAMED(glGetFramebufferAttachmentParameterivEXT),
                                 NAMED(glGetRenderbufferParameterivEXT),
                                 NAMED(glIsFramebufferEXT),
                                 NAMED(glIsRenderbufferEXT),
                                 NAMED(glRenderbufferStorageEXT)};
#undef NAMED
    return all;
}

std::vector<std::string> names()
{
    std::vector<std::string> result;
    for (const auto& pointer : pointers()) {
        result.push_back(pointer.first);
    }
    return result;
}

} // namespace

const std::vector<std::string>& GlewStandIn::functions()
{
    static const std::vector<std::string> all = names();
    return all;
}

std::vector<std::string>& GlewStandIn::missing()
{
    static std::vector<std::string> none;
    return none;
}

unsigned int& GlewStandIn::failure()
{
    static unsigned int code = 0;
    return code;
}

} // namespace kelvartest

extern "C" __attribute__((visibility("default"))) GLenum glewInit()
{
    using namespace kelvartest;
    static const auto own = reinterpret_cast<GLenum (*)()>(dlsym(RTLD_NEXT, "glewInit"));
    const GLenum result = own();
    for (const auto& pointer : pointers()) {
        for (const std::string& name : GlewStandIn::missing()) {
            if (name == pointer.first) {
                *pointer.second = nullptr;
            }
        }
    }
    return GlewStandIn::failure() != 0 ? GlewStandIn::failure() : result;
}
