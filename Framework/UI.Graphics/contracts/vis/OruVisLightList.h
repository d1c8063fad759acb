#pragma once

#include "contracts/vis/OruVisLight.h"
#include "contracts/vis/kelvar_vis_api.h"

/// The lights of a scene. It draws nothing; a 3D pass sets the lights before it draws.
class KELVAR_VIS_API OruVisLightList : public OruVisualization
{
public:
    static const QString typeString;

    explicit OruVisLightList(OruModifiedGroup& modifiedGroup);

    /// Light that comes from everywhere; key "ambient".
    OruPropertyAdaptor<QColor> ambient;

    /// Takes lights only.
    bool insert(OruProperties* child, bool member) override;

    /// The light `name`, made at the end when missing. `type` is OruVisLight::typeString; there is no other
    /// kind. Throws std::invalid_argument for a name that the tree refuses.
    OruVisLight& child(const QString& name, const QString& type);

    /// Enables lighting with the first GL_MAX_LIGHTS visible lights, in list order, and switches the other
    /// light numbers of OpenGL off. A hidden list disables lighting. It enables GL_NORMALIZE, so that a
    /// scaled view is lit as any other. To be called in matrix mode GL_MODELVIEW with the view loaded; matrix
    /// mode and matrices stay as they are. The attributes are the caller's to push and pop.
    void setLighting() const;

protected:
    OruProperties* makeChild(const QString& name, const QString& type) override;
};
