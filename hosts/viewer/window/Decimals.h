#pragma once

#include <algorithm>
#include <cmath>

/// So many digits behind the point tell differences of `extent` / 10^digits.
inline int decimalsFor(double extent, int digits)
{
    return std::clamp(digits - static_cast<int>(std::floor(std::log10(std::max(extent, 1e-9)))), 0, 12);
}
