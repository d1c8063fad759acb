#include "hosts/viewer/window/Appearance.h"

#include "contracts/core/OruText.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisLight.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/widgets/SceneWidget.h"

using hostkit::HostScene;
using hostkit::MeshVisualization;

namespace {

const QString backgroundKey = QStringLiteral("background");

/// Lights that LightRig has beyond the one that makes the form.
const QString fillLights[] = {QStringLiteral("render/visualization/lights/light.2"),
                              QStringLiteral("render/visualization/lights/light.3")};

/// Calls `action` for each surface below a node, until it answers false. False: it did.
template <typename Action>
bool forEachSurface(const OruProperties& node, const Action& action)
{
    for (unsigned int i = 0; i < node.size(); ++i) {
        OruProperties* const child = node.at(i);
        auto* const surface = dynamic_cast<MeshVisualization*>(child);
        if (surface ? !action(*surface) : (child && !forEachSurface(*child, action))) {
            return false;
        }
    }
    return true;
}

} // namespace

Appearance::Appearance(hostkit::SceneWidget& view, QObject* parent)
    : QObject(parent)
    , view_(view)
{}

void Appearance::setEdges(const QString& edges)
{
    view_.window().changeAndTell([&](HostScene& host) {
        OruScene& scene = host.scene();
        scene.inEditSession([&](IOruVisPropertyEdit& editor) {
            forEachSurface(scene.render.visualizations, [&](MeshVisualization& surface) {
                if (surface.edges.value() != edges) {
                    editor.editValue(&scene.render.visualizations, &surface, surface.edges.name(), edges);
                }
                return true;
            });
        });
        host.changed();
        return true;
    });
}

QString Appearance::edges() const
{
    QString found;
    if (view_.window().hasScene()) {
        forEachSurface(view_.host().scene().render.visualizations, [&](const MeshVisualization& surface) {
            found = surface.edges.value();
            return false;
        });
    }
    return found;
}

void Appearance::setBackground(const QColor& color)
{
    view_.window().changeAndTell([&](HostScene& host) {
        host.edit(host.scene().render, backgroundKey, oru::toString(color));
        return true;
    });
}

QColor Appearance::background() const
{
    QString text;
    if (view_.window().hasScene()) {
        view_.host().scene().render.getValue(backgroundKey, text, QString());
    }
    return QColor(text);
}

void Appearance::setRig(bool on)
{
    view_.window().changeAndTell([&](HostScene& host) {
        OruScene& scene = host.scene();
        scene.inEditSession([&](IOruVisPropertyEdit& editor) {
            for (const QString& path : fillLights) {
                if (auto* const light = dynamic_cast<OruVisLight*>(scene.find(path))) {
                    editor.editValue(&scene.render.visualizations, light, light->visible.name(),
                                     oru::toString(on));
                }
            }
        });
        host.changed();
        return true;
    });
}

bool Appearance::rig() const
{
    const auto* const light = view_.window().hasScene()
                                  ? dynamic_cast<OruVisLight*>(view_.host().scene().find(fillLights[0]))
                                  : nullptr;
    return light && light->visible.value();
}
