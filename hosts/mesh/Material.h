#pragma once

#include "hosts/mesh/Texture.h"

#include <QColor>

#include <memory>

namespace hostkit {

/// What a surface, a line or a point looks like.
struct Material
{
    /// What alpha means: of `color`, the colors of vertices and the texture, multiplied.
    enum class Alpha
    {
        /// Nothing.
        Opaque,
        /// There is nothing where it lies below `cutoff`, and all of it elsewhere.
        CutOut,
        /// What lies behind shines through.
        Blend
    };

    /// Drawn where there are no colors of vertices; multiplied with the texture.
    QColor color;

    /// Null: none.
    std::shared_ptr<const Texture> texture;

    Alpha alpha = Alpha::Opaque;
    float cutoff = 0.5f;
};

} // namespace hostkit
