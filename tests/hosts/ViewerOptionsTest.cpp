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
    EXPECT_TRUE(parse("-h").showHelp);
    EXPECT_TRUE(parse("--version").showVersion);
    const ViewerOptions options =
        parse("a.stl --size 300x701 --position=-y --up -x --drag Middle+ctrl+shift 10,20 -5,6 --wheel -3 "
              "--drag context 0,0 1,1 --state in.json --save-state out.json --set render/textInfo=true --set "
              "zpr/zoomMove=a=b "
              "--edges on --out p.png b.glb -- --odd.stl");
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
    EXPECT_EQ(options.edges, "edges");
    EXPECT_FALSE(options.samples || options.transparent || !options.withTriad || options.dotsPerInch > 0);
    const ViewerOptions picture = parse("- --format STL --out p.png --samples 64 --transparent --no-triad "
                                        "--overlay-scale 2.5 --dpi 300");
    EXPECT_EQ(picture.models, QStringList("-"));
    EXPECT_EQ(picture.format, "stl");
    EXPECT_EQ(picture.samples, 64);
    EXPECT_TRUE(picture.transparent && !picture.withTriad);
    EXPECT_EQ(picture.overlayScale, 2.5);
    EXPECT_EQ(picture.dotsPerInch, 300);
}

TEST(ViewerOptions, NamesThePictureOfEachModel)
{
    const auto each =
        parse("a/x.v2.stl .glb - --format ply --out o/{name}.png --save-state {name}").eachPicture();
    const char* const names[] = {"x.v2", ".glb", "stdin"};
    ASSERT_EQ(each.size(), 3u);
    for (std::size_t i = 0; i < each.size(); ++i) {
        EXPECT_EQ(each[i].models.size(), 1);
        EXPECT_EQ(each[i].outFile, QStringLiteral("o/%1.png").arg(names[i]));
        EXPECT_EQ(each[i].saveStateFile, names[i]);
    }
    EXPECT_EQ(parse("a b --out p.png").eachPicture().size(), 1u);
    const struct
    {
        const char* line;
        const char* reason;
    } rows[] = {
        {"a/x.stl b/x.obj --out {name}.png", "--out x.png would be written for a/x.stl and for b/x.obj"},
        {"x.stl x.stl --out {name}.png", "a MODEL is named twice"},
        {"a b --out p.png --save-state {name}", "{name} needs an --out with {name}"},
        {"a b --out {name}.png --save-state s", "--save-state s would be written for a and for b"},
        {"a b --out {name}.png --record ./a.png", "--record ./a.png would overwrite"},
        {"a a.png --out {name}.png", "--out a.png would overwrite"},
        {"a b --out {name}.png --save-state /dev/null", ""},
    };
    for (const auto& row : rows) {
        try {
            parse(row.line).checkOutputs();
            EXPECT_STREQ(row.reason, "") << row.line;
        } catch (const ViewerOptions::Error& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(row.reason)) << row.line;
            EXPECT_STRNE(row.reason, "") << error.what();
        }
    }
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
        {"--bare", "no MODEL"},
        {"--out x.png", "no MODEL"},
        {"m --foo", "no option --foo"},
        {"m -x", "no option -x"},
        {"m --size", "--size needs WxH"},
        {"m --size 10", "\"10\" is not a size"},
        {"m --size 0x5", "is not a size"},
        {"m --size 5x99999", "up to 65536 pixels"},
        {"m --position top", "there are x, -x"},
        {"m --drag left 1,2", "--drag needs BUTTON"},
        {"m --drag thumb 1,2 3,4", "left, middle or right"},
        {"m --drag left+alt 1,2 3,4", "\"alt\" is not a modifier"},
        {"m --drag left 1;2 3,4", "\"1;2\" is not a position"},
        {"m --up w", "--up must be one of: x (X), -x (-X)"},
        {"m --wheel 1001", "wheel steps, up to 1000"},
        {"m --wheel 0", "wheel steps"},
        {"m --wheel x", "wheel steps"},
        {"m --edges yes", "none of off, on and wireframe"},
        {"m --set a/b", "path/key=value"},
        {"m --set =b", "path/key=value"},
        {"--help=1", "--help takes no value"},
        {"m --out p --samples 0", "\"0\" is not a number of samples from 1 to 64"},
        {"m --out p --samples 65", "samples from 1 to 64"},
        {"m --out p --dpi x", "pixels an inch from 1 to"},
        {"m --out p --overlay-scale 15", "is not a scale from 0.5 to 14"},
        {"m --out p --overlay-scale nan", "is not a scale"},
        {"m --overlay-scale 2", "--overlay-scale needs --out"},
        {"m --transparent", "--transparent needs --out"},
        {"m --dpi 9", "--dpi needs --out"},
        {"-", "the MODEL - needs --format"},
        {"m --format stl", "--format needs the MODEL -"},
        {"- --format ../x", "is not a suffix"},
        {"- - --format stl", "can be read once only"},
        {"- --format stl --record r", "--record cannot tell"},
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
