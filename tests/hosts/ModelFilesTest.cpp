// What files say beyond their triangles: which way is up, nodes, far places, textures and materials.

#include "hosts/import/ModelImporter.h"
#include "hosts/import/internal/IsolatedReader.h"
#include "tests/hosts/Gltf.h"
#include "tests/hosts/Models.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QImage>

#include <gmock/gmock.h>

#include <cmath>

#include <sys/stat.h>

using hostkit::Material;
using hostkit::Model;
using hostkit::ModelSource;
using hostkit::Texture;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;
using kelvartest::contentOf;
using kelvartest::gltf;
using kelvartest::writtenFile;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::vector<Vector3> triangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};

Model load(const QString& file)
{
    hostkit::Progress progress;
    return hostkit::ModelImporter::load(file, progress);
}

/// As the importer gets it, with what the scene does not show yet.
ModelSource source(const QString& file)
{
    using hostkit::IsolatedReader;
    return IsolatedReader(IsolatedReader::limitsFor(file)).read(file, hostkit::Progress(), [](float) {});
}

BoundingBox shownBounds(const Model& model)
{
    BoundingBox all;
    model.visitParts([&](const hostkit::ModelPart& part) {
        BoundingBox box = part.shape().bounds;
        all.add(box *= part.placement);
    });
    return all;
}

/// Names of parts, then the lists with theirs in brackets.
QString outline(const hostkit::ModelNode& node)
{
    QStringList words;
    for (const hostkit::ModelPart& part : node.parts) {
        words.append(part.name);
    }
    for (const hostkit::ModelNode& child : node.children) {
        words.append(child.name + '(' + outline(child) + ')');
    }
    return words.join(' ');
}

std::vector<std::string> texts(const QStringList& lines)
{
    std::vector<std::string> result;
    for (const QString& line : lines) {
        result.push_back(line.toStdString());
    }
    return result;
}

} // namespace

TEST(ModelFiles, StandUprightAsTheFileOrElseItsFormatHasIt)
{
    const struct
    {
        const char* file;
        const char* up;
        double slender; ///< height by width of what stands as it should
    } rows[] = {
        {"Collada/human.zae", "y", 1.58},    {"Collada/teapots.DAE", "z", 0.38},
        {"OBJ/WusonOBJ.obj", "y", 0.47},     {"FBX/embedded_ascii/box.FBX", "z", 1},
        {"STL/Spider_ascii.stl", "z", 0.41}, {"FBX/spider.fbx", "y", 0.41},
        {"MD2/faerie.md2", "z", 1.98},       {"MDL/MDL (HL1)/man.mdl", "z", 2.78},
        {"3DS/test1.3ds", "z", 1.01},        {"IFC/AC14-FZK-Haus.ifc", "z", 0.41},
        {"IQM/mrfixit.iqm", "z", 0.78},      {"SMD/holy_grailref.smd", "z", 1.4},
        {"COB/dwarf.cob", "z", 1.13},        {"BLEND/HUMAN.blend", "z", 2.28},
        {"Q3D/E-AT-AT.q3o", "z", 0.84},      {"glTF/CesiumMilkTruck/CesiumMilkTruck.gltf", "y", 0.6},
    };
    for (const auto& row : rows) {
        const Model model = load(QStringLiteral("/usr/share/assimp/models/") + row.file);
        EXPECT_EQ(model.up.name(), row.up) << row.file;
        const BoundingBox box = shownBounds(model);
        EXPECT_NEAR(box.depth() / std::max(box.width(), box.height()), row.slender, 0.01) << row.file;
    }
}

TEST(ModelFiles, TellTheirUnit)
{
    const QTemporaryDir folder;
    const QByteArray cubes = contentOf(QStringLiteral("/usr/share/assimp/models/FBX/cubes_with_names.fbx"));
    const QByteArray told = R"("UnitScaleFactor", "double", "Number", "",)";
    ASSERT_TRUE(cubes.contains(told + "1\n"));
    const std::pair<const char*, const char*> rows[] = {
        {"1", "cm"},
        {"0.1", "mm"},
        {"100", "m"},
        {"2.54", "in"},
        {"30.479999542236328", "ft"},
        {"7.5", "\u00d7 7.5 cm"},
    };
    for (const auto& [centimeters, unit] : rows) {
        const QByteArray text = QByteArray(cubes).replace(told + "1\n", told + centimeters + "\n");
        const Model model = load(writtenFile(folder, "cubes.fbx", text));
        EXPECT_THAT(model.properties, Contains(std::make_pair(QString("unit"), QString::fromUtf8(unit))));
    }
}

TEST(ModelFiles, KeepTheNodesThatHoldPartsUnderTheirNames)
{
    const struct
    {
        const char* what;
        QByteArray nodes;
        const char* outline;
    } rows[] = {
        {"parts, a list, a node without a name and one without a part",
         R"({"name": "car", "children": [1, 2, 5, 7]}, {"name": "body", "mesh": 0},
            {"name": "wheels", "children": [3, 4]}, {"name": "bolt", "mesh": 1}, {"name": "bolt", "mesh": 1},
            {"children": [6]}, {"name": "lamp/left", "mesh": 2}, {"name": "eye"})",
         "body lamp_left wheels(bolt bolt)"},
        {"a node that holds all is the model",
         R"({"name": "a", "children": [1]}, {"name": "b", "children": [2]}, {"name": "c", "children": [3, 4]},
            {"name": "d", "mesh": 0}, {"name": "e", "mesh": 1, "children": [5]}, {"name": "f", "mesh": 2})",
         "d e(m1 f)"},
        {"one part", R"({"name": "a", "mesh": 0})", "m0"},
    };
    for (const auto& row : rows) {
        const QTemporaryDir folder;
        const Model model = load(writtenFile(folder, "nodes.gltf", gltf(row.nodes, triangle)));
        EXPECT_EQ(model.name, "nodes");
        EXPECT_EQ(outline(model).toStdString(), row.outline) << row.what;
        EXPECT_THAT(model.properties, testing::Contains(std::make_pair("generator", "a test")));
        if (&row == rows) {
            const auto& bolts = model.children.at(0).parts;
            EXPECT_EQ(bolts.at(0).content, bolts.at(1).content);
        }
    }
}

TEST(ModelFiles, ThatLieFarFrom0AreAsExactAsNearOnes)
{
    const auto nodes = [](const char* place, const char* back) {
        return QByteArray(R"({"name": "all", "translation": [)") + place + R"(], "children": [1, 2, 3]},
            {"mesh": 0, "translation": [)" +
               back + R"(], "scale": [0.125, 1, 1]},
            {"mesh": 1, "translation": [0.7, 0, 0]}, {"mesh": 1, "translation": [0.9, 0.3, 0]})";
    };
    const Vector3 far(3000000, 0, 0);
    const struct
    {
        const char* what;
        QByteArray nodes;
        std::vector<Vector3> corners;
        hostkit::Origin origin;
        std::vector<std::string> notes;
    } rows[] = {
        {"near", nodes("0, 0, 0", "0.3, 0, 0"), triangle, {0, 0, 0}, {}},
        {"far", nodes("2e6, 0, -4e6", "0.3, 0, 0"), triangle, {2000001, 4000000, 0}, {}},
        // A mesh that lies far off in its own frame, and nodes that bring it back.
        {"back again",
         R"({"name": "all", "translation": [-3e6, 0, 0], "children": [1, 2, 3]},
            {"mesh": 0, "translation": [2625000.25, 0, 0], "scale": [0.125, 1, 1]},
            {"mesh": 1, "translation": [0.75, 0, 0]}, {"mesh": 1, "translation": [1, 0.25, 0]})",
         {far, far + triangle[1], far + triangle[2]},
         {0, 0, 0},
         {"coordinates are exact to 0.3 only"}},
    };
    std::vector<BoundingBox> boxes;
    for (const auto& row : rows) {
        const QTemporaryDir folder;
        const Model model = load(writtenFile(folder, "far.gltf", gltf(row.nodes, row.corners)));
        EXPECT_EQ(model.origin, row.origin) << row.what;
        EXPECT_EQ(texts(model.notes), row.notes) << row.what;
        boxes.push_back(shownBounds(model));
    }
    const Vector3 off(1, 0, 0); // what the origin is more than the place of all
    EXPECT_LT((boxes[1].min() + off - boxes[0].min()).length(), 1e-6f);
    EXPECT_LT((boxes[1].max() + off - boxes[0].max()).length(), 1e-6f);
    EXPECT_EQ(boxes[2].min(), Vector3(0.25f, 0, 0));
    EXPECT_EQ(boxes[2].max(), Vector3(2, 0, 1.25f));
}

TEST(ModelFiles, LoseOnlyWhatIsBroken)
{
    const QByteArray facet =
        "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 %1 0\nvertex 0 1 0\nendloop\nendfacet\n";
    const QTemporaryDir folder;
    const Model model = load(writtenFile(folder, "nan.stl",
                                         "solid s\n" + QByteArray(facet).replace("%1", "nan") +
                                             QByteArray(facet).replace("%1", "0") + "endsolid s\n"));
    EXPECT_EQ(model.triangleCount(), 1u);
    EXPECT_THAT(texts(model.notes),
                ElementsAre("dropped 1 of 2 triangles: their places are missing or not finite"));
}

TEST(ModelFiles, HaveTheirTrianglesOnTheSideOfTheirNormals)
{
    for (const char* const file : {"MDL/MDL3 (3DGS A4)/minigun.MDL", "BVH/01_01.bvh", "OBJ/spider.obj"}) {
        long along = 0;
        load(QStringLiteral("/usr/share/assimp/models/") + file)
            .visitParts([&](const hostkit::ModelPart& part) {
                const hostkit::Mesh& mesh = *part.as<hostkit::Mesh>();
                for (std::size_t at = 0; at < mesh.indices.size(); at += 3) {
                    const auto corner = [&](std::size_t i) { return mesh.positions[mesh.indices[at + i]]; };
                    const Vector3 face = cross(corner(1) - corner(0), corner(2) - corner(0));
                    along += dot(face, mesh.normals[mesh.indices[at]]) > 0.0f ? 1 : -1;
                }
            });
        EXPECT_GT(along, 100) << file;
    }
}

TEST(ModelFiles, GiveLinesAndPointsToo)
{
    const QTemporaryDir folder;
    const struct
    {
        const char* content;
        std::vector<std::pair<hostkit::Primitive, std::size_t>> kinds;
    } rows[] = {
        {"v 0 0 0\nv 1 0 0\nv 0 1 0\np 2\nl 1 2 3\nf 1 2 3\n",
         {{hostkit::Primitive::Points, 1},
          {hostkit::Primitive::Lines, 4},
          {hostkit::Primitive::Triangles, 3}}},
        {"v 0 0 0\nv 1 0 0\nv 0 1 0\n", {{hostkit::Primitive::Points, 3}}},
    };
    for (const auto& row : rows) {
        std::vector<std::pair<hostkit::Primitive, std::size_t>> kinds;
        for (const hostkit::MeshSource& mesh : source(writtenFile(folder, "kinds.obj", row.content)).meshes) {
            kinds.emplace_back(mesh.primitive, mesh.indices.size());
        }
        EXPECT_EQ(kinds, row.kinds) << row.content;
    }
}

TEST(ModelFiles, OfManyObjectsHoldWhatThoseOfFewDo)
{
    const struct
    {
        const char* what;
        const char* head;
        const char* tail;
    } rows[] = {
        {"new names", "", "o a\nf 1 2 3\no b\nf 1 2 3\nf 2 1 3\n"},
        {"a name again", "o a\nf 1 2 3\n", "o b\nf 1 2 3\no a\nf 2 1 3\n"},
        {"names of two words", "", "o a 1\nf 1 2 3\no a 2\nf 2 1 3\n"},
        {"a blank at the end", "", "o a \nf 1 2 3\no a\nf 2 1 3\n"},
        {"no name", "", "o a\nf 1 2 3\no\nf 2 1 3\n"},
        {"groups", "", "o a\nf 1 2 3\ng a\nf 1 2 3\n"},
        {"no object at first", "f 1 2 3\n", "o defaultobject\nf 2 1 3\n"},
        {"lines that go on", "", "o a\\\nb\nf 1 2 3\no c\nf 1 2 3\no ab\nf 2 1 3\n"},
        {"other ends of lines", "", "o b\r\nf 1 2 3\ro a\rf 1 2 3\r\no a\nf 2 1 3\n"},
    };
    for (const auto& row : rows) {
        // Names and triangles.
        std::vector<std::pair<QString, std::size_t>> parts[2];
        for (const int others : {1, 2000}) {
            const QTemporaryDir folder;
            QByteArray content = QByteArray("v 0 0 0\nv 1 0 0\nv 0 1 0\n") + row.head;
            for (int i = 0; i < others; ++i) {
                content += "o other" + QByteArray::number(i) + "\nf 1 2 3\n";
            }
            const ModelSource model = source(writtenFile(folder, "m.obj", content + row.tail));
            for (const ModelSource::Use& use : model.uses) {
                if (!use.name.startsWith("other")) {
                    const std::size_t corners = model.meshes.at(use.mesh).indices.size();
                    parts[others > 1 ? 1 : 0].emplace_back(use.name, corners / 3);
                }
            }
        }
        EXPECT_FALSE(parts[0].empty()) << row.what;
        EXPECT_EQ(parts[0], parts[1]) << row.what;
    }
}

TEST(ModelFiles, OfAHundredThousandObjectsTakeNoMoreThanTheirTime)
{
    constexpr int count = 100000;
    QByteArray content = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    for (int i = 0; i < count; ++i) {
        content += "o part" + QByteArray::number(i) + "\nf 1 2 3\n";
    }
    const QTemporaryDir folder;
    EXPECT_EQ(source(writtenFile(folder, "m.obj", content)).uses.size(), std::size_t(count));
}

TEST(ModelFiles, FindTheirPicturesWhereverTheirMakerHadThem)
{
    const struct
    {
        const char* named;
        const char* at;
        const char* note;
    } rows[] = {
        {"wood.png", "wood.png", nullptr},
        {"maps\\wood.png", "maps/wood.png", nullptr},
        {"C:\\work\\car\\wood.png", "wood.png", nullptr},
        {"/home/someone/Wood.PNG", "Textures/wood.png", nullptr},
        {"old%20wood.png", "old wood.png", nullptr},
        {"wood.tga", "wood.tga", nullptr},
        {"wood.jpg", "wood.png", "\"wood.jpg\" is left out: there is no such file"},
        {"wood.png", nullptr, "\"wood.png\" is left out: it is no picture"},
        {"pipe", nullptr, "\"pipe\" is left out: there is no such file"},
    };
    QImage picture(2, 1, QImage::Format_RGB32);
    picture.setPixel(0, 0, qRgb(255, 0, 0));
    picture.setPixel(1, 0, qRgb(0, 0, 255));
    const QByteArray tga =
        QByteArray("\0\0\2\0\0\0\0\0\0\0\0\0\2\0\1\0\x20\0", 18) + QByteArray("\0\0\xff\xff\xff\0\0\xff", 8);
    for (const auto& row : rows) {
        const QTemporaryDir folder;
        ASSERT_EQ(::mkfifo(qPrintable(folder.filePath("pipe")), 0600), 0);
        const QString at = folder.filePath(row.at ? row.at : "wood.png");
        QDir().mkpath(QFileInfo(at).path());
        if (!row.at || at.endsWith(".tga")) {
            writtenFile(folder, row.at ? row.at : "wood.png", row.at ? tga : "no picture");
        } else {
            ASSERT_TRUE(picture.save(at));
        }
        writtenFile(folder, "m.mtl", QByteArray("newmtl m\nKd 0.5 0.5 0.5\nmap_Kd ") + row.named + "\n");
        const Model model =
            load(writtenFile(folder, "m.obj",
                             "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 1\nvt 1 1\nvt 1 0\n"
                             "usemtl m\nf 1/1 2/2 3/3\n"));
        const Material& material = model.parts.at(0).shape().material;
        EXPECT_EQ(material.texture == nullptr, row.note != nullptr) << row.named;
        if (row.note) {
            EXPECT_THAT(texts(model.notes), ElementsAre(HasSubstr(row.note))) << row.named;
        } else if (material.texture) {
            EXPECT_EQ(material.texture->image.pixel(0, 0), qRgb(255, 0, 0)) << row.named;
            EXPECT_EQ(material.texture->image.pixel(1, 0), qRgb(0, 0, 255)) << row.named;
        }
        EXPECT_EQ(material.color.red(), 128);
    }
}

TEST(ModelFiles, SayWhereATextureLiesAndWhatAlphaMeans)
{
    using Alpha = Material::Alpha;
    const QTemporaryDir folder;
    QImage picture(2, 2, QImage::Format_ARGB32);
    picture.fill(QColor(0, 0, 0, 0));
    ASSERT_TRUE(picture.save(folder.filePath("picture.png")));
    picture.fill(QColor(0, 0, 0, 100));
    ASSERT_TRUE(picture.save(folder.filePath("shade.png")));
    const struct
    {
        const char* material; ///< of glTF, or of OBJ
        Alpha alpha;
        int opacity;
    } rows[] = {
        {R"({"pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 0.5]}})", Alpha::Opaque, 255},
        {R"({"alphaMode": "BLEND", "pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 0.5]}})",
         Alpha::Blend, 128},
        {R"({"alphaMode": "MASK", "alphaCutoff": 0.25})", Alpha::CutOut, 255},
        {R"({"pbrMetallicRoughness": {"baseColorTexture": {"index": 0, "extensions": {"KHR_texture_transform":
             {"offset": [0.25, 0.5], "rotation": 1.5707963, "scale": [2, 3]}}}}})",
         Alpha::Opaque, 255},
        {"d 0.5", Alpha::Blend, 128},
        {"d 0", Alpha::Opaque, 255},
        {"map_Kd picture.png", Alpha::CutOut, 255},
        {"map_Kd shade.png", Alpha::Blend, 255},
    };
    for (const auto& row : rows) {
        const bool json = row.material[0] == '{';
        writtenFile(folder, "m.mtl", QByteArray("newmtl m\n") + row.material + "\n");
        const ModelSource model = source(
            json ? writtenFile(folder, "m.gltf", gltf(R"({"mesh": 0})", triangle, row.material))
                 : writtenFile(
                       folder, "m.obj",
                       "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0.5 0.75\nusemtl m\nf 1/1 2/1 3/1\n"));
        const hostkit::MeshSource& mesh = model.meshes.at(0);
        EXPECT_EQ(mesh.material.alpha, row.alpha) << row.material;
        EXPECT_EQ(mesh.material.color.alpha(), row.opacity) << row.material;
        EXPECT_EQ(mesh.material.cutoff, row.alpha == Alpha::CutOut && json ? 0.25f : 0.5f) << row.material;
        if (mesh.material.texture) {
            // glTF counts from the upper edge: 2 * 0.5 and 3 * 0.25, turned to 0.75 and -1, shifted.
            const hostkit::TexturePoint point = mesh.texturePoints.at(0);
            EXPECT_NEAR(point.s, json ? 1.0f : 0.5f, 1e-5f) << row.material;
            EXPECT_NEAR(point.t, json ? 1.5f : 0.75f, 1e-5f) << row.material;
        }
    }
}

TEST(ModelFiles, AreSeenAsFarAsAPictureOfTheirOpacitySays)
{
    const QRgb red = qRgb(255, 0, 0);
    const QRgb blue = qRgb(0, 0, 255);
    const QRgb white = qRgb(255, 255, 255);
    const QTemporaryDir folder;
    const auto paint = [&folder](const char* name, QSize size, QRgb left, QRgb right,
                                 QImage::Format format = QImage::Format_RGB32) {
        QImage picture(size, format);
        for (int x = 0; x < size.width(); ++x) {
            for (int y = 0; y < size.height(); ++y) {
                picture.setPixel(x, y, 2 * x < size.width() ? left : right);
            }
        }
        ASSERT_TRUE(picture.save(folder.filePath(name)));
    };
    paint("wood.png", {2, 1}, red, blue);
    paint("mask.png", {2, 1}, white, qRgb(0, 0, 0));
    paint("solid.png", {2, 1}, white, qRgb(0, 0, 0), QImage::Format_ARGB32);
    paint("gray.png", {2, 1}, white, qRgb(100, 100, 100));
    paint("alpha.png", {2, 1}, qRgba(0, 0, 0, 255), qRgba(255, 255, 255, 100), QImage::Format_ARGB32);
    paint("large.png", {8, 4}, white, qRgb(0, 0, 0));
    paint("board.png", {8, 4}, red, blue);
    const auto faint = [](QRgb color, int alpha) { return (color & 0xffffff) | QRgb(alpha) << 24; };
    const struct
    {
        const char* material;
        QSize size;
        QRgb left;
        QRgb right;
        Material::Alpha alpha;
    } rows[] = {
        {"map_Kd wood.png\nmap_d mask.png", {2, 1}, red, faint(blue, 0), Material::Alpha::CutOut},
        {"map_Kd wood.png\nmap_d solid.png", {2, 1}, red, faint(blue, 0), Material::Alpha::CutOut},
        {"map_Kd wood.png\nmap_d gray.png", {2, 1}, red, faint(blue, 100), Material::Alpha::Blend},
        {"map_Kd wood.png\nmap_d alpha.png", {2, 1}, red, faint(blue, 100), Material::Alpha::Blend},
        {"map_Kd wood.png\nmap_d large.png", {8, 4}, red, faint(blue, 0), Material::Alpha::CutOut},
        {"map_Kd board.png\nmap_d gray.png", {8, 4}, red, faint(blue, 100), Material::Alpha::Blend},
        {"map_Kd board.png\nmap_d alpha.png", {8, 4}, red, faint(blue, 100), Material::Alpha::Blend},
        {"map_Kd alpha.png\nmap_d mask.png", {2, 1}, qRgb(0, 0, 0), faint(white, 0), Material::Alpha::CutOut},
        {"map_Kd wood.png\nmap_d wood.png", {2, 1}, red, blue, Material::Alpha::Opaque},
        {"map_Kd wood.png\nmap_d none.png", {2, 1}, red, blue, Material::Alpha::Opaque},
        {"map_d mask.png", {2, 1}, white, faint(white, 0), Material::Alpha::CutOut},
    };
    for (const auto& row : rows) {
        writtenFile(folder, "m.mtl", QByteArray("newmtl m\n") + row.material + "\n");
        const ModelSource model = source(writtenFile(
            folder, "m.obj", "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nusemtl m\nf 1/1 2/1 3/1\n"));
        const Material& material = model.meshes.at(0).material;
        EXPECT_EQ(material.alpha, row.alpha) << row.material;
        ASSERT_TRUE(material.texture) << row.material;
        const QImage& picture = material.texture->image;
        EXPECT_EQ(picture.size(), row.size) << row.material;
        EXPECT_EQ(picture.pixel(0, 0), row.left) << row.material;
        EXPECT_EQ(picture.pixel(row.size.width() - 1, 0), row.right) << row.material;
    }
}
