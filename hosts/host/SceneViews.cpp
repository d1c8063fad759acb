#include "hosts/host/SceneViews.h"

#include "contracts/core/OruText.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <memory>

namespace hostkit {

SceneViews::SceneViews(HostScene& host)
    : host_(host)
{}

/// Null for the viewpoint that the scene shows.
OruVisViewpoint* SceneViews::find(const QString& name) const
{
    const bool kept = name != host_.context().viewpointName;
    return kept ? dynamic_cast<OruVisViewpoint*>(host_.scene().render.visualizations[name]) : nullptr;
}

QStringList SceneViews::names() const
{
    QStringList names;
    const OruVisList& list = host_.scene().render.visualizations;
    for (unsigned int i = 0; i < list.size(); ++i) {
        if (find(list.at(i)->name())) {
            names.append(list.at(i)->name());
        }
    }
    return names;
}

bool SceneViews::add(const QString& name)
{
    OruVisList& list = host_.scene().render.visualizations;
    auto view = std::make_unique<OruVisViewpoint>(list.group);
    view->setValue(view->matrix.name(), oru::toString(host_.view()));
    if (!view->rename(name) || !list.insert(view.get(), false)) {
        return false;
    }
    static_cast<void>(view.release()); // the list's from now on
    shown_ = name;
    return true;
}

QString SceneViews::freeName() const
{
    int number = names().size();
    QString name;
    do {
        name = QStringLiteral("View %1").arg(++number);
    } while (host_.scene().render.visualizations.childByName(name));
    return name;
}

bool SceneViews::show(const QString& name)
{
    const OruVisViewpoint* const view = find(name);
    if (!view) {
        return false;
    }
    shown_ = name;
    return host_.setView(view->matrix.value());
}

QString SceneViews::neighbour(int way) const
{
    const QStringList all = names();
    if (all.isEmpty()) {
        return QString();
    }
    const int count = static_cast<int>(all.size());
    const int shown = static_cast<int>(all.indexOf(shown_));
    const int start = shown < 0 && way < 0 ? 0 : shown;
    return all.at((start + way + count) % count);
}

bool SceneViews::rename(const QString& name, const QString& newName)
{
    OruVisViewpoint* const view = find(name);
    if (!view || !view->rename(newName)) {
        return false;
    }
    shown_ = shown_ == name ? newName : shown_;
    return true;
}

bool SceneViews::remove(const QString& name)
{
    OruVisViewpoint* const view = find(name);
    return view && host_.scene().render.visualizations.erase(view);
}

QImage SceneViews::picture(const QString& name, const QSize& pixels)
{
    const OruVisViewpoint* const view = find(name);
    return view ? host_.picture(pixels, view->matrix.value()) : QImage();
}

} // namespace hostkit
