#pragma once

#include <set>
#include <string>

namespace kelvartest {

/// Names of extension functions that this process pretends not to have, for libraries that ask from now on.
/// Functions that make, delete or bind framebuffer objects pass the GlRecorder on the way.
std::set<std::string>& missingExtensions();

} // namespace kelvartest
