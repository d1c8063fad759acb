#include "hosts/mesh/PartVisualization.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruText.h"
#include "contracts/debug/logger.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/internal/PartEventHandler.h"

#include <boost/make_shared.hpp>

#include <utility>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QColor markColor(255, 140, 0);
/// Added to what the lights give, so that a mark shows on parts with colors of their own, too.
constexpr float markGlow[4] = {0.35f, 0.17f, 0.0f, 1.0f};

} // namespace

PartVisualization::PartVisualization(OruModifiedGroup& modifiedGroup, const QString& type,
                                     std::shared_ptr<const Shape> shape)
    : OruVisualization(modifiedGroup, type)
    , color(*this, QStringLiteral("color"), shape->material.color, QString())
    , marked(*this, QStringLiteral("marked"), false, QString())
    , movable(*this, QStringLiteral("movable"), false, QString())
    , offset(*this, QStringLiteral("offset"), Matrix(), QString())
    , shape_(std::move(shape))
    , view_(noView())
{
    rename(shape_->name);
    setReach(Reach::WhenInView);
}

PartVisualization::~PartVisualization() = default;

/// What a part has seen that was neither drawn nor picked.
const PartVisualization::SharedView& PartVisualization::noView()
{
    static const SharedView none = std::make_shared<const View>();
    return none;
}

/// The view of a pass. Parts that are reached one after the other see the same.
template <typename Context>
const PartVisualization::SharedView& PartVisualization::viewOf(const Context& context)
{
    thread_local SharedView latest = noView();
    if (latest->modelView != context.modelView || latest->projection != context.projection ||
        latest->viewport != context.viewport) {
        latest = std::make_shared<const View>(View{context.modelView, context.projection, context.viewport});
    }
    return latest;
}

void PartVisualization::setPlacement(const Matrix& placement)
{
    placement_ = placement;
    boundsChanged();
}

void PartVisualization::draw3d(const DrawContext& context)
{
    view_ = viewOf(context);
    if (!ready(context.geometry)) {
        return;
    }
    const Look& shown = look();
    if (shown.marked) {
        glPushAttrib(GL_LIGHTING_BIT);
        glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, markGlow);
    }
    if (shown.placed) {
        glPushMatrix();
        glMultMatrixf(place().data());
    }
    // Not put back: some drivers then miss that the tracked material has to follow the current color.
    glColor(shown.color);
    drawShape(*buffer_);
    if (shown.placed) {
        glPopMatrix();
    }
    if (shown.marked) {
        glPopAttrib();
    }
}

OruVisHitRecordList PartVisualization::select3d(const SelectContext& context)
{
    view_ = viewOf(context);
    if (carried()) {
        // It hangs on the pointer; what it is dropped on lies below.
        return {};
    }
    SelectContext own(context.geometry, context.cache, context.resource, context.viewport, context.text,
                      context.format);
    own.modelView = place() * context.modelView;
    own.projection = context.projection;
    own.pickPoint = context.pickPoint;
    own.pickSize = context.pickSize;
    OruVisHitRecordList hits;
    if (const auto hit = pickShape(OruVisPickVolume(own))) {
        OruVisHitRecord record;
        record.distance = hit->depth;
        record.name = hitName();
        hits.add(record, OruVisHitRecordList::Rank::Scene3d, hit->centerDistance, handler(), this);
    }
    return hits;
}

BoundingBox PartVisualization::bounds() const
{
    BoundingBox box = shape_->bounds;
    if (look().placed) {
        box *= place();
    }
    return box;
}

/// False, and told once: the GL has no room for the shape.
bool PartVisualization::ready(OruOglGeometry& geometry)
{
    if (buffer_ && buffer_->belongsTo(geometry)) {
        return !buffer_->empty();
    }
    buffer_ = geometry.makeMesh();
    const bool done = upload(*buffer_);
    oru::debug_logger::debuglogger().ensure(done, "no room for the mesh " + name().toStdString());
    return done;
}

const PartVisualization::Look& PartVisualization::look() const
{
    if (look_.revision != revision()) {
        look_.revision = revision();
        look_.marked = marked.value();
        look_.color = look_.marked ? markColor : color.value();
        refreshPlace();
        look_.placed = (moved_ ? *moved_ : placement_) != Matrix();
    }
    return look_;
}

void PartVisualization::refreshPlace() const
{
    const Matrix& way = offset.value();
    if (!carried() && way == Matrix()) {
        moved_.reset();
        return;
    }
    if (!moved_) {
        moved_ = std::make_unique<Matrix>();
    }
    *moved_ = placement_ * way * Matrix::translate(drag_ ? drag_->moved : Vector3());
}

const Matrix& PartVisualization::place() const
{
    look();
    return moved_ ? *moved_ : placement_;
}

const boost::shared_ptr<PartEventHandler>& PartVisualization::handler()
{
    if (!handler_) {
        handler_ = boost::make_shared<PartEventHandler>(*this);
        hitProperties.insert(hitName_.value(), OruVisHitProperty(this, {}));
    }
    return handler_;
}

/// What the pixels of a drag come to, at the depth of the part's center. Reckoned from that center, since far
/// from the origin a pixel is less than floats can tell apart.
Vector3 PartVisualization::worldWay(const Drag& drag) const
{
    const View& view = *drag.view;
    const Matrix fromCenter =
        Matrix::translate((placement_ * offset.value()).transform(shape_->bounds.center())) * view.modelView;
    const float depth = Vector3().project(fromCenter, view.projection, view.viewport.data()).z;
    const auto worldOf = [&](const QPointF& pixel) {
        const Vector3 window(static_cast<float>(pixel.x()), static_cast<float>(pixel.y()), depth);
        return window.unProject(fromCenter, view.projection, view.viewport.data());
    };
    return worldOf(drag.way) - worldOf(QPointF());
}

void PartVisualization::moveBy(const QPoint& delta)
{
    const bool turned =
        drag_ && (drag_->view->modelView != view_->modelView || drag_->view->viewport != view_->viewport);
    if (!drag_ || turned) {
        const Vector3 moved = drag_ ? drag_->moved : Vector3();
        drag_ = std::make_unique<Drag>(Drag{view_, moved, QPointF(), moved});
    }
    drag_->way += delta;
    drag_->moved = drag_->before + worldWay(*drag_);
    boundsChanged();
}

bool PartVisualization::endMove(IOruVisPropertyEdit* editor)
{
    const bool moved = carried();
    const std::unique_ptr<Drag> drag = std::move(drag_);
    if (!moved) {
        return false;
    }
    boundsChanged();
    const QString text = oru::toString(offset.value() * Matrix::translate(drag->moved));
    editor->editValue(dynamic_cast<OruVisList*>(parent()), this, offset.name(), text);
    return true;
}

} // namespace hostkit
