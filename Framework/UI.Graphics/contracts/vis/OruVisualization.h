#pragma once

#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruModifiedWatcher.h"
#include "contracts/core/OruProperties.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/NumberFormat.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <QHash>
#include <QPoint>
#include <QSize>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <limits>
#include <memory>

class IOruVisPropertyEdit;
class OruOglCache;
class OruOglGeometry;
class OruOglText;
class OruResource;
class OruVisDeferred;
class OruVisReached;

/// A node of the property tree that can be drawn and picked.
///
/// Objects live in the frame of the model; the context's modelView and projection take that frame to the
/// window. In the 2D passes the projection is the identity and modelView maps device pixels of the viewport,
/// origin lower left, y up, pixel centers at whole numbers. A pass finds the matrices of its context loaded
/// in OpenGL and leaves matrices and attributes as it found them; the current color is free. (To pop it does
/// harm: a lit material that follows the color may then miss the next one.) All operations run with the GL
/// context current. This class itself draws nothing and has no extent; it also stands in for a type that
/// nobody knows.
class KELVAR_VIS_API OruVisualization : public OruProperties
{
public:
    /// What the passes that draw get. Everything referred to belongs to the caller and outlives the pass.
    class KELVAR_VIS_API DrawContext
    {
    public:
        DrawContext(OruOglGeometry& geometryStore, OruOglCache& glCache, const OruResource& resources,
                    const OruOglViewport& pixels, OruOglText& textRenderer,
                    boost::shared_ptr<IOruVisPropertyEdit> propertyEditor,
                    const Kelvar::Math::NumberFormat& numberFormat);
        DrawContext(const DrawContext&) = default;
        DrawContext& operator=(const DrawContext&) = delete;
        virtual ~DrawContext();

        OruOglGeometry& geometry;
        OruOglCache& cache;
        const OruResource& resource;
        OruOglText& text;
        OruOglViewport viewport;
        boost::shared_ptr<IOruVisPropertyEdit> editor;
        Kelvar::Math::NumberFormat format;
        /// Both are the identity until the caller writes them.
        Kelvar::Math::Matrix modelView;
        Kelvar::Math::Matrix projection;

        /// For draw3d: asks for drawTransparent3d() of `object`, later in this pass. False: nobody will call
        /// it, since no list is at its 3D pass with this context, or that is already at the transparent
        /// objects; the object may draw at once then.
        bool defer(OruVisualization& object) const;

        /// Makes each list that draws in 3D with this context, a copy for that, call what is deferred in it
        /// before its own draw3d() ends. For an object that draws others in a state of its own, such as clip
        /// planes or another viewport, which is gone when the outermost list is done.
        void keepDeferredInside() { deferred_.reset(); }

    private:
        friend class OruVisDeferred;

        /// Of the list that is at its 3D pass; dead or empty otherwise.
        mutable std::weak_ptr<OruVisDeferred> deferred_;
    };

    /// What the passes that pick get. Everything referred to belongs to the caller and outlives the pass.
    class KELVAR_VIS_API SelectContext
    {
    public:
        SelectContext(OruOglGeometry& geometryStore, OruOglCache& glCache, const OruResource& resources,
                      const OruOglViewport& pixels, OruOglText& textRenderer,
                      const Kelvar::Math::NumberFormat& numberFormat);
        SelectContext(const SelectContext&) = delete;
        SelectContext& operator=(const SelectContext&) = delete;
        virtual ~SelectContext();

        OruOglGeometry& geometry;
        OruOglCache& cache;
        const OruResource& resource;
        OruOglText& text;
        OruOglViewport viewport;
        Kelvar::Math::NumberFormat format;
        /// Both are the identity until the caller writes them.
        Kelvar::Math::Matrix modelView;
        Kelvar::Math::Matrix projection;
        /// The pixel under the pointer, in window coordinates.
        QPoint pickPoint;
        /// Width and height of the pick window about it in pixels; anything below 1 picks nothing.
        QSize pickSize;
    };

    /// When a list reaches an entry with its draw and select passes.
    enum class Reach
    {
        /// In every pass.
        Always,
        /// Only when the entry's bounds meet the view, or the pick window under a pick. For objects that draw
        /// in 3D, opaque or deferred, and keep what they may draw in 2D within their bounds as seen on the
        /// screen. Such entries are drawn nearest first. While its bounds are undefined an entry is reached
        /// always.
        WhenInView,
        /// Only by select3d(), when the entry's bounds meet the pick window. For objects that someone else
        /// draws and that have nothing to prepare: no update(), no resize(), no pass that draws, none in 2D.
        /// While its bounds are undefined such an entry is not reached at all.
        UnderPick
    };

    /// A node on `modifiedGroup` whose type and first name are `typeText`.
    OruVisualization(OruModifiedGroup& modifiedGroup, const QString& typeText);
    OruVisualization(const OruVisualization&) = delete;
    OruVisualization& operator=(const OruVisualization&) = delete;
    ~OruVisualization() override;

    /// Whether the passes draw and pick it and its bounds count; key "visible". It is updated and resized all
    /// the same.
    OruPropertyAdaptor<bool> visible;

    /// What the hit names of this object mean.
    QHash<unsigned int, OruVisHitProperty> hitProperties;

    /// As setReach() wants it. It may change only together with a change of the node or of one below it,
    /// since lists remember it.
    virtual Reach reach() const;

private:
    virtual void reservedFirst();
    virtual void reservedSecond();

public:
    /// Something in the node or below it may have changed: time to prepare what the passes need.
    virtual void update(const DrawContext& context);

    /// The viewport may have another size. The matrices of the context are not those of a frame.
    virtual void resize(const DrawContext& context);

    virtual void draw3d(const DrawContext& context);
    virtual void draw2d(const DrawContext& context);

    /// What lies in the pick window (OruVisPickVolume), as it is drawn.
    virtual OruVisHitRecordList select3d(const SelectContext& context);
    virtual OruVisHitRecordList select2d(const SelectContext& context);

    /// Extent in the frame of the model; undefined for what has none. It may change only together with a
    /// change of the node or of one below it (boundsChanged()), since lists remember it.
    virtual Kelvar::Math::BoundingBox bounds() const;

    /// Reports changes to the node and below it since its last reset().
    virtual const OruModifiedWatcher& watcher() const;

    /// Place in the stack of 2D objects of a list: larger is drawn later, over the others. Objects of one
    /// order are drawn in list order.
    virtual int drawOrder() const;

    /// Draws what lets something shine through, if draw3d() has asked for it by DrawContext::defer(): once
    /// all solid objects of the frame are drawn, those of other lists included, and the transparent ones that
    /// lie farther away by the centers of their bounds. The state is that of the 3D pass and of an
    /// OruOglTransparency. The context holds the matrices of the one that was asked, loaded in OpenGL.
    virtual void drawTransparent3d(const DrawContext& context);

    /// How many pixels beyond its bounds as seen on the screen it may cover in 3D: half the width of a wide
    /// line. Changes as bounds() may.
    virtual double rim() const;

protected:
    /// Takes effect with the list's next pass.
    void setReach(Reach reach);

    /// Notes that bounds() gives another box from now on.
    void boundsChanged();

private:
    friend class OruVisReached;

    OruModifiedWatcher watcher_;
    Reach reach_ = Reach::Always;
    /// Where the list that reaches it keeps it.
    std::uint32_t placeInList_ = std::numeric_limits<std::uint32_t>::max();
};
