#pragma once

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

#include "tests/ogl/GlStateProbe.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <QColor>
#include <QImage>

#include <gmock/gmock.h>

#include <functional>

namespace kelvartest {

/// A black window with its pixel centers at whole numbers. Each test must leave no GL error, no unbalanced
/// stack and no GL object of its own behind.
class OglFixture : public ::testing::Test
{
protected:
    explicit OglFixture(const QSize& size = QSize(160, 120))
        : window(0, 0, size.width(), size.height())
        , context(size)
    {
        glViewport(window);
        glMatrixMode(GL_MODELVIEW);
        gluOrtho2D(window);
        wipe();
    }

    // Behind the objects of the test, which belong to derived classes.
    ~OglFixture() override
    {
        EXPECT_EQ(context.faults(), "");
        EXPECT_EQ(GlRecorder::instance().liveObjects(), objectsBefore_);
    }

    static void wipe() { glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT); }

    QImage drawn(const std::function<void()>& draw)
    {
        wipe();
        draw();
        return context.grab();
    }

    /// The color of the pixel at (x, y), y upwards.
    static QColor pixel(const QImage& image, int x, int y) { return image.pixel(x, image.height() - 1 - y); }

    /// The smallest rectangle, y upwards, that holds all pixels that are not black; null without any.
    static QRect lit(const QImage& image)
    {
        QRect found;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (pixel(image, x, y) != QColor(Qt::black)) {
                    found |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    }

    const OruOglViewport window;
    GlContext context;

private:
    int objectsBefore_ = GlRecorder::instance().liveObjects();
};

} // namespace kelvartest
