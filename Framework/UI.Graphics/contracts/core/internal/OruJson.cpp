#include "contracts/core/internal/OruJson.h"

#include "contracts/core/OruText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaType>
#include <QVariant>

#include <cstring>

namespace {

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
