#include "hosts/kit/InputFeed.h"

#include <cstdlib>

namespace hostkit {

using Kelvar::UI::Toolkit::KeyModifier;

InputFeed::InputFeed(HostScene& host)
    : host_(host)
{}

bool InputFeed::press(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel)
{
    held_[slot(button)] = Held{true, pixel};
    context(modifiers).mouse.press(button, static_cast<KeyModifier>(modifiers), pixel);
    return host_.send(&OruSceneEventHandler::mousePress);
}

bool InputFeed::release(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel)
{
    Held& held = held_[slot(button)];
    if (!held.down) {
        return false;
    }
    held.down = false;
    context(modifiers).mouse.release(button, static_cast<KeyModifier>(modifiers), pixel);
    bool repaint = host_.send(&OruSceneEventHandler::mouseRelease);
    const QPoint way = pixel - held.pressed;
    if (std::abs(way.x()) <= dragThreshold_ && std::abs(way.y()) <= dragThreshold_) {
        repaint |= host_.send(&OruSceneEventHandler::mouseClick);
    }
    return repaint;
}

bool InputFeed::doubleClick(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel)
{
    const bool repaint = press(button, modifiers, pixel);
    return host_.send(&OruSceneEventHandler::mouseDoubleClick) || repaint;
}

bool InputFeed::move(unsigned int modifiers, const QPoint& pixel)
{
    context(modifiers).mouse.move(pixel, static_cast<KeyModifier>(modifiers));
    return host_.send(&OruSceneEventHandler::mouseMove);
}

bool InputFeed::wheel(int eighths, unsigned int modifiers, const QPoint& pixel)
{
    turned_ += eighths;
    bool repaint = false;
    for (; std::abs(turned_) >= wheelStep; turned_ -= turned_ > 0 ? wheelStep : -wheelStep) {
        const int step = turned_ > 0 ? wheelStep : -wheelStep;
        context(modifiers).mouse.wheel(step, static_cast<KeyModifier>(modifiers), pixel);
        repaint |= host_.send(&OruSceneEventHandler::mouseWheel);
    }
    return repaint;
}

bool InputFeed::keyPress(int key, unsigned int modifiers)
{
    context(modifiers).mouse.setModifier(static_cast<KeyModifier>(modifiers));
    host_.context().key = key;
    return host_.send(&OruSceneEventHandler::keyPress);
}

bool InputFeed::keyRelease(int key, unsigned int modifiers)
{
    context(modifiers).mouse.setModifier(static_cast<KeyModifier>(modifiers));
    host_.context().key = key;
    return host_.send(&OruSceneEventHandler::keyRelease);
}

bool InputFeed::focus(bool in)
{
    return host_.send(in ? &OruSceneEventHandler::focusIn : &OruSceneEventHandler::focusOut);
}

bool InputFeed::enter(bool in)
{
    return host_.send(in ? &OruSceneEventHandler::mouseEnter : &OruSceneEventHandler::mouseLeave);
}

bool InputFeed::cancel()
{
    OruSceneEventContext& ctx = host_.context();
    bool repaint = ctx.boxZoom != OruOglViewport();
    ctx.boxZoom = OruOglViewport();
    for (std::size_t i = 0; i < held_.size(); ++i) {
        if (held_[i].down) {
            held_[i].down = false;
            ctx.mouse.release(static_cast<OruMouse::Button>(i + 1), ctx.mouse.curmodifier(),
                              ctx.mouse.curpos());
            repaint |= host_.send(&OruSceneEventHandler::mouseRelease);
        }
    }
    return repaint;
}

OruSceneEventContext& InputFeed::context(unsigned int modifiers)
{
    host_.context().keyModifiers = modifiers;
    return host_.context();
}

} // namespace hostkit
