#include "contracts/ogl/OruOglFont.h"
#include "contracts/core/OruResource.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

const QString folder = "/usr/share/fonts/truetype/dejavu"; // of the package fonts-dejavu-core

struct OruOglFontTest : ::testing::Test
{
    OruResource resource{folder, QString(), QString()};
    OruOglFont font{resource, "_default_", 7};
};

TEST_F(OruOglFontTest, FindsFilesAndFamiliesAndFallsBackToTheDefault)
{
    const struct
    {
        const char* name;
        QString face;
        QString family;
    } rows[] = {
        {"default", "_default_", "DejaVu Sans"},
        {"nothing", QString(), "DejaVu Sans"},
        {"file in the font folder", "DejaVuSansMono.ttf", "DejaVu Sans Mono"},
        {"path", folder + "/DejaVuSansMono.ttf", "DejaVu Sans Mono"},
        {"family", "dejavu sans mono", "DejaVu Sans Mono"},
        {"family that is not there", "No Such Family", "DejaVu Sans"},
        {"file that is no font", "/etc/passwd", "DejaVu Sans"},
        {"folder", folder, "DejaVu Sans"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(OruOglFont(resource, row.face, 7).family(), row.family) << row.name;
    }
}

TEST_F(OruOglFontTest, SizeIsTheHeightOfASmallX)
{
    for (const unsigned int size : {5U, 7U, 12U, 24U}) {
        const OruOglFont sized(resource, QString(), size);
        const auto layout = sized.layout("x");
        EXPECT_EQ(sized.rasterise(layout.glyphs.at(0).glyph).rows, static_cast<int>(size)) << size;
    }
}

TEST_F(OruOglFontTest, MeasuresLinesAndAdvances)
{
    const int line = font.lineHeight();
    const int x = font.size("x").width();
    const struct
    {
        const char* name;
        QString text;
        QSize size;
    } rows[] = {
        {"empty", QString(), QSize(0, 0)},
        {"one", "x", QSize(x, line)},
        {"sum", "xxx", QSize(3 * x, line)},
        {"widest line counts", "x\nxxx\nxx", QSize(3 * x, 3 * line)},
        {"last line empty", "x\n", QSize(x, 2 * line)},
        {"control characters have no width", "x\r\ax", QSize(2 * x, line)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(font.size(row.text), row.size) << row.name;
    }
    EXPECT_GT(font.size("\t").width(), font.size(" ").width());
}

TEST_F(OruOglFontTest, KernsPairs)
{
    const OruOglFont large(resource, QString(), 30);
    const auto width = [&large](const char* text) { return large.size(QString::fromUtf8(text)).width(); };
    EXPECT_LT(width("AV"), width("A") + width("V"));
    EXPECT_EQ(width("HH"), 2 * width("H"));
}

TEST_F(OruOglFontTest, ShowsUnicodeAndABoxForWhatItLacks)
{
    const auto glyphs = font.layout(QString::fromUtf8("ä€Ω𝛀\xF4\x80\x80\x80")).glyphs;
    ASSERT_EQ(glyphs.size(), 5U) << "a character beyond 16 bits is one glyph";
    for (int i = 0; i < 3; ++i) {
        EXPECT_NE(glyphs[i].glyph, OruOglFont::missingGlyph) << i;
    }
    ASSERT_EQ(glyphs[4].glyph, OruOglFont::missingGlyph);
    const OruOglFont::Bitmap box = font.rasterise(glyphs[4].glyph);
    EXPECT_EQ(box.coverage.size(), static_cast<std::size_t>(box.width) * box.rows);
    EXPECT_EQ(std::count(box.coverage.begin(), box.coverage.end(), 255), 2 * (box.width + box.rows) - 4);
}

} // namespace
