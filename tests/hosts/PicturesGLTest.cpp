// Pictures that are more than one capture, and the files that they are written to.

#include "contracts/core/OruPropertiesFile.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisTriad.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/PictureWriter.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"
#include "tests/scene/SceneFixture.h"

#include <QImageReader>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using testing::HasSubstr;

namespace {

const QSize size(400, 200);

/// A red cube, its front a square of 100 pixels in the middle of 400 x 200, and a logo and a triad.
struct PicturesGLTest : testing::Test
{
    GlContext gl{QSize(160, 120)};
    std::unique_ptr<HostScene> host{new HostScene};
    Matrix view = Matrix::rotate(Kelvar::Math::VectorX, -90.0f) * Matrix::scale(0.5f);

    PicturesGLTest()
    {
        host->setSize(gl.size());
        OruVisList& all = host->scene().render.visualizations;
        host->scene().setViewpoint("viewpoint", view);
        Model model;
        model.parts.emplace_back(built(cubeSource()));
        ModelParts(all).add(model);
        all.child("triad", OruVisTriad::typeString);
        set("render/visualization/triad/length", "12");
        set("render/visualization/kelvar logo/visible", "true");
        set("render/background", "#ff38465a");
        host->draw();
    }

    void TearDown() override
    {
        EXPECT_EQ(gl.faults(), "");
        host.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
    }

    void set(const char* path, const char* value)
    {
        QString error;
        EXPECT_TRUE(host->setValue(path, value, &error)) << error.toStdString();
    }

    QByteArray tree() { return OruPropertiesFile::text(host->scene()); }

    QImage picture(int samples, double overlayScale = 1.0, bool transparent = false, int enlarged = 1)
    {
        PictureOptions options;
        options.samples = samples;
        options.overlayScale = overlayScale;
        options.transparent = transparent;
        return host->picture(size * enlarged, options);
    }
};

/// How much of the way from one color to the other a pixel is.
double share(QRgb pixel, QRgb from, QRgb to)
{
    return double(qBlue(pixel) - qBlue(from)) / (qBlue(to) - qBlue(from));
}

/// The pixels of a corner that are other than `back`.
int drawnIn(const QImage& picture, const QRect& corner, QRgb back)
{
    int count = 0;
    for (int y = corner.top(); y <= corner.bottom(); ++y) {
        for (int x = corner.left(); x <= corner.right(); ++x) {
            count += picture.pixel(x, y) != back;
        }
    }
    return count;
}

TEST_F(PicturesGLTest, APixelOnAnEdgeShowsTheShareThatIsCovered)
{
    // The square's lower left corner lies at the pixel (150, 50), counted from below; then at parts of it.
    for (const double part : {0.3, 0.5, 0.85}) {
        const auto shift = static_cast<float>(part * 2.0 / size.height());
        const Matrix moved = view * Matrix::translate(Vector3(shift, shift, 0.0f));
        for (const int samples : {2, 3, 8, 64}) {
            PictureOptions options;
            options.samples = samples;
            const QImage picture = host->picture(size, moved, options);
            const QRgb back = picture.pixel(300, 100);
            const QRgb front = picture.pixel(200, 100);
            const double tolerance = 0.5 / samples + 1.5 / std::abs(qBlue(front) - qBlue(back));
            EXPECT_NEAR(share(picture.pixel(150, 100), front, back), part, tolerance) << samples << " left";
            EXPECT_NEAR(share(picture.pixel(250, 100), back, front), part, tolerance) << samples << " right";
            EXPECT_NEAR(share(picture.pixel(200, 149), front, back), part, tolerance) << samples << " below";
            EXPECT_NEAR(share(picture.pixel(200, 49), back, front), part, tolerance) << samples << " above";
            EXPECT_EQ(picture.pixel(149, 100), back) << samples;
            EXPECT_EQ(picture.pixel(151, 100), front) << samples;
        }
    }
}

TEST_F(PicturesGLTest, WhatLiesOverTheSceneIsAsInACapture)
{
    const QImage capture = host->picture(size);
    EXPECT_EQ(picture(1), capture);
    host->context().tooltip = "sharp";
    host->context().mouse.move(QPoint(150, 120), Kelvar::UI::Toolkit::ModifierNone);
    set("render/visualization/cube/visible", "false");
    const QImage overlays = host->picture(size);
    EXPECT_NE(overlays, capture);
    EXPECT_EQ(picture(8), overlays);
}

TEST_F(PicturesGLTest, LeavesTreeAndWindowAsTheyWere)
{
    const QByteArray before = tree();
    const QImage window = gl.grab();
    for (const bool transparent : {false, true}) {
        ASSERT_FALSE(picture(2, 3.0, transparent).isNull());
        EXPECT_EQ(tree(), before);
        EXPECT_EQ(gl.grab(), window);
    }
    EXPECT_TRUE(picture(0).isNull());
    EXPECT_TRUE(picture(1, 99.0).isNull());
    OruVisList& all = host->scene().render.visualizations;
    Probe throwing(all.group);
    throwing.box = host->context().bounds;
    throwing.action = [](const std::string& pass) {
        if (pass == "draw2d") {
            throw std::runtime_error(pass);
        }
    };
    throwing.rename("throwing");
    ASSERT_TRUE(all.insert(&throwing, true));
    const QByteArray withThrowing = tree();
    EXPECT_THROW(picture(2, 3.0, true), std::runtime_error);
    EXPECT_EQ(tree(), withThrowing);
    throwing.action = nullptr;
    host->picture(size);
    EXPECT_EQ(gl.grab(), window) << "a capture draws the window again, as before";
}

TEST_F(PicturesGLTest, DrawsEachSampleOnceAndTheWindowOnce)
{
    GlRecorder::instance().start();
    picture(8);
    const auto calls = GlRecorder::instance().stop();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "glFinish()"), 9);
}

TEST_F(PicturesGLTest, OverlaysGrowByTheirScale)
{
    set("render/visualization/cube/visible", "false");
    const QImage small = picture(1);
    const QImage large = picture(1, 3.0, false, 3);
    const QRgb back = small.pixel(300, 100);
    for (const QRect& corner : {QRect(1, 90, 110, 109), QRect(310, 1, 89, 80)}) {
        const QRect larger(corner.topLeft() * 3, corner.size() * 3);
        const int drawn = drawnIn(small, corner, back);
        EXPECT_GT(drawn, 100);
        EXPECT_NEAR(drawnIn(large, larger, back), 9.0 * drawn, 9.0 * drawn * 0.25);
    }
    set("render/visualization/kelvar logo/unit", "1"); // percent, which grow with the picture anyway
    set("render/visualization/kelvar logo/height", "40");
    const QRect right(900, 3, 297, 594);
    EXPECT_EQ(picture(1, 3.0, false, 3).copy(right), picture(1, 1.0, false, 3).copy(right));
}

TEST_F(PicturesGLTest, ATransparentPictureOverTheBackgroundIsTheOpaqueOne)
{
    const QRgb back = qRgb(0x38, 0x46, 0x5a);
    for (const int samples : {1, 8}) {
        const QImage opaque = picture(samples);
        const QImage clear = picture(samples, 1.0, true);
        ASSERT_EQ(clear.format(), QImage::Format_ARGB32);
        EXPECT_EQ(qAlpha(clear.pixel(300, 100)), 0);
        EXPECT_EQ(qAlpha(clear.pixel(200, 100)), 255);
        int worst = 0;
        for (int i = 0; i < size.width() * size.height(); ++i) {
            const QPoint at(i % size.width(), i / size.width());
            const QRgb over = clear.pixel(at);
            for (const int part : {0, 8, 16}) {
                const auto byte = [part](QRgb color) { return static_cast<int>(color >> part & 255); };
                const int mixed = byte(over) * qAlpha(over) + byte(back) * (255 - qAlpha(over));
                worst = std::max(worst, std::abs(qRound(mixed / 255.0) - byte(opaque.pixel(at))));
            }
        }
        EXPECT_LE(worst, 2) << samples;
    }
}

TEST_F(PicturesGLTest, ThePerformanceTextIsSharpAndOpaque)
{
    OruVisList& all = host->scene().render.visualizations;
    Probe slow(all.group);
    slow.box = host->context().bounds;
    int draws = 0;
    slow.action = [&](const std::string& pass) {
        const std::clock_t start = std::clock();
        while (pass == "draw2d" && draws % 2 == 0 && std::clock() - start < CLOCKS_PER_SEC / 16) {
        }
        draws += pass == "draw2d";
    };
    slow.rename("slow");
    ASSERT_TRUE(all.insert(&slow, true));
    set("render/textInfo", "true");
    const std::vector<QColor> sharp = {Qt::darkGray, Qt::lightGray, QColor(0x38, 0x46, 0x5a)};
    for (const bool transparent : {false, true}) {
        const QImage shown = picture(4, 1.0, transparent);
        EXPECT_EQ(QColor(shown.pixel(396, 196)), QColor(Qt::darkGray)) << transparent;
        EXPECT_EQ(qAlpha(shown.pixel(396, 196)), 255) << transparent;
        for (int x = 120; x < 398 && !transparent; ++x) {
            EXPECT_THAT(sharp, testing::Contains(QColor(shown.pixel(x, 196)))) << x;
        }
    }
}

TEST_F(PicturesGLTest, FilesTellWhatTheyCanCarry)
{
    QTemporaryDir folder;
    const QImage clear = picture(2, 1.0, true);
    const QString title = QString::fromUtf8("Maße");
    const struct
    {
        const char* name;
        bool exact;
        bool texts;
        bool resolution;
    } rows[] = {
        {"a.png", true, true, true},     {"pipe", true, true, true},   {"a.b.JPG", false, true, true},
        {"a.webp", false, false, false}, {"a.tif", true, false, true},
    };
    for (const auto& row : rows) {
        QString error;
        PictureWriter writer(folder.filePath(row.name));
        writer.setText("Title", title);
        writer.setDotsPerInch(300);
        ASSERT_TRUE(writer.write(clear, &error)) << error.toStdString();
        QImageReader reader(folder.filePath(row.name));
        reader.setDecideFormatFromContent(true);
        const QImage read = reader.read();
        EXPECT_EQ(read.size(), size) << row.name;
        const auto kept = QImage::Format_ARGB32_Premultiplied; // a TIFF has no other
        EXPECT_EQ(read.convertToFormat(kept) == clear.convertToFormat(kept), row.exact) << row.name;
        EXPECT_EQ(read.text("Title") == title, row.texts) << row.name;
        EXPECT_EQ(read.dotsPerMeterX() == 11811, row.resolution) << row.name << read.dotsPerMeterX();
        const bool seeThrough = writer.accepts(size, true, &error);
        EXPECT_EQ(seeThrough, qAlpha(read.pixel(300, 100)) == 0) << row.name;
        EXPECT_TRUE(seeThrough || error.contains("it is in png, webp, tif, tiff")) << error.toStdString();
    }
    QString error;
    EXPECT_TRUE(PictureWriter("a.webp").accepts(QSize(1, 16383), true, &error));
    EXPECT_FALSE(PictureWriter("a.webp").accepts(QSize(1, 16384), true, &error));
    EXPECT_EQ(error, "a.webp: a webp file can be 16383 pixels wide and high at most");
    EXPECT_FALSE(PictureWriter(folder.filePath("a.xyz")).write(clear, &error));
    EXPECT_THAT(error.toStdString(),
                HasSubstr("a.xyz: a picture is written as png, jpg, jpeg, webp, tif, tiff"));
    EXPECT_FALSE(PictureWriter(folder.filePath("no/a.png")).write(clear, &error));
    EXPECT_THAT(error.toStdString(), HasSubstr("no/a.png: "));
}

} // namespace
