#pragma once

#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/SampleMeshes.h"
#include "tests/math/MathMatchers.h"
#include "tests/vis/VisStage.h"

#include <QMatrix4x4>

#include <cstdint>
#include <random>

namespace kelvartest {

/// A pick window in a viewport of 64 x 64 pixels.
inline OruVisPickVolume volumeAt(const Kelvar::Math::Matrix& modelView, const QMatrix4x4& projection,
                                 QPoint pixel, int size)
{
    VisStage stage;
    stage.viewport = OruOglViewport(0, 0, 64, 64);
    VisStage::Pick context(stage, pixel, size);
    context.modelView = modelView;
    context.projection = fromQt(projection);
    return OruVisPickVolume(context);
}

/// Unconnected triangles in a cube of edge 2 about the origin.
inline hostkit::SampleMesh soup(uint32_t triangles, float size)
{
    std::mt19937 random(triangles);
    std::uniform_real_distribution<float> unit(-1.0F, 1.0F);
    const auto point = [&] { return Kelvar::Math::Vector3(unit(random), unit(random), unit(random)); };
    hostkit::SampleMesh mesh;
    for (uint32_t i = 0; i < triangles; ++i) {
        const Kelvar::Math::Vector3 place = point();
        for (uint32_t corner = 0; corner < 3; ++corner) {
            mesh.indices.push_back(3 * i + corner);
            mesh.positions.push_back(place + point() * size);
        }
    }
    return mesh;
}

/// Pick windows on a cube of edge 2 about the origin that was scaled and moved.
struct RandomView
{
    bool perspective;
    int pickSize;
    float zoom = 1.0F;
    float scale = 1.0F;
    Kelvar::Math::Vector3 offset = {};
};

/// Another one each time.
inline OruVisPickVolume volumeOf(const RandomView& view, std::mt19937& random)
{
    const auto unit = [&random] { return std::uniform_real_distribution<float>(-1.0F, 1.0F)(random); };
    QMatrix4x4 projection;
    const float half = 2.0F / view.zoom;
    if (view.perspective) {
        projection.perspective(50.0F / view.zoom, 1.0F, 0.5F, 6.0F);
    } else {
        projection.ortho(-half, half, -half, half, 0.5F, 6.0F);
    }
    Kelvar::Math::Matrix modelView =
        Kelvar::Math::Matrix::translate(-view.offset) * Kelvar::Math::Matrix::scale(1.0F / view.scale);
    modelView *= Kelvar::Math::Matrix::rotate(Kelvar::Math::Vector3{unit(), 1.0F, unit()}, 180.0F * unit());
    modelView *= Kelvar::Math::Matrix::rotate(Kelvar::Math::Vector3{unit(), unit(), 1.0F}, 180.0F * unit());
    modelView *= Kelvar::Math::Matrix::translate(Kelvar::Math::Vector3(0.0F, 0.0F, -1.5F + unit()));
    const QPoint pixel{32 + static_cast<int>(36 * unit()), 32 + static_cast<int>(36 * unit())};
    return volumeAt(modelView, projection, pixel, view.pickSize);
}

} // namespace kelvartest
