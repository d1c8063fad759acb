#include "hosts/mesh/MeshPicker.h"

#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/internal/BackgroundHierarchy.h"
#include "hosts/mesh/internal/SideQuery.h"
#include "hosts/mesh/internal/TriangleQuery.h"

#include <algorithm>
#include <vector>

namespace hostkit {

namespace {

using Hit = MeshPicker::Hit;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

/// A run of triangles that meets the pick window.
struct MetRun
{
    BoxTree::Box box;
    double nearness;
    std::size_t number;
};

template <typename Question>
std::vector<MetRun> metRuns(const Mesh& mesh, const Question& query)
{
    std::vector<MetRun> met;
    for (const BoundingBox& run : mesh.runs) {
        const BoxTree::Box box = BoxTree::boxOf(run.min(), run.max());
        if (query.mayImprove(box)) {
            met.push_back({box, query.nearness(box), static_cast<std::size_t>(&run - mesh.runs.data())});
        }
    }
    std::sort(met.begin(), met.end(),
              [](const MetRun& a, const MetRun& b) { return a.nearness > b.nearness; });
    return met;
}

template <typename Question>
void tryRun(const Mesh& mesh, std::size_t run, Question& query)
{
    const std::size_t first = run * Mesh::runLength;
    const std::size_t end = std::min<std::size_t>(first + Mesh::runLength, mesh.triangleCount());
    for (std::size_t triangle = first; triangle < end; ++triangle) {
        const uint32_t* const corners = &mesh.indices[3 * triangle];
        const Vector3& a = mesh.positions[corners[0]];
        const Vector3& b = mesh.positions[corners[1]];
        const Vector3& c = mesh.positions[corners[2]];
        if (query.mayImprove(BoxTree::boxOf(a, b, c))) {
            query.test(a, b, c, static_cast<uint32_t>(triangle));
        }
    }
}

/// A pick without a hierarchy.
template <typename Question>
std::optional<Hit> tryRuns(const Mesh& mesh, const OruVisPickVolume& volume, Question query)
{
    if (volume.empty()) {
        return std::nullopt;
    }
    for (const MetRun& run : metRuns(mesh, query)) {
        if (query.mayImprove(run.box)) {
            tryRun(mesh, run.number, query);
        }
    }
    const auto& best = query.best();
    return best ? std::make_optional(Hit{best->depth, best->centerDistance, best->item}) : std::nullopt;
}

} // namespace

MeshPicker::MeshPicker(const Mesh& mesh)
    : mesh_(mesh)
{}

MeshPicker::~MeshPicker() = default;

bool MeshPicker::small() const
{
    return mesh_.triangleCount() <= mostAtOnce;
}

void MeshPicker::prepare() const
{
    if (!small()) {
        beside_.get([this] { return BackgroundHierarchy(mesh_.positions, mesh_.indices); });
    }
}

bool MeshPicker::ready() const
{
    const BackgroundHierarchy* const beside = beside_.made();
    return own_.made() || (beside && beside->get());
}

/// Null: it is not ready.
const TriangleHierarchy* MeshPicker::hierarchy() const
{
    if (small()) {
        return &own_.get([this] { return TriangleHierarchy::build(mesh_.positions, mesh_.indices); });
    }
    prepare();
    return beside_.made()->get();
}

std::optional<Hit> MeshPicker::pick(const OruVisPickVolume& volume) const
{
    const TriangleHierarchy* const built = hierarchy();
    return built ? built->pick(volume) : tryRuns(mesh_, volume, TriangleQuery(volume));
}

std::optional<Hit> MeshPicker::pick(const OruVisPickVolume& volume, const Filter& takes) const
{
    const TriangleHierarchy* const built = hierarchy();
    return built ? built->pick(volume, takes) : tryRuns(mesh_, volume, TriangleQuery(volume, &takes));
}

std::optional<Hit> MeshPicker::pickSides(const OruVisPickVolume& volume) const
{
    const TriangleHierarchy* const built = hierarchy();
    return built ? built->pickSides(volume) : tryRuns(mesh_, volume, SideQuery(volume));
}

} // namespace hostkit
