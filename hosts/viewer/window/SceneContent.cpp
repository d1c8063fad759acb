#include "hosts/viewer/window/SceneContent.h"

#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisTriad.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/LightRig.h"
#include "hosts/mesh/Measures.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/SectionPlanes.h"

#include <iostream>

using hostkit::HostScene;

namespace {

/// A slate: parts in shadow still stand out from it, and the white of the overlays, too.
const QString backgroundColor = QStringLiteral("#ff38465a");

} // namespace

const QString SceneContent::fileKey = QStringLiteral("file");

void SceneContent::add(HostScene& host, const std::vector<hostkit::Model>& models)
{
    hostkit::ModelParts parts(host.scene().render.visualizations);
    parts.setDropListener([](const QString& source, const QString& target) {
        std::cout << "dropped \"" << qPrintable(source) << "\" on \"" << qPrintable(target) << '"'
                  << std::endl;
    });
    OruVisList& all = host.scene().render.visualizations;
    if (!all[hostkit::SectionPlanes::usualName]) {
        all.insert(new hostkit::SectionPlanes(all.group), false);
    }
    for (const hostkit::Model& model : models) {
        parts.add(model);
    }
    if (!all.childByName(hostkit::Measures::usualName)) {
        all.insert(new hostkit::Measures(all.group), false);
    }
    all.child(QStringLiteral("triad"), OruVisTriad::typeString);
    host.changed();
}

void SceneContent::clear(HostScene& host)
{
    OruVisList& all = host.scene().render.visualizations;
    for (unsigned int i = all.size(); i > 0; --i) {
        OruProperties* const child = all.at(i - 1);
        if (child && child->type() == hostkit::ModelList::typeString) {
            all.erase(child);
        }
    }
    host.changed();
}

void SceneContent::forget(HostScene& host)
{
    OruVisList& all = host.scene().render.visualizations;
    OruProperties* const measures = all.childByName(hostkit::Measures::usualName);
    while (measures && measures->size() > 0) {
        measures->erase(measures->at(measures->size() - 1));
    }
    if (auto* const section = dynamic_cast<hostkit::SectionPlanes*>(all[hostkit::SectionPlanes::usualName])) {
        for (int axis = 0; axis < 3; ++axis) {
            section->plane(axis).active.setValue(false);
            section->plane(axis).position.setValue(0.0);
            section->plane(axis).flipped.setValue(false);
        }
    }
    host.changed();
}

void SceneContent::dress(HostScene& host, bool withLight)
{
    QString error;
    host.setValue(QStringLiteral("render/background"), backgroundColor, &error);
    if (withLight) {
        hostkit::LightRig::apply(host.scene());
    }
}
