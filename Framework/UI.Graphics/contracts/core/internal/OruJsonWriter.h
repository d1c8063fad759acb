#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <vector>

/// Writes an indented JSON document; QJsonDocument's own would round 64-bit integers and sort all members.
/// Not part of the public interface.
///
/// What is begun is ended in turn. In an object each value comes behind its key.
class OruJsonWriter
{
public:
    /// In a whole object the members that `order` names come first, in that order; the others follow, sorted.
    explicit OruJsonWriter(const QStringList& order);

    void beginObject() { begin('{', '}'); }
    void beginArray() { begin('[', ']'); }
    void end();

    void key(const QString& name);
    void string(const QString& value);

    /// Any value, objects and arrays included.
    void value(const QJsonValue& json);

    /// The members of an object, sorted so far, in the order in which they are written.
    QStringList ordered(QStringList keys) const;

    /// The place of a member in `order`; the number of them all for one that is not in it.
    int rank(const QString& key) const { return ranks_.value(key, static_cast<int>(ranks_.size())); }

    const QByteArray& text() const { return text_; }

private:
    struct Level
    {
        char closing;
        bool filled;
    };

    void begin(char opening, char closing);
    void startItem();
    void startLine();
    void quote(const QString& string);
    void appendEscaped(const QString& string);
    void leaf(const QJsonValue& json);

    QHash<QString, int> ranks_;
    QByteArray text_;
    std::vector<Level> levels_;
    bool behindKey_ = false;
};
