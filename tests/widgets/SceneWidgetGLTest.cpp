#include "tests/widgets/WidgetsFixture.h"

using namespace hostkit;
using namespace kelvartest;

using SceneWidgetGL = WidgetsFixture;

TEST_F(SceneWidgetGL, Shows)
{
    show();
    const QString before = cube("cube.2").string().keys().join(" ");
    act(at("cube.2") + " mousedown 1 mousemove_relative 20 10 mousemove_relative 20 10 mouseup 1");
    keepScreenshot("first.png");
    EXPECT_EQ(view.undo().edits().undoText().toStdString(), "Move cube.2");
    EXPECT_TRUE(shows());
}
