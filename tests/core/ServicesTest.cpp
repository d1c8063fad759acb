#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruMemoryInfo.h"
#include "contracts/core/OruResource.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/core/OruTimer.h"
#include "contracts/debug/logger.h"
#include "tests/core/QtPrint.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using Kelvar::Math::NumberFormat;

namespace {

void makeFile(const QString& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
}

struct TraceLines : kelvardebug::sink
{
    std::vector<std::string> lines;
    void line(kelvardebug::channel, const std::string& text) override { lines.push_back(text); }
};

} // namespace

TEST(OruResource, SearchesTheUsersFolderFirstThenItsOwnKind)
{
    const QTemporaryDir folder;
    const QString base = folder.path();
    for (const char* sub : {"fonts", "images", "user", "user2"}) {
        ASSERT_TRUE(QDir(base).mkdir(sub));
    }
    makeFile(base + "/fonts/f.ttf");
    makeFile(base + "/fonts/both");
    makeFile(base + "/images/both");
    makeFile(base + "/images/i.png");
    makeFile(base + "/user2/f.ttf");
    const QString users = base + "/none:" + base + "/user:" + base + "/user2";
    struct Case
    {
        const char* what;
        QString user;
        QString name;
        QString font;
        QString image;
    };
    const Case cases[] = {
        {"user's second folder wins", users, "f.ttf", base + "/user2/f.ttf", base + "/user2/f.ttf"},
        {"no user folder", "", "f.ttf", base + "/fonts/f.ttf", "f.ttf"},
        {"each kind in its place", users, "both", base + "/fonts/both", base + "/images/both"},
        {"in a subfolder", "", "../images/i.png", base + "/images/i.png", base + "/images/i.png"},
        {"nowhere", users, "x", "x", "x"},
        {"a folder is no file", base, "fonts", "fonts", "fonts"},
        {"no name", users, "", "", ""},
        {"absolute", users, base + "/images/i.png", base + "/images/i.png", base + "/images/i.png"},
        {"absolute and missing", users, "/no/f.ttf", "/no/f.ttf", "/no/f.ttf"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        const OruResource resource(base + "/fonts", base + "/images", row.user);
        EXPECT_EQ(resource.fontFile(row.name), row.font);
        EXPECT_EQ(resource.imageFile(row.name), row.image);
    }
    EXPECT_EQ(OruResource("", "", "").fontFile("f.ttf"), QString("f.ttf"));
}

TEST(OruStringBuilder, WritesNumbersInTheFormat)
{
    const OruStringBuilder german(NumberFormat(',', 0, 3));
    EXPECT_EQ(german.number(3.14159), QString("3,14"));
    EXPECT_EQ(german.number(123456), QString("123456")) << "an integer keeps its digits";
    EXPECT_EQ(german.line("length", 2.5, "mm"), QString("length: 2,5 mm"));
    EXPECT_EQ(german.line("count", 2.0, ""), QString("count: 2"));
    EXPECT_EQ(german.line("name", "bolt"), QString("name: bolt"));
    EXPECT_EQ(OruStringBuilder(NumberFormat('.', 0, -1)).number(0.1), QString("0.1"));
}

TEST(OruTimer, ReportsOnlyWhatTookLongerThanTheThreshold)
{
    kelvardebug::logger& log = oru::debug_logger::debuglogger();
    const auto sink = std::make_shared<TraceLines>();
    log.setSink(sink);
    log.setTracing(true);
    {
        const OruTimer patient("quick work", 600000);
        const OruTimer strict("slow work", 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    log.setTracing(false);
    {
        const OruTimer silent("untraced work", -1);
    }
    log.setSink(nullptr);
    EXPECT_THAT(sink->lines, testing::ElementsAre(testing::MatchesRegex(".*slow work [0-9.e+]+ ms")));
}

TEST(OruMemoryInfo, TellsAmountsAsPeopleReadThem)
{
    struct Case
    {
        std::uint64_t bytes;
        const char* text;
    };
    const Case cases[] = {{0, "0 B"},           {1023, "1023 B"},           {1024, "1.0 KiB"},
                          {1048575, "1.0 MiB"}, {12240656794u, "11.4 GiB"}, {~std::uint64_t(0), "16.0 EiB"}};
    for (const Case& row : cases) {
        EXPECT_EQ(oru::memoryText(row.bytes), QString(row.text));
    }
    EXPECT_THAT(oru::memoryInfo().toStdString(), testing::MatchesRegex("[0-9]+\\.[0-9] [KMGT]iB"));
}
