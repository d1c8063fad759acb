// The standard views of OruSceneZpr.

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/OruTimer.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"

#include <array>
#include <vector>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::Math::VectorX;
using Kelvar::Math::VectorY;
using Kelvar::Math::VectorZ;

namespace {

/// Turns that follow one another, first to last.
using Turns = std::vector<Matrix>;

/// The turns of the six views along an axis, indexed by OruSceneZpr::Position.
const std::array<Turns, 6>& axisTurns()
{
    static const std::array<Turns, 6> table = {{
        {Matrix::OrientYZ.inverse()},
        {Matrix::OrientYZ.inverse(), Matrix::rotate(VectorY, 180.0f)},
        {Matrix::OrientXZ.inverse(), Matrix::rotate(VectorY, 180.0f)},
        {Matrix::OrientXZ.inverse()},
        {},
        {Matrix::rotate(VectorY, 180.0f)},
    }};
    return table;
}

/// The turns of the isometric view, indexed by the dominant component of the up axis.
const std::array<Turns, 3>& isometricTurns()
{
    static const std::array<Turns, 3> table = {{
        {Matrix::rotate(VectorZ, 90.0f), Matrix::rotate(VectorY, -135.0f), Matrix::rotate(VectorX, -45.0f)},
        {Matrix::rotate(VectorY, 135.0f), Matrix::rotate(VectorX, -45.0f)},
        {Matrix::rotate(VectorZ, 45.0f), Matrix::rotate(VectorX, -135.0f)},
    }};
    return table;
}

Turns turnsOf(OruSceneZpr::Position position, const Vector3& upAxis, const Matrix& view)
{
    if (position == OruSceneZpr::ViewFit) {
        return {view.orientation()};
    }
    if (position == OruSceneZpr::ViewIsometric) {
        return isometricTurns()[static_cast<size_t>(upAxis.dominant())];
    }
    const auto index = static_cast<size_t>(position);
    return index < axisTurns().size() ? axisTurns()[index] : Turns();
}

BoundingBox boxToShow(const OruSceneEventContext& ctx)
{
    const BoundingBox box = ctx.zoomBounds.defined() ? ctx.zoomBounds : ctx.bounds;
    return box.defined() ? box : BoundingBox(Kelvar::Math::Vector0, Kelvar::Math::Vector1);
}

/// The scale that brings the limiting extent of a box to 2 * fitFactor; 0 or infinite where no scale can.
float fitScale(const OruSceneEventContext& ctx, const BoundingBox& box)
{
    if (ctx.viewport.empty()) {
        return 0.0f;
    }
    const float aspect = static_cast<float>(ctx.viewport.width) / static_cast<float>(ctx.viewport.height);
    const float height = box.height();
    const float width = box.width() / aspect;
    const float extent = height > width ? height : width;
    return (ctx.fitFactor + ctx.fitFactor) / extent;
}

} // namespace

bool OruSceneZpr::zoomTo(const OruSceneEventContext& ctx, Position position, Matrix& view) const
{
    const OruTimer timer("positioning the view.", 10);

    BoundingBox box = boxToShow(ctx);
    if (!box.defined()) {
        return false;
    }
    Matrix result;
    result *= Matrix::translate(-box.center());
    for (const Matrix& turn : turnsOf(position, ctx.upAxis, view)) {
        result *= turn;
    }
    box *= result;

    result *= Matrix::scale(fitScale(ctx, box));
    return assign(result, view);
}
