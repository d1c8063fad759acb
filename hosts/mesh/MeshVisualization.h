#pragma once

#include "contracts/core/OruPropertyKind.h"
#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <memory>
#include <optional>

struct OruOglTexture;

namespace hostkit {

class EdgeLines;
class SharedSurfaces;
class SurfaceBatch;

/// A part that is a surface: drawn lit, picked by what it shows. It is drawn from both sides unless it is
/// closed and hides its inside. A texture is multiplied with the color or the colors of the vertices.
///
/// As a wireframe it shows all sides of its triangles and what lies behind them. A pick then takes its lines
/// alone, so that what is seen through it can be pointed at, too. Edges over the surface do not change what
/// is picked.
class KELVAR_MESH_API MeshVisualization : public PartVisualization
{
public:
    static const QString typeString;

    /// The mesh is shared and not null.
    MeshVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const Mesh> mesh);
    ~MeshVisualization() override;

    /// What `edges` can be: the surface alone, with its sharp and open edges as dark lines over it, or the
    /// sides of all triangles and no surface.
    static constexpr OruPropertyKind::Choice edgeWords[] = {
        {"off", "surface"}, {"edges", "surface with its edges"}, {"wireframe", "wireframe"}};
    static constexpr OruPropertyKind edgeKind = OruPropertyKind::of<QString>().oneOf(edgeWords);

    /// One of edgeWords; key "edges". Another text counts as "off".
    OruPropertyAdaptor<QString> edges;

    /// Where the surface bends by as many degrees or more, it has an edge; from 5 to 180, which leaves the
    /// open ones. Key "edgeAngle".
    OruPropertyAdaptor<float> edgeAngle;

    const Mesh& mesh() const { return *mesh_; }

    /// The extent of the mesh where the model has it, in the frame of the model's list.
    Kelvar::Math::BoundingBox boundsAsItCame() const;
    Content content() const override;
    Features features() const override;

    /// Whether a section through it has a face: it is shown, a solid and no wireframe.
    bool canBeCapped() const;

    /// The color of that face.
    QColor capColor() const;

    /// Draws its triangles and nothing else, in its place and in the state that is set.
    void drawForCap(const DrawContext& context);

    void draw3d(const DrawContext& context) override;

    /// Reach::UnderPick while the model's list draws it.
    Reach reach() const override;

protected:
    bool upload(OruOglMeshBuffer& buffer) override;
    void drawShape(const OruOglMeshBuffer& buffer) override;
    std::optional<Hit> pickShape(const OruVisPickVolume& volume) const override;
    void placementChanged() override { leaveBatch(); }
    PartView::Shared viewElsewhere() const override;

private:
    friend class SharedSurfaces;
    friend class SurfaceBatch;

    /// In the order of edgeWords.
    enum class Lines
    {
        Off,
        Edges,
        Wireframe
    };
    Lines lines() const;
    bool canShare() const;
    bool isAsItCame() const { return isPlain() && lines() == Lines::Off; }
    void leaveBatch();
    void drawSurface(const OruOglMeshBuffer& buffer) const;
    void drawFaces(const OruOglMeshBuffer& buffer) const;
    void drawInView(const OruOglMeshBuffer& buffer) const;
    void drawRunsInView(const OruOglMeshBuffer& buffer) const;
    void drawEdges() const;
    std::optional<MeshPicker::Hit> pickSurface(const OruVisPickVolume& volume) const;
    std::optional<Hit> pickCapped(const OruVisPickVolume& volume) const;
    bool showsInside(const OruVisPickVolume& volume, std::uint32_t triangle) const;

    std::shared_ptr<const Mesh> mesh_;
    /// As of the last draw; null without one.
    std::shared_ptr<const OruOglTexture> texture_;
    /// As of that revision of this node.
    mutable Lines lines_ = Lines::Off;
    mutable std::uint64_t linesRevision_ = 0;
    /// Null until edges are wanted.
    std::unique_ptr<EdgeLines> edgeLines_;
    /// Where it is drawn with others while it is as it came, and its place there. Null: it draws itself.
    SurfaceBatch* batch_ = nullptr;
    std::uint32_t placeInBatch_ = 0;
};

} // namespace hostkit
