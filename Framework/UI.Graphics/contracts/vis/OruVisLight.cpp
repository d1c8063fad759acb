#include "contracts/vis/OruVisLight.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/ogl/OruOglGl.h"

#include <array>

const QString OruVisLight::typeString = QStringLiteral("vis.light");

namespace {

std::array<float, 4> components(const QColor& color)
{
    return {static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
            static_cast<float>(color.blueF()), 1.0f};
}

} // namespace

OruVisLight::OruVisLight(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , ambient(*this, QStringLiteral("ambient"), QColor(Qt::black), QString())
    , diffuse(*this, QStringLiteral("diffuse"), QColor(Qt::white), QString())
    , specular(*this, QStringLiteral("specular"), QColor(Qt::white), QString())
    , x(*this, QStringLiteral("x"), 0.25f, QString())
    , y(*this, QStringLiteral("y"), 0.4f, QString())
    , z(*this, QStringLiteral("z"), 1.0f, QString())
    , positional(*this, QStringLiteral("positional"), false, QString())
    , inModel(*this, QStringLiteral("inModel"), false, QString())
{}

void OruVisLight::load(int index) const
{
    const unsigned int number = GL_LIGHT0 + static_cast<unsigned int>(index);
    glLightfv(number, GL_AMBIENT, components(ambient.value()).data());
    glLightfv(number, GL_DIFFUSE, components(diffuse.value()).data());
    glLightfv(number, GL_SPECULAR, components(specular.value()).data());
    loadPlace(number);
    glEnable(number);
}

void OruVisLight::loadPlace(unsigned int number) const
{
    std::array<float, 4> place = {x.value(), y.value(), z.value(), positional.value() ? 1.0f : 0.0f};
    if (place == std::array<float, 4>{}) {
        // No direction at all: straight from the eye.
        place[2] = 1.0f;
    }
    if (inModel.value()) {
        glLightfv(number, GL_POSITION, place.data());
        return;
    }
    // OpenGL takes the place through the model view matrix of this moment.
    glPushMatrix();
    glLoadIdentity();
    glLightfv(number, GL_POSITION, place.data());
    glPopMatrix();
}
