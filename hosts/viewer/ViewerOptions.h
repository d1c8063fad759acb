#pragma once

#include "contracts/core/OruMouse.h"
#include "hosts/host/InputNames.h"
#include "hosts/viewer/window/HelpTopic.h"

#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

/// What a command line asks the viewer for.
struct ViewerOptions
{
    /// A command line that makes no sense; what() says why, in one line.
    struct Error : std::runtime_error
    {
        using std::runtime_error::runtime_error;
    };

    /// Something done with the mouse: a drag, or turns of the wheel in the middle of the view.
    struct Gesture
    {
        OruMouse::Button button = OruMouse::ButtonPick;
        unsigned int modifiers = 0;
        /// In pixels of the picture from its upper left corner, y downwards.
        QPoint from;
        QPoint to;
        /// Steps of the wheel; other than 0 for a turn of the wheel, 0 for a drag.
        int wheelSteps = 0;
    };

    /// What the viewer's window does beyond every view.
    static constexpr hostkit::InputNames::Gesture marking = {hostkit::InputEvent::Kind::Click,
                                                             OruMouse::ButtonPick, 0, 0, "marks a part"};
    static constexpr hostkit::InputNames::Gesture closing = {
        hostkit::InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 1, 'Q', "closes the window"};

    /// Reads the arguments behind the program's name. Throws Error.
    static ViewerOptions parse(const QStringList& arguments);

    /// Throws Error when a file would be written that is also read, or two outputs would be one file, be it
    /// those of two models. What is no regular file, such as /dev/null, may be named any number of times.
    void checkOutputs() const;

    /// Whether each model gets a picture of its own: --out holds namePattern.
    bool onePictureEach() const;

    /// What is to be done for each model on its own if each gets a picture, with its name in the outputs;
    /// else these options alone.
    std::vector<ViewerOptions> eachPicture() const;

    /// A model that comes in on standard input, and the name that it has there.
    static constexpr const char* standardInput = "-";
    static constexpr const char* standardInputName = "stdin";

    /// In the name of a picture: the name of the model's file, without folder and suffix.
    static constexpr const char* namePattern = "{name}";

    /// Samples of a picture's pixel, unless a number is given.
    static constexpr int usualSamples = 8;

    /// Whether a picture is made, or a recording played, and no window is opened.
    bool windowless() const { return !outFile.isEmpty() || !replayFile.isEmpty(); }

    /// Whether there is nothing to do without a model.
    bool needsModel() const;

    /// What there is to tell of the command line; the first topic is what the program does.
    static std::vector<HelpTopic> topics();

    /// The text for --help: the topics, and what the view answers to.
    static QString help();

    QStringList models;
    /// Shown where neither the command line nor a recording nor a state names one; empty: none.
    QString defaultModel;
    QSize size{1280, 800};
    bool sizeNamed = false;
    /// A name that HostScene::showFrom knows; empty: not given.
    QString position;
    /// The axis that points up in all models, a name that UpAxis knows; empty: as their files have it.
    QString up;
    /// In the order of the command line.
    std::vector<Gesture> gestures;
    /// Path and value of each property to set.
    std::vector<std::pair<QString, QString>> settings;
    /// MeshVisualization::edges of all parts; empty: as they are.
    QString edges;
    QString stateFile;
    QString saveStateFile;
    QString outFile;
    /// Nothing: usualSamples in a picture, in a window what the machine draws without effort.
    std::optional<int> samples;
    bool transparent = false;
    double overlayScale = 1.0;
    /// Resolution of a picture in pixels an inch; 0: not given.
    int dotsPerInch = 0;
    /// Suffix that tells the format of what comes in on standard input; empty: not given.
    QString format;
    bool withTriad = true;
    /// A window with nothing but the view.
    bool bare = false;
    /// Where the session is recorded to, and the recording that is played; empty: none.
    QString recordFile;
    QString replayFile;
    bool showHelp = false;
    bool showVersion = false;
};
