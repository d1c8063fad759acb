// A model in a main window, with undo, redo and a panel of all properties: `minimal_host MODEL`.
// `minimal_host MODEL FILE.png` draws one picture into a file and ends.
#include "hosts/host/GlPlatform.h"
#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/widgets/PropertyPanel.h"
#include "hosts/widgets/SceneWidget.h"

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QToolBar>

int main(int argc, char** argv)
{
    hostkit::GlPlatform::prepare();
    QApplication application(argc, argv);
    QMainWindow main;
    hostkit::SceneWidget view;
    hostkit::Progress progress;
    const auto model = hostkit::ModelImporter::load(QApplication::arguments().value(1), progress);
    view.setContent([&](hostkit::HostScene& host) {
        hostkit::ModelParts(host.scene().render.visualizations).add(model);
        host.showFrom("iso");
    });
    main.setCentralWidget(&view);
    QDockWidget dock("Properties");
    dock.setWidget(new hostkit::PropertyPanel(view));
    main.addDockWidget(Qt::RightDockWidgetArea, &dock);
    QToolBar* const bar = main.addToolBar("Edit");
    bar->addAction(view.undo().edits().createUndoAction(&main));
    bar->addAction(view.undo().edits().createRedoAction(&main));
    if (argc > 2) {
        view.run([&](auto& host) { return host.picture(QSize(960, 720)).save(argv[2]); });
        return 0;
    }
    main.resize(1200, 800);
    main.show();
    return QApplication::exec();
}
