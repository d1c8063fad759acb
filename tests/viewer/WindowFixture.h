#pragma once

#include "hosts/viewer/window/ViewerWindow.h"
#include "tests/widgets/WidgetsFixture.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <string>

namespace hostkit {
class PartVisualization;
} // namespace hostkit

namespace kelvartest {

/// The first line in which texts differ, with those of both.
std::string firstDifference(const QByteArray& text, const QByteArray& other);

/// The viewer's window at the upper left of the screen, with settings of its own, and a person's hands on it.
struct WindowFixture : testing::Test
{
    WindowFixture();

    /// Opens the files and waits until they are shown.
    void open(const QStringList& files);

    /// Shows the window, focused, and waits until its view is right.
    void show();

    /// A copy of a model in a folder of its own; its path.
    QString copied(const QString& model, const QString& name);

    /// Presses keys, as xdotool calls them, with the view focused.
    void keys(const QString& names);

    /// The part of that path below the visualizations.
    hostkit::PartVisualization& part(const QString& path);

    /// The tree as a file would have it.
    QByteArray tree();

    /// Waits until nothing is loaded.
    bool loaded();

    static bool await(const std::function<bool()>& question) { return WidgetsFixture::await(question); }

    /// Ahead of the window: what an earlier test has left in the settings goes.
    struct NoSettings
    {
        NoSettings();
    };

    NoSettings noSettings;
    QTemporaryDir folder;
    ViewerWindow window;
};

} // namespace kelvartest
