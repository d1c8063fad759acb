#include "contracts/core/OruPropertiesFile.h"
#include "tests/core/TreeSupport.h"
#include "tests/support/CpuTime.h"
#include "tests/support/FullDisk.h"

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

struct OruPropertiesFileTest : testing::Test
{
    QTemporaryDir folder;
    QString file = folder.path() + "/tree.json";
    OruModifiedGroup group;
    Branch root{group, "root"};
    QString error;

    void write(const QByteArray& text)
    {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(text);
    }
    std::string read()
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll().toStdString() : std::string();
    }
    QJsonDocument document() { return QJsonDocument::fromJson(QByteArray::fromStdString(read())); }
    /// A file whose tree has these members after its name.
    void writeTree(const QByteArray& members)
    {
        write("{\"format\": \"kelvar property tree\", \"version\": 1, \"tree\": {\"name\": \"root\"" +
              members + "}}");
    }
    bool load(OruProperties& node) { return OruPropertiesFile::load(node, file, &error); }
    bool save(const OruProperties& node) { return OruPropertiesFile::save(node, file, &error); }
};

} // namespace

TEST_F(OruPropertiesFileTest, WritesAFormThatPeopleCanRead)
{
    root.string().setValue("zoom", 1.1);
    root.string().setValue("pick", 3);
    root.string().setUnit("pick", "px");
    root.string().setValue("unit", "a name of the file's own goes ahead");
    root.flags = OruProperties::defaultContent;
    root.insert(new Branch(group, "child"), false);
    ASSERT_TRUE(save(root)) << error.toStdString();
    EXPECT_EQ(read(), R"({
    "format": "kelvar property tree",
    "version": 1,
    "tree": {
        "name": "root",
        "type": "branch",
        "flags": 256,
        "values": {
            "unit": "a name of the file's own goes ahead",
            "pick": {
                "value": "3",
                "unit": "px"
            },
            "zoom": "1.1"
        },
        "children": [
            {
                "name": "child",
                "type": "branch"
            }
        ]
    }
}
)");
}

TEST_F(OruPropertiesFileTest, TenThousandNodesComeBackThroughInsertAndMakeChild)
{
    for (int i = 0; i < 100; ++i) {
        auto* branch = new Branch(group, QStringLiteral("branch %1").arg(i));
        root.insert(branch, false);
        for (int j = 0; j < 99; ++j) {
            auto* leaf = new Named(group, QStringLiteral("Blatt \u00e4\" %1").arg(j));
            leaf->setType("leaf");
            leaf->string().setValue("value", 0.1 * i * j);
            leaf->string().setUnit("value", QStringLiteral("\u00b5m"));
            branch->insert(leaf, false);
        }
    }
    root.flags = 0x180;
    const QString marked = QString(QChar(0xfeff)) + "marked";
    root.string().setValue(marked, marked);
    ASSERT_TRUE(save(root)) << error.toStdString();
    const std::string saved = read();
    Branch copy(group, "root");
    ASSERT_TRUE(load(copy)) << error.toStdString();
    EXPECT_EQ(copy.inserts, 100);
    EXPECT_EQ(copy.at(7)->size(), 99u);
    EXPECT_EQ(copy.flags, 0x180);
    EXPECT_TRUE(copy.string().defined(marked)) << "a byte order mark in front is part of the text";
    ASSERT_TRUE(save(copy));
    EXPECT_TRUE(read() == saved) << "a second save differs";
}

TEST_F(OruPropertiesFileTest, MergesIntoWhatIsThere)
{
    Branch kept(group, "kept");
    root.insert(&kept, true);
    root.string().setValue("mine", "stays");
    root.string().setValue("both", "old");
    root.string().setUnit("both", "mm");
    kept.string().setValue("deep", "old");
    const std::uint64_t before = root.subtreeRevision();
    writeTree(R"(, "values": {"both": "new", "extra": "more"},
        "children": [{"name": "made", "type": "leaf", "values": {"a": "1"}},
                     {"name": "kept", "values": {"deep": {"value": "new", "unit": "s"}}}])");
    ASSERT_TRUE(load(root)) << error.toStdString();
    EXPECT_GT(root.subtreeRevision(), before);
    EXPECT_EQ(textOf(root, "mine"), QStringLiteral("stays"));
    EXPECT_EQ(textOf(root, "both"), QStringLiteral("new"));
    EXPECT_EQ(textOf(root, "extra"), QStringLiteral("more"));
    EXPECT_EQ(root.string().getUnit("both", ""), QStringLiteral("mm"))
        << "a unit that the file does not give stays";
    EXPECT_EQ(root.at(0), &kept);
    EXPECT_EQ(textOf(kept, "deep"), QStringLiteral("new"));
    EXPECT_EQ(kept.string().getUnit("deep", ""), QStringLiteral("s"));
    ASSERT_NE(root.find("made"), nullptr);
    EXPECT_EQ(textOf(*root.find("made"), "a"), QStringLiteral("1"));
}

TEST_F(OruPropertiesFileTest, ValuesKeepEveryDigit)
{
    const std::pair<const char*, const char*> cases[] = {{"\"9223372036854775807\"", "9223372036854775807"},
                                                         {"9223372036854775807", "9223372036854775807"},
                                                         {"-9007199254740993", "-9007199254740993"},
                                                         {"0.1", "0.1"},
                                                         {"5e-324", "5e-324"},
                                                         {"18446744073709551615", "18446744073709551616"},
                                                         {"true", "true"},
                                                         {"{\"value\": false}", "false"},
                                                         {"\"-inf\"", "-inf"},
                                                         {"\"\"", ""},
                                                         {"\" a\\nb\\u0001\\\"\\\\ \"", " a\nb\x01\"\\ "}};
    for (const auto& [json, text] : cases) {
        SCOPED_TRACE(json);
        writeTree(QByteArray(", \"values\": {\"key\": ") + json + "}");
        ASSERT_TRUE(load(root)) << error.toStdString();
        EXPECT_EQ(textOf(root, "key"), QString(text));
        ASSERT_TRUE(save(root));
        Branch copy(group, "root");
        ASSERT_TRUE(load(copy)) << error.toStdString();
        EXPECT_EQ(textOf(copy, "key"), QString(text));
    }
}

TEST_F(OruPropertiesFileTest, WhatAHostStoresOutsideItsKindIsLeftOutAndTheFileLoads)
{
    static constexpr OruPropertyKind numbers = OruPropertyKind::of<double>();
    static constexpr OruPropertyKind flags = OruPropertyKind::of<bool>();
    auto* child = new Branch(group, "child");
    root.insert(child, false);
    root.string().setKind("flag", flags);
    root.string().setValue("flag", true);
    child->string().setKind("size", sizes);
    child->string().setKind("ratio", numbers);
    child->string().setValue("good", "kept");
    const auto saveAndLoad = [&](const QString& line) {
        testing::internal::CaptureStderr();
        EXPECT_TRUE(save(root)) << error.toStdString();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), line.toStdString());
        EXPECT_TRUE(load(root)) << error.toStdString();
    };
    saveAndLoad("");
    child->string().setValue("ratio", std::numeric_limits<double>::quiet_NaN());
    child->string().setUnit("ratio", "%");
    saveAndLoad("a value is not saved: child/ratio must be a number, not \"nan\"\n");
    child->string().setValue("size", -1);
    root.string().setValue("flag", "perhaps");
    saveAndLoad("a value is not saved: flag must be true or false, not \"perhaps\", nor are 2 others\n");
    EXPECT_EQ(textOf(*child, "size"), QString("-1")) << "the tree itself is as it was";
    Branch copy(group, "root");
    ASSERT_TRUE(load(copy)) << error.toStdString();
    EXPECT_EQ(copy.string().keys(), QStringList());
    EXPECT_EQ(copy.find("child")->string().keys(), QStringList("good"));
}

/// Only a program makes such texts: halves of characters, which UTF-8 cannot hold.
TEST_F(OruPropertiesFileTest, NamesThatAreNoUnicodeComeBack)
{
    const QString halves[] = {QString(QChar(0xd83d)), QString(QChar(0xd83e)), QString(QChar(0xde00)),
                              QString(QChar(0xde00)) + QChar(0xd83d) + 'a', "\u00e4\U0001f600 \x7f\x1f"};
    for (const QString& name : halves) {
        auto* child = new Branch(group, name);
        child->string().setValue(name, name);
        root.insert(child, false);
    }
    ASSERT_TRUE(save(root));
    Branch copy(group, "root");
    ASSERT_TRUE(load(copy)) << error.toStdString();
    for (const QString& name : halves) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(copy.childByName(name));
        QString text;
        EXPECT_EQ(copy.childByName(name)->getValue(name, text, QString()), name);
    }
}

TEST_F(OruPropertiesFileTest, WhatIsUnknownSurvivesLoadAndSave)
{
    const QByteArray unknown = R"({
        "format": "kelvar property tree", "version": 1, "author": "someone",
        "tree": {"name": "root", "type": "branch", "note": {"big": 9007199254740993, "list": [null, 0.1, false]},
            "values": {"key": {"value": "1", "comment": "by hand"}, "nobody reads this": "x"},
            "children": [{"name": "first", "type": "from elsewhere", "children": [{"name": "b", "values": {"a": 5}}]},
                         {"name": "leaf", "type": "leaf", "colors": []},
                         {"name": "no", "type": "refused"}]}})";
    write(unknown);
    const QJsonDocument before = document();
    for (const char* round : {"first load", "nothing is kept twice"}) {
        SCOPED_TRACE(round);
        ASSERT_TRUE(load(root)) << error.toStdString();
        EXPECT_EQ(root.size(), 1u);
        ASSERT_TRUE(save(root));
        EXPECT_TRUE(document() == before) << read();
        EXPECT_THAT(read(), testing::HasSubstr("9007199254740993"));
    }
    root.insert(new Branch(group, "first"), false);
    ASSERT_TRUE(save(root));
    EXPECT_THAT(read(), testing::Not(testing::HasSubstr("from elsewhere"))) << "a real child took the name";
}

TEST_F(OruPropertiesFileTest, RefusesBadContentWithItsPlaceAndLeavesTheTree)
{
    const QByteArray format = "{'format': 'kelvar property tree',\n 'version': ";
    const QByteArray head = format + "1,\n 'tree': ";
    struct Case
    {
        const char* what;
        QByteArray text; ///< with ' for "
        const char* place;
        const char* reason;
    };
    const Case cases[] = {
        {"empty", "", "1:1", ""},
        {"not JSON", "<xml/>", "1:", "illegal"},
        {"truncated", head + "{'name': 'ro", "3:22", "unterminated"},
        {"garbage behind", head + "{}} x", "3:14", "garbage"},
        {"byte order mark", head + "{'\xef\xbb\xbfname': ''}}", "3:11", "byte order mark"},
        {"broken UTF-8", head + "{'name': '\xff'}}", "3:", "UTF"},
        {"behind a byte order mark", "\xEF\xBB\xBF{'format': 1}", "1:12", "format"},
        {"damaged line", "{\n\n  'format': tru\n}", "3:13", "illegal"},
        {"nested too deeply", QByteArray("[").repeated(100000), "1:", "deep"},
        {"an array", " [1]", "1:2", "must be an object"},
        {"another format", "{\n 'format': 'x'}", "2:12", "format"},
        {"no version", "{'format': 'kelvar property tree'}", "1:1", "version"},
        {"version not whole", format + "1.5}", "2:13", "version"},
        {"too new", format + "2, 'tree': {}}", "2:13", "newer"},
        {"no tree", format + "1}", "1:1", "must be an object"},
        {"type not a text", head + "{'type': 1}}", "3:19", "'type'"},
        {"another type", head + "{'type': 'leaf'}}", "3:19", "'branch'"},
        {"flags too large", head + "{'flags': 65536}}", "3:20", "'flags'"},
        {"flags negative", head + "{'flags': -1}}", "3:20", "'flags'"},
        {"values an array", head + "{'values': []}}", "3:21", "'values'"},
        {"value null", head + "{'values': {'good': '1', 'b\\u0061d':\n null}}}", "4:2", "'bad'"},
        {"value an array", head + "{'values': {'good': '1', 'bad': [1]}}}", "3:42", "'bad'"},
        {"object without value", head + "{'values': {'bad': {'unit': 'm'}}}}", "3:29", "'bad'"},
        {"unit not a text", head + "{'values': {'bad': {'value': 1, 'unit': 2}}}}", "3:50", "'unit'"},
        {"children an object", head + "{'values': {'good': '1'}, 'children': {}}}", "3:48", "'children'"},
        {"child a text", head + "{'children': ['x']}}", "3:24", "'name'"},
        {"child without name", head + "{'children': [{}]}}", "3:24", "'name'"},
        {"name with slash", head + "{'children': [{'name': 'a/b'}]}}", "3:33", "'/'"},
        {"name twice", head + "{'children': [{'name': 'a'},\n{'name': 'a'}]}}", "4:10", "second child"},
        {"child's type", head + "{'children': [{'name': 'child', 'type': 'x'}]}}", "3:50", "'branch'"},
        {"another kind", head + "{'values': {'good': '1', 'size': 'x'}}}", "3:43",
         "size must be a number from 0, not 'x'"},
        {"another kind, with a unit", head + "{'values': {'size': {'value': -1}}}}", "3:30", "size must be"},
        {"in a child to be made",
         head + "{'children': [{'name': 'new', 'type': 'branch', 'children': [\n"
                "{'name': 'b', 'type': 'leaf', 'values': {'size': true}}]}]}}",
         "4:50", "new/b/size must be a number from 0, not 'true'"},
        {"bad below good",
         head + "{'values': {'good': '1'}, 'children': [{'name': '\xc3\xa4[{\\'\\\\', 'children': [\n"
                "{'name': 'b', 'flags': 'x'}]}]}}",
         "4:24", "flags"},
    };
    auto* child = new Branch(group, "child");
    root.insert(child, false);
    root.string().setValue("good", "old");
    root.string().setKind("size", sizes);
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        write(QByteArray(row.text).replace('\'', '"'));
        error.clear();
        const std::uint64_t before = root.subtreeRevision();
        EXPECT_FALSE(load(root));
        EXPECT_THAT(error.toStdString(), testing::StartsWith(file.toStdString() + ":" + row.place));
        EXPECT_THAT(error.replace('"', '\'').toStdString(), testing::HasSubstr(row.reason));
        EXPECT_EQ(root.subtreeRevision(), before);
    }
    EXPECT_FALSE(OruPropertiesFile::load(root, file, nullptr)) << "nobody asks for the reason";
}

TEST_F(OruPropertiesFileTest, RefusesFilesThatItCannotReadOrThatAreTooLarge)
{
    EXPECT_FALSE(OruPropertiesFile::load(root, folder.path() + "/none", &error));
    EXPECT_THAT(error.toStdString(), testing::StartsWith((folder.path() + "/none: ").toStdString()));
    EXPECT_FALSE(OruPropertiesFile::load(root, folder.path(), &error));
    EXPECT_FALSE(OruPropertiesFile::load(root, "/dev/zero", &error));
    EXPECT_EQ(error, "/dev/zero: is not a regular file");
    EXPECT_FALSE(OruPropertiesFile::load(root, "/proc/self/mem", &error));
    EXPECT_EQ(error, "/proc/self/mem: Input/output error");
    QFile large(file);
    EXPECT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(OruPropertiesFile::maximumBytes + 1));
    EXPECT_FALSE(load(root));
    EXPECT_THAT(error.toStdString(), testing::StartsWith(file.toStdString() + ":1:1: larger than"));
}

TEST_F(OruPropertiesFileTest, ToleratesAByteOrderMarkAndMissingMembers)
{
    write("\xEF\xBB\xBF{\"format\": \"kelvar property tree\", \"version\": 1, \"tree\": {}}");
    EXPECT_TRUE(load(root)) << error.toStdString();
}

TEST_F(OruPropertiesFileTest, ANodeCostsTheSameInALargeFileAsInASmallOne)
{
    const auto tree = [this](int count, const QString& type) {
        auto made = std::make_unique<Branch>(group, "root");
        for (int number = 0; number < count; ++number) {
            auto* child = new Named(group, QString::number(number));
            child->setType(type);
            made->OruProperties::insert(child, false);
        }
        return made;
    };
    for (const char* type : {"leaf", "nobody makes it"}) {
        double costs[2];
        for (const bool large : {false, true}) {
            const QByteArray text = OruPropertiesFile::text(*tree(large ? 10000 : 1000, type));
            std::unique_ptr<Branch> read;
            costs[large] = kelvartest::cpuTime([&] { read = tree(0, type); },
                                               [&] {
                                                   OruPropertiesFile::load(*read, text, "file", &error);
                                                   OruPropertiesFile::load(*read, text, "file", &error);
                                                   EXPECT_EQ(OruPropertiesFile::text(*read), text);
                                               });
        }
        EXPECT_LT(costs[1] / costs[0], kelvartest::linear) << type;
    }
}

TEST_F(OruPropertiesFileTest, FailedSaveLeavesTheFileAlone)
{
    ASSERT_TRUE(save(root));
    const std::string before = read();
    Branch deep(group, "deep");
    OruProperties* last = &deep;
    for (int i = 0; i < OruPropertiesFile::maximumDepth + 1; ++i) {
        auto* next = new Branch(group, "next");
        last->insert(next, false);
        last = next;
    }
    EXPECT_FALSE(save(deep));
    EXPECT_THAT(error.toStdString(), testing::HasSubstr("deeper"));
    {
        const kelvartest::FullDisk full(4);
        EXPECT_FALSE(save(root));
        EXPECT_THAT(error.toStdString(), testing::HasSubstr("/tree.json: File too large"));
    }
    EXPECT_EQ(read(), before);
    EXPECT_FALSE(OruPropertiesFile::save(root, folder.path() + "/none/tree.json", &error));
    EXPECT_THAT(error.toStdString(), testing::HasSubstr("/none/tree.json: "));

    last->parent()->erase(last);
    ASSERT_TRUE(save(deep)) << error.toStdString();
    Branch copy(group, "deep");
    EXPECT_TRUE(load(copy)) << "the deepest tree that is written can be read: " << error.toStdString();
}
