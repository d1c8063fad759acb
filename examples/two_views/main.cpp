// Two views of one model: `two_views MODEL`. Drag or click a part in one, and it moves or is marked in both,
// and so undone. `two_views MODEL FILE.png [click] [undo]` does that in the left one and draws the right one
// into a file.
#include "hosts/host/GlPlatform.h"
#include "hosts/host/LinkedEditor.h"
#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/widgets/SceneWidget.h"

#include <QApplication>
#include <QMainWindow>
#include <QSplitter>
#include <QToolBar>

#include <exception>
#include <iostream>
#include <stdexcept>

using namespace hostkit;

namespace {

int run(const QStringList& arguments)
{
    if (arguments.size() < 2) {
        throw std::runtime_error("usage: two_views MODEL [PICTURE [click] [undo]]");
    }
    Progress progress;
    const Model model = ModelImporter::load(arguments[1], progress);
    QMainWindow main;
    QSplitter splitter;
    SceneWidget left(&splitter), right(&splitter);
    LinkedEditor linked;
    for (SceneWidget* const view : {&left, &right}) {
        // By value what ends with the loop: a scene that is made anew is filled again.
        view->setContent([&, view](HostScene& host) {
            OruVisList& list = host.scene().render.visualizations;
            ModelParts(list).add(model); // scenes share meshes
            for (unsigned int i = 0; i < list.size(); ++i) {
                if (list.at(i)->string().defined("movable")) {
                    list.at(i)->setValue("movable", "true");
                }
            }
            host.showFrom(view == &left ? "-y" : "z");
        });
        linked.add(view->window());
    }
    main.setCentralWidget(&splitter);
    QToolBar* const bar = main.addToolBar("Edit");
    bar->addAction(left.undo().edits().createUndoAction(&main));
    bar->addAction(left.undo().edits().createRedoAction(&main));
    if (arguments.size() < 3) {
        main.show();
        return QApplication::exec();
    }
    if (arguments.contains("click")) {
        left.run([&](HostScene& host) {
            const QPoint middle(host.context().viewport.width / 2, host.context().viewport.height / 2);
            left.window().input().press(OruMouse::ButtonPick, 0, middle);
            return left.window().input().release(OruMouse::ButtonPick, 0, middle);
        });
    }
    if (arguments.contains("undo")) {
        left.undo().edits().undo();
    }
    bool saved = false;
    right.run([&](HostScene& host) {
        saved = host.picture(QSize(960, 720)).save(arguments[2]);
        return false;
    });
    if (!saved) {
        throw std::runtime_error("the picture could not be written");
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    GlPlatform::prepare();
    QApplication application(argc, argv);
    try {
        return run(QApplication::arguments());
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
