#pragma once

#include "contracts/math/kelvar_math_api.h"

#include <string>

namespace Kelvar {
namespace Math {

/// How a number is written for people: separators and digits. A value type; independent of the locale.
class KELVAR_MATH_API NumberFormat
{
public:
    /// Full stop, no groups, the fewest digits that read back.
    constexpr NumberFormat() = default;

    /// Separators are single Latin-1 characters. A `decimalSeparator` of 0 stands for the full stop, a
    /// `groupSeparator` of 0 writes no groups. `significantDigits` from 1 rounds to that many; any other
    /// value writes the fewest digits that read back as the same number.
    constexpr NumberFormat(char decimalSeparator, char groupSeparator, int significantDigits)
        : decimalSeparator_(decimalSeparator == 0 ? '.' : decimalSeparator)
        , groupSeparator_(groupSeparator)
        , significantDigits_(significantDigits < 1 ? -1 : significantDigits)
    {}

    constexpr char decimalSeparator() const { return decimalSeparator_; }
    /// 0: none.
    constexpr char groupSeparator() const { return groupSeparator_; }
    /// -1: the fewest that read back.
    constexpr int significantDigits() const { return significantDigits_; }

    /// The number as text, in Latin-1: without trailing zeros, groups of three in front of the separator, an
    /// exponent ("1.5e-07") for magnitudes below 1e-5 and from 1e15. "0" for both zeros; "nan", "inf",
    /// "-inf".
    std::string format(double value) const;

private:
    char decimalSeparator_ = '.';
    char groupSeparator_ = 0;
    int significantDigits_ = -1;
};

} // namespace Math
} // namespace Kelvar
