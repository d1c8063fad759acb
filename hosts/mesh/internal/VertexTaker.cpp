#include "hosts/mesh/internal/VertexTaker.h"

#include "hosts/mesh/internal/SourceCheck.h"

#include <algorithm>

namespace hostkit {

using Kelvar::Math::Vector3;

VertexTaker::VertexTaker(const MeshSource& source, Shape& shape)
    : source_(source)
    , shape_(shape)
    , withNormals_(std::all_of(source.normals.begin(), source.normals.end(),
                               [](const Vector3& normal) { return normal.normalized() != Vector3(); }) &&
                   !source.normals.empty())
{
    checkSource(source);
    shape.name = source.name;
    shape.material = source.material;
    const std::size_t most = std::min(source.positions.size(), source.indices.size());
    shape.positions.reserve(most);
    shape.normals.reserve(withNormals_ ? most : 0);
    shape.colors.reserve(source.colors.empty() ? 0 : most);
}

uint32_t VertexTaker::take(uint32_t vertex)
{
    shape_.positions.push_back(source_.positions[vertex]);
    shape_.bounds.add(source_.positions[vertex]);
    if (withNormals_) {
        shape_.normals.push_back(source_.normals[vertex].normalized());
    }
    if (!source_.colors.empty()) {
        shape_.colors.push_back(source_.colors[vertex]);
    }
    return static_cast<uint32_t>(shape_.positions.size() - 1);
}

} // namespace hostkit
