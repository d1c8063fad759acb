#pragma once

#include "contracts/core/internal/OruPropertiesPlan.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstddef>
#include <string_view>

/// Reads the text of a property file the fast way, without a document of it in between. Not part of the
/// public interface.
///
/// It takes what saves write, and what people write alike. It leaves to the general way what it does not
/// know: members of other names, some that come twice or empty, values that are no strings, escapes by
/// number. That way also tells what is wrong with a text.
class OruPropertiesReader
{
public:
    /// `text` must outlive the reader. For trees up to that many levels below the root.
    OruPropertiesReader(const QByteArray& text, int maximumDepth);

    /// True: `tree` holds all that the text says. False: it is one for the general way, or none at all.
    bool read(OruPropertiesPlan& tree, int version);

private:
    using Plan = OruPropertiesPlan;

    /// A text that comes again and again, such as a key or a type, is made once.
    struct Word
    {
        std::string_view bytes;
        QString text;
    };

    template <typename Member>
    bool readObject(Member member);
    bool readNode(Plan& node);
    bool readName(Plan& node) { return readText(node.name); }
    bool readType(Plan& node) { return readWord(node.type); }
    bool readFlags(Plan& node);
    bool readValues(Plan& node);
    bool readValue(Plan::Value& value);
    bool readChildren(Plan& node);

    bool readNumber(int& number, int largest);
    bool readString(std::string_view& bytes);
    bool readText(QString& text);
    bool readWord(QString& word);
    bool takeWord(std::string_view bytes, QString& word);

    char next();
    bool take(char character);
    bool takeEnd(char closing, bool& more);

    const char* at_;
    const char* const end_;
    int levelsLeft_;
    /// A guess for the next node: as many as the last one had.
    std::size_t valueCount_ = 0;
    std::array<Word, 256> words_;
};
