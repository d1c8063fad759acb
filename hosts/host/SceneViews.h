#pragma once

#include "hosts/host/HostScene.h"
#include "hosts/host/kelvar_host_api.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

class OruVisViewpoint;

namespace hostkit {

/// The views that a person keeps: named viewpoints among the visualizations, saved with the tree.
///
/// The viewpoint that the scene shows, the one that its context names, is not one of them: going to a view
/// copies it there, so that turning the view afterwards changes none that was kept. The OpenGL context is
/// current where a picture is made; the other operations need none.
class KELVAR_HOST_API SceneViews
{
public:
    /// `host` is borrowed.
    explicit SceneViews(HostScene& host);

    /// In the order in which they were added.
    QStringList names() const;

    /// Keeps the view that the scene shows. False: the tree refuses the name, because it is taken, empty or
    /// holds a '/'.
    bool add(const QString& name);

    /// A name that is free: "View 1", "View 2" and so on.
    QString freeName() const;

    /// Makes the scene show a view, as one edit. False: there is none of that name, or it shows already.
    bool show(const QString& name);

    /// The name of the view behind, or ahead of, the one that was shown last, round and round; empty: there
    /// is none at all.
    QString next() const { return neighbour(1); }
    QString previous() const { return neighbour(-1); }

    /// False: there is no view of that name, or the tree refuses the new one; nothing changed.
    bool rename(const QString& name, const QString& newName);
    bool remove(const QString& name);

    /// What a view shows, of that size in pixels; null: there is none of that name, or no picture can be
    /// made.
    QImage picture(const QString& name, const QSize& pixels);

private:
    OruVisViewpoint* find(const QString& name) const;
    QString neighbour(int way) const;

    HostScene& host_;
    QString shown_;
};

} // namespace hostkit
