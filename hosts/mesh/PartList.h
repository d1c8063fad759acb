#pragma once

#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QString>

namespace hostkit {

/// A node of a model in a scene: its parts, and lists of the parts below it. Hidden, it hides them all; only
/// reached when it is in view.
class KELVAR_MESH_API PartList : public OruVisList
{
public:
    static const QString typeString;

    PartList(OruModifiedGroup& modifiedGroup, const QString& name);
    ~PartList() override;
};

} // namespace hostkit
