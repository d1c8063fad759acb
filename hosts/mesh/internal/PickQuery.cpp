#include "hosts/mesh/internal/PickQuery.h"

#include "contracts/math/Matrix.h"

#include <tuple>

namespace hostkit {

namespace {

/// Depths are compared as a 24 bit depth buffer does it, so that a face parallel to the screen is a tie.
constexpr double depthSteps = 16777216.0;

using Linear = std::array<double, 4>;

Linear combine(double a, const Linear& f, double b, const Linear& g)
{
    Linear sum{};
    for (std::size_t i = 0; i < 4; ++i) {
        sum[i] = a * f[i] + b * g[i];
    }
    return sum;
}

bool isBetter(const PickHit& hit, const PickHit& than)
{
    return std::tie(hit.depth, hit.centerDistance, hit.item) <
           std::tie(than.depth, than.centerDistance, than.item);
}

} // namespace

PickQuery::PickQuery(const OruVisPickVolume& volume, double rim)
    : volume_(volume)
    , columns_(windowColumns(volume))
    , sides_{above(x(), -rim), above(y(), -rim), below(x(), volume.width() - 1.0 + rim),
             below(y(), volume.height() - 1.0 + rim), HalfSpace(z(), absolute(z()))}
    , depthLimit_(nearerThan(1.0))
{}

std::optional<PickHit> PickQuery::better(double exactDepth, int column, int row, uint32_t item) const
{
    const double windowX = volume_.x() + column + 0.5;
    const double windowY = volume_.y() + row + 0.5;
    if (volume_.isCut() && !volume_.keeps(windowX, windowY, exactDepth)) {
        return std::nullopt;
    }
    const double step = std::floor(exactDepth * depthSteps + 0.5);
    const PickHit hit{static_cast<float>(step / depthSteps), volume_.distanceFromCenter(windowX, windowY),
                      item};
    return best_ && !isBetter(hit, *best_) ? std::nullopt : std::make_optional(hit);
}

void PickQuery::take(const PickHit& hit)
{
    if (!best_ || hit.depth < best_->depth) {
        depthLimit_ = nearerThan(std::min(1.0, hit.depth + 0.75 / depthSteps));
    }
    best_ = hit;
}

void PickQuery::offer(double exactDepth, int column, int row, uint32_t item)
{
    if (const auto hit = better(exactDepth, column, row, item)) {
        take(*hit);
    }
}

PickQuery::Columns PickQuery::windowColumns(const OruVisPickVolume& volume)
{
    const Kelvar::Math::Matrix& matrix = volume.toWindow();
    Columns columns{};
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row) {
            columns[column][row] = matrix(row, column);
        }
    }
    columns[0] = combine(1.0, columns[0], -(volume.x() + 0.5), columns[3]);
    columns[1] = combine(1.0, columns[1], -(volume.y() + 0.5), columns[3]);
    return columns;
}

PickQuery::Linear PickQuery::absolute(Linear f)
{
    for (double& each : f) {
        each = std::abs(each);
    }
    return f;
}

/// f / w >= limit
PickQuery::HalfSpace PickQuery::above(const Linear& f, double limit) const
{
    return {combine(1.0, f, -limit, w()), combine(1.0, absolute(f), std::abs(limit), absolute(w()))};
}

/// f / w <= limit
PickQuery::HalfSpace PickQuery::below(const Linear& f, double limit) const
{
    return {combine(-1.0, f, limit, w()), combine(1.0, absolute(f), std::abs(limit), absolute(w()))};
}

} // namespace hostkit
