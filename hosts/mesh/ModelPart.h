#pragma once

#include "contracts/math/Matrix.h"
#include "hosts/mesh/Mesh.h"

#include <QString>

#include <memory>
#include <utility>

namespace hostkit {

/// One use of a shape in a model.
struct ModelPart
{
    /// `usedMesh` is not null.
    ModelPart(std::shared_ptr<const Mesh> usedMesh, const Kelvar::Math::Matrix& place = {},
              const QString& partName = {})
        : name(partName)
        , mesh(std::move(usedMesh))
        , placement(place)
    {}

    const Shape& shape() const { return *mesh; }

    /// Without '/'; empty: it is called as its shape is.
    QString name;

    std::shared_ptr<const Mesh> mesh;

    /// From the frame of the shape to that of the model.
    Kelvar::Math::Matrix placement;
};

} // namespace hostkit
