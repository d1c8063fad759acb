#include "contracts/math/Matrix.h"

#include "contracts/math/Angle.h"
#include "contracts/math/DoubleMatrix.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Kelvar {
namespace Math {

namespace {

/// The upper left 3 by 3 part with its largest element brought to magnitude 1; false when it is zero or not
/// finite.
bool normalizedLinearPart(const Matrix& source, DoubleMatrix& linear)
{
    float largest = 0.0f;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            if (!std::isfinite(source(row, column))) {
                return false;
            }
            largest = std::max(largest, std::fabs(source(row, column)));
        }
    }
    if (largest == 0.0f) {
        return false;
    }
    linear = DoubleMatrix(Matrix());
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            linear.m[row][column] = static_cast<double>(source(row, column)) / static_cast<double>(largest);
        }
    }
    return true;
}

/// One step of Newton's iteration for the orthogonal polar factor (Higham, "Computing the polar
/// decomposition", 1986): q becomes the mean of q and its inverse transposed. Yields the largest change, or a
/// negative number when q has no inverse.
double polarStep(DoubleMatrix& q)
{
    const std::optional<DoubleMatrix> inverse = q.inverse();
    if (!inverse) {
        return -1.0;
    }
    double change = 0.0;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const double next = 0.5 * (q.m[row][column] + inverse->m[column][row]);
            change = std::max(change, std::fabs(next - q.m[row][column]));
            q.m[row][column] = next;
        }
    }
    return change;
}

} // namespace

Matrix Matrix::fromRows(const float rows[16])
{
    Matrix result;
    std::copy_n(rows, 16, result.data());
    return result;
}

Matrix Matrix::translate(const Vector3& offset)
{
    Matrix result;
    result(3, 0) = offset.x;
    result(3, 1) = offset.y;
    result(3, 2) = offset.z;
    return result;
}

Matrix Matrix::scale(float factor)
{
    return scale(Vector3(factor, factor, factor));
}

Matrix Matrix::scale(const Vector3& factors)
{
    return Matrix(factors.x * VectorX, factors.y * VectorY, factors.z * VectorZ);
}

/// Rodrigues' formula, transposed for row vectors: R = c I + (1 - c) a a' + s [a]x'.
Matrix Matrix::rotate(const Vector3& axis, float degrees)
{
    const double length =
        std::hypot(static_cast<double>(axis.x), static_cast<double>(axis.y), static_cast<double>(axis.z));
    if (!std::isfinite(length) || length == 0.0) {
        return Matrix();
    }
    const double a[3] = {axis.x / length, axis.y / length, axis.z / length};
    const Angle angle(static_cast<double>(degrees));
    const double c = angle.cos();
    const double s = angle.sin();
    const double cross[3][3] = {{0.0, a[2], -a[1]}, {-a[2], 0.0, a[0]}, {a[1], -a[0], 0.0}};
    Matrix result;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const double diagonal = row == column ? c : 0.0;
            result(row, column) =
                static_cast<float>(diagonal + (1.0 - c) * a[row] * a[column] + s * cross[row][column]);
        }
    }
    return result;
}

Matrix& Matrix::operator*=(const Matrix& next)
{
    *this = *this * next;
    return *this;
}

Matrix Matrix::inverse() const
{
    const std::optional<DoubleMatrix> exact = DoubleMatrix(*this).inverse();
    const Matrix rounded = exact ? exact->toMatrix() : Matrix();
    return rounded.isFinite() ? rounded : Matrix();
}

Matrix Matrix::orientation() const
{
    static constexpr int maxSteps = 100;
    static constexpr double settled = 1e-14;

    DoubleMatrix q{Matrix()};
    if (!normalizedLinearPart(*this, q)) {
        return Matrix();
    }
    const double handedness = q.determinant3x3() < 0.0 ? -1.0 : 1.0;
    double change = 1.0;
    for (int step = 0; step < maxSteps && change > settled; ++step) {
        change = polarStep(q);
    }
    if (change < 0.0) {
        return Matrix();
    }
    Matrix result;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            result(row, column) = static_cast<float>(handedness * q.m[row][column]);
        }
    }
    return result;
}

Vector3 Matrix::transform(const Vector3& point) const
{
    const double from[3] = {point.x, point.y, point.z};
    double to[4];
    DoubleMatrix(*this).transform(from, to);
    const double w = to[3];
    if (w == 1.0) {
        return Vector3(static_cast<float>(to[0]), static_cast<float>(to[1]), static_cast<float>(to[2]));
    }
    return Vector3(static_cast<float>(to[0] / w), static_cast<float>(to[1] / w),
                   static_cast<float>(to[2] / w));
}

Vector3 Matrix::transformDirection(const Vector3& direction) const
{
    Vector3 result = direction;
    result.mult3x3(*this);
    return result;
}

bool Matrix::isFinite() const
{
    return std::all_of(data(), data() + 16, [](float value) { return std::isfinite(value); });
}

Matrix operator*(const Matrix& first, const Matrix& second)
{
    return (DoubleMatrix(first) * DoubleMatrix(second)).toMatrix();
}

bool operator==(const Matrix& a, const Matrix& b)
{
    return std::equal(a.data(), a.data() + 16, b.data());
}

} // namespace Math
} // namespace Kelvar
