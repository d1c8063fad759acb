#include "hosts/mesh/SectionPlanes.h"

#include "contracts/math/DoubleMatrix.h"
#include "hosts/mesh/ModelList.h"

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;

const QString SectionPlanes::typeString = QStringLiteral("hostkit.section");
const QString SectionPlanes::usualName = QStringLiteral("section");

SectionPlanes::SectionPlanes(OruModifiedGroup& modifiedGroup)
    : OruVisList(modifiedGroup, usualName)
    , planes_()
{
    setType(typeString);
    for (int axis = 0; axis < 3; ++axis) {
        planes_[static_cast<std::size_t>(axis)] = new SectionPlane(modifiedGroup, axis);
        OruVisList::insert(planes_[static_cast<std::size_t>(axis)], false);
    }
}

SectionPlanes::~SectionPlanes() = default;

std::vector<const SectionPlane*> SectionPlanes::active() const
{
    std::vector<const SectionPlane*> cutting;
    for (const SectionPlane* const plane : planes_) {
        if (visible.value() && plane->active.value()) {
            cutting.push_back(plane);
        }
    }
    return cutting;
}

const SectionPlanes* SectionPlanes::beside(const OruProperties& node)
{
    const OruProperties* const list = node.parent();
    return list ? dynamic_cast<const SectionPlanes*>(list->childByName(usualName)) : nullptr;
}

BoundingBox SectionPlanes::extent() const
{
    BoundingBox box;
    for (unsigned int i = 0; parent() && i < parent()->size(); ++i) {
        const auto* const model = dynamic_cast<const ModelList*>(parent()->at(i));
        if (model && model->visible.value()) {
            box.add(model->bounds());
        }
    }
    return box;
}

/// A plane of the world, times the way from the window back to the world, is one of the window.
std::vector<OruVisPickVolume::Cut> SectionPlanes::cuts(const SelectContext& context) const
{
    std::vector<OruVisPickVolume::Cut> found;
    const std::vector<const SectionPlane*> cutting = active();
    if (cutting.empty()) {
        return found;
    }
    const std::optional<DoubleMatrix> toWorld = DoubleMatrix(OruVisPickVolume(context).toWindow()).inverse();
    if (!toWorld) {
        return found;
    }
    for (const SectionPlane* const plane : cutting) {
        const std::array<double, 4> kept = plane->kept();
        OruVisPickVolume::Cut cut{};
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column) {
                cut[static_cast<std::size_t>(row)] +=
                    toWorld->m[row][column] * kept[static_cast<std::size_t>(column)];
            }
        }
        found.push_back(cut);
    }
    return found;
}

/// Frames and handles are no part of what is shown.
BoundingBox SectionPlanes::bounds() const
{
    return {};
}

} // namespace hostkit
