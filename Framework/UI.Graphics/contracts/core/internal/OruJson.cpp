#include "contracts/core/internal/OruJson.h"

#include "contracts/core/OruText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaType>
#include <QVariant>

#include <algorithm>
#include <cstring>

namespace {

/// Indented output; QJsonDocument's own would round 64-bit integers and sort all members.
class Writer
{
public:
    explicit Writer(const QStringList& order)
        : order_(order)
    {}

    QByteArray text;

    void write(const QJsonValue& value, int depth)
    {
        if (value.isObject()) {
            writeObject(value.toObject(), depth);
        } else if (value.isArray()) {
            writeArray(value.toArray(), depth);
        } else if (value.isDouble()) {
            text += oru::jsonNumber(value).toLatin1();
        } else {
            writeLeaf(value);
        }
    }

private:
    void writeObject(const QJsonObject& object, int depth)
    {
        text += '{';
        const char* separator = "";
        for (const QString& key : orderedKeys(object)) {
            text += separator;
            startLine(depth + 1);
            writeLeaf(key);
            text += ": ";
            write(object.value(key), depth + 1);
            separator = ",";
        }
        endBlock(object.isEmpty(), depth, '}');
    }

    void writeArray(const QJsonArray& array, int depth)
    {
        text += '[';
        const char* separator = "";
        for (const QJsonValue& element : array) {
            text += separator;
            startLine(depth + 1);
            write(element, depth + 1);
            separator = ",";
        }
        endBlock(array.isEmpty(), depth, ']');
    }

    /// A document must be an object or an array, so a leaf is written as the only element of one. A byte
    /// order mark is escaped: the reader would drop it from the start of a text.
    void writeLeaf(const QJsonValue& leaf)
    {
        const QByteArray array = QJsonDocument(QJsonArray{leaf}).toJson(QJsonDocument::Compact);
        text += array.mid(1, array.size() - 2).replace(oru::byteOrderMark, "\\ufeff");
    }

    void startLine(int depth) { text += '\n' + QByteArray(4 * depth, ' '); }

    void endBlock(bool empty, int depth, char bracket)
    {
        if (!empty) {
            startLine(depth);
        }
        text += bracket;
    }

    QStringList orderedKeys(const QJsonObject& object) const
    {
        QStringList keys = object.keys();
        std::stable_sort(keys.begin(), keys.end(),
                         [this](const QString& a, const QString& b) { return rank(a) < rank(b); });
        return keys;
    }

    int rank(const QString& key) const
    {
        const int position = static_cast<int>(order_.indexOf(key));
        return position < 0 ? static_cast<int>(order_.size()) : position;
    }

    QStringList order_;
};

bool isOneOf(char character, const char* characters)
{
    return character != '\0' && std::strchr(characters, character);
}

/// Walks over the text of a valid document.
class Scanner
{
public:
    Scanner(const QByteArray& document, int offset)
        : text_(document)
        , offset_(offset)
    {
        skipBlanks();
    }

    int offset() const { return offset_; }

    /// Moves from a container to the value that `step` names; false: there is none.
    bool descend(const QString& step)
    {
        const bool object = at() == '{';
        if (!object && at() != '[') {
            return false;
        }
        const char closing = object ? '}' : ']';
        int found = -1;
        int count = 0;
        for (advance(); at() != closing; ++count) {
            const QString key = object ? takeKey() : QString::number(count);
            // Of equal names the last one counts, as it does for QJsonDocument.
            found = key == step ? offset_ : found;
            skipValue();
            if (at() == ',') {
                advance();
            }
        }
        offset_ = found;
        return found >= 0;
    }

private:
    char at() const { return text_.at(offset_); }

    void advance()
    {
        ++offset_;
        skipBlanks();
    }

    void skipBlanks()
    {
        while (offset_ < text_.size() && isOneOf(at(), " \t\r\n")) {
            ++offset_;
        }
    }

    QString takeKey()
    {
        const int start = offset_;
        skipString();
        const QByteArray key = '[' + text_.mid(start, offset_ - start) + ']';
        skipBlanks();
        advance(); // the colon
        return QJsonDocument::fromJson(key).array().first().toString();
    }

    void skipString()
    {
        for (++offset_; at() != '"'; ++offset_) {
            offset_ += at() == '\\' ? 1 : 0;
        }
        ++offset_;
    }

    void skipValue()
    {
        int depth = 0;
        do {
            if (at() == '"') {
                skipString();
                continue;
            }
            depth += at() == '{' || at() == '[' ? 1 : 0;
            depth -= at() == '}' || at() == ']' ? 1 : 0;
            ++offset_;
        } while (depth > 0 || !isOneOf(at(), ",}]"));
    }

    const QByteArray& text_;
    int offset_;
};

} // namespace

QString oru::jsonNumber(const QJsonValue& number)
{
    const QVariant variant = number.toVariant();
    return variant.userType() == QMetaType::LongLong ? QString::number(variant.toLongLong())
                                                     : oru::toString(number.toDouble());
}

QByteArray oru::jsonText(const QJsonObject& document, const QStringList& order)
{
    Writer writer(order);
    writer.write(document, 0);
    return writer.text + '\n';
}

int oru::jsonOffset(const QByteArray& document, const QStringList& steps)
{
    Scanner scanner(document, 0);
    int offset = scanner.offset();
    for (const QString& step : steps) {
        if (!scanner.descend(step)) {
            break;
        }
        offset = scanner.offset();
    }
    return offset;
}

QString oru::jsonPosition(const QByteArray& document, int offset)
{
    const QByteArray before = document.left(offset);
    const QByteArray line = before.mid(before.lastIndexOf('\n') + 1);
    return QStringLiteral("%1:%2").arg(before.count('\n') + 1).arg(QString::fromUtf8(line).size() + 1);
}
