#include "contracts/core/OruMouse.h"

#include "contracts/core/OruNearestInt.h"

#include <algorithm>
#include <cstddef>

const OruMouse::ButtonState* OruMouse::state(Button button) const
{
    return button >= ButtonPick && button <= ButtonView
               ? &buttons_[static_cast<std::size_t>(button - ButtonPick)]
               : nullptr;
}

OruMouse::ButtonState* OruMouse::state(Button button)
{
    return const_cast<ButtonState*>(static_cast<const OruMouse*>(this)->state(button));
}

const QPoint& OruMouse::downpos(Button button) const
{
    static const QPoint origin;
    const ButtonState* known = state(button);
    return known ? known->downpos : origin;
}

bool OruMouse::isdown(Button button, KeyModifier modifier) const
{
    const ButtonState* known = state(button);
    return known && known->down && modifier_ == modifier;
}

bool OruMouse::wasdown(Button button, KeyModifier modifier) const
{
    return state(button) && released_ == button && releasedModifier_ == modifier;
}

std::uint64_t OruMouse::downcount() const
{
    return static_cast<std::uint64_t>(std::count_if(buttons_.begin(), buttons_.end(),
                                                    [](const ButtonState& button) { return button.down; }));
}

void OruMouse::press(Button button, KeyModifier modifier, const QPoint& position)
{
    move(position, modifier);
    if (ButtonState* known = state(button)) {
        *known = ButtonState{position, modifier, true};
    } else {
        released_ = 0;
    }
}

void OruMouse::release(Button button, KeyModifier modifier, const QPoint& position)
{
    move(position, modifier);
    ButtonState* known = state(button);
    released_ = known && known->down ? button : 0;
    if (known) {
        releasedModifier_ = known->modifier;
        known->down = false;
    }
}

void OruMouse::move(const QPoint& position, KeyModifier modifier)
{
    oldpos_ = curpos_;
    curpos_ = position;
    delta_ = QPoint(oru::wayBetween(oldpos_.x(), curpos_.x()), oru::wayBetween(oldpos_.y(), curpos_.y()));
    wheeldelta_ = 0;
    modifier_ = modifier;
}

void OruMouse::wheel(int delta, KeyModifier modifier, const QPoint& position)
{
    move(position, modifier);
    wheeldelta_ = delta;
}

void OruMouse::setModifier(KeyModifier modifier)
{
    move(curpos_, modifier);
}
