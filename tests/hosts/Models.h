#pragma once

#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/MeshBuilder.h"
#include "hosts/mesh/ModelPart.h"
#include "hosts/mesh/SampleMeshes.h"
#include "hosts/mesh/ShapeBuilder.h"

#include <QString>

#include <memory>

namespace kelvartest {

/// Real models that come with the packages this project asks for.
inline QString engineFile()
{
    return QStringLiteral("/usr/share/assimp/models/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb");
}

inline QString stlFile(const char* name)
{
    return QStringLiteral("/usr/share/opencascade/data/stl/%1.stl").arg(QLatin1String(name));
}

/// A cube of edge 2 about `center`, each triangle with corners of its own and no normals.
inline hostkit::MeshSource cubeSource(const Kelvar::Math::Vector3& center = Kelvar::Math::Vector3())
{
    // Corner i has x, y, z = +1 where bits 0, 1, 2 of i are set; counter-clockwise from outside.
    static constexpr int corners[36] = {0, 2, 3, 0, 3, 1, 4, 5, 7, 4, 7, 6, 0, 1, 5, 0, 5, 4,
                                        2, 6, 7, 2, 7, 3, 0, 4, 6, 0, 6, 2, 1, 3, 7, 1, 7, 5};
    hostkit::MeshSource source;
    source.name = QStringLiteral("cube");
    source.material.color = QColor(200, 40, 40);
    for (const int corner : corners) {
        source.indices.push_back(static_cast<uint32_t>(source.positions.size()));
        source.positions.push_back(center + Kelvar::Math::Vector3(corner & 1 ? 1.0f : -1.0f,
                                                                  corner & 2 ? 1.0f : -1.0f,
                                                                  corner & 4 ? 1.0f : -1.0f));
    }
    return source;
}

inline hostkit::MeshSource sourceOf(const hostkit::SampleMesh& sample)
{
    hostkit::MeshSource source;
    source.name = QStringLiteral("sample");
    source.material.color = QColor(90, 140, 200);
    source.positions = sample.positions;
    source.normals = sample.normals;
    source.indices = sample.indices;
    return source;
}

inline std::shared_ptr<const hostkit::Mesh> built(hostkit::MeshSource source)
{
    return hostkit::MeshBuilder::build(std::move(source), [](float) {});
}

/// Null when the source makes another shape, or none.
template <typename Kind>
std::shared_ptr<const Kind> builtAs(const hostkit::MeshSource& source)
{
    const auto shape = hostkit::ShapeBuilder::build(source, [](float) {});
    return shape ? hostkit::ModelPart(*shape).as<Kind>() : nullptr;
}

} // namespace kelvartest
