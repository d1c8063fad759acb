#include "hosts/mesh/ShapeBuilder.h"

#include "hosts/mesh/LineSetBuilder.h"
#include "hosts/mesh/MeshBuilder.h"
#include "hosts/mesh/PointSetBuilder.h"

#include <utility>

namespace hostkit {

namespace {

using Build = std::optional<AnyShape> (*)(MeshSource, const ReportShare&);

template <typename Builder>
std::optional<AnyShape> buildBy(MeshSource source, const ReportShare& report)
{
    const auto shape = Builder::build(std::move(source), report);
    return shape ? std::make_optional(AnyShape(shape)) : std::nullopt;
}

/// In the order of Primitive.
constexpr Build builds[] = {buildBy<MeshBuilder>, buildBy<LineSetBuilder>, buildBy<PointSetBuilder>};

} // namespace

std::optional<AnyShape> ShapeBuilder::build(MeshSource source, const ReportShare& report)
{
    const Build build = builds[static_cast<int>(source.primitive)];
    return build(std::move(source), report);
}

} // namespace hostkit
