#include "contracts/core/internal/OruPropertiesText.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/internal/OruPropertiesCheck.h"
#include "contracts/core/internal/OruPropertiesForeign.h"
#include "contracts/debug/dbgostream.h"
#include "contracts/debug/logger.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Known = OruPropertiesForeign;

/// All members of a file, in the order in which they are written.
QStringList writingOrder()
{
    QStringList order;
    const auto append = [&order](const char* name) { order.append(QString::fromLatin1(name)); };
    std::for_each(std::begin(Known::knownHead), std::end(Known::knownHead), append);
    std::for_each(std::begin(Known::knownNode), std::end(Known::knownNode), append);
    std::for_each(std::begin(Known::knownValue), std::end(Known::knownValue), append);
    return order;
}

/// A child in the tree, or one that is kept for the file; the other is null.
struct Child
{
    const OruProperties* node;
    const QJsonObject* kept;
};

using Children = std::vector<Child>;
using KeptNode = std::pair<int, QJsonObject>;
using KeptNodes = std::vector<const KeptNode*>;

/// Puts kept nodes, whose positions rise, among the children; behind them where there are not so many.
Children withRun(const Children& children, KeptNodes::const_iterator kept, KeptNodes::const_iterator end)
{
    Children all;
    all.reserve(children.size() + static_cast<std::size_t>(std::distance(kept, end)));
    auto next = children.begin();
    for (; kept != end; ++kept) {
        while (next != children.end() && all.size() < static_cast<std::size_t>((*kept)->first)) {
            all.push_back(*next++);
        }
        all.push_back(Child{nullptr, &(*kept)->second});
    }
    all.insert(all.end(), next, children.end());
    return all;
}

/// Each load has left a run of nodes whose positions rise.
Children withKept(Children children, const KeptNodes& kept)
{
    const auto rises = [](const KeptNode* later, const KeptNode* sooner) {
        return later->first <= sooner->first;
    };
    for (auto run = kept.begin(); run != kept.end();) {
        const auto end = std::is_sorted_until(run, kept.end(), rises);
        children = withRun(children, run, end);
        run = end;
    }
    return children;
}

} // namespace

OruPropertiesText::OruPropertiesText()
    : writer_(writingOrder())
{}

QByteArray OruPropertiesText::of(const OruProperties& root, int version)
{
    writer_.beginObject();
    writer_.key(QStringLiteral("format"));
    writer_.string(OruPropertiesCheck::format());
    writer_.key(QStringLiteral("version"));
    writer_.value(version);
    writer_.key(QStringLiteral("tree"));
    write(root);
    if (root.foreign_) {
        writeUnknown(root.foreign_->head, false);
    }
    writer_.end();
    tellLeftOut();
    return writer_.text() + '\n';
}

void OruPropertiesText::write(const OruProperties& node)
{
    const QJsonObject unknown = node.foreign_ ? node.foreign_->members : QJsonObject();
    writer_.beginObject();
    writeUnknown(unknown, true);
    writer_.key(QStringLiteral("name"));
    writer_.string(node.name());
    writer_.key(QStringLiteral("type"));
    writer_.string(node.type());
    if (node.flags != 0) {
        writer_.key(QStringLiteral("flags"));
        writer_.value(node.flags);
    }
    writeValues(node);
    writeChildren(node);
    writeUnknown(unknown, false);
    writer_.end();
}

void OruPropertiesText::writeValues(const OruProperties& node)
{
    const QStringList keys = writer_.ordered(writtenKeys(node));
    if (keys.isEmpty()) {
        return;
    }
    writer_.key(QStringLiteral("values"));
    writer_.beginObject();
    for (const QString& key : keys) {
        writer_.key(key);
        writeValue(node, key);
    }
    writer_.end();
}

void OruPropertiesText::writeValue(const OruProperties& node, const QString& key)
{
    QString text;
    node.string().getValue(key, text, QString());
    const QString unit = node.string().getUnit(key, QString());
    QJsonObject parts = node.foreign_ ? node.foreign_->valueMembers.value(key) : QJsonObject();
    if (parts.isEmpty() && unit.isEmpty()) {
        writer_.string(text);
        return;
    }
    parts.insert(QStringLiteral("value"), text);
    if (!unit.isEmpty()) {
        parts.insert(QStringLiteral("unit"), unit);
    }
    writer_.value(parts);
}

void OruPropertiesText::writeChildren(const OruProperties& node)
{
    Children children;
    children.reserve(node.size());
    for (unsigned int i = 0; i < node.size(); ++i) {
        children.push_back(Child{node.at(i), nullptr});
    }
    if (node.foreign_) {
        KeptNodes kept;
        for (const KeptNode& entry : node.foreign_->nodes) {
            if (!node.childByName(entry.second.value(QLatin1String("name")).toString())) {
                kept.push_back(&entry);
            }
        }
        children = withKept(std::move(children), kept);
    }
    if (children.empty()) {
        return;
    }
    writer_.key(QStringLiteral("children"));
    writer_.beginArray();
    for (const Child& child : children) {
        if (child.node) {
            write(*child.node);
        } else {
            writer_.value(*child.kept);
        }
    }
    writer_.end();
}

/// A file may give the names of known members to others; those are in the order, too.
void OruPropertiesText::writeUnknown(const QJsonObject& members, bool aheadOfName)
{
    for (const QString& key : writer_.ordered(members.keys())) {
        if ((writer_.rank(key) < writer_.rank(QStringLiteral("name"))) == aheadOfName) {
            writer_.key(key);
            writer_.value(members.value(key));
        }
    }
}

QStringList OruPropertiesText::writtenKeys(const OruProperties& node)
{
    QStringList keys = node.string().keys();
    const auto leftOut = [&](const QString& key) { return !isOfItsKind(node, key); };
    keys.erase(std::remove_if(keys.begin(), keys.end(), leftOut), keys.end());
    return keys;
}

/// False: the value is noted as one that is left out.
bool OruPropertiesText::isOfItsKind(const OruProperties& node, const QString& key)
{
    QString text;
    node.string().getValue(key, text, QString());
    const OruPropertyKind& kind = node.kind(key);
    if (kinds_.accepts(kind, text)) {
        return true;
    }
    if (leftOut_ == 0) {
        QString reason;
        kind.accepts(text, &reason);
        const QString path = node.path();
        firstLeftOut_ = (path.isEmpty() ? key : path + QLatin1Char('/') + key) + QLatin1Char(' ') + reason;
    }
    ++leftOut_;
    return false;
}

void OruPropertiesText::tellLeftOut() const
{
    const kelvardebug::dbgostream stream = oru::debug_logger::debuglogger().derr(std::string());
    if (leftOut_ == 0 || !stream.active()) {
        return;
    }
    const QString others = leftOut_ > 1 ? QStringLiteral(", nor are %1 others").arg(leftOut_ - 1) : QString();
    stream.buffer() << "a value is not saved: " << firstLeftOut_.toStdString() << others.toStdString();
    stream << std::endl;
}
