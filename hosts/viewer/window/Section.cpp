#include "hosts/viewer/window/Section.h"

#include "contracts/core/OruText.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "hosts/mesh/SectionPlanes.h"
#include "hosts/widgets/SceneWidget.h"

#include <cmath>
#include <limits>
#include <utility>

using hostkit::HostScene;
using hostkit::SectionPlane;
using hostkit::SectionPlanes;

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// Whether the eye is on the negative side of a plane across an axis: the third column of a view tells how
/// much each axis points at the eye.
bool seenFromBelow(const Kelvar::Math::Matrix& view, int axis)
{
    return view(axis, 2) < 0.0f;
}

} // namespace

Section::Section(hostkit::SceneWidget& view, QObject* parent)
    : QObject(parent)
    , view_(view)
    , taken_(none)
{}

/// Null: there is no scene, or it has none.
SectionPlanes* Section::planes() const
{
    return view_.window().hasScene()
               ? dynamic_cast<SectionPlanes*>(
                     view_.host().scene().render.visualizations[SectionPlanes::usualName])
               : nullptr;
}

void Section::edit(int axis, const QString& key, const QString& value)
{
    view_.window().changeAndTell([&](HostScene& host) {
        host.edit(planes()->plane(axis), key, value);
        return true;
    });
}

void Section::setActive(int axis, bool active)
{
    SectionPlanes* const all = planes();
    if (!all || all->plane(axis).active.value() == active) {
        return;
    }
    SectionPlane& plane = all->plane(axis);
    double low = 0.0;
    double high = 0.0;
    const bool aside = range(axis, low, high) &&
                       (plane.position.value() == 0.0 || position(axis) <= low || position(axis) >= high);
    view_.window().changeAndTell([&](HostScene& host) {
        const bool flipped = seenFromBelow(host.view(), axis);
        OruVisList& list = host.scene().render.visualizations;
        host.scene().inEditSession([&](IOruVisPropertyEdit& editor) {
            if (active && aside) {
                editor.editValue(&list, &plane, plane.position.name(), oru::toString((low + high) / 2.0));
            }
            if (active && plane.flipped.value() != flipped) {
                editor.editValue(&list, &plane, plane.flipped.name(), oru::toString(flipped));
            }
            editor.editValue(&list, &plane, plane.active.name(), oru::toString(active));
        });
        host.changed();
        return true;
    });
}

bool Section::isActive(int axis) const
{
    const SectionPlanes* const all = planes();
    return all && all->plane(axis).active.value();
}

bool Section::anyActive() const
{
    const SectionPlanes* const all = planes();
    return all && !all->active().empty();
}

void Section::switchAllOff()
{
    view_.window().changeAndTell([&](HostScene& host) {
        host.scene().inEditSession([&](IOruVisPropertyEdit& editor) {
            for (int axis = 0; axis < 3; ++axis) {
                if (isActive(axis)) {
                    SectionPlane& plane = planes()->plane(axis);
                    editor.editValue(&host.scene().render.visualizations, &plane, plane.active.name(),
                                     oru::toString(false));
                }
            }
        });
        host.changed();
        return true;
    });
}

void Section::setFlipped(int axis, bool flipped)
{
    if (planes() && isFlipped(axis) != flipped) {
        edit(axis, planes()->plane(axis).flipped.name(), oru::toString(flipped));
    }
}

bool Section::isFlipped(int axis) const
{
    const SectionPlanes* const all = planes();
    return all && all->plane(axis).flipped.value();
}

/// The step goes from where the hand took the plane.
void Section::setPosition(int axis, double position)
{
    SectionPlanes* const all = planes();
    if (!all) {
        return;
    }
    const double taken = std::exchange(taken_, none);
    if (!std::isnan(taken)) {
        all->plane(axis).position.setValue(taken);
    }
    if (all->plane(axis).position.value() != position) {
        edit(axis, all->plane(axis).position.name(), oru::toString(position));
    }
}

double Section::position(int axis) const
{
    const SectionPlanes* const all = planes();
    return all ? all->plane(axis).place() : 0.0;
}

void Section::slide(int axis, double position)
{
    if (SectionPlanes* const all = planes()) {
        view_.window().changeAndTell([&](HostScene& host) {
            taken_ = std::isnan(taken_) ? all->plane(axis).position.value() : taken_;
            all->plane(axis).position.setValue(position);
            host.changed();
            return true;
        });
    }
}

bool Section::sliding() const
{
    return !std::isnan(taken_);
}

bool Section::range(int axis, double& low, double& high) const
{
    const SectionPlanes* const all = planes();
    const Kelvar::Math::BoundingBox box = all ? all->extent() : Kelvar::Math::BoundingBox();
    if (!box.defined()) {
        return false;
    }
    const float lows[] = {box.min().x, box.min().y, box.min().z};
    const float highs[] = {box.max().x, box.max().y, box.max().z};
    low = static_cast<double>(lows[axis]);
    high = static_cast<double>(highs[axis]);
    return true;
}
