#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglMeshBuffer.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/BoxTree.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class OruOglGeometry;

namespace hostkit {

class MeshVisualization;
class SharedSurfaces;
struct SurfaceGroup;

/// Small surfaces of a model in one buffer, each where the model has it and in its color, drawn with one
/// call.
///
/// The parts know where in which batch they are. One that dies or leaves takes itself out and leaves a hole;
/// one that is hidden or drawn by itself is left out of the draws.
class SurfaceBatch
{
public:
    /// Of parts that are all closed, or all open; they and the owner are borrowed.
    SurfaceBatch(SharedSurfaces& owner, const SurfaceGroup& group, bool closed);
    ~SurfaceBatch();
    SurfaceBatch(const SurfaceBatch&) = delete;
    SurfaceBatch& operator=(const SurfaceBatch&) = delete;

    SharedSurfaces& owner() const { return owner_; }

    /// Fills the buffer, which needs the context. False: the GL has no room.
    bool upload(OruOglGeometry& geometry);
    bool belongsTo(const OruOglGeometry& geometry) const { return buffer_->belongsTo(geometry); }

    /// Looks at a part again that may have changed: whether it is to be drawn, and in which color.
    /// `shownAbove` tells whether all lists above it are visible. Needs the context.
    void check(std::uint32_t place, bool shownAbove);

    /// The part is no more one of these.
    void leave(std::uint32_t place);

    /// Grows away from the eye: how far the nearest corner lies along `forward`.
    double distance(const Kelvar::Math::Vector3& forward) const;

    /// Draws what is shown and in view, nearest clusters first.
    void draw(const OruVisViewVolume& volume, const Kelvar::Math::Vector3& forward);

private:
    struct Part
    {
        /// Null once it has left.
        MeshVisualization* object;
        std::uint32_t firstVertex;
        std::uint32_t firstIndex;
        /// As it is in the buffer.
        std::uint32_t color;
        bool shown;
    };

    /// Parts that stand together in the buffer and in space.
    struct Cluster
    {
        std::uint32_t firstPart;
        std::uint32_t endPart;
        std::uint32_t shownParts;
        BoxTree::Box box;
    };

    void addCluster(const SurfaceGroup& group, std::size_t first, std::size_t end);
    void show(std::uint32_t place, bool shown);
    void recolor(Part& part);
    Cluster& clusterOf(std::uint32_t place);
    void addRanges(const Cluster& cluster);
    void addRange(std::size_t first, std::size_t end);

    SharedSurfaces& owner_;
    const bool closed_;
    std::unique_ptr<OruOglMeshBuffer> buffer_;
    /// In the order of the buffer, and one behind the last.
    std::vector<Part> parts_;
    std::vector<Cluster> clusters_;
    BoxTree::Box box_{};
    /// What the last draw put in order; kept for its memory.
    std::vector<std::pair<double, std::uint32_t>> inView_;
    std::vector<OruOglMeshBuffer::Range> ranges_;
};

} // namespace hostkit
