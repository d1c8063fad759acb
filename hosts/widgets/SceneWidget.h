#pragma once

#include "hosts/host/SceneWindow.h"
#include "hosts/widgets/UndoEditor.h"
#include "hosts/widgets/kelvar_widgets_api.h"

#include <QWidget>

#include <functional>

namespace hostkit {

/// A view of a scene among the widgets of a QMainWindow.
///
/// Not a QOpenGLWidget, which goes white: a pick clears the frame that is drawn into, and Qt takes that frame
/// for the window whenever any widget of the window repaints, without a draw in between. This widget holds a
/// SceneWindow, whose picture stays on the screen until the next one is complete.
///
///     GlPlatform::prepare();
///     QApplication application(argc, argv);
///     QMainWindow main;
///     SceneWidget view;
///     view.setContent([&](HostScene& host) { ModelParts(host.scene().render.visualizations).add(model); });
///     main.setCentralWidget(&view);
///     main.show();
///
/// A click or the Tab key gives it the keyboard; a further Tab passes it on. Tooltips of objects are the
/// scene's own. It may be docked, and moved into another top level window: scene and undo stacks stay. As a
/// native window it hides widgets of the same window that overlap it, unless these are native, too.
class KELVAR_WIDGETS_API SceneWidget : public QWidget
{
    Q_OBJECT

public:
    /// Makes the OpenGL context and the scene at once. Throws std::runtime_error where there is no
    /// OpenGL 2.1.
    explicit SceneWidget(QWidget* parent = nullptr);
    ~SceneWidget() override;

    SceneWindow& window() { return *window_; }
    HostScene& host() { return window_->host(); }

    /// The scene's editor, with what can be taken back.
    UndoEditor& undo() { return *undo_; }

    /// As SceneWindow does; and nothing from before, or of this, can be taken back.
    void setContent(const SceneWindow::Content& content);

    /// As SceneWindow does.
    void run(const std::function<bool(HostScene&)>& action) { window_->run(action); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool passFocus(bool forwards);

    /// Belongs to its container.
    SceneWindow* window_;
    QWidget* container_;
    UndoEditor* undo_;
};

} // namespace hostkit
