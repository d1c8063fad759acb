#include "hosts/mesh/MeshVisualization.h"

#include "contracts/math/BoundingBox.h"
#include "contracts/math/DoubleMatrix.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/ogl/OruOglMeshBuffer.h"
#include "contracts/ogl/OruOglTexture.h"
#include "contracts/ogl/OruOglTextureStages.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/MeshEdges.h"
#include "hosts/mesh/internal/EdgeLines.h"
#include "hosts/mesh/internal/EvenStep.h"
#include "hosts/mesh/internal/SharedSurfaces.h"
#include "hosts/mesh/internal/ShownSides.h"
#include "hosts/mesh/internal/SurfaceBatch.h"
#include "hosts/mesh/internal/SurfaceGroup.h"
#include "hosts/mesh/internal/SurfaceOpacity.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Vector3;

namespace {

constexpr OruPropertyKind edgeAngles = OruPropertyKind::of<float>().from(MeshEdges::leastAngle).to(180.0);
constexpr float usualEdgeAngle = 30.0f;

/// Draws nothing where alpha lies below the cutoff of a material.
class CutOut
{
public:
    explicit CutOut(const Material& material)
    {
        glPushAttrib(GL_COLOR_BUFFER_BIT);
        glEnable(GL_ALPHA_TEST);
        // The alpha of the color is no part of what is drawn.
        const auto alpha = static_cast<float>(material.color.alphaF());
        glAlphaFunc(material.cutoff > alpha ? GL_NEVER : GL_GEQUAL,
                    alpha > 0.0f ? material.cutoff / alpha : 0.0f);
    }
    ~CutOut() { glPopAttrib(); }
    CutOut(const CutOut&) = delete;
    CutOut& operator=(const CutOut&) = delete;
};

/// Leaves out the faces on one side at a time.
class OneSide
{
public:
    OneSide() { glGetIntegerv(GL_CULL_FACE_MODE, &before_); }
    ~OneSide() { glCullFace(static_cast<GLenum>(before_)); }
    OneSide(const OneSide&) = delete;
    OneSide& operator=(const OneSide&) = delete;

    void leaveOut(GLenum side) const { glCullFace(side); }

private:
    GLint before_ = GL_BACK;
};

/// In the order of Texture::Wrap.
constexpr OruOglCache::Wrap wraps[] = {OruOglCache::Wrap::Repeat, OruOglCache::Wrap::Mirror,
                                       OruOglCache::Wrap::Clamp};

OruOglCache::Wrap wrapOf(Texture::Wrap wrap)
{
    return wraps[static_cast<std::size_t>(wrap)];
}

/// What a mark leaves of a texture is enough to know it by.
constexpr float markShare = 0.6f;

/// Triangles as their sides, seen from both sides and through.
class WireframeState
{
public:
    explicit WireframeState(float width)
    {
        glPushAttrib(GL_POLYGON_BIT | GL_LINE_BIT);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        glDisable(GL_CULL_FACE);
        glLineWidth(width);
    }
    ~WireframeState() { glPopAttrib(); }
    WireframeState(const WireframeState&) = delete;
    WireframeState& operator=(const WireframeState&) = delete;
};

/// A mesh with as many is worth asking which runs of it are in view.
constexpr std::size_t leastIndicesToCull = 3 * 16 * Mesh::runLength;

/// One text for all parts.
const QString& noEdges()
{
    static const QString text = QString::fromLatin1(MeshVisualization::edgeWords[0].value);
    return text;
}

} // namespace

const QString MeshVisualization::typeString = QStringLiteral("hostkit.mesh");

MeshVisualization::MeshVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const Mesh> mesh)
    : PartVisualization(modifiedGroup, typeString, mesh)
    , edges(*this, QStringLiteral("edges"), noEdges(), QString())
    , edgeAngle(*this, QStringLiteral("edgeAngle"), usualEdgeAngle, QString())
    , mesh_(std::move(mesh))
{
    edges.setKind(edgeKind);
    edgeAngle.setKind(edgeAngles);
}

MeshVisualization::~MeshVisualization()
{
    leaveBatch();
}

/// Small, and of one color or the colors of its vertices, so that others can be drawn in the same call.
bool MeshVisualization::canShare() const
{
    return mesh_->texturePoints.empty() && mesh_->material.alpha != Material::Alpha::CutOut && !hasAlpha() &&
           !mesh_->indices.empty() && mesh_->indices.size() < leastIndicesToCull &&
           mesh_->positions.size() <= SurfaceGroup::mostVertices;
}

BoundingBox MeshVisualization::boundsAsItCame() const
{
    BoundingBox box = mesh_->bounds;
    if (isPlaced()) {
        box *= placement();
    }
    return box;
}

void MeshVisualization::leaveBatch()
{
    if (batch_) {
        SurfaceBatch& left = *batch_;
        left.leave(placeInBatch_);
        left.owner().noteHole();
    }
}

OruVisualization::Reach MeshVisualization::reach() const
{
    return batch_ && isAsItCame() ? Reach::UnderPick : PartVisualization::reach();
}

PartView::Shared MeshVisualization::viewElsewhere() const
{
    return batch_ ? batch_->owner().view() : nullptr;
}

PartVisualization::Content MeshVisualization::content() const
{
    return {QStringLiteral("triangles"), static_cast<int>(mesh_->triangleCount())};
}

/// The edges that are shown as such, whether they are or not.
PartVisualization::Features MeshVisualization::features() const
{
    const EdgeHierarchy& hierarchy = mesh_->edgeHierarchy();
    const MeshEdges& all = mesh_->edges();
    return {&hierarchy.tree(), &hierarchy.order(), &all.indices, all.countFrom(edgeAngle.value())};
}

bool MeshVisualization::upload(OruOglMeshBuffer& buffer)
{
    OruOglMeshArrays arrays;
    arrays.positions = &mesh_->positions.front().x;
    arrays.normals = &mesh_->normals.front().x;
    arrays.colors =
        mesh_->colors.empty() ? nullptr : reinterpret_cast<const std::uint8_t*>(mesh_->colors.data());
    arrays.texturePoints = mesh_->texturePoints.empty() ? nullptr : &mesh_->texturePoints.front().s;
    arrays.vertexCount = mesh_->positions.size();
    arrays.indices = mesh_->indices.data();
    arrays.indexCount = mesh_->indices.size();
    const bool done = buffer.upload(arrays);
    mesh_->picker.prepare();
    return done;
}

/// Asked at each draw, so it is read once and not text by text.
MeshVisualization::Lines MeshVisualization::lines() const
{
    if (linesRevision_ != revision()) {
        linesRevision_ = revision();
        const auto found = std::find_if(std::begin(edgeWords), std::end(edgeWords), [&](const auto& word) {
            return edges.value() == QLatin1String(word.value);
        });
        lines_ = found == std::end(edgeWords) ? Lines::Off : static_cast<Lines>(found - edgeWords);
    }
    return lines_;
}

void MeshVisualization::draw3d(const DrawContext& context)
{
    if (lines() == Lines::Edges) {
        if (!edgeLines_) {
            edgeLines_ = std::make_unique<EdgeLines>(*mesh_);
        }
        edgeLines_->prepare(context.geometry, edgeAngle.value());
    }
    if (!mesh_->texturePoints.empty()) {
        const Texture& picture = *mesh_->material.texture;
        texture_ =
            context.cache.texture(picture.image, wrapOf(picture.wrapS), wrapOf(picture.wrapT), picture.name);
    }
    PartVisualization::draw3d(context);
}

bool MeshVisualization::canBeCapped() const
{
    return visible.value() && look().opacity > 0.0f && lines() != Lines::Wireframe &&
           mesh_->material.alpha != Material::Alpha::CutOut && mesh_->isSolid();
}

/// One that shines through is closed by a face that does not: it has no depth to look into.
QColor MeshVisualization::capColor() const
{
    QColor solid = look().color;
    solid.setAlpha(255);
    return solid;
}

void MeshVisualization::drawForCap(const DrawContext& context)
{
    drawBare(context.geometry);
}

void MeshVisualization::drawShape(const OruOglMeshBuffer& buffer)
{
    if (lines() == Lines::Wireframe) {
        const WireframeState state(EdgeLines::widthFor(shapeView().viewport));
        drawInView(buffer);
        return;
    }
    drawSurface(buffer);
    if (lines() == Lines::Edges) {
        drawEdges();
    }
}

void MeshVisualization::drawEdges() const
{
    const PartView view = shapeView();
    // A mark is bright, whatever it is on.
    edgeLines_->draw(view.modelView, view.projection, view.viewport,
                     look().marked ? QColor(Qt::white) : color.value());
}

void MeshVisualization::drawSurface(const OruOglMeshBuffer& buffer) const
{
    const EvenStep step;
    std::optional<OruOglTextureStages> stages;
    if (texture_) {
        stages.emplace();
        look().marked ? stages->mix(*texture_, markShare) : stages->multiply(*texture_);
    }
    std::optional<CutOut> cut;
    if (mesh_->material.alpha == Material::Alpha::CutOut) {
        cut.emplace(mesh_->material);
    }
    drawFaces(buffer);
}

/// Where something shines through, the far side lies behind the near one.
void MeshVisualization::drawFaces(const OruOglMeshBuffer& buffer) const
{
    if (!look().seeThrough) {
        const ShownSides sides(mesh_->closed && mesh_->material.alpha != Material::Alpha::CutOut);
        drawInView(buffer);
        return;
    }
    const OneSide side;
    for (const GLenum leftOut : {GL_FRONT, GL_BACK}) {
        side.leaveOut(leftOut);
        drawInView(buffer);
    }
}

/// A large mesh draws what is in view of it; for a small one asking costs more than it saves.
void MeshVisualization::drawInView(const OruOglMeshBuffer& buffer) const
{
    if (buffer.indexCount() >= leastIndicesToCull) {
        drawRunsInView(buffer);
    } else {
        buffer.draw();
    }
}

void MeshVisualization::drawRunsInView(const OruOglMeshBuffer& buffer) const
{
    const PartView view = shapeView();
    const auto volume = OruVisViewVolume::ofView(view.modelView, view.projection, view.viewport);
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
            buffer.draw(first * corners, (end - first) * corners);
        }
    }
}

std::optional<PartVisualization::Hit> MeshVisualization::pickShape(const OruVisPickVolume& volume) const
{
    if (volume.isCut() && canBeCapped()) {
        return pickCapped(volume);
    }
    const auto hit = pickSurface(volume);
    return hit ? std::make_optional(Hit{hit->depth, hit->centerDistance}) : std::nullopt;
}

std::optional<MeshPicker::Hit> MeshVisualization::pickSurface(const OruVisPickVolume& volume) const
{
    const MeshPicker& picker = mesh_->picker;
    const SurfaceOpacity surface(*mesh_, look().opacity);
    const auto hides = [&](uint32_t triangle, const std::array<double, 3>& weights) {
        return surface.at(triangle, weights) >= leastPickedOpacity;
    };
    return lines() == Lines::Wireframe ? picker.pickSides(volume)
           : surface.varies()          ? picker.pick(volume, hides)
                                       : picker.pick(volume);
}

/// What the look meets first behind the cuts tells whether it came in by a face: then that is seen from the
/// inside, wherever it is itself.
std::optional<PartVisualization::Hit> MeshVisualization::pickCapped(const OruVisPickVolume& volume) const
{
    const auto hit = pickSurface(volume.openBehind());
    if (!hit) {
        return std::nullopt;
    }
    const double entry = volume.entryDepth();
    const bool onFace = entry > 0.0 && showsInside(volume, hit->triangle);
    const double depth = onFace ? entry : static_cast<double>(hit->depth);
    const double x = volume.x() + volume.width() / 2.0;
    const double y = volume.y() + volume.height() / 2.0;
    constexpr double rounding = 1e-6; // a face lies in its plane
    const bool kept = volume.keeps(x, y, onFace ? depth + rounding : depth);
    return kept ? std::make_optional(Hit{static_cast<float>(depth), hit->centerDistance}) : std::nullopt;
}

/// Whether a triangle is seen from the inside: a look that begins in a closed surface came in by a cut.
bool MeshVisualization::showsInside(const OruVisPickVolume& volume, uint32_t triangle) const
{
    double x[3];
    double y[3];
    const DoubleMatrix toWindow(volume.toWindow());
    for (std::size_t i = 0; i < 3; ++i) {
        const Vector3& corner = mesh_->positions[mesh_->indices[3 * triangle + i]];
        const double point[3] = {corner.x, corner.y, corner.z};
        double window[4];
        toWindow.transform(point, window);
        x[i] = window[0] / window[3];
        y[i] = window[1] / window[3];
    }
    const double area = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
    return (area < 0.0) != look().mirrored;
}

} // namespace hostkit
