#pragma once

#include "contracts/core/internal/OruPropertiesPlan.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

class OruProperties;
class OruPropertiesKinds;

/// Tells whether the content of a property file has the right shape and fits a tree, before any of it is
/// applied. Not part of the public interface.
class OruPropertiesCheck
{
public:
    /// For files up to that version and trees up to that many levels below the root.
    OruPropertiesCheck(int version, int maximumDepth)
        : version_(version)
        , maximumDepth_(maximumDepth)
    {}

    /// What the head of each file says under "format".
    static QString format();

    /// True: the document can be merged into the tree below `root`, and `plan` tells how. False: reason() and
    /// place() say why not. Children that the tree has not got are made, since they know what they can hold.
    bool accepts(const QJsonObject& document, OruProperties& root, OruPropertiesPlan& plan);

    /// The same for a plan that has been read and is of the right shape. False: nobody says why not.
    static bool fits(OruPropertiesPlan& plan, OruProperties& root);

    const QString& reason() const { return reason_; }

    /// The way to what is wrong, in the terms of oru::jsonOffset().
    const QStringList& place() const { return place_; }

private:
    using Plan = OruPropertiesPlan;
    class Names;
    struct Members;

    static bool fitsNode(Plan& plan, OruProperties* node, bool present, OruPropertiesKinds& kinds);
    static OruProperties* childFor(Plan& plan, OruProperties* parent, OruProperties* found);

    bool acceptsHead(const QJsonObject& document);
    bool acceptsNode(const Members& members, OruProperties* node, int depth, Plan& plan);
    bool acceptsType(const QJsonValue& type, const OruProperties* node, Plan& plan);
    bool acceptsFlags(const QJsonValue& flags, Plan& plan);
    bool acceptsValues(const QJsonValue& values, const OruProperties* node, Plan& plan);
    bool acceptsValue(const QJsonValue& json, const OruProperties* node, Plan::Value& value);
    bool acceptsKind(const OruProperties* node, const Plan::Value& value);
    bool acceptsChildren(const QJsonValue& children, OruProperties* node, int depth, Plan& plan);
    bool acceptsChild(const Members& members, OruProperties* parent, Names& names, int depth, Plan& plan);

    bool refuse(const QString& reason);
    bool refuseMember(const char* member, const QString& reason);
    bool within(const QStringList& steps);

    const int version_;
    const int maximumDepth_;
    QString reason_;
    QStringList place_;
    /// The reason begins with the path of the node and a key.
    bool reasonHasPath_ = false;
};
