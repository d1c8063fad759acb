#pragma once

#include <cstdio>
#include <cstdlib>

namespace kelvarfuzz {

/// Ends the process, which the fuzzer takes as a find, when something does not hold that should.
inline void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

} // namespace kelvarfuzz
