#pragma once

#include <set>
#include <string>

namespace kelvartest {

/// Names of extension functions that this process pretends not to have, for libraries that ask from now on.
/// Functions that make or delete framebuffer objects are counted by the GlRecorder on the way.
std::set<std::string>& missingExtensions();

} // namespace kelvartest
