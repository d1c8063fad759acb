#include "contracts/core/OruPropertiesFile.h"

#include "contracts/core/OruFileReader.h"
#include "contracts/core/OruFileWriter.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/internal/OruJson.h"
#include "contracts/core/internal/OruPropertiesCheck.h"
#include "contracts/core/internal/OruPropertiesForeign.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <iterator>
#include <memory>

namespace {

/// The members that are known, in the order in which they are written.
const char* const knownHead[] = {"format", "version", "tree"};
const char* const knownNode[] = {"name", "type", "flags", "values", "children"};
const char* const knownValue[] = {"value", "unit"};

QString member(const char* name)
{
    return QString::fromLatin1(name);
}

template <std::size_t Count>
QJsonObject withoutKnown(QJsonObject object, const char* const (&known)[Count])
{
    for (const char* name : known) {
        object.remove(member(name));
    }
    return object;
}

/// Members of `newer` win over those of the same name.
void join(QJsonObject& kept, const QJsonObject& newer)
{
    for (auto entry = newer.begin(); entry != newer.end(); ++entry) {
        kept.insert(entry.key(), entry.value());
    }
}

QStringList writingOrder()
{
    QStringList order;
    const auto append = [&order](const char* name) { order.append(member(name)); };
    std::for_each(std::begin(knownHead), std::end(knownHead), append);
    std::for_each(std::begin(knownNode), std::end(knownNode), append);
    std::for_each(std::begin(knownValue), std::end(knownValue), append);
    return order;
}

bool fail(QString* error, const QString& file, const QString& reason)
{
    if (error) {
        *error = file + QLatin1String(": ") + reason;
    }
    return false;
}

/// A failure at a place in the content.
bool failAt(QString* error, const QString& file, const QString& position, const QString& reason)
{
    return fail(error, file + QLatin1Char(':') + position, reason);
}

int depthOf(const OruProperties& node)
{
    int depth = 0;
    for (unsigned int i = 0; i < node.size(); ++i) {
        depth = std::max(depth, 1 + depthOf(*node.at(i)));
    }
    return depth;
}

QString nameOf(const QJsonObject& json)
{
    return json.value(member("name")).toString();
}

/// The text of a file, without a byte order mark.
bool readText(const QString& file, QByteArray& text, QString* error)
{
    QString reason;
    if (!OruFileReader::read(file, OruPropertiesFile::maximumBytes, text, reason)) {
        return reason.isEmpty()
                   ? failAt(error, file, member("1:1"),
                            QStringLiteral("larger than %1 bytes").arg(OruPropertiesFile::maximumBytes))
                   : fail(error, file, reason);
    }
    if (text.startsWith("\xEF\xBB\xBF")) {
        text.remove(0, 3);
    }
    return true;
}

/// Where the parser stopped; at an illegal word it has read on, so that is taken back to where the word
/// starts.
int offsetOf(const QJsonParseError& problem, const QByteArray& text)
{
    int offset = problem.offset;
    if (problem.error != QJsonParseError::IllegalValue) {
        return offset;
    }
    const auto stepBack = [&](int (*belongs)(int)) {
        while (offset > 0 && belongs(static_cast<unsigned char>(text.at(offset - 1)))) {
            --offset;
        }
    };
    stepBack(std::isspace);
    stepBack(std::isalpha);
    return offset;
}

bool parse(const QString& file, const QByteArray& text, QJsonObject& document, QString* error)
{
    const int mark = static_cast<int>(text.indexOf(QByteArray("\"") + oru::byteOrderMark));
    if (mark >= 0) {
        return failAt(error, file, oru::jsonPosition(text, mark),
                      member("a byte order mark in a text; write it as \\ufeff"));
    }
    QJsonParseError problem;
    const QJsonDocument parsed = QJsonDocument::fromJson(text, &problem);
    if (problem.error != QJsonParseError::NoError) {
        return failAt(error, file, oru::jsonPosition(text, offsetOf(problem, text)), problem.errorString());
    }
    if (!parsed.isObject()) {
        return failAt(error, file, oru::jsonPosition(text, oru::jsonOffset(text, QStringList())),
                      member("the document must be an object"));
    }
    document = parsed.object();
    return true;
}

} // namespace

bool OruPropertiesFile::save(const OruProperties& root, const QString& file, QString* error)
{
    if (depthOf(root) > maximumDepth) {
        return fail(error, file, QStringLiteral("the tree is deeper than %1 levels").arg(maximumDepth));
    }
    const QByteArray text = OruPropertiesFile::text(root);
    if (text.size() > maximumBytes) {
        return fail(error, file, QStringLiteral("the tree takes more than %1 bytes").arg(maximumBytes));
    }
    OruFileWriter out(file);
    if (!out.replace(text)) {
        if (error) {
            *error = out.error();
        }
        return false;
    }
    return true;
}

QByteArray OruPropertiesFile::text(const OruProperties& root)
{
    QJsonObject document = root.foreign_ ? root.foreign_->head : QJsonObject();
    document.insert(member("format"), OruPropertiesCheck::format());
    document.insert(member("version"), Version);
    document.insert(member("tree"), describe(root));
    return oru::jsonText(document, writingOrder());
}

bool OruPropertiesFile::load(OruProperties& root, const QString& file, QString* error)
{
    QByteArray text;
    return readText(file, text, error) && load(root, text, file, error);
}

bool OruPropertiesFile::load(OruProperties& root, const QByteArray& text, const QString& file, QString* error)
{
    QJsonObject document;
    if (!parse(file, text, document, error)) {
        return false;
    }
    OruPropertiesCheck check(Version, maximumDepth);
    if (!check.accepts(document, root)) {
        const int offset = oru::jsonOffset(text, check.place());
        return failAt(error, file, oru::jsonPosition(text, offset), check.reason());
    }
    const QJsonObject unknown = withoutKnown(document, knownHead);
    if (!unknown.isEmpty()) {
        join(foreign(root).head, unknown);
    }
    merge(root, document.value(member("tree")).toObject());
    return true;
}

OruPropertiesForeign& OruPropertiesFile::foreign(OruProperties& node)
{
    if (!node.foreign_) {
        node.foreign_ = std::make_unique<OruPropertiesForeign>();
    }
    return *node.foreign_;
}

QJsonObject OruPropertiesFile::describe(const OruProperties& node)
{
    QJsonObject json = node.foreign_ ? node.foreign_->members : QJsonObject();
    json.insert(member("name"), node.name());
    json.insert(member("type"), node.type());
    if (node.flags != 0) {
        json.insert(member("flags"), node.flags);
    }
    const QJsonObject values = describeValues(node);
    if (!values.isEmpty()) {
        json.insert(member("values"), values);
    }
    QJsonArray children;
    for (unsigned int i = 0; i < node.size(); ++i) {
        children.append(describe(*node.at(i)));
    }
    if (node.foreign_) {
        for (const auto& [position, kept] : node.foreign_->nodes) {
            if (!node.childByName(nameOf(kept))) {
                children.insert(std::min(position, static_cast<int>(children.size())), kept);
            }
        }
    }
    if (!children.isEmpty()) {
        json.insert(member("children"), children);
    }
    return json;
}

QJsonObject OruPropertiesFile::describeValues(const OruProperties& node)
{
    QJsonObject values;
    for (const QString& key : node.string().keys()) {
        QString text;
        node.string().getValue(key, text, QString());
        const QString unit = node.string().getUnit(key, QString());
        QJsonObject parts = node.foreign_ ? node.foreign_->valueMembers.value(key) : QJsonObject();
        if (parts.isEmpty() && unit.isEmpty()) {
            values.insert(key, text);
            continue;
        }
        parts.insert(member("value"), text);
        if (!unit.isEmpty()) {
            parts.insert(member("unit"), unit);
        }
        values.insert(key, parts);
    }
    return values;
}

void OruPropertiesFile::merge(OruProperties& node, const QJsonObject& json)
{
    const QJsonObject unknown = withoutKnown(json, knownNode);
    if (!unknown.isEmpty()) {
        join(foreign(node).members, unknown);
    }
    const int flags = json.value(member("flags")).toInt(node.flags);
    if (flags != node.flags) {
        node.flags = static_cast<std::uint16_t>(flags);
        node.touch();
    }
    mergeValues(node, json.value(member("values")).toObject());
    const QJsonArray children = json.value(member("children")).toArray();
    for (int i = 0; i < static_cast<int>(children.size()); ++i) {
        mergeChild(node, i, children.at(i).toObject());
    }
}

void OruPropertiesFile::mergeValues(OruProperties& node, const QJsonObject& values)
{
    for (auto entry = values.begin(); entry != values.end(); ++entry) {
        const QJsonObject parts = entry.value().toObject();
        QString text;
        OruPropertiesCheck::plainText(entry.value().isObject() ? parts.value(member("value")) : entry.value(),
                                      text);
        node.setValue(entry.key(), text);
        if (parts.contains(member("unit"))) {
            node.string().setUnit(entry.key(), parts.value(member("unit")).toString());
        }
        const QJsonObject unknown = withoutKnown(parts, knownValue);
        if (!unknown.isEmpty()) {
            join(foreign(node).valueMembers[entry.key()], unknown);
        }
    }
}

void OruPropertiesFile::mergeChild(OruProperties& node, int position, const QJsonObject& json)
{
    OruProperties* child = node.childByName(nameOf(json));
    if (!child) {
        child = addChild(node, json);
    }
    if (child) {
        merge(*child, json);
        return;
    }
    auto& kept = foreign(node).nodes;
    const auto sameName = [&json](const auto& entry) { return nameOf(entry.second) == nameOf(json); };
    kept.erase(std::remove_if(kept.begin(), kept.end(), sameName), kept.end());
    kept.emplace_back(position, json);
}

OruProperties* OruPropertiesFile::addChild(OruProperties& node, const QJsonObject& json)
{
    const QString name = nameOf(json);
    std::unique_ptr<OruProperties> child(node.makeChild(name, json.value(member("type")).toString()));
    const bool named = child && (child->name() == name || child->rename(name));
    return named && node.insert(child.get(), false) ? child.release() : nullptr;
}
