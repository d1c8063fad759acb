#include "contracts/core/internal/OruPropertiesCheck.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/internal/OruJson.h"

#include <QJsonArray>
#include <QSet>

#include <cmath>
#include <memory>

namespace {

QString member(const char* name)
{
    return QString::fromLatin1(name);
}

bool isWhole(const QJsonValue& value, double smallest, double largest)
{
    const double number = value.toDouble();
    return value.isDouble() && number == std::floor(number) && number >= smallest && number <= largest;
}

} // namespace

QString OruPropertiesCheck::format()
{
    return member("kelvar property tree");
}

bool OruPropertiesCheck::accepts(const QJsonObject& document, OruProperties& root)
{
    if (!acceptsHead(document)) {
        return false;
    }
    place_.append(member("tree"));
    return acceptsNode(document.value(member("tree")), &root, 0);
}

bool OruPropertiesCheck::plainText(const QJsonValue& value, QString& text)
{
    if (value.isDouble()) {
        text = oru::jsonNumber(value);
    } else if (value.isBool()) {
        text = member(value.toBool() ? "true" : "false");
    } else {
        text = value.toString();
    }
    return value.isDouble() || value.isBool() || value.isString();
}

bool OruPropertiesCheck::acceptsHead(const QJsonObject& document)
{
    if (document.value(member("format")).toString() != format()) {
        return refuseMember("format", QStringLiteral("\"format\" is not \"%1\"").arg(format()));
    }
    const QJsonValue version = document.value(member("version"));
    if (!isWhole(version, 1, 1e9)) {
        return refuseMember("version", member("\"version\" is not a whole number from 1"));
    }
    if (version.toDouble() > version_) {
        return refuseMember("version",
                            QStringLiteral("version %1 is newer than %2, the newest that is known here")
                                .arg(oru::jsonNumber(version))
                                .arg(version_));
    }
    return true;
}

bool OruPropertiesCheck::acceptsNode(const QJsonValue& value, OruProperties* node, int depth)
{
    if (!value.isObject()) {
        return refuse(member("a node must be an object"));
    }
    if (depth > maximumDepth_) {
        return refuse(QStringLiteral("the tree is deeper than %1 levels").arg(maximumDepth_));
    }
    const QJsonObject json = value.toObject();
    // A sample hangs nowhere; which type it has is its maker's affair.
    const bool present = depth == 0 || (node && node->parent());
    return acceptsType(json, present ? node : nullptr) && acceptsFlags(json) && acceptsValues(json, node) &&
           acceptsChildren(json, node, depth);
}

bool OruPropertiesCheck::acceptsType(const QJsonObject& json, const OruProperties* node)
{
    const QJsonValue type = json.value(member("type"));
    if (type.isUndefined()) {
        return true;
    }
    if (!type.isString()) {
        return refuseMember("type", member("\"type\" must be a string"));
    }
    if (node && type.toString() != node->type()) {
        return refuseMember("type", QStringLiteral("type \"%1\", where the tree has a node of type \"%2\"")
                                        .arg(type.toString(), node->type()));
    }
    return true;
}

bool OruPropertiesCheck::acceptsFlags(const QJsonObject& json)
{
    const QJsonValue flags = json.value(member("flags"));
    return flags.isUndefined() || isWhole(flags, 0, 0xffff) ||
           refuseMember("flags", member("\"flags\" must be a whole number from 0 to 65535"));
}

bool OruPropertiesCheck::acceptsValues(const QJsonObject& json, const OruProperties* node)
{
    const QJsonValue values = json.value(member("values"));
    if (values.isUndefined()) {
        return true;
    }
    if (!values.isObject()) {
        return refuseMember("values", member("\"values\" must be an object"));
    }
    place_.append(member("values"));
    const QJsonObject entries = values.toObject();
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        place_.append(entry.key());
        if (!acceptsValue(entry.key(), entry.value(), node)) {
            return false;
        }
        place_.removeLast();
    }
    place_.removeLast();
    return true;
}

bool OruPropertiesCheck::acceptsValue(const QString& key, const QJsonValue& value, const OruProperties* node)
{
    QString text;
    if (plainText(value, text)) {
        return acceptsKind(key, text, node);
    }
    const QJsonObject parts = value.toObject();
    if (!plainText(parts.value(member("value")), text)) {
        return refuse(QString::fromLatin1(
                          "value \"%1\" must be a string, a number, a flag, or an object with a \"value\"")
                          .arg(key));
    }
    const QJsonValue unit = parts.value(member("unit"));
    if (!unit.isUndefined() && !unit.isString()) {
        return refuseMember("unit", member("\"unit\" must be a string"));
    }
    return acceptsKind(key, text, node);
}

bool OruPropertiesCheck::acceptsKind(const QString& key, const QString& text, const OruProperties* node)
{
    QString reason;
    return !node || node->kind(key).accepts(text, &reason) ||
           refuse(QStringLiteral("%1 %2").arg((path_ + QStringList(key)).join(QLatin1Char('/')), reason));
}

bool OruPropertiesCheck::acceptsChildren(const QJsonObject& json, OruProperties* node, int depth)
{
    const QJsonValue children = json.value(member("children"));
    if (children.isUndefined()) {
        return true;
    }
    if (!children.isArray()) {
        return refuseMember("children", member("\"children\" must be an array"));
    }
    place_.append(member("children"));
    const QJsonArray array = children.toArray();
    QSet<QString> taken;
    for (int i = 0; i < static_cast<int>(array.size()); ++i) {
        const QJsonValue child = array.at(i);
        place_.append(QString::number(i));
        if (!acceptsName(child, taken) || !acceptsChild(child.toObject(), node, depth + 1)) {
            return false;
        }
        place_.removeLast();
    }
    place_.removeLast();
    return true;
}

/// What a child holds that is still to be made, a child of its kind can tell.
bool OruPropertiesCheck::acceptsChild(const QJsonObject& json, OruProperties* parent, int depth)
{
    const QString name = json.value(member("name")).toString();
    OruProperties* node = parent ? parent->childByName(name) : nullptr;
    std::unique_ptr<OruProperties> sample;
    if (parent && !node) {
        sample.reset(parent->makeChild(name, json.value(member("type")).toString()));
        node = sample.get();
    }
    path_.append(name);
    if (!acceptsNode(json, node, depth)) {
        return false;
    }
    path_.removeLast();
    return true;
}

bool OruPropertiesCheck::acceptsName(const QJsonValue& child, QSet<QString>& taken)
{
    const QJsonValue name = child.toObject().value(member("name"));
    if (!name.isString() || name.toString().contains(QLatin1Char('/'))) {
        return refuseMember("name", member("a child needs a \"name\" without '/'"));
    }
    if (taken.contains(name.toString())) {
        return refuseMember("name", QStringLiteral("a second child of the name \"%1\"").arg(name.toString()));
    }
    taken.insert(name.toString());
    return true;
}

bool OruPropertiesCheck::refuse(const QString& reason)
{
    reason_ = reason;
    return false;
}

bool OruPropertiesCheck::refuseMember(const char* name, const QString& reason)
{
    place_.append(member(name));
    return refuse(reason);
}
