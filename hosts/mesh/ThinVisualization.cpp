#include "hosts/mesh/ThinVisualization.h"

#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/ogl/OruOglMeshBuffer.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/internal/ThinState.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace hostkit {

namespace {

/// More than any GL draws: until it was asked, nothing may be missed.
constexpr float widestOfAll = 16384.0f;

/// Smaller ones are drawn whole: asking what of them is in view costs more than it saves.
constexpr std::size_t leastItemsToCull = 4096;

OruOglMeshArrays::Primitive oglPrimitive(Primitive primitive)
{
    return primitive == Primitive::Lines ? OruOglMeshArrays::Primitive::Lines
                                         : OruOglMeshArrays::Primitive::Points;
}

} // namespace

ThinVisualization::ThinVisualization(OruModifiedGroup& modifiedGroup, const Kind& kind,
                                     std::shared_ptr<const Shape> shape, const BoxTree& tree,
                                     const std::vector<uint32_t>* indices)
    : PartVisualization(modifiedGroup, kind.type, std::move(shape))
    , width(*this, kind.widthKey, kind.width, QString())
    , primitive_(kind.primitive)
    , tree_(tree)
    , indices_(indices)
    , widest_(widestOfAll)
{}

ThinVisualization::~ThinVisualization() = default;

int ThinVisualization::drawnWidth() const
{
    // Written so that what is no number becomes 1.
    const float asked = width.value();
    return asked > 1.0f ? static_cast<int>(std::round(std::min(asked, widest_))) : 1;
}

PartVisualization::Features ThinVisualization::features() const
{
    return {&tree_, nullptr, indices_, tree_.size()};
}

double ThinVisualization::rim() const
{
    return 0.5 * drawnWidth() + 1.0;
}

bool ThinVisualization::upload(OruOglMeshBuffer& buffer)
{
    OruOglMeshArrays arrays;
    arrays.positions = &shape().positions.front().x;
    arrays.normals = shape().normals.empty() ? nullptr : &shape().normals.front().x;
    arrays.colors =
        shape().colors.empty() ? nullptr : reinterpret_cast<const std::uint8_t*>(shape().colors.data());
    arrays.vertexCount = shape().positions.size();
    arrays.indices = indices_ ? indices_->data() : nullptr;
    arrays.indexCount = indices_ ? indices_->size() : 0;
    arrays.primitive = oglPrimitive(primitive_);
    return buffer.upload(arrays);
}

void ThinVisualization::drawShape(const OruOglMeshBuffer& buffer)
{
    if (widest_ == widestOfAll) {
        widest_ = ThinState::widest(primitive_);
    }
    const ThinState state(primitive_, drawnWidth(), !shape().normals.empty(),
                          marked.value() ? markGlow : nullptr);
    if (tree_.size() < leastItemsToCull) {
        buffer.draw();
        return;
    }
    const PartView view = shapeView();
    const auto volume = OruVisViewVolume::ofView(view.modelView, view.projection, view.viewport);
    const std::size_t corners = buffer.indexCount() / tree_.size();
    tree_.visitRuns(
        [&](const BoxTree::Box& box) { return volume.meets(box.data(), box.data() + 3); },
        [&](std::size_t first, std::size_t count) { buffer.draw(first * corners, count * corners); });
}

std::optional<PartVisualization::Hit> ThinVisualization::inFrontOfSurfaces(const std::optional<PickHit>& hit)
{
    // Surfaces are drawn a step further back than they are; what lies in one shows on it.
    constexpr float step = 2.0f / 16777216.0f;
    return hit ? std::make_optional(Hit{std::max(0.0f, hit->depth - step), hit->centerDistance})
               : std::nullopt;
}

} // namespace hostkit
