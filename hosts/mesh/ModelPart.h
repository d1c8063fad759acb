#pragma once

#include "contracts/math/Matrix.h"
#include "hosts/mesh/AnyShape.h"

#include <QString>

#include <memory>
#include <utility>
#include <variant>

namespace hostkit {

/// One use of a shape in a model.
struct ModelPart
{
    ModelPart(AnyShape usedShape, const Kelvar::Math::Matrix& place = {}, const QString& partName = {})
        : name(partName)
        , content(std::move(usedShape))
        , placement(place)
    {}

    const Shape& shape() const
    {
        return std::visit([](const auto& used) -> const Shape& { return *used; }, content);
    }

    /// The shape if it is of that kind, or null: `part.as<Mesh>()`.
    template <typename Kind>
    std::shared_ptr<const Kind> as() const
    {
        const auto* const used = std::get_if<std::shared_ptr<const Kind>>(&content);
        return used ? *used : nullptr;
    }

    /// Without '/'; empty: it is called as its shape is.
    QString name;

    AnyShape content;

    /// From the frame of the shape to that of the model.
    Kelvar::Math::Matrix placement;
};

} // namespace hostkit
