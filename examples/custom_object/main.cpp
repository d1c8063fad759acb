// Objects of one's own: bars that can be dragged and clicked, a controller that keeps the host informed, and
// an editor that can undo. `custom_object` opens the window; Ctrl+Z undoes. `custom_object --out FILE.png
// [drag] [click] [undo]` does that to the middle bar, draws a picture and ends.

#include "Bar.h"
#include "SceneWindow.h"
#include "TotalController.h"
#include "UndoEditor.h"

#include "contracts/vis/OruVisTriad.h"

#include <QColor>
#include <QGuiApplication>
#include <QKeyEvent>

#include <boost/make_shared.hpp>

#include <exception>
#include <iostream>

namespace {

class ChartWindow : public SceneWindow
{
public:
    ChartWindow()
        : editor_(boost::make_shared<UndoEditor>())
    {
        scene().render.setCustomEditor(editor_);
        scene().render.significantDigits.setValue(3);
        addBars();
        using namespace Kelvar::Math;
        lookFrom(Matrix::rotate(VectorZ, -30.0f) * Matrix::rotate(VectorX, -65.0f));
        controller_ = boost::make_shared<TotalController>(*this, scene().render.visualizations);
        scene().controller().reset(controller_, scene().render);
    }

    void undo()
    {
        if (editor_->undo()) {
            controller_->showTotal();
            refresh();
        }
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
    void addBars()
    {
        OruVisList& list = scene().render.visualizations;
        for (int i = 0; i < 5; ++i) {
            const QColor color = QColor::fromHsv(60 * i, 180, 220);
            Bar* const bar = new Bar(scene().group, QStringLiteral("bar %1").arg(i + 1), 1.5f * i, color);
            bar->height.setValue(1.0 + i % 3);
            list.insert(bar, false); // false: the tree owns it
        }
        list.child(QStringLiteral("triad"), OruVisTriad::typeString);
        scene().render.setValue(QStringLiteral("background"), QStringLiteral("#ff20242c"));
    }

    boost::shared_ptr<UndoEditor> editor_;
    boost::shared_ptr<TotalController> controller_;
};

/// What a user would do to the middle bar.
void act(ChartWindow& window, const QString& action)
{
    const QPoint middle(480, 360);
    const QPoint above(480, 460);
    if (action == QLatin1String("undo")) {
        window.undo();
        return;
    }
    window.press(OruMouse::ButtonPick, Qt::NoModifier, middle);
    if (action == QLatin1String("drag")) {
        window.move(Qt::NoModifier, above);
        window.release(OruMouse::ButtonPick, Qt::NoModifier, above);
    } else {
        window.release(OruMouse::ButtonPick, Qt::NoModifier, middle);
    }
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
        act(window, action);
    }
    return window.picture(QSize(960, 720)).save(arguments.value(out + 1)) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    SceneWindow::choosePlatform();
    QGuiApplication application(argc, argv);
    try {
        return run(QGuiApplication::arguments());
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
