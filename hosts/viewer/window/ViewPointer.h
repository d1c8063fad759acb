#pragma once

#include "contracts/math/Vector3.h"

#include <QObject>
#include <QPoint>

#include <boost/shared_ptr.hpp>

#include <functional>

struct OruVisHitRecord;
class OruVisualization;

namespace hostkit {
class SceneWidget;
} // namespace hostkit

/// What the pointer does with the objects of a view, for whoever in the window wants to know.
///
/// It is the controller of the view's scene, and of the next one where that is made anew.
class ViewPointer : public QObject
{
    Q_OBJECT

public:
    /// Something under the pointer.
    struct Target
    {
        /// Borrowed for the length of the call; null: nothing.
        const OruVisualization* object = nullptr;
        /// In window coordinates, and its depth there, 0 near to 1 far.
        QPoint pixel;
        double depth = 1.0;
        /// In world coordinates; of no meaning for nothing.
        Kelvar::Math::Vector3 point;
        /// Ctrl was held, and no other key.
        bool withModifier = false;
    };

    /// Called within the edit session of the click, behind the object's own handler. True: something has
    /// changed.
    using Clicks = std::function<bool(const Target&)>;

    /// `view` is borrowed and has to live as long.
    explicit ViewPointer(hostkit::SceneWidget& view, QObject* parent = nullptr);
    ~ViewPointer() override;

    /// Who gets the clicks, unless a tool does.
    void setClicks(const Clicks& clicks) { clicks_ = clicks; }

    /// Who gets them as long as a tool is on; empty: no tool.
    void setToolClicks(const Clicks& clicks) { toolClicks_ = clicks; }

Q_SIGNALS:
    /// The pointer rests on an object, or has moved on it.
    void hovered(const Target& target);

    /// The pointer has left an object; one that it moves on to is told next.
    void left();

private:
    class Controller;

    void install();
    Target targetOf(const OruVisHitRecord& hit, const OruVisualization* object) const;
    bool click(const Target& target);

    hostkit::SceneWidget& view_;
    boost::shared_ptr<Controller> controller_;
    Clicks clicks_;
    Clicks toolClicks_;
};
