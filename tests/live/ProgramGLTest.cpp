// The viewer as a command: what it ends with, and that it ends.

#include "tests/hosts/Models.h"
#include "tests/live/Files.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

struct Program : testing::Test
{
    Program()
    {
        environment.insert("V", kelvartest::viewerProgram());
        environment.insert("M", kelvartest::stlFile("shape"));
        environment.insert("ENGINE", kelvartest::engineFile());
    }

    /// What bash says to a command line in the folder; `said` is what went to the error stream.
    int run(const QByteArray& command)
    {
        QProcess shell;
        shell.setProcessEnvironment(environment);
        shell.setWorkingDirectory(folder.path());
        shell.start("bash", {"-c", command});
        const bool ended = shell.waitForFinished(20000);
        said = shell.readAllStandardError().toStdString();
        return ended ? shell.exitCode() : -1;
    }

    QTemporaryDir folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::string said;
};

TEST_F(Program, EndsWithItsCodeAndReasonAndLosesNoFile)
{
    ASSERT_EQ(run("mkfifo pipe; cp $M model.stl; ln -s model.stl link; printf old >old;"
                  "printf 'kelvar-recording 1\\nsize 99x99\\nmodel model.stl\\n' >session"),
              0);
    const struct
    {
        const char* command;
        int code;
        const char* reason;
    } rows[] = {
        {"$V model.stl --out ''", 1, "--out needs PNG"},
        {"$V model.stl --out ./link", 1, "--out ./link would overwrite"},
        {"$V --replay session --save-state session", 1, "--save-state session would overwrite"},
        {"$V --replay session --record model.stl", 1, "--record model.stl would overwrite"},
        {"$V model.stl --out new --save-state ./new", 1, "--out new would overwrite"},
        {"$V pipe --out new", 2, "pipe: is not a regular file"},
        {"$V model.stl --state pipe --out new", 2, "pipe: is not a regular file"},
        {"$V --replay pipe", 2, "pipe: is not a regular file"},
        {"$V --replay /dev/zero", 2, "/dev/zero: is not a regular file"},
        {"ulimit -f 0; trap '' XFSZ; $V model.stl --out old", 3, "old: File too large"},
        {"ulimit -f 0; trap '' XFSZ; $V model.stl --save-state old --out new", 3, "old: File too large"},
        {"ulimit -f 0; trap '' XFSZ; $V model.stl --record old --out new", 3, "old: File too large"},
        {"(ulimit -f 1; trap '' XFSZ; $V model.stl --drag left 0,0 99,99 --drag left 0,0 99,99 --record half"
         " --out >(cat >/dev/null)); code=$?; $V --replay half && exit $code",
         3, "recording has stopped: half: File too large"},
        {"printf 'kelvar-recording 1\\nsize 9x9\\nedges x\\nmodel model.stl\\n' >bad; $V --replay bad", 2,
         "bad: edges must be one of"},
        {"$V model.stl --edges wireframe --record lines --out new && $V --replay lines --out again &&"
         " $V model.stl --out plain && cmp new again && ! cmp -s new plain",
         0, ""},
        {"printf '{\"format\": \"kelvar property tree\", \"version\": 1, \"tree\": {\"name\": \"s\"}}' >own;"
         " $V model.stl --save-state lit --out new && $V model.stl --state own --save-state unlit --out new "
         "&&"
         " grep -q light.3 lit && ! grep -q light.2 unlit",
         0, ""},
        {"DISPLAY=:4711 $V model.stl --out new", 3, "the display \":4711\" cannot be reached"},
        {"$V model.stl --out new >&-; code=$?; test -s new && exit $code", 0, ""},
        {"cat pipe >got & $V model.stl --out pipe && wait && test -p pipe && grep -q PNG got", 0, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.command), row.code) << row.command;
        EXPECT_THAT(said, HasSubstr(row.reason)) << row.command;
        EXPECT_EQ(run("test $(cat old) = old && cmp $M model.stl"), 0) << row.command;
    }
}

TEST_F(Program, StopsLoadingAtTheFirstSignal)
{
    // So long that reading it would take 33 seconds until it is given up.
    EXPECT_EQ(
        run("(printf 'ply\\nformat ascii 1.0\\nelement vertex 9\\n'; printf '%30000000s' ' ') >endless.ply;"
            "$V endless.ply --out new 2>said & until grep -q loading said; do sleep 0.1; done;"
            "kill -TERM $!; wait $!; code=$?; cat said >&2; exit $code"),
        130);
    EXPECT_THAT(said, HasSubstr("loading was stopped"));
}

} // namespace
