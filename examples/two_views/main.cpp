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

using namespace hostkit;

int main(int argc, char** argv)
{
    GlPlatform::prepare();
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    Progress progress;
    const Model model = ModelImporter::load(arguments.value(1), progress);
    QMainWindow main;
    QSplitter splitter;
    SceneWidget left(&splitter), right(&splitter);
    LinkedEditor linked;
    for (SceneWidget* const view : {&left, &right}) {
        view->setContent([&](HostScene& host) {
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
    if (argc < 3) {
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
    right.run([&](HostScene& host) { return host.picture(QSize(960, 720)).save(arguments[2]); });
    return 0;
}
