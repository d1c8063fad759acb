#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/vis/OruVisualization.h"

#include <vector>

namespace hostkit {

class MeshVisualization;
class PartList;
class SectionPlane;
class SectionPlanes;

/// Closes what section planes cut open: the faces that lie in the planes, in the colors of the parts.
///
/// Each face is made in a canvas of its own, since the off-screen buffers of pictures have no stencil. There
/// the stencil counts, pixel for pixel, how often the look beyond the plane leaves a part more than it enters
/// it: other than 0, the plane runs inside of the part. The canvas is then laid onto the plane. Where OpenGL
/// has no such canvas, or none of that size, the faces stay open, which is told once.
class CutFaces
{
public:
    /// All are borrowed and live as long. `place` takes the frame of the model's parts to the scene.
    CutFaces(const SectionPlanes& planes, const PartList& model, const Kelvar::Math::Matrix& place,
             const OruVisualization::DrawContext& context);

    /// Draws them, in the matrices of the scene. The planes clip nothing yet.
    void draw() const;

private:
    using Parts = std::vector<MeshVisualization*>;

    Parts partsAcross(const SectionPlane& plane) const;
    void collect(const PartList& list, const SectionPlane& plane, Parts& parts) const;
    void fill(const SectionPlane& plane, const Parts& parts) const;
    void fillPart(const SectionPlane& plane, MeshVisualization& part) const;
    void count(const SectionPlane& plane, MeshVisualization& part) const;
    void layDown(const SectionPlane& plane, const Parts& parts) const;
    Kelvar::Math::BoundingBox boxOf(const MeshVisualization& part) const;

    const SectionPlanes& planes_;
    const PartList& model_;
    const Kelvar::Math::Matrix& place_;
    const OruVisualization::DrawContext& context_;
};

} // namespace hostkit
