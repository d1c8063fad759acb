// The viewer's window as a person uses it: by keys and menus, through an X server.

#include "hosts/mesh/MeshVisualization.h"
#include "hosts/viewer/window/HelpDialog.h"
#include "hosts/viewer/window/PictureDialog.h"
#include "hosts/viewer/window/SectionPanel.h"
#include "tests/hosts/Models.h"
#include "tests/viewer/WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSet>
#include <QSlider>
#include <QSpinBox>
#include <QStyle>
#include <QTimer>
#include <QUrl>

using kelvartest::engineFile;
using testing::HasSubstr;
using ViewerWindowTest = kelvartest::WindowFixture;

namespace {

const QString cubeFile = QStringLiteral("/usr/share/assimp/models/PLY/cube.ply");

/// What the view looks along.
Kelvar::Math::Vector3 eyeOf(hostkit::SceneWidget& view)
{
    Kelvar::Math::Vector3 eye = Kelvar::Math::VectorZ;
    eye.mult3x3(view.host().view().inverse());
    return eye.normalized();
}

/// Lets so many milliseconds pass.
void pass(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    kelvartest::WindowFixture::await([&] { return clock.elapsed() > milliseconds; });
}

/// Runs `answer` with the dialog of that class once it is open.
template <typename Dialog>
void answerWith(const std::function<void(Dialog&)>& answer)
{
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, [timer, answer] {
        if (auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
            timer->deleteLater();
            answer(*dialog);
        }
    });
    timer->start(10);
}

} // namespace

TEST(ActionTable, HasNoKeyNameOrLetterTwice)
{
    QSet<QString> names;
    QSet<QString> keys;
    QSet<QString> letters;
    for (const ActionTable::Row& row : ActionTable::rows()) {
        const QString text = QString::fromLatin1(row.text);
        const auto at = text.indexOf(QLatin1Char('&'));
        ASSERT_GE(at, 0) << row.text << " cannot be reached by keyboard";
        const QString letter = QLatin1String(row.menu) + text.mid(at + 1, 1).toLower();
        for (const auto& [seen, one] :
             {std::pair{&names, QString::fromLatin1(row.name)},
              std::pair{&keys, QString::fromLatin1(row.keys)}, std::pair{&letters, letter}}) {
            EXPECT_FALSE(seen->contains(one)) << one.toStdString() << " of " << row.name;
            seen->insert(one);
        }
    }
}

TEST(ActionTable, IsWhatTheHelpTells)
{
    const QString help = HelpDialog::text();
    for (const ActionTable::Row& row : ActionTable::rows()) {
        EXPECT_TRUE(help.contains(QString::fromLatin1(row.help))) << row.name;
        EXPECT_TRUE(help.contains(QStringLiteral("<b>%1</b>").arg(QLatin1String(row.keys)))) << row.keys;
    }
    EXPECT_THAT(help.toStdString(), HasSubstr("draws a zoom box"));
}

TEST_F(ViewerWindowTest, DoesWhatTheKeysSay)
{
    open({engineFile()});
    show();
    const auto edges = [&](const char* wanted) {
        const auto* const body = dynamic_cast<hostkit::MeshVisualization*>(
            window.view().host().scene().find("render/visualization/2CylinderEngine/body_1"));
        return body && body->edges.value() == QLatin1String(wanted);
    };
    const auto looksFrom = [&](float x, float y, float z) {
        return (eyeOf(window.view()) - Kelvar::Math::Vector3(x, y, z)).length() < 1e-3f;
    };
    const float third = 0.57735f;
    const struct
    {
        const char* keys;
        std::function<bool()> done;
    } rows[] = {
        {"ctrl+2", [&] { return edges("edges"); }},
        {"ctrl+3", [&] { return edges("wireframe"); }},
        {"ctrl+z", [&] { return edges("edges"); }},
        {"ctrl+z", [&] { return edges("off"); }},
        {"ctrl+shift+z", [&] { return edges("edges"); }},
        {"ctrl+1", [&] { return edges("off"); }},
        {"x", [&] { return looksFrom(1, 0, 0); }},
        {"shift+y", [&] { return looksFrom(0, -1, 0); }},
        {"alt+Left", [&] { return looksFrom(1, 0, 0); }},
        {"alt+Left", [&] { return looksFrom(third, -third, third); }},
        {"alt+Right", [&] { return looksFrom(1, 0, 0); }},
        {"Home", [&] { return looksFrom(third, -third, third); }},
        {"ctrl+shift+p", [&] { return window.findChild<QWidget*>("properties")->isVisible(); }},
    };
    for (const auto& row : rows) {
        keys(QLatin1String(row.keys));
        EXPECT_TRUE(await(row.done)) << row.keys;
    }
    kelvartest::WidgetsFixture::keepScreenshot("window.png");
    keys("ctrl+q");
    EXPECT_TRUE(await([&] { return !window.isVisible(); }));
}

TEST_F(ViewerWindowTest, KeepsWhatIsOpenWhereAFileCannotBeUsed)
{
    const QString damaged = folder.filePath("damaged.stl");
    QFile file(damaged);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("solid and nothing else");
    file.close();
    const QString state = folder.filePath("damaged.json");
    QFile(damaged).copy(state);
    open({cubeFile});
    const QByteArray before = tree();
    for (const QString& wrong : {damaged, folder.filePath("missing.obj"), state}) {
        open({wrong});
        EXPECT_TRUE(window.messages().text().contains(QFileInfo(wrong).fileName()))
            << window.messages().text().toStdString();
        EXPECT_EQ(tree(), before);
        EXPECT_EQ(window.document().files(), QStringList(cubeFile));
    }
    open({engineFile()});
    EXPECT_EQ(window.messages().text(), QString());
    EXPECT_FALSE(tree().contains("\"cube\"")) << "the other model is gone";
    EXPECT_EQ(RecentFiles::files(), (QStringList{engineFile(), cubeFile}));
}

TEST_F(ViewerWindowTest, OpensWhatIsDroppedOnTheView)
{
    show();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(cubeFile)});
    QDropEvent drop(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window.view().window(), &drop);
    ASSERT_TRUE(loaded());
    EXPECT_EQ(window.document().files(), QStringList(cubeFile));
}

TEST_F(ViewerWindowTest, KeepsChangesAndViewWhenAFileChangesOnDisk)
{
    const QString model = copied(cubeFile, "part.ply");
    open({model});
    show();
    const QString name = window.view().host().scene().find("render/visualization/part")->at(0)->name();
    window.view().run([&](hostkit::HostScene& host) {
        QString error;
        EXPECT_TRUE(host.setValue("render/visualization/part/" + name + "/color", "#ff00ff00", &error));
        EXPECT_TRUE(host.setValue("render/visualization/part/" + name + "/visible", "false", &error));
        return host.showFrom("x");
    });
    const auto view = window.view().host().view();
    const auto size = part("part/" + name).bounds().max().x;

    QFile file(model);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray text = file.readAll();
    const auto body = text.indexOf("end_header") + 11;
    text = text.left(body) + text.mid(body).replace("\n1 ", "\n3 ");
    file.remove(); // as programs do that put a new file in the place of the old one
    pass(500);
    EXPECT_EQ(window.messages().text(), QString());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();

    ASSERT_TRUE(await([&] {
        return !window.document().loading() && part("part/" + name).bounds().max().x > size;
    })) << "it is read again";
    EXPECT_EQ(part("part/" + name).color.value(), QColor(0, 255, 0));
    EXPECT_FALSE(part("part/" + name).visible.value());
    EXPECT_EQ(window.view().host().view(), view);
    keys("ctrl+z");
    EXPECT_TRUE(part("part/" + name).visible.value());
}

TEST_F(ViewerWindowTest, OpensItsStateAgain)
{
    open({cubeFile, engineFile()});
    window.view().run([](hostkit::HostScene& host) {
        QString error;
        host.setValue("render/background", "#ff102030", &error);
        host.setValue("render/visualization/2CylinderEngine/body_1/visible", "false", &error);
        return host.showFrom("-z");
    });
    const QString state = folder.filePath("session.json");
    QString error;
    ASSERT_TRUE(window.view().host().save(state, &error)) << error.toStdString();
    const QByteArray saved = tree();
    open({engineFile()});
    EXPECT_NE(tree(), saved);
    open({state});
    EXPECT_EQ(window.document().files(), (QStringList{cubeFile, engineFile()}));
    EXPECT_EQ(window.messages().text(), QString());
    EXPECT_FALSE(part("2CylinderEngine/body_1").visible.value());
    EXPECT_EQ(tree(), saved);
}

TEST_F(ViewerWindowTest, SavesThePictureThatTheDialogAsksFor)
{
    open({cubeFile});
    show();
    const QString picture = folder.filePath("cube.png");
    answerWith<PictureDialog>([&](PictureDialog& dialog) {
        auto* const save = dialog.findChild<QPushButton*>();
        ASSERT_TRUE(save);
        const auto sides = dialog.findChildren<QSpinBox*>();
        dialog.findChildren<QLineEdit*>().first()->setText(folder.filePath("cube.foo"));
        EXPECT_TRUE(dialog.isRefused());
        dialog.findChildren<QLineEdit*>().first()->setText(picture);
        EXPECT_FALSE(dialog.isRefused());
        sides[0]->setValue(320);
        sides[1]->setValue(200);
        dialog.accept();
    });
    keys("ctrl+s");
    ASSERT_TRUE(await([&] { return QFile::exists(picture); }));
    EXPECT_EQ(QImage(picture).size(), QSize(320, 200));
    keys("ctrl+shift+c");
    EXPECT_TRUE(await([&] { return !QApplication::clipboard()->image().isNull(); }));
}

TEST_F(ViewerWindowTest, CutsWithASliderInOneStep)
{
    open({engineFile()});
    show();
    keys("ctrl+shift+x");
    keys("alt+y");
    Section& section = window.section();
    ASSERT_TRUE(section.isActive(1));
    EXPECT_TRUE(section.isFlipped(1)) << "what lies towards the eye goes";
    const double before = section.position(1);
    const int steps = window.view().undo().edits().index();

    QSlider& slider = window.findChild<SectionPanel*>()->slider(1);
    const QPoint from = slider.mapToGlobal(QPoint(slider.width() / 2, slider.height() / 2));
    ASSERT_TRUE(await([&] { return slider.isEnabled() && slider.value() > 0; }));
    const int handle = QStyle::sliderPositionFromValue(slider.minimum(), slider.maximum(), slider.value(),
                                                       slider.width() - 12) +
                       6;
    const QPoint at = slider.mapToGlobal(QPoint(handle, slider.height() / 2));
    kelvartest::WidgetsFixture::act(QStringLiteral("mousemove %1 %2 mousedown 1 mousemove %3 %2 sleep 0.1 "
                                                   "mousemove %4 %2 sleep 0.1 mouseup 1")
                                        .arg(at.x())
                                        .arg(from.y())
                                        .arg(at.x() + 15)
                                        .arg(at.x() + 40));
    EXPECT_TRUE(await([&] { return section.position(1) > before + 10.0; })) << section.position(1);
    EXPECT_EQ(window.view().undo().edits().index(), steps + 1);
    keys("ctrl+z");
    EXPECT_EQ(section.position(1), before);

    // A number that was typed: the keys are those of the view again, and the field follows them.
    QDoubleSpinBox& number = window.findChild<SectionPanel*>()->position(1);
    const double told = number.value();
    number.setFocus();
    number.selectAll();
    kelvartest::WidgetsFixture::act(QStringLiteral("key 3 Return"));
    EXPECT_EQ(number.value(), 3.0);
    EXPECT_NE(section.position(1), before);
    kelvartest::WidgetsFixture::act(QStringLiteral("key ctrl+z"));
    EXPECT_EQ(section.position(1), before);
    EXPECT_EQ(number.value(), told);
    keys("alt+c");
    EXPECT_FALSE(section.anyActive());
    kelvartest::WidgetsFixture::keepScreenshot("section.png");
}

TEST_F(ViewerWindowTest, DrawsNothingAtRest)
{
    open({engineFile()});
    show();
    int frames = 0;
    QObject::connect(&window.view().window(), &hostkit::SceneWindow::frameDrawn, [&] { ++frames; });
    pass(500);
    EXPECT_EQ(frames, 0);
}
