#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class OruOglMeshBuffer;

namespace hostkit {

class MeshEventHandler;

/// A part of a model in a scene: drawn lit, picked by its triangles, and alive under the pointer.
///
/// Resting on it tells its name and size, a click marks it, and if it is `movable` a drag moves it in the
/// view plane. It is drawn from both sides unless it is closed. Only reached when it is in view.
class KELVAR_MESH_API MeshVisualization : public OruVisualization
{
public:
    static const QString typeString;

    /// Told the names of the part that was let go and of what lay under it then; an object without a name
    /// gives an empty one.
    using DropListener = std::function<void(const QString& source, const QString& target)>;

    /// Named as the mesh is. The mesh is shared and not null; its GL buffer is made at the first draw.
    MeshVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const Mesh> mesh);
    ~MeshVisualization() override;

    /// The color where the mesh has none for each vertex; key "color".
    OruPropertyAdaptor<QColor> color;

    /// Shown as chosen; key "marked".
    OruPropertyAdaptor<bool> marked;

    /// A drag moves it instead of turning the view; key "movable".
    OruPropertyAdaptor<bool> movable;

    /// From where the model has the part to where it is shown; key "offset".
    OruPropertyAdaptor<Kelvar::Math::Matrix> offset;

    const Mesh& mesh() const { return *mesh_; }
    unsigned int hitName() const { return hitName_.value(); }

    void setDropListener(const DropListener& listener) { dropListener_ = listener; }
    const DropListener& dropListener() const { return dropListener_; }

    /// Moves the part with a drag by that many more pixels, in the view plane at its depth; the view is that
    /// of the last draw or pick. Nothing is written yet.
    void moveBy(const QPoint& delta);

    /// A drag that still goes on has moved it.
    bool carried() const { return dragged_ != Kelvar::Math::Vector3(); }

    /// Ends a drag: writes the new place as one edit. False: the part is where it was before the drag, and
    /// nothing is written.
    bool endMove(IOruVisPropertyEdit* editor);

    void draw3d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;
    Kelvar::Math::BoundingBox bounds() const override;

private:
    /// What takes window pixels to the frame of the scene, as of the last draw or pick.
    struct View
    {
        Kelvar::Math::Matrix modelView;
        Kelvar::Math::Matrix projection;
        OruOglViewport viewport;
    };

    /// The part of a drag that one view has seen. What the pixels of a drag come to hangs on all of them, not
    /// on how many moves they came in and what was drawn in between.
    struct Drag
    {
        View view;
        /// How far the part had been moved before, and the pixels since.
        Kelvar::Math::Vector3 before;
        QPointF way;
    };

    /// What a draw needs of the properties, gathered in one place: reading them one by one costs more than
    /// the draw of a small mesh.
    struct Look
    {
        std::uint64_t revision = 0;
        bool marked = false;
        bool moved = false;
        QColor color;
        Kelvar::Math::Matrix place;
    };

    Kelvar::Math::Vector3 worldWay(const Drag& drag) const;
    bool upload(OruOglGeometry& geometry);
    void drawTriangles() const;
    void drawRunsInView() const;
    const Look& look() const;
    const Kelvar::Math::Matrix& place() const { return look().place; }

    std::shared_ptr<const Mesh> mesh_;
    OruVisHitName hitName_;
    boost::shared_ptr<MeshEventHandler> handler_;
    DropListener dropListener_;
    std::unique_ptr<OruOglMeshBuffer> buffer_;
    const bool closed_;
    /// As of its revision of this node.
    mutable Look look_;
    View view_;
    /// Nothing while no drag goes on.
    std::optional<Drag> drag_;
    /// How far it has moved the part.
    Kelvar::Math::Vector3 dragged_;
};

} // namespace hostkit
