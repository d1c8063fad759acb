#include "hosts/mesh/internal/WindowQuery.h"

#include "contracts/ogl/OruOglViewport.h"

#include <algorithm>

namespace hostkit {

WindowQuery::WindowQuery(const OruVisPickVolume& volume, int pixels)
    : PickQuery(volume, 0.5 * pixels + 1.0)
    , left_(volume.viewport().x - volume.x() - 0.5)
    , bottom_(volume.viewport().y - volume.y() - 0.5)
    , right_(left_ + volume.viewport().width)
    , top_(bottom_ + volume.viewport().height)
{}

WindowQuery::Span WindowQuery::clipped(double first, double end, int count)
{
    return {static_cast<int>(std::clamp(first, 0.0, static_cast<double>(count))),
            static_cast<int>(std::clamp(end, 0.0, static_cast<double>(count)))};
}

std::array<double, 6> WindowQuery::depthsInView(const Corner& point) const
{
    const auto& [x, y, z, w] = point;
    return {x - left_ * w, right_ * w - x, y - bottom_ * w, top_ * w - y, z, w - z};
}

bool WindowQuery::inView(const Corner& point) const
{
    const std::array<double, 6> depths = depthsInView(point);
    return point.w > 0.0 && std::all_of(depths.begin(), depths.end(), [](double d) { return d >= 0.0; });
}

std::optional<std::pair<WindowQuery::Corner, WindowQuery::Corner>> WindowQuery::inView(const Corner& from,
                                                                                       const Corner& to) const
{
    const std::array<double, 6> atStart = depthsInView(from);
    const std::array<double, 6> atEnd = depthsInView(to);
    double first = 0.0;
    double last = 1.0;
    for (std::size_t i = 0; i < atStart.size(); ++i) {
        if (!(atStart[i] >= 0.0) && !(atEnd[i] >= 0.0)) {
            return std::nullopt;
        }
        const double crossing = atStart[i] / (atStart[i] - atEnd[i]);
        if (atStart[i] < 0.0) {
            first = std::max(first, crossing);
        } else if (atEnd[i] < 0.0) {
            last = std::min(last, crossing);
        }
    }
    if (first > last) {
        return std::nullopt;
    }
    const auto between = [&](double share) {
        const auto mixed = [share](double a, double b) { return a + share * (b - a); };
        return Corner{mixed(from.x, to.x), mixed(from.y, to.y), mixed(from.z, to.z), mixed(from.w, to.w)};
    };
    const std::pair<Corner, Corner> seen{between(first), between(last)};
    const bool beforeTheEye = seen.first.w > 0.0 && seen.second.w > 0.0;
    return beforeTheEye ? std::make_optional(seen) : std::nullopt;
}

} // namespace hostkit
