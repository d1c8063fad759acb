#pragma once

#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <memory>
#include <optional>

struct OruOglTexture;

namespace hostkit {

/// A part that is a surface: drawn lit, picked by its triangles. It is drawn from both sides unless it is
/// closed and hides its inside. A texture is multiplied with the color or the colors of the vertices.
class KELVAR_MESH_API MeshVisualization : public PartVisualization
{
public:
    static const QString typeString;

    /// The mesh is shared and not null.
    MeshVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const Mesh> mesh);
    ~MeshVisualization() override;

    const Mesh& mesh() const { return *mesh_; }
    Content content() const override;

    void draw3d(const DrawContext& context) override;

protected:
    bool upload(OruOglMeshBuffer& buffer) override;
    void drawShape(const OruOglMeshBuffer& buffer) override;
    std::optional<Hit> pickShape(const OruVisPickVolume& volume) const override;

private:
    void drawFaces(const OruOglMeshBuffer& buffer) const;
    void drawInView(const OruOglMeshBuffer& buffer) const;
    void drawRunsInView(const OruOglMeshBuffer& buffer) const;

    std::shared_ptr<const Mesh> mesh_;
    /// As of the last draw; null without one.
    std::shared_ptr<const OruOglTexture> texture_;
};

} // namespace hostkit
