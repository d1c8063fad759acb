#include "contracts/math/Vector3.h"

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Matrix.h"

#include <cmath>
#include <optional>

namespace Kelvar {
namespace Math {

namespace {

double exactLength(const Vector3& v)
{
    return std::hypot(static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z));
}

bool hasArea(const int* viewport)
{
    return viewport[2] > 0 && viewport[3] > 0;
}

/// A homogeneous point brought back to three floats; the zero vector when it lies at infinity.
Vector3 dehomogenized(const double (&point)[4])
{
    const Vector3 result(static_cast<float>(point[0] / point[3]), static_cast<float>(point[1] / point[3]),
                         static_cast<float>(point[2] / point[3]));
    return result.isFinite() ? result : Vector0;
}

} // namespace

float Vector3::length() const
{
    return static_cast<float>(exactLength(*this));
}

Vector3 Vector3::normalized() const
{
    const double size = exactLength(*this);
    if (!std::isfinite(size) || size == 0.0) {
        return Vector0;
    }
    return Vector3(static_cast<float>(x / size), static_cast<float>(y / size), static_cast<float>(z / size));
}

int Vector3::dominant() const
{
    const int xOrY = std::fabs(y) > std::fabs(x) ? 1 : 0;
    return std::fabs(z) > std::fabs((*this)[xOrY]) ? 2 : xOrY;
}

bool Vector3::isFinite() const
{
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(z);
}

void Vector3::mult3x3(const Matrix& matrix)
{
    const double from[3] = {x, y, z};
    float to[3];
    for (int column = 0; column < 3; ++column) {
        to[column] = static_cast<float>(from[0] * matrix(0, column) + from[1] * matrix(1, column) +
                                        from[2] * matrix(2, column));
    }
    *this = Vector3(to[0], to[1], to[2]);
}

Vector3 Vector3::unProject(const Matrix& modelView, const Matrix& projection, const int* viewport) const
{
    const std::optional<DoubleMatrix> back = (DoubleMatrix(modelView) * DoubleMatrix(projection)).inverse();
    if (!hasArea(viewport) || !back) {
        return Vector0;
    }
    const double device[3] = {2.0 * (static_cast<double>(x) - viewport[0]) / viewport[2] - 1.0,
                              2.0 * (static_cast<double>(y) - viewport[1]) / viewport[3] - 1.0,
                              2.0 * static_cast<double>(z) - 1.0};
    double model[4];
    back->transform(device, model);
    return dehomogenized(model);
}

Vector3 Vector3::project(const Matrix& modelView, const Matrix& projection, const int* viewport) const
{
    const double point[3] = {x, y, z};
    double clip[4];
    (DoubleMatrix(modelView) * DoubleMatrix(projection)).transform(point, clip);
    if (clip[3] == 0.0) {
        return Vector0;
    }
    const double window[4] = {viewport[0] + viewport[2] * (clip[0] / clip[3] + 1.0) / 2.0,
                              viewport[1] + viewport[3] * (clip[1] / clip[3] + 1.0) / 2.0,
                              (clip[2] / clip[3] + 1.0) / 2.0, 1.0};
    return dehomogenized(window);
}

} // namespace Math
} // namespace Kelvar
