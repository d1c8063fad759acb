#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QSet>
#include <QString>
#include <QStringList>

class OruProperties;

/// Tells whether the content of a property file has the right shape and fits a tree, before any of it is
/// applied. Not part of the public interface.
class OruPropertiesCheck
{
public:
    /// What the head of each file says under "format".
    static QString format();

    /// True: the document can be merged into the tree below `root`. False: reason() and place() say why not.
    /// Children that the tree has not got are made to see what they hold, and deleted again.
    bool accepts(const QJsonObject& document, OruProperties& root);

    const QString& reason() const { return reason_; }

    /// The way to what is wrong, in the terms of oru::jsonOffset().
    const QStringList& place() const { return place_; }

    /// The text of a value that may stand as a string, a number or a flag. False: it is neither.
    static bool plainText(const QJsonValue& value, QString& text);

private:
    bool acceptsHead(const QJsonObject& document);
    bool acceptsNode(const QJsonValue& value, OruProperties* node, int depth);
    bool acceptsType(const QJsonObject& json, const OruProperties* node);
    bool acceptsFlags(const QJsonObject& json);
    bool acceptsValues(const QJsonObject& json, const OruProperties* node);
    bool acceptsValue(const QString& key, const QJsonValue& value, const OruProperties* node);
    bool acceptsKind(const QString& key, const QString& text, const OruProperties* node);
    bool acceptsChildren(const QJsonObject& json, OruProperties* node, int depth);
    bool acceptsChild(const QJsonObject& json, OruProperties* parent, int depth);
    bool acceptsName(const QJsonValue& child, QSet<QString>& taken);

    bool refuse(const QString& reason);
    bool refuseMember(const char* member, const QString& reason);

    QString reason_;
    QStringList place_;
    /// Names of the nodes on the way, without the root.
    QStringList path_;
};
