#pragma once

#include "contracts/math/BoundingBox.h"
#include "hosts/viewer/window/PickThrough.h"
#include "hosts/viewer/window/ViewPointer.h"

#include <QColor>
#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

class IOruVisPropertyEdit;
class OruProperties;

namespace hostkit {
class HostScene;
class ModelList;
class PartVisualization;
class SceneWidget;
} // namespace hostkit

/// The parts of a view that are chosen: those whose property `marked` is true, and no other memory of them.
///
/// Each operation that changes something is one step that can be undone.
class Selection : public QObject
{
    Q_OBJECT

public:
    using Part = hostkit::PartVisualization;
    using Parts = std::vector<Part*>;

    /// `view` is borrowed and has to live as long.
    explicit Selection(hostkit::SceneWidget& view, QObject* parent = nullptr);

    /// The chosen parts in the order of the tree, good until that changes.
    Parts parts() const;
    bool empty() const { return count_ == 0; }
    std::size_t count() const { return count_; }

    /// All parts at and below a node, in the order of the tree.
    static Parts partsBelow(OruProperties& node);

    /// Chooses these parts and no others.
    void select(const Parts& parts);
    void selectAll();
    void clear() { select({}); }

    /// What a click in the view does, in its edit session: ViewPointer::Clicks.
    bool click(const ViewPointer::Target& target);

    /// Hides the chosen parts; shows them and no others; shows all parts and nodes.
    void hide();
    void isolate();
    void showAll();

    void setColor(const QColor& color);
    void setOpacity(float opacity);

    /// The color and the opacity of the first one as of the last frame; of no meaning for none.
    const QColor& color() const { return color_; }
    float opacity() const { return opacity_; }

    /// The extent in world coordinates; undefined for none.
    Kelvar::Math::BoundingBox bounds() const;

    /// Turns nothing, and moves the view so that it shows the chosen parts; all where none is.
    void fit();

Q_SIGNALS:
    /// Other parts are chosen than before.
    void changed();

private:
    using Edits = std::function<void(IOruVisPropertyEdit&)>;

    /// A model, and its revision when it was looked at.
    using Seen = std::pair<const hostkit::ModelList*, std::uint64_t>;

    std::vector<hostkit::ModelList*> models() const;
    void edit(const Edits& edits);
    void set(IOruVisPropertyEdit& editor, OruProperties& node, const QString& key,
             const QString& value) const;
    void mark(IOruVisPropertyEdit& editor, const Parts& parts) const;
    void showAbove(IOruVisPropertyEdit& editor, const OruProperties& part) const;
    void catchUp();

    hostkit::SceneWidget& view_;
    PickThrough pickThrough_;
    std::vector<Seen> seen_;
    std::size_t count_ = 0;
    QColor color_;
    float opacity_ = 1.0f;
    /// Tells one selection from another.
    std::size_t sum_ = 0;
};
