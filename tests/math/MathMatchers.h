#pragma once

#include "contracts/math/Matrix.h"

#include <gmock/gmock.h>

#include <QMatrix4x4>
#include <QVector3D>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace Kelvar {
namespace Math {

inline void PrintTo(const Vector3& v, std::ostream* out)
{
    *out << "(" << v.x << ", " << v.y << ", " << v.z << ")";
}

inline void PrintTo(const Matrix& matrix, std::ostream* out)
{
    for (int row = 0; row < 4; ++row) {
        *out << "\n  " << matrix(row, 0) << " " << matrix(row, 1) << " " << matrix(row, 2) << " "
             << matrix(row, 3);
    }
}

} // namespace Math
} // namespace Kelvar

/// Each component within `tolerance`, taken relative to the larger of 1 and the expected matrix' or vector's
/// largest component.
MATCHER_P2(NearMatrix, expected, tolerance, "")
{
    float largest = 1.0f;
    for (int i = 0; i < 16; ++i) {
        largest = std::max(largest, std::fabs(expected.data()[i]));
    }
    return std::equal(arg.data(), arg.data() + 16, expected.data(), [&](float a, float b) {
        return std::fabs(a - b) <= static_cast<float>(tolerance) * largest;
    });
}

MATCHER_P2(NearVector, expected, tolerance, "")
{
    return (arg - expected).length() <= static_cast<float>(tolerance) * std::max(1.0f, expected.length());
}

/// The same map in Qt's convention, where a column vector stands to the right.
inline QMatrix4x4 toQt(const Kelvar::Math::Matrix& matrix)
{
    return QMatrix4x4(matrix.data()).transposed();
}

inline Kelvar::Math::Matrix fromQt(const QMatrix4x4& matrix)
{
    return Kelvar::Math::Matrix::fromRows(matrix.constData());
}

inline QVector3D toQt(const Kelvar::Math::Vector3& v)
{
    return QVector3D(v.x, v.y, v.z);
}

inline Kelvar::Math::Vector3 fromQt(const QVector3D& v)
{
    return Kelvar::Math::Vector3(v.x(), v.y(), v.z());
}
