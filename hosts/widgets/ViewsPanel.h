#pragma once

#include "hosts/host/SceneViews.h"
#include "hosts/widgets/NodeCommand.h"
#include "hosts/widgets/kelvar_widgets_api.h"

#include <QString>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>

class OruProperties;
class QLabel;
class QLayout;
class QListWidget;

namespace hostkit {

class SceneWidget;
class ViewItem;

/// The views that a person keeps of a scene, with a picture of each: SceneViews as a widget.
///
///     QDockWidget views("Views");
///     views.setWidget(new ViewsPanel(view));
///
/// A double click or Enter goes to a view, F2 or a click on the chosen one renames it, Del deletes it; the
/// buttons add one, delete, and step to the previous and the next. What is added, renamed and deleted is a
/// step of the view's undo stack of edits, going to a view one of that of views. The list follows the tree,
/// so the views of a file that is loaded appear.
///
/// A picture is made when its view appears or changes, and again when the view is gone to; it shows the
/// objects as they were then.
class KELVAR_WIDGETS_API ViewsPanel : public QWidget
{
    Q_OBJECT

public:
    /// `view` is borrowed and has to live as long.
    explicit ViewsPanel(SceneWidget& view, QWidget* parent = nullptr);
    ~ViewsPanel() override;

    QListWidget& list() { return *list_; }

    /// Why the last name was refused; empty: it was not.
    QString status() const;

public Q_SLOTS:
    /// Keeps the view that is shown, under a name that is free, which is then ready to be typed over.
    void add();

    /// Deletes the chosen view.
    void remove();

    void showNext();
    void showPrevious();

private:
    QLayout* makeButtons();
    void connectList();
    void renew();
    void run(const std::function<bool()>& action);
    void follow();
    void list(const QStringList& names);
    ViewItem* item(int row) const;
    int rowOf(const OruProperties* node) const;
    void show(const QString& name);
    void rename(int row);
    void keep(NodeCommand::Way way, const QString& name);
    void tell(const QString& reason);
    void takePicture();

    SceneWidget& view_;
    /// Null: there is no scene.
    std::unique_ptr<SceneViews> views_;
    QListWidget* list_;
    QLabel* status_;
    /// Makes one picture at each turn of the event loop.
    QTimer pictureTimer_;
    /// Of the list of visualizations: as of when the views were looked at, and listed.
    std::uint64_t seen_ = 0;
    std::uint64_t listed_ = 0;
};

} // namespace hostkit
