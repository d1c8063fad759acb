// The program as it is started, at the scales of screens, with a person's hands from outside.

#include "tests/hosts/Models.h"
#include "tests/live/ViewerProgram.h"
#include "tests/support/Files.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

/// Selects what is in the view, cuts the model open, shows edges and closes the window, which saves its
/// state.
const char* const hands = R"(
"$V" "$MODEL" --size 900x600 --save-state "$STATE" & viewer=$!
until window=$(xdotool search --onlyvisible --name "Engine.*Kelvar View"); do sleep 0.02; done
xdotool windowfocus "$window" sleep 0.4
eval $(xdotool getwindowgeometry --shell "$window")
xdotool mousemove $((X + WIDTH * 7 / 10)) $((Y + HEIGHT / 2)) sleep 0.3 click 1 sleep 0.5
xdotool key --delay 60 alt+y ctrl+2 sleep 0.4 key ctrl+q
wait $viewer
)";

} // namespace

TEST(ScaledWindow, IsUsedTheSameAtEachScale)
{
    for (const char* const scale : {"1", "1.25", "1.5", "2"}) {
        SCOPED_TRACE(scale);
        const QTemporaryDir folder;
        const QString state = folder.filePath("state.json");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_SCALE_FACTOR", scale);
        environment.insert("V", kelvartest::viewerProgram());
        environment.insert("MODEL", kelvartest::engineFile());
        environment.insert("STATE", state);
        environment.insert("XDG_CONFIG_HOME", folder.path());
        QProcess shell;
        shell.setProcessEnvironment(environment);
        shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        shell.start("bash", {"-c", hands});
        ASSERT_TRUE(shell.waitForFinished(40000));
        EXPECT_EQ(shell.exitCode(), 0);
        const QByteArray saved = kelvartest::contentOf(state);
        EXPECT_EQ(saved.count("\"marked\": \"true\""), 1) << "one part is selected";
        EXPECT_EQ(saved.count("\"active\": \"true\""), 1) << "one plane cuts";
        EXPECT_GT(saved.count("\"edges\": \"edges\""), 100);
    }
}
