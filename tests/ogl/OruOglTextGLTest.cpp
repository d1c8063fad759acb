#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruResource.h"
#include "contracts/debug/logger.h"
#include "contracts/ogl/OruOglBoxedText.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/ogl/internal/OruOglGlyphAtlas.h"

#include "tests/debug/RecordingSink.h"
#include "tests/ogl/OglFixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using Kelvar::Math::Angle;
using kelvartest::glStateText;
using kelvartest::HostileState;

namespace {

struct OruOglTextGLTest : kelvartest::OglFixture
{
    // The same picture in a host's worst state, which must come back untouched.
    void expectSameInHostileState(const std::function<void()>& draw)
    {
        const QImage plain = drawn(draw);
        wipe();
        const HostileState host;
        const std::string before = glStateText();
        draw();
        EXPECT_EQ(glStateText(), before);
        EXPECT_EQ(context.grab(), plain);
    }

    OruResource resource{QString(), QString(), QString()};
    OruOglCache cache{resource};
    OruOglText text{cache, 7, OruOglText::defaultFace};
    OruOglBoxedText boxed{text};
};

TEST_F(OruOglTextGLTest, TextFillsItsBoxCrisply)
{
    const QString label = "HIlE";
    const QImage image = drawn([&] { text.draw(QPoint(20, 30), label); });
    const QRect box(QPoint(20, 30), text.size(label));
    EXPECT_TRUE(box.contains(lit(image)));
    EXPECT_EQ(lit(image).top(), 30 + text.descent()) << "letters stand on the baseline";
    EXPECT_GE(lit(image).height(), 9);
    const QImage moved = drawn([&] { text.draw(QPoint(71, 52), label); });
    EXPECT_EQ(image.copy(20, 0, 80, 90), moved.copy(71, -22, 80, 90)) << "the same pixels wherever it stands";
}

TEST_F(OruOglTextGLTest, LinesRunDownwards)
{
    const QImage image = drawn([&] { text.draw(QPoint(10, 10), "I\nIIIIIIII"); });
    const int line = text.lineHeight();
    EXPECT_LT(lit(image.copy(0, window.height - 10 - 2 * line, window.width, line)).width(), 5)
        << "first line on top";
    EXPECT_GT(lit(image.copy(0, window.height - 10 - line, window.width, line)).width(), 20);
}

TEST_F(OruOglTextGLTest, ColorAndFrame)
{
    const QString blocks = QStringLiteral("\u2588\u2588");
    const auto color = [&] { return pixel(drawn([&] { text.draw(QPoint(20, 30), blocks); }), 26, 37); };
    EXPECT_EQ(color(), QColor(Qt::white));
    text.setColor(QColor(10, 200, 30));
    EXPECT_EQ(color(), QColor(10, 200, 30));
    text.setColor(QColor(200, 100, 0, 128));
    EXPECT_NEAR(color().red(), 100, 1) << "mixed with black by its alpha";
    text.clear();
    EXPECT_EQ(color(), QColor(Qt::white)) << "a new frame";
}

TEST_F(OruOglTextGLTest, SelectModeFillsTheBoxInTheCurrentColor)
{
    const QString label = "pick me";
    text.setSelectMode(true);
    glColor(QColor(1, 2, 3));
    const QImage image = drawn([&] { text.draw(QPoint(20, 30), label); });
    EXPECT_EQ(lit(image), QRect(QPoint(20, 30), text.size(label)));
    EXPECT_EQ(pixel(image, 25, 35), QColor(1, 2, 3));
    EXPECT_EQ(lit(drawn([&] { boxed.draw(QPoint(20, 30), label); })),
              QRect(QPoint(20, 30), boxed.size(label)));
    text.setSelectMode(false);
    EXPECT_NE(lit(drawn([&] { text.draw(QPoint(20, 30), label); })), lit(image));
}

TEST_F(OruOglTextGLTest, TheStateOfTheHostNeitherMattersNorChanges)
{
    text.setColor(Qt::yellow);
    boxed.floating = true;
    expectSameInHostileState([&] { text.draw(QPoint(5, 5), "state"); });
    expectSameInHostileState([&] { boxed.draw(QPoint(50, 50), "state"); });
    text.setSelectMode(true);
    glColor(QColor(Qt::cyan));
    text.draw(QPoint(0, 0), QString());
    boxed.draw(QPoint(0, 0), QString());
    text.draw(QPoint(100000, -100000), "far outside");
}

TEST_F(OruOglTextGLTest, TheBoxLiesOnTheNamedSideOfItsPoint)
{
    const QPoint point(80, 60);
    const QString label = "Ag";
    const QSize size = boxed.size(label);
    EXPECT_EQ(size, text.size(label) + QSize(10, 10));
    const int left = point.x() - size.width();
    const int below = point.y() - size.height();
    const struct
    {
        const char* name;
        int alignment;
        QPoint corner;
        QPoint shadow; // a pixel that only the shadow reaches
    } rows[] = {
        {"left, bottom", 65, {left, below}, {left - 2, below + 5}},
        {"right, bottom", 66, {point.x(), below}, {point.x() + size.width() + 1, below + 5}},
        {"right, top", 34, point, {point.x() + 10, point.y() + size.height() + 1}},
        {"left, top", 33, {left, point.y()}, {left - 1, point.y() + 5}},
        {"centered", Qt::AlignCenter, {80 - size.width() / 2, 60 - size.height() / 2}, {-1, -1}},
        {"no side named", 0, point, {-1, -1}},
    };
    glClearColor(QColor(100, 100, 100));
    for (const auto& row : rows) {
        boxed.clear();
        boxed.setColor(QColor(255, 0, 0), QColor(0, 0, 255));
        boxed.setAlignment(QFlag(row.alignment));
        const QImage image = drawn([&] { boxed.draw(point, label); });
        text.setAngle(Angle(90.0));
        EXPECT_EQ(drawn([&] { boxed.draw(point, label); }), image) << row.name << ": upright";
        text.setAngle(Angle());
        const QRect box(row.corner, size);
        EXPECT_EQ(pixel(image, box.left(), box.top()), QColor(255, 0, 0)) << row.name;
        EXPECT_EQ(pixel(image, box.right(), box.bottom()), QColor(255, 0, 0)) << row.name;
        EXPECT_EQ(pixel(image, box.left() + 1, box.top() + 1), QColor(0, 0, 255)) << row.name;
        EXPECT_EQ(pixel(image, box.left() - 1, box.top() + 5), QColor(100, 100, 100)) << row.name;
        EXPECT_EQ(pixel(image, box.left() + 5, box.bottom() + 1), QColor(100, 100, 100)) << row.name;
        if (row.shadow.x() >= 0) {
            boxed.floating = true;
            const QImage shadowed = drawn([&] { boxed.draw(point, label); });
            EXPECT_LT(pixel(shadowed, row.shadow.x(), row.shadow.y()).red(), 100) << row.name;
            EXPECT_EQ(pixel(shadowed, point.x() - (row.corner.x() < point.x() ? 0 : 1), box.center().y()),
                      QColor(100, 100, 100))
                << row.name << ": the shadow stays on the side of the box";
        }
    }
    glClearColor(QColor(Qt::black));
}

TEST_F(OruOglTextGLTest, GlyphPagesAreSharedGrowAndGoWithDisuse)
{
    OruOglText same(cache, 7, OruOglText::defaultFace);
    text.draw(QPoint(0, 0), "shared");
    same.draw(QPoint(0, 0), "shared");
    EXPECT_EQ(cache.textureCount(), 1U);

    OruOglText large(cache, 100, OruOglText::defaultFace);
    QString many;
    for (int character = 0x100; character < 0x300; ++character) {
        many += QChar(character);
    }
    large.draw(QPoint(0, 0), many);
    EXPECT_GT(cache.textureCount(), 2U) << "a page that is full is followed by another one";

    for (std::uint64_t frame = 0; frame <= OruOglGlyphAtlas::pageLife; ++frame) {
        text.draw(QPoint(0, 0), "kept");
        text.clear();
        large.clear();
    }
    EXPECT_EQ(cache.textureCount(), 1U);
    EXPECT_FALSE(lit(drawn([&] { large.draw(QPoint(0, 0), "I"); })).isNull()) << "comes back";
}

TEST_F(OruOglTextGLTest, ImagesAreKeptWhileInUseAndAskedForOnce)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("image.png");
    EXPECT_EQ(cache.image(file), nullptr);
    EXPECT_EQ(cache.imageSize(file), QSize(0, 0));
    ASSERT_TRUE(QImage(5, 3, QImage::Format_ARGB32).save(file));
    EXPECT_EQ(cache.image(file), nullptr) << "asked for once";
    cache.lookAgain(file);

    const std::string before = glStateText();
    const auto plain = cache.image(file);
    const auto keyed = cache.image(file, QColor(255, 0, 255));
    EXPECT_EQ(glStateText(), before);
    ASSERT_TRUE(plain && keyed);
    EXPECT_EQ(plain->size, QSize(5, 3));
    EXPECT_EQ(cache.imageSize(file), QSize(5, 3));
    EXPECT_NE(plain->name, keyed->name);
    for (int red = 0; red < 200; ++red) {
        cache.image(file, QColor(red, 0, 0));
        EXPECT_LE(cache.textureCount(), 3 + OruOglCache::spareImages) << red;
    }
    const std::weak_ptr<const OruOglTexture> last = cache.image(file, QColor(199, 0, 0));
    text.clear();
    EXPECT_EQ(cache.textureCount(), 2 + OruOglCache::spareImages);
    EXPECT_FALSE(last.expired()) << "the oldest go first";
    EXPECT_EQ(cache.image(file), plain) << "kept";
    cache.clear();
    EXPECT_EQ(plain->name, 0U);
}

TEST_F(OruOglTextGLTest, WhatIsNoImageIsRefusedUnread)
{
    const QTemporaryDir folder;
    const auto write = [&](const char* name, const QByteArray& content) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << name;
    };
    write("wide.pgm", "P5 16385 1 255\n");
    write("high.pgm", "P5 1 16385 255\n");
    write("cut.pgm", "P5 90 90 255\n");
    write("text.png", "no image");
    EXPECT_EQ(mkfifo(folder.filePath("fifo.png").toLocal8Bit(), 0600), 0);
    EXPECT_TRUE(QImage(OruOglCache::largestSide, 1, QImage::Format_Mono).save(folder.filePath("long.png")));
    const struct
    {
        const char* file;
        const char* reason;
    } rows[] = {
        {"wide.pgm", "16385 x 1 pixels, more than 16384"},
        {"high.pgm", "1 x 16385 pixels, more than 16384"},
        {"cut.pgm", "nable to read"},
        {"text.png", "nsupported image format"},
        {"fifo.png", "not a regular file"},
        {"", "not a regular file"},
        {"long.png", nullptr},
        {"missing.png", nullptr},
    };
    const auto sink = std::make_shared<RecordingSink>();
    oru::debug_logger::debuglogger().setSink(sink);
    for (const auto& row : rows) {
        sink->lines.clear();
        const QString path = folder.filePath(row.file);
        EXPECT_EQ(cache.image(path) != nullptr, std::string(row.file) == "long.png") << row.file;
        cache.image(path);
        ASSERT_EQ(sink->lines.size(), row.reason ? 1U : 0U) << row.file << ": told once";
        for (const std::string& line : sink->lines) {
            EXPECT_THAT(line, ::testing::AllOf(::testing::HasSubstr(path.toStdString()),
                                               ::testing::HasSubstr(row.reason)));
        }
    }
    oru::debug_logger::debuglogger().setSink(nullptr);
}

TEST_F(OruOglTextGLTest, TextsOfOneFontShareIt)
{
    const auto font = cache.font(OruOglText::defaultFace, 7);
    EXPECT_EQ(cache.font("DejaVu Sans", 7), font);
    EXPECT_NE(cache.font(OruOglText::defaultFace, 8), font);
    const long users = font.use_count();
    const OruOglText another(cache, 7, OruOglText::defaultFace);
    EXPECT_EQ(font.use_count(), users + 1);
}

TEST_F(OruOglTextGLTest, WhatHoldsNoGlObjectsCallsNothing)
{
    kelvartest::GlRecording recording;
    {
        OruModifiedGroup group;
        OruOglGeometry geometry(group);
        geometry.makeMesh()->draw();
        OruOglCache unused(resource);
        OruOglText quiet(unused, 7, OruOglText::defaultFace);
        EXPECT_GT(quiet.size("measured").width(), 20);
        quiet.clear();
        quiet.draw(QPoint(0, 0), QString());
    }
    EXPECT_THAT(recording.finish(), ::testing::IsEmpty());
}

} // namespace
