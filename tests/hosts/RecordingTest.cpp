// Recordings as text: what is written reads back, and what is no recording is refused with its place.

#include "hosts/host/Recording.h"

#include <gmock/gmock.h>

#include <tuple>

using hostkit::InputEvent;
using hostkit::Recording;
using Kind = hostkit::InputEvent::Kind;

namespace {

auto fields(const InputEvent& event)
{
    return std::make_tuple(event.kind, event.button, event.modifiers, event.pixel.x(), event.pixel.y(),
                           event.amount);
}

/// Texts that a line of text could lose or break at.
const QString awkwardTexts[] = {"",
                                " ",
                                "in front",
                                " in front",
                                "behind\t",
                                "two\nlines\r\n",
                                "\"quoted\"",
                                "a\\",
                                "\"",
                                "back\\slash",
                                "\\u0041",
                                " \\\" ",
                                "\u00a0wide\u2003",
                                "\ufeffmark",
                                "\u2028",
                                QString::fromLatin1("zero\0", 5),
                                "# none",
                                QString(QChar(0xd800)) + "lone",
                                QString::fromUtf8("\xf0\x9f\x98\x80 ")};

TEST(Recording, EveryTextAndEventReadsBack)
{
    std::vector<InputEvent> rows = {
        {Kind::Press, OruMouse::ButtonContext, 3, {0, 798}, 0},
        {Kind::Release, OruMouse::ButtonView, 0, {1278, 0}, 0},
        {Kind::Move, OruMouse::ButtonPick, 64, {-17, 5000}, 0},
        {Kind::Wheel, OruMouse::ButtonPick, 12, {640, 3}, -1},
        {Kind::Wheel, OruMouse::ButtonPick, 0, {640, 3}, 0.1},
        {Kind::Pinch, OruMouse::ButtonPick, 0, {640, 3}, 1.0 / 3.0},
        {Kind::Turn, OruMouse::ButtonPick, 0, {640, 3}, -7.25},
        {Kind::KeyPress, OruMouse::ButtonPick, 2, {}, 'X'},
        {Kind::KeyRelease, OruMouse::ButtonPick, 0, {}, '5'},
        {Kind::KeyPress, OruMouse::ButtonPick, 0, {}, 0x01000020},
    };
    for (const Kind kind : {Kind::Click, Kind::DoubleClick, Kind::FocusIn, Kind::FocusOut, Kind::Enter,
                            Kind::Leave, Kind::Cancel, Kind::Abort}) {
        rows.push_back({kind, OruMouse::ButtonPick, 0, {}, 0});
    }
    for (const QSize& size : {QSize(1279, 799), QSize(3, 7), QSize(1, 1)}) {
        Recording head;
        head.size = size;
        head.models.append(QStringLiteral("/a model/with blanks.glb"));
        head.position = QStringLiteral("-x");
        head.edges = QStringLiteral("wireframe");
        for (const QString& text : awkwardTexts) {
            head.models.append(text);
            head.settings.emplace_back(QStringLiteral("render/text"), text);
            head.settings.emplace_back(QChar('#') + text, QStringLiteral("true"));
        }
        QByteArray text = head.head() + "\n# a comment\n";
        for (const InputEvent& event : rows) {
            text += Recording::line(event, size);
        }
        const Recording read = Recording::parse(text, QStringLiteral("r"));
        EXPECT_EQ(read.head(), head.head());
        EXPECT_EQ(read.models, head.models);
        EXPECT_EQ(read.edges, head.edges);
        EXPECT_EQ(read.settings, head.settings);
        const std::vector<InputEvent> events = read.events(size);
        ASSERT_EQ(events.size(), std::size(rows));
        for (std::size_t i = 0; i < events.size(); ++i) {
            EXPECT_EQ(fields(events[i]), fields(rows[i])) << "event " << i << " at " << size.width();
        }
    }
}

TEST(Recording, PositionsFollowTheSizeOfTheView)
{
    const Recording recording =
        Recording::parse("kelvar-recording 1\nsize 10x10\nmove - 0.25 0.75\n", QStringLiteral("r"));
    EXPECT_EQ(recording.events(QSize(10, 10)).front().pixel, QPoint(2, 7));
    EXPECT_EQ(recording.events(QSize(400, 200)).front().pixel, QPoint(100, 150));
}

TEST(Recording, RefusedWithLineAndReason)
{
    const std::string good = "kelvar-recording 1\nsize 10x10\n";
    const struct
    {
        std::string text;
        const char* error;
    } rows[] = {
        {"", "r:1: not a recording"},
        {"kelvar-recording 2\n", "r:1: not a recording"},
        {"kelvar-recording 1\n", "there is no size"},
        {"kelvar-recording 1\nsize 0x5\n", "r:2: \"0x5\" is not a size"},
        {good + "fly away\n", "r:3: \"fly\" is no event"},
        {good + "press\n", "r:3: a button is missing"},
        {good + "press up - 0 0\n", "r:3: \"up\" is no button"},
        {good + "press left hyper 0 0\n", "r:3: \"hyper\" is no modifier"},
        {good + "\nmove - 0.5\n", "r:4: a position is missing"},
        {good + "move - 0.5 nan\n", "r:3: \"nan\" is no position"},
        {good + "move - 1e9 0\n", "r:3: \"1e9\" is no position"},
        {good + "move - 0 0 0\n", "r:3: \"0\" is too much"},
        {good + "wheel 0 - 0 0\n", "r:3: \"0\" is not how far"},
        {good + "pinch -2 0 0\n", "r:3: \"-2\" is not how far"},
        {good + "turn 1e9 0 0\n", "r:3: \"1e9\" is not how far"},
        {good + "key 99999999999 -\n", "r:3: \"99999999999\" is no key"},
        {good + "set render\n", "r:3: \"render\" is not of the form path/key=value"},
        {good + "model \"open\n", "r:3: a text that starts with a quote"},
        {good + "model \"open\\", "r:3: a text that starts with a quote"},
        {good + "model \"a\" b\n", "r:3: a text that starts with a quote"},
        {good + "model \"\\u00g0\"\n", "r:3: \\u stands before four"},
    };
    for (const auto& row : rows) {
        try {
            Recording::parse(QByteArray::fromStdString(row.text), QStringLiteral("r"));
            ADD_FAILURE() << "accepted: " << row.text;
        } catch (const Recording::Error& error) {
            EXPECT_THAT(error.what(), ::testing::HasSubstr(row.error)) << row.text;
        }
    }
}

} // namespace
