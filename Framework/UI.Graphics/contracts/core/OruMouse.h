#pragma once

#include "contracts/core/KeyModifier.h"
#include "contracts/core/kelvar_core_api.h"

#include <QPoint>

#include <array>
#include <cstdint>

/// The state of the pointer as of the current event: positions, wheel, buttons, modifier.
///
/// Positions are OpenGL window coordinates: device pixels, origin at the lower left, y upwards. A host feeds
/// each event once, before it hands the event on. Every feeding makes the former position the old one; all
/// but wheel() set the wheel back to 0. A plain value; any int is safe as a button or modifier to ask about.
class KELVAR_CORE_API OruMouse
{
public:
    using KeyModifier = Kelvar::UI::Toolkit::KeyModifier;

    /// The numbers are stored, so they never change; a variable may hold any int.
    enum Button : int
    {
        ButtonPick = 1,
        ButtonContext = 2,
        ButtonView = 3
    };

    /// The position of the current event, that of the one before, and the way between them; a way that is too
    /// long for an int ends at the nearest one.
    const QPoint& curpos() const { return curpos_; }
    const QPoint& oldpos() const { return oldpos_; }
    const QPoint& mousedelta() const { return delta_; }

    /// Turn of the wheel in this event, in the host's steps; 0 for none.
    int wheeldelta() const { return wheeldelta_; }

    KeyModifier curmodifier() const { return modifier_; }

    /// Where `button` went down last; (0, 0) for one that never did.
    const QPoint& downpos(Button button) const;

    /// `button` is held and the current modifier is exactly `modifier`. Other buttons do not matter.
    bool isdown(Button button, KeyModifier modifier) const;

    /// The last release ended a press of `button` that was made with `modifier`.
    bool wasdown(Button button, KeyModifier modifier) const;

    /// Number of buttons that are held.
    std::uint64_t downcount() const;

    /// Feeding. A press of a held button starts that press anew; a release of a button that is not held ends
    /// no press, so that wasdown() is false for all. A press or release of an unknown button is a move, after
    /// which wasdown() is false for all, too: a click of that button is no click of the one before.
    void press(Button button, KeyModifier modifier, const QPoint& position);
    void release(Button button, KeyModifier modifier, const QPoint& position);
    void move(const QPoint& position, KeyModifier modifier);
    void wheel(int delta, KeyModifier modifier, const QPoint& position);

    /// The modifier changed while the pointer stood still.
    void setModifier(KeyModifier modifier);

private:
    struct ButtonState
    {
        QPoint downpos;
        KeyModifier modifier = Kelvar::UI::Toolkit::ModifierNone;
        bool down = false;
    };

    ButtonState* state(Button button);
    const ButtonState* state(Button button) const;

    QPoint curpos_;
    QPoint oldpos_;
    QPoint delta_;
    int wheeldelta_ = 0;
    KeyModifier modifier_ = Kelvar::UI::Toolkit::ModifierNone;
    std::array<ButtonState, 3> buttons_;
    int released_ = 0; ///< button whose press ended last, 0 for none
    KeyModifier releasedModifier_ = Kelvar::UI::Toolkit::ModifierNone;
};
