#pragma once

#include "contracts/core/OruMouse.h"
#include "contracts/math/Matrix.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/InputEvent.h"
#include "hosts/host/kelvar_host_api.h"

#include <QPoint>

#include <array>
#include <functional>

namespace hostkit {

/// Turns what pointer, wheel and keyboard do into the events of a scene, whatever the window system.
///
/// Positions are OpenGL window coordinates in pixels. `modifiers` is one word of bits: 1 is the first
/// modifier (Ctrl), 2 the second (Shift), any further bit another key. Each operation answers whether the
/// view wants a repaint. The OpenGL context is current.
class KELVAR_HOST_API InputFeed
{
public:
    /// Hears of every event before the scene does.
    using Listener = std::function<void(const InputEvent&)>;

    /// `host` is borrowed.
    explicit InputFeed(HostScene& host);

    void setListener(const Listener& listener) { listener_ = listener; }

    /// Sends one event as it stands; one that is not possible() is ignored. All operations below end here, so
    /// a listener that keeps the events can play them again.
    bool apply(const InputEvent& event);

    /// A release within that many pixels of its press on each axis is a click. Starts as 4.
    void setDragThreshold(int pixels) { dragThreshold_ = pixels; }

    /// A button that is held already lost its release: the gesture is cancelled first.
    bool press(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel);

    /// The release, and a click if the pointer is still where the press was. Ignored for a button that is not
    /// held.
    bool release(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel);

    /// The second press of a double click; its release comes by release().
    bool doubleClick(OruMouse::Button button, unsigned int modifiers, const QPoint& pixel);

    /// With a button held it is a drag; then, and while a key modifies the pointer, the tooltip goes.
    bool move(unsigned int modifiers, const QPoint& pixel);

    /// Turns the wheel by that many steps, positive away from the person, which enlarges what lies under the
    /// pointer. A fraction of a step, as fine wheels and touchpads report it, zooms by that fraction. More
    /// than InputEvent::mostAmount counts as that; what is no finite number is ignored, and so for two
    /// fingers.
    bool wheel(double steps, unsigned int modifiers, const QPoint& pixel);

    /// Two fingers: enlarges what lies between them by `factor`, or turns it counter-clockwise, in degrees.
    bool pinch(double factor, const QPoint& pixel);
    bool turn(double degrees, const QPoint& pixel);

    /// `key` is a letter as upper-case ASCII, or any other code.
    bool keyPress(int key, unsigned int modifiers);
    bool keyRelease(int key, unsigned int modifiers);

    bool focus(bool in);

    /// The pointer came into the view, or left it. Leaving with no button held ends the hover as well.
    bool enter(bool in);

    /// A gesture is under way: some button is held.
    bool gesture() const { return anyHeld(); }

    /// A wheel, or two fingers, are changing the view at this moment.
    bool zooming() const { return zooming_; }

    bool held(OruMouse::Button button) const { return held_[slot(button)].down; }

    /// Ends a gesture that the window system took away: the rubber band goes, and every held button gets its
    /// release, outside of the view, so that no box zoom runs, nothing is dropped, and no edit session stays
    /// open.
    bool cancel();

    /// As cancel(), and the view, or the object that was dragged, goes back to where it was when the gesture
    /// began: what Esc does.
    bool abort();

    /// Asks anew what lies under the pointer, which stands still while the view changed: no tooltip of
    /// something that is no longer there stays. A move on the spot; none while a button is held.
    bool hoverAgain();

private:
    struct Held
    {
        bool down = false;
        QPoint pressed;
    };

    bool anyHeld() const;
    static std::size_t slot(OruMouse::Button button) { return static_cast<std::size_t>(button - 1); }
    bool perform(const InputEvent& event);
    void feedMouse(const InputEvent& event);
    InputEvent stillMove() const;
    bool hover();
    bool dropTooltip();
    bool dispatch(const InputEvent& event);
    bool turnWheel(double steps, const QPoint& pixel);
    bool endGesture();
    bool abortGesture();

    HostScene& host_;
    Listener listener_;
    std::array<Held, 3> held_;
    int dragThreshold_ = 4;
    bool zooming_ = false;
    /// The view when the first of the held buttons went down.
    Kelvar::Math::Matrix viewBefore_;
};

} // namespace hostkit
