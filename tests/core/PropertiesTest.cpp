#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "tests/core/TreeSupport.h"
#include "tests/debug/RecordingSink.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<std::string> childNames(const OruProperties& node)
{
    std::vector<std::string> names;
    for (unsigned int i = 0; i < node.size(); ++i) {
        names.push_back(node.at(i)->name().toStdString());
    }
    return names;
}

using Names = std::vector<std::string>;

/// Counts its destructions and the calls that reach it as a parent.
struct Spy : Named
{
    Spy(OruModifiedGroup& sharedGroup, const QString& name, Names& events)
        : Named(sharedGroup, name)
        , log(events)
    {}
    ~Spy() override { log.push_back("~" + name().toStdString()); }

    bool remove(OruProperties* child) override
    {
        log.push_back("remove " + child->name().toStdString());
        return OruProperties::remove(child);
    }
    void onDependentRename(const QString& oldName, const QString& newName) override
    {
        log.push_back(oldName.toStdString() + "->" + newName.toStdString());
    }

    Names& log;
};

struct OruPropertiesTest : testing::Test
{
    OruModifiedGroup group;
    Names events;
    Spy root{group, "root", events};
    Spy list{group, "list", events};
    Spy entry{group, "entry", events};
    Spy loose{group, "loose", events};

    OruPropertiesTest()
    {
        root.insert(&list, true);
        list.insert(&entry, true);
    }
};

} // namespace

TEST_F(OruPropertiesTest, RefusedOperationsChangeNothing)
{
    Named sameName(group, "list");
    sameName.setType("twin");
    const auto sink = std::make_shared<RecordingSink>();
    oru::debug_logger::debuglogger().setSink(sink);
    const std::pair<const char*, std::function<bool()>> cases[] = {
        {"insert null", [&] { return root.insert(nullptr, true); }},
        {"insert itself", [&] { return loose.insert(&loose, true); }},
        {"insert an ancestor", [&] { return entry.insert(&root, true); }},
        {"insert a child with a parent", [&] { return root.insert(&entry, true); }},
        {"insert twice", [&] { return root.insert(&list, true); }},
        {"insert a sibling's name", [&] { return root.insert(&sameName, false); }},
        {"remove null", [&] { return root.OruProperties::remove(nullptr); }},
        {"remove a stranger", [&] { return root.OruProperties::remove(&loose); }},
        {"remove a grandchild", [&] { return root.OruProperties::remove(&entry); }},
        {"erase null", [&] { return root.erase(nullptr); }},
        {"erase a grandchild", [&] { return root.erase(&entry); }},
        {"rename to nothing", [&] { return list.rename(""); }},
        {"rename with a slash", [&] { return list.rename("a/b"); }},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.first);
        const std::uint64_t before = root.subtreeRevision();
        EXPECT_FALSE(row.second());
        EXPECT_EQ(childNames(root), Names{"list"});
        EXPECT_EQ(childNames(list), Names{"entry"});
        EXPECT_EQ(sameName.parent(), nullptr);
        EXPECT_EQ(root.subtreeRevision(), before);
        EXPECT_EQ(events, Names{});
    }
    oru::debug_logger::debuglogger().setSink(nullptr);
    EXPECT_EQ(sink->lines, Names{R"(E "list" of type "twin" is refused: "list" of type "" bears that name)"});
}

TEST_F(OruPropertiesTest, ChildrenKeepTheirOrderAndAreFoundByNameAndPath)
{
    root.insert(&loose, true);
    EXPECT_EQ(childNames(root), (Names{"list", "loose"}));
    EXPECT_EQ(root.index(&loose), 1);
    EXPECT_EQ(root.index(&entry), -1);
    EXPECT_EQ(root.childByName("loose"), &loose);
    EXPECT_EQ(root.childByName("entry"), nullptr);
    EXPECT_EQ(root.find("list/entry"), &entry);
    EXPECT_EQ(root.find(""), &root);
    EXPECT_EQ(root.find("list/none"), nullptr);
    EXPECT_EQ(root.find("list/"), nullptr);
    EXPECT_EQ(entry.path(), QStringLiteral("list/entry"));
    EXPECT_EQ(root.find(entry.path()), &entry);
    EXPECT_EQ(root.path(), QString());
}

TEST_F(OruPropertiesTest, RenameTellsTheParentAndKeepsTheNamesUnique)
{
    root.insert(&loose, true);
    EXPECT_FALSE(loose.rename("list"));
    EXPECT_TRUE(loose.rename("loose"));
    EXPECT_TRUE(events.empty());
    EXPECT_TRUE(loose.rename("tight"));
    EXPECT_EQ(events, Names{"loose->tight"});
    EXPECT_EQ(root.childByName("loose"), nullptr);
    EXPECT_EQ(root.childByName("tight"), &loose);
    EXPECT_TRUE(list.rename("loose")) << "the old name is free again";
}

TEST_F(OruPropertiesTest, RemoveNeverDeletesAndEraseDeletesWhatTheTreeOwns)
{
    auto owned = std::make_unique<Spy>(group, "owned", events);
    list.insert(owned.get(), false);
    EXPECT_TRUE(list.remove(owned.get()));
    EXPECT_EQ(owned->parent(), nullptr);
    EXPECT_EQ(events, Names{"remove owned"});
    events.clear();

    list.insert(owned.release(), false);
    EXPECT_TRUE(list.erase(list.childByName("owned")));
    EXPECT_TRUE(list.erase(&entry));
    EXPECT_EQ(events, (Names{"remove owned", "~owned", "remove entry"}));
    EXPECT_EQ(list.size(), 0u);
    EXPECT_TRUE(loose.insert(&entry, true)) << "a member that was erased can go elsewhere";
}

TEST_F(OruPropertiesTest, DyingChildLeavesThroughItsParentsRemove)
{
    {
        Spy child(group, "child", events);
        list.insert(&child, true);
    }
    Spy* owned = new Spy(group, "owned", events);
    list.insert(owned, false);
    delete owned;
    EXPECT_EQ(events, (Names{"~child", "remove child", "~owned", "remove owned"}));
    EXPECT_EQ(childNames(list), Names{"entry"});
}

TEST_F(OruPropertiesTest, ParentDeletesWhatItOwnsLastFirstAndOrphansMembers)
{
    auto parent = std::make_unique<Spy>(group, "parent", events);
    parent->insert(new Spy(group, "first", events), false);
    parent->insert(&loose, true);
    parent->insert(new Spy(group, "second", events), false);
    root.insert(parent.get(), true);
    parent.reset();
    EXPECT_EQ(events, (Names{"~parent", "remove parent", "~second", "~first"}));
    EXPECT_EQ(loose.parent(), nullptr);
    EXPECT_TRUE(root.insert(&loose, true));
}

TEST_F(OruPropertiesTest, ChildrenStayInOrderHoweverTheyComeAndGo)
{
    OruProperties parent(group);
    std::vector<OruProperties*> expected;
    std::mt19937 random(7);
    for (int step = 0; step < 20000; ++step) {
        const std::size_t count = expected.size();
        if (count < 2 || random() % 100 < (step / 1000 % 2 ? 40 : 60)) {
            expected.push_back(new Named(group, QString::number(step)));
            parent.insert(expected.back(), false);
        } else {
            const std::size_t places[] = {0, count - 1, random() % count};
            const auto leaves = expected.begin() + static_cast<std::ptrdiff_t>(places[random() % 3]);
            EXPECT_TRUE(parent.erase(*leaves));
            expected.erase(leaves);
        }
        ASSERT_EQ(parent.size(), expected.size());
        for (std::size_t i = random() % 60; i < expected.size() && step % 20 == 0; ++i) {
            ASSERT_EQ(parent.at(static_cast<unsigned>(i)), expected[i]) << "step " << step;
            ASSERT_EQ(parent.index(expected[i]), static_cast<int>(i));
            ASSERT_EQ(parent.childByName(expected[i]->name()), expected[i]);
        }
    }
}

TEST_F(OruPropertiesTest, NamesAreFoundHoweverChildrenComeGoAndAreRenamed)
{
    OruProperties parent(group);
    std::map<QString, OruProperties*> known;
    std::mt19937 random(3);
    const auto name = [&] { return QString::number(random() % 60); };
    for (int step = 0; step < 4000 && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        const QString first = name();
        const QString second = name();
        const bool there = known.count(first) > 0;
        if (!there) {
            known[first] = new Named(group, first);
            parent.insert(known[first], false);
        } else if (random() % 2 == 0) {
            parent.erase(known[first]);
            known.erase(first);
        } else {
            const bool free = first == second || known.count(second) == 0;
            EXPECT_EQ(known[first]->rename(second), free);
            OruProperties* const child = known[first];
            known.erase(free ? first : QString());
            known[free ? second : first] = child;
        }
        for (int number = 0; number < 60; ++number) {
            const auto found = known.find(QString::number(number));
            EXPECT_EQ(parent.childByName(QString::number(number)),
                      found == known.end() ? nullptr : found->second);
        }
    }
}

TEST_F(OruPropertiesTest, CopyTakesTheContentAndNotThePlace)
{
    entry.setType("kind");
    entry.flags = OruProperties::defaultContent | 1;
    entry.string().setValue("length", 2.5);
    entry.string().setUnit("length", "mm");
    entry.insert(&loose, true);

    const OruProperties copy(entry);
    entry.string().setValue("length", 3.5);
    EXPECT_EQ(copy.name(), QStringLiteral("entry"));
    EXPECT_EQ(copy.type(), QStringLiteral("kind"));
    EXPECT_EQ(copy.flags, OruProperties::defaultContent | 1);
    EXPECT_EQ(textOf(copy, "length"), QStringLiteral("2.5")) << "the stores are apart";
    EXPECT_EQ(copy.string().getUnit("length", ""), QStringLiteral("mm"));
    EXPECT_EQ(copy.parent(), nullptr);
    EXPECT_EQ(copy.size(), 0u);
    EXPECT_EQ(&copy.group, &group);
}

TEST_F(OruPropertiesTest, AssignmentTakesValuesAndUnitsOnly)
{
    loose.setType("loose kind");
    loose.flags = 7;
    loose.string().setValue("gone", 1);
    entry.string().setValue("length", 2.5);
    entry.string().setUnit("length", "mm");
    root.insert(&loose, true);
    static_cast<OruProperties&>(loose) = entry;
    EXPECT_EQ(loose.name(), QStringLiteral("loose"));
    EXPECT_EQ(loose.type(), QStringLiteral("loose kind"));
    EXPECT_EQ(loose.flags, 7);
    EXPECT_EQ(loose.parent(), &root);
    EXPECT_EQ(loose.string().keys(), QStringList("length"));
    EXPECT_EQ(loose.string().getUnit("length", ""), QStringLiteral("mm"));
}

struct OruPropertiesStringTest : testing::Test
{
    OruModifiedGroup group;
    OruProperties node{group};
    OruPropertiesString& store = node.string();
};

TEST_F(OruPropertiesStringTest, TypedReadsFallBackWhereTheTextDoesNotFit)
{
    store.setValue("word", "seven");
    store.setValue("number", 7);
    int number = 0;
    EXPECT_EQ(store.getValue("word", number, -1), QStringLiteral("seven"));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(store.getValue("number", number, -1), QStringLiteral("7"));
    EXPECT_EQ(number, 7);
    EXPECT_TRUE(store.getValue("missing", number, -2).isNull());
    EXPECT_EQ(number, -2);
    bool flag = false;
    store.getValue("word", flag, true);
    EXPECT_TRUE(flag);
    QString text;
    EXPECT_TRUE(node.getValue("missing", text, "fallback").isNull());
    EXPECT_EQ(text, QStringLiteral("fallback"));
    EXPECT_EQ(node.setValue("word", "eight"), QStringLiteral("eight"));
    EXPECT_EQ(store.getValue("word", text, ""), QStringLiteral("eight"));
}

TEST_F(OruPropertiesStringTest, KeysUnitsAndSlotsThroughARemoval)
{
    const OruPropertiesString::Slot* slot = &store.slot("b");
    EXPECT_FALSE(store.defined("b")) << "a slot alone defines nothing";
    store.setValue("b", "");
    store.setValue("a", true);
    for (int i = 0; i < 100; ++i) {
        store.setValue(QStringLiteral("k%1").arg(i), i);
    }
    EXPECT_TRUE(store.defined("b")) << "an empty text is a value";
    EXPECT_EQ(store.keys().mid(0, 2), (QStringList{"a", "b"}));
    store.setUnit("b", "px");
    EXPECT_EQ(store.getUnit("b", "none"), QStringLiteral("px"));
    EXPECT_EQ(store.getUnit("unknown", "none"), QStringLiteral("none"));
    EXPECT_TRUE(store.remove("b"));
    EXPECT_FALSE(store.remove("b"));
    EXPECT_FALSE(store.defined("b"));
    EXPECT_EQ(store.getUnit("b", "none"), QStringLiteral("none"));
    EXPECT_EQ(&store.slot("b"), slot) << "the slot stays where it is";
}
