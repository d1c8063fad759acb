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
        KeyPress,
        KeyRelease,
        FocusIn,
        FocusOut,
        Enter,
        Leave,
        /// The window system took the pointer away in the middle of a gesture.
        Cancel
    };

    Kind kind = Kind::Cancel;

    /// The button of a press or release.
    OruMouse::Button button = OruMouse::ButtonPick;

    /// One word of bits: 1 the first modifier (Ctrl), 2 the second (Shift), any further bit another key.
    unsigned int modifiers = 0;

    /// Where the pointer is, in OpenGL window coordinates, for press, release, move and wheel.
    QPoint pixel;

    /// Whole steps of the wheel, positive away from the person; or the key, a letter as upper-case ASCII.
    int amount = 0;
};

} // namespace hostkit
