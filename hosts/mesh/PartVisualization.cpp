#include "hosts/mesh/PartVisualization.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"
#include "contracts/debug/logger.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglTransparency.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/internal/PartBlending.h"
#include "hosts/mesh/internal/PartBuffer.h"
#include "hosts/mesh/internal/PartEventHandler.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QColor markColor(255, 140, 0);

/// By hand: when the attribute stack puts materials back, some drivers miss it until the next change of them.
class MarkGlow
{
public:
    explicit MarkGlow(const float* glow)
    {
        for (std::size_t i = 0; i < 2; ++i) {
            glGetMaterialfv(faces[i], GL_EMISSION, before_[i]);
        }
        glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, glow);
    }
    ~MarkGlow()
    {
        for (std::size_t i = 0; i < 2; ++i) {
            glMaterialfv(faces[i], GL_EMISSION, before_[i]);
        }
    }
    MarkGlow(const MarkGlow&) = delete;
    MarkGlow& operator=(const MarkGlow&) = delete;

private:
    static constexpr GLenum faces[2] = {GL_FRONT, GL_BACK};

    float before_[2][4] = {};
};

constexpr OruPropertyKind shares = OruPropertyKind::of<float>().from(0.0).to(1.0);

float firstOpacity(const Material& material)
{
    return material.alpha == Material::Alpha::Blend ? static_cast<float>(material.color.alphaF()) : 1.0f;
}

bool hasAlphaOf(const Shape& shape)
{
    const auto isTransparent = [](uint32_t color) {
        return reinterpret_cast<const uint8_t*>(&color)[3] < 255;
    };
    const Material& material = shape.material;
    return material.alpha == Material::Alpha::Blend &&
           ((material.texture && material.texture->image.hasAlphaChannel()) ||
            std::any_of(shape.colors.begin(), shape.colors.end(), isTransparent));
}

/// Under a mirror, what was counter-clockwise is clockwise.
class FrontFaces
{
public:
    explicit FrontFaces(bool mirrored)
        : mirrored_(mirrored)
    {
        if (mirrored_) {
            glFrontFace(GL_CW);
        }
    }
    ~FrontFaces()
    {
        if (mirrored_) {
            glFrontFace(GL_CCW);
        }
    }
    FrontFaces(const FrontFaces&) = delete;
    FrontFaces& operator=(const FrontFaces&) = delete;

private:
    bool mirrored_;
};

} // namespace

PartVisualization::PartVisualization(OruModifiedGroup& modifiedGroup, const QString& type,
                                     std::shared_ptr<const Shape> shape)
    : OruVisualization(modifiedGroup, type)
    , color(*this, QStringLiteral("color"), shape->material.color, QString())
    , opacity(*this, QStringLiteral("opacity"), firstOpacity(shape->material), QString())
    , marked(*this, QStringLiteral("marked"), false, QString())
    , movable(*this, QStringLiteral("movable"), false, QString())
    , offset(*this, QStringLiteral("offset"), Matrix(), QString())
    , shape_(std::move(shape))
    , hasAlpha_(hasAlphaOf(*shape_))
    , view_(PartView::none())
{
    rename(shape_->name);
    opacity.setKind(shares);
    setReach(Reach::WhenInView);
}

PartVisualization::~PartVisualization() = default;

void PartVisualization::setPlacement(const Matrix& placement)
{
    placement_ = placement;
    placed_ = placement != Matrix();
    placementChanged();
    boundsChanged();
}

const std::shared_ptr<PartBuffer>& PartVisualization::buffer() const
{
    if (!buffer_) {
        buffer_ = std::make_shared<PartBuffer>();
    }
    return buffer_;
}

void PartVisualization::clearBuffer()
{
    if (buffer_) {
        buffer_->mesh.reset();
    }
}

void PartVisualization::setDropListener(const DropListener& listener)
{
    dropListener_ = listener ? std::make_unique<const DropListener>(listener) : nullptr;
}

const PartVisualization::DropListener& PartVisualization::dropListener() const
{
    static const DropListener none;
    return dropListener_ ? *dropListener_ : none;
}

void PartVisualization::draw3d(const DrawContext& context)
{
    view_ = PartView::of(context);
    if (!look().seeThrough) {
        drawPart(context);
    } else if (look().opacity > 0.0f && !context.defer(*this)) {
        const OruOglTransparency state;
        drawPart(context);
    }
}

void PartVisualization::drawTransparent3d(const DrawContext& context)
{
    drawPart(context);
}

void PartVisualization::drawPart(const DrawContext& context)
{
    const OruOglMeshBuffer* const buffer = ready(context.geometry);
    if (!buffer) {
        return;
    }
    const Look& shown = look();
    const FrontFaces faces(shown.mirrored);
    std::optional<PartBlending> blending;
    if (shown.seeThrough) {
        blending.emplace(*shape_, shown.opacity, context.cache);
    }
    std::optional<MarkGlow> glow;
    if (shown.marked) {
        glow.emplace(markGlow);
    }
    if (shown.placed) {
        glPushMatrix();
        glMultMatrixf(place().data());
    }
    // Not put back: some drivers then miss that the tracked material has to follow the current color.
    glColor(shown.color);
    drawShape(*buffer);
    if (shown.placed) {
        glPopMatrix();
    }
}

void PartVisualization::drawBare(OruOglGeometry& geometry)
{
    if (const OruOglMeshBuffer* const buffer = ready(geometry)) {
        glPushMatrix();
        glMultMatrixf(place().data());
        buffer->draw();
        glPopMatrix();
    }
}

OruVisHitRecordList PartVisualization::select3d(const SelectContext& context)
{
    view_ = PartView::of(context);
    if (carried() || look().opacity < leastPickedOpacity) {
        // What is dragged hangs on the pointer; what it is dropped on lies below.
        return {};
    }
    SelectContext own(context.geometry, context.cache, context.resource, context.viewport, context.text,
                      context.format);
    own.modelView = place() * context.modelView;
    own.projection = context.projection;
    own.pickPoint = context.pickPoint;
    own.pickSize = context.pickSize;
    OruVisPickVolume volume(own);
    for (const OruVisPickVolume::Cut& cut : ModelList::cutsThrough(*this)) {
        volume.cutBy(cut);
    }
    OruVisHitRecordList hits;
    if (const auto hit = pickShape(volume)) {
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

/// Null, and told once: the GL has no room for the shape.
const OruOglMeshBuffer* PartVisualization::ready(OruOglGeometry& geometry)
{
    std::unique_ptr<OruOglMeshBuffer>& mesh = buffer()->mesh;
    if (!mesh || !mesh->belongsTo(geometry)) {
        mesh = geometry.makeMesh();
        const bool done = upload(*mesh);
        oru::debug_logger::debuglogger().ensure(done, "no room for the part " + name().toStdString());
    }
    return mesh->empty() ? nullptr : mesh.get();
}

const PartVisualization::Look& PartVisualization::look() const
{
    if (look_.revision != revision()) {
        look_.revision = revision();
        look_.marked = marked.value();
        look_.opacity = std::max(0.0f, std::min(1.0f, opacity.value()));
        look_.seeThrough = look_.opacity < 1.0f || hasAlpha_;
        look_.color = look_.marked ? markColor : color.value();
        const bool blends = shape_->material.alpha == Material::Alpha::Blend;
        look_.color.setAlphaF(blends ? look_.opacity : 1.0f);
        refreshPlace();
        look_.placed = moved_ ? *moved_ != Matrix() : placed_;
        look_.mirrored = look_.placed && DoubleMatrix(moved_ ? *moved_ : placement_).determinant3x3() < 0.0;
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
    const PartView& view = *drag.view;
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
    const PartView::Shared elsewhere = viewElsewhere();
    if (elsewhere && elsewhere->number > view_->number) {
        view_ = elsewhere;
    }
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
