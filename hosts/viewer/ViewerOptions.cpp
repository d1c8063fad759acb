#include "hosts/viewer/ViewerOptions.h"

#include "hosts/host/HostScene.h"
#include "hosts/host/PictureOptions.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/UpAxis.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>

using hostkit::InputNames;
using hostkit::PictureOptions;

namespace {

constexpr int mostPixels = 65536;
constexpr int mostWheelSteps = 1000;
constexpr int mostDotsPerInch = 100000;
constexpr int mostSuffixCharacters = 16;

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
        fail(QStringLiteral("\"%1\" is not a size such as 1280x800, up to %2 pixels a side")
                 .arg(values[0])
                 .arg(mostPixels));
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

void readUp(ViewerOptions& options, const QStringList& values)
{
    QString reason;
    if (!hostkit::UpAxis::kind.accepts(values[0], &reason)) {
        fail(QStringLiteral("--up %1").arg(reason));
    }
    options.up = values[0];
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
        fail(QStringLiteral("\"%1\" is not a number of wheel steps, up to %2 either way")
                 .arg(values[0])
                 .arg(mostWheelSteps));
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

int readWhole(const QString& text, int most, const char* what)
{
    bool good = false;
    const int number = text.toInt(&good);
    if (!good || number < 1 || number > most) {
        fail(QStringLiteral("\"%1\" is not a number of %2 from 1 to %3")
                 .arg(text, QLatin1String(what))
                 .arg(most));
    }
    return number;
}

void readSamples(ViewerOptions& options, const QStringList& values)
{
    options.samples = readWhole(values[0], PictureOptions::mostSamples, "samples");
}

void readDotsPerInch(ViewerOptions& options, const QStringList& values)
{
    options.dotsPerInch = readWhole(values[0], mostDotsPerInch, "pixels an inch");
}

void readOverlayScale(ViewerOptions& options, const QStringList& values)
{
    constexpr double least = PictureOptions::smallestOverlayScale;
    constexpr double most = PictureOptions::largestOverlayScale;
    bool good = false;
    options.overlayScale = values[0].toDouble(&good);
    if (!good || !(options.overlayScale >= least && options.overlayScale <= most)) {
        fail(QStringLiteral("\"%1\" is not a scale from %2 to %3").arg(values[0]).arg(least).arg(most));
    }
}

void readFormat(ViewerOptions& options, const QStringList& values)
{
    const QString& suffix = values[0];
    const bool good = suffix.size() <= mostSuffixCharacters &&
                      std::all_of(suffix.begin(), suffix.end(),
                                  [](QChar c) { return c.unicode() < 128 && c.isLetterOrNumber(); });
    if (!good) {
        fail(QStringLiteral("\"%1\" is not a suffix such as stl").arg(suffix));
    }
    options.format = suffix.toLower();
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
    /// A second name of one letter; empty: none.
    const char* letter;
    /// How many values follow, and what the help calls them.
    int count;
    const char* values;
    const char* help;
    void (*read)(ViewerOptions&, const QStringList&);
};

const Option optionTable[] = {
    {"--size", "", 1, "WxH", "pixels of the window or picture: 1280x800, or as the window was last",
     readSize},
    {"--position", "", 1, "NAME", "look from x, -x, y, -y, z, -z, iso (above, front right) or fit",
     readPosition},
    {"--up", "", 1, "AXIS", "x, -x, y, -y, z or -z points up in the models, whatever their files say",
     readUp},
    {"--drag", "", 3, "BUTTON[+MOD] X0,Y0 X1,Y1",
     "drag with {buttons}, and {modifiers}; pixels from the upper left", readDrag},
    {"--wheel", "", 1, "N", "turn the wheel N steps, towards you if negative", readWheel},
    {"--edges", "", 1, "off|on|wireframe", "show all parts with their edges, or with nothing but lines",
     readEdges},
    {"--state", "", 1, "FILE", "load settings and view from a file, and its models if no MODEL is named",
     [](ViewerOptions& o, const QStringList& v) { o.stateFile = v[0]; }},
    {"--save-state", "", 1, "FILE", "save settings and view to a file at the end",
     [](ViewerOptions& o, const QStringList& v) { o.saveStateFile = v[0]; }},
    {"--set", "", 1, "PATH/KEY=VALUE", "set a property, such as render/textInfo=true", readSetting},
    {"--bare", "", 0, "", "open a window with nothing but the view",
     [](ViewerOptions& o, const QStringList&) { o.bare = true; }},
    {"--no-triad", "", 0, "", "leave the axes in the corner out",
     [](ViewerOptions& o, const QStringList&) { o.withTriad = false; }},
    {"--out", "", 1, "FILE", "write a PNG, JPEG, WebP or TIFF picture instead of opening a window",
     [](ViewerOptions& o, const QStringList& v) { o.outFile = v[0]; }},
    {"--samples", "", 1, "N", "samples of a pixel, which smooth edges; 8 in a picture unless given",
     readSamples},
    {"--transparent", "", 0, "", "leave the background of the picture out",
     [](ViewerOptions& o, const QStringList&) { o.transparent = true; }},
    {"--overlay-scale", "", 1, "N", "draw triad and images of the picture N times their size",
     readOverlayScale},
    {"--dpi", "", 1, "N", "pixels an inch that the picture tells, 96 times the scale unless given",
     readDotsPerInch},
    {"--format", "", 1, "SUFFIX", "format of the MODEL - , such as stl", readFormat},
    {"--record", "", 1, "FILE", "record what is done to the view, one event a line",
     [](ViewerOptions& o, const QStringList& v) { o.recordFile = v[0]; }},
    {"--replay", "", 1, "FILE", "play a recording in a hidden window; --size may differ from its own",
     [](ViewerOptions& o, const QStringList& v) { o.replayFile = v[0]; }},
    {"--default-model", "", 1, "FILE", "the model to show when no MODEL is named",
     [](ViewerOptions& o, const QStringList& v) { o.defaultModel = v[0]; }},
    {"--help", "-h", 0, "", "tell this", [](ViewerOptions& o, const QStringList&) { o.showHelp = true; }},
    {"--version", "", 0, "", "tell the version",
     [](ViewerOptions& o, const QStringList&) { o.showVersion = true; }},
};

/// Takes the option at the head of `rest`, and its values, off the list.
void readOption(ViewerOptions& options, QStringList& rest)
{
    QString name = rest.takeFirst();
    QStringList values;
    if (const auto joined = InputNames::assignment(name)) {
        name = joined->first;
        values.append(joined->second);
    }
    const auto option = std::find_if(std::begin(optionTable), std::end(optionTable), [&](const Option& row) {
        return name == QLatin1String(row.name) || name == QLatin1String(row.letter);
    });
    if (option == std::end(optionTable)) {
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

/// The name of the model's file, without folder and suffix; all of it where there is nothing before the
/// suffix.
QString nameOf(const QString& model)
{
    if (model == QLatin1String(ViewerOptions::standardInput)) {
        return QLatin1String(ViewerOptions::standardInputName);
    }
    const QFileInfo info(model);
    return info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
}

/// The files that are read and written, each once.
class TakenFiles
{
public:
    void read(const QString& file) { takers_.insert(identity(file), QString()); }

    /// `model` is what it is written for. Throws ViewerOptions::Error if the file is taken.
    void write(const char* option, const QString& file, const QString& model)
    {
        const QString name = identity(file);
        if (name.isEmpty()) {
            return;
        }
        const QString output = QLatin1String(option) + QLatin1Char(' ') + file;
        const auto taker = takers_.constFind(name);
        if (taker != takers_.constEnd() && !taker->isNull() && *taker != model) {
            fail(QStringLiteral("%1 would be written for %2 and for %3").arg(output, *taker, model));
        }
        if (taker != takers_.constEnd()) {
            fail(output + QStringLiteral(" would overwrite a file that is named as something else, too"));
        }
        takers_.insert(name, model);
    }

private:
    /// The model that a file is written for, by the file's identity; a null text: it is read.
    QHash<QString, QString> takers_;
};

/// Throws ViewerOptions::Error where options do not go together.
void checkTogether(const ViewerOptions& options)
{
    const auto piped = options.models.count(QLatin1String(ViewerOptions::standardInput));
    const bool patternOutside =
        (options.saveStateFile + options.recordFile).contains(QLatin1String(ViewerOptions::namePattern));
    const bool twice = QStringList(options.models).removeDuplicates() > 0;
    const struct
    {
        bool wrong;
        const char* reason;
    } rows[] = {
        {options.transparent && options.outFile.isEmpty(), "--transparent needs --out"},
        {options.overlayScale != 1.0 && options.outFile.isEmpty(), "--overlay-scale needs --out"},
        {options.dotsPerInch != 0 && options.outFile.isEmpty(), "--dpi needs --out"},
        {options.models.contains(QString()), "a MODEL has an empty name"},
        {patternOutside && !options.onePictureEach(), "{name} needs an --out with {name}"},
        {twice && options.onePictureEach(), "a MODEL is named twice, and has one picture"},
        {piped > 0 && options.format.isEmpty(), "the MODEL - needs --format, such as --format stl"},
        {piped == 0 && !options.format.isEmpty(), "--format needs the MODEL -"},
        {piped > 1, "the MODEL - can be read once only"},
        {piped > 0 && !options.recordFile.isEmpty(), "--record cannot tell where the MODEL - is"},
    };
    for (const auto& row : rows) {
        if (row.wrong) {
            fail(QLatin1String(row.reason));
        }
    }
}

HelpTopic optionTopic()
{
    const QString word = QStringLiteral("or");
    const QString buttons = InputNames::buttonList(word);
    const QString modifiers = InputNames::modifierList(InputNames::dragModifiers, word);
    HelpTopic topic = {QStringLiteral("Options"), QString(), {}};
    for (const Option& option : optionTable) {
        const QString letter =
            *option.letter ? QStringLiteral("%1, ").arg(QLatin1String(option.letter)) : QString();
        const QString what =
            letter + QLatin1String(option.name) + QLatin1Char(' ') + QLatin1String(option.values);
        QString effect = QString::fromLatin1(option.help);
        effect.replace(QStringLiteral("{buttons}"), buttons)
            .replace(QStringLiteral("{modifiers}"), modifiers);
        topic.rows.push_back({what.trimmed(), effect});
    }
    return topic;
}

HelpTopic viewTopic()
{
    HelpTopic topic = {QStringLiteral("In the window with --bare"),
                       QStringLiteral("F1 tells the keys of the window with menus."),
                       {}};
    const auto add = [&](const InputNames::Gesture& gesture) {
        topic.rows.push_back({InputNames::text(gesture), QString::fromLatin1(gesture.effect)});
    };
    std::for_each(InputNames::gestures.begin(), InputNames::gestures.end(), add);
    add(ViewerOptions::marking);
    add(ViewerOptions::closing);
    return topic;
}

const HelpTopic orderTopic = {
    QStringLiteral("Order"),
    QStringLiteral(
        "State and settings come first, then the position, then drags and turns of the wheel in\n"
        "their order, then a recording. A recording and a state say themselves which models they show,\n"
        "unless MODEL does; a state may also stand in the place of MODEL. A recording holds neither --state\n"
        "nor --no-triad."),
    {}};

const HelpTopic picturesTopic = {
    QStringLiteral("Many pictures"),
    QStringLiteral(
        "All models are in one picture, unless --out holds {name}, as in --out thumbs/{name}.png: then\n"
        "each model gets a picture of its own, named after its file, and --save-state and --record may hold\n"
        "{name}, too. A model that cannot be shown is told, and the others go on."),
    {}};

const HelpTopic limitsTopic = {
    QStringLiteral("Limits"),
    QStringLiteral(
        "What is read must be a regular file; standard input may bring 1 GiB. What is written may be a\n"
        "pipe or a device, too, but no file that is named to be read; what cannot be written whole stays\n"
        "as it was. Reading a model may take 3 seconds of processor time and 30 by the clock, and one\n"
        "more of each for each megabyte; half of the memory that is available, and its parts an eighth\n"
        "of it."),
    {}};

const HelpTopic exitTopic = {
    QStringLiteral("Exit status"),
    QStringLiteral("Where there are several pictures, the highest of theirs."),
    {
        {QStringLiteral("0"), QStringLiteral("done")},
        {QStringLiteral("1"), QStringLiteral("wrong usage")},
        {QStringLiteral("2"), QStringLiteral("a model, state or setting that cannot be used")},
        {QStringLiteral("3"), QStringLiteral("no display, or the output cannot be written")},
        {QStringLiteral("130"), QStringLiteral("stopped")},
    }};

/// A title and its text, and a line for each row: what, and behind it, or on a line of its own below, what it
/// is for.
QString laidOut(const HelpTopic& topic)
{
    QString text = QStringLiteral("\n%1:\n").arg(topic.title);
    if (!topic.text.isEmpty()) {
        text += topic.text + QLatin1Char('\n');
    }
    for (const HelpTopic::Row& row : topic.rows) {
        const QString head = QStringLiteral("  ") + row.what;
        text += head.size() > 26 ? head + QStringLiteral("\n%1").arg(QString(), 28) : head.leftJustified(28);
        text += row.effect + QLatin1Char('\n');
    }
    return text;
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
    // A recording brings its models along, and so may a state.
    const bool brought = !options.replayFile.isEmpty() || !options.stateFile.isEmpty();
    if (options.models.isEmpty() && !options.defaultModel.isEmpty() && !brought) {
        options.models.append(options.defaultModel);
    }
    if (options.models.isEmpty() && options.needsModel()) {
        fail(QStringLiteral("no MODEL is named"));
    }
    checkTogether(options);
    return options;
}

/// A window with menus can open one later.
bool ViewerOptions::needsModel() const
{
    const bool opensMenus = !windowless() && !bare;
    return !opensMenus && replayFile.isEmpty() && stateFile.isEmpty() && !showHelp && !showVersion;
}

bool ViewerOptions::onePictureEach() const
{
    return outFile.contains(QLatin1String(namePattern));
}

std::vector<ViewerOptions> ViewerOptions::eachPicture() const
{
    if (!onePictureEach()) {
        return {*this};
    }
    std::vector<ViewerOptions> each;
    for (const QString& model : models) {
        ViewerOptions one = *this;
        one.models = QStringList(model);
        for (QString* const file : {&one.outFile, &one.saveStateFile, &one.recordFile}) {
            file->replace(QLatin1String(namePattern), nameOf(model));
        }
        each.push_back(one);
    }
    return each;
}

void ViewerOptions::checkOutputs() const
{
    TakenFiles taken;
    for (const QString& input : models + QStringList{stateFile, replayFile}) {
        taken.read(input);
    }
    for (const ViewerOptions& one : eachPicture()) {
        const std::pair<const char*, QString> outputs[] = {
            {"--save-state", one.saveStateFile}, {"--out", one.outFile}, {"--record", one.recordFile}};
        for (const auto& [option, file] : outputs) {
            taken.write(option, file, one.models.value(0));
        }
    }
}

std::vector<HelpTopic> ViewerOptions::topics()
{
    const HelpTopic purpose = {
        QStringLiteral("Description"),
        QStringLiteral("Shows models of any format that assimp reads; the MODEL - is read from\n"
                       "standard input. Without a MODEL a window opens that has none yet."),
        {}};
    return {purpose, optionTopic(), orderTopic, picturesTopic, limitsTopic, exitTopic};
}

QString ViewerOptions::help()
{
    const std::vector<HelpTopic> all = topics();
    QString text = QStringLiteral("Usage: view [MODEL...] [options]\n\n%1\n").arg(all.front().text);
    for (auto topic = std::next(all.begin()); topic != all.end(); ++topic) {
        text += laidOut(*topic);
    }
    return text + laidOut(viewTopic());
}
