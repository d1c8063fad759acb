#include "contracts/ogl/OruOglFont.h"
#include "contracts/core/OruResource.h"

#include <QFileInfo>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

const QString dejaVuFolder = QStringLiteral("/usr/share/fonts/truetype/dejavu");

OruResource fontResource()
{
    return OruResource(dejaVuFolder, QString(), QString());
}

class OruOglFontTest : public ::testing::Test
{
protected:
    OruOglFontTest()
    {
        if (font.family() != QLatin1String("DejaVu Sans")) {
            ADD_FAILURE() << "needs the package fonts-dejavu-core";
        }
    }

    OruResource resource = fontResource();
    OruOglFont font{resource, QStringLiteral("_default_"), 7};
};

TEST_F(OruOglFontTest, FindsFilesAndFamiliesAndFallsBackToTheDefault)
{
    const struct
    {
        const char* name;
        QString face;
        QString family;
    } rows[] = {
        {"default", QStringLiteral("_default_"), QStringLiteral("DejaVu Sans")},
        {"nothing", QString(), QStringLiteral("DejaVu Sans")},
        {"file in the font folder", QStringLiteral("DejaVuSansMono.ttf"), QStringLiteral("DejaVu Sans Mono")},
        {"path", dejaVuFolder + QStringLiteral("/DejaVuSansMono.ttf"), QStringLiteral("DejaVu Sans Mono")},
        {"family", QStringLiteral("dejavu sans mono"), QStringLiteral("DejaVu Sans Mono")},
        {"family that is not there", QStringLiteral("No Such Family"), QStringLiteral("DejaVu Sans")},
        {"file that is no font", QStringLiteral("/etc/passwd"), QStringLiteral("DejaVu Sans")},
        {"folder", dejaVuFolder, QStringLiteral("DejaVu Sans")},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(OruOglFont(resource, row.face, 7).family(), row.family) << row.name;
    }
}

TEST_F(OruOglFontTest, SizeIsTheHeightOfASmallX)
{
    for (const unsigned int size : {5U, 7U, 12U, 24U}) {
        const OruOglFont sized(resource, QString(), size);
        const auto layout = sized.layout(QStringLiteral("x"));
        EXPECT_EQ(sized.rasterise(layout.glyphs.at(0).glyph).rows, static_cast<int>(size)) << size;
    }
}

TEST_F(OruOglFontTest, MeasuresLinesAndAdvances)
{
    const int line = font.lineHeight();
    const int x = font.size(QStringLiteral("x")).width();
    const struct
    {
        const char* name;
        QString text;
        QSize size;
    } rows[] = {
        {"empty", QString(), QSize(0, 0)},
        {"one", QStringLiteral("x"), QSize(x, line)},
        {"sum", QStringLiteral("xxx"), QSize(3 * x, line)},
        {"widest line counts", QStringLiteral("x\nxxx\nxx"), QSize(3 * x, 3 * line)},
        {"last line empty", QStringLiteral("x\n"), QSize(x, 2 * line)},
        {"control characters have no width", QStringLiteral("x\r\ax"), QSize(2 * x, line)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(font.size(row.text), row.size) << row.name;
    }
    EXPECT_GT(font.size(QStringLiteral("\t")).width(), font.size(QStringLiteral(" ")).width());
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
