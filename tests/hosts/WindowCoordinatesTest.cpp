#include "hosts/kit/WindowCoordinates.h"

#include <gmock/gmock.h>

#include <ostream>

using hostkit::WindowCoordinates;

TEST(WindowCoordinates, FlipsAndScales)
{
    const struct
    {
        const char* name;
        QSize window;
        qreal ratio;
        QPointF position;
        QSize framebuffer;
        QPoint pixel;
    } rows[] = {
        {"upper left", {801, 601}, 1.0, {0, 0}, {801, 601}, {0, 600}},
        {"lower right", {801, 601}, 1.0, {800, 600}, {801, 601}, {800, 0}},
        {"within a pixel", {801, 601}, 1.0, {3.9, 3.9}, {801, 601}, {3, 597}},
        {"two pixels a unit", {401, 301}, 2.0, {400.5, 300.5}, {802, 602}, {801, 0}},
        {"a quarter more, first", {801, 601}, 1.25, {0, 0}, {1001, 751}, {0, 750}},
        {"a quarter more, last", {801, 601}, 1.25, {800.2, 600.2}, {1001, 751}, {1000, 0}},
        {"half more", {333, 111}, 1.5, {100, 50}, {500, 167}, {150, 91}},
        {"left of it and above", {100, 100}, 1.0, {-0.5, -0.5}, {100, 100}, {-1, 100}},
        {"right of it and below", {100, 100}, 1.5, {100, 100}, {150, 150}, {150, -1}},
        {"no window at all", {0, 0}, 1.0, {0, 0}, {1, 1}, {0, 0}},
    };
    for (const auto& row : rows) {
        const QSize framebuffer = WindowCoordinates::devicePixels(row.window, row.ratio);
        EXPECT_TRUE(framebuffer == row.framebuffer) << row.name;
        const QPoint pixel = WindowCoordinates::pixelAt(row.position, row.ratio, framebuffer);
        EXPECT_EQ(pixel.x(), row.pixel.x()) << row.name;
        EXPECT_EQ(pixel.y(), row.pixel.y()) << row.name;
    }
}

TEST(WindowCoordinates, GivesEachRowOfPixelsItsOwnPosition)
{
    for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
        const QSize framebuffer = WindowCoordinates::devicePixels(QSize(37, 23), ratio);
        for (int row = 0; row < framebuffer.height(); ++row) {
            const QPointF centre(0.0, (row + 0.5) / ratio);
            EXPECT_EQ(WindowCoordinates::pixelAt(centre, ratio, framebuffer).y(),
                      framebuffer.height() - 1 - row)
                << "row " << row << " at " << ratio;
        }
    }
}
