#pragma once

#include "contracts/math/kelvar_math_api.h"

namespace Kelvar {
namespace Math {

class Matrix;

/// Three floats: a point, a direction or an extent, in whatever frame the owner says. A value type.
///
/// A vector is a row: it stands to the left of a matrix. Non-finite components pass through the arithmetic
/// as usual and never lead to a fault.
class KELVAR_MATH_API Vector3
{
public:
    /// The zero vector.
    constexpr Vector3() = default;
    constexpr Vector3(float x_, float y_, float z_)
        : x(x_)
        , y(y_)
        , z(z_)
    {}

    /// Component 0, 1 or 2; any other index means the last.
    constexpr float operator[](int index) const { return index == 0 ? x : index == 1 ? y : z; }
    constexpr float& operator[](int index) { return index == 0 ? x : index == 1 ? y : z; }

    constexpr Vector3 operator-() const { return Vector3(-x, -y, -z); }
    constexpr Vector3& operator+=(const Vector3& other);
    constexpr Vector3& operator-=(const Vector3& other);
    constexpr Vector3& operator*=(float factor);

    /// The Euclidean length, summed in double: it neither overflows nor underflows on the way.
    float length() const;

    /// The vector of length 1 in the same direction; the zero vector when there is no direction, that is for
    /// a zero or non-finite vector.
    Vector3 normalized() const;

    /// Index 0, 1 or 2 of the component with the largest magnitude. The lower index wins a tie.
    int dominant() const;

    bool isFinite() const;

    /// Multiplies this vector in place by the upper left 3 by 3 part of `matrix`: a turn without translation.
    void mult3x3(const Matrix& matrix);

    /// From window coordinates (pixels, origin lower left; z is the depth 0..1) to the frame that `modelView`
    /// starts from. `viewport` points to x, y, width, height. Works for orthographic and for perspective
    /// projections and computes in double. The zero vector when the way back does not exist: a singular
    /// product, a viewport without area, a point at infinity.
    Vector3 unProject(const Matrix& modelView, const Matrix& projection, const int* viewport) const;

    /// The inverse of unProject: from the frame that `modelView` starts from to window coordinates, z the
    /// depth with 0 at the near and 1 at the far plane. Points outside the view are projected too; the zero
    /// vector for a point in the eye's plane of a perspective.
    Vector3 project(const Matrix& modelView, const Matrix& projection, const int* viewport) const;

    /// The unit vectors.
    static const Vector3 X;
    static const Vector3 Y;
    static const Vector3 Z;

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

constexpr Vector3& Vector3::operator+=(const Vector3& other)
{
    x += other.x;
    y += other.y;
    z += other.z;
    return *this;
}

constexpr Vector3& Vector3::operator-=(const Vector3& other)
{
    x -= other.x;
    y -= other.y;
    z -= other.z;
    return *this;
}

constexpr Vector3& Vector3::operator*=(float factor)
{
    x *= factor;
    y *= factor;
    z *= factor;
    return *this;
}

constexpr bool operator==(const Vector3& a, const Vector3& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

constexpr bool operator!=(const Vector3& a, const Vector3& b)
{
    return !(a == b);
}

constexpr Vector3 operator+(const Vector3& a, const Vector3& b)
{
    return Vector3(a.x + b.x, a.y + b.y, a.z + b.z);
}

constexpr Vector3 operator-(const Vector3& a, const Vector3& b)
{
    return Vector3(a.x - b.x, a.y - b.y, a.z - b.z);
}

constexpr Vector3 operator*(const Vector3& a, float factor)
{
    return Vector3(a.x * factor, a.y * factor, a.z * factor);
}

constexpr Vector3 operator*(float factor, const Vector3& a)
{
    return a * factor;
}

constexpr Vector3 operator/(const Vector3& a, float divisor)
{
    return Vector3(a.x / divisor, a.y / divisor, a.z / divisor);
}

constexpr float dot(const Vector3& a, const Vector3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// The right-handed cross product: cross(VectorX, VectorY) is VectorZ.
constexpr Vector3 cross(const Vector3& a, const Vector3& b)
{
    return Vector3(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

inline constexpr Vector3 Vector3::X{1.0f, 0.0f, 0.0f};
inline constexpr Vector3 Vector3::Y{0.0f, 1.0f, 0.0f};
inline constexpr Vector3 Vector3::Z{0.0f, 0.0f, 1.0f};

/// The unit vectors, the zero vector and the vector of all ones.
inline constexpr Vector3 VectorX{1.0f, 0.0f, 0.0f};
inline constexpr Vector3 VectorY{0.0f, 1.0f, 0.0f};
inline constexpr Vector3 VectorZ{0.0f, 0.0f, 1.0f};
inline constexpr Vector3 Vector0{0.0f, 0.0f, 0.0f};
inline constexpr Vector3 Vector1{1.0f, 1.0f, 1.0f};

} // namespace Math
} // namespace Kelvar
