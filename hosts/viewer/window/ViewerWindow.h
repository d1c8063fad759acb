#pragma once

#include "hosts/viewer/window/Appearance.h"
#include "hosts/viewer/window/Dialogs.h"
#include "hosts/viewer/window/Document.h"
#include "hosts/viewer/window/LoadingBar.h"
#include "hosts/viewer/window/MeasureTool.h"
#include "hosts/viewer/window/MessageBar.h"
#include "hosts/viewer/window/RecentFiles.h"
#include "hosts/viewer/window/Section.h"
#include "hosts/viewer/window/Selection.h"
#include "hosts/viewer/window/ViewPointer.h"
#include "hosts/viewer/window/ViewerActions.h"
#include "hosts/viewer/window/Workplace.h"
#include "hosts/widgets/SceneWidget.h"

#include <QMainWindow>
#include <QStringList>

/// The program's window: a view of models with menus, a toolbar, panels and a status bar. It only puts the
/// parts together; what they do is theirs.
///
/// Place and size of window and panels, and the files that were opened, are remembered in the settings of the
/// application, which has to have its names. Files that are dropped on the window are opened.
class ViewerWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Throws std::runtime_error where there is no OpenGL 2.1.
    ViewerWindow();
    ~ViewerWindow() override;

    hostkit::SceneWidget& view() { return *view_; }
    Document& document() { return document_; }
    ViewerActions& actions() { return *actions_; }
    MessageBar& messages() { return *messages_; }
    Selection& selection() { return selection_; }
    Section& section() { return section_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeCenter();
    void makeStatusBar();
    void makePanels();
    void connectDocument();
    void connectRefresh();
    void restoreLayout();
    void tellTitle();

    /// Belong to this window.
    hostkit::SceneWidget* view_;
    MessageBar* messages_;
    LoadingBar* loading_;

    Document document_;
    Appearance appearance_;
    Selection selection_;
    ViewPointer pointer_;
    MeasureTool measure_;
    Section section_;
    RecentFiles recent_;
    Dialogs* dialogs_;
    Workplace place_;
    ViewerActions* actions_;
};
