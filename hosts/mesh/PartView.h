#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglViewport.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <memory>

namespace hostkit {

/// What takes window pixels to the frame of the scene, as a draw or a pick had it. Parts that are reached one
/// after the other share one.
struct KELVAR_MESH_API PartView
{
    using Shared = std::shared_ptr<const PartView>;

    /// What a part has seen that was neither drawn nor picked; never null.
    static const Shared& none();

    /// That of a pass; never null. The same object as long as it is the same view.
    template <typename Context>
    static const Shared& of(const Context& context)
    {
        return of(context.modelView, context.projection, context.viewport);
    }

    Kelvar::Math::Matrix modelView;
    Kelvar::Math::Matrix projection;
    OruOglViewport viewport;
    /// Of two views the one with the larger number was asked for later.
    std::uint64_t number = 0;

private:
    static const Shared& of(const Kelvar::Math::Matrix& modelView, const Kelvar::Math::Matrix& projection,
                            const OruOglViewport& viewport);
};

} // namespace hostkit
