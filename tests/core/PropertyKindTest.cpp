#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruPropertyKind.h"
#include "tests/core/TreeSupport.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Kind = OruPropertyKind;

constexpr Kind::Choice units[] = {{"0", "pixels"}, {"1", "percent"}};
constexpr Kind::Choice words[] = {{"low", "for the impatient"}};
constexpr Kind share = Kind::of<float>().from(0.0).to(1.0);
constexpr Kind unit = Kind::of<int>().oneOf(units);

} // namespace

TEST(OruPropertyKind, AcceptsWhatReadsAndLiesWithinAndSaysWhatItWants)
{
    const QString identity = "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1";
    const struct
    {
        Kind kind;
        const char* wanted;
        std::vector<QString> good;
        std::vector<QString> bad;
    } rows[] = {
        {Kind::of<QString>(), "any text", {"", "two\nlines"}, {}},
        {Kind::of<bool>(), "true or false", {"true", " 0 "}, {"maybe", ""}},
        {Kind::of<int>(), "a whole number", {"-7", "2147483647"}, {"1.5", "2147483648", ""}},
        {Kind::of<float>(), "a number", {"-3e38", "0"}, {"perhaps", "nan", "inf", "1e39", ""}},
        {Kind::of<double>(), "a number", {"-1e308"}, {"-inf", "1e309"}},
        {Kind::of<QColor>(), "a color like #rrggbb", {"#102030", "red", ""}, {"nocolor", "#0x1234ab"}},
        {Kind::of<Kelvar::Math::Matrix>(),
         "16 numbers separated by blanks",
         {identity},
         {identity + " 1", QString(identity).replace(0, 1, "nan")}},
        {share, "a number from 0 to 1", {"0", "0.5", "1"}, {"-0.1", "1.1"}},
        {Kind::of<int>().from(-1), "a whole number from -1", {"-1"}, {"-2"}},
        {Kind::of<double>().to(2.5), "a number up to 2.5", {"-9", "2.5"}, {"2.6"}},
        {unit, "one of: 0 (pixels), 1 (percent)", {"1", " 00 "}, {"2", "pixels", "1.0"}},
        {Kind::of<int>().from(0).naming(units),
         "a whole number from 0 such as 0 (pixels), 1 (percent)",
         {"5"},
         {"-1"}},
        {Kind::of<QString>().oneOf(words), "one of: low (for the impatient)", {"low"}, {"high", " low", ""}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.kind.wanted(), QString(row.wanted));
        for (const QString& text : row.good) {
            EXPECT_TRUE(row.kind.accepts(text)) << row.wanted << ": " << text.toStdString();
        }
        for (const QString& text : row.bad) {
            EXPECT_FALSE(row.kind.accepts(text)) << row.wanted << ": " << text.toStdString();
        }
    }
    QString reason;
    EXPECT_FALSE(share.accepts("2\n" + QString(70, 'x'), &reason));
    EXPECT_EQ(reason, "must be a number from 0 to 1, not \"2 " + QString(58, 'x') + "...\"");
}

TEST(OruPropertyKind, StaysWithItsKeyAndTheClosestOneCounts)
{
    OruModifiedGroup group;
    OruProperties node(group);
    EXPECT_EQ(node.kind("key").type(), Kind::Type::Text) << "nobody has told";
    OruPropertyAdaptor<float> adaptor(node, "key", 0.5f, QString());
    EXPECT_EQ(node.kind("key").type(), Kind::Type::Number);
    EXPECT_FALSE(node.kind("key").hasMinimum() || node.kind("key").hasMaximum());
    const std::uint64_t before = node.revision();
    adaptor.setKind(share);
    const OruPropertyAdaptor<float> another(node, "key", 0.5f, QString());
    EXPECT_EQ(node.revision(), before);
    node.string().remove("key");
    EXPECT_EQ(&node.kind("key"), &share);
    EXPECT_EQ(node.kind("key").maximum(), 1.0);
    EXPECT_EQ(&OruProperties(node).kind("key"), &share) << "a copy knows it, too";
}
