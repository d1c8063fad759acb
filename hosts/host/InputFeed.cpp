#include "hosts/host/InputFeed.h"

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/OruSceneEventHandler.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/KeyModifier.h"
#include "contracts/ogl/OruOglViewport.h"
#include "hosts/host/internal/DiscardedEdits.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <utility>

namespace hostkit {

using Kelvar::UI::Toolkit::KeyModifier;
using Kind = InputEvent::Kind;

namespace {

/// The operation of the scene that hears of each kind of event; the other kinds have none of their own.
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
    {Kind::KeyPress, &OruSceneEventHandler::keyPress},
    {Kind::KeyRelease, &OruSceneEventHandler::keyRelease},
    {Kind::FocusIn, &OruSceneEventHandler::focusIn},
    {Kind::FocusOut, &OruSceneEventHandler::focusOut},
    {Kind::Enter, &OruSceneEventHandler::mouseEnter},
    {Kind::Leave, &OruSceneEventHandler::mouseLeave},
};

/// The kinds of which many make one movement of a hand.
bool zooms(Kind kind)
{
    return kind == Kind::Wheel || kind == Kind::Pinch || kind == Kind::Turn;
}

/// Those that change the view below a pointer that stands still.
bool movesTheView(Kind kind)
{
    return zooms(kind) || kind == Kind::KeyPress;
}

/// Where the pointer is once it has left a view; far enough for a wide pick window.
const QPoint outside(-10000, -10000);

/// What one event may hold of it; what is no finite number stays that.
double limited(double amount)
{
    return std::isfinite(amount) ? std::clamp(amount, -InputEvent::mostAmount, InputEvent::mostAmount)
                                 : amount;
}

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
{
    // Nothing is hovered before the pointer has come.
    host_.context().mouse.move(outside, Kelvar::UI::Toolkit::ModifierNone);
}

bool InputFeed::apply(const InputEvent& event)
{
    if (!event.possible()) {
        return false;
    }
    if (listener_) {
        listener_(event);
    }
    const QScopedValueRollback<bool> zooming(zooming_, zooms(event.kind));
    const bool changed = perform(event);
    return movesTheView(event.kind) ? hover() || changed : changed;
}

bool InputFeed::perform(const InputEvent& event)
{
    // What a drag starts from is known, and while a key modifies the pointer the scene asks for no hover: a
    // name would only hang on the pointer.
    const bool unhovered = event.kind == Kind::Move && (anyHeld() || event.modifiers != 0);
    const bool untold = unhovered && dropTooltip();
    feedMouse(event);
    return dispatch(event) || untold;
}

bool InputFeed::dropTooltip()
{
    QString& tooltip = host_.context().tooltip;
    const bool shown = !tooltip.isEmpty();
    tooltip.clear();
    return shown;
}

bool InputFeed::dispatch(const InputEvent& event)
{
    switch (event.kind) {
    case Kind::Wheel:
        return turnWheel(event.amount, event.pixel);
    case Kind::Pinch:
        return host_.zoomAbout(event.pixel, event.amount);
    case Kind::Turn:
        return host_.turnAbout(event.pixel, event.amount);
    case Kind::Cancel:
        return endGesture();
    case Kind::Abort:
        return abortGesture();
    default:
        break;
    }
    const KindRow* const row = std::find_if(std::begin(kindRows), std::end(kindRows),
                                            [&](const KindRow& each) { return each.kind == event.kind; });
    return row != std::end(kindRows) && host_.send(row->operation);
}

/// Whole steps are wheel events of the scene; the rest of a step is that share of one.
bool InputFeed::turnWheel(double steps, const QPoint& pixel)
{
    OruSceneEventContext& ctx = host_.context();
    const OruSceneZpr& zpr = host_.scene().zpr;
    const int whole = static_cast<int>(steps);
    // The scene's wheel makes the picture smaller when it turns away from the person.
    const int away = steps > 0.0 ? -1 : 1;
    bool changed = false;
    for (int step = 0; step < std::abs(whole); ++step) {
        ctx.mouse.wheel(away, ctx.mouse.curmodifier(), pixel);
        changed |= host_.wheelAbout(pixel);
    }
    const double part = std::fmod(steps, 1.0);
    const double rest = zpr.zoomInvert.value() ? -part : part;
    return rest == 0.0 ? changed
                       : host_.zoomAbout(pixel, std::pow(zpr.zoomWheelFactor.value(), rest)) || changed;
}

/// A move to where the pointer is.
InputEvent InputFeed::stillMove() const
{
    const OruSceneEventContext& ctx = host_.context();
    return {Kind::Move, OruMouse::ButtonPick, ctx.keyModifiers, ctx.mouse.curpos(), 0};
}

bool InputFeed::hoverAgain()
{
    return !anyHeld() && apply(stillMove());
}

/// The same as a part of another event, which brings it along when it is played again.
bool InputFeed::hover()
{
    return !anyHeld() && perform(stillMove());
}

/// Brings the pointer and the keys of the context to where the event has them.
void InputFeed::feedMouse(const InputEvent& event)
{
    OruSceneEventContext& ctx = host_.context();
    const auto modifier = static_cast<KeyModifier>(event.modifiers);
    switch (event.kind) {
    case Kind::Press:
        if (!anyHeld()) {
            viewBefore_ = host_.view();
        }
        held_[slot(event.button)] = Held{true, event.pixel};
        ctx.mouse.press(event.button, modifier, event.pixel);
        break;
    case Kind::Release:
        held_[slot(event.button)].down = false;
        ctx.mouse.release(event.button, modifier, event.pixel);
        break;
    case Kind::Move:
    case Kind::Wheel:
        ctx.mouse.move(event.pixel, modifier);
        break;
    case Kind::Pinch:
    case Kind::Turn:
        ctx.mouse.move(event.pixel, ctx.mouse.curmodifier());
        return;
    case Kind::KeyPress:
    case Kind::KeyRelease:
        ctx.mouse.setModifier(modifier);
        ctx.key = static_cast<int>(event.amount);
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

bool InputFeed::wheel(double steps, unsigned int modifiers, const QPoint& pixel)
{
    return apply({Kind::Wheel, OruMouse::ButtonPick, modifiers, pixel, limited(steps)});
}

bool InputFeed::pinch(double factor, const QPoint& pixel)
{
    return factor != 1.0 && apply({Kind::Pinch, OruMouse::ButtonPick, 0, pixel, limited(factor)});
}

bool InputFeed::turn(double degrees, const QPoint& pixel)
{
    return apply({Kind::Turn, OruMouse::ButtonPick, 0, pixel, limited(degrees)});
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

bool InputFeed::abort()
{
    return anyHeld() && apply(plainEvent(Kind::Abort));
}

bool InputFeed::anyHeld() const
{
    return std::any_of(held_.begin(), held_.end(), [](const Held& button) { return button.down; });
}

/// The releases are outside of the view, so that nothing is dropped on what happens to be under the pointer.
bool InputFeed::endGesture()
{
    OruSceneEventContext& ctx = host_.context();
    const QPoint pointer = ctx.mouse.curpos();
    bool repaint = ctx.boxZoom != OruOglViewport();
    ctx.boxZoom = OruOglViewport();
    std::exception_ptr thrown;
    for (std::size_t i = 0; i < held_.size(); ++i) {
        if (std::exchange(held_[i].down, false)) {
            ctx.mouse.release(static_cast<OruMouse::Button>(i + 1), ctx.mouse.curmodifier(), outside);
            try {
                repaint |= host_.send(&OruSceneEventHandler::mouseRelease);
            } catch (...) {
                thrown = std::current_exception(); // the other buttons have to go up, too
            }
        }
    }
    ctx.mouse.move(pointer, ctx.mouse.curmodifier());
    if (thrown) {
        std::rethrow_exception(thrown);
    }
    return hover() || repaint;
}

/// The view goes back ahead of the release, so that the edit session of the gesture ends as it began. What an
/// object makes of its drag when it is released is not written.
bool InputFeed::abortGesture()
{
    const bool turned = host_.setView(viewBefore_);
    const DiscardedEdits discarded(host_.scene().render);
    return endGesture() || turned;
}

} // namespace hostkit
