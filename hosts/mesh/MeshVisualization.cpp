#include "hosts/mesh/MeshVisualization.h"

#include "contracts/math/BoundingBox.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/ogl/OruOglMeshBuffer.h"
#include "contracts/ogl/OruOglTexture.h"
#include "contracts/ogl/OruOglTextureStages.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/internal/SurfaceOpacity.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::BoundingBox;

namespace {

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

/// A mesh with as many is worth asking which runs of it are in view.
constexpr std::size_t leastIndicesToCull = 3 * 16 * Mesh::runLength;

} // namespace

const QString MeshVisualization::typeString = QStringLiteral("hostkit.mesh");

MeshVisualization::MeshVisualization(OruModifiedGroup& modifiedGroup, std::shared_ptr<const Mesh> mesh)
    : PartVisualization(modifiedGroup, typeString, mesh)
    , mesh_(std::move(mesh))
{}

MeshVisualization::~MeshVisualization() = default;

PartVisualization::Content MeshVisualization::content() const
{
    return {QStringLiteral("triangles"), static_cast<int>(mesh_->triangleCount())};
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
    return buffer.upload(arrays);
}

void MeshVisualization::draw3d(const DrawContext& context)
{
    if (!mesh_->texturePoints.empty()) {
        const Texture& picture = *mesh_->material.texture;
        texture_ =
            context.cache.texture(picture.image, wrapOf(picture.wrapS), wrapOf(picture.wrapT), picture.name);
    }
    PartVisualization::draw3d(context);
}

void MeshVisualization::drawShape(const OruOglMeshBuffer& buffer)
{
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
    const View view = shapeView();
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
    const SurfaceOpacity surface(*mesh_, look().opacity);
    const auto hides = [&](uint32_t triangle, const std::array<double, 3>& weights) {
        return surface.at(triangle, weights) >= leastPickedOpacity;
    };
    const auto hit = surface.varies() ? mesh_->hierarchy.pick(volume, hides) : mesh_->hierarchy.pick(volume);
    return hit ? std::make_optional(Hit{hit->depth, hit->centerDistance}) : std::nullopt;
}

} // namespace hostkit
