#pragma once

#include "contracts/core/OruMouse.h"
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
    /// One step of a common wheel, in eighths of a degree.
    static constexpr int wheelStep = 120;

    /// Hears of every event before the scene does.
    using Listener = std::function<void(const InputEvent&)>;

    /// `host` is borrowed.
    explicit InputFeed(HostScene& host);

    void setListener(const Listener& listener) { listener_ = listener; }

    /// Sends one event as it stands. All operations below end here, so a listener that keeps the events can
    /// play them again.
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

    /// With a button held it is a drag, and the tooltip goes.
    bool move(unsigned int modifiers, const QPoint& pixel);

    /// Sums small turns, as touchpads report them, to whole steps and sends each step.
    bool wheel(int eighths, unsigned int modifiers, const QPoint& pixel);

    /// `key` is a letter as upper-case ASCII, or any other code.
    bool keyPress(int key, unsigned int modifiers);
    bool keyRelease(int key, unsigned int modifiers);

    bool focus(bool in);

    /// The pointer came into the view, or left it. Leaving with no button held ends the hover as well.
    bool enter(bool in);

    bool held(OruMouse::Button button) const { return held_[slot(button)].down; }

    /// Ends a gesture that the window system took away: the rubber band goes, and every held button gets its
    /// release, so that no box zoom runs and no edit session stays open.
    bool cancel();

private:
    struct Held
    {
        bool down = false;
        QPoint pressed;
    };

    bool anyHeld() const;
    static std::size_t slot(OruMouse::Button button) { return static_cast<std::size_t>(button - 1); }
    void feedMouse(const InputEvent& event);
    bool endGesture();

    HostScene& host_;
    Listener listener_;
    std::array<Held, 3> held_;
    int dragThreshold_ = 4;
    int turned_ = 0;
};

} // namespace hostkit
