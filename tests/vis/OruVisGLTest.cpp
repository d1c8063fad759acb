#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisTriadLayout.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"
#include "tests/vis/VisStage.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

struct OruVisGLTest : testing::Test
{
    GlContext gl{QSize(400, 320)};
    QTemporaryDir folder;
    std::unique_ptr<VisStage> stage{new VisStage(folder.path())};
    Probe::Log log;

    OruVisGLTest() { stage->viewport = OruOglViewport(0, 0, 400, 320); }

    void TearDown() override
    {
        EXPECT_EQ(gl.faults(), "");
        stage.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
        EXPECT_EQ(gl.faults(), "");
    }

    /// The matrices and the clear frame of a 2D pass over black.
    void begin2d()
    {
        glViewport(stage->viewport);
        glClearColor(QColor(Qt::black));
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        gluOrtho2D(stage->viewport);
    }

    /// The colour at a pixel, y up.
    QColor pixel(int x, int y) const
    {
        QImage image;
        ::glReadPixels(x, y, 1, 1, image);
        return image.pixelColor(0, 0);
    }

    /// Where KELVAR_TEST_PICTURES names a folder, the picture stays there to be looked at.
    void keep(const char* name) const
    {
        const QByteArray pictures = qgetenv("KELVAR_TEST_PICTURES");
        if (!pictures.isEmpty()) {
            gl.grab().save(QString(pictures) + "/" + name + ".png");
        }
    }
};

void expectColor(const QColor& actual, const QColor& expected, const char* what)
{
    EXPECT_NEAR(actual.red(), expected.red(), 3) << what;
    EXPECT_NEAR(actual.green(), expected.green(), 3) << what;
    EXPECT_NEAR(actual.blue(), expected.blue(), 3) << what;
}

int depth(unsigned int stack)
{
    int value = 0;
    glGetIntegerv(stack, &value);
    return value;
}

} // namespace

TEST_F(OruVisGLTest, takes_stacks_back_when_an_entry_throws_out_of_any_operation)
{
    OruVisList list(stage->group, "list");
    OruVisList inner(stage->group, "inner");
    Probe thrower(stage->group, "thrower", log);
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
    struct Row
    {
        const char* name;
        void (*run)(OruVisList&, VisStage&);
    };
    const Row rows[] = {
        {"update", [](OruVisList& l, VisStage& s) { l.update(s.draw()); }},
        {"resize", [](OruVisList& l, VisStage& s) { l.resize(s.draw()); }},
        {"draw3d", [](OruVisList& l, VisStage& s) { l.draw3d(s.draw()); }},
        {"draw2d", [](OruVisList& l, VisStage& s) { l.draw2d(s.draw()); }},
        {"select3d", [](OruVisList& l, VisStage& s) { l.select3d(VisStage::Pick(s, QPoint(9, 9), 3)); }},
        {"select2d", [](OruVisList& l, VisStage& s) { l.select2d(VisStage::Pick(s, QPoint(9, 9), 3)); }},
    };
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glPushAttrib(GL_ENABLE_BIT);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_THROW(row.run(list, *stage), std::runtime_error);
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
    OruVisLightList lights(stage->group);
    OruVisLight& light = lights.child("light.1", OruVisLight::typeString);
    glViewport(stage->viewport);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);

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
    light.x.setValue(0.0f);
    light.y.setValue(0.0f);
    for (const Row& row : rows) {
        light.z.setValue(row.z);
        light.inModel.setValue(row.inModel);
        light.visible.setValue(row.lit);
        lights.visible.setValue(row.listed);
        glClear(GL_COLOR_BUFFER_BIT);
        glLoadMatrix(row.view);
        glPushAttrib(OruOglAllAttribBits);
        lights.setLighting();
        EXPECT_EQ(glGetModelViewMatrix(), row.view) << row.name;
        const float white[] = {1.0f, 1.0f, 1.0f, 1.0f};
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
        glColor3f(0.5f, 0.5f, 0.5f);
        glBegin(GL_QUADS);
        glNormal3f(0.0f, 0.0f, 1.0f);
        const Matrix toEye = row.view.inverse();
        for (const Vector3& corner :
             {Vector3(-1, -1, 0), Vector3(1, -1, 0), Vector3(1, 1, 0), Vector3(-1, 1, 0)}) {
            const Vector3 point = toEye.transform(corner);
            glVertex3f(point.x, point.y, point.z);
        }
        glEnd();
        glPopAttrib();
        EXPECT_NEAR(pixel(200, 160).redF(), row.brightness, 0.01) << row.name;
    }
}

TEST_F(OruVisGLTest, loads_as_many_visible_lights_as_there_are_numbers)
{
    OruVisLightList lights(stage->group);
    for (int i = 0; i < 11; ++i) {
        lights.child(QString("light.%1").arg(i), OruVisLight::typeString).visible.setValue(i % 5 != 0);
    }
    glMatrixMode(GL_MODELVIEW);
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

TEST_F(OruVisGLTest, shows_an_image_in_its_corner_without_its_transparent_colour)
{
    QImage picture(32, 16, QImage::Format_RGB32);
    picture.fill(Qt::white);
    for (int x = 0; x < 8; ++x) {
        for (int y = 0; y < 8; ++y) {
            picture.setPixelColor(x, y, Qt::red);
            picture.setPixelColor(31 - x, 15 - y, Qt::blue);
        }
    }
    ASSERT_TRUE(picture.save(folder.filePath("picture.png")));
    OruVisList list(stage->group, "list");
    OruVisImage image(stage->group);
    image.file.setValue("picture.png");
    image.pixelated.setValue(true);
    image.useTransparentColor.setValue(true);
    list.insert(&image, true);

    begin2d();
    list.draw2d(stage->draw());
    keep("image");
    // 128 by 64 pixels, 4 pixels from the right and the top.
    expectColor(pixel(268, 315), Qt::red, "first pixel, topmost line");
    expectColor(pixel(267, 315), Qt::black, "left of it");
    expectColor(pixel(268, 316), Qt::black, "above it");
    expectColor(pixel(299, 284), Qt::red, "last red pixel");
    expectColor(pixel(300, 284), Qt::black, "transparent");
    expectColor(pixel(395, 252), Qt::blue, "last pixel, lowest line");
    expectColor(pixel(396, 252), Qt::black, "right of it");

    struct Row
    {
        QPoint point;
        std::size_t hits;
    };
    for (const Row& row : {Row{{268, 315}, 1}, {{267, 315}, 0}, {{395, 252}, 1}, {{395, 251}, 0}}) {
        const OruVisHitRecordList hits = list.select2d(VisStage::Pick(*stage, row.point, 1));
        EXPECT_EQ(hits.size(), row.hits) << row.point.x() << " " << row.point.y();
    }
    image.file.setValue("missing.png");
    begin2d();
    list.draw2d(stage->draw());
    expectColor(pixel(268, 315), Qt::black, "no such file");
    EXPECT_EQ(list.select2d(VisStage::Pick(*stage, QPoint(300, 300), 9)).size(), 0U);
}

TEST_F(OruVisGLTest, draws_the_triad_turned_as_the_view)
{
    OruVisList list(stage->group, "list");
    list.child("triad", OruVisTriad::typeString);
    OruVisualization::DrawContext context = stage->draw();
    struct Row
    {
        const char* name;
        Matrix view;
        /// From the triad's centre half an axis along: the colours of X, Y and Z.
        QPoint x, y;
    };
    const Row rows[] = {
        {"triad-front", Matrix(), {22, 0}, {0, 22}},
        {"triad-zoomed", Matrix::scale(30.0f) * Matrix::translate({9, 9, 9}), {22, 0}, {0, 22}},
        {"triad-rolled", Matrix::rotate(Kelvar::Math::VectorZ, 90.0f), {0, 22}, {-22, 0}},
        {"triad-iso",
         Matrix::rotate(Kelvar::Math::VectorX, -90.0f) * Matrix::rotate(Kelvar::Math::VectorY, -45.0f) *
             Matrix::rotate(Kelvar::Math::VectorX, 35.264f),
         {16, -9},
         {16, 9}},
    };
    OruVisTriadLayout::Request request{QSize(400, 320), Matrix(), Qt::AlignLeft | Qt::AlignBottom,
                                       44.0f,           8.0f,     {}};
    const char* const texts[] = {"X", "Y", "Z", "-X", "-Y", "-Z", "Iso"};
    std::transform(std::begin(texts), std::end(texts), request.texts.begin(),
                   [&](const char* label) { return stage->text.size(label); });
    const QPoint centre = OruVisTriadLayout(request).centre().toPoint();
    for (const Row& row : rows) {
        context.modelView = row.view;
        begin2d();
        list.draw3d(context);
        list.draw2d(context);
        keep(row.name);
        const QImage picture = gl.grab();
        int lit = 0;
        int outside = 0;
        for (int line = 0; line < picture.height(); ++line) {
            for (int column = 0; column < picture.width(); ++column) {
                const bool black = picture.pixelColor(column, line) == QColor(Qt::black);
                (column < 200 && line >= 160 ? lit : outside) += black ? 0 : 1;
            }
        }
        EXPECT_EQ(outside, 0) << row.name;
        EXPECT_GT(lit, 1500) << row.name;
        const QColor x = pixel(centre.x() + row.x.x(), centre.y() + row.x.y());
        EXPECT_GT(x.red(), 2 * std::max(x.green(), x.blue())) << row.name;
        const QColor y = pixel(centre.x() + row.y.x(), centre.y() + row.y.y());
        EXPECT_GT(y.green(), 2 * std::max(y.red(), y.blue())) << row.name;
    }
}
