#include "contracts/core/internal/OruPropertiesCheck.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/internal/OruJson.h"
#include "contracts/core/internal/OruPropertiesChildren.h"
#include "contracts/core/internal/OruPropertiesKinds.h"

#include <QJsonArray>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <iterator>
#include <string_view>
#include <vector>

namespace {

bool isWhole(const QJsonValue& value, double smallest, double largest)
{
    const double number = value.toDouble();
    return value.isDouble() && number == std::floor(number) && number >= smallest && number <= largest;
}

/// The text of a value that may stand as a string, a number or a flag. False: it is neither.
bool plainText(const QJsonValue& value, QString& text)
{
    if (value.isDouble()) {
        text = oru::jsonNumber(value);
    } else if (value.isBool()) {
        text = value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    } else {
        text = value.toString();
    }
    return value.isDouble() || value.isBool() || value.isString();
}

std::size_t hashOf(const QString& name)
{
    const auto* const characters = reinterpret_cast<const char16_t*>(name.utf16());
    return std::hash<std::u16string_view>()({characters, static_cast<std::size_t>(name.size())});
}

} // namespace

/// The names of a file's children as they come, and which children of the tree those are.
class OruPropertiesCheck::Names
{
public:
    explicit Names(const OruPropertiesChildren* present)
        : present_(present)
        , found_(present ? present->size() : 0)
    {}

    /// The child of the tree, or null. They mostly come in its order.
    OruProperties* find(const QString& name)
    {
        OruProperties* const child = present_ ? present_->find(name, next_) : nullptr;
        next_ = child ? present_->index(*child) + 1 : next_;
        return child;
    }

    /// False: the name of this child came before.
    bool take(const OruProperties& child)
    {
        const std::size_t position = present_->index(child);
        const bool first = !found_[position];
        found_[position] = true;
        return first;
    }

    /// The same for a name that the tree has not got.
    bool take(const QString& name)
    {
        const auto before = others_.size();
        others_.insert(name);
        return others_.size() > before;
    }

private:
    const OruPropertiesChildren* present_;
    std::vector<bool> found_;
    QSet<QString> others_;
    std::size_t next_ = 0;
};

/// What the object of a node says: each member is undefined where it is missing.
struct OruPropertiesCheck::Members
{
    explicit Members(const QJsonObject& node)
        : json(node)
    {
        for (auto entry = json.begin(); entry != json.end(); ++entry) {
            const QString key = entry.key();
            const auto known = std::find_if(std::begin(all), std::end(all), [&key](const Row& row) {
                return key == QLatin1String(row.name);
            });
            if (known != std::end(all)) {
                this->*known->member = entry.value();
            } else {
                unknown.insert(key, entry.value());
            }
        }
    }

    const QJsonObject json;
    QJsonValue name = QJsonValue::Undefined;
    QJsonValue type = QJsonValue::Undefined;
    QJsonValue flags = QJsonValue::Undefined;
    QJsonValue values = QJsonValue::Undefined;
    QJsonValue children = QJsonValue::Undefined;
    QJsonObject unknown;

    struct Row
    {
        const char* name;
        QJsonValue Members::*member;
    };
    static constexpr Row all[] = {{"name", &Members::name},
                                  {"type", &Members::type},
                                  {"flags", &Members::flags},
                                  {"values", &Members::values},
                                  {"children", &Members::children}};
};

QString OruPropertiesCheck::format()
{
    return QStringLiteral("kelvar property tree");
}

bool OruPropertiesCheck::accepts(const QJsonObject& document, OruProperties& root, Plan& plan)
{
    if (!acceptsHead(document)) {
        return false;
    }
    const QJsonValue tree = document.value(QLatin1String("tree"));
    const bool accepted = tree.isObject() ? acceptsNode(Members(tree.toObject()), &root, 0, plan)
                                          : refuse(QStringLiteral("a node must be an object"));
    return accepted || within({QStringLiteral("tree")});
}

bool OruPropertiesCheck::acceptsHead(const QJsonObject& document)
{
    if (document.value(QLatin1String("format")).toString() != format()) {
        return refuseMember("format", QStringLiteral("\"format\" is not \"%1\"").arg(format()));
    }
    const QJsonValue version = document.value(QLatin1String("version"));
    if (!isWhole(version, 1, 1e9)) {
        return refuseMember("version", QStringLiteral("\"version\" is not a whole number from 1"));
    }
    if (version.toDouble() > version_) {
        return refuseMember("version",
                            QStringLiteral("version %1 is newer than %2, the newest that is known here")
                                .arg(oru::jsonNumber(version))
                                .arg(version_));
    }
    return true;
}

bool OruPropertiesCheck::acceptsNode(const Members& members, OruProperties* node, int depth, Plan& plan)
{
    if (depth > maximumDepth_) {
        return refuse(QStringLiteral("the tree is deeper than %1 levels").arg(maximumDepth_));
    }
    plan.json = members.json;
    plan.unknown = members.unknown;
    // What has just been made hangs nowhere; which type it has is its maker's affair.
    const bool present = depth == 0 || (node && node->parent());
    return acceptsType(members.type, present ? node : nullptr, plan) && acceptsFlags(members.flags, plan) &&
           acceptsValues(members.values, node, plan) && acceptsChildren(members.children, node, depth, plan);
}

bool OruPropertiesCheck::acceptsType(const QJsonValue& type, const OruProperties* node, Plan& plan)
{
    plan.type = type.toString();
    if (!type.isUndefined() && !type.isString()) {
        return refuseMember("type", QStringLiteral("\"type\" must be a string"));
    }
    if (node && type.isString() && plan.type != node->type()) {
        return refuseMember("type", QStringLiteral("type \"%1\", where the tree has a node of type \"%2\"")
                                        .arg(plan.type, node->type()));
    }
    return true;
}

bool OruPropertiesCheck::acceptsFlags(const QJsonValue& flags, Plan& plan)
{
    plan.flags = flags.toInt(-1);
    return flags.isUndefined() || isWhole(flags, 0, 0xffff) ||
           refuseMember("flags", QStringLiteral("\"flags\" must be a whole number from 0 to 65535"));
}

bool OruPropertiesCheck::acceptsValues(const QJsonValue& values, const OruProperties* node, Plan& plan)
{
    if (values.isUndefined()) {
        return true;
    }
    if (!values.isObject()) {
        return refuseMember("values", QStringLiteral("\"values\" must be an object"));
    }
    const QJsonObject entries = values.toObject();
    plan.values.reserve(static_cast<std::size_t>(entries.size()));
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        plan.values.push_back({entry.key(), QString(), QString(), QJsonObject()});
        if (!acceptsValue(entry.value(), node, plan.values.back())) {
            return within({QStringLiteral("values"), entry.key()});
        }
    }
    return true;
}

bool OruPropertiesCheck::acceptsValue(const QJsonValue& json, const OruProperties* node, Plan::Value& value)
{
    if (plainText(json, value.text)) {
        return acceptsKind(node, value);
    }
    value.unknown = json.toObject();
    if (!plainText(value.unknown.take(QLatin1String("value")), value.text)) {
        return refuse(
            QStringLiteral("value \"%1\" must be a string, a number, a flag, or an object with a \"value\"")
                .arg(value.key));
    }
    const QJsonValue unit = value.unknown.take(QLatin1String("unit"));
    value.unit = unit.toString();
    if (!unit.isUndefined() && !unit.isString()) {
        return refuseMember("unit", QStringLiteral("\"unit\" must be a string"));
    }
    return acceptsKind(node, value);
}

bool OruPropertiesCheck::acceptsKind(const OruProperties* node, const Plan::Value& value)
{
    QString reason;
    if (!node || node->kind(value.key).accepts(value.text, &reason)) {
        return true;
    }
    reasonHasPath_ = true;
    return refuse(QStringLiteral("%1 %2").arg(value.key, reason));
}

bool OruPropertiesCheck::acceptsChildren(const QJsonValue& children, OruProperties* node, int depth,
                                         Plan& plan)
{
    if (children.isUndefined()) {
        return true;
    }
    if (!children.isArray()) {
        return refuseMember("children", QStringLiteral("\"children\" must be an array"));
    }
    const QJsonArray array = children.toArray();
    plan.children.resize(static_cast<std::size_t>(array.size()));
    Names names(node ? node->children_.get() : nullptr);
    for (std::size_t i = 0; i < plan.children.size(); ++i) {
        const Members members(array.at(static_cast<int>(i)).toObject());
        if (!acceptsChild(members, node, names, depth + 1, plan.children[i])) {
            return within({QStringLiteral("children"), QString::number(i)});
        }
    }
    return true;
}

/// What a child holds that is still to be made, a child of its kind can tell.
bool OruPropertiesCheck::acceptsChild(const Members& members, OruProperties* parent, Names& names, int depth,
                                      Plan& plan)
{
    plan.name = members.name.toString();
    if (!members.name.isString() || plan.name.contains(QLatin1Char('/'))) {
        return refuseMember("name", QStringLiteral("a child needs a \"name\" without '/'"));
    }
    OruProperties* const child = names.find(plan.name);
    if (!(child ? names.take(*child) : names.take(plan.name))) {
        return refuseMember("name", QStringLiteral("a second child of the name \"%1\"").arg(plan.name));
    }
    plan.type = members.type.toString();
    if (acceptsNode(members, childFor(plan, parent, child), depth, plan)) {
        return true;
    }
    if (reasonHasPath_) {
        reason_.prepend(plan.name + QLatin1Char('/'));
    }
    return false;
}

bool OruPropertiesCheck::fits(Plan& plan, OruProperties& root)
{
    OruPropertiesKinds kinds;
    return fitsNode(plan, &root, true, kinds);
}

bool OruPropertiesCheck::fitsNode(Plan& plan, OruProperties* node, bool present, OruPropertiesKinds& kinds)
{
    if (present && !plan.type.isNull() && plan.type != node->type()) {
        return false;
    }
    const auto fitsKind = [&](const Plan::Value& value) {
        return kinds.accepts(node->kind(value.key), value.text);
    };
    if (node && !std::all_of(plan.values.begin(), plan.values.end(), fitsKind)) {
        return false;
    }
    // Sorting numbers is faster than a set of names. Two names of one number are left to the general way.
    std::vector<std::size_t> others;
    Names names(node ? node->children_.get() : nullptr);
    const auto fitsChild = [&](Plan& child) {
        OruProperties* const found = names.find(child.name);
        if (!found) {
            others.push_back(hashOf(child.name));
        } else if (!names.take(*found)) {
            return false;
        }
        return !child.name.contains(QLatin1Char('/')) &&
               fitsNode(child, childFor(child, node, found), found, kinds);
    };
    if (!std::all_of(plan.children.begin(), plan.children.end(), fitsChild)) {
        return false;
    }
    std::sort(others.begin(), others.end());
    return std::adjacent_find(others.begin(), others.end()) == others.end();
}

/// Where the tree has no such child, one of its kind is made.
OruProperties* OruPropertiesCheck::childFor(Plan& plan, OruProperties* parent, OruProperties* found)
{
    if (found || !parent) {
        return found;
    }
    plan.made.reset(parent->makeChild(plan.name, plan.type));
    return plan.made.get();
}

bool OruPropertiesCheck::refuse(const QString& reason)
{
    reason_ = reason;
    return false;
}

bool OruPropertiesCheck::refuseMember(const char* member, const QString& reason)
{
    return refuse(reason) || within({QString::fromLatin1(member)});
}

/// What was refused stands that many steps further down.
bool OruPropertiesCheck::within(const QStringList& steps)
{
    place_ = steps + place_;
    return false;
}
