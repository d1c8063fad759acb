#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruModifiedWatcher.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruViewPtr.h"
#include "tests/core/QtPrint.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

/// root - list - entry, and a second branch below the root.
struct Tree
{
    OruModifiedGroup group;
    OruProperties root{group};
    OruProperties list{group};
    OruProperties entry{group};
    OruProperties other{group};

    Tree()
    {
        root.rename("root");
        list.rename("list");
        entry.rename("entry");
        other.rename("other");
        root.insert(&list, true);
        root.insert(&other, true);
        list.insert(&entry, true);
    }
};

} // namespace

TEST(OruModifiedGroup, CountsLocksAndIgnoresOneUnlockTooMany)
{
    OruModifiedGroup group;
    group.unlock();
    EXPECT_FALSE(group.locked());
    group.lock();
    group.lock();
    group.unlock();
    EXPECT_TRUE(group.locked());
    group.unlock();
    EXPECT_FALSE(group.locked());
}

/// A root with member children, as a scene has them: members die before the base, and the group with the last
/// node. The address sanitizer sees a group that goes too early, the leak sanitizer one that stays.
TEST(OruModifiedGroup, HandedOverGroupLivesAsLongAsItsLastNode)
{
    struct Root : OruProperties
    {
        Root()
            : OruProperties((new OruModifiedGroup)->handOver())
        {
            child.rename("child");
            insert(&child, true);
        }
        OruProperties child{group};
    };
    auto root = std::make_unique<Root>();
    const auto survivor = std::make_unique<OruProperties>(root->child);
    const OruModifiedWatcher watcher(*root);
    root.reset();
    EXPECT_FALSE(watcher.modified());
    const std::uint64_t before = survivor->revision();
    survivor->string().setValue("key", 1);
    EXPECT_GT(survivor->revision(), before);
}

TEST(OruModified, ChangeIsSeenAboveItsNodeOnly)
{
    Tree tree;
    const std::uint64_t rootItself = tree.root.revision();
    const std::uint64_t rootTree = tree.root.subtreeRevision();
    const std::uint64_t listTree = tree.list.subtreeRevision();
    const std::uint64_t otherTree = tree.other.subtreeRevision();
    const std::uint64_t entry = tree.entry.revision();

    tree.entry.touch();

    EXPECT_GT(tree.entry.revision(), entry);
    EXPECT_GT(tree.list.subtreeRevision(), listTree);
    EXPECT_GT(tree.root.subtreeRevision(), rootTree);
    EXPECT_EQ(tree.root.revision(), rootItself);
    EXPECT_EQ(tree.other.subtreeRevision(), otherTree);
}

/// One number per level and nothing for 10,000 siblings: the numbers that the group gave out are the work
/// done.
TEST(OruModified, NotingAChangeCostsTheDepthAndAskingNothing)
{
    OruModifiedGroup group;
    OruProperties root(group);
    root.rename("root");
    for (int i = 0; i < 10000; ++i) {
        auto child = std::make_unique<OruProperties>(group);
        child->rename(QString::number(i));
        ASSERT_TRUE(root.insert(child.release(), false));
    }
    const OruModifiedWatcher watcher(root);
    watcher.reset();
    const std::uint64_t before = group.nextRevision();
    EXPECT_FALSE(watcher.modified());
    EXPECT_EQ(group.nextRevision(), before + 1);
    root.at(5000)->touch();
    EXPECT_TRUE(watcher.modified());
    EXPECT_EQ(group.nextRevision(), before + 4);
    EXPECT_EQ(root.childByName("9999"), root.at(9999));
}

TEST(OruModified, ChildrenOfOtherGroupsAreSeenEachTime)
{
    OruModifiedGroup rootGroup;
    OruModifiedGroup groupA;
    OruModifiedGroup groupB;
    OruProperties root(rootGroup);
    OruProperties a(groupA);
    OruProperties b(groupB);
    a.rename("a");
    b.rename("b");
    root.insert(&a, true);
    root.insert(&b, true);
    const OruModifiedWatcher watcher(root);
    for (OruProperties* child : {&a, &b, &a}) {
        watcher.reset();
        child->touch();
        EXPECT_TRUE(watcher.modified());
    }
}

TEST(OruModifiedWatcher, SeesEveryKindOfChangeAndNothingElse)
{
    struct Case
    {
        const char* what;
        bool change;
        std::function<void(Tree&)> act;
    };
    const Case cases[] = {
        {"value", true, [](Tree& t) { t.entry.string().setValue("key", 5); }},
        {"the same value", false, [](Tree& t) { t.entry.string().setValue("old", "x"); }},
        {"virtual setValue", true, [](Tree& t) { t.entry.setValue("key", "5"); }},
        {"read", false,
         [](Tree& t) {
             QString v;
             t.entry.getValue("old", v, "");
         }},
        {"unit", true, [](Tree& t) { t.entry.string().setUnit("old", "mm"); }},
        {"removed key", true, [](Tree& t) { t.entry.string().remove("old"); }},
        {"unknown key removed", false, [](Tree& t) { t.entry.string().remove("nothing"); }},
        {"cachable", true, [](Tree& t) { t.entry.string().setCachable("old", false); }},
        {"rename", true, [](Tree& t) { t.entry.rename("renamed"); }},
        {"rename to the same", false, [](Tree& t) { t.entry.rename("entry"); }},
        {"refused rename", false, [](Tree& t) { t.list.rename("other"); }},
        {"type", true, [](Tree& t) { t.entry.setType("new"); }},
        {"child removed", true, [](Tree& t) { t.list.remove(&t.entry); }},
        {"refused insert", false, [](Tree& t) { t.list.insert(&t.entry, true); }},
        {"assignment", true, [](Tree& t) { t.entry = t.other; }},
        {"self-assignment", false,
         [](Tree& t) {
             const OruProperties& same = t.entry;
             t.entry = same;
         }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        Tree tree;
        tree.entry.string().setValue("old", "x");
        const OruModifiedWatcher watcher(tree.root);
        EXPECT_TRUE(watcher.modified()) << "a new watcher";
        watcher.reset();
        row.act(tree);
        EXPECT_EQ(watcher.modified(), row.change);
    }
}

TEST(OruViewPtr, BecomesNullWithItsNodeInAllCopies)
{
    OruModifiedGroup group;
    oru::view_ptr<OruProperties> first;
    std::vector<oru::view_ptr<OruProperties>> copies;
    std::unique_ptr<OruProperties> twin;
    EXPECT_EQ(first.get(), nullptr);
    {
        OruProperties node(group);
        first = oru::view_ptr<OruProperties>(node);
        copies.assign(2, first);
        twin = std::make_unique<OruProperties>(node);
        EXPECT_EQ(copies[1].get(), &node);
    }
    const oru::view_ptr<const OruProperties> twinView(*twin);
    EXPECT_EQ(first.get(), nullptr);
    EXPECT_EQ(copies[0].get(), nullptr);
    EXPECT_EQ(twinView.get(), twin.get()) << "a copy of the node has views of its own";
}
