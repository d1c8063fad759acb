#include "tests/widgets/WidgetsFixture.h"

#include <QAction>
#include <QElapsedTimer>
#include <QUndoStack>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;

namespace {

struct UndoEditorGL : WidgetsFixture
{
    QUndoStack& edits = view.undo().edits();
    QUndoStack& views = view.undo().views();

    UndoEditorGL()
    {
        QAction* const undo = edits.createUndoAction(&main);
        undo->setShortcut(QKeySequence::Undo);
        QAction* const redo = edits.createRedoAction(&main);
        redo->setShortcut(QKeySequence("Ctrl+Y"));
        main.addActions({undo, redo});
        show();
    }

    Matrix offset() { return cube("cube.2").offset.value(); }

    static QStringList textsOf(const QUndoStack& stack)
    {
        QStringList texts;
        for (int i = 0; i < stack.count(); ++i) {
            texts.append(stack.text(i));
        }
        return texts;
    }

    void waitOutTheRow()
    {
        QElapsedTimer clock;
        clock.start();
        await([&] { return clock.elapsed() > 700; });
    }
};

const QString drag = " mousedown 1 mousemove_relative 30 20 mousemove_relative 30 20 mouseup 1";

} // namespace

TEST_F(UndoEditorGL, TakesADragBackAndMakesItAgainByKeys)
{
    const QImage before = frame();
    const Matrix shown = view.host().view();
    act(at("cube.2") + drag);
    const Matrix moved = offset();
    const QImage after = frame();
    EXPECT_NE(moved, Matrix::Identity);
    EXPECT_EQ(textsOf(edits), QStringList("Move cube.2"));

    act("key ctrl+z mousemove 5 595");
    EXPECT_EQ(offset(), Matrix::Identity);
    ASSERT_TRUE(shows());
    EXPECT_EQ(frame(), before);
    act("key ctrl+y");
    EXPECT_EQ(offset(), moved);
    EXPECT_EQ(frame(), after);
    EXPECT_EQ(view.host().view(), shown);
    EXPECT_EQ(textsOf(views), QStringList());
}

TEST_F(UndoEditorGL, TakesNothingBackInTheMiddleOfADrag)
{
    act(at("cube.2") + drag);
    const Matrix moved = offset();
    act(at("cube.2") + " mousedown 1 mousemove_relative 30 20 key ctrl+z mousemove_relative 30 20 mouseup 1");
    EXPECT_EQ(textsOf(edits), QStringList({"Move cube.2", "Move cube.2"}));
    edits.undo();
    EXPECT_EQ(offset(), moved);
}

TEST_F(UndoEditorGL, StepsThroughViewsOfWhichWheelNotchesInARowAreOne)
{
    const Matrix start = view.host().view();
    act("mousemove 20 300" + drag);
    const Matrix turned = view.host().view();
    act("mousemove 450 300 click 4 click 4 click 4");
    const Matrix zoomed = view.host().view();
    waitOutTheRow();
    act("click 4");
    act("key x key y"); // fast, but each one a view
    act("keydown ctrl mousedown 2 mousemove_relative 30 20 mousemove_relative 30 20 mouseup 2 keyup ctrl");
    EXPECT_EQ(textsOf(views).join(", ").toStdString(),
              "Turn view, Zoom view, Zoom view, Turn view, Turn view, Move view");
    EXPECT_EQ(textsOf(edits), QStringList());
    views.setIndex(2);
    EXPECT_EQ(view.host().view(), zoomed);
    views.undo();
    EXPECT_EQ(view.host().view(), turned);
    EXPECT_TRUE(shows());
    views.undo();
    EXPECT_EQ(view.host().view(), start);
}

TEST_F(UndoEditorGL, KeepsWhatASessionComesToAndForgetsNothingWhenTheSceneIsMadeAnew)
{
    const auto set = [&](const char* path, const char* value) {
        QString error;
        view.run([&](HostScene& host) { return host.setValue(path, value, &error); });
        EXPECT_EQ(error.toStdString(), "");
    };
    set("render/visualization/cube/visible", "false");
    set("render/visualization/cube/visible", "false");
    view.run([](HostScene& host) {
        IOruVisPropertyEdit& editor = *host.scene().render.editor();
        OruVisList& list = host.scene().render.visualizations;
        OruProperties* const part = list.childByName("cube");
        editor.beginEdit();
        for (const char* value : {"true", "false"}) {
            editor.editValue(&list, part, "visible", value);
        }
        editor.endEdit();
        return false;
    });
    EXPECT_EQ(textsOf(edits), QStringList("Hide cube"));
    const QImage hidden = frame();

    view.window().input().press(OruMouse::ButtonPick, 0, QPoint(1, 1)); // and its release never comes
    view.window().renew();
    ASSERT_TRUE(await([&] { return view.window().isExposed(); }));
    EXPECT_EQ(frame(), hidden);
    edits.undo();
    EXPECT_TRUE(cube("cube").visible.value());
    edits.redo();
    EXPECT_EQ(frame(), hidden);
    set("render/pickSize", "7");
    EXPECT_EQ(textsOf(edits).back(), "Change pickSize of render");
}
