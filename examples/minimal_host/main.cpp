// A host of a scene on one page: a window, a visualization of its own, and what the library brings along.
// `minimal_host` opens the window; `minimal_host --out FILE.png` draws one picture into a file and ends.

#include "Knot.h"
#include "SceneWindow.h"

#include "contracts/vis/OruVisTriad.h"

#include <QGuiApplication>

#include <exception>
#include <iostream>

namespace {

void fill(OruScene& scene)
{
    OruVisList& visualizations = scene.render.visualizations;
    visualizations.insert(new Knot(scene.group), false); // false: the tree owns it
    visualizations.child(QStringLiteral("triad"), OruVisTriad::typeString);
    visualizations[QStringLiteral("kelvar logo")]->visible.setValue(true);
    scene.render.setValue(QStringLiteral("background"), QStringLiteral("#ff20242c"));
}

int run(const QStringList& arguments)
{
    SceneWindow window;
    fill(window.scene());
    window.lookFrom(Kelvar::Math::Matrix::rotate(Kelvar::Math::VectorX, -25.0f));

    const int out = arguments.indexOf(QStringLiteral("--out"));
    if (out < 0) {
        window.show();
        return QGuiApplication::exec();
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
