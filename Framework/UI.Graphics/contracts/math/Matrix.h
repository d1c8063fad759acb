#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/math/kelvar_math_api.h"

namespace Kelvar {
namespace Math {

/// A 4 by 4 matrix of floats that maps row vectors: p' = p * M. A value type.
///
/// In a product A * B a point passes through A first and then through B. Storage is row by row, a translation
/// stands in row 3, so `glLoadMatrixf(M.data())` gives OpenGL the same map. Rotations are right-handed and in
/// degrees. Sums are formed in double and rounded once to float.
class KELVAR_MATH_API Matrix
{
public:
    /// The identity.
    constexpr Matrix()
        : Matrix(VectorX, VectorY, VectorZ)
    {}

    /// The linear map that takes the axes X, Y, Z to the three vectors: they are its first three rows.
    constexpr Matrix(const Vector3& imageX, const Vector3& imageY, const Vector3& imageZ)
        : m{{imageX.x, imageX.y, imageX.z, 0.0f},
            {imageY.x, imageY.y, imageY.z, 0.0f},
            {imageZ.x, imageZ.y, imageZ.z, 0.0f},
            {0.0f, 0.0f, 0.0f, 1.0f}}
    {}

    /// From 16 numbers, row by row, the order of data().
    static Matrix fromRows(const float rows[16]);

    static Matrix translate(const Vector3& offset);

    /// Scales about the origin, by the same factor in every direction or by one factor per axis.
    static Matrix scale(float factor);
    static Matrix scale(const Vector3& factors);

    /// Turns about `axis` through the origin, right-handed: a positive angle takes X towards Y about Z. The
    /// length of the axis plays no part; an axis that is zero or not finite gives the identity. Quarter turns
    /// about a coordinate axis are exact.
    static Matrix rotate(const Vector3& axis, float degrees);

    /// Element access, 0..3 each, unchecked.
    float operator()(int row, int col) const { return m[row][col]; }
    float& operator()(int row, int col) { return m[row][col]; }

    /// The 16 numbers row by row; valid as long as the matrix.
    const float* data() const { return &m[0][0]; }
    float* data() { return &m[0][0]; }

    /// Appends: afterwards a point passes through the old matrix first and then through `next`.
    Matrix& operator*=(const Matrix& next);

    /// Sets the identity.
    void identity() { *this = Matrix(); }

    /// The inverse, computed in double; the identity for a singular matrix. Singular is one whose determinant
    /// is zero or not finite, and one whose inverse does not fit into floats.
    Matrix inverse() const;

    /// The rotation alone: translation and scale are taken off, and shear too (the nearest rotation in the
    /// sense of the polar decomposition). A mirror counts as negative scale and is taken off as such. The
    /// identity when the upper left 3 by 3 part is singular. Independent of the size of the scale.
    Matrix orientation() const;

    /// The image of a point; divided by w where w is not 1, so a point in the eye's plane of a perspective
    /// gives non-finite components.
    Vector3 transform(const Vector3& point) const;

    /// The image of a direction: upper left 3 by 3 part only, length not kept.
    Vector3 transformDirection(const Vector3& direction) const;

    bool isFinite() const;

    static const Matrix Identity;

    /// Places what lies in the screen's plane into the XZ plane: x along X, y along Z. So its inverse is the
    /// view that looks at the XZ plane: along +Y, X to the right, Z up on the screen.
    static const Matrix OrientXZ;

    /// Places what lies in the screen's plane into the YZ plane: x along Y, y along Z. So its inverse is the
    /// view that looks at the YZ plane: along -X, Y to the right, Z up on the screen.
    static const Matrix OrientYZ;

    /// The elements, `m[row][column]`.
    float m[4][4];
};

/// The map through `first` and then through `second`.
KELVAR_MATH_API Matrix operator*(const Matrix& first, const Matrix& second);

/// Element by element; a matrix that holds a NaN equals nothing.
KELVAR_MATH_API bool operator==(const Matrix& a, const Matrix& b);

inline bool operator!=(const Matrix& a, const Matrix& b)
{
    return !(a == b);
}

inline constexpr Matrix Matrix::Identity{};
inline constexpr Matrix Matrix::OrientXZ{VectorX, VectorZ, -VectorY};
inline constexpr Matrix Matrix::OrientYZ{VectorY, VectorZ, VectorX};

} // namespace Math
} // namespace Kelvar
