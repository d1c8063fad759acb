#pragma once

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace kelvartest {

/// While it lives, the leak sanitizer lets go what is allocated. Qt 5.15's JSON parser loses a few bytes of
/// what it has read when the text ends in an error.
class QtLeaks
{
public:
#if defined(__SANITIZE_ADDRESS__)
    QtLeaks()
    {
        __lsan_disable();
    }
    ~QtLeaks()
    {
        __lsan_enable();
    }
#else
    QtLeaks() {} // NOLINT(modernize-use-equals-default): an object without one is taken for unused
#endif
    QtLeaks(const QtLeaks&) = delete;
    QtLeaks& operator=(const QtLeaks&) = delete;
};

} // namespace kelvartest
