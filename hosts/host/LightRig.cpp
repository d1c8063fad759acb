#include "hosts/host/LightRig.h"

#include "Scene/core/OruScene.h"
#include "contracts/vis/OruVisLight.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisList.h"

#include <QColor>
#include <QString>

namespace hostkit {

namespace {

struct RigLight
{
    const char* name;
    /// Towards the light, in eye coordinates: x right, y up, z towards the viewer.
    float x, y, z;
    int red, green, blue;
};

const RigLight rigLights[] = {
    {"light.1", 0.35f, 0.65f, 0.8f, 176, 174, 170},
    {"light.2", -0.8f, -0.05f, 0.7f, 80, 83, 88},
    {"light.3", 0.6f, -0.8f, 0.35f, 58, 58, 60},
};

const QColor rigAmbient(160, 160, 164);

} // namespace

bool LightRig::apply(OruScene& scene)
{
    OruVisList& list = scene.render.visualizations;
    auto* const lights = dynamic_cast<OruVisLightList*>(list[QStringLiteral("lights")]);
    if (!lights) {
        return false;
    }
    lights->ambient.setValue(rigAmbient);
    for (const RigLight& row : rigLights) {
        OruVisLight& light = lights->child(QString::fromLatin1(row.name), OruVisLight::typeString);
        light.visible.setValue(true);
        light.diffuse.setValue(QColor(row.red, row.green, row.blue));
        light.x.setValue(row.x);
        light.y.setValue(row.y);
        light.z.setValue(row.z);
        light.positional.setValue(false);
        light.inModel.setValue(false);
    }
    return true;
}

} // namespace hostkit
