// The panels in docks beside the view, and a person's hands on them.

#include "contracts/vis/OruVisViewpoint.h"
#include "hosts/host/EditRecorder.h"
#include "hosts/host/SceneViews.h"
#include "hosts/widgets/PropertyPanel.h"
#include "hosts/widgets/ViewsPanel.h"
#include "tests/widgets/WidgetsFixture.h"

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QDockWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <QTreeView>

#include <boost/make_shared.hpp>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;

namespace {

const QString doubleClick = " click --repeat 2 --delay 30 1";

struct PanelsGL : WidgetsFixture
{
    PropertyPanel& properties = *new PropertyPanel(view);
    ViewsPanel& kept = *new ViewsPanel(view);
    QUndoStack& edits = view.undo().edits();

    PanelsGL()
    {
        main.setGeometry(0, 0, 1000, 740);
        dock(properties, Qt::RightDockWidgetArea);
        dock(kept, Qt::LeftDockWidgetArea);
        QAction* const undo = edits.createUndoAction(&main);
        undo->setShortcut(QKeySequence::Undo);
        main.addAction(undo);
        main.resizeDocks({main.findChild<QDockWidget*>("Properties")}, {420}, Qt::Horizontal);
        show();
    }

    void dock(QWidget& panel, Qt::DockWidgetArea area)
    {
        const QString title = area == Qt::LeftDockWidgetArea ? "Views" : "Properties";
        auto* const widget = new QDockWidget(title, &main);
        widget->setObjectName(title);
        widget->setWidget(&panel);
        main.addDockWidget(area, widget);
    }

    /// Where a value is in the tree, which is opened down to it.
    QString at(const QString& path, const QString& key)
    {
        QTreeView& tree = properties.tree();
        const QModelIndex index =
            properties.model().find(path, key).siblingAtColumn(PropertyModel::ValueColumn);
        tree.scrollTo(index);
        const QPoint middle = tree.viewport()->mapToGlobal(tree.visualRect(index).center());
        return QStringLiteral("mousemove %1 %2").arg(middle.x()).arg(middle.y());
    }
    using WidgetsFixture::at;

    QString at(int row)
    {
        QListWidget& list = kept.list();
        const QPoint middle = list.viewport()->mapToGlobal(list.visualItemRect(list.item(row)).center());
        return QStringLiteral("mousemove %1 %2").arg(middle.x()).arg(middle.y());
    }

    QString stored(const QString& path, const QString& key)
    {
        QString value;
        return view.host().scene().find(path)->getValue(key, value, QString());
    }

    /// In the dialog that is open.
    void chooseColor(const char* digits)
    {
        auto* const dialog = properties.findChild<QColorDialog*>();
        ASSERT_TRUE(dialog);
        auto* const line = dialog->findChild<QLineEdit*>();
        act(QStringLiteral("windowfocus %1 ").arg(dialog->winId()) + at(*line) + doubleClick);
        keepScreenshot("dialog.png");
        QStringList keys;
        for (const char* digit = digits; *digit; ++digit) {
            keys.append(QString(QLatin1Char(*digit)));
        }
        act("key ctrl+a key numbersign " + keys.join(' ') + " Return");
        act(QStringLiteral("windowfocus %1").arg(main.winId()));
    }

    QStringList names() { return SceneViews(view.host()).names(); }

    QStringList listed()
    {
        QStringList texts;
        for (int row = 0; row < kept.list().count(); ++row) {
            texts.append(kept.list().item(row)->text());
        }
        return texts;
    }
};

} // namespace

TEST_F(PanelsGL, EditAValueOfEachKindAndTakeItBackByKey)
{
    const QString turn = "mouse mappings";
    const struct
    {
        QString path;
        const char* key;
        /// Behind a double click on the value.
        const char* hands;
        const char* value;
    } rows[] = {
        {"render", "pickSize", "key ctrl+a key 1 2 period 5 Return", "12.5"},
        {"render", "pickSize", "key Up Return", "3.1"},
        {"render", "pickSize", "key ctrl+a key minus 2 Return key ctrl+a key 4 Return", "4"},
        {"render", "decimalSeparator", "key ctrl+a key 5 9 Return", "59"},
        {"render", "decimalSeparator", "key Up Return", nullptr},
        {turn, "rotateBut", "key Up Return", "2"},
        {turn, "rotateBut", "key Escape Escape", "3"},
        {"render/visualization/cube", "color", "color", "#ff2040a0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.key) + ' ' + row.hands);
        const QString before = stored(row.path, row.key);
        act(at(row.path, row.key) + doubleClick);
        if (row.hands[0] == 'k') {
            act(row.hands);
        } else {
            chooseColor("2040a0");
        }
        if (row.value) {
            EXPECT_EQ(stored(row.path, row.key).toStdString(), row.value);
        }
        EXPECT_EQ(edits.count(), stored(row.path, row.key) == before ? 0 : 1);
        EXPECT_TRUE(shows());
        keepScreenshot(row.key);
        act("key ctrl+z");
        EXPECT_EQ(stored(row.path, row.key).toStdString(), before.toStdString());
        edits.clear();
    }
}

TEST_F(PanelsGL, TellWhyAValueIsRefusedAndKeepItForMending)
{
    act(at("render", "pickSize") + doubleClick);
    act("key ctrl+a key minus 2");
    const std::string reason = "\"pickSize\" must be a number from 0, not \"-2\"";
    EXPECT_EQ(properties.status().toStdString(), reason);
    act("key Return");
    EXPECT_EQ(properties.status().toStdString(), reason);
    keepScreenshot("refused.png");
    act("key BackSpace BackSpace 9 Return");
    EXPECT_EQ(stored("render", "pickSize"), "9");
    EXPECT_EQ(properties.status(), "");

    act(at("render", "pickSize") + doubleClick);
    act("key ctrl+a key 7");
    view.host().scene().find("render")->setValue("pickSize", "5");
    properties.model().update();
    act("key Return");
    EXPECT_EQ(stored("render", "pickSize"), "7") << "what is typed outlives a change of the value";
    act(at("render", "pickSize") + doubleClick);
    act("key ctrl+a key x " + at(properties.filter()) + " click 1");
    EXPECT_EQ(stored("render", "pickSize"), "7");
    EXPECT_THAT(properties.status().toStdString(), testing::HasSubstr("\"pickSize\" must be"));
    EXPECT_EQ(edits.count(), 2);
}

TEST_F(PanelsGL, FilterAndCheckAndFollowWhatIsDoneToTheView)
{
    act(at(properties.filter()) + " click 1 key c u b e period 2");
    PropertyModel& model = properties.model();
    const QModelIndex part = model.find("render/visualization/cube.2");
    ASSERT_TRUE(part.isValid());
    EXPECT_TRUE(properties.tree().isExpanded(part)) << "what was found is shown";
    EXPECT_EQ(model.rowCount(part.parent()), 1);

    const QModelIndex offset =
        model.find("render/visualization/cube.2", "offset").siblingAtColumn(PropertyModel::ValueColumn);
    const QString before = offset.data().toString();
    act(at("cube.2") + " mousedown 1 mousemove_relative 20 20 mousemove_relative 20 20 mouseup 1");
    EXPECT_TRUE(await([&] { return offset.data().toString() != before; })) << "a drag in the view";
    act("key ctrl+z");
    EXPECT_TRUE(await([&] { return offset.data().toString() == before; }));

    const QModelIndex visible =
        model.find("render/visualization/cube.2", "visible").siblingAtColumn(PropertyModel::ValueColumn);
    const QRect cell = properties.tree().visualRect(visible);
    const QPoint box = properties.tree().viewport()->mapToGlobal(QPoint(cell.left() + 10, cell.center().y()));
    act(QStringLiteral("mousemove %1 %2 click 1").arg(box.x()).arg(box.y()));
    EXPECT_FALSE(cube("cube.2").visible.value());
    EXPECT_EQ(edits.undoText(), "Hide cube.2");
    EXPECT_TRUE(shows());
    keepScreenshot("filtered.png");
    act(at(properties.filter()) + " click 1 key ctrl+a key BackSpace");
    EXPECT_TRUE(model.find("render/visualization/cube").isValid());
}

TEST_F(PanelsGL, KeepViewsAndStepThroughThem)
{
    const auto click = [&](const char* button) {
        act(at(*kept.findChild<QToolButton*>(button)) + " click 1");
    };
    const Matrix iso = view.host().view();
    click("Add");
    act("key i s o Return");
    act(at(view) + " click 1 key x");
    const Matrix side = view.host().view();
    click("Add");
    act("key Return");
    EXPECT_EQ(names(), QStringList({"iso", "View 2"}));
    EXPECT_EQ(listed(), names());
    ASSERT_TRUE(await([&] { return !kept.list().item(1)->icon().isNull(); }));
    const auto picture = [&](int row) { return kept.list().item(row)->icon().pixmap(96, 72).toImage(); };
    EXPECT_NE(picture(0), picture(1));
    keepScreenshot("views.png");

    act(at(0) + doubleClick);
    EXPECT_EQ(view.host().view(), iso);
    click("Next");
    EXPECT_EQ(view.host().view(), side);
    click("Previous");
    EXPECT_EQ(view.host().view(), iso);
    EXPECT_EQ(kept.list().currentRow(), 0);
    act(at(1) + " click 1 key Return");
    EXPECT_EQ(view.host().view(), side);
    EXPECT_TRUE(shows());

    act("key F2 key ctrl+a key c u b e Return");
    EXPECT_EQ(kept.status(), "The name \"cube\" is taken");
    EXPECT_EQ(listed(), QStringList({"iso", "View 2"}));
    act("key F2 key ctrl+a key s i d e Return");
    EXPECT_EQ(names(), QStringList({"iso", "side"}));
    EXPECT_EQ(kept.status(), "");
    act(at(0) + " click 1 key Delete");
    EXPECT_EQ(listed(), QStringList("side"));

    const QStringList before[] = {{"iso", "side"}, {"iso", "View 2"}};
    for (const QStringList& wanted : before) {
        edits.undo();
        EXPECT_TRUE(await([&] { return listed() == wanted; })) << edits.redoText().toStdString();
    }
    edits.setIndex(0);
    EXPECT_TRUE(await([&] { return listed().isEmpty(); }));
    edits.setIndex(edits.count());
    EXPECT_TRUE(await([&] { return listed() == QStringList("side"); }));
}

TEST_F(PanelsGL, FollowATreeThatIsLoadedAndASceneThatIsMadeAnew)
{
    const auto frames = [&](const std::function<void(HostScene&)>& change) {
        view.run([&](HostScene& host) {
            change(host);
            return true;
        });
    };
    frames([](HostScene& host) {
        SceneViews views(host);
        EXPECT_TRUE(views.add("a") && views.add("b"));
    });
    EXPECT_TRUE(await([&] { return listed() == QStringList({"a", "b"}); }));
    frames([](HostScene& host) { EXPECT_TRUE(SceneViews(host).rename("a", "c")); });
    EXPECT_TRUE(await([&] { return listed() == QStringList({"c", "b"}); }));
    properties.tree().setCurrentIndex(properties.model().find("render/visualization/cube", "color"));
    view.window().renew();
    EXPECT_TRUE(await([&] { return listed() == QStringList({"c", "b"}); }));
    EXPECT_EQ(properties.tree().currentIndex().data(PropertyModel::KeyRole), "color");
    frames([](HostScene& host) { EXPECT_TRUE(SceneViews(host).remove("c")); });
    EXPECT_TRUE(await([&] { return listed() == QStringList("b"); }));

    int drawn = 0;
    await([&] { return !kept.list().item(0)->icon().isNull(); });
    QObject::connect(&view.window(), &SceneWindow::frameDrawn, [&] { ++drawn; });
    act("sleep 0.3");
    EXPECT_EQ(drawn, 0) << "panels at rest ask for no frames";
}

TEST_F(PanelsGL, OutliveTheSceneAndWhatAnEditorThrows)
{
    view.run([](HostScene& host) { return SceneViews(host).add("a"); });
    properties.tree().setCurrentIndex(properties.model().find("render", "pickSize"));
    view.window().setSurfaceType(QSurface::RasterSurface); // which takes no context
    EXPECT_THROW(view.window().renew(), std::runtime_error);
    EXPECT_EQ(listed(), QStringList());
    kept.add();
    kept.showNext();
    QKeyEvent undo(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
    QCoreApplication::sendEvent(&view.window(), &undo);
    view.window().setSurfaceType(QSurface::OpenGLSurface);
    view.window().renew();
    EXPECT_EQ(listed(), QStringList("a"));
    EXPECT_EQ(properties.tree().currentIndex().data(PropertyModel::KeyRole), "pickSize");

    const auto throwing = boost::make_shared<EditRecorder>();
    throwing->setListener([](auto, const EditStep&) { throw std::runtime_error("as the test wants it"); });
    view.run([](HostScene& host) { return host.setView(Matrix()); });
    view.host().scene().render.setCustomEditor(throwing);
    EXPECT_NO_THROW(kept.showNext());
    const QModelIndex value = properties.tree().currentIndex().siblingAtColumn(PropertyModel::ValueColumn);
    EXPECT_FALSE(properties.model().setData(value, "7"));
    EXPECT_EQ(properties.status(), "\"pickSize\" could not be set");
}
