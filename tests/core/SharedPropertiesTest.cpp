#include "Scene/navigation/OruPropertyAdaptor.h"
#include "tests/core/TreeSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr OruPropertyKind kinds[] = {OruPropertyKind::of<QString>(), OruPropertyKind::of<int>()};
const QStringList keys = {"first", "free", "last", "other", "own"};

/// A node whose type has three properties, two of them with the same defaults in all nodes, next to what must
/// be in it, kept the plain way.
class Typed : public OruProperties
{
public:
    struct Expected
    {
        QString text;
        QString unit;
        bool defined = false;
        const OruPropertyKind* kind = nullptr;
        const OruPropertiesString::Slot* slot = nullptr; ///< once somebody has asked for it
        unsigned writes = 0;                             ///< since then
    };

    Typed(OruModifiedGroup& sharedGroup, int number)
        : OruProperties(sharedGroup)
    {
        bind("first", "1", "mm");
        bind("own", QString::number(number), "");
        bind("last", "", "px");
    }

    void bind(const QString& key, const QString& initial, const QString& unit)
    {
        adaptors.emplace_back(*this, key, initial, unit);
        Expected& slot = expected[key];
        slot.text = slot.defined ? slot.text : initial;
        slot.writes += slot.defined ? 0 : 1;
        slot.defined = true;
        slot.unit = slot.unit.isEmpty() ? unit : slot.unit;
    }

    /// Does something to a key of this node, in both ways. True: watchers must have seen it.
    bool act(unsigned what, const QString& key, unsigned choice)
    {
        Expected& slot = expected[key];
        const Expected before = slot;
        const QString text = QString::number(choice % 3);
        switch (what % 6) {
        case 0:
            string().setValue(key, text);
            slot.text = text;
            slot.defined = true;
            ++slot.writes;
            break;
        case 1:
            EXPECT_EQ(string().remove(key), slot.defined);
            slot.text = slot.defined ? QString() : slot.text;
            slot.unit = slot.defined ? QString() : slot.unit;
            slot.defined = false;
            break;
        case 2:
            string().setUnit(key, choice % 2 ? "mm" : "");
            slot.unit = choice % 2 ? "mm" : "";
            break;
        case 3:
            slot.kind = &kinds[choice % 2];
            string().setKind(key, *slot.kind);
            break;
        case 4:
            if (!slot.slot) {
                slot.slot = &string().slot(key);
                slot.writes = slot.slot->writes;
            }
            EXPECT_EQ(&string().slot(key), slot.slot);
            break;
        default:
            bind(key, "7", "");
        }
        return before.text != slot.text || before.unit != slot.unit || before.defined != slot.defined;
    }

    void take(const Typed& other)
    {
        static_cast<OruProperties&>(*this) = other;
        for (const QString& key : keys) {
            Expected& slot = expected[key];
            const auto from = other.expected.find(key);
            const bool there = from != other.expected.end() && from->second.defined;
            slot.unit = there ? from->second.unit : slot.defined ? QString() : slot.unit;
            slot.text = there ? from->second.text : QString();
            slot.writes += there ? 1 : 0;
            slot.defined = there;
        }
    }

    void check() const
    {
        QStringList defined;
        for (const auto& [key, slot] : expected) {
            SCOPED_TRACE(key.toStdString());
            EXPECT_EQ(string().defined(key), slot.defined);
            EXPECT_EQ(textOf(*this, qPrintable(key)), slot.defined ? slot.text : QString("(undefined)"));
            EXPECT_EQ(string().getUnit(key, QString()), slot.unit);
            EXPECT_TRUE(!slot.kind || &kind(key) == slot.kind);
            EXPECT_TRUE(!slot.slot || (slot.slot->text == slot.text && slot.slot->writes == slot.writes));
            defined += slot.defined ? QStringList(key) : QStringList();
        }
        EXPECT_EQ(string().keys(), defined);
        for (const auto& adaptor : adaptors) {
            EXPECT_EQ(adaptor.value(), expected.at(adaptor.name()).text) << adaptor.name().toStdString();
        }
    }

    std::list<OruPropertyAdaptor<QString>> adaptors;
    std::map<QString, Expected> expected;
};

} // namespace

/// More nodes than defaults are kept for sharing, so that some share and some do not.
TEST(SharedProperties, NodesOfOneTypeBehaveAsIfTheySharedNothing)
{
    OruModifiedGroup group;
    std::vector<std::unique_ptr<Typed>> nodes(80);
    std::mt19937 random(7);
    const auto make = [&](std::size_t at) {
        nodes[at] = std::make_unique<Typed>(group, static_cast<int>(at));
    };
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        make(at);
    }
    for (int step = 0; step < 20000 && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        Typed& node = *nodes[random() % nodes.size()];
        const std::uint64_t before = node.revision();
        const QString key = keys[static_cast<int>(random() % 5)];
        const unsigned what = random() % 6;
        const bool changed = node.act(what, key, random());
        EXPECT_EQ(node.revision() != before, changed) << what;
        node.check();
        Typed& other = *nodes[random() % nodes.size()];
        other.check();
        if (step % 10 == 0 && &other != &node) {
            other.take(node);
            other.check();
        } else if (step % 10 == 1) {
            make(random() % nodes.size());
        }
    }
}

TEST(SharedProperties, DefaultsAreKeptOnceForAllNodes)
{
    OruModifiedGroup group;
    Typed nodes[] = {{group, 1}, {group, 1}, {group, 2}};
    const auto place = [](const OruProperties& node, const char* key) {
        return static_cast<const void*>(textOf(node, key).constData());
    };
    EXPECT_EQ(place(nodes[0], "own"), place(nodes[1], "own"));
    EXPECT_NE(place(nodes[0], "own"), place(nodes[2], "own"));
    nodes[1].string().setValue("own", "3");
    nodes[1].string().setValue("own", "1");
    EXPECT_EQ(nodes[1].adaptors.begin()->value(), QString("1"));
    EXPECT_EQ(place(OruProperties(nodes[0]), "own"), place(nodes[0], "own")) << "a copy shares them, too";
}
