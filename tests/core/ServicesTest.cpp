#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruMemoryInfo.h"
#include "contracts/core/OruResource.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/core/OruTimer.h"
#include "contracts/debug/logger.h"
#include "tests/core/QtPrint.h"
#include "tests/debug/RecordingSink.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

using Kelvar::Math::NumberFormat;

TEST(OruResource, SearchesTheUsersFolderFirstThenItsOwnKind)
{
    const QTemporaryDir folder;
    const QString base = folder.path();
    for (const char* sub : {"fonts", "images", "user", "user2"}) {
        ASSERT_TRUE(QDir(base).mkdir(sub));
    }
    for (const char* name :
         {"/fonts/f.ttf", "/fonts/both", "/images/both", "/images/i.png", "/images/f.ttf", "/user2/f.ttf"}) {
        ASSERT_TRUE(QFile(base + name).open(QIODevice::WriteOnly)) << name;
    }
    const QString users = base + "/none:" + base + "/user:" + base + "/user2";
    const QString image = base + "/images/i.png";
    struct Case
    {
        QString user, name, font, image;
    };
    const Case cases[] = {
        {users, "f.ttf", base + "/user2/f.ttf", base + "/user2/f.ttf"},
        {"", "f.ttf", base + "/fonts/f.ttf", base + "/images/f.ttf"},
        {users, "both", base + "/fonts/both", base + "/images/both"},
        {"", "../images/i.png", image, image},
        {users, "x", "x", "x"},
        {base, "fonts", "fonts", "fonts"}, // a folder is no file
        {users, "", "", ""},
        {users, image, image, image},
        {users, "/no/f.ttf", "/no/f.ttf", "/no/f.ttf"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name.toStdString());
        const OruResource resource(base + "/fonts", base + "/images", row.user);
        EXPECT_EQ(resource.fontFile(row.name), row.font);
        EXPECT_EQ(resource.imageFile(row.name), row.image);
    }
    EXPECT_EQ(OruResource("", "", "").fontFile("f.ttf"), QStringLiteral("f.ttf"));
}

TEST(OruStringBuilder, WritesNumbersInTheFormat)
{
    const OruStringBuilder german(NumberFormat(',', 0, 3));
    EXPECT_EQ(german.number(3.14159), QStringLiteral("3,14"));
    EXPECT_EQ(german.number(123456), QStringLiteral("123456")) << "an integer keeps its digits";
    EXPECT_EQ(german.line("length", 2.5, "mm"), QStringLiteral("length: 2,5 mm"));
    EXPECT_EQ(german.line("count", 2.0, ""), QStringLiteral("count: 2"));
    EXPECT_EQ(german.line("name", "bolt"), QStringLiteral("name: bolt"));
    EXPECT_EQ(OruStringBuilder(NumberFormat('.', 0, -1)).number(0.1), QStringLiteral("0.1"));
}

TEST(OruTimer, ReportsOnlyWhatTookLongerThanTheThreshold)
{
    kelvardebug::logger& log = oru::debug_logger::debuglogger();
    const auto sink = std::make_shared<RecordingSink>();
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
    const std::pair<std::uint64_t, const char*> cases[] = {
        {0, "0 B"},           {1023, "1023 B"},           {1024, "1.0 KiB"},
        {1048575, "1.0 MiB"}, {12240656794u, "11.4 GiB"}, {~std::uint64_t(0), "16.0 EiB"}};
    for (const auto& row : cases) {
        EXPECT_EQ(oru::memoryText(row.first), QString(row.second));
    }
    EXPECT_THAT(oru::memoryInfo().toStdString(), testing::MatchesRegex("[0-9]+\\.[0-9] [KMGT]iB"));
}
