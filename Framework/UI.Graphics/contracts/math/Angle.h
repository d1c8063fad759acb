#pragma once

#include "contracts/math/kelvar_math_api.h"

namespace Kelvar {
namespace Math {

/// An angle in degrees, counted counter-clockwise, any number of turns. A value type.
class KELVAR_MATH_API Angle
{
public:
    constexpr explicit Angle(double degrees = 0.0)
        : degrees_(degrees)
    {}

    constexpr double degrees() const { return degrees_; }
    double radians() const;

    /// Exact at every multiple of 90 degrees. NaN for an angle that is not finite.
    double sin() const;
    double cos() const;

private:
    double degrees_;
};

} // namespace Math
} // namespace Kelvar
