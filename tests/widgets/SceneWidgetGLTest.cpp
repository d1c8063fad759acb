#include "tests/widgets/WidgetsFixture.h"

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QToolBar>

using namespace hostkit;
using namespace kelvartest;

using SceneWidgetGL = WidgetsFixture;

TEST_F(SceneWidgetGL, StaysRightWhileSiblingsRepaintAndPicksHappen)
{
    auto& label = *new QLabel("sibling");
    label.setAutoFillBackground(true);
    main.addToolBar("numbers")->addWidget(&label);
    QWidget above;
    above.setGeometry(500, 300, 200, 150);
    show();
    for (int round = 0; round < 5; ++round) {
        const QImage shown = frame();
        view.run([&](HostScene& host) {
            host.context().mouse.move(QPoint(300 + round, 250), Kelvar::UI::Toolkit::KeyModifier());
            host.send(&OruSceneEventHandler::mouseMove); // a pick; nobody asks for a frame
            return false;
        });
        const QColor color(10 * round, 100, 200);
        label.setPalette(color);
        ASSERT_TRUE(await([&] { return screen(label).pixelColor(0, 0) == color; }));
        EXPECT_EQ(screen(view), shown) << "a pick and a sibling's repaint, round " << round;
        above.move(300 + 40 * round, 200);
        above.show();
        ASSERT_TRUE(await([&] { return screen(view) != shown; })) << "the other window lies above";
        above.hide();
        EXPECT_TRUE(shows()) << "what was covered is there again";
    }
    act(at("cube.2") + " sleep 0.1 " + at("cube"));
    EXPECT_TRUE(shows()) << "the pointer went over things";
    EXPECT_THAT(view.host().context().tooltip.toStdString(), testing::HasSubstr("cube"));
}

TEST_F(SceneWidgetGL, FitsItsContentIntoTheSizeThatItGetsAtLast)
{
    main.setGeometry(0, 0, 300, 700);
    show();
    const QImage edge = frame().copy(3, 0, 1, 700);
    for (int y = 3; y < 697; ++y) {
        ASSERT_EQ(edge.pixelColor(0, y), QColor("#38465a")) << y;
    }
    EXPECT_FALSE(view.undo().views().canUndo());
}

TEST_F(SceneWidgetGL, KeepsItsSceneWhereverItGoes)
{
    show();
    OruScene* scene = &view.host().scene();
    QMainWindow other;
    other.setGeometry(100, 50, 500, 400);
    auto& dock = *new QDockWidget("View");
    const struct
    {
        const char* name;
        std::function<void()> action;
    } rows[] = {
        {"into a dock",
         [&] {
             main.setCentralWidget(new QWidget);
             dock.setWidget(&view);
             main.addDockWidget(Qt::RightDockWidgetArea, &dock);
         }},
        {"floating", [&] { dock.setFloating(true); }},
        {"docked again", [&] { dock.setFloating(false); }},
        {"resized", [&] { main.resize(700, 500); }},
        {"into another window",
         [&] {
             other.setCentralWidget(&view);
             other.show();
             main.hide();
         }},
        {"made anew", [&] { view.window().renew(); }},
        {"back, as the center",
         [&] {
             main.setCentralWidget(&view);
             main.show();
             other.hide();
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const bool renews = QByteArray(row.name) == "made anew";
        row.action();
        view.show();
        ASSERT_TRUE(await([&] { return view.window().isExposed(); }));
        EXPECT_TRUE(shows());
        EXPECT_EQ(view.window().size(), view.size());
        EXPECT_TRUE(renews || scene == &view.host().scene());
        scene = &view.host().scene();
        act(at("cube") + " sleep 0.1 " + at("cube.2"));
        EXPECT_THAT(view.host().context().tooltip.toStdString(), testing::HasSubstr("cube.2"));
        keepScreenshot(row.name);
    }
}

TEST_F(SceneWidgetGL, TakesAndPassesTheKeyboard)
{
    auto& bar = *main.addToolBar("lines");
    auto& before = *new QLineEdit;
    auto& behind = *new QLineEdit;
    bar.addWidget(&before);
    bar.addWidget(&behind);
    QWidget::setTabOrder(&before, &view);
    QWidget::setTabOrder(&view, &behind);
    show();
    const auto types = [&](const char* keys, const char* where) {
        before.clear();
        behind.clear();
        view.run([](HostScene& host) { return host.showFrom("iso"); });
        const Kelvar::Math::Matrix iso = view.host().view();
        for (const QString& key : QString(keys).split(' ')) {
            act("key " + key); // the focus follows a Tab with the next events
        }
        const QString got = before.text() == "x"        ? "before"
                            : behind.text() == "x"      ? "behind"
                            : view.host().view() != iso ? "view"
                                                        : "nowhere";
        EXPECT_EQ(got.toStdString(), where) << keys;
    };
    act(at(before) + " click 1");
    types("x", "before");
    types("Tab x", "view");
    types("Tab x", "behind");
    types("shift+Tab x", "view");
    types("shift+Tab x", "before");
    act(at("cube") + " click 1");
    types("x", "view");
    act(at(behind) + " click 1");
    types("x", "behind");
    view.setFocus();
    types("x", "view");
}
