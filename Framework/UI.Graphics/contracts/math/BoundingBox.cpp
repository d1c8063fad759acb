#include "contracts/math/BoundingBox.h"

#include "contracts/math/Matrix.h"

#include <algorithm>

namespace Kelvar {
namespace Math {

namespace {

Vector3 smallest(const Vector3& a, const Vector3& b)
{
    return Vector3(std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z));
}

Vector3 largest(const Vector3& a, const Vector3& b)
{
    return Vector3(std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z));
}

} // namespace

BoundingBox::BoundingBox(const Vector3& min, const Vector3& max)
    : min_(smallest(min, max))
    , max_(largest(min, max))
    , defined_(true)
{}

Vector3 BoundingBox::center() const
{
    return min() * 0.5f + max() * 0.5f;
}

Vector3 BoundingBox::corner(int index) const
{
    const Vector3 low = min();
    const Vector3 high = max();
    return Vector3((index & 1) != 0 ? high.x : low.x, (index & 2) != 0 ? high.y : low.y,
                   (index & 4) != 0 ? high.z : low.z);
}

void BoundingBox::add(const Vector3& point)
{
    if (!point.isFinite()) {
        return;
    }
    min_ = defined_ ? smallest(min_, point) : point;
    max_ = defined_ ? largest(max_, point) : point;
    defined_ = true;
}

void BoundingBox::add(const BoundingBox& other)
{
    if (other.defined()) {
        add(other.min());
        add(other.max());
    }
}

bool BoundingBox::intersects(const BoundingBox& other) const
{
    return defined_ && other.defined_ && min_.x <= other.max_.x && other.min_.x <= max_.x &&
           min_.y <= other.max_.y && other.min_.y <= max_.y && min_.z <= other.max_.z &&
           other.min_.z <= max_.z;
}

BoundingBox& BoundingBox::operator*=(const Matrix& matrix)
{
    BoundingBox image;
    if (defined_) {
        for (int index = 0; index < 8; ++index) {
            image.add(matrix.transform(corner(index)));
        }
    }
    *this = image;
    return *this;
}

bool operator==(const BoundingBox& a, const BoundingBox& b)
{
    return a.defined() == b.defined() && a.min() == b.min() && a.max() == b.max();
}

} // namespace Math
} // namespace Kelvar
