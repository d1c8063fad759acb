#include "hosts/viewer/window/MeasureTool.h"

#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/core/OruText.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "hosts/host/HostScene.h"
#include "hosts/mesh/BoxMeasure.h"
#include "hosts/mesh/DistanceMeasure.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartPlace.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/widgets/NodeCommand.h"
#include "hosts/widgets/SceneWidget.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTimer>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

using hostkit::HostScene;
using hostkit::Measures;
using hostkit::NodeCommand;
using hostkit::Origin;
using hostkit::PartPlace;
using hostkit::PartVisualization;
using hostkit::Point;

namespace {

Point moved(const Point& point, const Origin& origin)
{
    return {point[0] + origin[0], point[1] + origin[1], point[2] + origin[2]};
}

QString unitOf(const PartVisualization& part)
{
    QString unit;
    if (const hostkit::ModelList* const model = PartPlace::modelOf(part)) {
        model->getValue(QStringLiteral("unit"), unit, QString());
    }
    return unit;
}

PartPlace::Box around(const Selection::Parts& parts)
{
    PartPlace::Box box = PartPlace::boxInScene(*parts.front());
    for (const PartVisualization* const part : parts) {
        const PartPlace::Box own = PartPlace::boxInScene(*part);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            box.first[axis] = std::min(box.first[axis], own.first[axis]);
            box.second[axis] = std::max(box.second[axis], own.second[axis]);
        }
    }
    return box;
}

} // namespace

MeasureTool::MeasureTool(hostkit::SceneWidget& view, ViewPointer& pointer, const Selection& selection,
                         QObject* parent)
    : QObject(parent)
    , view_(view)
    , pointer_(pointer)
    , selection_(selection)
{
    connect(&pointer, &ViewPointer::hovered, this, [this](const ViewPointer::Target& target) {
        if (on_) {
            show(find(target));
        }
    });
    connect(&pointer, &ViewPointer::left, this, [this] {
        if (on_) {
            show(std::nullopt);
        }
    });
    connect(&view.window(), &hostkit::SceneWindow::sceneRenewed, this, &MeasureTool::forget);
}

void MeasureTool::forget()
{
    from_.reset();
    show(std::nullopt);
    if (on_) {
        tellNext();
    }
}

/// Who listens may be half gone by now.
MeasureTool::~MeasureTool()
{
    blockSignals(true);
    setOn(false);
}

void MeasureTool::setOn(bool on)
{
    if (std::exchange(on_, on) == on) {
        return;
    }
    from_.reset();
    pointer_.setToolClicks(on ? [this](const ViewPointer::Target& target) { return click(target); }
                              : ViewPointer::Clicks());
    on ? view_.window().setCursor(Qt::CrossCursor) : view_.window().unsetCursor();
    show(std::nullopt);
    tellNext();
    Q_EMIT switched(on);
}

/// Null: there is no such list, or no scene.
Measures* MeasureTool::measures() const
{
    if (!view_.window().hasScene()) {
        return nullptr;
    }
    return dynamic_cast<Measures*>(
        view_.host().scene().render.visualizations.childByName(Measures::usualName));
}

unsigned int MeasureTool::count() const
{
    const Measures* const list = measures();
    return list ? list->size() : 0;
}

std::optional<MeasureTool::Found> MeasureTool::find(const ViewPointer::Target& target)
{
    const auto* const part = dynamic_cast<const PartVisualization*>(target.object);
    const Measures* const list = measures();
    if (!part || !list) {
        return std::nullopt;
    }
    const hostkit::SnapFinder finder(*hostkit::PartView::of(view_.host().context()),
                                     reach * view_.window().devicePixelRatio(),
                                     [this](const QPoint& pixel, int size) { return depthAt(pixel, size); });
    const hostkit::SnapFinder::Snap snap = finder.find(*part, target.pixel, target.depth);
    return Found{moved(snap.point, PartPlace::originBeside(*list)), snap.kind, unitOf(*part)};
}

/// What a pick there would hit.
std::optional<double> MeasureTool::depthAt(const QPoint& pixel, int size)
{
    HostScene& host = view_.host();
    OruSceneSelectContext select(host.context());
    select.pickPoint = pixel;
    select.pickSize = QSize(size, size);
    OruScene::setViewing(select);
    const OruVisHitRecordList hits = host.scene().render.select(select);
    return OruVisHitRecordQuery::any(hits)
               ? std::make_optional(OruVisHitRecordQuery::top(hits, nullptr, nullptr).distance)
               : std::nullopt;
}

void MeasureTool::show(const std::optional<Found>& found)
{
    Measures* const list = measures();
    if (!list) {
        return;
    }
    std::optional<Measures::Pointer> shown;
    if (found) {
        shown = Measures::Pointer{found->point, found->kind, std::nullopt, found->unit};
        if (from_) {
            shown->from = from_->point;
        }
    }
    list->setPointer(shown);
    view_.window().requestUpdate();
}

/// The part has just been marked, which is taken back within the same edit session. What comes of the click
/// is made once the scene is done with it.
bool MeasureTool::click(const ViewPointer::Target& target)
{
    if (const auto* const part = dynamic_cast<const PartVisualization*>(target.object)) {
        OruProperties* const node = view_.host().scene().find(part->path());
        view_.host().edit(*node, part->marked.name(), oru::toString(!part->marked.value()));
    }
    if (const std::optional<Found> found = find(target)) {
        QTimer::singleShot(0, this, [this, found] {
            if (on_) {
                take(*found);
            }
        });
    }
    return false;
}

/// The same point again makes nothing.
void MeasureTool::take(const Found& found)
{
    if (!from_) {
        from_ = found;
        show(found);
        tellNext();
        return;
    }
    if (found.point == from_->point || !measures()) {
        return;
    }
    hostkit::DistanceMeasure measure(measures()->group);
    measure.setPoints(from_->point, found.point);
    measure.setUnit(from_->unit);
    from_.reset();
    show(std::nullopt);
    add(measure);
}

bool MeasureTool::measureBox()
{
    const Selection::Parts parts = measures() ? selection_.parts() : Selection::Parts();
    if (parts.empty()) {
        return false;
    }
    const PartPlace::Box box = around(parts);
    const Origin origin = PartPlace::originBeside(*measures());
    hostkit::BoxMeasure measure(measures()->group);
    measure.setPoints(moved(box.first, origin), moved(box.second, origin));
    measure.setUnit(unitOf(*parts.front()));
    add(measure);
    return true;
}

void MeasureTool::add(hostkit::Measure& measure)
{
    measure.rename(measures()->freeName(measure.kindName()));
    view_.undo().edits().push(
        new NodeCommand(view_.window(), NodeCommand::Insert, measures()->path(), measure));
    Q_EMIT told(measure.name() + QStringLiteral(": ") +
                measure.text(Kelvar::Math::NumberFormat()).replace(QLatin1Char('\n'), QStringLiteral("   ")));
}

void MeasureTool::removeLast()
{
    if (count() > 0) {
        const OruProperties& last = *measures()->at(count() - 1);
        view_.undo().edits().push(
            new NodeCommand(view_.window(), NodeCommand::Remove, measures()->path(), last));
    }
}

void MeasureTool::clear()
{
    if (count() == 0) {
        return;
    }
    auto* const all = new QUndoCommand(tr("Delete all measures"));
    for (unsigned int i = 0; i < count(); ++i) {
        new NodeCommand(view_.window(), NodeCommand::Remove, measures()->path(), *measures()->at(i), all);
    }
    view_.undo().edits().push(all);
}

QString MeasureTool::text() const
{
    const Measures* const list = measures();
    return list ? list->text() : QString();
}

void MeasureTool::copy() const
{
    QGuiApplication::clipboard()->setText(text());
}

void MeasureTool::back()
{
    if (!from_) {
        setOn(false);
        return;
    }
    from_.reset();
    show(std::nullopt);
    tellNext();
}

void MeasureTool::tellNext()
{
    Q_EMIT told(!on_     ? QString()
                : !from_ ? tr("Click the first point")
                         : tr("Click the second point; Esc calls it off"));
}
