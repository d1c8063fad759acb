#include "contracts/ogl/OruOgl2D.h"
#include "contracts/ogl/OruOglStackDepths.h"

#include "tests/ogl/OglFixture.h"

#include <limits>
#include <stdexcept>

using kelvartest::glStateText;
using kelvartest::HostileState;

namespace {

using OruOglFunctionsGLTest = kelvartest::OglFixture;

TEST_F(OruOglFunctionsGLTest, EveryViewportIsHarmless)
{
    const int most = std::numeric_limits<int>::max();
    const OruOglViewport rows[] = {{0, 0, 0, 0}, {5, 6, -1, 7}, {5, 6, 7, -most}, {-most, most, most, most}};
    for (const OruOglViewport& row : rows) {
        glViewport(row);
        glPushMatrix();
        gluOrtho2D(row);
        EXPECT_TRUE(glGetModelViewMatrix().isFinite()) << row.width << " x " << row.height;
        glPopMatrix();
        EXPECT_EQ(context.faults(), "") << row.width << " x " << row.height;
    }
    glViewport(OruOglViewport(5, 6, 7, -8));
    EXPECT_TRUE(glGetViewport() == OruOglViewport(5, 6, 7, 0));
}

TEST_F(OruOglFunctionsGLTest, ColorsAreExact)
{
    const struct
    {
        QColor color;
        float alpha;
        int expectedAlpha;
    } rows[] = {{Qt::white, 17.0f, 17},
                {Qt::darkGray, 16.6f, 17},
                {Qt::red, -3.0f, 0},
                {QColor(1, 2, 3, 4), 1e9f, 255},
                {Qt::blue, std::numeric_limits<float>::quiet_NaN(), 255}};
    GLfloat now[4];
    for (const auto& row : rows) {
        glColor(row.color, row.alpha);
        glGetFloatv(GL_CURRENT_COLOR, now);
        EXPECT_FLOAT_EQ(now[0], static_cast<float>(row.color.red()) / 255.0f) << row.alpha;
        EXPECT_FLOAT_EQ(now[2], static_cast<float>(row.color.blue()) / 255.0f) << row.alpha;
        EXPECT_FLOAT_EQ(now[3], static_cast<float>(row.expectedAlpha) / 255.0f) << row.alpha;
    }
    glColor(QColor(1, 2, 3, 4));
    glGetFloatv(GL_CURRENT_COLOR, now);
    EXPECT_FLOAT_EQ(now[3], 4.0f / 255.0f);
    glClearColor(QColor(51, 102, 153));
    wipe();
    EXPECT_EQ(pixel(context.grab(), 3, 3), QColor(51, 102, 153));
    glClearColor(QColor(Qt::black));
}

TEST_F(OruOglFunctionsGLTest, ReadsUprightPixelsWhateverThePackState)
{
    glColor(QColor(10, 200, 30));
    glRectf(1.5f, 2.5f, 4.5f, 3.5f); // pixels 2 to 4 of row 3
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    glPixelStorei(GL_PACK_ROW_LENGTH, 1000);
    glPixelStorei(GL_PACK_SKIP_ROWS, 5);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 3);
    glPixelStorei(GL_PACK_SWAP_BYTES, GL_TRUE);
    glPixelTransferf(GL_RED_SCALE, 0.0f);
    glPixelTransferf(GL_GREEN_BIAS, 1.0f);
    const std::string before = glStateText();

    QImage image(3, 3, QImage::Format_Mono);
    glReadPixels(1, 2, 7, 5, image);

    EXPECT_EQ(glStateText(), before);
    EXPECT_EQ(image.size(), QSize(7, 5));
    EXPECT_EQ(image.format(), QImage::Format_RGB888);
    EXPECT_EQ(lit(image), QRect(1, 1, 3, 1));
    EXPECT_EQ(pixel(image, 1, 1), QColor(10, 200, 30));
    glReadPixels(window.width - 2, window.height - 2, 9, 9, image);
    EXPECT_EQ(lit(image), QRect()) << "black outside of the window";
    for (const QSize& none : {QSize(0, 5), QSize(5, -1), QSize(0x7fffffff, 0x7fffffff)}) {
        glReadPixels(0, 0, none.width(), none.height(), image);
        EXPECT_TRUE(image.isNull());
    }
    glDeleteBuffers(1, &buffer);
}

void throwInTheMiddle(bool inPrimitive)
{
    glPushAttrib(GL_ENABLE_BIT);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glPushAttrib(OruOglAllAttribBits);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glPushMatrix();
    if (inPrimitive) {
        glBegin(GL_LINES);
    }
    throw std::runtime_error("from a visualization");
}

TEST_F(OruOglFunctionsGLTest, StackDepthsTakeOffWhatAnExceptionLeft)
{
    for (const bool inPrimitive : {false, true}) {
        glPushAttrib(GL_ENABLE_BIT);
        glPushMatrix();
        const std::string before = glStateText();
        const OruOglStackDepths depths;
        EXPECT_THROW(throwInTheMiddle(inPrimitive), std::runtime_error);
        depths.restore();
        EXPECT_EQ(glStateText(), before) << inPrimitive;
        depths.restore();
        EXPECT_EQ(glStateText(), before) << "nothing left to take off";
        glPopMatrix();
        glPopAttrib();
        depths.restore();
        EXPECT_EQ(context.faults(), "") << "stacks that are lower stay";
    }
}

void drawBand(const OruOglViewport& viewport)
{
    OruOgl2D flat(viewport);
    flat.begin();
    flat.begin();
    glLoadIdentity();
    glColor(Qt::white, 17.0f);
    glLineWidth(2.0f);
    glEnable(GL_COLOR_LOGIC_OP);
    glLogicOp(GL_XOR);
    glRecti(20, 30, 60, 80);
    flat.end();
    flat.end();
}

TEST_F(OruOglFunctionsGLTest, ABandIsAnOutlineInAnyStateAndXorTakesItBack)
{
    drawBand(window);
    const QImage plain = context.grab();
    EXPECT_EQ(pixel(plain, 40, 50), QColor(Qt::black)) << "not filled";
    EXPECT_EQ(pixel(plain, 20, 50), QColor(Qt::white));
    EXPECT_EQ(pixel(plain, 40, 80), QColor(Qt::white));
    EXPECT_GE(lit(plain).width(), 41);
    EXPECT_LE(lit(plain).width(), 43) << "2 pixels wide";

    drawBand(window);
    EXPECT_EQ(lit(context.grab()), QRect());
    {
        const HostileState host;
        const std::string before = glStateText();
        drawBand(window);
        EXPECT_EQ(glStateText(), before);
        {
            const OruOgl2D abandoned(window);
            abandoned.begin();
        }
        EXPECT_EQ(glStateText(), before) << "ended by the destructor";
    }
    EXPECT_EQ(context.grab(), plain);
}

} // namespace
