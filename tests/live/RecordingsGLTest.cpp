// Recorded sessions with the engine: the same file gives the same tree and the same picture, and the tree
// that the session is about.

#include "contracts/core/OruText.h"
#include "tests/hosts/Models.h"
#include "tests/live/ViewerProgram.h"
#include "tests/support/Files.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// What a run of the viewer leaves behind.
struct Outcome
{
    QByteArray tree;
    QImage picture;
    QByteArray printed;

    /// A value of a visualization, by its path below the scene's, as text.
    QString value(const QString& path, const char* key) const
    {
        QJsonObject node = QJsonDocument::fromJson(tree)["tree"].toObject();
        for (const QString& name : ("render/visualization/" + path).split('/')) {
            const QJsonArray children = node["children"].toArray();
            node = QJsonObject();
            for (const QJsonValue& child : children) {
                node = child["name"] == name ? child.toObject() : node;
            }
        }
        return node["values"].toObject()[QLatin1String(key)].toString();
    }

    Matrix matrix(const QString& visualization, const char* key) const
    {
        Matrix result;
        EXPECT_TRUE(oru::fromString(value(visualization, key), result)) << key;
        return result;
    }

    float scale() const
    {
        return matrix("viewpoint", "matrix").transformDirection(Vector3(1, 0, 0)).length();
    }

    Vector3 eye() const
    {
        const Matrix view = matrix("viewpoint", "matrix");
        return Vector3(view(0, 2), view(1, 2), view(2, 2)) / scale();
    }
};

Outcome viewed(const QStringList& options)
{
    const QTemporaryDir folder;
    const QString tree = folder.filePath("tree.json");
    const QString picture = folder.filePath("picture.png");
    QProcess viewer;
    viewer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    viewer.start(kelvartest::viewerProgram(),
                 QStringList{kelvartest::engineFile(), "--save-state", tree, "--out", picture} + options);
    EXPECT_TRUE(viewer.waitForFinished(-1));
    EXPECT_EQ(viewer.exitCode(), 0);
    QByteArray printed = viewer.readAllStandardOutput();
    return {kelvartest::contentOf(tree), QImage(picture), printed.replace(picture.toLocal8Bit(), "")};
}

Outcome replayed(const char* recording, const QStringList& options = {})
{
    return viewed(QStringList{"--replay", QStringLiteral(KELVAR_RECORDINGS "/%1.txt").arg(recording)} +
                  options);
}

void expectSame(const Outcome& outcome, const Outcome& other)
{
    EXPECT_EQ(outcome.tree, other.tree);
    EXPECT_EQ(outcome.picture, other.picture);
    EXPECT_EQ(outcome.printed, other.printed);
}

} // namespace

TEST(Recordings, EndAlikeEachTimeAndAsTheyShould)
{
    const Vector3 iso = Vector3(1, -1, 1).normalized();
    const struct
    {
        const char* name;
        float zoom;
        Vector3 eye;
        std::vector<const char*> marked;
        const char* printed;
    } rows[] = {
        {"turn-and-zoom", 0.7487f, {0.2804f, -0.7156f, 0.6397f}, {}, "\n"},
        {"box", 4.0f, iso, {}, "\n"},
        {"keys", 1.1404f, {0, 0, -1}, {}, "\n"},
        {"hover-click-drop",
         1.0f,
         iso,
         {"2CylinderEngine/body_1", "2CylinderEngine/body_2"},
         "dropped \"body_2\" on \"body_1\"\n\n"},
        {"triad", 1.1404f, {0, 0, 1}, {}, "\n"},
    };
    const Outcome start = viewed({"--size", "640x480"});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = replayed(row.name);
        expectSame(outcome, replayed(row.name));
        EXPECT_EQ(outcome.picture.size(), start.picture.size());
        EXPECT_NE(outcome.picture, start.picture);
        EXPECT_NEAR(outcome.scale() / start.scale(), row.zoom, 1e-3);
        const Vector3 eye = outcome.eye();
        EXPECT_LT((eye - row.eye).length(), 1e-3f) << eye.x << ' ' << eye.y << ' ' << eye.z;
        EXPECT_EQ(outcome.printed, row.printed);
        EXPECT_EQ(outcome.tree.count("\"marked\": \"true\""), static_cast<int>(row.marked.size()));
        for (const char* const name : row.marked) {
            EXPECT_EQ(outcome.value(name, "marked"), "true") << name;
        }
        const Outcome larger = replayed(row.name, {"--size", "900x700"});
        EXPECT_EQ(larger.picture.width(), 900);
        EXPECT_EQ(larger.picture.height(), 700);
    }
}

TEST(Recordings, AndTheCommandLineSetNothingWrong)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("recording.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("kelvar-recording 1\nsize 320x240\nset render/background=nocolor\n");
    file.close();
    const std::pair<QStringList, const char*> rows[] = {
        {{"--set", "zpr/zoomInvert=maybe"}, "--set zpr/zoomInvert: must be true or false, not \"maybe\"\n"},
        {{"--replay", file.fileName()}, "recording.txt: set render/background: must be a color like #rrggbb"},
    };
    for (const auto& [options, reason] : rows) {
        QProcess viewer;
        // Nobody gets as far as the model, which is not there.
        viewer.start(kelvartest::viewerProgram(), QStringList("missing.stl") + options);
        EXPECT_TRUE(viewer.waitForFinished(-1));
        EXPECT_EQ(viewer.exitCode(), 2);
        EXPECT_THAT(viewer.readAllStandardError().toStdString(), testing::HasSubstr(reason));
    }
}

TEST(Recordings, GiveWayToTheCommandLineAndAStateKeepsItsView)
{
    const Outcome still =
        replayed("hover-click-drop", {"--set", "render/visualization/2CylinderEngine/body_2/movable=false"});
    EXPECT_EQ(still.value("2CylinderEngine/body_2", "movable"), "false");
    EXPECT_EQ(still.printed, "\n") << "nothing was dropped: the drag turned the view";

    const QTemporaryDir folder;
    QFile state(folder.filePath("state.json"));
    ASSERT_TRUE(state.open(QIODevice::WriteOnly));
    state.write(still.tree);
    state.close();
    EXPECT_EQ(viewed({"--state", state.fileName()}).value("viewpoint", "matrix"),
              still.value("viewpoint", "matrix"));
}
