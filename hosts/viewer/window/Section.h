#pragma once

#include <QObject>

namespace hostkit {
class SceneWidget;
class SectionPlanes;
} // namespace hostkit

/// The planes that cut the models of a view open. Axes are 0 for x, 1 for y and 2 for z, positions world
/// coordinates. Each operation that changes something is one step that can be undone.
class Section : public QObject
{
    Q_OBJECT

public:
    /// `view` is borrowed and has to live as long.
    explicit Section(hostkit::SceneWidget& view, QObject* parent = nullptr);

    /// A plane that is switched on cuts away the side that the eye is on. One that nobody has moved, or that
    /// would cut nothing or all, is put into the middle.
    void setActive(int axis, bool active);
    bool isActive(int axis) const;
    bool anyActive() const;
    void switchAllOff();

    void setFlipped(int axis, bool flipped);
    bool isFlipped(int axis) const;

    void setPosition(int axis, double position);
    double position(int axis) const;

    /// Moves a plane as long as a hand is on it, without a step; setPosition() ends that with one for all.
    void slide(int axis, double position);
    bool sliding() const;

    /// What can be cut; false: there is nothing, and both stay as they were.
    bool range(int axis, double& low, double& high) const;

private:
    hostkit::SectionPlanes* planes() const;
    void edit(int axis, const QString& key, const QString& value);

    hostkit::SceneWidget& view_;
    /// Where a plane was when a hand took it; no number: no hand is on it.
    double taken_;
};
