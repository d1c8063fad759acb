#include "hosts/widgets/ViewsPanel.h"

#include "contracts/core/OruProperties.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/SceneWindow.h"
#include "hosts/widgets/SceneWidget.h"
#include "hosts/widgets/internal/RenameCommand.h"
#include "hosts/widgets/internal/ViewItem.h"

#include <QAbstractItemDelegate>
#include <QAction>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace hostkit {

namespace {

const QSize pictureSize(96, 72);

struct ButtonRow
{
    const char* text;
    const char* hint;
    void (ViewsPanel::*action)();
};

constexpr ButtonRow buttonRows[] = {
    {"Add", "Keep the present view", &ViewsPanel::add},
    {"Delete", "Delete the chosen view", &ViewsPanel::remove},
    {"Previous", "Go to the view before", &ViewsPanel::showPrevious},
    {"Next", "Go to the view behind", &ViewsPanel::showNext},
};

/// What a person may mend in a name that the tree refuses.
QString refusal(const QString& name)
{
    if (name.isEmpty()) {
        return ViewsPanel::tr("A view needs a name");
    }
    return name.contains(QLatin1Char('/')) ? ViewsPanel::tr("A name holds no \"/\"")
                                           : ViewsPanel::tr("The name \"%1\" is taken").arg(name);
}

} // namespace

ViewsPanel::ViewsPanel(SceneWidget& view, QWidget* parent)
    : QWidget(parent)
    , view_(view)
    , list_(new QListWidget(this))
    , status_(new QLabel(this))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(makeButtons());
    layout->addWidget(list_);
    layout->addWidget(status_);
    status_->setWordWrap(true);
    status_->setTextFormat(Qt::PlainText);
    status_->hide();
    list_->setIconSize(pictureSize);
    list_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    pictureTimer_.setSingleShot(true);
    connectList();
    connect(&pictureTimer_, &QTimer::timeout, this, &ViewsPanel::takePicture);
    connect(&view.window(), &SceneWindow::frameDrawn, this, &ViewsPanel::follow);
    connect(&view.window(), &SceneWindow::sceneRenewed, this, &ViewsPanel::renew);
    renew();
}

QLayout* ViewsPanel::makeButtons()
{
    auto* const buttons = new QHBoxLayout;
    for (const ButtonRow& row : buttonRows) {
        auto* const button = new QToolButton(this);
        button->setObjectName(QLatin1String(row.text));
        button->setText(tr(row.text));
        button->setToolTip(tr(row.hint));
        buttons->addWidget(button);
        connect(button, &QToolButton::clicked, this, row.action);
    }
    buttons->addStretch();
    return buttons;
}

void ViewsPanel::connectList()
{
    auto* const deletion = new QAction(tr("Delete"), list_);
    deletion->setShortcut(QKeySequence::Delete);
    deletion->setShortcutContext(Qt::WidgetShortcut);
    list_->addAction(deletion);
    connect(deletion, &QAction::triggered, this, &ViewsPanel::remove);
    connect(list_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { show(static_cast<ViewItem*>(item)->name()); });
    connect(list_, &QListWidget::itemChanged, this,
            [this](QListWidgetItem* item) { rename(list_->row(item)); });
    connect(list_->itemDelegate(), &QAbstractItemDelegate::closeEditor, this,
            [this] { pictureTimer_.start(); });
}

ViewsPanel::~ViewsPanel() = default;

QString ViewsPanel::status() const
{
    return status_->text();
}

void ViewsPanel::tell(const QString& reason)
{
    status_->setText(reason);
    status_->setVisible(!reason.isEmpty());
}

ViewItem* ViewsPanel::item(int row) const
{
    return static_cast<ViewItem*>(list_->item(row));
}

/// The scene is another one, or there is none.
void ViewsPanel::renew()
{
    views_.reset();
    seen_ = 0;
    if (view_.window().hasScene()) {
        views_ = std::make_unique<SceneViews>(view_.host());
        follow();
    } else {
        const QSignalBlocker quiet(list_);
        list_->clear();
    }
}

/// What the panel does to the scene. There may be another one then, or none, and other items.
void ViewsPanel::run(const std::function<bool()>& action)
{
    view_.window().changeAndTell([&](HostScene&) { return action(); });
}

/// Catches up with the tree. O(1) if nothing changed below the list, and a look at each view if no entry came
/// or went.
void ViewsPanel::follow()
{
    if (!views_) {
        return;
    }
    const OruVisList& all = view_.host().scene().render.visualizations;
    if (seen_ == all.subtreeRevision()) {
        return;
    }
    const QSignalBlocker quiet(list_); // what changes here no person has typed
    if (seen_ == 0 || listed_ != all.revision()) {
        list(views_->names());
    }
    seen_ = all.subtreeRevision();
    listed_ = all.revision();
    for (int row = 0; row < list_->count(); ++row) {
        item(row)->catchUp();
        if (item(row)->pictureDue) {
            pictureTimer_.start();
        }
    }
}

/// Makes the items those of these views, in that order; those that fit already stay.
void ViewsPanel::list(const QStringList& names)
{
    std::vector<OruProperties*> nodes;
    for (const QString& name : names) {
        nodes.push_back(view_.host().scene().render.visualizations.childByName(name));
    }
    for (int row = list_->count(); row-- > 0;) {
        if (std::find(nodes.begin(), nodes.end(), item(row)->node()) == nodes.end()) {
            delete list_->takeItem(row);
        }
    }
    for (int row = 0; row < names.size(); ++row) {
        OruProperties* const node = nodes[static_cast<std::size_t>(row)];
        if (row >= list_->count() || item(row)->node() != node) {
            delete list_->takeItem(rowOf(node)); // it went elsewhere, if it is there
            list_->insertItem(row, new ViewItem(*node));
        }
    }
}

/// -1: there is none.
int ViewsPanel::rowOf(const OruProperties* node) const
{
    int row = list_->count() - 1;
    while (row >= 0 && item(row)->node() != node) {
        --row;
    }
    return row;
}

void ViewsPanel::add()
{
    bool added = false;
    run([&] {
        const QString name = views_->freeName();
        added = views_->add(name);
        if (added) {
            keep(NodeCommand::Insert, name);
        }
        return added;
    });
    follow();
    if (added) {
        list_->setCurrentRow(list_->count() - 1);
        list_->editItem(list_->currentItem());
    }
}

void ViewsPanel::remove()
{
    if (const ViewItem* const chosen = item(list_->currentRow())) {
        const QString name = chosen->name();
        run([&] {
            keep(NodeCommand::Remove, name);
            return true;
        });
        follow();
    }
}

/// As a step that can be undone. What a step brings in is there already when it is kept.
void ViewsPanel::keep(NodeCommand::Way way, const QString& name)
{
    const OruVisList& all = view_.host().scene().render.visualizations;
    if (const OruProperties* const node = all.childByName(name)) {
        view_.undo().edits().push(new NodeCommand(view_.window(), way, all.path(), *node));
    }
}

void ViewsPanel::showNext()
{
    show(views_ ? views_->next() : QString());
}

void ViewsPanel::showPrevious()
{
    show(views_ ? views_->previous() : QString());
}

void ViewsPanel::show(const QString& name)
{
    run([&] { return views_->show(name); });
    const int row = views_ ? rowOf(view_.host().scene().render.visualizations.childByName(name)) : -1;
    if (row >= 0) {
        list_->setCurrentRow(row);
        item(row)->pictureDue = true;
        pictureTimer_.start();
    }
}

void ViewsPanel::rename(int row)
{
    const QString name = item(row)->name();
    const QString text = item(row)->text();
    bool renamed = text == name;
    if (!renamed) {
        run([&] { return renamed = views_->rename(name, text); });
        if (renamed) {
            const QString list = view_.host().scene().render.visualizations.path();
            view_.undo().edits().push(new RenameCommand(view_.window(), list, name, text));
        }
    }
    tell(renamed ? QString() : refusal(text));
    ViewItem* const shown = item(row);
    if (shown && !renamed) {
        const QSignalBlocker quiet(list_);
        shown->setText(shown->name());
    }
    follow();
}

/// One of those that are due; not of an item that is being renamed, whose text it would put back.
void ViewsPanel::takePicture()
{
    int row = 0;
    while (row < list_->count() &&
           (!item(row)->pictureDue || list_->isPersistentEditorOpen(list_->item(row)))) {
        ++row;
    }
    if (row == list_->count()) {
        return;
    }
    const QString name = item(row)->name();
    item(row)->pictureDue = false;
    QImage picture;
    run([&] {
        picture = views_->picture(name, pictureSize * devicePixelRatio());
        return false;
    });
    picture.setDevicePixelRatio(devicePixelRatio());
    ViewItem* const shown = item(row);
    if (shown && shown->name() == name) {
        const QSignalBlocker quiet(list_);
        QIcon icon(QPixmap::fromImage(picture));
        icon.addPixmap(QPixmap::fromImage(picture), QIcon::Selected); // without the tint of a chosen row
        shown->setIcon(icon);
    }
    pictureTimer_.start();
}

} // namespace hostkit
