#include "hosts/host/WindowCoordinates.h"

#include <gmock/gmock.h>

using hostkit::WindowCoordinates;

TEST(WindowCoordinates, FlipsAndScales)
{
    const struct
    {
        const char* name;
        qreal ratio;
        QPointF position;
        QPoint pixel;
    } rows[] = {
        {"upper left", 1.0, {0, 0}, {0, 600}},
        {"lower right", 1.0, {800, 600}, {800, 0}},
        {"within a pixel", 1.0, {3.9, 3.9}, {3, 597}},
        {"two pixels a unit", 2.0, {400.5, 300.5}, {801, -1}},
        {"half more", 1.5, {100, 50}, {150, 525}},
        {"left of it and above", 1.0, {-0.5, -0.5}, {-1, 601}},
        {"right of it and below", 1.5, {600, 401}, {900, -1}},
    };
    for (const auto& row : rows) {
        const QPoint pixel = WindowCoordinates::pixelAt(row.position, row.ratio, QSize(801, 601));
        EXPECT_EQ(pixel.x(), row.pixel.x()) << row.name;
        EXPECT_EQ(pixel.y(), row.pixel.y()) << row.name;
    }
}

TEST(WindowCoordinates, FindsThePixelThatTheWindowSystemMeant)
{
    for (const qreal ratio : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 4.0 / 3}) {
        for (int i = 0; i < 4000; ++i) {
            const QPointF position = QPointF(i, i) / ratio;
            const QPoint pixel = WindowCoordinates::pixelAt(position, ratio, QSize(4000, 4000));
            ASSERT_EQ(pixel.x(), i) << ratio;
            ASSERT_EQ(pixel.y(), 3999 - i) << ratio;
        }
    }
}
