#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/PartView.h"
#include "hosts/mesh/Point.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QPointF>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

namespace hostkit {

class MeasurePainter;
struct PointProperty;

/// Something that was measured between two points: thin lines over the scene, dim where they are hidden, and
/// a label that follows the view. It cannot be picked.
///
/// The points are coordinates as the models beside its list tell them (PartPlace::originBeside), and stay
/// where they are when parts move.
class KELVAR_MESH_API Measure : public OruVisualization
{
public:
    ~Measure() override;

    /// Of the lines; key "color".
    OruPropertyAdaptor<QColor> color;

    /// Height of a small x of the label in pixels, and what widths go by; key "textSize".
    OruPropertyAdaptor<int> textSize;

    Point first() const;
    Point second() const;
    void setPoints(const Point& first, const Point& second);

    /// Of the points; empty: not known.
    QString unit() const;
    void setUnit(const QString& unit);

    /// What was measured, as a word for people.
    virtual QString kindName() const = 0;

    /// The sizes as the label has them, in one line or two.
    virtual QString text(const Kelvar::Math::NumberFormat& format) const = 0;

    void draw3d(const DrawContext& context) override;
    void drawTransparent3d(const DrawContext& context) override;
    void draw2d(const DrawContext& context) override;
    Kelvar::Math::BoundingBox bounds() const override;

protected:
    using Segments = std::vector<std::pair<Point, Point>>;

    /// The points have the keys `firstKey` and `secondKey` with X, Y and Z behind it: "fromX".
    Measure(OruModifiedGroup& modifiedGroup, const QString& type, const QString& firstKey,
            const QString& secondKey);

    /// In the frame of the points.
    virtual Segments segments() const = 0;

    /// Of the lines, as a share of their usual width.
    virtual float lineWidth() const = 0;

    /// Draws the label; `ends` are those of the segments on the screen, two each.
    virtual void drawFlat(MeasurePainter& painter, const std::vector<QPointF>& ends,
                          const QString& label) const = 0;

private:
    Kelvar::Math::Vector3 inScene(const Point& point) const;
    std::vector<Kelvar::Math::Vector3> endsInScene() const;

    /// Never null.
    std::unique_ptr<PointProperty> first_;
    std::unique_ptr<PointProperty> second_;
    std::unique_ptr<MeasurePainter> painter_;
    /// Of the last 3D pass.
    PartView::Shared view_;
};

} // namespace hostkit
