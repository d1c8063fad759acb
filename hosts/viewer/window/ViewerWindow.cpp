#include "hosts/viewer/window/ViewerWindow.h"

#include "hosts/viewer/window/ModelTreePanel.h"
#include "hosts/viewer/window/PointReadout.h"
#include "hosts/viewer/window/SceneContent.h"
#include "hosts/viewer/window/SectionPanel.h"
#include "hosts/widgets/PropertyPanel.h"
#include "hosts/widgets/ViewsPanel.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>
#include <QUrl>
#include <QVBoxLayout>

using hostkit::SceneWindow;

namespace {

const QSize usualSize(1280, 800);
constexpr int messageMilliseconds = 5000;

const QString geometryKey = QStringLiteral("window/geometry");
const QString layoutKey = QStringLiteral("window/layout");

/// Another arrangement of panels does not take the layout of this one.
constexpr int layoutVersion = 1;

/// What can be docked beside the view.
struct PanelRow
{
    const char* name;
    const char* title;
    const char* keys;
    QWidget* (*make)(ViewerWindow& window);
    Qt::DockWidgetArea area;
    bool shown;
};

QWidget* makeTree(ViewerWindow& window)
{
    auto* const panel = new ModelTreePanel(window.view(), window.selection());
    QObject::connect(&window.document(), &Document::replaced, panel, &ModelTreePanel::reset);
    return panel;
}

const PanelRow panelRows[] = {
    {"tree", "Model", "Ctrl+Shift+M", makeTree, Qt::LeftDockWidgetArea, true},
    {"section", "Section", "Ctrl+Shift+X",
     [](ViewerWindow& window) -> QWidget* { return new SectionPanel(window.view(), window.section()); },
     Qt::RightDockWidgetArea, false},
    {"properties", "Properties", "Ctrl+Shift+P",
     [](ViewerWindow& window) -> QWidget* { return new hostkit::PropertyPanel(window.view()); },
     Qt::RightDockWidgetArea, false},
    {"views", "Views", "Ctrl+Shift+V",
     [](ViewerWindow& window) -> QWidget* { return new hostkit::ViewsPanel(window.view()); },
     Qt::RightDockWidgetArea, false},
};

QStringList filesOf(const QMimeData& data)
{
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

} // namespace

ViewerWindow::ViewerWindow()
    : view_(new hostkit::SceneWidget)
    , messages_(new MessageBar)
    , loading_(new LoadingBar)
    , document_(*view_)
    , appearance_(*view_)
    , selection_(*view_)
    , pointer_(*view_)
    , measure_(*view_, pointer_, selection_)
    , section_(*view_)
    , dialogs_(new Dialogs(*view_, document_, appearance_, selection_, *this))
    , place_{*view_, document_, appearance_, selection_, measure_, section_, *dialogs_}
    , actions_(nullptr)
{
    view_->run([](hostkit::HostScene& host) {
        SceneContent::dress(host);
        SceneContent::add(host, {});
        return true;
    });
    view_->undo().clear();
    makeCenter();
    makeStatusBar();
    actions_ = new ViewerActions(*this, place_);
    makePanels();
    connectDocument();
    connectRefresh();
    setAcceptDrops(true);
    view_->window().installEventFilter(this);
    tellTitle();
    restoreLayout();
}

/// The view outlives what works on it, and tells of its end.
ViewerWindow::~ViewerWindow()
{
    hostkit::UndoEditor& undo = view_->undo();
    for (QObject* const teller :
         {static_cast<QObject*>(&view_->window()), static_cast<QObject*>(&undo.edits()),
          static_cast<QObject*>(&undo.views())}) {
        teller->disconnect(this);
    }
}

void ViewerWindow::makeCenter()
{
    auto* const center = new QWidget;
    auto* const layout = new QVBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(messages_);
    layout->addWidget(view_, 1);
    setCentralWidget(center);
    view_->setFocus();
}

void ViewerWindow::makeStatusBar()
{
    statusBar()->addWidget(new PointReadout(*view_, pointer_), 1);
    statusBar()->addPermanentWidget(loading_);
    connect(loading_, &LoadingBar::stopped, &document_, &Document::stop);
}

void ViewerWindow::makePanels()
{
    QMenu* const menu = actions_->menu(QStringLiteral("&View"))->addMenu(tr("&Panels"));
    QDockWidget* before = nullptr;
    for (const PanelRow& row : panelRows) {
        auto* const dock = new QDockWidget(tr(row.title), this);
        dock->setObjectName(QString::fromLatin1(row.name));
        dock->setWidget(row.make(*this));
        addDockWidget(row.area, dock);
        if (before && dockWidgetArea(before) == row.area) {
            tabifyDockWidget(before, dock);
        }
        dock->setVisible(row.shown);
        dock->toggleViewAction()->setShortcut(QKeySequence(QString::fromLatin1(row.keys)));
        // Not behind the others of its place.
        connect(dock->toggleViewAction(), &QAction::triggered, dock, &QWidget::raise);
        menu->addAction(dock->toggleViewAction());
        before = dock;
    }
}

void ViewerWindow::connectDocument()
{
    recent_.fill(*actions_->menu(QStringLiteral("&File"))->addMenu(tr("Open R&ecent")));
    connect(&recent_, &RecentFiles::chosen, this, [this](const QString& file) { document_.openAny({file}); });
    connect(&document_, &Document::progressed, this, [this](const QString& what, double share) {
        if (document_.loading()) {
            loading_->tell(what, share);
        } else {
            loading_->hide();
        }
        actions_->refresh();
    });
    connect(&document_, &Document::opened, this, [this] {
        recent_.add(document_.files());
        tellTitle();
    });
    connect(&document_, &Document::loaded, messages_, &MessageBar::hide);
    connect(&document_, &Document::replaced, &measure_, &MeasureTool::forget);
    connect(&document_, &Document::noted, messages_, &MessageBar::tellNote);
    connect(&document_, &Document::failed, messages_, &MessageBar::tellError);
    connect(dialogs_, &Dialogs::failed, messages_, &MessageBar::tellError);
    connect(dialogs_, &Dialogs::done, this,
            [this](const QString& what) { statusBar()->showMessage(what, messageMilliseconds); });
}

/// What can be done changes with what is shown and with what can be taken back.
void ViewerWindow::connectRefresh()
{
    const auto refresh = [this] { actions_->refresh(); };
    connect(&view_->window(), &SceneWindow::frameDrawn, this, refresh);
    for (QUndoStack* const stack : {&view_->undo().edits(), &view_->undo().views()}) {
        connect(stack, &QUndoStack::indexChanged, this, refresh);
    }
    connect(&selection_, &Selection::changed, this, refresh);
    connect(&measure_, &MeasureTool::switched, this, refresh);
    connect(&measure_, &MeasureTool::told, this,
            [this](const QString& phrase) { statusBar()->showMessage(phrase, messageMilliseconds); });
    pointer_.setClicks([this](const ViewPointer::Target& target) { return selection_.click(target); });
}

void ViewerWindow::tellTitle()
{
    QStringList names;
    for (const QString& file : document_.files()) {
        names.append(QFileInfo(file).fileName());
    }
    names.append(tr("Kelvar View"));
    setWindowTitle(names.join(QStringLiteral(" - ")));
}

void ViewerWindow::restoreLayout()
{
    const QSettings settings;
    if (!restoreGeometry(settings.value(geometryKey).toByteArray())) {
        resize(usualSize);
    }
    restoreState(settings.value(layoutKey).toByteArray(), layoutVersion);
}

void ViewerWindow::closeEvent(QCloseEvent* event)
{
    QSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(layoutKey, saveState(layoutVersion));
    QMainWindow::closeEvent(event);
}

void ViewerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!filesOf(*event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void ViewerWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    document_.openAny(filesOf(*event->mimeData()));
}

/// The view is a window of its own within this one and gets what is dropped on it.
bool ViewerWindow::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
        dragEnterEvent(static_cast<QDragEnterEvent*>(event));
        return true;
    case QEvent::DragMove:
        static_cast<QDragMoveEvent*>(event)->acceptProposedAction();
        return true;
    case QEvent::Drop:
        dropEvent(static_cast<QDropEvent*>(event));
        return true;
    default:
        return QMainWindow::eventFilter(watched, event);
    }
}
