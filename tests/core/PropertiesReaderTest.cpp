#include "contracts/core/OruPropertiesFile.h"
#include "tests/core/TreeSupport.h"
#include "tests/support/QtLeaks.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

namespace {

/// The fast reader takes a version like this one, and leaves the other one, which is as long, to the general
/// way. All places in a text are the same for both.
const QByteArray plainVersion = "\"version\": 1  ,";
const QByteArray oddVersion = "\"version\": 1.0,";

/// A text whose tree has these members behind its name.
QByteArray treeOf(const QByteArray& members)
{
    return "{\"format\": \"kelvar property tree\", " + plainVersion + " \"tree\": {\"name\": \"root\", " +
           members + "}}";
}

/// Text and unit of each value, below each other; an empty one differs from none.
void describe(const OruProperties& node, QString& words)
{
    for (const QString& key : node.string().keys()) {
        QString text;
        const QString stored = node.getValue(key, text, QString());
        const QString unit = node.string().getUnit(key, QString());
        words += key + (stored.isNull() ? " null" : " set") + (unit.isNull() ? " bare\n" : " unit\n");
    }
    for (unsigned int i = 0; i < node.size(); ++i) {
        describe(*node.at(i), words);
    }
}

/// What comes of a text: the tree that it is merged into, or the reason why not.
QString outcome(const QByteArray& text)
{
    OruModifiedGroup group;
    Branch root(group, "root");
    root.OruProperties::insert(new Branch(group, "there"), false);
    root.at(0)->string().setKind("size", sizes);
    root.at(0)->string().setUnit("unit", "mm");
    QString answer;
    if (OruPropertiesFile::load(root, text, "file", &answer)) {
        answer = OruPropertiesFile::text(root);
        describe(root, answer);
    }
    return answer;
}

/// False: the fast and the general way answer differently.
bool readsTheSame(const QByteArray& text)
{
    const kelvartest::QtLeaks tolerated;
    QByteArray general = text;
    const int version = general.indexOf(plainVersion);
    if (version >= 0) {
        general.replace(version, plainVersion.size(), oddVersion);
    }
    const QString fastAnswer = outcome(text);
    const QString generalAnswer = outcome(general);
    EXPECT_TRUE(fastAnswer == generalAnswer)
        << text.left(4000).toStdString() << "\nfast: " << fastAnswer.toStdString()
        << "\ngeneral: " << generalAnswer.toStdString();
    return fastAnswer == generalAnswer;
}

/// So many nodes below each other.
QByteArray nested(int levels)
{
    return QByteArray("\"children\": [{\"name\": \"a\", \"type\": \"branch\", ").repeated(levels) +
           "\"flags\": 1" + QByteArray("}]").repeated(levels);
}

/// What a save writes, with all that the fast reader takes.
QByteArray saved()
{
    OruModifiedGroup group;
    Branch root(group, "root");
    auto* there = new Branch(group, "there");
    root.OruProperties::insert(there, false);
    there->string().setValue("size", 3);
    there->string().setUnit("size", "px");
    there->string().setValue("text", QStringLiteral("\u00e4 \u20ac \"\\/\n\t"));
    there->flags = 256;
    for (const char* name : {"leaf", "odd", "refused"}) {
        auto* child = new Named(group, name);
        child->setType(name);
        child->string().setValue("size", 0.5);
        child->string().setValue("b", "a");
        there->OruProperties::insert(child, false);
    }
    return OruPropertiesFile::text(root).replace("\"version\": 1,", plainVersion);
}

/// Makes other texts of one, the same ones each time.
class Mutator
{
public:
    QByteArray operator()(QByteArray text)
    {
        for (unsigned changes = 1 + number(2); changes > 0; --changes) {
            (this->*ways[number(std::size(ways))])(text);
        }
        return text;
    }

private:
    using Way = void (Mutator::*)(QByteArray& text);

    std::size_t number(std::size_t below) { return random_() % below; }
    int place(const QByteArray& text) { return static_cast<int>(number(text.size() + 1)); }

    void cut(QByteArray& text) { text.truncate(place(text)); }
    void drop(QByteArray& text) { text.remove(place(text), static_cast<int>(1 + number(8))); }
    void put(QByteArray& text) { text.insert(place(text), piece()); }
    void replace(QByteArray& text)
    {
        const QByteArray other = piece();
        text.replace(place(text), other.size(), other);
    }
    /// Behind a quote, a colon and the like a piece makes sense more often.
    void putAtMark(QByteArray& text)
    {
        constexpr char marks[] = {'"', ':', ',', '{', '[', '\\'};
        const int mark = text.indexOf(marks[number(std::size(marks))], place(text));
        text.insert(mark + 1, piece());
    }
    void moveLine(QByteArray& text)
    {
        QList<QByteArray> lines = text.split('\n');
        const int size = lines.size();
        lines.move(static_cast<int>(number(size)), static_cast<int>(number(size)));
        text = lines.join('\n');
    }
    void repeatLine(QByteArray& text)
    {
        QList<QByteArray> lines = text.split('\n');
        const int size = lines.size();
        const QByteArray line = lines.at(static_cast<int>(number(size)));
        lines.insert(static_cast<int>(number(size)), line);
        text = lines.join('\n');
    }

    QByteArray piece()
    {
        static const QByteArray pieces[] = {"\"",
                                            "\\",
                                            "{",
                                            "}",
                                            "[",
                                            "]",
                                            ",",
                                            ":",
                                            " ",
                                            "\r\n",
                                            "\t",
                                            "\f",
                                            "\v",
                                            "0",
                                            "-0",
                                            "1e400",
                                            "1.0",
                                            "99999999999",
                                            "nan",
                                            "null",
                                            "true",
                                            "\"\"",
                                            "{}",
                                            "[]",
                                            "\\u0061",
                                            "\\ud83d",
                                            "\\ude00",
                                            "\\u0",
                                            "\\q",
                                            "\\n",
                                            "\\\"",
                                            "/",
                                            "\xEF\xBB\xBF",
                                            "\xEF\xBF\xBD",
                                            "\xff",
                                            "\xc3",
                                            "\xed\xa0\x80",
                                            "\xc0\x80",
                                            "\xf4\x90\x80\x80",
                                            "\xef\xbf\xbe",
                                            "\x7f",
                                            "\"name\"",
                                            "\"size\": \"1\",",
                                            "\"flags\": 7,",
                                            "\"type\": \"leaf\",",
                                            "\"unit\": \"\",",
                                            "\"odd\": [1],",
                                            QByteArray(1, '\0')};
        return pieces[number(std::size(pieces))];
    }

    static constexpr Way ways[] = {&Mutator::cut,       &Mutator::drop,      &Mutator::put,
                                   &Mutator::replace,   &Mutator::putAtMark, &Mutator::moveLine,
                                   &Mutator::repeatLine};
    std::mt19937 random_{11};
};

} // namespace

TEST(OruPropertiesReader, AnswersAsTheGeneralWayDoes)
{
    const QByteArray trees[] = {
        R"("values": {"b": "2", "a": "1", "size": " 3 "}, "flags": 7)",
        R"("values": {"unit": "u", "name": {"unit": "mm", "value": "\\ \"\n\t/\/"}}, "type": "branch")",
        R"("values": {"a": "", "\u0061\ud800": "\ufeff"}, "children": [])",
        R"("values": {"a": "1", "a": "2"}, "flags": 1, "flags": 2)",
        R"("values": {"a": "1"}, "values": {"b": "2"})",
        R"("children": [{"name": "a", "type": "leaf"}], "children": [{"name": "b", "type": "leaf"}])",
        R"("values": {"a\/b": {"value": "1", "unit": "m"}, "a/b": "2"})",
        R"("values": {"": "", "a": {"value": "", "unit": ""}, "b": {"unit": "", "value": "1"}})",
        R"("children": [{"name": "there", "values": {"unit": {"value": "", "unit": ""}}}])",
        R"("values": {"a": 1, "b": true, "c": {"value": 0.5}}, "flags": 65536)",
        R"("values": {"a": -0, "b": 1.0, "c": 1e400, "d": 9223372036854775808, "e": -1e-400})",
        R"("values": {"a": nan})",
        R"("values": {"a": {"value": "1", "value": "2"}, "b": {"unit": "m"}})",
        "\"values\": {\"\xc3\xa4\": \"\xe2\x82\xac\xf0\x9f\x98\x80 \xef\xbf\xbd\"}",
        "\"values\": {\"a\": \"raw\ttab and\nline\"}",
        "\"values\": {\"a\": \"\xEF\xBB\xBFtext\"}",
        "\"values\": {\"a\": \"\xEF\xBB\xBF\\ttext\"}",
        "\"values\": {\"\xEF\xBB\xBF\": \"\"}",
        "\"values\": {\"a\": \"\\\"\xEF\xBB\xBF\"}",
        "\"values\": {\"a\": \"\\\\\\\"\xEF\xBB\xBF\"}",
        "\"values\": {\"a\": \"text\xEF\xBB\xBF\"}",
        "\"values\": {\"a\": \"\xed\xa0\x80\"}",
        "\"values\": {\"a\": \"\xc0\x80\"}",
        "\"values\": {\"a\": \"\xef\xbf\xbe\xef\xbf\xbf\x7f\"}",
        "\"values\": {\"a\": \"\\ud83d\\ude00 \\ud83d \\ude00\"}",
        "\"values\": {\"a\": \"\\q\\u12\"}",
        "\"values\": {\"a\": \"" + QByteArray(300000, 'x') + "\"}",
        "\"values\": {\"a\": \"" + QByteArray("\\\\\xc3\xa4").repeated(100000) + "\"}",
        "\"values\": {\"a\": \"" + QByteArray(1, '\0') + "\"}",
        R"("children": [{"name": "leaf", "type": "leaf", "values": {"size": "1"}}, {"type": "odd", "name": "kept",
            "flags": 3, "values": {"a": {"value": "1", "unit": "m"}, "b": ""}, "children": [{"name": "x"}]}])",
        R"("children": [{"name": "kept", "type": "", "flags": 0, "values": {"b": {"value": "", "unit": ""}}}])",
        R"("children": [{"name": "a", "type": "leaf"}, {"name": "b", "type": "leaf"}, {"name": "a"}])",
        R"("children": [{"name": "kept", "type": "odd"}, {"name": "kept", "type": "odd"}])",
        R"("children": [{"name": "leaf", "type": "leaf", "values": {"size": "x"}}])",
        R"("children": [{"name": "there", "type": "leaf"}])",
        R"("children": [{"name": "there", "type": ""}])",
        R"("children": [{"name": "there", "type": "branch"}, {"name": "there"}])",
        R"("children": [{"name": "", "type": "branch"}, {"name": "", "type": "leaf"}])",
        R"("children": [{"name": "", "type": "branch"}])",
        R"("children": [{"name": "a/b"}])",
        R"("children": [{"name": "a"},])",
        R"("flags": 01)",
        R"("flags": 1.0)",
        R"("flags": -0)",
        R"("flags": 1e2)",
        "\"flags\": \f1",
        "\"flags\":\t\r\n 1",
        nested(OruPropertiesFile::maximumDepth),
        nested(OruPropertiesFile::maximumDepth + 1),
        nested(600),
    };
    for (const QByteArray& tree : trees) {
        readsTheSame(treeOf(tree));
    }
    const QByteArray whole = treeOf(R"("flags": 1)");
    const QByteArray behind[] = {"x", "}", "{}", ",", "\f", QByteArray(1, '\0'), "\n\n ", "\xEF\xBB\xBF",
                                 "//"};
    for (const QByteArray& text : behind) {
        readsTheSame(whole + text);
        readsTheSame(text + whole);
    }
}

TEST(OruPropertiesReader, AnswersAsTheGeneralWayDoesForWhatIsCutOff)
{
    const QByteArray text = saved();
    for (int size = 0; size <= text.size() && readsTheSame(text.left(size)); ++size) {
    }
}

TEST(OruPropertiesReader, AnswersAsTheGeneralWayDoesForDamagedFiles)
{
    const QByteArray text = saved();
    Mutator mutate;
    for (int round = 0; round < 10000 && readsTheSame(mutate(text)); ++round) {
    }
}
