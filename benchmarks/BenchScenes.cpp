#include "benchmarks/BenchScenes.h"

#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/SampleMeshes.h"
#include "hosts/mesh/ShapeBuilder.h"
#include "benchmarks/Bench.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <random>
#include <stdexcept>

namespace bench {

using hostkit::MeshSource;
using hostkit::Model;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

struct GridScene
{
    const char* name;
    int columns, rows, layers;
    uint32_t triangles;
};

const GridScene gridScenes[] = {
    {"1 object of 1,000,000 triangles", 1, 1, 1, 1000000},
    {"1,000 objects of 500", 10, 10, 10, 500},
    {"10,000 objects of 100", 25, 20, 20, 100},
    {"100,000 objects of 20", 50, 50, 40, 20},
};

const char* const engineName = "engine";
const char* const cloudName = "1,000,000 points";

MeshSource sphereAt(const hostkit::SampleMesh& sphere, const Vector3& place, int number)
{
    MeshSource source;
    source.name = QStringLiteral("sphere %1").arg(number);
    source.material.color = QColor::fromHsv(number * 47 % 360, 120, 230).toRgb();
    source.positions = sphere.positions;
    for (Vector3& position : source.positions) {
        position += place;
    }
    source.normals = sphere.normals;
    source.indices = sphere.indices;
    return source;
}

/// A bumpy sphere as a scanner sees it: colored, without normals, with some noise, in the order of the scan.
MeshSource cloud(uint32_t points)
{
    std::mt19937 random(1);
    const auto noise = [&random] { return 1.0f + 0.01f * static_cast<float>(random() % 1000) / 1000.0f; };
    MeshSource source;
    source.name = QStringLiteral("cloud");
    source.primitive = hostkit::Primitive::Points;
    source.positions = hostkit::bumpySphere(2 * points).positions;
    source.positions.resize(points);
    for (Vector3& position : source.positions) {
        source.indices.push_back(static_cast<uint32_t>(source.indices.size()));
        const auto shade = static_cast<uint32_t>(127.0f + 100.0f * position.z);
        source.colors.push_back(0xFF000000u | shade << 16 | 0x8000u | (255 - shade));
        position *= noise();
    }
    return source;
}

/// Surfaces only.
Arrays arraysOf(const Model& model)
{
    Arrays arrays;
    model.visitParts([&](const hostkit::ModelPart& part) {
        const auto shape = part.as<hostkit::Mesh>();
        if (!shape) {
            return;
        }
        const hostkit::Mesh& mesh = *shape;
        MeshSource source{mesh.name,   mesh.material,      mesh.positions, mesh.normals,
                          mesh.colors, mesh.texturePoints, mesh.indices};
        for (Vector3& position : source.positions) {
            position = part.placement.transform(position);
        }
        const Matrix turn = part.placement.orientation();
        for (Vector3& normal : source.normals) {
            normal = turn.transformDirection(normal);
        }
        arrays.push_back(std::move(source));
    });
    return arrays;
}

} // namespace

QStringList sceneNames()
{
    QStringList names = allSceneNames();
    names.removeAt(static_cast<int>(std::size(gridScenes)) - 1);
    return names;
}

QStringList allSceneNames()
{
    QStringList names;
    for (const GridScene& scene : gridScenes) {
        names.append(QString::fromLatin1(scene.name));
    }
    return names << QString::fromLatin1(engineName) << QString::fromLatin1(cloudName);
}

Scene makeScene(const QString& name, const QString& engineFile)
{
    for (const GridScene& scene : gridScenes) {
        if (name == QLatin1String(scene.name)) {
            return {name, sphereGrid(scene.columns, scene.rows, scene.layers, scene.triangles), true};
        }
    }
    if (name == QLatin1String(cloudName)) {
        return {name, {cloud(1000000)}, false};
    }
    if (name != QLatin1String(engineName)) {
        throw std::runtime_error("there is no scene " + name.toStdString());
    }
    hostkit::Progress progress;
    return {name, arraysOf(hostkit::ModelImporter::load(engineFile, progress)), false};
}

Arrays sphereGrid(int columns, int rows, int layers, uint32_t triangles, float spacing)
{
    const hostkit::SampleMesh sphere = hostkit::bumpySphere(triangles);
    Arrays arrays;
    for (int layer = 0; layer < layers; ++layer) {
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                const Vector3 place(static_cast<float>(column), static_cast<float>(row),
                                    static_cast<float>(layer));
                arrays.push_back(sphereAt(sphere, place * spacing, static_cast<int>(arrays.size()) + 1));
            }
        }
    }
    return arrays;
}

Arrays gear()
{
    constexpr uint32_t lines = 160;
    constexpr uint32_t pieces = 3125;
    MeshSource source;
    source.name = QStringLiteral("gear");
    source.material.color = QColor(190, 190, 200);
    for (uint32_t piece = 0; piece <= pieces; ++piece) {
        for (uint32_t line = 0; line < lines; ++line) {
            // Teeth of two lines outside and two inside.
            const float radius = line % 4 < 2 ? 1.0f : 0.85f;
            const float angle = 6.2831853f * static_cast<float>(line) / lines;
            const float height = 2.0f * static_cast<float>(piece) / pieces;
            source.positions.emplace_back(radius * std::cos(angle), radius * std::sin(angle), height);
        }
    }
    for (uint32_t piece = 0; piece < pieces; ++piece) {
        for (uint32_t line = 0; line < lines; ++line) {
            const uint32_t a = piece * lines + line;
            const uint32_t b = piece * lines + (line + 1) % lines;
            source.indices.insert(source.indices.end(), {a, b, b + lines, a, b + lines, a + lines});
        }
    }
    return {source};
}

Model buildModel(Arrays arrays)
{
    Model model;
    model.name = QStringLiteral("model");
    for (MeshSource& source : arrays) {
        model.parts.emplace_back(*hostkit::ShapeBuilder::build(std::move(source), [](float) {}));
    }
    return model;
}

void show(hostkit::HostScene& host, const Model& model)
{
    host.setSize(frameSize());
    hostkit::ModelParts(host.scene().render.visualizations).add(model);
    host.showFrom(QStringLiteral("iso"));
    host.draw();
}

void magnifyToShare(hostkit::HostScene& host, const Model& model, double share)
{
    const Matrix view = host.context().modelView;
    const float aspect = static_cast<float>(frameWidth) / static_cast<float>(frameHeight);
    // How far from the middle of the view, which reaches to 1 upwards and to `aspect` sideways.
    std::vector<float> reach;
    for (const auto& part : model.parts) {
        for (const Vector3& position : part.shape().positions) {
            const Vector3 seen = view.transform(position);
            reach.push_back(std::max(std::abs(seen.x) / aspect, std::abs(seen.y)));
        }
    }
    const auto border =
        reach.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(reach.size()));
    std::nth_element(reach.begin(), border, reach.end());
    const float factor = 1.0f / *border;
    setView(host, view * Matrix::scale(Vector3(factor, factor, factor)));
}

void setView(hostkit::HostScene& host, const Matrix& view)
{
    host.scene().setViewpoint(host.context().viewpointName, view);
    host.changed();
    host.draw();
}

} // namespace bench
