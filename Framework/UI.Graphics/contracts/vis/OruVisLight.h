#pragma once

#include "contracts/vis/OruVisualization.h"
#include "contracts/vis/kelvar_vis_api.h"

/// One light. It is on while it is visible.
///
/// As it comes it is a head light: white, from a little above and to the right of the eye, travelling with
/// it.
class KELVAR_VIS_API OruVisLight : public OruVisualization
{
public:
    static const QString typeString;

    explicit OruVisLight(OruModifiedGroup& modifiedGroup);

    /// Colors; keys "ambient", "diffuse", "specular".
    OruPropertyAdaptor<QColor> ambient;
    OruPropertyAdaptor<QColor> diffuse;
    OruPropertyAdaptor<QColor> specular;

    /// Direction towards the light, of any length but 0, or its place if it is positional; keys "x", "y",
    /// "z".
    OruPropertyAdaptor<float> x;
    OruPropertyAdaptor<float> y;
    OruPropertyAdaptor<float> z;

    /// The light stands at a place rather than infinitely far away; key "positional".
    OruPropertyAdaptor<bool> positional;

    /// x, y and z are coordinates of the model, so that the light turns with it. Otherwise they are eye
    /// coordinates: x right, y up, z towards the viewer. Key "inModel".
    OruPropertyAdaptor<bool> inModel;

    /// Loads this light as light number `index` of OpenGL, 0 the first, and switches that on, whether visible
    /// or not. The matrix mode is GL_MODELVIEW with the view of the frame loaded; both stay so.
    void load(int index) const;

private:
    void loadPlace(unsigned int number) const;
};
