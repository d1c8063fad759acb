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

#include <exception>
#include <iostream>
#include <stdexcept>

int run(const QStringList& arguments)
{
    if (arguments.size() < 2) {
        throw std::runtime_error("usage: minimal_host MODEL [PICTURE]");
    }
    QMainWindow main;
    hostkit::SceneWidget view;
    hostkit::Progress progress;
    const hostkit::Model model = hostkit::ModelImporter::load(arguments[1], progress);
    view.setContent([&](hostkit::HostScene& host) {
        hostkit::ModelParts(host.scene().render.visualizations).add(model);
        host.showFrom("iso");
    });
    main.setCentralWidget(&view);

    QDockWidget properties("Properties");
    properties.setWidget(new hostkit::PropertyPanel(view));
    main.addDockWidget(Qt::RightDockWidgetArea, &properties);
    QToolBar* const bar = main.addToolBar("Edit");
    bar->addAction(view.undo().edits().createUndoAction(&main));
    bar->addAction(view.undo().edits().createRedoAction(&main));

    if (arguments.size() > 2) { // a picture instead of a window
        bool saved = false;
        view.run([&](hostkit::HostScene& host) {
            saved = host.picture(QSize(960, 720)).save(arguments[2]);
            return false;
        });
        if (!saved) {
            throw std::runtime_error("the picture could not be written");
        }
        return 0;
    }
    main.resize(1200, 800);
    main.show();
    return QApplication::exec();
}

int main(int argc, char** argv)
{
    hostkit::GlPlatform::prepare(); // ahead of the application object
    QApplication application(argc, argv);
    try {
        return run(QApplication::arguments());
    } catch (const std::exception& error) { // a model that cannot be read, a display without OpenGL
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
