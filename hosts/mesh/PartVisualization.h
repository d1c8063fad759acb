#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/PartView.h"
#include "hosts/mesh/Shape.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class OruOglMeshBuffer;
class OruVisPickVolume;

namespace hostkit {

class BoxTree;
class PartBuffer;
class PartEventHandler;

/// A part of a model in a scene: one use of a shape, drawn, picked by what it shows, and alive under the
/// pointer.
///
/// Resting on it tells its name and size, a click marks it, and if it is `movable` a drag moves it in the
/// view plane. Only reached when it is in view. What it is made of is up to the classes that stand on this
/// one.
class KELVAR_MESH_API PartVisualization : public OruVisualization
{
public:
    /// Told the names of the part that was let go and of what lay under it then; an object without a name
    /// gives an empty one.
    using DropListener = std::function<void(const QString& source, const QString& target)>;

    ~PartVisualization() override;

    /// The color where the shape has none for each vertex; key "color". Its alpha plays no part.
    OruPropertyAdaptor<QColor> color;

    /// How much it hides of what lies behind, 0 to 1; key "opacity". At first the alpha of a material that
    /// blends, whose vertices and texture count besides, and 1 otherwise. Below leastPickedOpacity it cannot
    /// be picked.
    OruPropertyAdaptor<float> opacity;

    /// Shown as chosen; key "marked".
    OruPropertyAdaptor<bool> marked;

    /// A drag moves it instead of turning the view; key "movable".
    OruPropertyAdaptor<bool> movable;

    /// From where the model has the part to where it is shown; key "offset".
    OruPropertyAdaptor<Kelvar::Math::Matrix> offset;

    /// What hides less, as a whole or at a pixel, lets a pick through to what lies behind.
    static constexpr float leastPickedOpacity = 0.05f;

    const Shape& shape() const { return *shape_; }
    unsigned int hitName() const { return hitName_.value(); }

    /// From the frame of the shape to where the model has the part; the identity at first.
    const Kelvar::Math::Matrix& placement() const { return placement_; }
    void setPlacement(const Kelvar::Math::Matrix& placement);

    /// The placement is another than the identity.
    bool isPlaced() const { return placed_; }

    /// From the frame of the shape to that of the part's model: the placement, and what has moved it since.
    const Kelvar::Math::Matrix& place() const;

    /// What the shape is drawn from; never null. Parts of one scene that show the same shape may share it:
    /// set it ahead of the first draw.
    const std::shared_ptr<PartBuffer>& buffer() const;
    void setBuffer(const std::shared_ptr<PartBuffer>& buffer) { buffer_ = buffer; }

    void setDropListener(const DropListener& listener);
    const DropListener& dropListener() const;

    /// Moves the part with a drag by that many more pixels, in the view plane at its depth; the view is that
    /// of the last draw or pick. Nothing is written yet.
    void moveBy(const QPoint& delta);

    /// A drag that still goes on has moved it.
    bool carried() const { return drag_ && drag_->moved != Kelvar::Math::Vector3(); }

    /// Ends a drag: writes the new place as one edit. False: the part is where it was before the drag, and
    /// nothing is written.
    bool endMove(IOruVisPropertyEdit* editor);

    /// What it is made of, and how many of that: for people.
    struct Content
    {
        QString unit;
        int count;
    };
    virtual Content content() const = 0;

    /// What of the shape can be pointed at more closely than a place on a surface: lines with their ends, or
    /// points.
    struct Features
    {
        /// Over the items; null: there are none.
        const BoxTree* tree = nullptr;
        /// The item at each place of the tree; null: the items stand as the tree has them.
        const std::vector<uint32_t>* order = nullptr;
        /// Two positions of the shape for each item; null: each position is an item.
        const std::vector<uint32_t>* ends = nullptr;
        /// Items from this number on do not count.
        std::size_t count = 0;
    };
    virtual Features features() const = 0;

    void draw3d(const DrawContext& context) override;
    void drawTransparent3d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;
    Kelvar::Math::BoundingBox bounds() const override;

protected:
    /// Added to the color of a marked part, so that a mark shows on parts with colors of their own, too.
    static constexpr float markGlow[4] = {0.35f, 0.17f, 0.0f, 1.0f};

    /// What is nearest to the eye in a pick window.
    struct Hit
    {
        float depth;           ///< window depth, 0 near to 1 far
        double centerDistance; ///< pixels between the hit pixel and the center of the pick window
    };

    /// What a draw needs of the properties, gathered in one place: reading them one by one costs more than
    /// the draw of a small mesh.
    struct Look
    {
        std::uint64_t revision = 0;
        /// Its alpha is what the material makes of the opacity.
        QColor color;
        float opacity = 1.0f;
        bool marked = false;
        /// It does not stand in the frame of its shape.
        bool placed = false;
        /// Its place turns triangles round.
        bool mirrored = false;
        /// Something shines through: drawn behind all that is solid.
        bool seeThrough = false;
    };

    /// Named as the shape is. The shape is shared and not null.
    PartVisualization(OruModifiedGroup& modifiedGroup, const QString& type,
                      std::shared_ptr<const Shape> shape);

    /// Fills the empty buffer at the first draw. False: the GL has no room.
    virtual bool upload(OruOglMeshBuffer& buffer) = 0;

    /// Draws the filled buffer; frame of the shape, color, mark and, if something shines through, blending
    /// are set. Leaves all state but the color as it was.
    virtual void drawShape(const OruOglMeshBuffer& buffer) = 0;

    /// Takes the frame of the shape to the window.
    PartView shapeView() const
    {
        return {place() * view_->modelView, view_->projection, view_->viewport, view_->number};
    }

    /// Draws the shape in its place, with no color or state of its own.
    void drawBare(OruOglGeometry& geometry);

    const Look& look() const;

    /// The material blends, and vertices or texture have alpha.
    bool hasAlpha() const { return hasAlpha_; }

    /// It is neither marked, nor moved, nor does anything shine through.
    bool isPlain() const { return !look().marked && !look().seeThrough && !moved_; }

    /// Gives back what the shape is drawn from; the next draw fills it again.
    void clearBuffer();

    /// The place that the model has for it is another from now on.
    virtual void placementChanged() {}

    /// The view of the last draw that somebody else did of it; null: nobody ever does.
    virtual PartView::Shared viewElsewhere() const { return nullptr; }

    /// What of the shape lies in the pick window, in the frame of the shape.
    virtual std::optional<Hit> pickShape(const OruVisPickVolume& volume) const = 0;

private:
    /// A drag, and the part of it that one view has seen. What the pixels of a drag come to hangs on all of
    /// them, not on how many moves they came in and what was drawn in between.
    struct Drag
    {
        PartView::Shared view;
        /// How far the part had been moved before that view, and the pixels since.
        Kelvar::Math::Vector3 before;
        QPointF way;
        /// How far it has moved the part.
        Kelvar::Math::Vector3 moved;
    };

    Kelvar::Math::Vector3 worldWay(const Drag& drag) const;
    const OruOglMeshBuffer* ready(OruOglGeometry& geometry);
    void drawPart(const DrawContext& context);
    void refreshPlace() const;
    const boost::shared_ptr<PartEventHandler>& handler();

    // Scenes have 100,000 parts. What few of them ever need is made when it is needed.
    std::shared_ptr<const Shape> shape_;
    Kelvar::Math::Matrix placement_;
    bool placed_ = false;
    const bool hasAlpha_;
    OruVisHitName hitName_;
    /// Made by the first pick that finds the part.
    boost::shared_ptr<PartEventHandler> handler_;
    /// Null without one.
    std::unique_ptr<const DropListener> dropListener_;
    /// Null until somebody asks for it.
    mutable std::shared_ptr<PartBuffer> buffer_;
    /// As of its revision of this node.
    mutable Look look_;
    /// Where it is, as of look_; null: at its placement.
    mutable std::unique_ptr<Kelvar::Math::Matrix> moved_;
    /// The view of the last draw or pick, shared by all parts that it reached.
    PartView::Shared view_;
    /// Null while no drag goes on.
    std::unique_ptr<Drag> drag_;
};

} // namespace hostkit
