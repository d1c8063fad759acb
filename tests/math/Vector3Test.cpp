#include "contracts/math/Vector3.h"

#include "tests/math/MathMatchers.h"

#include <gtest/gtest.h>

#include <QRect>

#include <limits>

using namespace Kelvar::Math;

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

Matrix perspective()
{
    QMatrix4x4 result;
    result.perspective(40.0f, 1.6f, 1.0f, 200.0f);
    return fromQt(result);
}

Matrix orthographic()
{
    QMatrix4x4 result;
    result.ortho(-1.6f, 1.6f, -1.0f, 1.0f, -150.0f, 150.0f);
    return fromQt(result);
}

const Matrix View = Matrix::translate(Vector3(3.0f, -2.0f, 1.0f)) *
                    Matrix::rotate(Vector3(1.0f, 2.0f, 3.0f), 77.0f) * Matrix::scale(0.5f) *
                    Matrix::translate(Vector3(0.0f, 0.0f, -50.0f));

} // namespace

TEST(Vector3, DominantIsTheLargestMagnitude)
{
    const struct
    {
        Vector3 vector;
        int index;
    } rows[] = {
        {{1, 2, 3}, 2},   {{1, -5, 3}, 1},  {{-9, 5, 3}, 0},      {{2, 2, 1}, 0},
        {{1, -2, 2}, 1},  {{-2, 1, 2}, 0},  {{0, 0, 0}, 0},       {{0, 0, 1}, 2},
        {{NaN, 1, 2}, 0}, {{1, NaN, 2}, 2}, {{NaN, NaN, NaN}, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.index, row.vector.dominant()) << testing::PrintToString(row.vector);
    }
}

TEST(Vector3, Mult3x3LeavesTheTranslationOut)
{
    Vector3 turned(1.0f, 2.0f, 3.0f);
    turned.mult3x3(Matrix::translate(Vector3(9.0f, 9.0f, 9.0f)) * Matrix::rotate(VectorZ, 90.0f));
    EXPECT_EQ(Vector3(-2.0f, 1.0f, 3.0f), turned);
}

TEST(Vector3, ProjectsAndUnprojectsLikeTheReference)
{
    const int viewport[4] = {10, 20, 801, 487};
    const QRect rect(viewport[0], viewport[1], viewport[2], viewport[3]);
    for (const Matrix& projection : {orthographic(), perspective()}) {
        SCOPED_TRACE(testing::PrintToString(projection));
        for (const Vector3& point : {Vector0, Vector3(4, -3, 2), Vector3(-20, 15, 30), Vector3(1, 60, -7)}) {
            const Vector3 window = point.project(View, projection, viewport);
            const QVector3D reference = toQt(point).project(toQt(View), toQt(projection), rect);
            EXPECT_THAT(window, NearVector(fromQt(reference), 1e-5));
            EXPECT_THAT(window.unProject(View, projection, viewport), NearVector(point, 3e-4));
        }
    }
}

TEST(Vector3, NoWayBackGivesTheZeroVector)
{
    const int viewport[4] = {0, 0, 640, 480};
    const int flat[4] = {0, 0, 640, 0};
    const int inverted[4] = {0, 0, -640, 480};
    const Vector3 point(100.0f, 100.0f, 0.5f);
    EXPECT_NE(Vector0, point.unProject(View, orthographic(), viewport));
    EXPECT_EQ(Vector0, point.unProject(Matrix::scale(0.0f), orthographic(), viewport));
    EXPECT_EQ(Vector0, point.unProject(View, Matrix::scale(NaN), viewport));
    EXPECT_EQ(Vector0, point.unProject(View, orthographic(), flat));
    EXPECT_EQ(Vector0, point.unProject(View, orthographic(), inverted));
    EXPECT_EQ(Vector0, Vector3(NaN, 0.0f, 0.0f).unProject(View, orthographic(), viewport));
    EXPECT_EQ(Vector0, Vector3(5.0f, 5.0f, 0.0f).project(Matrix(), perspective(), viewport))
        << "in the eye's plane";
}
