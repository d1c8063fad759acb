#include "Scene/navigation/OruPropertyAdaptor.h"
#include "tests/core/TreeSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::KeyModifier;

namespace {

/// What one type wants, its default, another value, their texts, and what a read yields when the key is gone.
template <typename T>
void checkType(const char* wanted, const T& initial, const char* initialText, const T& other,
               const T& fallback)
{
    SCOPED_TRACE(initialText);
    OruModifiedGroup group;
    OruProperties node(group);
    OruPropertyAdaptor<T> adaptor(node, "key", initial, QString());
    EXPECT_EQ(node.kind("key").wanted(), QString(wanted));
    EXPECT_EQ(textOf(node, "key"), QString(initialText));
    EXPECT_EQ(adaptor.value(), initial);
    adaptor.setValue(other);
    EXPECT_EQ(adaptor.value(), other);
    EXPECT_EQ((OruPropertyAdaptor<T>(node, "key", initial, QString()).value()), other);
    node.setValue("key", initialText);
    EXPECT_EQ(adaptor.value(), initial);
    node.string().remove("key");
    EXPECT_EQ(adaptor.value(), fallback);
}

struct OruPropertyAdaptorTest : testing::Test
{
    OruModifiedGroup group;
    OruProperties node{group};
};

} // namespace

TEST_F(OruPropertyAdaptorTest, EveryTypeWritesReadsAndFallsBack)
{
    checkType<double>("a number", 1.1, "1.1", -0.25, 0.0);
    checkType<float>("a number", 0.1f, "0.1", 3e38f, 0.0f);
    checkType<int>("a whole number", 46, "46", -7, 0);
    checkType<bool>("true or false", true, "true", false, false);
    checkType<QString>("any text", "a b", "a b", "", QString());
    checkType<QColor>("a color like #rrggbb", Qt::black, "#ff000000", QColor(1, 2, 3, 4), QColor());
    checkType<OruMouse::Button>("a whole number", OruMouse::ButtonView, "3", OruMouse::ButtonPick,
                                static_cast<OruMouse::Button>(0));
    checkType<KeyModifier>("a whole number", Kelvar::UI::Toolkit::ModifierSecond, "2",
                           static_cast<KeyModifier>(1 << 20), Kelvar::UI::Toolkit::ModifierNone);
    checkType<Matrix>("16 numbers separated by blanks", Matrix::Identity, "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1",
                      Matrix::rotate(Vector3(1, 2, 3), 40.0f), Matrix::Identity);
}

TEST_F(OruPropertyAdaptorTest, WhatIsStoredWinsOverTheDefaults)
{
    const char* const cases[][3] = {{"", "mm", "mm"}, {"cm", "mm", "cm"}, {"cm", "", "cm"}, {"", "", ""}};
    for (const auto& [stored, given, result] : cases) {
        SCOPED_TRACE(std::string("stored '") + stored + "', given '" + given + "'");
        OruProperties owner(group);
        owner.string().setValue("key", 2.5);
        owner.string().setUnit("key", stored);
        const std::uint64_t before = owner.revision();
        const OruPropertyAdaptor<double> adaptor(owner, "key", 1.1, given);
        EXPECT_EQ(adaptor.value(), 2.5);
        EXPECT_EQ(adaptor.getUnit(), QString(result));
        EXPECT_EQ(owner.string().getUnit("key", ""), QString(result));
        EXPECT_EQ(owner.revision() == before, QString(result) == stored)
            << "a store that has all is left alone";
    }
}

/// Only a read from the store is noticed to turn an unparsable text into the fallback, so a store that is
/// changed without a trace tells the two kinds of read apart.
TEST_F(OruPropertyAdaptorTest, ReadsTheStoreOnlyWhenItMust)
{
    const OruPropertyAdaptor<int> adaptor(node, "key", 5, QString());
    EXPECT_EQ(adaptor.value(), 5);
    auto& slot = const_cast<OruPropertiesString::Slot&>(node.string().slot("key"));
    slot.text = "6";
    EXPECT_EQ(adaptor.value(), 5) << "cached";
    node.string().setValue("neighbour", 1);
    EXPECT_EQ(adaptor.value(), 5) << "another key changed";
    group.lock();
    EXPECT_EQ(adaptor.value(), 6) << "locked";
    group.lock();
    group.unlock();
    slot.text = "7";
    EXPECT_EQ(adaptor.value(), 7) << "still locked";
    group.unlock();
    group.unlock();
    slot.text = "8";
    EXPECT_EQ(adaptor.value(), 7) << "cached again";
    node.string().setValue("key", 9);
    EXPECT_EQ(adaptor.value(), 9) << "changed";
    node.string().setCachable("key", false);
    slot.text = "10";
    EXPECT_EQ(adaptor.value(), 10);
    slot.text = "11";
    EXPECT_EQ(adaptor.value(), 11) << "not cachable";
    group.lock();
    EXPECT_TRUE(group.locked()) << "an unlock too many counts for nothing";
    group.unlock();
}

TEST_F(OruPropertyAdaptorTest, MatricesKeepTheirBitsAndCopiesTheirOwn)
{
    OruPropertyAdaptor<Matrix> matrix(node, "key", Matrix(), QString());
    const OruPropertyAdaptor<Matrix> early(matrix);
    Matrix negative;
    negative.data()[1] = -0.0f;
    matrix.setValue(negative);
    EXPECT_TRUE(std::signbit(matrix.value().data()[1])) << "-0 is not 0";
    EXPECT_TRUE(std::signbit(early.value().data()[1])) << "it reads the same node";
    matrix.setValue(Matrix());
    EXPECT_FALSE(std::signbit(matrix.value().data()[1])) << "and back to the identity";
    {
        auto owner = std::make_unique<OruProperties>(group);
        OruPropertyAdaptor<Matrix> source(*owner, "key", Matrix::translate(Vector3(1, 2, 3)), QString());
        const OruPropertyAdaptor<Matrix> copy(source);
        source.setValue(negative);
        owner.reset();
        EXPECT_EQ(copy.value(), Matrix::translate(Vector3(1, 2, 3))) << "as of its last read";
    }
}

TEST_F(OruPropertyAdaptorTest, OutlivesItsNodeWithTheLastValue)
{
    auto owner = std::make_unique<OruProperties>(group);
    OruPropertyAdaptor<int> adaptor(*owner, "key", 5, "mm");
    OruPropertyAdaptor<int> target(node, "target", 1, "cm");
    owner->string().setValue("key", 6);
    EXPECT_EQ(adaptor.value(), 6);
    owner->string().setValue("key", 7);
    owner.reset();
    EXPECT_EQ(adaptor.value(), 6) << "the last one that it saw";
    adaptor.setValue(8);
    adaptor.setUnit("km");
    EXPECT_EQ(adaptor.value(), 6);
    EXPECT_EQ(adaptor.getUnit(), QString());
    target = adaptor;
    EXPECT_EQ(target.value(), 6);
    EXPECT_EQ(target.getUnit(), QStringLiteral("cm"));
}

TEST_F(OruPropertyAdaptorTest, CopiesAndAssignmentsToItselfWriteNothing)
{
    OruPropertyAdaptor<int> source(node, "key", 5, QString());
    node.string().remove("key");
    const std::uint64_t before = node.revision();
    OruPropertyAdaptor<int> copy(source);
    const OruPropertyAdaptor<int>& same = source;
    source = same;
    EXPECT_EQ(node.revision(), before);
    EXPECT_FALSE(node.string().defined("key"));
    copy.setValue(6);
    EXPECT_EQ(source.value(), 6) << "both are bound to one node";
}

TEST_F(OruPropertyAdaptorTest, AssignmentMovesValueAndUnitUnderTheLeftKey)
{
    const char* const cases[][3] = {{"cm", "mm", "mm"}, {"cm", "", "cm"}, {"", "mm", "mm"}};
    for (const auto& [leftUnit, rightUnit, result] : cases) {
        SCOPED_TRACE(std::string(leftUnit) + " = " + rightUnit);
        OruProperties owner(group);
        OruPropertyAdaptor<int> left(owner, "left", 1, leftUnit);
        const OruPropertyAdaptor<int> right(owner, "right", 2, rightUnit);
        owner.string().setValue("right", 3);
        EXPECT_EQ(&(left = right), &left);
        EXPECT_EQ(textOf(owner, "left"), QStringLiteral("3"))
            << "the right side was read, not its stale copy";
        EXPECT_EQ(left.getUnit(), QString(result));
        EXPECT_EQ(left.name(), QStringLiteral("left"));
        EXPECT_EQ(textOf(owner, "right"), QStringLiteral("3"));
    }
}
