#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <boost/shared_ptr.hpp>

#include <array>

namespace hostkit {

class SectionHandle;

/// A plane across one axis of the scene that cuts away what lies on one side of it.
///
/// While it is active it can show as a frame round the models, with a handle at a corner: a drag of the
/// handle moves the plane along its axis, as one edit. It has no bounds: the view is fitted to what is shown.
class KELVAR_MESH_API SectionPlane : public OruVisualization
{
public:
    static const QString typeString;

    /// Named after its axis: 0 is x, 1 is y, 2 is z.
    SectionPlane(OruModifiedGroup& modifiedGroup, int axis);
    ~SectionPlane() override;

    /// Whether it cuts; key "active", false at first.
    OruPropertyAdaptor<bool> active;

    /// Where it stands on its axis, in world units; key "position".
    OruPropertyAdaptor<double> position;

    /// It cuts away what lies below its position instead of what lies above; key "flipped".
    OruPropertyAdaptor<bool> flipped;

    /// It shows its frame and its handle; key "framed", true at first.
    OruPropertyAdaptor<bool> framed;

    int axis() const { return axis_; }

    /// Its place, that of a drag that still goes on included.
    double place() const { return position.value() + dragged_; }

    /// The half space that is kept, in world coordinates: a x + b y + c z + d >= 0.
    std::array<double, 4> kept() const;

    /// The corners of the part of the plane that lies in a box, which is defined; each behind the other.
    std::array<Kelvar::Math::Vector3, 4> across(const Kelvar::Math::BoundingBox& box) const;

    /// Moves the plane with a drag of the handle by that many more pixels, in the view of the last draw.
    /// Nothing is written yet.
    void moveBy(const QPoint& delta);

    /// Ends a drag: writes the new place as one edit. False: it is where it was.
    bool endMove(IOruVisPropertyEdit* editor);

    void draw3d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;

private:
    /// The view of the last draw.
    struct View
    {
        Kelvar::Math::Matrix modelView;
        Kelvar::Math::Matrix projection;
        OruOglViewport viewport;
    };

    bool shown() const;
    Kelvar::Math::BoundingBox frame() const;
    Kelvar::Math::Vector3 handle() const;
    Kelvar::Math::Vector3 withinDepth(const Kelvar::Math::Vector3& point) const;

    int axis_;
    double dragged_ = 0.0;
    View view_;
    OruVisHitName hitName_;
    boost::shared_ptr<SectionHandle> handler_;
};

} // namespace hostkit
