#pragma once

#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisualization.h"

#include <boost/shared_ptr.hpp>

#include <optional>

/// A bar of a chart: one unit wide, it stands on the XY plane and grows along Z.
///
/// Resting on it tells its height, a drag upwards or downwards changes it, a click marks it.
class Bar : public OruVisualization
{
public:
    static const QString typeString;

    /// A bar of height 1 about (x, 0).
    Bar(OruModifiedGroup& modifiedGroup, const QString& barName, float x, const QColor& barColor);
    ~Bar() override;

    /// In units of the scene, above 0; key "height".
    OruPropertyAdaptor<double> height;

    /// Key "color".
    OruPropertyAdaptor<QColor> color;

    /// Shown in white; key "marked".
    OruPropertyAdaptor<bool> marked;

    void draw3d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;
    Kelvar::Math::BoundingBox bounds() const override;

private:
    class Handler;

    double shownHeight() const { return dragged_ ? *dragged_ : height.value(); }
    void drag(int pixels);
    bool endDrag(IOruVisPropertyEdit* editor);

    const float x_;
    OruVisHitName hitName_;
    boost::shared_ptr<Handler> handler_;
    /// The height of a drag that still goes on.
    std::optional<double> dragged_;
    /// Pixels that a unit of height takes up on the screen, upwards, as of the last pick.
    float pixelsPerUnit_ = 0.0f;
};
