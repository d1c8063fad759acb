#include "hosts/import/ModelImporter.h"

#include "hosts/import/ImportJob.h"
#include "hosts/import/internal/IsolatedReader.h"
#include "tests/hosts/Gltf.h"
#include "tests/hosts/Models.h"
#include "tests/support/Files.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <set>

#include <sys/stat.h>

using hostkit::Model;
using hostkit::ModelImporter;
using hostkit::Progress;
using Kelvar::Math::Vector3;
using kelvartest::contentOf;
using kelvartest::writtenFile;

namespace {

Model load(const QString& file)
{
    Progress progress;
    return ModelImporter::load(file, progress);
}

Kelvar::Math::BoundingBox shownBounds(const hostkit::ModelPart& part)
{
    Kelvar::Math::BoundingBox box = part.shape().bounds;
    return box *= part.placement;
}

} // namespace

TEST(ModelImporter, TellsTheFileAndTheReason)
{
    const QByteArray engine = contentOf(kelvartest::engineFile());
    const QByteArray head = contentOf(kelvartest::stlFile("head"));
    QByteArray broken = head.left(84 + 50);
    broken.replace(80, 4, QByteArray("\1\0\0\0", 4));
    broken.replace(84 + 12, 4, QByteArray("\0\0\xC0\x7F", 4));
    const struct
    {
        const char* file;
        QByteArray content;
        const char* reason;
    } rows[] = {
        {"missing.stl", QByteArray(), "no such file"},
        {".", QByteArray(), "is a folder"},
        {"empty.stl", "", "the file is empty"},
        {"short.stl", head.left(2000), "damaged"},
        {"words.stl", "this is no model", "damaged"},
        {"short.glb", engine.left(5000), "damaged"},
        {"words.obj", "# nothing here\n", "damaged"},
        {"crash.ply", contentOf(QStringLiteral("/usr/share/assimp/models/PLY/cube_binary.ply")).left(300),
         "damaged"},
        {"model.unknown", "something", "not a model of a known format"},
        {"noname", "something", "not a model of a known format"},
        {"nan.stl", broken, "there is nothing to draw: dropped 1 of 1 triangles"},
        {"text.stl",
         "solid s\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 nan 0\nvertex 0 1 0\nendloop\n"
         "endfacet\nendsolid s\n",
         "there is nothing to draw: dropped 1 of 1 triangles"},
        {"pipe.bin", QByteArray(), "is not a regular file"},
        {"names.obj", "mtllib pipe.bin\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         "pipe.bin is not a regular file"},
        {"names.gltf",
         R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}], "buffers": [{"uri": "pipe.bin", "byteLength": 36}],
             "bufferViews": [{"buffer": 0, "byteLength": 36}], "accessors": [{"bufferView": 0, "componentType": 5126, "type": "VEC3", "count": 3}],
             "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}]})",
         "pipe.bin is not a regular file"},
        {"old.glb", QByteArray("glTF\1\0\0\0", 8) + engine.mid(8), "glTF of version 1"},
        {"part.STEP", "ISO-10303-21;\nHEADER;\n",
         "not a mesh format; \"gmsh part.STEP -2 -o part.stl\" makes"},
    };
    QTemporaryDir folder;
    ASSERT_EQ(::mkfifo(qPrintable(folder.filePath("pipe.bin")), 0600), 0);
    for (const auto& row : rows) {
        const QString name =
            row.content.isNull() ? folder.filePath(row.file) : writtenFile(folder, row.file, row.content);
        try {
            load(name);
            ADD_FAILURE() << row.file << " was accepted";
        } catch (const ModelImporter::Error& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(name.toStdString() + ": ")) << row.file;
            EXPECT_THAT(error.what(), testing::HasSubstr(row.reason)) << row.file;
        }
    }
}

TEST(ModelImporter, CutsReasonsToAReadableLine)
{
    EXPECT_STREQ(ModelImporter::Error("f", " \n").what(), "f: damaged");
    EXPECT_STREQ(ModelImporter::Error("f", "line\n\tof \x1b[31m").what(), "f: line of [31m");
    EXPECT_EQ(std::strlen(ModelImporter::Error("f", QString(1000, 'x')).what()), 303u);
}

TEST(IsolatedReader, KeepsToItsLimitsAndTellsThem)
{
    using hostkit::IsolatedReader;
    QTemporaryDir folder;
    const QString endless = writtenFile(folder, "endless.ply", "ply\nformat ascii 1.0\nelement vertex 9\n");
    const auto script = [&folder](const char* name, const QByteArray& command) {
        const QString file = writtenFile(folder, name, "#!/bin/sh\n" + command);
        QFile::setPermissions(file, QFile::ReadOwner | QFile::ExeOwner);
        return file;
    };
    const QString reader = IsolatedReader::ownReader();
    const QString sleeper = script("sleeper", "exec sleep 600");
    const std::uint64_t any = std::uint64_t(1) << 40;
    const struct
    {
        IsolatedReader::Limits limits;
        QString program;
        QString file;
        const char* reason;
    } rows[] = {
        {{1, 50, 0, any}, reader, endless, "does not come to an end in 1 s of processor time"},
        {{50, 1, 0, any}, sleeper, endless, "longer than 1 s"},
#ifndef __SANITIZE_ADDRESS__
        {{50, 50, 8 << 20, any}, reader, kelvartest::stlFile("head"), "more memory than 8.0 MiB"},
#endif
        {{50, 50, 0, 1 << 20}, reader, kelvartest::engineFile(), "takes more than 1.0 MiB"},
        {{50, 50, 0, 1 << 20}, script("mad", "exec yes"), endless, "damaged"},
        {{50, 50, 0, 1 << 20},
         script("boaster", "exec tr '\\0' '\\1' </dev/zero"),
         endless,
         "more than 1.0 MiB"},
        // The use of a mesh that was never sent.
        {{50, 50, 0, any}, script("liar", "printf '\\4%64s' | tr ' ' '\\0'"), endless, "confuses its reader"},
        {{50, 50, 0, any}, "/no/reader", endless, "/no/reader cannot be started: No such file"},
    };
    Progress progress;
    for (const auto& row : rows) {
        try {
            IsolatedReader(row.limits, row.program).read(row.file, progress, [](float) {});
            ADD_FAILURE() << "read in spite of " << row.reason;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(row.reason));
        }
    }
    progress.cancel();
    EXPECT_THROW(IsolatedReader({50, 10, 0, any}, sleeper).read(endless, progress, [](float) {}),
                 Progress::Cancelled);
}

TEST(ModelImporter, ReadsEveryTriangleOfABinaryStl)
{
    const QByteArray file = contentOf(kelvartest::stlFile("head"));
    const Model model = load(kelvartest::stlFile("head"));
    ASSERT_EQ(model.parts.size(), 1u);
    EXPECT_EQ(model.parts[0].as<hostkit::Mesh>()->name, "head");

    // The same file read by hand: 80 bytes of head, a count, 50 bytes a triangle. Triangles that are but a
    // line or a point are left out.
    const hostkit::Mesh& mesh = *model.parts[0].as<hostkit::Mesh>();
    std::set<std::array<float, 3>> places;
    std::size_t next = 0;
    for (int at = 84; at + 50 <= file.size(); at += 50) {
        Vector3 corner[3];
        std::memcpy(corner, file.constData() + at + 12, sizeof(corner));
        if (corner[0] == corner[1] || corner[1] == corner[2] || corner[2] == corner[0]) {
            continue;
        }
        for (const Vector3& position : corner) {
            ASSERT_LT(next, mesh.indices.size());
            ASSERT_EQ(mesh.positions[mesh.indices[next++]], position) << "byte " << at;
            places.insert({position.x, position.y, position.z});
        }
    }
    EXPECT_EQ(next, mesh.indices.size());
    EXPECT_GE(mesh.positions.size(), places.size());
    EXPECT_LT(mesh.positions.size(), places.size() * 5 / 4)
        << "vertices are shared where the surface is round";
}

TEST(ModelImporter, KeepsNormalsUprightUnderAnUnevenScale)
{
    const float slope[] = {0, 0, 0, 1, 0, 1, 0, 1, 0, -1, 0, 1, -1, 0, 1, -1, 0, 1};
    const QByteArray buffer(reinterpret_cast<const char*>(slope), sizeof(slope));
    const QByteArray file = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"mesh": 0, "scale": [1, 1, 5]}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "NORMAL": 1}}]}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}, {"buffer": 0, "byteOffset": 36, "byteLength": 36}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"},
                      {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC3"}],
        "buffers": [{"byteLength": 72, "uri": "data:application/octet-stream;base64,)" +
                            buffer.toBase64() + "\"}]}";
    const QTemporaryDir folder;
    const Model model = load(writtenFile(folder, "slope.gltf", file));
    const hostkit::Mesh& mesh = *model.parts.at(0).as<hostkit::Mesh>();
    const auto corner = [&](std::size_t i) { return mesh.positions[mesh.indices[i]]; };
    const Vector3 upright = cross(corner(1) - corner(0), corner(2) - corner(0)).normalized();
    EXPECT_GT(dot(upright, mesh.normals[mesh.indices[0]].normalized()), 0.999f);
}

TEST(ModelImporter, PutsEachUseOfAMeshInPlaceWithZUp)
{
    const Model engine = load(kelvartest::engineFile());
    EXPECT_EQ(engine.parts.size(), 115u);
    EXPECT_EQ(engine.triangleCount(), 110336u);
    Kelvar::Math::BoundingBox box;
    std::set<QString> names;
    std::set<std::shared_ptr<const hostkit::Mesh>> meshes;
    int closed = 0;
    for (const auto& part : engine.parts) {
        box.add(shownBounds(part));
        names.insert(part.name);
        meshes.insert(part.as<hostkit::Mesh>());
        closed += part.as<hostkit::Mesh>()->closed;
    }
    EXPECT_EQ(names.size(), 34u);
    EXPECT_EQ(meshes.size(), 34u) << "uses share a mesh";
    EXPECT_TRUE(names.count("Piston_123-844_0_Parts_1-0"));
    EXPECT_GT(closed, 20);
    // The cylinders lie along x, the sump hangs below: the file has it towards -y.
    EXPECT_NEAR(box.width(), 743.4f, 0.1f);
    EXPECT_NEAR(box.min().z, -181.0f, 0.1f);
    EXPECT_NEAR(box.max().z, 92.0f, 0.1f);
}

TEST(ModelImporter, TurnsMirroredPartsTheRightWayRound)
{
    QTemporaryDir folder;
    const Model model = load(writtenFile(folder, "mirror.dae", R"(<?xml version="1.0"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1"><asset><up_axis>Y_UP</up_axis></asset>
<library_geometries><geometry id="g"><mesh><source id="p"><float_array id="a" count="12">
0 0 0 1 0 0 0 1 0 0 0 1</float_array><technique_common><accessor source="#a" count="4" stride="3">
<param name="X" type="float"/><param name="Y" type="float"/><param name="Z" type="float"/></accessor>
</technique_common></source><vertices id="v"><input semantic="POSITION" source="#p"/></vertices>
<triangles count="4"><input semantic="VERTEX" source="#v" offset="0"/><p>0 2 1 0 1 3 0 3 2 1 2 3</p></triangles>
</mesh></geometry></library_geometries><library_visual_scenes><visual_scene id="s">
<node name="plain"><instance_geometry url="#g"/></node>
<node name="mirrored"><matrix>-1 0 0 5 0 1 0 0 0 0 1 7 0 0 0 1</matrix><instance_geometry url="#g"/></node>
</visual_scene></library_visual_scenes><scene><instance_visual_scene url="#s"/></scene></COLLADA>)"));
    ASSERT_EQ(model.parts.size(), 2u);
    for (const auto& part : model.parts) {
        EXPECT_TRUE(part.as<hostkit::Mesh>()->closed) << part.shape().name.toStdString();
    }
    // x = 5 - 0..1; the file's z = 7..8 points towards -y, its y upwards.
    EXPECT_EQ(shownBounds(model.parts[1]).min(), Vector3(4, -8, 0));
    EXPECT_EQ(shownBounds(model.parts[1]).max(), Vector3(5, -7, 1));
}

TEST(ImportJob, LoadsOnItsOwnThreadAndCarriesErrorsOver)
{
    hostkit::ImportJob good({kelvartest::stlFile("shape"), kelvartest::stlFile("bearing")});
    const auto models = good.take();
    ASSERT_EQ(models.size(), 2u);
    EXPECT_EQ(models[1].name, "bearing");
    EXPECT_GT(models[1].triangleCount(), 24000u) << "an STL file of text";
    EXPECT_LT(models[1].parts.at(0).as<hostkit::Mesh>()->positions.size(), models[1].triangleCount());
    EXPECT_TRUE(good.finished());

    hostkit::ImportJob bad({kelvartest::stlFile("shape"), "nowhere.stl"});
    EXPECT_THROW(bad.take(), ModelImporter::Error);

    hostkit::ImportJob stopped({kelvartest::stlFile("head")});
    stopped.cancel();
    EXPECT_THROW(stopped.take(), Progress::Cancelled);
}
