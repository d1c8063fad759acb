#include "hosts/mesh/MeshVisualization.h"

#include "contracts/math/BoundingBox.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/ogl/OruOglMeshBuffer.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisViewVolume.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::BoundingBox;

namespace {

/// The pass culls back faces and lights both sides. Of a closed mesh the inner side never shows, so it is not
/// lit; an open mesh shows both sides.
///
/// The pass also steps surfaces back, the farther the steeper they are seen. Along an outline that takes the
/// front behind what lies a pixel's way behind it, the inner side of the back above all, which shows as
/// specks. So all surfaces step back alike.
class SurfaceState
{
public:
    explicit SurfaceState(bool closed)
        : closed_(closed)
    {
        glPolygonOffset(0.0f, 1.0f);
        if (closed_) {
            glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);
        } else {
            glDisable(GL_CULL_FACE);
        }
    }
    ~SurfaceState()
    {
        glPolygonOffset(1.0f, 1.0f);
        if (closed_) {
            glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
        } else {
            glEnable(GL_CULL_FACE);
        }
    }
    SurfaceState(const SurfaceState&) = delete;
    SurfaceState& operator=(const SurfaceState&) = delete;

private:
    bool closed_;
};

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
    arrays.vertexCount = mesh_->positions.size();
    arrays.indices = mesh_->indices.data();
    arrays.indexCount = mesh_->indices.size();
    return buffer.upload(arrays);
}

/// A large mesh draws what is in view of it; for a small one asking costs more than it saves.
void MeshVisualization::drawShape(const OruOglMeshBuffer& buffer)
{
    const SurfaceState state(mesh_->closed);
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
    const auto hit = mesh_->hierarchy.pick(volume);
    return hit ? std::make_optional(Hit{hit->depth, hit->centerDistance}) : std::nullopt;
}

} // namespace hostkit
