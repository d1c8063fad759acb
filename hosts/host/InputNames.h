#pragma once

#include "contracts/core/OruMouse.h"
#include "hosts/host/InputEvent.h"
#include "hosts/host/kelvar_host_api.h"

#include <QPoint>
#include <QSize>
#include <QString>
#include <Qt>

#include <array>
#include <optional>
#include <utility>

namespace hostkit {

/// What input is called, and what it does: one table each of buttons, modifiers and gestures for command
/// lines, recordings, help and windows, and the reading of the small texts that go with them.
///
///     if (const auto size = InputNames::size("1280x800", 65536)) { ... }
///
/// Names are in lower case, and a text is compared as it stands. Nothing is read of a text that is not
/// wholly what is asked for; it is for the caller to say what is wrong with it.
struct KELVAR_HOST_API InputNames
{
    struct Button
    {
        OruMouse::Button button;
        Qt::MouseButton qt;
        /// The first one is the name that is written; the second says what the button is for.
        std::array<const char*, 2> names;
    };

    static constexpr std::array<Button, 3> buttons = {{
        {OruMouse::ButtonPick, Qt::LeftButton, {"left", "pick"}},
        {OruMouse::ButtonView, Qt::MiddleButton, {"middle", "view"}},
        {OruMouse::ButtonContext, Qt::RightButton, {"right", "context"}},
    }};

    struct Modifier
    {
        /// Its bit in the modifiers of an InputEvent.
        unsigned int bit;
        Qt::KeyboardModifier qt;
        const char* name;
    };

    static constexpr std::array<Modifier, 4> modifiers = {{
        {1, Qt::ControlModifier, "ctrl"},
        {2, Qt::ShiftModifier, "shift"},
        {4, Qt::AltModifier, "alt"},
        {8, Qt::MetaModifier, "meta"},
    }};

    /// The bits of those that make another gesture of a drag.
    static constexpr unsigned int dragModifiers = 1 | 2;

    /// Something to do with a view.
    struct Gesture
    {
        /// Move stands for a drag with the button held, Abort for Esc.
        InputEvent::Kind kind;
        /// Of a drag or a click.
        OruMouse::Button button;
        unsigned int modifiers;
        /// Of a key press.
        int key;
        /// What the view does, as a phrase without an end.
        const char* effect;
    };

    /// What every view does, as long as its mappings are the usual ones.
    static constexpr std::array<Gesture, 17> gestures = {{
        {InputEvent::Kind::Move, OruMouse::ButtonPick, 0, 0, "turns the view"},
        {InputEvent::Kind::Move, OruMouse::ButtonView, 0, 0, "turns the view"},
        {InputEvent::Kind::Move, OruMouse::ButtonView, 1, 0, "moves the view"},
        {InputEvent::Kind::Move, OruMouse::ButtonView, 2, 0, "zooms; downwards enlarges"},
        {InputEvent::Kind::Move, OruMouse::ButtonContext, 0, 0,
         "draws a zoom box; downwards enlarges, upwards shrinks"},
        {InputEvent::Kind::Wheel, OruMouse::ButtonPick, 0, 0, "zooms about the pointer; forwards enlarges"},
        {InputEvent::Kind::Pinch, OruMouse::ButtonPick, 0, 0, "zooms about the pointer; apart enlarges"},
        {InputEvent::Kind::Turn, OruMouse::ButtonPick, 0, 0, "turns the view about the pointer"},
        {InputEvent::Kind::Abort, OruMouse::ButtonPick, 0, 0,
         "calls a drag off; the view, or what was dragged, goes back to where it began"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 0, 'F', "fits the scene into the view"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 0, 'I', "isometric view, from below"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 0, 'X', "looks from the positive end of X"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 0, 'Y', "looks from the positive end of Y"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 0, 'Z', "looks from the positive end of Z"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 2, 'X', "looks from the negative end of X"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 2, 'Y', "looks from the negative end of Y"},
        {InputEvent::Kind::KeyPress, OruMouse::ButtonPick, 2, 'Z', "looks from the negative end of Z"},
    }};

    /// What the person does, as in "drag Ctrl+middle", "wheel" or "Shift+X".
    static QString text(const Gesture& gesture);

    /// A button by any of its names.
    static std::optional<OruMouse::Button> button(const QString& name);
    static QString nameOf(OruMouse::Button button);

    /// The bit of a modifier.
    static std::optional<unsigned int> modifier(const QString& name);
    /// The bits of all that are held.
    static unsigned int bitsOf(Qt::KeyboardModifiers held);

    /// A key as InputFeed takes it: one character other than a digit, or the number of the key.
    static std::optional<int> key(const QString& text);
    static QString keyText(int key);

    /// All buttons, or the modifiers with these bits, for a sentence: "left, middle or right", where `word`
    /// is the last but one.
    static QString buttonList(const QString& word);
    static QString modifierList(unsigned int bits, const QString& word);

    /// "1280x800"; both sides from 1 to `most`.
    static std::optional<QSize> size(const QString& text, int most);

    /// "640,400".
    static std::optional<QPoint> point(const QString& text);

    /// "name=value" at its first '='; the name is not empty, and the value may hold more of them.
    static std::optional<std::pair<QString, QString>> assignment(const QString& text);
};

} // namespace hostkit
