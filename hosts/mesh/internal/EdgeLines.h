#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglViewport.h"
#include "hosts/mesh/Mesh.h"

#include <QColor>

#include <memory>

class OruOglGeometry;
class OruOglMeshBuffer;

namespace hostkit {

/// The edges of a mesh as thin lines over its surfaces, in one buffer of their own that is filled when they
/// are first wanted.
///
/// Where lines would lie so close that they covered the part, as on one of a few pixels, they fade out.
class EdgeLines
{
public:
    /// The mesh is borrowed.
    explicit EdgeLines(const Mesh& mesh);
    ~EdgeLines();

    /// Pixels across: 1, and more where the view has more than `pixelsPerLineWidth` on its longer side, so
    /// that large pictures look as the window does.
    static float widthFor(const OruOglViewport& viewport);
    static constexpr float pixelsPerLineWidth = 1600.0f;

    /// Readies the edges that bend by `angle` degrees or more. Needs the context. Where the GL has no room,
    /// nothing is drawn.
    void prepare(OruOglGeometry& geometry, float angle);

    /// Draws what is prepared over a surface of that color. The matrices take the frame of the mesh to the
    /// eye and on; modelView is loaded, and matrix mode is GL_MODELVIEW. Leaves all state but the color as it
    /// was.
    void draw(const Kelvar::Math::Matrix& modelView, const Kelvar::Math::Matrix& projection,
              const OruOglViewport& viewport, const QColor& surface) const;

private:
    void upload(OruOglMeshBuffer& buffer) const;
    float lengthOf(std::size_t count) const;

    const Mesh& mesh_;
    std::unique_ptr<OruOglMeshBuffer> buffer_;
    float angle_ = 0.0f;
    /// What bends by that angle: how many edges, and how long they are together.
    std::size_t count_ = 0;
    float length_ = 0.0f;
};

} // namespace hostkit
