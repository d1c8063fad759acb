#pragma once

#include "hosts/mesh/MeshVisualization.h"
#include "hosts/widgets/SceneWidget.h"

#include <QImage>
#include <QMainWindow>

#include <gmock/gmock.h>

#include <functional>

namespace kelvartest {

/// A main window at the upper left of the screen with a view of two cubes, the right one movable, and a
/// person's hands on it.
struct WidgetsFixture : testing::Test
{
    WidgetsFixture();

    /// Shows the window, focused, and waits until its view is right.
    void show();

    /// Has xdotool do that, and lets the window hear of it.
    static void act(const QString& xdotool);

    /// Runs the event loop until the answer is true; false if that takes too long.
    static bool await(const std::function<bool()>& question);

    /// Where the middle of a widget, or of a cube, is on the screen, for xdotool.
    static QString at(const QWidget& widget);
    QString at(const char* cube);

    hostkit::MeshVisualization& cube(const char* name);

    /// What the screen shows at the place of a widget.
    static QImage screen(const QWidget& widget);

    /// What a frame of the scene is, and whether the view shows it at last.
    QImage frame();
    bool shows();

    /// The whole screen into a file of the folder KELVAR_SCREENSHOTS, if that is set.
    static void keepScreenshot(const char* name);

    QMainWindow main;
    /// Owned by the main window, or whoever it is given to.
    hostkit::SceneWidget& view = *new hostkit::SceneWidget;
};

} // namespace kelvartest
