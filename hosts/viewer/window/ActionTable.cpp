#include "hosts/viewer/window/ActionTable.h"

#include "hosts/host/InputNames.h"
#include "hosts/viewer/window/Appearance.h"
#include "hosts/viewer/window/Dialogs.h"
#include "hosts/viewer/window/Document.h"
#include "hosts/viewer/window/MeasureTool.h"
#include "hosts/viewer/window/Section.h"
#include "hosts/viewer/window/Selection.h"
#include "hosts/viewer/window/Workplace.h"
#include "hosts/widgets/SceneWidget.h"

#include <algorithm>

using hostkit::HostScene;
using hostkit::InputNames;

namespace {

void showFrom(Workplace& at, const char* position)
{
    at.view.window().changeAndTell(
        [&](HostScene& host) { return host.showFrom(QString::fromLatin1(position)); });
}

bool hasModel(const Workplace& at)
{
    return !at.document.files().isEmpty();
}

bool shows(const Workplace& at, const char* edges)
{
    return at.appearance.edges() == QLatin1String(edges);
}

bool hasSelection(const Workplace& at)
{
    return !at.selection.empty();
}

bool hasMeasure(const Workplace& at)
{
    return at.measure.count() > 0;
}

constexpr float transparent = 0.3f;

bool isTransparent(const Workplace& at)
{
    return hasSelection(at) && at.selection.opacity() < 1.0f;
}

using At = Workplace&;
using Seen = const Workplace&;

const std::vector<ActionTable::Row> actionRows = {
    {"open", "&File", "&Open...", "Ctrl+O", "shows other models, or a state that was saved", "Open", nullptr,
     nullptr, [](At at) { at.dialogs.open(); }, false, true},
    {"reload", "&File", "&Reload", "F5", "reads the files again; what was changed stays", "", hasModel,
     nullptr, [](At at) { at.document.reload(); }, false, false},
    {"saveState", "&File", "Save S&tate...", "Ctrl+Shift+S",
     "keeps what the window shows in a file that Open takes", "", hasModel, nullptr,
     [](At at) { at.dialogs.saveState(); }, true, true},
    {"picture", "&File", "Save &Picture...", "Ctrl+S", "writes the view into a picture of any size",
     "Picture", nullptr, nullptr, [](At at) { at.dialogs.savePicture(); }, false, true},
    {"copyPicture", "&File", "&Copy Picture", "Ctrl+Shift+C", "puts the view as a picture on the clipboard",
     "", nullptr, nullptr, [](At at) { at.dialogs.copyPicture(); }, false, false},
    {"quit", "&File", "&Quit", "Ctrl+Q", "closes the window", "", nullptr, nullptr,
     [](At at) { at.dialogs.quit(); }, true, false},

    {"undo", "&Edit", "&Undo", "Ctrl+Z", "takes the last change back", "Undo",
     [](Seen at) { return at.view.undo().edits().canUndo(); }, nullptr,
     [](At at) { at.view.undo().edits().undo(); }, false, false},
    {"redo", "&Edit", "&Redo", "Ctrl+Shift+Z", "makes it again", "Redo",
     [](Seen at) { return at.view.undo().edits().canRedo(); }, nullptr,
     [](At at) { at.view.undo().edits().redo(); }, false, false},
    {"selectAll", "&Edit", "Select &All", "Ctrl+A", "selects all parts", "", hasModel, nullptr,
     [](At at) { at.selection.selectAll(); }, true, false},
    {"selectNone", "&Edit", "Select &None", "Ctrl+D", "selects nothing", "", hasSelection, nullptr,
     [](At at) { at.selection.clear(); }, false, false},
    {"stop", "&Edit", "&Stop", "Esc", "ends what runs: a loading, a tool", "",
     [](Seen at) { return at.document.loading() || at.measure.isOn(); }, nullptr,
     [](At at) { at.document.loading() ? at.document.stop() : at.measure.back(); }, true, false},

    {"back", "&View", "&Back", "Alt+Left", "goes to the view before", "Back",
     [](Seen at) { return at.view.undo().views().canUndo(); }, nullptr,
     [](At at) { at.view.undo().views().undo(); }, false, false},
    {"forward", "&View", "&Forward", "Alt+Right", "goes to the view behind", "Forward",
     [](Seen at) { return at.view.undo().views().canRedo(); }, nullptr,
     [](At at) { at.view.undo().views().redo(); }, false, false},
    {"fit", "&View", "Fit &Selection", "F", "shows what is selected as large as it goes, or all", "Fit",
     hasModel, nullptr, [](At at) { at.selection.fit(); }, true, false},
    {"iso", "&View", "From &Above, Front Right", "Home", "the view that a model is opened with", "", hasModel,
     nullptr, [](At at) { showFrom(at, "iso"); }, false, false},
    {"fromX", "&View", "From the &Right (+X)", "X", "looks from the positive end of X", "", hasModel, nullptr,
     [](At at) { showFrom(at, "x"); }, false, false},
    {"fromMinusX", "&View", "From the &Left (-X)", "Shift+X", "looks from the negative end of X", "",
     hasModel, nullptr, [](At at) { showFrom(at, "-x"); }, false, false},
    {"fromY", "&View", "From B&ehind (+Y)", "Y", "looks from the positive end of Y", "", hasModel, nullptr,
     [](At at) { showFrom(at, "y"); }, false, false},
    {"fromMinusY", "&View", "From the Fro&nt (-Y)", "Shift+Y", "looks from the negative end of Y", "",
     hasModel, nullptr, [](At at) { showFrom(at, "-y"); }, false, false},
    {"fromZ", "&View", "From the &Top (+Z)", "Z", "looks from the positive end of Z", "", hasModel, nullptr,
     [](At at) { showFrom(at, "z"); }, false, false},
    {"fromMinusZ", "&View", "From Bel&ow (-Z)", "Shift+Z", "looks from the negative end of Z", "", hasModel,
     nullptr, [](At at) { showFrom(at, "-z"); }, false, false},

    {"hide", "&Parts", "&Hide", "H", "hides what is selected", "Hide", hasSelection, nullptr,
     [](At at) { at.selection.hide(); }, false, false},
    {"isolate", "&Parts", "Show &Only", "Shift+H", "hides all but what is selected", "Isolate", hasSelection,
     nullptr, [](At at) { at.selection.isolate(); }, false, false},
    {"showAll", "&Parts", "Show &All", "Ctrl+H", "shows all parts", "Show All", hasModel, nullptr,
     [](At at) { at.selection.showAll(); }, false, false},
    {"color", "&Parts", "&Color...", "C", "chooses the color of what is selected", "", hasSelection, nullptr,
     [](At at) { at.dialogs.chooseColor(); }, true, true},
    {"transparent", "&Parts", "&Transparent", "T", "lets through what lies behind the selection", "",
     hasSelection, isTransparent,
     [](At at) { at.selection.setOpacity(isTransparent(at) ? 1.0f : transparent); }, false, false},
    {"opacity", "&Parts", "O&pacity...", "Shift+T", "chooses how much of it shines through", "", hasSelection,
     nullptr, [](At at) { at.dialogs.chooseOpacity(); }, false, true},

    {"sectionX", "&Section", "Across &X", "Alt+X", "cuts the models open with a plane across X", "", hasModel,
     [](Seen at) { return at.section.isActive(0); },
     [](At at) { at.section.setActive(0, !at.section.isActive(0)); }, false, false},
    {"sectionY", "&Section", "Across &Y", "Alt+Y", "cuts the models open with a plane across Y", "", hasModel,
     [](Seen at) { return at.section.isActive(1); },
     [](At at) { at.section.setActive(1, !at.section.isActive(1)); }, false, false},
    {"sectionZ", "&Section", "Across &Z", "Alt+Z", "cuts the models open with a plane across Z", "", hasModel,
     [](Seen at) { return at.section.isActive(2); },
     [](At at) { at.section.setActive(2, !at.section.isActive(2)); }, false, false},
    {"section", "&Section", "&Cut Open", "Alt+C", "cuts the models open across Y, or shows them whole again",
     "Section", hasModel, [](Seen at) { return at.section.anyActive(); },
     [](At at) { at.section.anyActive() ? at.section.switchAllOff() : at.section.setActive(1, true); }, true,
     false},

    {"measure", "&Measure", "&Distance", "M", "measures from point to point by two clicks", "Measure",
     hasModel, [](Seen at) { return at.measure.isOn(); }, [](At at) { at.measure.setOn(!at.measure.isOn()); },
     false, false},
    {"measureBox", "&Measure", "&Box of Selection", "Shift+M",
     "measures the box along the axes round what is selected", "", hasSelection, nullptr,
     [](At at) { at.measure.measureBox(); }, false, false},
    {"copyMeasures", "&Measure", "&Copy as Text", "Ctrl+M",
     "puts all measures on the clipboard, as a table with tabs", "", hasMeasure, nullptr,
     [](At at) { at.measure.copy(); }, true, false},
    {"removeMeasure", "&Measure", "Delete &Last", "Ctrl+Alt+M", "takes the last measure away", "", hasMeasure,
     nullptr, [](At at) { at.measure.removeLast(); }, true, false},
    {"clearMeasures", "&Measure", "Delete &All", "Ctrl+Alt+Shift+M", "takes all measures away", "",
     hasMeasure, nullptr, [](At at) { at.measure.clear(); }, false, false},

    {"shaded", "&Display", "&Shaded", "Ctrl+1", "shows surfaces alone", "", hasModel,
     [](Seen at) { return shows(at, "off"); }, [](At at) { at.appearance.setEdges(QStringLiteral("off")); },
     false, false},
    {"edges", "&Display", "Shaded with &Edges", "Ctrl+2", "shows surfaces with their sharp and open edges",
     "Edges", hasModel, [](Seen at) { return shows(at, "edges"); },
     [](At at) { at.appearance.setEdges(QString::fromLatin1(shows(at, "edges") ? "off" : "edges")); }, false,
     false},
    {"wireframe", "&Display", "Edges &Only", "Ctrl+3", "shows the sides of all triangles and no surface", "",
     hasModel, [](Seen at) { return shows(at, "wireframe"); },
     [](At at) { at.appearance.setEdges(QStringLiteral("wireframe")); }, false, false},
    {"background", "&Display", "&Background...", "Ctrl+B", "chooses the color behind the models", "", nullptr,
     nullptr, [](At at) { at.dialogs.chooseBackground(); }, true, true},
    {"rig", "&Display", "Three &Lights", "Ctrl+L", "lights what the main light leaves dark", "", nullptr,
     [](Seen at) { return at.appearance.rig(); }, [](At at) { at.appearance.setRig(!at.appearance.rig()); },
     false, false},

    {"help", "&Help", "&Keys and Gestures", "F1", "tells all keys and gestures", "", nullptr, nullptr,
     [](At at) { at.dialogs.help(); }, false, true},
    {"about", "&Help", "&About", "Shift+F1", "tells the version", "", nullptr, nullptr,
     [](At at) { at.dialogs.about(); }, false, true},
};

/// A key that an action has is not the scene's any more.
bool takenByAction(const InputNames::Gesture& gesture)
{
    return gesture.kind == hostkit::InputEvent::Kind::KeyPress &&
           ActionTable::rowOf(InputNames::text(gesture)) != nullptr;
}

HelpTopic viewTopic()
{
    HelpTopic topic = {QStringLiteral("In the view"), QString(), {}};
    for (const InputNames::Gesture& gesture : InputNames::gestures) {
        if (!takenByAction(gesture)) {
            topic.rows.push_back({InputNames::text(gesture), QString::fromLatin1(gesture.effect)});
        }
    }
    for (const ActionTable::PointerRow& pointer : ActionTable::pointerRows()) {
        topic.rows.push_back({QString::fromLatin1(pointer.gesture), QString::fromLatin1(pointer.effect)});
    }
    return topic;
}

} // namespace

const std::vector<ActionTable::Row>& ActionTable::rows()
{
    return actionRows;
}

const ActionTable::Row* ActionTable::named(const QString& name)
{
    const auto row = std::find_if(actionRows.begin(), actionRows.end(),
                                  [&](const Row& one) { return name == QLatin1String(one.name); });
    return row == actionRows.end() ? nullptr : &*row;
}

const ActionTable::Row* ActionTable::rowOf(const QString& keys)
{
    const auto row = std::find_if(actionRows.begin(), actionRows.end(),
                                  [&](const Row& one) { return keys == QLatin1String(one.keys); });
    return row == actionRows.end() ? nullptr : &*row;
}

QString ActionTable::plain(const char* text)
{
    return QString::fromLatin1(text).remove(QLatin1Char('&')).remove(QStringLiteral("..."));
}

const std::vector<ActionTable::PointerRow>& ActionTable::pointerRows()
{
    static const std::vector<PointerRow> rows = {
        {"click", "selects a part, or nothing"},
        {"Ctrl+click", "adds a part to the selection, or takes it out"},
        {"click again", "goes on to the part behind"},
        {"drop of files", "opens them"},
    };
    return rows;
}

std::vector<HelpTopic> ActionTable::help()
{
    std::vector<HelpTopic> topics = {viewTopic()};
    for (const Row& action : actionRows) {
        const QString menu = plain(action.menu);
        if (topics.back().title != menu) {
            topics.push_back({menu, QString(), {}});
        }
        topics.back().rows.push_back(
            {QString::fromLatin1(action.keys),
             plain(action.text) + QStringLiteral(": ") + QLatin1String(action.help)});
    }
    return topics;
}
