#include "contracts/ogl/OruOglViewport.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

struct Span
{
    int start;
    int length;
};

/// A start and a length of either sign as a start and a non-negative length, kept within the range of int.
Span normalizedSpan(std::int64_t start, std::int64_t length)
{
    const std::int64_t smallest =
        std::max<std::int64_t>(std::min(start, start + length), std::numeric_limits<int>::min());
    const std::int64_t extent =
        std::min<std::int64_t>(length < 0 ? -length : length, std::numeric_limits<int>::max());
    return {static_cast<int>(smallest), static_cast<int>(extent)};
}

} // namespace

OruOglViewport OruOglViewport::normalized(const OruOglViewport& viewport)
{
    const Span horizontal = normalizedSpan(viewport.x, viewport.width);
    const Span vertical = normalizedSpan(viewport.y, viewport.height);
    return OruOglViewport(horizontal.start, vertical.start, horizontal.length, vertical.length);
}
