#pragma once

#include <QColor>
#include <QObject>
#include <QString>

namespace hostkit {
class SceneWidget;
} // namespace hostkit

/// How a view shows all of its models. Each operation is one step that can be undone.
class Appearance : public QObject
{
    Q_OBJECT

public:
    /// `view` is borrowed and has to live as long.
    explicit Appearance(hostkit::SceneWidget& view, QObject* parent = nullptr);

    /// Shows all surfaces in one of the ways that MeshVisualization::edgeWords has.
    void setEdges(const QString& edges);

    /// The way of the first surface; empty: there is none.
    QString edges() const;

    void setBackground(const QColor& color);
    QColor background() const;

    /// The three lights of LightRig, or its first one alone.
    void setRig(bool on);
    bool rig() const;

private:
    hostkit::SceneWidget& view_;
};
