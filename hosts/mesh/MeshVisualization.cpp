#include "hosts/mesh/MeshVisualization.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruText.h"
#include "contracts/debug/logger.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/internal/MeshEventHandler.h"

#include <boost/make_shared.hpp>

#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QColor markColor(255, 140, 0);
/// Added to what the lights give, so that a mark shows on parts with colors of their own, too.
constexpr float markGlow[4] = {0.35f, 0.17f, 0.0f, 1.0f};

/// The pass culls back faces and lights both sides. Of a closed mesh the inner side never shows, so it is not
/// lit; an open mesh shows both sides.
class ShownSides
{
public:
    explicit ShownSides(bool closed)
        : closed_(closed)
    {
        if (closed_) {
            glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);
        } else {
            glDisable(GL_CULL_FACE);
        }
    }
    ~ShownSides()
    {
        if (closed_) {
            glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
        } else {
            glEnable(GL_CULL_FACE);
        }
    }
    ShownSides(const ShownSides&) = delete;
    ShownSides& operator=(const ShownSides&) = delete;

private:
    bool closed_;
};

/// A mesh with as many is worth asking which runs of it are in view.
constexpr std::size_t leastIndicesToCull = 3 * 16 * Mesh::runLength;

} // namespace

const QString MeshVisualization::typeString = QStringLiteral("hostkit.mesh");

MeshVisualization::MeshVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const Mesh> mesh)
    : OruVisualization(modifiedGroup, typeString)
    , color(*this, QStringLiteral("color"), mesh->color, QString())
    , marked(*this, QStringLiteral("marked"), false, QString())
    , movable(*this, QStringLiteral("movable"), false, QString())
    , offset(*this, QStringLiteral("offset"), Matrix(), QString())
    , mesh_(std::move(mesh))
    , handler_(boost::make_shared<MeshEventHandler>(*this))
    , closed_(mesh_->closed)
{
    rename(mesh_->name);
    setReach(Reach::WhenInView);
    hitProperties.insert(hitName_.value(), OruVisHitProperty(this, {}));
}

MeshVisualization::~MeshVisualization() = default;

void MeshVisualization::draw3d(const DrawContext& context)
{
    view_ = View{context.modelView, context.projection, context.viewport};
    if (!upload(context.geometry)) {
        return;
    }
    const Look& shown = look();
    if (shown.marked) {
        glPushAttrib(GL_LIGHTING_BIT);
        glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, markGlow);
    }
    if (shown.moved) {
        glPushMatrix();
        glMultMatrixf(shown.place.data());
    }
    // Not put back: some drivers then miss that the tracked material has to follow the current color.
    glColor(shown.color);
    {
        const ShownSides sides(closed_);
        drawTriangles();
    }
    if (shown.moved) {
        glPopMatrix();
    }
    if (shown.marked) {
        glPopAttrib();
    }
}

OruVisHitRecordList MeshVisualization::select3d(const SelectContext& context)
{
    view_ = View{context.modelView, context.projection, context.viewport};
    if (dragged_ != Vector3()) {
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
    if (const auto hit = mesh_->hierarchy.pick(OruVisPickVolume(own))) {
        OruVisHitRecord record;
        record.distance = hit->depth;
        record.name = hitName();
        hits.add(record, OruVisHitRecordList::Rank::Scene3d, hit->centerDistance, handler_, this);
    }
    return hits;
}

BoundingBox MeshVisualization::bounds() const
{
    BoundingBox box = mesh_->bounds;
    if (look().moved) {
        box *= place();
    }
    return box;
}

/// False, and told once: the GL has no room for the mesh.
bool MeshVisualization::upload(OruOglGeometry& geometry)
{
    if (buffer_ && buffer_->belongsTo(geometry)) {
        return !buffer_->empty();
    }
    buffer_ = geometry.makeMesh();
    OruOglMeshArrays arrays;
    arrays.positions = &mesh_->positions.front().x;
    arrays.normals = &mesh_->normals.front().x;
    arrays.colors =
        mesh_->colors.empty() ? nullptr : reinterpret_cast<const std::uint8_t*>(mesh_->colors.data());
    arrays.vertexCount = mesh_->positions.size();
    arrays.indices = mesh_->indices.data();
    arrays.indexCount = mesh_->indices.size();
    const bool done = buffer_->upload(arrays);
    oru::debug_logger::debuglogger().ensure(done, "no room for the mesh " + name().toStdString());
    return done;
}

/// A large mesh draws what is in view of it; for a small one asking costs more than it saves.
void MeshVisualization::drawTriangles() const
{
    if (buffer_->indexCount() >= leastIndicesToCull) {
        drawRunsInView();
    } else {
        buffer_->draw();
    }
}

void MeshVisualization::drawRunsInView() const
{
    const auto volume = OruVisViewVolume::ofView(place() * view_.modelView, view_.projection, view_.viewport);
    constexpr std::size_t corners = 3 * Mesh::runLength;
    const std::vector<BoundingBox>& runs = mesh_->runs;
    std::size_t end = 0;
    for (std::size_t first = 0; first < runs.size(); first = end + 1) {
        end = first;
        while (end < runs.size() && volume.meets(runs[end])) {
            ++end;
        }
        // Neighbours in view go in one call.
        if (end > first) {
            buffer_->draw(first * corners, (end - first) * corners);
        }
    }
}

const MeshVisualization::Look& MeshVisualization::look() const
{
    if (look_.revision != revision()) {
        look_.revision = revision();
        look_.marked = marked.value();
        look_.color = look_.marked ? markColor : color.value();
        look_.place = dragged_ == Vector3() ? offset.value() : offset.value() * Matrix::translate(dragged_);
        look_.moved = look_.place != Matrix();
    }
    return look_;
}

/// What the pixels of a drag come to, at the depth of the part's center. Reckoned from that center, since far
/// from the origin a pixel is less than floats can tell apart.
Vector3 MeshVisualization::worldWay(const Drag& drag) const
{
    const View& view = drag.view;
    const Matrix fromCenter =
        Matrix::translate(offset.value().transform(mesh_->bounds.center())) * view.modelView;
    const float depth = Vector3().project(fromCenter, view.projection, view.viewport.data()).z;
    const auto worldOf = [&](const QPointF& pixel) {
        const Vector3 window(static_cast<float>(pixel.x()), static_cast<float>(pixel.y()), depth);
        return window.unProject(fromCenter, view.projection, view.viewport.data());
    };
    return worldOf(drag.way) - worldOf(QPointF());
}

void MeshVisualization::moveBy(const QPoint& delta)
{
    const bool turned =
        drag_ && (drag_->view.modelView != view_.modelView || drag_->view.viewport != view_.viewport);
    if (!drag_ || turned) {
        drag_ = Drag{view_, dragged_, QPointF()};
    }
    drag_->way += delta;
    dragged_ = drag_->before + worldWay(*drag_);
    boundsChanged();
}

bool MeshVisualization::endMove(IOruVisPropertyEdit* editor)
{
    drag_.reset();
    if (!carried()) {
        return false;
    }
    const QString text = oru::toString(place());
    dragged_ = Vector3();
    boundsChanged();
    editor->editValue(dynamic_cast<OruVisList*>(parent()), this, offset.name(), text);
    return true;
}

} // namespace hostkit
