#include "hosts/viewer/window/PickThrough.h"

#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/widgets/SceneWidget.h"

#include <algorithm>

using hostkit::PartVisualization;

PickThrough::PickThrough(hostkit::SceneWidget& view)
    : view_(view)
{}

const PartVisualization* PickThrough::next(const QPoint& pixel)
{
    const Kelvar::Math::Matrix& shown = view_.host().context().modelView;
    const bool again = (pixel - pixel_).manhattanLength() <= mostPixels && shown == seen_;
    if (!again) {
        pixel_ = pixel;
        seen_ = shown;
        taken_.clear();
    }
    const std::vector<const PartVisualization*> parts = partsAt(pixel_);
    if (parts.empty()) {
        return nullptr;
    }
    const auto last = std::find_if(parts.begin(), parts.end(),
                                   [&](const PartVisualization* part) { return part->path() == taken_; });
    // The click has turned the mark of the first one round already.
    const bool stillChosen = last != parts.end() && (*last)->marked.value() != (last == parts.begin());
    const auto next = stillChosen ? last + 1 : parts.begin();
    const PartVisualization* const found = next == parts.end() ? parts.front() : *next;
    taken_ = found->path();
    return found;
}

/// From the nearest to the farthest.
std::vector<const PartVisualization*> PickThrough::partsAt(const QPoint& pixel) const
{
    hostkit::HostScene& host = view_.host();
    OruSceneSelectContext window(host.context());
    window.pickPoint = pixel;
    const int edge = qRound(host.scene().render.pickSize.value());
    window.pickSize = QSize(edge, edge);
    OruScene::setViewing(window);
    const OruVisHitRecordList hits = host.scene().render.select(window);

    std::vector<const OruVisHitRecordList::Entry*> ordered;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        ordered.push_back(&hits.at(i));
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto* a, const auto* b) {
        return std::make_pair(a->record.distance, a->centerDistance) <
               std::make_pair(b->record.distance, b->centerDistance);
    });
    std::vector<const PartVisualization*> parts;
    for (const OruVisHitRecordList::Entry* const hit : ordered) {
        if (const auto* const part = dynamic_cast<const PartVisualization*>(hit->visualization)) {
            parts.push_back(part);
        }
    }
    return parts;
}
