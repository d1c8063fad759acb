#include "Knot.h"

#include "contracts/ogl/OruOglGeometry.h"

#include <QColor>

#include <cmath>
#include <cstdint>
#include <vector>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

namespace {

const unsigned int ringCount = 360;
const unsigned int ringPoints = 24;
const float tubeRadius = 0.55f;
const float turn = 6.28318531f;

/// The curve for t in [0, 1]: within 3 units of the origin in x and y, within 1 in z.
Vector3 curve(float t)
{
    const float a = turn * t;
    return {std::sin(a) + 2.0f * std::sin(2.0f * a), std::cos(a) - 2.0f * std::cos(2.0f * a),
            -std::sin(3.0f * a)};
}

struct Tube
{
    std::vector<Vector3> positions;
    std::vector<Vector3> normals;
    std::vector<std::uint8_t> colors;
    std::vector<std::uint32_t> indices;
};

/// One ring of points about the curve at `t`. The curve never runs along Z, which serves to build its frame.
void addRing(Tube& tube, float t)
{
    const Vector3 along = (curve(t + 0.001f) - curve(t - 0.001f)).normalized();
    const Vector3 side = cross(Kelvar::Math::VectorZ, along).normalized();
    const Vector3 up = cross(along, side);
    const QColor color = QColor::fromHsvF(t, 0.75, 0.95);
    for (unsigned int i = 0; i < ringPoints; ++i) {
        const float a = turn * static_cast<float>(i) / static_cast<float>(ringPoints);
        const Vector3 normal = side * std::cos(a) + up * std::sin(a);
        tube.normals.push_back(normal);
        tube.positions.push_back(curve(t) + normal * tubeRadius);
        for (const int part : {color.red(), color.green(), color.blue(), 255}) {
            tube.colors.push_back(static_cast<std::uint8_t>(part));
        }
    }
}

/// The two triangles between neighbouring points of neighbouring rings.
void addPatch(Tube& tube, unsigned int ring, unsigned int i)
{
    const unsigned int next = (ring + 1) % ringCount;
    const unsigned int j = (i + 1) % ringPoints;
    const std::uint32_t a = ring * ringPoints + i;
    const std::uint32_t b = ring * ringPoints + j;
    const std::uint32_t c = next * ringPoints + j;
    const std::uint32_t d = next * ringPoints + i;
    tube.indices.insert(tube.indices.end(), {a, b, c, a, c, d});
}

Tube makeTube()
{
    Tube tube;
    for (unsigned int ring = 0; ring < ringCount; ++ring) {
        addRing(tube, static_cast<float>(ring) / static_cast<float>(ringCount));
        for (unsigned int i = 0; i < ringPoints; ++i) {
            addPatch(tube, ring, i);
        }
    }
    return tube;
}

} // namespace

Knot::Knot(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, QStringLiteral("example.knot"))
{
    rename(QStringLiteral("knot"));
    setReach(Reach::WhenInView);
}

Knot::~Knot() = default;

void Knot::draw3d(const DrawContext& context)
{
    if (!mesh_ || !mesh_->belongsTo(context.geometry)) {
        const Tube tube = makeTube();
        OruOglMeshArrays arrays;
        arrays.positions = &tube.positions.front().x;
        arrays.normals = &tube.normals.front().x;
        arrays.colors = tube.colors.data();
        arrays.vertexCount = tube.positions.size();
        arrays.indices = tube.indices.data();
        arrays.indexCount = tube.indices.size();
        mesh_ = context.geometry.makeMesh();
        mesh_->upload(arrays);
    }
    mesh_->draw();
}

BoundingBox Knot::bounds() const
{
    const Vector3 reach(3.0f + tubeRadius, 3.0f + tubeRadius, 1.0f + tubeRadius);
    return BoundingBox(-reach, reach);
}
