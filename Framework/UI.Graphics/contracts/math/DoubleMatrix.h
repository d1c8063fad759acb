#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/math/kelvar_math_api.h"

#include <optional>

namespace Kelvar {
namespace Math {

/// A 4 by 4 matrix of doubles with the conventions of Matrix: what longer computations run in before they are
/// rounded to float once.
struct KELVAR_MATH_API DoubleMatrix
{
    double m[4][4];

    explicit DoubleMatrix(const Matrix& source);

    /// The map through this one and then through `next`.
    DoubleMatrix operator*(const DoubleMatrix& next) const;

    /// The determinant of the upper left 3 by 3 part.
    double determinant3x3() const;

    /// The inverse; nothing when the determinant is zero or not finite.
    std::optional<DoubleMatrix> inverse() const;

    /// The image of the point (x, y, z, 1) before a division by w.
    void transform(const double point[3], double image[4]) const;

    /// Rounded to float.
    Matrix toMatrix() const;
};

} // namespace Math
} // namespace Kelvar
