// Objects of one's own: bars that can be dragged and clicked, a controller that keeps the host informed, and
// an editor that can undo. `custom_object` opens the window; Ctrl+Z undoes. `custom_object --out FILE.png
// [drag] [click] [undo]` does that to the middle bar, draws a picture and ends.

#include "Bar.h"
#include "TotalController.h"

#include "contracts/vis/OruVisTriad.h"
#include "hosts/host/EditRecorder.h"
#include "hosts/host/GlPlatform.h"
#include "hosts/host/SceneWindow.h"

#include <QColor>
#include <QGuiApplication>
#include <QKeyEvent>

#include <boost/make_shared.hpp>

#include <exception>
#include <iostream>
#include <vector>

using hostkit::HostScene;

namespace {

const QSize pictureSize(960, 720);

class ChartWindow : public hostkit::SceneWindow
{
public:
    ChartWindow()
    {
        resize(pictureSize);
        setContent([this](HostScene& host) { fill(host); });
    }

    /// Turning the view is no edit: only what was done to the bars is taken back.
    void undo()
    {
        if (steps_.empty()) {
            return;
        }
        run([this](HostScene& host) {
            host.undo(steps_.back());
            return true;
        });
        steps_.pop_back();
        controller_->showTotal();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->matches(QKeySequence::Undo)) {
            undo();
        } else {
            SceneWindow::keyPressEvent(event);
        }
    }

private:
    /// Also fills a scene that takes the place of one whose OpenGL context got lost.
    void fill(HostScene& host)
    {
        OruScene& scene = host.scene();
        addBars(scene);
        scene.render.significantDigits.setValue(3);
        scene.render.setValue(QStringLiteral("background"), QStringLiteral("#ff20242c"));
        host.showFrom(QStringLiteral("iso"));

        const auto recorder = boost::make_shared<hostkit::EditRecorder>();
        recorder->setListener([this](auto subject, const hostkit::EditStep& step) {
            if (subject == hostkit::EditRecorder::Subject::Values) {
                steps_.push_back(step);
            }
        });
        scene.render.setCustomEditor(recorder);
        controller_ = boost::make_shared<TotalController>(*this, scene.render.visualizations);
        scene.controller().reset(controller_, scene.render);
    }

    static void addBars(OruScene& scene)
    {
        OruVisList& list = scene.render.visualizations;
        for (int i = 0; i < 5; ++i) {
            const QColor color = QColor::fromHsv(60 * i, 180, 220);
            Bar* const bar = new Bar(scene.group, QStringLiteral("bar %1").arg(i + 1), 1.5f * i, color);
            bar->height.setValue(1.0 + i % 3);
            list.insert(bar, false); // false: the tree owns it
        }
        list.child(QStringLiteral("triad"), OruVisTriad::typeString);
    }

    std::vector<hostkit::EditStep> steps_;
    boost::shared_ptr<TotalController> controller_;
};

/// What a user would do to the middle bar, in a view of the size of the picture.
bool act(HostScene& host, hostkit::InputFeed& input, const QString& action)
{
    const QPoint middle(480, 360);
    const QPoint end(480, action == QLatin1String("drag") ? 460 : 360);
    host.setSize(pictureSize);
    input.press(OruMouse::ButtonPick, 0, middle);
    input.move(0, end);
    return input.release(OruMouse::ButtonPick, 0, end);
}

int run(const QStringList& arguments)
{
    ChartWindow window;
    const int out = arguments.indexOf(QStringLiteral("--out"));
    if (out < 0) {
        window.show();
        return QGuiApplication::exec();
    }
    for (const QString& action : arguments.mid(out + 2)) {
        if (action == QLatin1String("undo")) {
            window.undo();
        } else {
            window.run([&](HostScene& host) { return act(host, window.input(), action); });
        }
    }
    bool saved = false;
    window.run([&](HostScene& host) {
        saved = host.picture(pictureSize).save(arguments.value(out + 1));
        return false;
    });
    return saved ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    hostkit::GlPlatform::prepare();
    QGuiApplication application(argc, argv);
    try {
        return run(QGuiApplication::arguments());
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
