#include "hosts/viewer/Viewer.h"

#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/host/GlPlatform.h"
#include "hosts/host/InputEvent.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/InputNames.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/host/PictureOptions.h"
#include "hosts/host/PictureWriter.h"
#include "hosts/host/SceneWindow.h"
#include "hosts/host/WindowCoordinates.h"
#include "hosts/import/ImportJob.h"
#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/viewer/LoadingReport.h"
#include "hosts/viewer/window/Document.h"
#include "hosts/viewer/window/OwnFiles.h"
#include "hosts/viewer/window/SceneContent.h"
#include "hosts/viewer/window/StateFile.h"
#include "hosts/viewer/window/ViewerWindow.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

using hostkit::HostScene;
using hostkit::Model;

namespace {

/// A drag is fed as that many moves, as a hand would make it.
constexpr int movesPerDrag = 16;

constexpr int pollMilliseconds = 20;
constexpr int patienceMilliseconds = 1000;

const char* const loadingStopped = "loading was stopped";

/// What a person calls the model that is read from there.
const QString pipedTitle = QStringLiteral("standard input");

/// A hidden window is no larger than this; pictures do not depend on its size.
const QSize largestHidden(2048, 2048);

QString titleOf(const QStringList& models)
{
    QStringList names;
    for (const QString& model : models) {
        names.append(model == QLatin1String(ViewerOptions::standardInput) ? pipedTitle
                                                                          : QFileInfo(model).fileName());
    }
    return names.join(QStringLiteral(", "));
}

/// The view alone. Closes at ViewerOptions::closing.
class BareWindow : public hostkit::SceneWindow
{
protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const hostkit::InputNames::Gesture& closing = ViewerOptions::closing;
        if (event->key() == closing.key &&
            hostkit::InputNames::bitsOf(event->modifiers()) == closing.modifiers) {
            close();
        } else {
            SceneWindow::keyPressEvent(event);
        }
    }
};

void tellNotes(const QStringList& files, const std::vector<Model>& models)
{
    for (std::size_t i = 0; i < models.size(); ++i) {
        for (const QString& note : models[i].notes) {
            std::cerr << "view: " << qPrintable(files[static_cast<int>(i)]) << ": " << qPrintable(note)
                      << std::endl;
        }
    }
}

/// So that a state tells what it was saved with.
void nameFiles(std::vector<Model>& models, const QStringList& files)
{
    for (std::size_t i = 0; i < models.size(); ++i) {
        const QString& file = files[static_cast<int>(i)];
        if (file != QLatin1String(ViewerOptions::standardInput)) {
            models[i].properties.emplace_back(SceneContent::fileKey, QFileInfo(file).absoluteFilePath());
        }
    }
}

std::vector<Model> takeModels(hostkit::ImportJob& job, const QStringList& files,
                              const std::optional<PipedModel>& piped)
{
    try {
        std::vector<Model> models = job.take();
        tellNotes(files, models);
        nameFiles(models, files);
        return models;
    } catch (const hostkit::ModelImporter::Error& error) {
        QString text = QString::fromUtf8(error.what());
        if (piped) {
            text.replace(piped->file(), pipedTitle);
        }
        throw Viewer::Failure(Viewer::BadInput, text);
    } catch (const std::bad_alloc&) {
        throw Viewer::Failure(Viewer::BadInput, QStringLiteral("the models do not fit into memory"));
    }
}

/// Ends the program, at the latest after a moment: the work may hang where nothing reaches it, as on a
/// network drive that does not answer.
[[noreturn]] void stopLoading(hostkit::ImportJob& job, std::optional<PipedModel>& piped)
{
    job.cancel();
    for (int waited = 0; !job.finished(); waited += pollMilliseconds) {
        if (waited > patienceMilliseconds) {
            piped.reset();
            std::cerr << "view: " << loadingStopped << std::endl;
            std::_Exit(Viewer::Stopped);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(pollMilliseconds));
    }
    throw Viewer::Failure(Viewer::Stopped, QLatin1String(loadingStopped));
}

void tellLoading(hostkit::SceneWindow& view, LoadingReport& report, const QString& title, float share)
{
    report.tell(share);
    if (report.due()) {
        view.setTitle(QStringLiteral("%1 - loading %2 %").arg(title).arg(qRound(share * 100)));
    }
}

void prepare(hostkit::SceneWindow& view, const ViewerOptions& options)
{
    if (options.samples) {
        view.setSamples(*options.samples);
    }
    view.setTitle(titleOf(options.models));
}

/// Such as /dev/stdout: nothing may follow the picture there.
bool isStandardOutput(const QString& file)
{
    struct stat named = {};
    struct stat standard = {};
    return ::stat(QFile::encodeName(file).constData(), &named) == 0 &&
           ::fstat(STDOUT_FILENO, &standard) == 0 && named.st_dev == standard.st_dev &&
           named.st_ino == standard.st_ino;
}

template <typename Window>
void resizeTo(Window& window, const QSize& pixels)
{
    window.resize((QSizeF(pixels) / window.devicePixelRatio()).toSize());
}

QSize sizeOf(HostScene& host)
{
    const OruOglViewport& viewport = host.context().viewport;
    return {viewport.width, viewport.height};
}

void playDrag(hostkit::InputFeed& input, const ViewerOptions::Gesture& drag, const QSize& size)
{
    const auto pixel = [&](const QPointF& at) { return hostkit::WindowCoordinates::pixelAt(at, 1.0, size); };
    input.press(drag.button, drag.modifiers, pixel(drag.from));
    for (int i = 1; i <= movesPerDrag; ++i) {
        const QPointF way = QPointF(drag.to - drag.from) * i / movesPerDrag;
        input.move(drag.modifiers, pixel(QPointF(drag.from) + way));
    }
    input.release(drag.button, drag.modifiers, pixel(drag.to));
}

} // namespace

Viewer::Viewer(const ViewerOptions& options)
    : options_(options)
{
    if (!options_.replayFile.isEmpty()) {
        readRecording();
    }
    readState();
    options_.checkOutputs();
    checkPictures();
}

/// Refuses, ahead of all work, what no picture can be written as.
void Viewer::checkPictures() const
{
    for (const ViewerOptions& one : options_.eachPicture()) {
        QString reason;
        const hostkit::PictureWriter writer(one.outFile);
        if (!one.outFile.isEmpty() && !writer.accepts(one.size, one.transparent, &reason)) {
            throw ViewerOptions::Error("--out " + reason.toStdString());
        }
    }
}

void Viewer::readRecording()
{
    try {
        replay_ = hostkit::Recording::read(options_.replayFile);
    } catch (const hostkit::Recording::Error& error) {
        throw Failure(BadInput, QString::fromUtf8(error.what()));
    }
    takeOver(*replay_);
}

/// A state that stands in the place of MODEL, or alone, brings its models along. Where it brings none, a
/// window tells why when it is there.
void Viewer::readState()
{
    QStringList& models = options_.models;
    if (models.size() == 1 && options_.stateFile.isEmpty() && StateFile::looksLikeOne(models.first())) {
        options_.stateFile = models.takeFirst();
    }
    if (!models.isEmpty() || options_.stateFile.isEmpty()) {
        return;
    }
    QString reason;
    models = StateFile::modelsOf(options_.stateFile, &reason);
    if (models.isEmpty() && !options_.defaultModel.isEmpty()) {
        models.append(options_.defaultModel);
    }
    if (models.isEmpty() && (options_.windowless() || options_.bare)) {
        throw Failure(BadInput, reason);
    }
}

/// What the command line leaves open is as it was when the recording was made.
void Viewer::takeOver(const hostkit::Recording& recording)
{
    if (options_.models.isEmpty()) {
        options_.models = recording.models;
    }
    if (options_.models.isEmpty() && !options_.defaultModel.isEmpty()) {
        options_.models.append(options_.defaultModel);
    }
    if (!options_.sizeNamed) {
        options_.size = recording.size;
    }
    if (options_.position.isEmpty()) {
        options_.position = recording.position;
    }
    QString reason;
    if (!recording.edges.isEmpty() &&
        !hostkit::MeshVisualization::edgeKind.accepts(recording.edges, &reason)) {
        throw Failure(BadInput, QStringLiteral("%1: edges %2").arg(options_.replayFile, reason));
    }
    if (options_.edges.isEmpty()) {
        options_.edges = recording.edges;
    }
    options_.settings.insert(options_.settings.begin(), recording.settings.begin(), recording.settings.end());
}

Viewer::ExitCode Viewer::run()
{
    if (options_.windowless()) {
        return makePictures();
    }
    return options_.bare ? showBare() : showWindow();
}

Viewer::ExitCode Viewer::makePictures()
{
    hostkit::OffscreenView view(options_.size.boundedTo(largestHidden));
    const int largest = hostkit::GlPlatform::largestPicture();
    if (std::max(options_.size.width(), options_.size.height()) > largest) {
        throw Failure(NoOutput,
                      QStringLiteral("--size %1x%2: a picture can be %3 pixels wide and high at most")
                          .arg(options_.size.width())
                          .arg(options_.size.height())
                          .arg(largest));
    }
    HostScene empty;
    checkSettings(empty);
    if (options_.onePictureEach()) {
        return makeEachPicture();
    }
    makePicture();
    return Done;
}

Viewer::ExitCode Viewer::makeEachPicture()
{
    const std::vector<ViewerOptions> each = options_.eachPicture();
    ExitCode worst = Done;
    for (std::size_t i = 0; i < each.size(); ++i) {
        options_ = each[i];
        std::cerr << i + 1 << " of " << each.size() << ' ' << qPrintable(titleOf(options_.models))
                  << std::endl;
        worst = std::max(worst, tryPicture());
    }
    return worst;
}

/// A failure of one picture is told and ends nothing else.
Viewer::ExitCode Viewer::tryPicture()
{
    try {
        makePicture();
        return Done;
    } catch (const Failure& failure) {
        if (failure.code == Stopped) {
            throw;
        }
        std::cerr << "view: " << failure.what() << std::endl;
        return failure.code;
    } catch (const std::exception& error) {
        std::cerr << "view: " << qPrintable(options_.models.value(0)) << ": " << error.what() << std::endl;
        return NoOutput;
    }
}

void Viewer::makePicture()
{
    HostScene host;
    host.setSize(options_.size);
    SceneContent::add(host, loadModels());
    turnUp(host);
    arrange(host);
    hostkit::InputFeed input(host);
    recordFailure_.clear();
    input.setListener(startRecording([&] { return sizeOf(host); }));
    playGestures(input, options_.size);
    playRecording(host, input);
    saveState(host);
    if (!options_.outFile.isEmpty()) {
        hostkit::PictureOptions look;
        look.samples = options_.samples.value_or(ViewerOptions::usualSamples);
        look.overlayScale = options_.overlayScale;
        look.transparent = options_.transparent;
        writePicture(host.picture(options_.size, look));
    }
    checkRecorded();
}

/// The files of the models; what comes in on standard input is read here and lies in `piped`.
QStringList Viewer::modelFiles(std::optional<PipedModel>& piped, const StopSignals& stop) const
{
    QStringList files = options_.models;
    const auto place = files.indexOf(QLatin1String(ViewerOptions::standardInput));
    if (options_.format.isEmpty() || place < 0) {
        return files;
    }
    piped.emplace(QLatin1String(ViewerOptions::standardInputName), options_.format);
    QString error;
    if (!piped->fill(STDIN_FILENO, stop, &error)) {
        throw stop.raised() ? Failure(Stopped, QLatin1String(loadingStopped))
                            : Failure(BadInput, pipedTitle + QStringLiteral(": ") + error);
    }
    files[place] = piped->file();
    return files;
}

std::vector<Model> Viewer::loadModels() const
{
    const StopSignals stop;
    std::optional<PipedModel> piped;
    hostkit::ImportJob job(modelFiles(piped, stop));
    LoadingReport report(titleOf(options_.models));
    while (!job.finished() && !stop.raised()) {
        report.tell(job.share());
        std::this_thread::sleep_for(std::chrono::milliseconds(pollMilliseconds));
    }
    if (stop.raised()) {
        stopLoading(job, piped);
    }
    report.clear();
    return takeModels(job, options_.models, piped);
}

Viewer::ExitCode Viewer::showBare()
{
    const StopSignals stop;
    const QString title = titleOf(options_.models);
    std::exception_ptr failure;
    std::vector<Model> models;
    bool loaded = false;
    std::optional<PipedModel> piped;
    hostkit::ImportJob job(modelFiles(piped, stop));
    LoadingReport report(title);

    BareWindow view;
    prepare(view, options_);
    resizeTo(view, options_.size);
    QTimer poll;
    const auto look = [&] {
        try {
            view.run([this](HostScene& host) { return checkSettings(host); });
            if (!job.finished()) {
                tellLoading(view, report, title, job.share());
                return;
            }
            poll.stop();
            report.clear();
            models = takeModels(job, options_.models, piped);
            piped.reset();
            startSession(view, models);
            loaded = true;
            view.setTitle(title);
        } catch (...) {
            failure = std::current_exception();
            QCoreApplication::quit();
        }
    };
    QObject::connect(&poll, &QTimer::timeout, look);

    // A signal ends the program as closing the window does, with the state saved.
    QSocketNotifier stopNotifier(stop.descriptor(), QSocketNotifier::Read);
    QObject::connect(&stopNotifier, &QSocketNotifier::activated, [&] {
        stopNotifier.setEnabled(false);
        view.close();
    });
    poll.start(pollMilliseconds);
    view.show();
    QCoreApplication::exec();
    if (failure) {
        std::rethrow_exception(failure);
    }
    if (!loaded) {
        stopLoading(job, piped);
    }
    endSession(view);
    return Done;
}

/// A model that cannot be shown is told in the window, which stays.
Viewer::ExitCode Viewer::showWindow()
{
    const StopSignals stop;
    std::optional<PipedModel> piped;
    const QStringList files = modelFiles(piped, stop);
    ViewerWindow window;
    hostkit::SceneWindow& view = window.view().window();
    prepare(view, options_);
    view.run([this](HostScene& host) { return checkSettings(host); });
    if (options_.sizeNamed) {
        resizeTo(window, options_.size);
    }
    bool shown = false;
    Failure failure(Stopped, QLatin1String(loadingStopped));
    QObject::connect(&window.document(), &Document::loaded, [&] { shown = true; });
    QObject::connect(&window.document(), &Document::failed,
                     [&](const QString& reason) { failure = Failure(BadInput, reason); });
    if (!files.isEmpty()) {
        window.document().open(
            files, [&](HostScene& host) { arrangeSession(view, host); },
            [this](HostScene& host) { applySettings(host); });
    } else if (!options_.stateFile.isEmpty()) {
        window.document().openState(options_.stateFile);
    }
    QSocketNotifier stopNotifier(stop.descriptor(), QSocketNotifier::Read);
    QObject::connect(&stopNotifier, &QSocketNotifier::activated, [&] {
        stopNotifier.setEnabled(false);
        window.close();
    });
    window.show();
    QCoreApplication::exec();
    const bool asked = !files.isEmpty() || !options_.stateFile.isEmpty();
    if (asked && !shown) {
        throw failure; // and no state of an empty scene takes the place of a former one
    }
    endSession(view);
    return Done;
}

/// What there is to do when the window has closed.
void Viewer::endSession(hostkit::SceneWindow& view) const
{
    if (!view.hasScene() && !options_.saveStateFile.isEmpty()) {
        throw Failure(NoOutput, QStringLiteral("the state went with the OpenGL context"));
    }
    view.run([this](HostScene& host) {
        saveState(host);
        return false;
    });
    checkRecorded();
}

/// `models` have to live as long as the window, which may fill another scene with them.
void Viewer::startSession(hostkit::SceneWindow& view, const std::vector<Model>& models)
{
    view.setContent([&models](HostScene& host) { SceneContent::add(host, models); });
    view.run([&](HostScene& host) {
        arrangeSession(view, host);
        return true;
    });
}

void Viewer::arrangeSession(hostkit::SceneWindow& view, HostScene& host)
{
    turnUp(host);
    arrange(host);
    view.setInputListener(startRecording([&view] { return sizeOf(view.host()); }));
    playGestures(view.input(), sizeOf(host));
}

/// Refuses settings that can be told to be wrong without the models; never asks for a repaint.
bool Viewer::checkSettings(HostScene& host) const
{
    QString reason;
    for (std::size_t i = 0; i < options_.settings.size(); ++i) {
        if (!host.accepts(options_.settings[i].first, options_.settings[i].second, &reason)) {
            throw badSetting(i, reason);
        }
    }
    return false;
}

/// The settings of a recording come first.
Viewer::Failure Viewer::badSetting(std::size_t index, const QString& reason) const
{
    const bool recorded = replay_ && index < replay_->settings.size();
    const QString origin = recorded ? options_.replayFile + QStringLiteral(": set") : QStringLiteral("--set");
    return Failure(BadInput, QStringLiteral("%1 %2: %3").arg(origin, options_.settings[index].first, reason));
}

/// --up comes behind what a recording sets and ahead of --set, and into a recording that is made.
void Viewer::turnUp(HostScene& host)
{
    if (options_.up.isEmpty()) {
        return;
    }
    const std::size_t recorded = replay_ ? replay_->settings.size() : 0;
    const OruVisList& all = host.scene().render.visualizations;
    for (unsigned int i = 0; i < all.size(); ++i) {
        if (all.at(i)->type() == hostkit::ModelList::typeString) {
            options_.settings.emplace(options_.settings.begin() + static_cast<std::ptrdiff_t>(recorded),
                                      all.at(i)->path() + QStringLiteral("/up"), options_.up);
        }
    }
}

/// Sets the scene up as the options ask.
void Viewer::arrange(HostScene& host) const
{
    applySettings(host);
    if (!options_.position.isEmpty()) {
        host.showFrom(options_.position);
    } else if (options_.stateFile.isEmpty()) {
        host.showFrom(QStringLiteral("iso"));
    }
}

void Viewer::applySettings(HostScene& host) const
{
    QString error;
    SceneContent::dress(host, options_.stateFile.isEmpty());
    if (!options_.stateFile.isEmpty()) {
        const OwnFiles own(host);
        if (!host.load(options_.stateFile, &error)) {
            throw Failure(BadInput, error);
        }
    }
    if (!options_.withTriad) {
        OruVisList& all = host.scene().render.visualizations;
        all.erase(all.childByName(QStringLiteral("triad")));
    }
    if (!options_.edges.isEmpty()) {
        hostkit::ModelParts(host.scene().render.visualizations).setEdges(options_.edges);
    }
    for (std::size_t i = 0; i < options_.settings.size(); ++i) {
        if (!host.setValue(options_.settings[i].first, options_.settings[i].second, &error)) {
            throw badSetting(i, error);
        }
    }
}

/// The listener that records from now on; empty if nothing is to be recorded. `size` tells the pixels of the
/// view, now and at each event.
hostkit::InputFeed::Listener Viewer::startRecording(const std::function<QSize()>& size)
{
    if (options_.recordFile.isEmpty()) {
        return {};
    }
    hostkit::Recording head;
    head.size = size();
    for (const QString& model : options_.models) {
        head.models.append(QFileInfo(model).absoluteFilePath());
    }
    head.position = options_.position;
    head.edges = options_.edges;
    head.settings = options_.settings;
    try {
        record_ = std::make_unique<hostkit::RecordingWriter>(options_.recordFile, head);
    } catch (const hostkit::Recording::Error& error) {
        throw Failure(NoOutput, QString::fromUtf8(error.what()));
    }
    return [this, size](const hostkit::InputEvent& event) {
        try {
            if (recordFailure_.isEmpty()) {
                record_->write(event, size());
            }
        } catch (const hostkit::Recording::Error& error) {
            recordFailure_ = QString::fromUtf8(error.what()); // the session goes on without
            std::cerr << "view: recording has stopped: " << error.what() << std::endl;
        }
    };
}

void Viewer::checkRecorded() const
{
    if (!recordFailure_.isEmpty()) {
        throw Failure(NoOutput, recordFailure_);
    }
}

void Viewer::playRecording(HostScene& host, hostkit::InputFeed& input) const
{
    if (!replay_) {
        return;
    }
    for (const hostkit::InputEvent& event : replay_->events(sizeOf(host))) {
        // A window would have painted by the next event and brought the context up to date.
        if (input.apply(event)) {
            host.changed();
        }
    }
}

void Viewer::playGestures(hostkit::InputFeed& input, const QSize& view) const
{
    for (const ViewerOptions::Gesture& gesture : options_.gestures) {
        if (gesture.wheelSteps == 0) {
            playDrag(input, gesture, view);
        } else {
            input.wheel(gesture.wheelSteps, 0, QPoint(view.width() / 2, view.height() / 2));
        }
    }
}

void Viewer::saveState(const HostScene& host) const
{
    QString error;
    if (!options_.saveStateFile.isEmpty() && !host.save(options_.saveStateFile, &error)) {
        throw Failure(NoOutput, error);
    }
}

void Viewer::writePicture(const QImage& picture) const
{
    if (picture.isNull()) {
        throw Failure(NoOutput, QStringLiteral("the picture could not be drawn"));
    }
    hostkit::PictureWriter writer(options_.outFile);
    writer.setText(QStringLiteral("Title"), titleOf(options_.models));
    writer.setText(QStringLiteral("Software"), QStringLiteral("Kelvar view " KELVAR_VERSION));
    writer.setDotsPerInch(options_.dotsPerInch > 0
                              ? options_.dotsPerInch
                              : hostkit::PictureWriter::usualDotsPerInch * options_.overlayScale);
    QString error;
    if (!writer.write(picture, &error)) {
        throw Failure(NoOutput, error);
    }
    if (!isStandardOutput(options_.outFile)) {
        std::cout << qPrintable(QFileInfo(options_.outFile).absoluteFilePath()) << std::endl;
    }
}
