#include "hosts/viewer/window/Selection.h"

#include "contracts/core/OruText.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartPlace.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/widgets/SceneWidget.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <unordered_set>

using hostkit::HostScene;
using hostkit::ModelList;
using Kelvar::Math::BoundingBox;

namespace {

const QString visibleKey = QStringLiteral("visible");

void collect(OruProperties& node, Selection::Parts& parts)
{
    if (auto* const part = dynamic_cast<Selection::Part*>(&node)) {
        parts.push_back(part);
        return;
    }
    for (unsigned int i = 0; i < node.size(); ++i) {
        if (OruProperties* const child = node.at(i)) {
            collect(*child, parts);
        }
    }
}

} // namespace

Selection::Selection(hostkit::SceneWidget& view, QObject* parent)
    : QObject(parent)
    , view_(view)
    , pickThrough_(view)
{
    connect(&view.window(), &hostkit::SceneWindow::frameDrawn, this, [this] { catchUp(); });
    connect(&view.window(), &hostkit::SceneWindow::sceneRenewed, this, [this] { catchUp(); });
}

std::vector<ModelList*> Selection::models() const
{
    std::vector<ModelList*> found;
    if (view_.window().hasScene()) {
        OruVisList& all = view_.host().scene().render.visualizations;
        for (unsigned int i = 0; i < all.size(); ++i) {
            if (auto* const model = dynamic_cast<ModelList*>(all.at(i))) {
                found.push_back(model);
            }
        }
    }
    return found;
}

Selection::Parts Selection::partsBelow(OruProperties& node)
{
    Parts parts;
    collect(node, parts);
    return parts;
}

Selection::Parts Selection::parts() const
{
    Parts chosen;
    for (ModelList* const model : models()) {
        for (Part* const part : partsBelow(*model)) {
            if (part->marked.value()) {
                chosen.push_back(part);
            }
        }
    }
    return chosen;
}

void Selection::edit(const Edits& edits)
{
    view_.window().changeAndTell([&](HostScene& host) {
        host.scene().inEditSession(edits);
        host.changed();
        return true;
    });
}

/// Leaves out what is no change: of 100,000 parts most often few change.
void Selection::set(IOruVisPropertyEdit& editor, OruProperties& node, const QString& key,
                    const QString& value) const
{
    QString present;
    node.getValue(key, present, QString());
    if (present != value) {
        editor.editValue(&view_.host().scene().render.visualizations, &node, key, value);
    }
}

void Selection::mark(IOruVisPropertyEdit& editor, const Parts& parts) const
{
    const std::unordered_set<const Part*> wanted(parts.begin(), parts.end());
    for (ModelList* const model : models()) {
        for (Part* const part : partsBelow(*model)) {
            const bool marked = wanted.count(part) != 0;
            if (part->marked.value() != marked) {
                set(editor, *part, part->marked.name(), oru::toString(marked));
            }
        }
    }
}

void Selection::select(const Parts& parts)
{
    edit([&](IOruVisPropertyEdit& editor) { mark(editor, parts); });
}

void Selection::selectAll()
{
    Parts all;
    for (ModelList* const model : models()) {
        collect(*model, all);
    }
    select(all);
}

/// With the modifier the part's own handler has done it already.
bool Selection::click(const ViewPointer::Target& target)
{
    if (target.object && !dynamic_cast<const Part*>(target.object)) {
        return false; // what is no part has its own use of a click
    }
    if (target.withModifier || !target.object) {
        pickThrough_.forget();
    }
    if (target.withModifier) {
        return target.object != nullptr;
    }
    const Part* const taken = target.object ? pickThrough_.next(target.pixel) : nullptr;
    Parts chosen;
    if (taken) {
        chosen.push_back(dynamic_cast<Part*>(view_.host().scene().find(taken->path())));
    }
    view_.host().scene().inEditSession([&](IOruVisPropertyEdit& editor) { mark(editor, chosen); });
    return true;
}

void Selection::hide()
{
    edit([this](IOruVisPropertyEdit& editor) {
        for (Part* const part : parts()) {
            set(editor, *part, visibleKey, oru::toString(false));
        }
    });
}

void Selection::isolate()
{
    edit([this](IOruVisPropertyEdit& editor) {
        for (ModelList* const model : models()) {
            for (Part* const part : partsBelow(*model)) {
                set(editor, *part, visibleKey, oru::toString(part->marked.value()));
            }
        }
        for (const Part* const part : parts()) {
            showAbove(editor, *part);
        }
    });
}

/// A part only shows in lists that show.
void Selection::showAbove(IOruVisPropertyEdit& editor, const OruProperties& part) const
{
    const OruProperties* const top = &view_.host().scene().render.visualizations;
    for (OruProperties* node = part.parent(); node && node != top; node = node->parent()) {
        set(editor, *node, visibleKey, oru::toString(true));
    }
}

void Selection::showAll()
{
    edit([this](IOruVisPropertyEdit& editor) {
        for (ModelList* const model : models()) {
            for (Part* const part : partsBelow(*model)) {
                if (!part->visible.value()) {
                    set(editor, *part, visibleKey, oru::toString(true));
                }
                showAbove(editor, *part);
            }
        }
    });
}

void Selection::setColor(const QColor& color)
{
    edit([&](IOruVisPropertyEdit& editor) {
        for (Part* const part : parts()) {
            set(editor, *part, part->color.name(), oru::toString(color));
        }
    });
}

void Selection::setOpacity(float opacity)
{
    edit([&](IOruVisPropertyEdit& editor) {
        for (Part* const part : parts()) {
            set(editor, *part, part->opacity.name(), oru::toString(opacity));
        }
    });
}

BoundingBox Selection::bounds() const
{
    BoundingBox box;
    for (const Part* const part : parts()) {
        BoundingBox own = part->bounds();
        own *= hostkit::PartPlace::modelOf(*part)->place();
        box.add(own);
    }
    return box;
}

void Selection::fit()
{
    view_.window().changeAndTell([this](HostScene& host) {
        const QScopedValueRollback<BoundingBox> shown(host.context().zoomBounds, bounds());
        return host.showFrom(QStringLiteral("fit"));
    });
}

/// Turning the view changes no model, so that a frame after it asks each model for a number.
void Selection::catchUp()
{
    std::vector<Seen> present;
    for (const ModelList* const model : models()) {
        present.emplace_back(model, model->subtreeRevision());
    }
    if (present == seen_) {
        return;
    }
    seen_ = present;
    const Parts chosen = parts();
    color_ = chosen.empty() ? QColor() : chosen.front()->color.value();
    opacity_ = chosen.empty() ? 1.0f : chosen.front()->opacity.value();
    std::size_t sum = chosen.size();
    for (const Part* const part : chosen) {
        sum = sum * 31 + part->hitName();
    }
    if (sum != sum_ || chosen.size() != count_) {
        sum_ = sum;
        count_ = chosen.size();
        Q_EMIT changed();
    }
}
