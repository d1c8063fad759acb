#include "contracts/math/Angle.h"

#include <cmath>
#include <limits>

namespace Kelvar {
namespace Math {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;

/// The sine of a count of quarter turns and a rest of at most 45 degrees on either side.
double sine(int quarters, double restDegrees)
{
    const double rest = restDegrees * radiansPerDegree;
    const double magnitude = (quarters & 1) != 0 ? std::cos(rest) : std::sin(rest);
    return (quarters & 2) != 0 ? -magnitude : magnitude;
}

double sineOf(double degrees, int furtherQuarters)
{
    if (!std::isfinite(degrees)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    int quarters = 0;
    const double rest = std::remquo(degrees, 90.0, &quarters);
    return sine((quarters & 3) + furtherQuarters, rest);
}

} // namespace

double Angle::radians() const
{
    return degrees_ * radiansPerDegree;
}

double Angle::sin() const
{
    return sineOf(degrees_, 0);
}

double Angle::cos() const
{
    return sineOf(degrees_, 1);
}

} // namespace Math
} // namespace Kelvar
