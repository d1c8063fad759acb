// Measuring with the pointer, and what of it can be taken back.

#include "hosts/mesh/Measures.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/widgets/NodeCommand.h"
#include "tests/hosts/Models.h"
#include "tests/viewer/WindowFixture.h"

#include <QAction>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QStatusBar>

using hostkit::Measures;
using Kelvar::Math::Vector3;
using kelvartest::WidgetsFixture;

namespace {

/// A cube of edge 1 about the origin, seen along -X: y to the right, z upwards.
struct MeasureToolTest : kelvartest::WindowFixture
{
    QUndoStack& edits = window.view().undo().edits();

    MeasureToolTest()
    {
        open({copied(QStringLiteral("/usr/share/assimp/models/OBJ/box.obj"), QStringLiteral("box.obj"))});
        show();
        keys("x");
    }

    Measures& measures()
    {
        OruProperties* const list =
            window.view().host().scene().render.visualizations.childByName(Measures::usualName);
        return dynamic_cast<Measures&>(*list);
    }

    /// The lengths of all measures, and what they are called.
    std::string measured()
    {
        QStringList told;
        for (const QString& line : measures().text().split('\n', Qt::SkipEmptyParts).mid(1)) {
            told += line.section('\t', 0, 0) + ' ' + line.section('\t', 2, 2);
        }
        return told.join(QStringLiteral(", ")).trimmed().toStdString();
    }

    /// Goes some pixels beside where a place is seen, and does something there as xdotool does it.
    void at(const Vector3& place, int across, int up, const QString& what = QStringLiteral("click 1"))
    {
        const auto& ctx = window.view().host().context();
        const Vector3 pixel = place.project(ctx.modelView, ctx.projection, ctx.viewport.data());
        const QPoint global = window.view().mapToGlobal(
            QPoint(qRound(pixel.x) + across, ctx.viewport.height - 1 - qRound(pixel.y) - up));
        // As long as no two clicks are a double click.
        WidgetsFixture::act(
            QStringLiteral("mousemove %1 %2 sleep 0.45 %3").arg(global.x()).arg(global.y()).arg(what));
    }

    bool on() { return window.actions().action("measure")->isChecked(); }

    QImage frame()
    {
        QImage image;
        window.view().run([&](hostkit::HostScene& host) {
            image = host.picture(QSize(400, 300));
            return true;
        });
        return image;
    }

    const Vector3 left{0.5f, -0.5f, 0.5f};
    const Vector3 right{0.5f, 0.5f, 0.5f};
    const Vector3 lower{0.5f, 0.5f, -0.5f};
};

} // namespace

TEST_F(MeasureToolTest, TwoClicksNearCornersAreADistanceThatCanBeTakenBack)
{
    const QByteArray before = tree();
    keys("m");
    ASSERT_TRUE(on());
    at(left, 4, -3);
    EXPECT_EQ(measured(), "");
    EXPECT_EQ(window.statusBar()->currentMessage(), "Click the second point; Esc calls it off");
    at(lower, -3, 4);
    EXPECT_EQ(measured(), "distance 1.4142136");
    EXPECT_EQ(window.statusBar()->currentMessage(), "distance: 1.4142   dx 0   dy 1   dz -1");
    EXPECT_TRUE(window.selection().empty());
    ASSERT_EQ(edits.count(), 1);
    EXPECT_EQ(edits.text(0), "Add distance");
    WidgetsFixture::keepScreenshot("measure.png");

    const QByteArray made = tree();
    keys("ctrl+z");
    EXPECT_EQ(tree(), before) << kelvartest::firstDifference(tree(), before);
    keys("ctrl+shift+z");
    EXPECT_EQ(tree(), made) << kelvartest::firstDifference(tree(), made);
    keys("F5");
    ASSERT_TRUE(loaded());
    EXPECT_EQ(measured(), "distance 1.4142136");
}

TEST_F(MeasureToolTest, ThePointerShowsWhatAClickWouldTakeAndNothingStays)
{
    const QByteArray before = tree();
    at({2, 2, 2}, 0, 0, "sleep 0");
    const QImage plain = frame();
    keys("m");
    at(right, -4, -3, "sleep 0");
    const QImage corner = frame();
    EXPECT_NE(corner, plain);
    at({0.5f, 0, 0}, 4, 3, "sleep 0");
    EXPECT_NE(frame(), corner);
    ASSERT_TRUE(measures().pointer());
    EXPECT_EQ(measures().pointer()->kind, hostkit::SnapFinder::Kind::Face);
    at({2, 2, 2}, 0, 0, "sleep 0");
    EXPECT_EQ(frame(), plain);
    EXPECT_EQ(tree(), before);
}

TEST_F(MeasureToolTest, EscTakesThePointBackThenTheToolOffAndADragTurnsTheView)
{
    keys("m");
    at(left, 4, -3);
    keys("Escape");
    EXPECT_TRUE(on());
    at(right, -4, -3);
    EXPECT_EQ(measured(), "");
    const auto seen = window.view().host().view();
    at(lower, -8, 8, "mousedown 1 mousemove_relative 30 20 mousemove_relative 30 20 mouseup 1");
    EXPECT_NE(window.view().host().view(), seen);
    EXPECT_EQ(measured(), "");
    keys("Escape");
    keys("Escape");
    EXPECT_FALSE(on());
    keys("x");
    at(left, 4, -3);
    EXPECT_FALSE(window.selection().empty());
    EXPECT_EQ(measured(), "");
}

TEST_F(MeasureToolTest, MeasuresGoAndComeBackToTheirPlaces)
{
    keys("ctrl+a");
    keys("shift+m");
    keys("m");
    at(left, 4, -3);
    at(right, -4, -3);
    at(right, -4, -3);
    at(lower, -4, 3);
    const std::string all = "box 1.7320508, distance 1, distance.2 1";
    ASSERT_EQ(measured(), all);
    const QByteArray three = tree();

    keys("ctrl+m");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), measures().text());
    keys("ctrl+alt+m");
    EXPECT_EQ(measured(), "box 1.7320508, distance 1");
    keys("ctrl+z");
    EXPECT_EQ(tree(), three) << kelvartest::firstDifference(tree(), three);
    edits.push(new hostkit::NodeCommand(window.view().window(), hostkit::NodeCommand::Remove,
                                        measures().path(), *measures().at(0)));
    EXPECT_EQ(measured(), "distance 1, distance.2 1");
    keys("ctrl+alt+shift+m");
    EXPECT_EQ(measured(), "");
    keys("ctrl+z");
    keys("ctrl+z");
    EXPECT_EQ(tree(), three) << kelvartest::firstDifference(tree(), three);
}

TEST_F(MeasureToolTest, AnotherModelComesWithoutThemAndOneThatFailsLeavesThem)
{
    keys("ctrl+a");
    keys("shift+m");
    const QByteArray before = measures().text().toUtf8();
    ASSERT_NE(before, "");
    const QString bad = folder.filePath("bad.json");
    QFile state(bad);
    ASSERT_TRUE(state.open(QIODevice::WriteOnly));
    QByteArray text = tree();
    state.write(text.replace("\"marked\": \"true\"", "\"marked\": \"perhaps\""));
    state.close();
    open({bad});
    EXPECT_EQ(measures().text(), before);
    open({kelvartest::engineFile()});
    EXPECT_EQ(measures().text(), "");
}
