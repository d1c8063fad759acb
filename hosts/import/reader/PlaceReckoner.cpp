#include "hosts/import/reader/PlaceReckoner.h"

#include "contracts/math/Matrix.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace hostkit {

using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// A step between floats shows from this share of the model on.
constexpr double visibleShare = 1e-5;

DoubleBox boxOf(const aiMesh& mesh)
{
    DoubleBox box;
    for (unsigned int i = 0; i < mesh.mNumVertices; ++i) {
        const aiVector3D& v = mesh.mVertices[i];
        box.add({v.x, v.y, v.z});
    }
    return box;
}

/// The distance from one float to the next.
double stepAt(double magnitude)
{
    const auto number = static_cast<float>(magnitude);
    return std::nextafter(number, std::numeric_limits<float>::infinity()) - number;
}

/// By how much a map enlarges at most.
double scaleOf(const DoubleMatrix& map)
{
    double most = 0.0;
    for (const auto& row : {map.m[0], map.m[1], map.m[2]}) {
        most = std::max(most, std::sqrt(row[0] * row[0] + row[1] * row[1] + row[2] * row[2]));
    }
    return most;
}

/// The multiple of a power of ten not above `step` that is nearest to a number: easy to read.
double rounded(double number, double step)
{
    const double ten = step > 0.0 ? std::pow(10.0, std::floor(std::log10(step))) : 0.0;
    return ten > 0.0 ? std::round(number / ten) * ten : number;
}

} // namespace

PlaceReckoner::PlaceReckoner(const aiScene& scene, const SceneTree& tree)
    : tree_(tree)
{
    std::transform(scene.mMeshes, scene.mMeshes + scene.mNumMeshes, std::back_inserter(meshBoxes_),
                   [](const aiMesh* mesh) { return hostkit::boxOf(*mesh); });
    for (const SceneTree::Use& use : tree_.uses()) {
        const DoubleBox box = boxOf(use);
        if (!box.empty()) {
            box_.add(box.low);
            box_.add(box.high);
        }
    }
    chooseOrigin();
}

/// Round the corners of the mesh's box, in the model.
DoubleBox PlaceReckoner::boxOf(const SceneTree::Use& use) const
{
    DoubleBox box;
    const DoubleBox& own = meshBoxes_[use.mesh];
    for (unsigned int i = 0; i < 8 && !own.empty(); ++i) {
        double image[4];
        use.place.transform(own.corner(i).data(), image);
        box.add({image[0] / image[3], image[1] / image[3], image[2] / image[3]});
    }
    return box;
}

void PlaceReckoner::chooseOrigin()
{
    for (std::size_t axis = 0; axis < 3 && !box_.empty(); ++axis) {
        if (box_.isFar(axis)) {
            origin_[axis] = rounded(box_.center(axis), box_.extent());
        }
    }
}

/// Within 1/64 of its distance from 0 on both sides, a float less the center is a float again.
Vector3 PlaceReckoner::center(unsigned int mesh) const
{
    const DoubleBox& box = meshBoxes_[mesh];
    Vector3 center;
    for (int axis = 0; axis < 3 && !box.empty(); ++axis) {
        if (box.isFar(static_cast<std::size_t>(axis))) {
            center[axis] = static_cast<float>(box.center(static_cast<std::size_t>(axis)));
        }
    }
    return center;
}

DoubleMatrix PlaceReckoner::placement(const SceneTree::Use& use) const
{
    DoubleMatrix place = use.place;
    for (auto& row : place.m) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            row[axis] -= origin_[axis] * row[3];
        }
    }
    return place;
}

Matrix PlaceReckoner::centeredPlacement(const SceneTree::Use& use) const
{
    const Matrix fromCenter = Matrix::translate(center(use.mesh));
    return (DoubleMatrix(fromCenter) * placement(use)).toMatrix();
}

double PlaceReckoner::graininess() const
{
    double most = 0.0;
    for (const SceneTree::Use& use : tree_.uses()) {
        const DoubleBox& own = meshBoxes_[use.mesh];
        if (!own.empty()) {
            most = std::max(most, stepAt(own.reach()) * scaleOf(use.place));
        }
    }
    return !box_.empty() && box_.extent() > 0.0 && most > visibleShare * box_.extent() ? most : 0.0;
}

} // namespace hostkit
