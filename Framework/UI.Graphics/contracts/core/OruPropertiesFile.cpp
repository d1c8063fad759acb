#include "contracts/core/OruPropertiesFile.h"

#include "contracts/core/OruFileReader.h"
#include "contracts/core/OruFileWriter.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/internal/OruJson.h"
#include "contracts/core/internal/OruPropertiesCheck.h"
#include "contracts/core/internal/OruPropertiesChildren.h"
#include "contracts/core/internal/OruPropertiesForeign.h"
#include "contracts/core/internal/OruPropertiesPlan.h"
#include "contracts/core/internal/OruPropertiesReader.h"
#include "contracts/core/internal/OruPropertiesText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

QString member(const char* name)
{
    return QString::fromLatin1(name);
}

/// Members of `newer` win over those of the same name.
void join(QJsonObject& kept, const QJsonObject& newer)
{
    for (auto entry = newer.begin(); entry != newer.end(); ++entry) {
        kept.insert(entry.key(), entry.value());
    }
}

QString nameOf(const QJsonObject& json)
{
    return json.value(QLatin1String("name")).toString();
}

using KeptNodes = std::vector<std::pair<int, QJsonObject>>;

/// Adds to the nodes that are kept for a node; they come in place of those of the same names.
void keep(KeptNodes& kept, const KeptNodes& newer)
{
    QSet<QString> names;
    for (const auto& [position, json] : newer) {
        names.insert(nameOf(json));
    }
    const auto replaced = [&names](const auto& entry) { return names.contains(nameOf(entry.second)); };
    kept.erase(std::remove_if(kept.begin(), kept.end(), replaced), kept.end());
    kept.insert(kept.end(), newer.begin(), newer.end());
}

/// A node that is kept for the file, as it stands in there.
QJsonObject jsonOf(const OruPropertiesPlan& plan)
{
    if (!plan.json.isEmpty()) {
        return plan.json;
    }
    QJsonObject json{{QStringLiteral("name"), plan.name}};
    if (!plan.type.isNull()) {
        json.insert(QStringLiteral("type"), plan.type);
    }
    if (plan.flags >= 0) {
        json.insert(QStringLiteral("flags"), plan.flags);
    }
    QJsonObject values;
    for (const OruPropertiesPlan::Value& value : plan.values) {
        const QJsonObject parts{{QStringLiteral("value"), value.text}, {QStringLiteral("unit"), value.unit}};
        values.insert(value.key, value.unit.isNull() ? QJsonValue(value.text) : QJsonValue(parts));
    }
    if (!values.isEmpty()) {
        json.insert(QStringLiteral("values"), values);
    }
    QJsonArray children;
    for (const OruPropertiesPlan& child : plan.children) {
        children.append(jsonOf(child));
    }
    if (!children.isEmpty()) {
        json.insert(QStringLiteral("children"), children);
    }
    return json;
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

/// Whether a quote that no backslash escapes is the last of these bytes.
bool endsInQuote(std::string_view bytes)
{
    if (bytes.empty() || bytes.back() != '"') {
        return false;
    }
    bytes.remove_suffix(1);
    const std::size_t other = bytes.find_last_not_of('\\') + 1; // 0 where there are backslashes alone
    return (bytes.size() - other) % 2 == 0;
}

/// Where a string of the document begins with a byte order mark, or -1.
int markInText(const QByteArray& text)
{
    const std::string_view bytes(text.constData(), static_cast<std::size_t>(text.size()));
    const std::string_view mark(oru::byteOrderMark);
    std::size_t found = bytes.find(mark);
    while (found != std::string_view::npos && !endsInQuote(bytes.substr(0, found))) {
        found = bytes.find(mark, found + 1);
    }
    return found == std::string_view::npos ? -1 : static_cast<int>(found) - 1;
}

bool parse(const QString& file, const QByteArray& text, QJsonObject& document, QString* error)
{
    const int mark = markInText(text);
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
    return OruPropertiesText().of(root, Version);
}

bool OruPropertiesFile::load(OruProperties& root, const QString& file, QString* error)
{
    QByteArray text;
    return readText(file, text, error) && load(root, text, file, error);
}

bool OruPropertiesFile::load(OruProperties& root, const QByteArray& text, const QString& file, QString* error)
{
    OruPropertiesPlan quick;
    if (OruPropertiesReader(text, maximumDepth).read(quick, Version) &&
        OruPropertiesCheck::fits(quick, root)) {
        merge(root, quick);
        return true;
    }
    QJsonObject document;
    if (!parse(file, text, document, error)) {
        return false;
    }
    OruPropertiesCheck check(Version, maximumDepth);
    OruPropertiesPlan plan;
    if (!check.accepts(document, root, plan)) {
        const int offset = oru::jsonOffset(text, check.place());
        return failAt(error, file, oru::jsonPosition(text, offset), check.reason());
    }
    for (const char* name : OruPropertiesForeign::knownHead) {
        document.remove(member(name));
    }
    if (!document.isEmpty()) {
        join(foreign(root).head, document);
    }
    merge(root, plan);
    return true;
}

OruPropertiesForeign& OruPropertiesFile::foreign(OruProperties& node)
{
    if (!node.foreign_) {
        node.foreign_ = std::make_unique<OruPropertiesForeign>();
    }
    return *node.foreign_;
}

void OruPropertiesFile::merge(OruProperties& node, OruPropertiesPlan& plan)
{
    if (!plan.unknown.isEmpty()) {
        join(foreign(node).members, plan.unknown);
    }
    if (plan.flags >= 0 && plan.flags != node.flags) {
        node.flags = static_cast<std::uint16_t>(plan.flags);
        node.touch();
    }
    mergeValues(node, plan);
    mergeChildren(node, plan);
}

void OruPropertiesFile::mergeValues(OruProperties& node, const OruPropertiesPlan& plan)
{
    for (const OruPropertiesPlan::Value& value : plan.values) {
        node.setValue(value.key, value.text);
        if (!value.unit.isNull()) {
            node.string().setUnit(value.key, value.unit);
        }
        if (!value.unknown.isEmpty()) {
            join(foreign(node).valueMembers[value.key], value.unknown);
        }
    }
}

void OruPropertiesFile::mergeChildren(OruProperties& node, OruPropertiesPlan& plan)
{
    KeptNodes unmade;
    std::size_t next = 0;
    for (std::size_t i = 0; i < plan.children.size(); ++i) {
        OruPropertiesPlan& childPlan = plan.children[i];
        OruProperties* child = node.children_ ? node.children_->find(childPlan.name, next) : nullptr;
        if (!child) {
            child = addChild(node, childPlan);
        }
        if (child) {
            next = node.children_->index(*child) + 1;
            merge(*child, childPlan);
        } else {
            unmade.emplace_back(static_cast<int>(i), jsonOf(childPlan));
        }
    }
    if (!unmade.empty()) {
        keep(foreign(node).nodes, unmade);
    }
}

OruProperties* OruPropertiesFile::addChild(OruProperties& node, OruPropertiesPlan& plan)
{
    std::unique_ptr<OruProperties> child = std::move(plan.made);
    if (!child) {
        child.reset(node.makeChild(plan.name, plan.type));
    }
    const bool named = child && (child->name() == plan.name || child->rename(plan.name));
    return named && node.insert(child.get(), false) ? child.release() : nullptr;
}
