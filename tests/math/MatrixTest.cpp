#include "contracts/math/Matrix.h"

#include "tests/math/MathMatchers.h"

#include <gtest/gtest.h>

#include <QQuaternion>

#include <limits>
#include <random>
#include <string>

using namespace Kelvar::Math;

namespace {

/// A turn, a uniform scale and a shift as a view has them, drawn from a fixed sequence.
class RandomViews
{
public:
    Vector3 vector() { return Vector3(component_(random_), component_(random_), component_(random_)); }
    float degrees() { return 360.0f * component_(random_); }
    Matrix rotation() { return Matrix::rotate(vector(), degrees()); }
    Matrix view()
    {
        return Matrix::translate(vector() * 50.0f) * rotation() * Matrix::scale(0.1f + vector().length());
    }

private:
    std::mt19937 random_{4711};
    std::uniform_real_distribution<float> component_{-1.0f, 1.0f};
};

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

} // namespace

TEST(Matrix, RotatesLikeTheReference)
{
    RandomViews random;
    for (int i = 0; i < 50; ++i) {
        const Vector3 axis = random.vector() * 7.0f;
        const float degrees = random.degrees() * 3.0f;
        QMatrix4x4 reference;
        reference.rotate(degrees, toQt(axis));
        EXPECT_THAT(Matrix::rotate(axis, degrees), NearMatrix(fromQt(reference), 2e-6)) << "row " << i;
    }
}

TEST(Matrix, QuarterTurnsAreExactAndNoAxisIsNoTurn)
{
    EXPECT_EQ(VectorY, Matrix::rotate(VectorZ, 90.0f).transform(VectorX));
    EXPECT_EQ(VectorZ, Matrix::rotate(VectorX, -270.0f).transform(VectorY));
    EXPECT_EQ(-VectorX, Matrix::rotate(VectorY * 1e30f, 180.0f).transform(VectorX));
    EXPECT_EQ(Matrix::Identity, Matrix::rotate(VectorY, 720.0f));
    for (const Vector3& axis : {Vector0, Vector3(NaN, 0.0f, 1.0f), Vector3(Infinity, 0.0f, 0.0f)}) {
        EXPECT_EQ(Matrix::Identity, Matrix::rotate(axis, 30.0f));
    }
}

TEST(Matrix, ProductAppliesTheLeftFactorFirst)
{
    const Matrix shiftThenScale = Matrix::translate(VectorX) * Matrix::scale(Vector3(2.0f, 3.0f, 4.0f));
    EXPECT_EQ(Vector3(4.0f, 3.0f, 4.0f), shiftThenScale.transform(Vector1));
    EXPECT_EQ(Vector3(2.0f, 3.0f, 4.0f), shiftThenScale.transformDirection(Vector1));
    EXPECT_EQ(2.0f, shiftThenScale.data()[12]) << "OpenGL looks for the translation there";

    Matrix appended = Matrix::translate(VectorX);
    appended *= Matrix::scale(Vector3(2.0f, 3.0f, 4.0f));
    EXPECT_EQ(shiftThenScale, appended);
    appended *= appended;
    EXPECT_EQ(shiftThenScale * shiftThenScale, appended) << "a factor may be the matrix itself";
}

TEST(Matrix, MultipliesAndInvertsLikeTheReference)
{
    RandomViews random;
    QMatrix4x4 perspective;
    perspective.perspective(45.0f, 1.5f, 0.5f, 300.0f);
    for (int i = 0; i < 50; ++i) {
        const Matrix view = random.view();
        const Matrix skewed = view * Matrix::scale(Vector3(1.0f, 0.2f, 3.0f)) * random.view();
        EXPECT_THAT(view * fromQt(perspective), NearMatrix(fromQt(perspective * toQt(view)), 1e-5))
            << "row " << i;
        EXPECT_THAT(skewed.inverse(), NearMatrix(fromQt(toQt(skewed).inverted()), 1e-4)) << "row " << i;
        EXPECT_THAT(view * view.inverse(), NearMatrix(Matrix::Identity, 2e-5)) << "row " << i;
    }
}

TEST(Matrix, InverseKnowsOnlyTrueSingularity)
{
    for (float factor : {1e-20f, 1e-12f, 1e12f, 1e20f}) {
        const Matrix view = Matrix::scale(factor) * Matrix::rotate(Vector1, 33.0f);
        EXPECT_THAT(view.inverse() * view, NearMatrix(Matrix::Identity, 1e-6)) << factor;
    }
    const Matrix singular[] = {
        Matrix::scale(0.0f),
        Matrix::rotate(Vector1, 20.0f) * Matrix::scale(Vector3(1.0f, 1.0f, 0.0f)),
        Matrix(Vector3(1, 2, 3), Vector3(4, 5, 6), Vector3(7, 8, 9)), // dependent rows
        Matrix::scale(1e-40f),                                        // whose inverse is beyond float
        Matrix::scale(NaN),
        Matrix::translate(Vector3(Infinity, 0.0f, 0.0f)),
    };
    for (const Matrix& matrix : singular) {
        EXPECT_EQ(Matrix::Identity, matrix.inverse()) << testing::PrintToString(matrix);
    }
}

TEST(Matrix, OrientationIsTheRotationAlone)
{
    RandomViews random;
    for (float factor : {1e-18f, 1e-6f, 1.0f, 1e6f, 1e18f}) {
        const Vector3 axis = random.vector();
        const float degrees = random.degrees();
        const QMatrix4x4 turn(QQuaternion::fromAxisAndAngle(toQt(axis), degrees).toRotationMatrix());
        const Matrix reference = fromQt(turn);
        const Matrix shifted = Matrix::translate(random.vector()) * Matrix::rotate(axis, degrees);
        for (const Vector3& scale : {Vector3(1, 1, 1), Vector3(1, 2, 300), Vector3(-1, -1, -1)}) {
            SCOPED_TRACE(testing::PrintToString(scale * factor));
            const Matrix scaled = Matrix::scale(scale * factor);
            EXPECT_THAT((shifted * scaled).orientation(), NearMatrix(reference, 2e-6));
            EXPECT_THAT((scaled * shifted).orientation(), NearMatrix(reference, 2e-6));
        }
    }
    for (const Matrix& none : {Matrix::scale(0.0f), Matrix::scale(Vector3(1.0f, 0.0f, 1.0f)),
                               Matrix::scale(NaN), Matrix::scale(Infinity)}) {
        EXPECT_EQ(Matrix::Identity, none.orientation());
    }
}

TEST(Matrix, StandardOrientationsLookAtTheirPlanes)
{
    const struct
    {
        Matrix orientation;
        Vector3 right, up, towardsEye;
    } rows[] = {{Matrix::OrientXZ, VectorX, VectorZ, -VectorY},
                {Matrix::OrientYZ, VectorY, VectorZ, VectorX}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.towardsEye));
        const Matrix view = row.orientation.inverse();
        EXPECT_EQ(VectorX, view.transform(row.right));
        EXPECT_EQ(VectorY, view.transform(row.up));
        EXPECT_EQ(VectorZ, view.transform(row.towardsEye));
    }
}
