#include "contracts/debug/trace.h"

#include "tests/debug/RecordingSink.h"

#include <gmock/gmock.h>

#include <stdexcept>

using kelvardebug::logger;
using kelvardebug::trace;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

class TraceTest : public testing::Test
{
protected:
    TraceTest()
    {
        log.setSink(recorded);
        log.setTracing(true);
    }

    std::shared_ptr<RecordingSink> recorded = std::make_shared<RecordingSink>();
    logger log;
};

} // namespace

TEST_F(TraceTest, ScopesAreIndentedAndTimed)
{
    {
        const trace outer(log, "void f(int)", " @line 12");
        const trace inner(log, "bool g()", " @line 7");
        log.dtrace("note: ").buffer() << "within";
    }
    EXPECT_THAT(recorded->lines,
                ElementsAre("T > void f(int) @line 12", "T   > bool g() @line 7", "T     note: within",
                            MatchesRegex("T   < bool g\\(\\) @line 7: [0-9]+\\.[0-9][0-9][0-9] ms"),
                            MatchesRegex("T < void f\\(int\\) @line 12: [0-9]+\\.[0-9][0-9][0-9] ms")));
}

TEST_F(TraceTest, AnExceptionClosesItsScopes)
{
    try {
        const trace outer(log, "f", nullptr);
        const trace inner(log, nullptr, " @line 1");
        throw std::runtime_error("on the way");
    } catch (const std::runtime_error&) {
        const trace next(log, "next", "");
    }
    ASSERT_EQ(6u, recorded->lines.size());
    EXPECT_EQ("T > next", recorded->lines[4]) << "the depth must be back";
}

TEST_F(TraceTest, OffItWritesNothingAndAChangeTakesEffectAtTheNextScope)
{
    log.setTracing(false);
    {
        const trace silent(log, "silent", "");
        log.setTracing(true);
        const trace spoken(log, "spoken", "");
        log.setTracing(false);
    }
    EXPECT_THAT(recorded->lines, ElementsAre("T > spoken", MatchesRegex("T < spoken: .* ms")));
}

TEST_F(TraceTest, AFailingSinkNeverLeavesTheScope)
{
    const auto failing = std::make_shared<ThrowingSink>();
    log.setSink(failing);
    EXPECT_NO_THROW(trace(log, "f", ""));
    EXPECT_EQ(2, failing->calls);
    log.setSink(recorded);
    EXPECT_NO_THROW(trace(log, "g", ""));
    EXPECT_EQ("T > g", recorded->lines.front()) << "the depth must be back";
}
