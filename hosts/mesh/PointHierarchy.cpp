#include "hosts/mesh/PointHierarchy.h"

#include "hosts/mesh/internal/WindowQuery.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace hostkit {

namespace {

class PointQuery : public WindowQuery
{
public:
    PointQuery(const OruVisPickVolume& volume, int size)
        : WindowQuery(volume, size)
        , size_(size)
    {}

    void test(const Kelvar::Math::Vector3& point, uint32_t item)
    {
        const Corner at = corner(point);
        if (!inView(at)) {
            return;
        }
        const Span columns = span(at.x / at.w, volume().width());
        const Span rows = span(at.y / at.w, volume().height());
        for (int row = rows.first; row < rows.end; ++row) {
            for (int column = columns.first; column < columns.end; ++column) {
                offer(at.z / at.w, column, row, item);
            }
        }
    }

private:
    /// The pixels that a point at `center` covers, of `count` ones.
    Span span(double center, int count) const
    {
        // The pixel that holds the point is the middle of an odd number; an even one is laid round the border
        // of pixels that is next to the point.
        const int before = size_ / 2;
        const double first = std::floor(center + (size_ % 2 == 1 ? 0.5 : 1.0)) - before;
        return clipped(first, first + size_, count);
    }

    int size_;
};

} // namespace

std::optional<PickHit> PointHierarchy::pick(const OruVisPickVolume& volume, int size) const
{
    if (tree_.size() == 0 || volume.empty()) {
        return std::nullopt;
    }
    PointQuery query(volume, size);
    tree_.search(query,
                 [&](std::size_t place) { query.test(positions_[place], static_cast<uint32_t>(place)); });
    return query.best();
}

} // namespace hostkit
