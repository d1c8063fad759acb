#include "hosts/viewer/ViewerOptions.h"

#include "hosts/host/HostScene.h"
#include "hosts/mesh/MeshVisualization.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

using hostkit::InputNames;

namespace {

constexpr int mostPixels = 65536;
constexpr int mostWheelSteps = 1000;

[[noreturn]] void fail(const QString& text)
{
    throw ViewerOptions::Error(text.toStdString());
}

QPoint readPoint(const QString& text)
{
    const std::optional<QPoint> point = InputNames::point(text);
    if (!point) {
        fail(QStringLiteral("\"%1\" is not a position such as 640,400").arg(text));
    }
    return *point;
}

void readSize(ViewerOptions& options, const QStringList& values)
{
    const std::optional<QSize> size = InputNames::size(values[0], mostPixels);
    if (!size) {
        fail(QStringLiteral("\"%1\" is not a size such as 1280x800").arg(values[0]));
    }
    options.size = *size;
    options.sizeNamed = true;
}

void readPosition(ViewerOptions& options, const QStringList& values)
{
    const QStringList known = hostkit::HostScene::positions();
    if (!known.contains(values[0])) {
        fail(QStringLiteral("\"%1\" is not a position; there are %2")
                 .arg(values[0], known.join(QStringLiteral(", "))));
    }
    options.position = values[0];
}

void readDrag(ViewerOptions& options, const QStringList& values)
{
    ViewerOptions::Gesture drag;
    QStringList parts = values[0].toLower().split(QLatin1Char('+'));
    const std::optional<OruMouse::Button> button = InputNames::button(parts.takeFirst());
    if (!button) {
        fail(QStringLiteral("\"%1\" does not start with %2")
                 .arg(values[0], InputNames::buttonList(QStringLiteral("or"))));
    }
    drag.button = *button;
    for (const QString& part : parts) {
        const unsigned int modifier = InputNames::modifier(part).value_or(0) & InputNames::dragModifiers;
        if (modifier == 0) {
            fail(QStringLiteral("\"%1\" is not a modifier; there are %2")
                     .arg(part, InputNames::modifierList(InputNames::dragModifiers, QStringLiteral("and"))));
        }
        drag.modifiers |= modifier;
    }
    drag.from = readPoint(values[1]);
    drag.to = readPoint(values[2]);
    options.gestures.push_back(drag);
}

void readWheel(ViewerOptions& options, const QStringList& values)
{
    ViewerOptions::Gesture turn;
    bool good = false;
    turn.wheelSteps = values[0].toInt(&good);
    if (!good || turn.wheelSteps == 0 || std::abs(turn.wheelSteps) > mostWheelSteps) {
        fail(QStringLiteral("\"%1\" is not a number of wheel steps").arg(values[0]));
    }
    options.gestures.push_back(turn);
}

void readSetting(ViewerOptions& options, const QStringList& values)
{
    const auto setting = InputNames::assignment(values[0]);
    if (!setting) {
        fail(QStringLiteral("\"%1\" is not of the form path/key=value").arg(values[0]));
    }
    options.settings.push_back(*setting);
}

void readEdges(ViewerOptions& options, const QStringList& values)
{
    options.edges = values[0] == QLatin1String("on") ? QStringLiteral("edges") : values[0];
    if (!hostkit::MeshVisualization::edgeKind.accepts(options.edges)) {
        fail(QStringLiteral("\"%1\" is none of off, on and wireframe").arg(values[0]));
    }
}

struct Option
{
    const char* name;
    /// How many values follow, and what the help calls them.
    int count;
    const char* values;
    const char* help;
    void (*read)(ViewerOptions&, const QStringList&);
};

const std::array<Option, 14> optionTable = {{
    {"--size", 1, "WxH", "pixels of the window or picture, 1280x800 unless given", readSize},
    {"--position", 1, "NAME", "look from x, -x, y, -y, z, -z, iso (above, front right) or fit", readPosition},
    {"--drag", 3, "BUTTON[+MOD] X0,Y0 X1,Y1",
     "drag with {buttons}, and {modifiers}; pixels from the upper left", readDrag},
    {"--wheel", 1, "N", "turn the wheel N steps, towards you if negative", readWheel},
    {"--edges", 1, "off|on|wireframe", "show all parts with their edges, or with nothing but lines",
     readEdges},
    {"--state", 1, "FILE", "load settings and view from a file",
     [](ViewerOptions& o, const QStringList& v) { o.stateFile = v[0]; }},
    {"--save-state", 1, "FILE", "save settings and view to a file at the end",
     [](ViewerOptions& o, const QStringList& v) { o.saveStateFile = v[0]; }},
    {"--set", 1, "PATH/KEY=VALUE", "set a property, such as render/textInfo=true", readSetting},
    {"--out", 1, "PNG", "write a picture instead of opening a window",
     [](ViewerOptions& o, const QStringList& v) { o.outFile = v[0]; }},
    {"--record", 1, "FILE", "record what is done to the view, one event a line",
     [](ViewerOptions& o, const QStringList& v) { o.recordFile = v[0]; }},
    {"--replay", 1, "FILE", "play a recording in a hidden window; --size may differ from its own",
     [](ViewerOptions& o, const QStringList& v) { o.replayFile = v[0]; }},
    {"--default-model", 1, "FILE", "the model to show when no MODEL is named",
     [](ViewerOptions& o, const QStringList& v) { o.defaultModel = v[0]; }},
    {"--help", 0, "", "tell this", [](ViewerOptions& o, const QStringList&) { o.showHelp = true; }},
    {"--version", 0, "", "tell the version",
     [](ViewerOptions& o, const QStringList&) { o.showVersion = true; }},
}};

/// Takes the option at the head of `rest`, and its values, off the list.
void readOption(ViewerOptions& options, QStringList& rest)
{
    QString name = rest.takeFirst();
    QStringList values;
    if (const auto joined = InputNames::assignment(name)) {
        name = joined->first;
        values.append(joined->second);
    }
    const auto option = std::find_if(optionTable.begin(), optionTable.end(),
                                     [&](const Option& row) { return name == QLatin1String(row.name); });
    if (option == optionTable.end()) {
        fail(QStringLiteral("there is no option %1").arg(name));
    }
    while (values.size() < option->count && !rest.isEmpty()) {
        values.append(rest.takeFirst());
    }
    if (values.size() != option->count || values.contains(QString())) {
        fail(option->count == 0 ? QStringLiteral("%1 takes no value").arg(name)
                                : QStringLiteral("%1 needs %2").arg(name, QLatin1String(option->values)));
    }
    option->read(options, values);
}

/// A name that all names of one file share; empty for what is no regular file.
QString identity(const QString& file)
{
    const QFileInfo info(file);
    if (info.exists()) {
        return info.isFile() ? info.canonicalFilePath() : QString();
    }
    return file.isEmpty() ? QString() : QDir::cleanPath(info.absoluteFilePath());
}

/// What there is to write or do, and behind it, or on a line of its own below, what it is for.
QString helpLine(const QString& what, const char* effect)
{
    const QString head = QStringLiteral("  ") + what.trimmed();
    return (head.size() > 26 ? head + QStringLiteral("\n%1").arg(QString(), 28) : head.leftJustified(28)) +
           QLatin1String(effect) + QLatin1Char('\n');
}

} // namespace

ViewerOptions ViewerOptions::parse(const QStringList& arguments)
{
    ViewerOptions options;
    QStringList rest = arguments;
    while (!rest.isEmpty()) {
        if (rest.first() == QLatin1String("--")) {
            options.models += rest.mid(1);
            break;
        }
        if (rest.first().startsWith(QLatin1Char('-')) && rest.first().size() > 1) {
            readOption(options, rest);
        } else {
            options.models.append(rest.takeFirst());
        }
    }
    // A recording brings its models along.
    if (options.models.isEmpty() && !options.defaultModel.isEmpty() && options.replayFile.isEmpty()) {
        options.models.append(options.defaultModel);
    }
    if (options.models.isEmpty() && options.replayFile.isEmpty() && !options.showHelp &&
        !options.showVersion) {
        fail(QStringLiteral("no MODEL is named"));
    }
    return options;
}

void ViewerOptions::checkOutputs() const
{
    QStringList taken;
    for (const QString& input : models + QStringList{stateFile, replayFile}) {
        taken.append(identity(input));
    }
    const std::pair<const char*, QString> outputs[] = {
        {"--save-state", saveStateFile}, {"--out", outFile}, {"--record", recordFile}};
    for (const auto& [option, file] : outputs) {
        const QString name = identity(file);
        if (!name.isEmpty() && taken.contains(name)) {
            fail(QStringLiteral("%1 %2 would overwrite a file that is named as something else, too")
                     .arg(QLatin1String(option), file));
        }
        taken.append(name);
    }
}

QString ViewerOptions::help()
{
    QString text = QStringLiteral("Usage: view MODEL... [options]\n\n"
                                  "Shows models of any format that assimp reads.\n\n");
    for (const Option& option : optionTable) {
        text +=
            helpLine(QStringLiteral("%1 %2").arg(QLatin1String(option.name), QLatin1String(option.values)),
                     option.help);
    }
    const QString word = QStringLiteral("or");
    text.replace(QStringLiteral("{buttons}"), InputNames::buttonList(word));
    text.replace(QStringLiteral("{modifiers}"), InputNames::modifierList(InputNames::dragModifiers, word));
    text += QStringLiteral(
        "\nState and settings come first, then the position, then drags and turns of the wheel in\n"
        "their order, then a recording. A recording says itself which models it shows, unless MODEL does.\n\n"
        "What is read must be a regular file. What is written may be a pipe or a device, too, but no\n"
        "file that is also read; a file that cannot be written whole stays as it was. Reading a model\n"
        "may take 3 seconds of processor time and 30 by the clock, and one more of each for each\n"
        "megabyte; half of the memory that is available, and its parts an eighth of it.\n\n"
        "In the window:\n");
    for (const InputNames::Gesture& gesture : InputNames::gestures) {
        text += helpLine(InputNames::text(gesture), gesture.effect);
    }
    for (const InputNames::Gesture& gesture : {marking, closing}) {
        text += helpLine(InputNames::text(gesture), gesture.effect);
    }
    text += QStringLiteral(
        "\nExit code: 0 done, 1 wrong usage, 2 a model, state or setting that cannot be used, 3 no\n"
        "display or the output cannot be written, 130 stopped.\n");
    return text;
}
