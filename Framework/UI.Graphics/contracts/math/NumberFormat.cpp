#include "contracts/math/NumberFormat.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Kelvar {
namespace Math {

namespace {

constexpr double smallestPlain = 1e-5;
constexpr double largestPlain = 1e15;
constexpr int digitsOfDouble = 17;

double rounded(double value, int significantDigits)
{
    if (significantDigits < 1 || significantDigits >= digitsOfDouble) {
        return value;
    }
    char text[32];
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, significantDigits - 1);
    double result = value;
    std::from_chars(text, end.ptr, result);
    return result;
}

std::string shortest(double value)
{
    const double magnitude = std::fabs(value);
    const bool plain = magnitude >= smallestPlain && magnitude < largestPlain;
    char text[32];
    const std::to_chars_result end = std::to_chars(
        text, text + sizeof text, value, plain ? std::chars_format::fixed : std::chars_format::scientific);
    return std::string(text, end.ptr);
}

void insertGroups(std::string& text, std::size_t integerEnd, char separator)
{
    const std::size_t firstDigit = text[0] == '-' ? 1 : 0;
    for (std::size_t at = integerEnd; at > firstDigit + 3;) {
        at -= 3;
        text.insert(at, 1, separator);
    }
}

} // namespace

std::string NumberFormat::format(double value) const
{
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0.0 ? "-inf" : "inf";
    }
    if (value == 0.0) {
        return "0";
    }
    std::string text = shortest(rounded(value, significantDigits_));
    const std::size_t integerEnd = std::min(text.find_first_of(".e"), text.size());
    if (text[integerEnd] == '.') {
        text[integerEnd] = decimalSeparator_;
    }
    if (groupSeparator_ != 0) {
        insertGroups(text, integerEnd, groupSeparator_);
    }
    return text;
}

} // namespace Math
} // namespace Kelvar
