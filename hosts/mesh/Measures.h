#pragma once

#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/Origin.h"
#include "hosts/mesh/PartView.h"
#include "hosts/mesh/Point.h"
#include "hosts/mesh/SnapFinder.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QPointF>
#include <QString>

#include <memory>
#include <optional>

namespace hostkit {

class MeasurePainter;

/// What was measured in a scene: a list of DistanceMeasure and BoxMeasure, which lies beside the models. A
/// tree that is loaded brings its measures into the list that is there.
class KELVAR_MESH_API Measures : public OruVisList
{
public:
    static const QString typeString;

    /// What the list of a scene is called.
    static const QString usualName;

    /// An empty list of that name.
    explicit Measures(OruModifiedGroup& modifiedGroup);
    ~Measures() override;

    /// A name for another measure: `kind`, with a number behind it where that is taken.
    QString freeName(const QString& kind) const;

    /// A table for other programs: a line of titles and one for each measure, tabs between the cells, numbers
    /// with a full stop. A box has its diagonal as length. Empty without measures.
    QString text() const;

    /// What a measure that is just being made shows; no part of the tree.
    struct Pointer
    {
        /// Where the pointer has found something, in the coordinates of measures, and what.
        Point at;
        SnapFinder::Kind kind;
        /// Where the measure begins; nothing: it does not yet.
        std::optional<Point> from;
        QString unit;
    };

    /// Shown from the next frame on; nothing: no more.
    void setPointer(const std::optional<Pointer>& pointer) { pointer_ = pointer; }
    const std::optional<Pointer>& pointer() const { return pointer_; }

    void update(const DrawContext& context) override;
    void draw3d(const DrawContext& context) override;
    void draw2d(const DrawContext& context) override;
    int drawOrder() const override;

protected:
    OruProperties* makeChild(const QString& name, const QString& type) override;

private:
    QPointF pixelOf(const Point& point) const;
    void drawPointer(const DrawContext& context);

    std::optional<Pointer> pointer_;
    /// Never null.
    std::unique_ptr<MeasurePainter> painter_;
    /// Of the last 3D pass.
    PartView::Shared view_;
    /// As of the last update().
    Origin origin_ = {};
};

} // namespace hostkit
