#pragma once

#include "contracts/math/Vector3.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <vector>

#include <gtest/gtest.h>

namespace kelvartest {

inline QString writtenFile(const QTemporaryDir& folder, const char* name, const QByteArray& content)
{
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << name;
    return file.fileName();
}

/// A glTF file of three meshes "m0" to "m2", each the one triangle with these corners, whose texture
/// coordinates are (0.5, 0.25) everywhere. `nodes` and `material` are the JSON of its nodes and its material.
inline QByteArray gltf(const QByteArray& nodes, const std::vector<Kelvar::Math::Vector3>& corners,
                       const QByteArray& material = "{}")
{
    const float points[] = {0.5f, 0.25f, 0.5f, 0.25f, 0.5f, 0.25f};
    const QByteArray data = QByteArray(reinterpret_cast<const char*>(corners.data()), 36) +
                            QByteArray(reinterpret_cast<const char*>(points), 24);
    const QByteArray mesh =
        R"("primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0": 1}, "material": 0}]})";
    return R"({"asset": {"version": "2.0", "generator": "a test"}, "extensionsUsed": ["KHR_texture_transform"], "scene": 0, "scenes": [{"nodes": [0]}], "nodes": [)" +
           nodes + R"(], "materials": [)" + material + R"(], "textures": [{"source": 0}],
        "images": [{"uri": "picture.png"}], "meshes": [{"name": "m0", )" +
           mesh + R"(, {"name": "m1", )" + mesh + R"(, {"name": "m2", )" + mesh + R"(],
        "bufferViews": [{"buffer": 0, "byteLength": 36}, {"buffer": 0, "byteOffset": 36, "byteLength": 24}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"},
                      {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC2"}],
        "buffers": [{"byteLength": 60, "uri": "data:application/octet-stream;base64,)" +
           data.toBase64() + "\"}]}";
}

} // namespace kelvartest
