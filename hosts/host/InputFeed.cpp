#include "hosts/host/InputFeed.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <utility>

namespace hostkit {

using Kelvar::UI::Toolkit::KeyModifier;
using Kind = InputEvent::Kind;

namespace {

/// The operation of the scene that hears of each kind of event; a cancelled gesture has none of its own.
struct KindRow
{
    Kind kind;
    HostScene::Event operation;
};

const KindRow kindRows[] = {
    {Kind::Press, &OruSceneEventHandler::mousePress},
    {Kind::Release, &OruSceneEventHandler::mouseRelease},
    {Kind::Click, &OruSceneEventHandler::mouseClick},
    {Kind::DoubleClick, &OruSceneEventHandler::mouseDoubleClick},
    {Kind::Move, &OruSceneEventHandler::mouseMove},
    {Kind::Wheel, &OruSceneEventHandler::mouseWheel},
    {Kind::KeyPress, &OruSceneEventHandler::keyPress},
    {Kind::KeyRelease, &OruSceneEventHandler::keyRelease},
    {Kind::FocusIn, &OruSceneEventHandler::focusIn},
    {Kind::FocusOut, &OruSceneEventHandler::focusOut},
    {Kind::Enter, &OruSceneEventHandler::mouseEnter},
    {Kind::Leave, &OruSceneEventHandler::mouseLeave},
};

/// Where the pointer is once it has left a view.
const QPoint outside(-1, -1);

InputEvent keyEvent(Kind kind, int key, unsigned int modifiers)
{
    InputEvent event;
    event.kind = kind;
    event.modifiers = modifiers;
    event.amount = key;
    return event;
}

InputEvent plainEvent(Kind kind)
{
    InputEvent event;
    event.kind = kind;
    return event;
}

} // namespace

InputFeed::InputFeed(HostScene& host)
    : host_(host)
{}

bool InputFeed::apply(const InputEvent& event)
{
    if (listener_) {
        listener_(event);
    }
    if (event.kind == Kind::Cancel) {
        return endGesture();
    }
    // What a drag starts from is known; its name would only hang on the pointer.
    QString& tooltip = host_.context().tooltip;
    const bool untold = event.kind == Kind::Move && anyHeld() && !tooltip.isEmpty();
    if (untold) {
        tooltip.clear();
    }
    feedMouse(event);
    for (const KindRow& row : kindRows) {
        if (row.kind == event.kind) {
            return host_.send(row.operation) || untold;
        }
    }
    return untold;
}

/// Brings the pointer and the keys of the context to where the event has them.
void InputFeed::feedMouse(const InputEvent& event)
{
    OruSceneEventContext& ctx = host_.context();
    const auto modifier = static_cast<KeyModifier>(event.modifiers);
    switch (event.kind) {
    case Kind::Press:
        held_[slot(event.button)] = Held{true, event.pixel};
        ctx.mouse.press(event.button, modifier, event.pixel);
        break;
    case Kind::Release:
        held_[slot(event.button)].down = false;
        ctx.mouse.release(event.button, modifier, event.pixel);
        break;
    case Kind::Move:
        ctx.mouse.move(event.pixel, modifier);
        break;
    case Kind::Wheel:
        ctx.mouse.wheel(event.amount * wheelStep, modifier, event.pixel);
        break;
    case Kind::KeyPress:
    case Kind::KeyRelease:
        ctx.mouse.setModifier(modifier);
        ctx.key = event.amount;
        break;
    default:
        return; // leaves the modifiers as the last event had them
    }
    ctx.keyModifiers = event.modifiers;
}

bool InputFeed::press(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel)
{
    const bool lost = held(button) && cancel(); // its release never came
    return apply({Kind::Press, button, modifiers, pixel, 0}) || lost;
}

bool InputFeed::release(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel)
{
    const Held held = held_[slot(button)];
    if (!held.down) {
        return false;
    }
    bool repaint = apply({Kind::Release, button, modifiers, pixel, 0});
    const QPoint way = pixel - held.pressed;
    if (std::abs(way.x()) <= dragThreshold_ && std::abs(way.y()) <= dragThreshold_) {
        repaint |= apply(plainEvent(Kind::Click));
    }
    return repaint;
}

bool InputFeed::doubleClick(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel)
{
    const bool repaint = press(button, modifiers, pixel);
    return apply(plainEvent(Kind::DoubleClick)) || repaint;
}

bool InputFeed::move(unsigned int modifiers, const QPoint& pixel)
{
    return apply({Kind::Move, OruMouse::ButtonPick, modifiers, pixel, 0});
}

bool InputFeed::wheel(int eighths, unsigned int modifiers, const QPoint& pixel)
{
    turned_ += eighths;
    bool repaint = false;
    while (std::abs(turned_) >= wheelStep) {
        const int step = turned_ > 0 ? 1 : -1;
        turned_ -= step * wheelStep;
        repaint |= apply({Kind::Wheel, OruMouse::ButtonPick, modifiers, pixel, step});
    }
    return repaint;
}

bool InputFeed::keyPress(int key, unsigned int modifiers)
{
    return apply(keyEvent(Kind::KeyPress, key, modifiers));
}

bool InputFeed::keyRelease(int key, unsigned int modifiers)
{
    return apply(keyEvent(Kind::KeyRelease, key, modifiers));
}

bool InputFeed::focus(bool in)
{
    return apply(plainEvent(in ? Kind::FocusIn : Kind::FocusOut));
}

bool InputFeed::enter(bool in)
{
    // A hover ends outside: an object that is entered again tells its tooltip again.
    const bool left = !in && !anyHeld() && move(0, outside);
    return apply(plainEvent(in ? Kind::Enter : Kind::Leave)) || left;
}

bool InputFeed::cancel()
{
    return anyHeld() && apply(plainEvent(Kind::Cancel));
}

bool InputFeed::anyHeld() const
{
    return std::any_of(held_.begin(), held_.end(), [](const Held& button) { return button.down; });
}

bool InputFeed::endGesture()
{
    OruSceneEventContext& ctx = host_.context();
    bool repaint = ctx.boxZoom != OruOglViewport();
    ctx.boxZoom = OruOglViewport();
    std::exception_ptr thrown;
    for (std::size_t i = 0; i < held_.size(); ++i) {
        if (std::exchange(held_[i].down, false)) {
            ctx.mouse.release(static_cast<OruMouse::Button>(i + 1), ctx.mouse.curmodifier(),
                              ctx.mouse.curpos());
            try {
                repaint |= host_.send(&OruSceneEventHandler::mouseRelease);
            } catch (...) {
                thrown = std::current_exception(); // the other buttons have to go up, too
            }
        }
    }
    if (thrown) {
        std::rethrow_exception(thrown);
    }
    return repaint;
}

} // namespace hostkit
