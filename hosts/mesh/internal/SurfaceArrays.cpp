#include "hosts/mesh/internal/SurfaceArrays.h"

#include "contracts/math/BoundingBox.h"
#include "contracts/math/DoubleMatrix.h"
#include "hosts/mesh/Mesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// How many times its own size a part may lie away from the origin: the steps of floats there are a
/// four-thousandth of the part.
constexpr float farthest = 4096.0f;

/// It keeps w of points.
bool affine(const Matrix& matrix)
{
    return matrix(0, 3) == 0.0f && matrix(1, 3) == 0.0f && matrix(2, 3) == 0.0f && matrix(3, 3) == 1.0f;
}

float longestOf(const Vector3& vector)
{
    return std::max({std::abs(vector.x), std::abs(vector.y), std::abs(vector.z)});
}

Vector3 toVector(const double point[])
{
    return Vector3(static_cast<float>(point[0]), static_cast<float>(point[1]), static_cast<float>(point[2]));
}

/// Takes normals along with a map of points: by the inverse, transposed, and to length 1.
class NormalMap
{
public:
    explicit NormalMap(const DoubleMatrix& points)
        : inverse_(points.inverse().value_or(DoubleMatrix(Matrix())))
    {}

    Vector3 operator()(const Vector3& normal) const
    {
        double turned[3];
        double squares = 0.0;
        for (int axis = 0; axis < 3; ++axis) {
            const double* row = inverse_.m[axis];
            turned[axis] = normal.x * row[0] + normal.y * row[1] + normal.z * row[2];
            squares += turned[axis] * turned[axis];
        }
        for (double& part : turned) {
            part /= std::sqrt(squares);
        }
        return squares > 0.0 ? toVector(turned) : normal;
    }

private:
    DoubleMatrix inverse_;
};

} // namespace

bool SurfaceArrays::canHold(const Mesh& mesh, const Matrix& placement)
{
    if (placement == Matrix()) {
        return true;
    }
    BoundingBox box = mesh.bounds;
    box *= placement;
    return placement.isFinite() && affine(placement) && DoubleMatrix(placement).inverse().has_value() &&
           std::max(longestOf(box.min()), longestOf(box.max())) <=
               farthest * longestOf(box.max() - box.min());
}

void SurfaceArrays::reserve(std::size_t vertices, std::size_t indices)
{
    positions_.reserve(vertices);
    normals_.reserve(vertices);
    colors_.reserve(vertices);
    indices_.reserve(indices);
}

void SurfaceArrays::add(const Mesh& mesh, const Matrix& placement, std::uint32_t color)
{
    const bool placed = placement != Matrix();
    addIndices(mesh, placed && DoubleMatrix(placement).determinant3x3() < 0.0);
    if (placed) {
        addPlaced(mesh, placement);
    } else {
        positions_.insert(positions_.end(), mesh.positions.begin(), mesh.positions.end());
        normals_.insert(normals_.end(), mesh.normals.begin(), mesh.normals.end());
    }
    if (mesh.colors.empty()) {
        colors_.resize(positions_.size(), color);
    } else {
        colors_.insert(colors_.end(), mesh.colors.begin(), mesh.colors.end());
    }
}

void SurfaceArrays::addPlaced(const Mesh& mesh, const Matrix& placement)
{
    const DoubleMatrix map(placement);
    for (const Vector3& position : mesh.positions) {
        const double point[3] = {position.x, position.y, position.z};
        double image[4];
        map.transform(point, image);
        positions_.push_back(toVector(image));
    }
    const NormalMap turned(map);
    std::transform(mesh.normals.begin(), mesh.normals.end(), std::back_inserter(normals_), turned);
}

/// Ahead of the positions. A mirror turns triangles round; in another order they show their outside again.
void SurfaceArrays::addIndices(const Mesh& mesh, bool mirrored)
{
    const auto base = static_cast<std::uint32_t>(positions_.size());
    const std::size_t first = indices_.size();
    indices_.resize(first + mesh.indices.size());
    std::transform(mesh.indices.begin(), mesh.indices.end(),
                   indices_.begin() + static_cast<std::ptrdiff_t>(first),
                   [base](std::uint32_t index) { return base + index; });
    for (std::size_t i = first; mirrored && i < indices_.size(); i += 3) {
        std::swap(indices_[i + 1], indices_[i + 2]);
    }
}

OruOglMeshArrays SurfaceArrays::arrays() const
{
    OruOglMeshArrays arrays;
    arrays.positions = &positions_.front().x;
    arrays.normals = &normals_.front().x;
    arrays.colors = reinterpret_cast<const std::uint8_t*>(colors_.data());
    arrays.vertexCount = positions_.size();
    arrays.indices = indices_.data();
    arrays.indexCount = indices_.size();
    return arrays;
}

} // namespace hostkit
