#include "hosts/mesh/PartPlace.h"

#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartVisualization.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace hostkit {

using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Vector3;

namespace {

const ModelList* modelIn(const OruProperties& list)
{
    for (unsigned int i = 0; i < list.size(); ++i) {
        if (const auto* const model = dynamic_cast<const ModelList*>(list.at(i))) {
            return model;
        }
    }
    return nullptr;
}

} // namespace

const ModelList* PartPlace::modelOf(const OruProperties& node)
{
    for (const OruProperties* above = &node; above; above = above->parent()) {
        if (const auto* const model = dynamic_cast<const ModelList*>(above)) {
            return model;
        }
    }
    return nullptr;
}

DoubleMatrix PartPlace::inScene(const PartVisualization& part)
{
    const DoubleMatrix place(part.place());
    const ModelList* const model = modelOf(part);
    return model ? place * DoubleMatrix(model->place()) : place;
}

PartPlace::Box PartPlace::boxInScene(const PartVisualization& part)
{
    const DoubleMatrix place = inScene(part);
    constexpr double none = std::numeric_limits<double>::infinity();
    Box box{{none, none, none}, {-none, -none, -none}};
    for (const Vector3& position : part.shape().positions) {
        const double at[] = {position.x, position.y, position.z};
        double placed[4];
        place.transform(at, placed);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            box.first[axis] = std::min(box.first[axis], placed[axis]);
            box.second[axis] = std::max(box.second[axis], placed[axis]);
        }
    }
    return box;
}

Origin PartPlace::originBeside(const OruProperties& node)
{
    for (const OruProperties* list = node.parent(); list; list = list->parent()) {
        if (const ModelList* const model = modelIn(*list)) {
            return model->origin();
        }
    }
    return {};
}

} // namespace hostkit
