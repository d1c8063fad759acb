#pragma once

#include "hosts/mesh/Measures.h"
#include "hosts/mesh/SnapFinder.h"
#include "hosts/viewer/window/Selection.h"
#include "hosts/viewer/window/ViewPointer.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QUndoCommand;

namespace hostkit {
class HostScene;
class Measure;
class SceneWidget;
} // namespace hostkit

/// Measures in a view: from point to point by two clicks, and the box of the marked parts. What is measured
/// goes into the scene's Measures, each as one step of the view's undo stack.
///
/// While it is on, the pointer shows the corner, the edge or the place on a surface that a click would take,
/// and clicks mark no parts; drags turn the view as ever.
class MeasureTool : public QObject
{
    Q_OBJECT

public:
    /// How near a corner or an edge has to be, in pixels of the screen's scale.
    static constexpr double reach = 8.0;

    /// All are borrowed and have to live as long.
    MeasureTool(hostkit::SceneWidget& view, ViewPointer& pointer, const Selection& selection,
                QObject* parent = nullptr);
    ~MeasureTool() override;

    bool isOn() const { return on_; }
    void setOn(bool on);

    /// Takes the first point back, and switches the tool off where there is none.
    void back();

    /// Forgets the first point: it belonged to models that are gone.
    void forget();

    /// How many measures the scene has.
    unsigned int count() const;

    /// Measures the box of the marked parts. False: none is marked.
    bool measureBox();

    /// Takes the last measure out, or all.
    void removeLast();
    void clear();

    /// All measures as a table, see Measures::text; the second puts it on the clipboard.
    QString text() const;
    void copy() const;

Q_SIGNALS:
    void switched(bool on);

    /// What to do next, or what was measured; a phrase for a status bar. Empty: nothing.
    void told(const QString& phrase);

private:
    /// Where a measure begins, or would.
    struct Found
    {
        /// In the coordinates of measures.
        hostkit::Point point;
        hostkit::SnapFinder::Kind kind;
        QString unit;
    };

    hostkit::Measures* measures() const;
    std::optional<Found> find(const ViewPointer::Target& target);
    std::optional<double> depthAt(const QPoint& pixel, int size);
    void show(const std::optional<Found>& found);
    bool click(const ViewPointer::Target& target);
    void take(const Found& found);
    void add(hostkit::Measure& measure);
    void remove(unsigned int first, const QString& text);
    void tellNext();

    hostkit::SceneWidget& view_;
    ViewPointer& pointer_;
    const Selection& selection_;
    bool on_ = false;
    /// Nothing: the next click is the first.
    std::optional<Found> from_;
};
