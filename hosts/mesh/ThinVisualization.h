#pragma once

#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/mesh/PickHit.h"
#include "hosts/mesh/Primitive.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace hostkit {

/// A part that has no surface, lines or points: drawn some pixels wide however far away it is. Lit where its
/// shape has normals; without them it shows its colors as they are.
class KELVAR_MESH_API ThinVisualization : public PartVisualization
{
public:
    /// How wide lines and how large points are drawn, in pixels of the viewport; key "lineWidth" or
    /// "pointSize".
    OruPropertyAdaptor<float> width;

    ~ThinVisualization() override;

    /// The width as drawn: whole pixels, at least 1, and no more than the GL can draw, as of the first draw.
    int drawnWidth() const;

    Features features() const override;
    double rim() const override;

protected:
    /// What the two kinds differ in.
    struct Kind
    {
        Primitive primitive;
        QString type;
        QString widthKey;
        float width;
    };

    /// The shape is shared and not null. `tree` is over its items and `indices` makes them of its positions,
    /// null: each is an item. Both are the shape's.
    ThinVisualization(OruModifiedGroup& modifiedGroup, const Kind& kind, std::shared_ptr<const Shape> shape,
                      const BoxTree& tree, const std::vector<uint32_t>* indices);

    bool upload(OruOglMeshBuffer& buffer) override;
    void drawShape(const OruOglMeshBuffer& buffer) override;

    /// A hit of the shape's hierarchy as one of the part.
    static std::optional<Hit> inFrontOfSurfaces(const std::optional<PickHit>& hit);

private:
    Primitive primitive_;
    const BoxTree& tree_;
    const std::vector<uint32_t>* indices_;
    /// The GL's.
    float widest_;
};

} // namespace hostkit
