#include "contracts/math/BoundingBox.h"

#include "contracts/math/Matrix.h"
#include "tests/math/MathMatchers.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Kelvar::Math;

static const BoundingBox Box(Vector3(-1.0f, 0.0f, 2.0f), Vector3(3.0f, 5.0f, 4.0f));

TEST(BoundingBox, UndefinedHoldsNothing)
{
    BoundingBox box;
    box *= Matrix::translate(Vector1);
    EXPECT_EQ(BoundingBox(), box);
    EXPECT_FALSE(box.defined());
    EXPECT_FALSE(box.intersects(box));

    box = Box;
    box.defined() = false;
    box.defined() = true;
    EXPECT_EQ(BoundingBox(Vector0, Vector0), box);
    box = Box;
    box.defined() = false;
    EXPECT_EQ(Vector0, box.center());
    EXPECT_EQ(0.0f, box.width());
    box.add(BoundingBox());
    EXPECT_FALSE(box.defined());
    box.add(Vector3(7.0f, 8.0f, 9.0f));
    EXPECT_EQ(Vector3(7.0f, 8.0f, 9.0f), box.min()) << "what it held before must be forgotten";
}

TEST(BoundingBox, MeasuresWhatItHolds)
{
    BoundingBox box;
    for (const Vector3& point : {Vector3(3, 0, 4), Vector3(0, 5, 2), Vector3(-1, 1, 3)}) {
        box.add(point);
    }
    box.add(Vector3(std::numeric_limits<float>::quiet_NaN(), 99.0f, 99.0f));
    EXPECT_EQ(Box, box);
    EXPECT_EQ(Box, BoundingBox(Box.max(), Box.min()));
    EXPECT_EQ(Vector3(1.0f, 2.5f, 3.0f), box.center());
    EXPECT_EQ(Vector3(4.0f, 5.0f, 2.0f), Vector3(box.width(), box.height(), box.depth()));
    EXPECT_EQ(Vector3(3.0f, 0.0f, 4.0f), box.corner(5));
    box.add(BoundingBox(Vector0, Vector3(0.0f, 9.0f, 0.0f)));
    EXPECT_EQ(BoundingBox(Vector3(-1, 0, 0), Vector3(3, 9, 4)), box);
}

TEST(BoundingBox, IntersectsWhatItTouches)
{
    const struct
    {
        BoundingBox other;
        bool meets;
    } rows[] = {
        {{{0, 1, 3}, {0, 1, 3}}, true},       // inside
        {{{3, 0, 2}, {4, 5, 4}}, true},       // touching a face
        {{{3.1f, 0, 2}, {4, 5, 4}}, false},   // beside in x
        {{{0, -2, 2}, {1, -0.1f, 4}}, false}, // below in y
        {{{0, 1, 0}, {1, 2, 1.9f}}, false},   // behind in z
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.meets, Box.intersects(row.other)) << testing::PrintToString(row.other.min());
        EXPECT_EQ(row.meets, row.other.intersects(Box)) << testing::PrintToString(row.other.min());
    }
}

TEST(BoundingBox, TransformedBoxIsTheTightestRoundItsCorners)
{
    QMatrix4x4 lens;
    lens.perspective(60.0f, 1.0f, 1.0f, 100.0f);
    const Matrix matrices[] = {
        Matrix::translate(Vector3(1.0f, -2.0f, 3.0f)),
        Matrix::rotate(VectorZ, 90.0f),
        Matrix::rotate(Vector3(1.0f, 1.0f, 0.5f), 35.0f),
        Matrix::scale(Vector3(-1.0f, 2.0f, 1.0f)),
        Matrix::scale(0.0f),
        Matrix::translate(Vector3(0.0f, 0.0f, -20.0f)) * fromQt(lens),
    };
    for (const Matrix& matrix : matrices) {
        SCOPED_TRACE(testing::PrintToString(matrix));
        BoundingBox box = Box;
        box *= matrix;
        QVector3D low = toQt(matrix).map(toQt(Box.corner(0)));
        QVector3D high = low;
        for (int corner = 1; corner < 8; ++corner) {
            const QVector3D image = toQt(matrix).map(toQt(Box.corner(corner)));
            for (int axis = 0; axis < 3; ++axis) {
                low[axis] = std::min(low[axis], image[axis]);
                high[axis] = std::max(high[axis], image[axis]);
            }
        }
        EXPECT_TRUE(box.defined());
        EXPECT_THAT(box.min(), NearVector(fromQt(low), 1e-5));
        EXPECT_THAT(box.max(), NearVector(fromQt(high), 1e-5));
    }
    BoundingBox lost = Box;
    lost *= Matrix::scale(std::numeric_limits<float>::quiet_NaN());
    EXPECT_FALSE(lost.defined());
}
