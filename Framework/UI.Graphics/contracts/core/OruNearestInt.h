#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace oru {

/// `value`, or the end of the range of int that is nearest to it. Positions come from outside and may be any
/// int: sums of them are formed in 64 bits and brought back by this.
inline int nearestInt(std::int64_t value)
{
    using Range = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(value, Range::min(), Range::max()));
}

/// The signed way from one position to another.
inline int wayBetween(std::int64_t from, std::int64_t to)
{
    return nearestInt(to - from);
}

} // namespace oru
