#include "hosts/mesh/internal/SurfaceBatch.h"

#include "contracts/math/BoundingBox.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/internal/ShownSides.h"
#include "hosts/mesh/internal/SurfaceArrays.h"
#include "hosts/mesh/internal/SurfaceGroup.h"

#include <algorithm>
#include <cstring>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

namespace {

/// Bytes red, green, blue, alpha in memory.
std::uint32_t bytesOf(const QColor& color)
{
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(color.red()),
                                  static_cast<std::uint8_t>(color.green()),
                                  static_cast<std::uint8_t>(color.blue()), static_cast<std::uint8_t>(0xff)};
    std::uint32_t all = 0;
    std::memcpy(&all, bytes, sizeof(all));
    return all;
}

BoxTree::Box cornersOf(const BoundingBox& box)
{
    return BoxTree::boxOf(box.min(), box.max());
}

double distanceOf(const BoxTree::Box& box, const Vector3& forward)
{
    double distance = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const double factor = forward[axis];
        distance +=
            factor * static_cast<double>(box[static_cast<std::size_t>(factor < 0.0 ? axis + 3 : axis)]);
    }
    return distance;
}

} // namespace

SurfaceBatch::SurfaceBatch(SharedSurfaces& owner, const SurfaceGroup& group, bool closed)
    : owner_(owner)
    , closed_(closed)
{
    parts_.reserve(group.parts.size() + 1);
    clusters_.reserve(group.clusterEnds.size());
    BoundingBox all;
    std::uint32_t vertices = 0;
    std::uint32_t indices = 0;
    for (MeshVisualization* const part : group.parts) {
        part->batch_ = this;
        part->placeInBatch_ = static_cast<std::uint32_t>(parts_.size());
        parts_.push_back({part, vertices, indices, bytesOf(part->color.value()), false});
        vertices += static_cast<std::uint32_t>(part->mesh().positions.size());
        indices += static_cast<std::uint32_t>(part->mesh().indices.size());
        all.add(part->boundsAsItCame());
    }
    parts_.push_back({nullptr, vertices, indices, 0, false});
    box_ = cornersOf(all);
    std::size_t first = 0;
    for (const std::size_t end : group.clusterEnds) {
        addCluster(group, first, end);
        first = end;
    }
}

SurfaceBatch::~SurfaceBatch()
{
    for (const Part& part : parts_) {
        if (part.object) {
            part.object->batch_ = nullptr;
        }
    }
}

void SurfaceBatch::addCluster(const SurfaceGroup& group, std::size_t first, std::size_t end)
{
    BoundingBox box;
    for (std::size_t i = first; i < end; ++i) {
        box.add(group.parts[i]->boundsAsItCame());
    }
    clusters_.push_back(
        {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(end), 0, cornersOf(box)});
}

bool SurfaceBatch::upload(OruOglGeometry& geometry)
{
    SurfaceArrays arrays;
    arrays.reserve(parts_.back().firstVertex, parts_.back().firstIndex);
    for (const Part& part : parts_) {
        if (part.object) {
            arrays.add(part.object->mesh(), part.object->placement(), part.color);
        }
    }
    buffer_ = geometry.makeMesh();
    return buffer_->upload(arrays.arrays());
}

void SurfaceBatch::check(std::uint32_t place, bool shownAbove)
{
    Part& part = parts_[place];
    show(place, shownAbove && part.object->visible.value() && part.object->isAsItCame());
    recolor(part);
}

void SurfaceBatch::recolor(Part& part)
{
    const std::uint32_t color = bytesOf(part.object->color.value());
    if (!part.shown || color == part.color || !part.object->mesh().colors.empty()) {
        return;
    }
    part.color = color;
    const std::vector<std::uint32_t> colors(part.object->mesh().positions.size(), color);
    buffer_->replaceColors(part.firstVertex, colors.size(),
                           reinterpret_cast<const std::uint8_t*>(colors.data()));
}

void SurfaceBatch::leave(std::uint32_t place)
{
    show(place, false);
    parts_[place].object->batch_ = nullptr;
    parts_[place].object = nullptr;
}

void SurfaceBatch::show(std::uint32_t place, bool shown)
{
    Part& part = parts_[place];
    if (part.shown != shown) {
        part.shown = shown;
        clusterOf(place).shownParts += shown ? 1 : -1;
    }
}

SurfaceBatch::Cluster& SurfaceBatch::clusterOf(std::uint32_t place)
{
    return *std::upper_bound(
        clusters_.begin(), clusters_.end(), place,
        [](std::uint32_t part, const Cluster& cluster) { return part < cluster.endPart; });
}

double SurfaceBatch::distance(const Vector3& forward) const
{
    return distanceOf(box_, forward);
}

void SurfaceBatch::draw(const OruVisViewVolume& volume, const Vector3& forward)
{
    if (!volume.meets(&box_[0], &box_[3])) {
        return;
    }
    inView_.clear();
    for (const Cluster& cluster : clusters_) {
        if (cluster.shownParts > 0 && volume.meets(&cluster.box[0], &cluster.box[3])) {
            inView_.emplace_back(distanceOf(cluster.box, forward),
                                 static_cast<std::uint32_t>(&cluster - clusters_.data()));
        }
    }
    std::sort(inView_.begin(), inView_.end());
    ranges_.clear();
    for (const auto& [distance, number] : inView_) {
        addRanges(clusters_[number]);
    }
    const ShownSides sides(closed_);
    buffer_->draw(ranges_);
}

void SurfaceBatch::addRanges(const Cluster& cluster)
{
    if (cluster.shownParts == cluster.endPart - cluster.firstPart) {
        addRange(parts_[cluster.firstPart].firstIndex, parts_[cluster.endPart].firstIndex);
        return;
    }
    for (std::uint32_t place = cluster.firstPart; place < cluster.endPart; ++place) {
        if (parts_[place].shown) {
            addRange(parts_[place].firstIndex, parts_[place + 1].firstIndex);
        }
    }
}

/// Neighbours go in one range.
void SurfaceBatch::addRange(std::size_t first, std::size_t end)
{
    if (!ranges_.empty() && ranges_.back().first + ranges_.back().count == first) {
        ranges_.back().count += end - first;
    } else {
        ranges_.push_back({first, end - first});
    }
}

} // namespace hostkit
