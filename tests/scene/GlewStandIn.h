#pragma once

#include <string>
#include <vector>

namespace kelvartest {

/// What glewInit does in this program, for the library too: GLEW's own runs, then what is asked for here.
struct GlewStandIn
{
    /// The functions of the framebuffer extension, in the order in which a capture looks at them.
    static const std::vector<std::string>& functions();

    /// Those that are not found.
    static std::vector<std::string>& missing();

    /// The result; 0 gives GLEW's own.
    static unsigned int& failure();
};

} // namespace kelvartest
