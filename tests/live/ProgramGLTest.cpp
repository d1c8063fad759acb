// The viewer as a command: what it ends with, and that it ends.

#include "tests/hosts/Models.h"
#include "tests/live/ViewerProgram.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

struct Program : testing::Test
{
    Program()
    {
        environment.insert("V", kelvartest::viewerProgram() + " --bare");
        environment.insert("WINDOW", kelvartest::viewerProgram());
        environment.insert("XDG_CONFIG_HOME", folder.filePath("settings"));
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
        {"$V model.stl --out ''", 1, "--out needs FILE"},
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
        {"$V missing.stl --out new.xyz", 1, "new.xyz: a picture is written as png, jpg"},
        {"$V missing.stl --out new.jpg --transparent", 1, "nothing is transparent in a jpg file"},
        {"$V - --format stl --out new <&-", 2, "view: standard input: the file is empty"},
        {"TMPDIR=. $V - --format stl --out new <$M && test -s new && ! ls -d kelvar-view-* 2>&1", 0, ""},
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
        {"$V model.stl --position=-y --save-state st --out new && $V st --out again && cmp new again &&"
         " $V --state st --position x --out again && ! cmp -s new again",
         0, ""},
        {"$V st --save-state model.stl --out new", 1, "--save-state model.stl would overwrite"},
        {"mkdir a b; cp model.stl a; $V a/model.stl --position=-y --save-state a/st --out new; mv a/* b;"
         " $V b/st --save-state b/st2 --out again && cmp new again && grep -q b/model.stl b/st2 &&"
         " ! grep -q a/model.stl b/st2",
         0, ""},
        {"$V own --out new", 2, "own: names no model"},
        {"timeout --preserve-status 6 $WINDOW pipe & timeout --preserve-status 6 $WINDOW missing.stl "
         "--save-state old;"
         " code=$?; wait $!; test $? = 2 && exit $code",
         2, "pipe: is not a regular file"},
        {"$V model.stl --out new && $V model.stl --out /dev/stdout | cmp - new", 0, ""},
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

TEST_F(Program, AModelThatFailsLosesNoOther)
{
    ASSERT_EQ(run("cp $M a.stl; cp $M c.stl; cp $M d.stl; printf junk >b.stl; mkdir d.png;"
                  "$V a.stl b.stl c.stl d.stl --out {name}.png --save-state {name}.json --size 99x80"),
              3)
        << said;
    EXPECT_THAT(said, testing::ContainsRegex("1 of 4 a.stl\n2 of 4 b.stl\nview: b.stl: .*\n3 of 4 c.stl\n"
                                             "4 of 4 d.stl\nview: d.png: "));
    EXPECT_EQ(
        run("$V b.stl c.stl --out {name}.png && exit 9; test $? = 2 && test -s a.png && test -s c.png &&"
            "test -s c.json && ! test -e b.png"),
        0);
}

TEST_F(Program, LeavesTheTriadOut)
{
    ASSERT_EQ(run("$V $M --out a.png --save-state a.json && $V $M --out b.png --state a.json --no-triad"
                  " --save-state b.json"),
              0);
    EXPECT_EQ(run("grep -q vis.triad a.json && ! grep -q vis.triad b.json && ! cmp -s a.png b.png"), 0);
}

TEST_F(Program, StopsLoadingAtTheFirstSignal)
{
    EXPECT_EQ(
        run("mkdir tmp; mkfifo open; exec 3<>open; export TMPDIR=tmp; $V - --format stl --out new <open &"
            "until ls tmp/*/stdin.stl >/dev/null 2>&1; do sleep 0.1; done; kill -TERM $!; wait $!; code=$?;"
            "ls tmp/*/* >&2; exit $code"),
        130);
    EXPECT_THAT(said, HasSubstr("loading was stopped"));
    EXPECT_THAT(said, testing::Not(HasSubstr("stdin")));
    // So long that reading it would take 33 seconds until it is given up.
    EXPECT_EQ(
        run("(printf 'ply\\nformat ascii 1.0\\nelement vertex 9\\n'; printf '%30000000s' ' ') >endless.ply;"
            "$V endless.ply --out new 2>said & until grep -q loading said; do sleep 0.1; done;"
            "kill -TERM $!; wait $!; code=$?; cat said >&2; exit $code"),
        130);
    EXPECT_THAT(said, HasSubstr("loading was stopped"));
}

} // namespace
