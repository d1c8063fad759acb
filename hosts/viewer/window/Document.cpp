#include "hosts/viewer/window/Document.h"

#include "contracts/core/OruPropertiesFile.h"
#include "hosts/host/HostScene.h"
#include "hosts/import/ImportJob.h"
#include "hosts/viewer/window/OwnFiles.h"
#include "hosts/viewer/window/SceneContent.h"
#include "hosts/viewer/window/StateFile.h"
#include "hosts/widgets/SceneWidget.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>
#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

using hostkit::HostScene;
using hostkit::Model;

namespace {

constexpr int pollMilliseconds = 20;

/// A program that writes a file does it in several steps.
constexpr int restMilliseconds = 300;

/// A file that stays away for so many of these is gone.
constexpr int mostRests = 20;

QStringList absolute(const QStringList& files)
{
    QStringList paths;
    for (const QString& file : files) {
        paths.append(QFileInfo(file).absoluteFilePath());
    }
    return paths;
}

QString namesOf(const QStringList& files)
{
    QStringList names;
    for (const QString& file : files) {
        names.append(QFileInfo(file).fileName());
    }
    return names.join(QStringLiteral(", "));
}

} // namespace

Document::Document(hostkit::SceneWidget& view, QObject* parent)
    : QObject(parent)
    , view_(view)
{
    connect(&poll_, &QTimer::timeout, this, [this] { look(); });
    rest_.setSingleShot(true);
    rest_.setInterval(restMilliseconds);
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, [this] {
        patience_ = mostRests;
        rest_.start();
    });
    connect(&rest_, &QTimer::timeout, this, [this] { reloadAtRest(); });
}

Document::~Document() = default;

void Document::open(const QStringList& files, const Action& setUp, const Action& setUpAgain)
{
    setUp_ = setUp;
    comingSetUpAgain_ = setUpAgain;
    start(absolute(files), &Document::showNew);
}

void Document::openState(const QString& file)
{
    QString error;
    const QStringList models = StateFile::modelsOf(file, &error);
    if (!error.isEmpty()) {
        Q_EMIT failed(error);
        return;
    }
    QFile source(file);
    const QByteArray text = source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    const Action load = [file, text](HostScene& host) {
        QString reason;
        const OwnFiles own(host);
        if (!OruPropertiesFile::load(host.scene(), text, file, &reason)) {
            throw std::runtime_error(reason.toStdString());
        }
        host.changed();
    };
    open(models, load, load);
}

void Document::openAny(const QStringList& files)
{
    if (files.size() == 1 && StateFile::looksLikeOne(files.first())) {
        openState(files.first());
    } else if (!files.isEmpty()) {
        open(files);
    }
}

/// What is being opened will take the place of these anyway.
void Document::reload()
{
    const bool opening = loading() && show_ == &Document::showNew;
    if (!files_.isEmpty() && !opening) {
        start(files_, &Document::showAgain);
    }
}

/// Many programs take a file away before they put the new one in its place.
void Document::reloadAtRest()
{
    const bool there = std::all_of(files_.begin(), files_.end(),
                                   [](const QString& file) { return QFileInfo::exists(file); });
    if (there || --patience_ == 0) {
        reload();
    } else {
        rest_.start();
    }
}

void Document::stop()
{
    if (job_) {
        job_.reset();
        poll_.stop();
        Q_EMIT progressed(QString(), 1.0);
    }
}

void Document::start(const QStringList& files, Show how)
{
    job_ = std::make_unique<hostkit::ImportJob>(files);
    coming_ = files;
    show_ = how;
    poll_.start(pollMilliseconds);
    Q_EMIT progressed(namesOf(files), 0.0);
}

void Document::look()
{
    if (!job_->finished()) {
        Q_EMIT progressed(namesOf(coming_), static_cast<double>(job_->share()));
        return;
    }
    poll_.stop();
    try {
        show();
    } catch (const std::bad_alloc&) {
        Q_EMIT failed(QStringLiteral("The models do not fit into memory."));
    } catch (const std::exception& error) {
        Q_EMIT failed(QString::fromUtf8(error.what()));
    }
    watch();
    Q_EMIT progressed(QString(), 1.0);
}

void Document::show()
{
    const std::unique_ptr<hostkit::ImportJob> job = std::move(job_);
    std::vector<Model> models = job->take();
    for (std::size_t i = 0; i < models.size(); ++i) {
        models[i].properties.emplace_back(SceneContent::fileKey, coming_[static_cast<int>(i)]);
    }
    const auto shared = std::make_shared<const std::vector<Model>>(std::move(models));
    (this->*show_)(shared);
    files_ = coming_;
    models_ = shared;
    if (show_ == &Document::showNew) {
        Q_EMIT opened();
    }
    Q_EMIT loaded();
    tellNotes(*shared);
}

/// Also the content of a scene that is made anew when the OpenGL context got lost.
void Document::fill(const Models& models)
{
    view_.window().setContent([models](HostScene& host) {
        SceneContent::clear(host);
        if (models) {
            SceneContent::add(host, *models);
        }
    });
    Q_EMIT replaced();
}

/// What was there comes back, to the last value, if the new content cannot be set up.
void Document::showNew(const Models& models)
{
    QByteArray before;
    view_.run([&](HostScene& host) {
        before = OruPropertiesFile::text(host.scene());
        SceneContent::forget(host);
        return true;
    });
    try {
        fill(models);
        view_.run([this](HostScene& host) {
            if (setUp_) {
                setUp_(host);
            } else {
                host.showFrom(QStringLiteral("iso"));
            }
            return true;
        });
    } catch (...) {
        putBack(before);
        throw;
    }
    setUpAgain_ = comingSetUpAgain_;
    view_.undo().clear();
}

void Document::putBack(const QByteArray& tree)
{
    fill(models_);
    view_.run([&](HostScene& host) {
        SceneContent::forget(host);
        OruPropertiesFile::load(host.scene(), tree, QStringLiteral("the former content"), nullptr);
        host.changed();
        return true;
    });
}

/// What was changed is taken back in the former content and made again in the new one, or, where that cannot
/// be set up, in the former one.
void Document::showAgain(const Models& models)
{
    QUndoStack& edits = view_.undo().edits();
    const int made = edits.index();
    edits.setIndex(0);
    const auto makeAgain = qScopeGuard([&] { edits.setIndex(made); });
    const QByteArray before = OruPropertiesFile::text(view_.host().scene());
    try {
        view_.run([&](HostScene& host) {
            const Kelvar::Math::Matrix shown = host.view();
            fill(models);
            if (setUpAgain_) {
                setUpAgain_(host);
            }
            host.setView(shown);
            return true;
        });
    } catch (...) {
        putBack(before);
        throw;
    }
}

void Document::tellNotes(const std::vector<Model>& models)
{
    QStringList notes;
    for (const Model& model : models) {
        for (const QString& note : model.notes) {
            notes.append(QStringLiteral("%1: %2").arg(model.name, note));
        }
    }
    if (!notes.isEmpty()) {
        Q_EMIT noted(notes.join(QLatin1Char('\n')));
    }
}

/// A file that was replaced by another of its name has to be watched anew.
void Document::watch()
{
    if (!watcher_.files().isEmpty()) {
        watcher_.removePaths(watcher_.files());
    }
    if (!files_.isEmpty()) {
        watcher_.addPaths(files_);
    }
}
