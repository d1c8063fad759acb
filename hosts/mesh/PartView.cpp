#include "hosts/mesh/PartView.h"

namespace hostkit {

using Kelvar::Math::Matrix;

const PartView::Shared& PartView::none()
{
    static const Shared none = std::make_shared<const PartView>();
    return none;
}

const PartView::Shared& PartView::of(const Matrix& modelView, const Matrix& projection,
                                     const OruOglViewport& viewport)
{
    thread_local Shared latest = none();
    if (latest->modelView != modelView || latest->projection != projection || latest->viewport != viewport) {
        latest =
            std::make_shared<const PartView>(PartView{modelView, projection, viewport, latest->number + 1});
    }
    return latest;
}

} // namespace hostkit
