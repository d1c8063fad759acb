#include "hosts/viewer/ViewerOptions.h"

#include <QFile>

#include <gmock/gmock.h>

using hostkit::InputNames;

namespace {

ViewerOptions parse(const char* line)
{
    return ViewerOptions::parse(QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

} // namespace

TEST(ViewerOptions, ReadsEveryOption)
{
    EXPECT_EQ(parse("--default-model d.glb").models, QStringList("d.glb"));
    EXPECT_EQ(parse("--default-model d.glb m.stl").models, QStringList("m.stl"));
    EXPECT_EQ(parse("--default-model d.glb --replay r").models, QStringList()) << "it names its own";
    EXPECT_TRUE(parse("--help").showHelp);
    EXPECT_TRUE(parse("--version").showVersion);
    const ViewerOptions options =
        parse("a.stl --size 300x701 --position=-y --up -x --drag Middle+ctrl+shift 10,20 -5,6 --wheel -3 "
              "--drag context 0,0 1,1 --state in.json --save-state out.json --set render/textInfo=true --set "
              "zpr/zoomMove=a=b "
              "--out p.png b.glb -- --odd.stl");
    EXPECT_EQ(options.models, QStringList({"a.stl", "b.glb", "--odd.stl"}));
    EXPECT_EQ(options.size, QSize(300, 701));
    EXPECT_EQ(options.position, "-y");
    EXPECT_EQ(options.up, "-x");
    ASSERT_EQ(options.gestures.size(), 3u);
    EXPECT_EQ(options.gestures[0].button, OruMouse::ButtonView);
    EXPECT_EQ(options.gestures[0].modifiers, 3u);
    EXPECT_EQ(options.gestures[0].from, QPoint(10, 20));
    EXPECT_EQ(options.gestures[0].to, QPoint(-5, 6));
    EXPECT_EQ(options.gestures[1].wheelSteps, -3);
    EXPECT_EQ(options.gestures[2].button, OruMouse::ButtonContext);
    EXPECT_EQ(options.stateFile, "in.json");
    EXPECT_EQ(options.saveStateFile, "out.json");
    ASSERT_EQ(options.settings.size(), 2u);
    EXPECT_EQ(options.settings[1], std::make_pair(QStringLiteral("zpr/zoomMove"), QStringLiteral("a=b")));
    EXPECT_EQ(options.outFile, "p.png");
}

TEST(ViewerOptions, HelpAndManualTellEveryGesture)
{
    QFile manual(QStringLiteral(KELVAR_MANUAL));
    ASSERT_TRUE(manual.open(QIODevice::ReadOnly));
    const std::string guide = manual.readAll().toStdString();
    const std::string help = ViewerOptions::help().simplified().toStdString();
    std::vector<InputNames::Gesture> rows(InputNames::gestures.begin(), InputNames::gestures.end());
    rows.insert(rows.end(), {ViewerOptions::marking, ViewerOptions::closing});
    for (const InputNames::Gesture& row : rows) {
        const std::string name = InputNames::text(row).toStdString();
        EXPECT_THAT(help, testing::HasSubstr(name + ' ' + row.effect));
        EXPECT_THAT(guide, testing::HasSubstr("| " + name + " | " + row.effect));
    }
    EXPECT_THAT(help, testing::HasSubstr("drag with left, middle or right, and ctrl or shift;"));
}

TEST(ViewerOptions, SaysWhatIsWrong)
{
    const struct
    {
        const char* line;
        const char* reason;
    } rows[] = {
        {"", "no MODEL"},
        {"m --foo", "no option --foo"},
        {"m -x", "no option -x"},
        {"m --size", "--size needs WxH"},
        {"m --size 10", "\"10\" is not a size"},
        {"m --size 0x5", "is not a size"},
        {"m --size 5x99999", "is not a size"},
        {"m --position top", "there are x, -x"},
        {"m --drag left 1,2", "--drag needs BUTTON"},
        {"m --drag thumb 1,2 3,4", "left, middle or right"},
        {"m --drag left+alt 1,2 3,4", "\"alt\" is not a modifier"},
        {"m --drag left 1;2 3,4", "\"1;2\" is not a position"},
        {"m --up w", "--up must be one of: x (X), -x (-X)"},
        {"m --wheel 0", "wheel steps"},
        {"m --wheel x", "wheel steps"},
        {"m --set a/b", "path/key=value"},
        {"m --set =b", "path/key=value"},
        {"--help=1", "--help takes no value"},
    };
    for (const auto& row : rows) {
        try {
            parse(row.line);
            ADD_FAILURE() << row.line << " was accepted";
        } catch (const ViewerOptions::Error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(row.reason)) << row.line;
        }
    }
}
