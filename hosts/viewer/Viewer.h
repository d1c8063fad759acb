#pragma once

#include "hosts/host/HostScene.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/Recording.h"
#include "hosts/host/RecordingWriter.h"
#include "hosts/host/SceneWindow.h"
#include "hosts/mesh/Model.h"
#include "hosts/viewer/PipedModel.h"
#include "hosts/viewer/StopSignals.h"
#include "hosts/viewer/ViewerOptions.h"

#include <QSize>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

class OruVisList;

/// The program: loads the models, sets the scene up as the options ask and shows it, in a window or as a
/// picture.
class Viewer
{
public:
    /// Why the program ended.
    enum ExitCode
    {
        Done = 0,
        WrongUsage = 1,
        BadInput = 2,
        NoOutput = 3,
        Stopped = 130
    };

    /// Something that ends the program; what() is for the user.
    struct Failure : std::runtime_error
    {
        Failure(ExitCode exitCode, const QString& text)
            : std::runtime_error(text.toStdString())
            , code(exitCode)
        {}
        ExitCode code;
    };

    /// Reads the recording that is to be played, if there is one, and which models a state names that comes
    /// without a MODEL. Needs a QGuiApplication. Throws Failure, or ViewerOptions::Error when an output would
    /// overwrite an input, or a picture can have no such format.
    explicit Viewer(const ViewerOptions& options);

    /// Needs a QGuiApplication that GlPlatform has prepared. Of several pictures it tells each failure and
    /// answers the highest code. Throws Failure.
    ExitCode run();

private:
    ExitCode makePictures();
    ExitCode makeEachPicture();
    ExitCode tryPicture();
    void makePicture();
    ExitCode showBare();
    ExitCode showWindow();
    void startSession(hostkit::SceneWindow& view, const std::vector<hostkit::Model>& models);
    void arrangeSession(hostkit::SceneWindow& view, hostkit::HostScene& host);
    void endSession(hostkit::SceneWindow& view) const;
    void checkPictures() const;
    QStringList modelFiles(std::optional<PipedModel>& piped, const StopSignals& stop) const;
    std::vector<hostkit::Model> loadModels() const;
    bool checkSettings(hostkit::HostScene& host) const;
    Failure badSetting(std::size_t index, const QString& reason) const;
    void turnUp(hostkit::HostScene& host);
    void arrange(hostkit::HostScene& host) const;
    void applySettings(hostkit::HostScene& host) const;
    void playGestures(hostkit::InputFeed& input, const QSize& view) const;
    void playRecording(hostkit::HostScene& host, hostkit::InputFeed& input) const;
    void readRecording();
    void readState();
    void takeOver(const hostkit::Recording& recording);
    void checkRecorded() const;
    hostkit::InputFeed::Listener startRecording(const std::function<QSize()>& size);
    void saveState(const hostkit::HostScene& host) const;
    void writePicture(const QImage& picture) const;

    ViewerOptions options_;
    std::optional<hostkit::Recording> replay_;
    std::unique_ptr<hostkit::RecordingWriter> record_;
    /// Why recording has stopped; empty: it has not.
    QString recordFailure_;
};
