#pragma once

#include "contracts/core/OruMouse.h"

#include <QPoint>

namespace hostkit {

/// One thing that a person did, as a scene is told of it.
struct InputEvent
{
    enum class Kind
    {
        Press,
        Release,
        Click,
        DoubleClick,
        Move,
        Wheel,
        /// Two fingers that move apart or together, and that turn.
        Pinch,
        Turn,
        KeyPress,
        KeyRelease,
        FocusIn,
        FocusOut,
        Enter,
        Leave,
        /// The window system took the pointer away in the middle of a gesture.
        Cancel,
        /// The person called a gesture off: the view goes back to where it was when the gesture began.
        Abort
    };

    Kind kind = Kind::Cancel;

    /// The button of a press or release.
    OruMouse::Button button = OruMouse::ButtonPick;

    /// One word of bits: 1 the first modifier (Ctrl), 2 the second (Shift), any further bit another key.
    unsigned int modifiers = 0;

    /// Where the pointer is, in OpenGL window coordinates, for press, release, move, wheel, pinch and turn.
    QPoint pixel;

    /// Steps of the wheel, positive away from the person, or a fraction of one; the factor that a pinch
    /// enlarges by; the degrees of a turn, counter-clockwise; or the key, a letter as upper-case ASCII.
    double amount = 0.0;

    /// No hand turns a wheel, or moves two fingers, further in one event, either way.
    static constexpr double mostAmount = 1000.0;

    /// Whether the amount is one that a wheel or two fingers can have: a number other than 0 within
    /// mostAmount, for a pinch above 0. Other kinds may have any.
    bool possible() const
    {
        const bool fingers = kind == Kind::Pinch || kind == Kind::Turn;
        const double least = kind == Kind::Pinch ? 0.0 : -mostAmount;
        return (kind != Kind::Wheel && !fingers) ||
               (amount >= least && amount <= mostAmount && amount != 0.0);
    }
};

} // namespace hostkit
