#include "contracts/debug/logger.h"

#include "tests/debug/RecordingSink.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>

using kelvardebug::dbgostream;
using kelvardebug::logger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LoggerTest : public testing::Test
{
protected:
    LoggerTest() { log.setSink(recorded); }

    std::shared_ptr<RecordingSink> recorded = std::make_shared<RecordingSink>();
    logger log;
};

} // namespace

TEST_F(LoggerTest, AStreamInPiecesReachesTheSinkAsWholeLines)
{
    dbgostream out = log.derr("");
    out.buffer() << "pieces " << 1;
    dbgostream other = log.derr("other ");
    other = out;
    other.buffer() << " and " << 2.5;
    EXPECT_THAT(recorded->lines, IsEmpty());
    other << std::endl;
    EXPECT_THAT(recorded->lines, ElementsAre("E pieces 1 and 2.5"));

    recorded->lines.clear();
    out.buffer() << "two\nlines\n" << std::flush << "flushed" << std::flush << std::flush;
    out << std::endl << std::flush;
    EXPECT_THAT(recorded->lines, ElementsAre("E two", "E lines", "E flushed", "E "));
}

TEST_F(LoggerTest, TheLastCopyBringsTheRestAndMayOutliveTheLogger)
{
    auto shortLived = std::make_unique<logger>();
    shortLived->setSink(recorded);
    std::optional<dbgostream> out = shortLived->derr("head: ");
    {
        const dbgostream copy = *out;
        copy.buffer() << "rest";
    }
    shortLived.reset();
    EXPECT_THAT(recorded->lines, IsEmpty());
    out.reset();
    EXPECT_THAT(recorded->lines, ElementsAre("E head: rest"));
}

TEST_F(LoggerTest, EnsureReportsOnlyWhatFailed)
{
    log.ensure(true, "fine");
    log.ensure(false, "\"glGenFramebuffersEXT\" - f()");
    EXPECT_THAT(recorded->lines, ElementsAre("E ensure failed: \"glGenFramebuffersEXT\" - f()"));
}

TEST_F(LoggerTest, SilencedStreamsAreInactiveAndSwallowEverything)
{
    log.setErrorActive(false);
    log.setTracing(false);
    for (const dbgostream& out : {log.derr(""), log.dtrace(""), dbgostream()}) {
        EXPECT_FALSE(out.active());
        out.buffer() << "lost" << std::endl;
        EXPECT_FALSE((out << std::endl).active());
    }
    log.ensure(false, "lost");
    EXPECT_THAT(recorded->lines, IsEmpty());
    log.setErrorActive(true);
    EXPECT_TRUE(log.derr("").active());
}

TEST_F(LoggerTest, WithoutASinkLinesGoToStandardError)
{
    log.setSink(nullptr);
    testing::internal::CaptureStderr();
    log.derr("") << std::endl;
    log.ensure(false, "told");
    EXPECT_EQ("\nensure failed: told\n", testing::internal::GetCapturedStderr());
}

TEST_F(LoggerTest, AFailingSinkDisturbsNobody)
{
    const auto failing = std::make_shared<ThrowingSink>();
    log.setSink(failing);
    dbgostream out = log.derr("");
    EXPECT_NO_THROW(out.buffer() << "one\ntwo\n"
                                 << "three");
    EXPECT_TRUE(out.buffer().good()) << "later lines must not be lost";
    EXPECT_NO_THROW(out = dbgostream());
    EXPECT_NO_THROW(log.ensure(false, "four"));
    EXPECT_EQ(4, failing->calls);
}

TEST(Logger, TheEnvironmentSwitchesTracingOn)
{
    const std::pair<const char*, bool> rows[] = {
        {nullptr, false}, {"0", false}, {"1", true}, {"", true}, {"00", true}};
    for (const auto& row : rows) {
        unsetenv("KELVAR_TRACE");
        if (row.first) {
            setenv("KELVAR_TRACE", row.first, 1);
        }
        EXPECT_EQ(row.second, logger().tracing()) << (row.first ? row.first : "unset");
    }
    unsetenv("KELVAR_TRACE");
}
