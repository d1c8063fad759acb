// Somebody, or a cat on the keyboard, at the viewer's window: actions, keys and the mouse at random.

#include "contracts/ogl/OruOglGl.h"
#include "tests/hosts/Models.h"
#include "tests/viewer/WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QTest>

#include <random>

namespace {

/// KELVAR_WINDOW_EVENTS asks for more.
int eventCount()
{
    const int asked = qEnvironmentVariableIntValue("KELVAR_WINDOW_EVENTS");
    return asked > 0 ? asked : 20000;
}

/// Does one thing after the other to a window, whatever it is.
class Hand
{
public:
    Hand(ViewerWindow& window, unsigned int seed)
        : window_(window)
        , random_(seed)
    {}

    void act()
    {
        const int kind = below(20);
        if (kind < 8 && below(4) != 0) {
            rest(); // most actions find no button held
        }
        if (kind < 4) {
            chooseAction();
        } else if (kind < 6) {
            pressKey();
        } else if (kind < 8) {
            step();
        } else {
            usePointer();
        }
        QCoreApplication::processEvents();
    }

    /// Lets go of all buttons.
    void rest()
    {
        for (const Qt::MouseButton button : buttons) {
            QTest::mouseRelease(&view(), button, Qt::NoModifier, at_);
        }
        QCoreApplication::processEvents();
    }

private:
    static constexpr Qt::MouseButton buttons[] = {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton};

    QWindow& view() { return window_.view().window(); }

    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random_); }

    /// Any but those that wait for a person, and the end.
    void chooseAction()
    {
        const auto& rows = ActionTable::rows();
        const ActionTable::Row& row = rows[static_cast<std::size_t>(below(static_cast<int>(rows.size())))];
        const QString name = QString::fromLatin1(row.name);
        const bool quiet = !row.asks && name != QLatin1String("quit");
        if (quiet && (name != QLatin1String("reload") || below(10) == 0)) {
            window_.actions().action(name)->trigger();
        }
    }

    void pressKey()
    {
        static const Qt::Key keys[] = {Qt::Key_X,     Qt::Key_Y,      Qt::Key_Z, Qt::Key_F,  Qt::Key_I,
                                       Qt::Key_Space, Qt::Key_Escape, Qt::Key_H, Qt::Key_Tab};
        const auto modifier = below(4) == 0 ? Qt::ShiftModifier : Qt::NoModifier;
        QTest::keyClick(&view(), keys[below(static_cast<int>(std::size(keys)))], modifier);
    }

    void step() { window_.actions().action(QLatin1String(below(3) == 0 ? "redo" : "undo"))->trigger(); }

    void usePointer()
    {
        at_ = QPoint(below(view().width()), below(view().height()));
        const auto modifier = below(5) == 0 ? Qt::ControlModifier : Qt::NoModifier;
        const Qt::MouseButton button = buttons[below(8) == 0 ? below(3) : 0];
        switch (below(5)) {
        case 0:
            QTest::mousePress(&view(), button, modifier, at_);
            break;
        case 1:
            QTest::mouseRelease(&view(), button, modifier, at_);
            break;
        case 2:
            QTest::mouseClick(&view(), button, modifier, at_);
            break;
        default:
            QTest::mouseMove(&view(), at_);
        }
    }

    ViewerWindow& window_;
    std::mt19937 random_;
    QPoint at_;
};

} // namespace

using RandomWindowTest = kelvartest::WindowFixture;

TEST_F(RandomWindowTest, EndsAsItBeganOnceAllIsTakenBack)
{
    const QStringList models = {kelvartest::engineFile(),
                                QStringLiteral("/usr/share/assimp/models/OBJ/spider.obj"),
                                QStringLiteral("/usr/share/assimp/models/PLY/points.ply")};
    window.resize(420, 320);
    show();
    for (const QString& model : models) {
        SCOPED_TRACE(model.toStdString());
        open({model});
        const QByteArray before = tree();
        const auto view = window.view().host().view();
        Hand hand(window, 7);
        const int count = eventCount() / static_cast<int>(models.size());
        for (int i = 0; i < count; ++i) {
            hand.act();
        }
        hand.rest();
        ASSERT_TRUE(loaded());
        EXPECT_EQ(window.messages().text(), QString());
        window.view().undo().edits().setIndex(0);
        window.view().run([&](hostkit::HostScene& host) {
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
            return host.setView(view); // of views only the last ones are kept
        });
        EXPECT_TRUE(tree() == before) << kelvartest::firstDifference(tree(), before);
    }
}
