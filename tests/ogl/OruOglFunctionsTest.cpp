#include "contracts/ogl/OruOglFunctions.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

TEST(OruOglViewport, NormalizedKeepsTheRectangleAndTurnsNegativeSides)
{
    const struct
    {
        const char* name;
        OruOglViewport given;
        OruOglViewport expected;
    } rows[] = {
        {"positive", {1, 2, 3, 4}, {1, 2, 3, 4}},
        {"left", {10, 2, -3, 4}, {7, 2, 3, 4}},
        {"down", {1, 20, 3, -4}, {1, 16, 3, 4}},
        {"both", {10, 20, -30, -40}, {-20, -20, 30, 40}},
        {"empty", {5, 6, 0, 0}, {5, 6, 0, 0}},
        {"no room below", {intMin, 0, intMin, -1}, {intMin, -1, intMax, 1}},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(OruOglViewport::normalized(row.given) == row.expected) << row.name;
    }
}

struct OrthoRow
{
    const char* name;
    OruOglViewport viewport;
    BoundingBox box;
    Matrix view;
    double width;   // of the span in x
    double nearest; // eye space depths of the planes
    double farthest;
};

std::vector<OrthoRow> orthoRows()
{
    const BoundingBox cube({-1, -1, -1}, {1, 1, 1});
    const OruOglViewport wide(0, 0, 200, 100);
    const float inf = std::numeric_limits<float>::infinity();
    const Matrix broken = Matrix::scale(std::numeric_limits<float>::quiet_NaN());
    return {
        {"cube", wide, cube, Matrix(), 4.0, -1.1, 1.1},
        {"place of the viewport plays no part", {7, 9, 200, 100}, cube, Matrix(), 4.0, -1.1, 1.1},
        {"tall", {0, 0, 100, 400}, cube, Matrix(), 0.5, -1.1, 1.1},
        {"moved away", wide, cube, Matrix::translate({0, 0, -10}), 4.0, 8.9, 11.1},
        {"zoomed in: planes only", wide, cube, Matrix::scale(100.0f), 4.0, -110.0, 110.0},
        {"turned", wide, BoundingBox({0, 0, 0}, {10, 0, 0}), Matrix::rotate({0, 1, 0}, 90.0f), 4.0, -0.5,
         10.5},
        {"undefined", wide, BoundingBox(), Matrix(), 4.0, -1.0, 1.0},
        {"flat", wide, BoundingBox({-5, -5, 3}, {5, 5, 3}), Matrix(), 4.0, -3.001, -2.999},
        {"flat and far", wide, BoundingBox({0, 0, 1e6f}, {1, 1, 1e6f}), Matrix(), 4.0, -1000010.0, -999990.0},
        {"empty viewport", {0, 0, 0, 0}, cube, Matrix(), 2.0, -1.1, 1.1},
        {"negative viewport", {0, 0, 10, -5}, cube, Matrix(), 2.0, -1.1, 1.1},
        {"broken view", wide, cube, broken, 4.0, -1.0, 1.0},
        {"boundless box", wide, BoundingBox({-inf, -inf, -inf}, {inf, inf, inf}), Matrix(), 4.0, -1.0, 1.0},
        {"beyond all measure", wide, BoundingBox({0, 0, -3e38f}, {0, 0, 3e38f}), Matrix(), 4.0, -1.0, 1.0},
        {"a line of pixels", {0, 0, intMax, 1}, cube, Matrix(), 2.0 * intMax, -1.1, 1.1},
    };
}

TEST(OruOglFunctions, OrthoHasAFixedSpanAndPlanesAroundTheBox)
{
    for (const OrthoRow& row : orthoRows()) {
        const Matrix projection = glGetOrtho(row.viewport, row.box, row.view);
        ASSERT_TRUE(projection.isFinite()) << row.name;
        const auto depth = static_cast<float>(-row.nearest);
        const Vector3 nearCorner =
            projection.transform(Vector3(static_cast<float>(row.width / 2.0), 1.0f, depth));
        EXPECT_NEAR(nearCorner.x, 1.0, 1e-5) << row.name;
        EXPECT_NEAR(nearCorner.y, 1.0, 1e-5) << row.name;
        EXPECT_NEAR(nearCorner.z, -1.0, 0.02) << row.name;
        EXPECT_NEAR(projection.transform(Vector3(0, 0, static_cast<float>(-row.farthest))).z, 1.0, 0.02)
            << row.name;
        EXPECT_TRUE((projection * projection.inverse()).isFinite() && projection.inverse() != Matrix())
            << row.name << ": can be inverted";
    }
}

} // namespace
