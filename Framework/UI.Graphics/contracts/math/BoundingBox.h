#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/math/kelvar_math_api.h"

namespace Kelvar {
namespace Math {

class Matrix;

/// A box with edges along the axes of its frame, borders included, or no box at all: undefined. A value type.
///
/// An undefined box holds nothing: its extents are 0, its center and corners are the origin, it meets no
/// other box and adding it changes nothing.
class KELVAR_MATH_API BoundingBox
{
public:
    /// An undefined box.
    constexpr BoundingBox() = default;

    /// The box between two opposite corners. A defined one, even if it has no extent; corners that lie the
    /// other way round are put in order.
    BoundingBox(const Vector3& min, const Vector3& max);

    bool defined() const { return defined_; }

    /// Setting it to false forgets the content; setting it to true on an undefined box makes the point at the
    /// origin. The reference is for one write.
    bool& defined()
    {
        if (!defined_) {
            min_ = max_ = Vector3();
        }
        return defined_;
    }

    Vector3 min() const { return defined_ ? min_ : Vector3(); }
    Vector3 max() const { return defined_ ? max_ : Vector3(); }
    Vector3 center() const;

    /// The extents along x, y and z.
    float width() const { return max().x - min().x; }
    float height() const { return max().y - min().y; }
    float depth() const { return max().z - min().z; }

    /// Corner 0..7: bit 0 chooses the larger x, bit 1 the larger y, bit 2 the larger z.
    Vector3 corner(int index) const;

    /// Grows the box so that it holds the point. A point that is not finite is left out, so that one broken
    /// vertex does not spoil the bounds of a scene.
    void add(const Vector3& point);

    /// Grows the box so that it holds the other one.
    void add(const BoundingBox& other);

    /// Whether the two share a point; touching counts.
    bool intersects(const BoundingBox& other) const;

    /// Replaces the box by the one round its eight transformed corners. An undefined box stays undefined;
    /// corners without a finite image are left out, and a box left without any becomes undefined.
    BoundingBox& operator*=(const Matrix& matrix);

private:
    Vector3 min_;
    Vector3 max_;
    bool defined_ = false;
};

/// Undefined boxes are all equal.
KELVAR_MATH_API bool operator==(const BoundingBox& a, const BoundingBox& b);

inline bool operator!=(const BoundingBox& a, const BoundingBox& b)
{
    return !(a == b);
}

} // namespace Math
} // namespace Kelvar
