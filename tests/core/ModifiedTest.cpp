#include "contracts/core/OruModifiedWatcher.h"
#include "contracts/core/OruViewPtr.h"
#include "tests/core/TreeSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

namespace {

/// root - list - entry, and a second branch below the root.
struct Tree
{
    OruModifiedGroup group;
    Named root{group, "root"};
    Named list{group, "list"};
    Named entry{group, "entry"};
    Named other{group, "other"};

    Tree()
    {
        root.insert(&list, true);
        root.insert(&other, true);
        list.insert(&entry, true);
    }
};

} // namespace

/// A root with member children, as a scene has them: members die before the base, and the group with the last
/// node. The address sanitizer sees a group that goes too early, the leak sanitizer one that stays.
TEST(OruModifiedGroup, HandedOverGroupLivesAsLongAsItsLastNode)
{
    struct Root : OruProperties
    {
        Root()
            : OruProperties((new OruModifiedGroup)->handOver())
        {
            insert(&child, true);
        }
        Named child{group, "child"};
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
    const std::uint64_t before = tree.group.nextRevision();
    tree.entry.touch();
    EXPECT_GT(tree.entry.revision(), before);
    EXPECT_GT(tree.list.subtreeRevision(), before);
    EXPECT_GT(tree.root.subtreeRevision(), before);
    EXPECT_LT(tree.root.revision(), before);
    EXPECT_LT(tree.other.subtreeRevision(), before);
}

/// One number per level and nothing for 10,000 siblings: the numbers that the group gave out are the work
/// done.
TEST(OruModified, NotingAChangeCostsTheDepthAndAskingNothing)
{
    OruModifiedGroup group;
    OruProperties root(group);
    for (int i = 0; i < 10000; ++i) {
        root.insert(new Named(group, QString::number(i)), false);
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
    OruModifiedGroup groups[3];
    OruProperties root(groups[0]);
    Named a(groups[1], "a");
    Named b(groups[2], "b");
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
        {"read", false, [](Tree& t) { textOf(t.entry, "old"); }},
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
        {"self-assignment", false, [](Tree& t) { t.entry = static_cast<const Named&>(*t.list.at(0)); }},
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
    std::optional<OruProperties> node(std::in_place, group);
    const OruProperties twin(*node);
    oru::view_ptr<OruProperties> first;
    EXPECT_EQ(first.get(), nullptr);
    first = oru::view_ptr<OruProperties>(*node);
    const oru::view_ptr<OruProperties> copy = first;
    const oru::view_ptr<const OruProperties> twinView(twin);
    EXPECT_EQ(copy.get(), &*node);
    node.reset();
    EXPECT_EQ(first.get(), nullptr);
    EXPECT_EQ(copy.get(), nullptr);
    EXPECT_EQ(twinView.get(), &twin) << "a copy of the node has views of its own";
}
