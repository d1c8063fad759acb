#pragma once

#include "hosts/mesh/Model.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace hostkit {
class HostScene;
class ImportJob;
class SceneWidget;
} // namespace hostkit

/// The files whose models a view shows: opened in the background, loaded again when they change.
///
/// What is open stays until the next has come: a file that cannot be used changes nothing. Opening forgets
/// what can be undone; loading again keeps it, the view and all that was changed, by the names of the parts.
class Document : public QObject
{
    Q_OBJECT

public:
    using Action = std::function<void(hostkit::HostScene&)>;

    /// `view` is borrowed and has to live as long.
    explicit Document(hostkit::SceneWidget& view, QObject* parent = nullptr);
    ~Document() override;

    /// Loads the files, and then shows them in place of what is open and does `setUp`, which arranges them in
    /// the scene; without it they are shown from above, front right. What setUp throws counts as a failure. A
    /// load that still goes on is stopped.
    /// `setUpAgain` is done each time they are loaded again.
    void open(const QStringList& files, const Action& setUp = {}, const Action& setUpAgain = {});

    /// Opens the models that a state file names and puts the state behind them.
    void openState(const QString& file);

    /// Opens what a person hands over: models, or a state file.
    void openAny(const QStringList& files);

    /// Loads the files again. Nothing where none is open.
    void reload();

    /// Stops the loading.
    void stop();

    bool loading() const { return job_ != nullptr; }

    /// What is shown, as absolute paths; empty: nothing yet.
    const QStringList& files() const { return files_; }

Q_SIGNALS:
    /// Loading has begun, goes on, or has ended: see loading(). `share` is 0 to 1.
    void progressed(const QString& what, double share);

    /// Other files are shown.
    void opened();

    /// What was loaded last is shown, be it opened or loaded again.
    void loaded();

    /// The nodes of the models are others than before.
    void replaced();

    /// Something could not be done, and why.
    void failed(const QString& reason);

    /// What could not be had of files that are shown.
    void noted(const QString& notes);

private:
    using Models = std::shared_ptr<const std::vector<hostkit::Model>>;

    /// How what is being loaded comes to be shown.
    using Show = void (Document::*)(const Models&);

    void start(const QStringList& files, Show how);
    void look();
    void show();
    void showNew(const Models& models);
    void showAgain(const Models& models);
    void fill(const Models& models);
    void putBack(const QByteArray& tree);
    void tellNotes(const std::vector<hostkit::Model>& models);
    void watch();
    void reloadAtRest();

    hostkit::SceneWidget& view_;
    /// Null: nothing is being loaded.
    std::unique_ptr<hostkit::ImportJob> job_;
    QStringList coming_;
    Show show_ = nullptr;
    Action setUp_;
    Action comingSetUpAgain_;
    QTimer poll_;
    QStringList files_;
    /// What is shown; null: nothing.
    Models models_;
    Action setUpAgain_;
    QFileSystemWatcher watcher_;
    /// Runs out when a file that changes has come to rest.
    QTimer rest_;
    int patience_ = 0;
};
