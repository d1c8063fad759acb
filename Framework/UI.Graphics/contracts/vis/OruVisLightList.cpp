#include "contracts/vis/OruVisLightList.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruProperties.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisualization.h"

#include <memory>
#include <stdexcept>

const QString OruVisLightList::typeString = QStringLiteral("vis.lights");

OruVisLightList::OruVisLightList(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , ambient(*this, QStringLiteral("ambient"), QColor(51, 51, 51), QString())
{}

bool OruVisLightList::insert(OruProperties* child, bool member)
{
    return dynamic_cast<OruVisLight*>(child) && OruProperties::insert(child, member);
}

OruVisLight& OruVisLightList::child(const QString& name, const QString& /*type*/)
{
    if (auto* const present = dynamic_cast<OruVisLight*>(childByName(name))) {
        return *present;
    }
    auto light = std::make_unique<OruVisLight>(group);
    if (!light->rename(name) || !insert(light.get(), false)) {
        throw std::invalid_argument("no name for a light: \"" + name.toStdString() + "\"");
    }
    return *light.release();
}

OruProperties* OruVisLightList::makeChild(const QString& /*name*/, const QString& type)
{
    return type == OruVisLight::typeString ? new OruVisLight(group) : nullptr;
}

void OruVisLightList::setLighting() const
{
    if (!visible.value()) {
        glDisable(GL_LIGHTING);
        return;
    }
    glEnable(GL_LIGHTING);
    glEnable(GL_NORMALIZE);
    const QColor& everywhere = ambient.value();
    const float level[] = {static_cast<float>(everywhere.redF()), static_cast<float>(everywhere.greenF()),
                           static_cast<float>(everywhere.blueF()), 1.0f};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, level);

    int available = 8;
    glGetIntegerv(GL_MAX_LIGHTS, &available);
    int used = 0;
    for (unsigned int i = 0; i < size() && used < available; ++i) {
        const auto* const light = dynamic_cast<const OruVisLight*>(at(i));
        if (light && light->visible.value()) {
            light->load(used++);
        }
    }
    for (; used < available; ++used) {
        glDisable(GL_LIGHT0 + static_cast<unsigned int>(used));
    }
}
