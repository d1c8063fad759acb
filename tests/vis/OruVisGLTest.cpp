#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisTriadLayout.h"
#include "tests/ogl/OglFixture.h"
#include "tests/vis/VisStage.h"

#include <QTemporaryDir>

#include <algorithm>
#include <stdexcept>

using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

struct OruVisGLTest : OglFixture
{
    QTemporaryDir folder;
    VisStage stage{folder.path()};
    Probe::Log log;

    OruVisGLTest()
        : OglFixture(QSize(400, 320))
    {
        stage.viewport = window;
    }
};

int depth(unsigned int stack)
{
    int value = 0;
    glGetIntegerv(stack, &value);
    return value;
}

/// Draws a list in a frame of its own.
struct Group : OruVisualization
{
    explicit Group(OruModifiedGroup& sharedGroup)
        : OruVisualization(sharedGroup, "group")
    {}

    void draw3d(const DrawContext& context) override
    {
        DrawContext own = context;
        own.modelView = Matrix::translate({0.5f, 0, 0}) * context.modelView;
        if (keepInside) {
            own.keepDeferredInside();
        }
        glPushMatrix();
        glLoadMatrix(own.modelView);
        list.draw3d(own);
        glPopMatrix();
        drawnWhole = true;
    }

    OruVisList list{group, "list"};
    bool keepInside = false;
    bool drawnWhole = false;
};

} // namespace

TEST_F(OruVisGLTest, finds_transparent_objects_their_frame_and_state)
{
    OruVisList list(stage.group, "list");
    Group moved(stage.group);
    Probe glass(stage.group, "glass", log);
    Probe still(stage.group, "still", log);
    list.insert(&moved, true);
    list.insert(&still, true);
    moved.list.insert(&glass, true);
    glass.transparent = still.transparent = true;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const std::string before = glStateText();
    for (const bool inside : {false, true}) {
        moved.keepInside = inside;
        moved.drawnWhole = false;
        log.clear();
        glass.action = [&] {
            const bool second = log.back() == "transparent glass";
            EXPECT_EQ(glGetModelViewMatrix(), Matrix::translate({0.5f, 0, 0}));
            EXPECT_EQ(glIsEnabled(GL_BLEND), second);
            EXPECT_EQ(depth(GL_DEPTH_WRITEMASK), !second);
            EXPECT_EQ(moved.drawnWhole, second && !inside);
        };
        still.action = [] { EXPECT_EQ(glGetModelViewMatrix(), Matrix()); };
        list.draw3d(stage.draw());
        EXPECT_EQ(log.size(), 4U);
        EXPECT_EQ(glStateText(), before);
    }
}

TEST_F(OruVisGLTest, takes_stacks_back_when_an_entry_throws_out_of_any_operation)
{
    OruVisList list(stage.group, "list");
    OruVisList inner(stage.group, "inner");
    Probe thrower(stage.group, "thrower", log);
    list.insert(&inner, true);
    inner.insert(&thrower, true);
    thrower.action = [] {
        glPushAttrib(OruOglAllAttribBits);
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glPushAttrib(GL_ENABLE_BIT);
        glMatrixMode(GL_TEXTURE);
        throw std::runtime_error("on purpose");
    };
    const VisStage::Pick pick(stage, QPoint(9, 9), 3);
    const std::function<void()> operations[] = {
        [&] { list.update(stage.draw()); }, [&] { list.resize(stage.draw()); },
        [&] { list.draw3d(stage.draw()); }, [&] { list.draw2d(stage.draw()); },
        [&] { list.select3d(pick); },       [&] { list.select2d(pick); },
    };
    glPushMatrix();
    glPushAttrib(GL_ENABLE_BIT);
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations);
        EXPECT_THROW(operation(), std::runtime_error);
        EXPECT_EQ(depth(GL_ATTRIB_STACK_DEPTH), 1);
        EXPECT_EQ(depth(GL_MODELVIEW_STACK_DEPTH), 2);
        EXPECT_EQ(depth(GL_PROJECTION_STACK_DEPTH), 1);
        EXPECT_EQ(depth(GL_MATRIX_MODE), GL_MODELVIEW);
    }
    glPopAttrib();
    glPopMatrix();
}

TEST_F(OruVisGLTest, lights_a_surface_alike_under_all_scales_of_the_view)
{
    OruVisLightList lights(stage.group);
    OruVisLight& light = lights.child("light.1", OruVisLight::typeString);
    light.x.setValue(0.0f);
    light.y.setValue(0.0f);
    struct Row
    {
        const char* name;
        Matrix view;
        float z;
        bool inModel, listed, lit;
        double brightness;
    };
    const Matrix turned = Matrix::rotate(Kelvar::Math::VectorY, 60.0f);
    // Diffuse white times the cosine, and an ambient fifth of the material's ambient fifth.
    const Row rows[] = {
        {"plain", Matrix(), 1, false, true, true, 1.0},
        {"small", Matrix::scale(0.01f), 1, false, true, true, 1.0},
        {"large", Matrix::scale(100.0f), 1, false, true, true, 1.0},
        {"turned away from the head light", turned, 1, false, true, true, 0.54},
        {"turned with the light", turned, 1, true, true, true, 1.0},
        {"large, turned with the light", turned * Matrix::scale(50.0f), 1, true, true, true, 1.0},
        {"no direction: from the eye", Matrix(), 0, false, true, true, 1.0},
        {"light off", Matrix(), 1, false, true, false, 0.04},
        {"lighting off", Matrix(), 1, false, false, true, 0.5},
    };
    for (const Row& row : rows) {
        light.z.setValue(row.z);
        light.inModel.setValue(row.inModel);
        light.visible.setValue(row.lit);
        lights.visible.setValue(row.listed);
        wipe();
        glLoadMatrix(row.view);
        glPushAttrib(OruOglAllAttribBits);
        lights.setLighting();
        EXPECT_EQ(glGetModelViewMatrix(), row.view) << row.name;
        const float white[] = {1.0f, 1.0f, 1.0f, 1.0f};
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
        glColor3f(0.5f, 0.5f, 0.5f);
        glBegin(GL_QUADS);
        glNormal3f(0.0f, 0.0f, 1.0f);
        for (const Vector3& corner : {Vector3(-1, -1, 0), {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}) {
            const Vector3 point = row.view.inverse().transform(corner);
            glVertex3f(point.x, point.y, point.z);
        }
        glEnd();
        glPopAttrib();
        EXPECT_NEAR(pixel(context.grab(), 200, 160).redF(), row.brightness, 0.01) << row.name;
    }
}

TEST_F(OruVisGLTest, loads_as_many_visible_lights_as_there_are_numbers)
{
    OruVisLightList lights(stage.group);
    for (int i = 0; i < 11; ++i) {
        lights.child(QStringLiteral("light.%1").arg(i), OruVisLight::typeString).visible.setValue(i % 5 != 0);
    }
    const auto enabled = [](unsigned int number) { return glIsEnabled(GL_LIGHT0 + number) == GL_TRUE; };
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    lights.setLighting();
    for (unsigned int i = 0; i < 8; ++i) {
        EXPECT_TRUE(enabled(i)) << i;
    }
    for (unsigned int i = 2; i < 11; ++i) {
        lights.at(i)->setValue("visible", "false");
    }
    lights.setLighting();
    EXPECT_TRUE(enabled(0)) << "the second light, the only one that is on";
    for (unsigned int i = 1; i < 8; ++i) {
        EXPECT_FALSE(enabled(i)) << i;
    }
    glPopAttrib();
}

TEST_F(OruVisGLTest, shows_an_image_in_its_corner_with_what_is_transparent)
{
    QImage picture(28, 14, QImage::Format_ARGB32);
    picture.fill(Qt::white);
    picture.setPixelColor(0, 0, Qt::red);
    picture.setPixelColor(27, 13, Qt::blue);
    picture.setPixelColor(26, 13, Qt::transparent);
    ASSERT_TRUE(picture.save(folder.filePath("picture.png")));
    OruVisList list(stage.group, "list");
    OruVisImage image(stage.group);
    image.file.setValue("picture.png");
    image.height.setValue(56.0f);
    image.pixelated.setValue(true);
    list.insert(&image, true);
    const auto shown = [&] { return drawn([&] { list.draw2d(stage.draw()); }); };

    EXPECT_EQ(pixel(shown(), 288, 311), QColor(Qt::white));
    image.useTransparentColor.setValue(true);
    struct Row
    {
        const char* name;
        QPoint point;
        QColor color;
        bool hit;
    };
    // 112 by 56 pixels, 4 pixels from the right and the top, and each of the picture's pixels 4 by 4.
    const Row rows[] = {
        {"first pixel, topmost line", {284, 315}, Qt::red, true},
        {"left of it", {283, 315}, Qt::black, false},
        {"above it", {284, 316}, Qt::black, false},
        {"last red pixel", {287, 312}, Qt::red, true},
        {"the transparent color", {288, 312}, Qt::black, true},
        {"the picture's own alpha", {391, 260}, Qt::black, true},
        {"last pixel, lowest line", {395, 260}, Qt::blue, true},
        {"below it", {395, 259}, Qt::black, false},
        {"right of it", {396, 260}, Qt::black, false},
    };
    const QImage keyed = shown();
    for (const Row& row : rows) {
        EXPECT_EQ(pixel(keyed, row.point.x(), row.point.y()), row.color) << row.name;
        EXPECT_EQ(list.select2d(VisStage::Pick(stage, row.point, 1)).size(), row.hit) << row.name;
    }
    for (int red = 0; red < 40; ++red) {
        image.transparentColor.setValue(QColor(red, 0, 0));
        shown();
        stage.text.clear();
    }
    EXPECT_EQ(stage.cache.textureCount(), 1 + OruOglCache::spareImages);
    image.file.setValue("missing.png");
    EXPECT_TRUE(lit(shown()).isNull());
    ASSERT_TRUE(picture.save(folder.filePath("missing.png")));
    EXPECT_TRUE(lit(shown()).isNull()) << "looked for once";
    image.file.setValue("missing.png");
    EXPECT_FALSE(lit(shown()).isNull()) << "named again";
    image.file.setValue(QString());
    EXPECT_EQ(list.select2d(VisStage::Pick(stage, QPoint(300, 300), 9)).size(), 0U);
}

TEST_F(OruVisGLTest, draws_the_triad_turned_as_the_view)
{
    OruVisList list(stage.group, "list");
    list.child("triad", OruVisTriad::typeString);
    OruVisualization::DrawContext pass = stage.draw();
    struct Row
    {
        const char* name;
        Matrix view;
        /// From the triad's center half an axis along: the colors of X and Y.
        QPoint x, y;
    };
    const Matrix isometric = Matrix::rotate(Kelvar::Math::VectorX, -90.0f) *
                             Matrix::rotate(Kelvar::Math::VectorY, -45.0f) *
                             Matrix::rotate(Kelvar::Math::VectorX, 35.264f);
    const Row rows[] = {
        {"front", Matrix(), {22, 0}, {0, 22}},
        {"zoomed", Matrix::scale(30.0f) * Matrix::translate({9, 9, 9}), {22, 0}, {0, 22}},
        {"rolled", Matrix::rotate(Kelvar::Math::VectorZ, 90.0f), {0, 22}, {-22, 0}},
        {"isometric", isometric, {16, -9}, {16, 9}},
    };
    OruVisTriadLayout::Request request{QSize(400, 320), Matrix(), Qt::AlignLeft | Qt::AlignBottom,
                                       44.0f,           8.0f,     {}};
    const char* const texts[] = {"X", "Y", "Z", "-X", "-Y", "-Z", "Iso"};
    std::transform(std::begin(texts), std::end(texts), request.texts.begin(),
                   [&](const char* label) { return stage.text.size(label); });
    const QPoint center = OruVisTriadLayout(request).center().toPoint();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        pass.modelView = row.view;
        const QImage picture = drawn([&] {
            list.draw3d(pass);
            list.draw2d(pass);
        });
        EXPECT_TRUE(QRect(0, 0, 200, 160).contains(lit(picture)));
        EXPECT_GT(lit(picture).width(), 100) << "arms of 88 pixels, and labels at their ends";
        const QColor x = pixel(picture, center.x() + row.x.x(), center.y() + row.x.y());
        EXPECT_GT(x.red(), 2 * std::max(x.green(), x.blue()));
        const QColor y = pixel(picture, center.x() + row.y.x(), center.y() + row.y.y());
        EXPECT_GT(y.green(), 2 * std::max(y.red(), y.blue()));
    }
}
