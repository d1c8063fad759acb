#pragma once

#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QString>

namespace hostkit {

class SharedSurfaces;

/// A node of a model in a scene: its parts, and lists of the parts below it. Hidden, it hides them all; only
/// reached when it is in view.
class KELVAR_MESH_API PartList : public OruVisList
{
public:
    static const QString typeString;

    PartList(OruModifiedGroup& modifiedGroup, const QString& name);
    ~PartList() override;

    using OruVisList::insert;
    bool insert(OruVisualization* entry, bool member) override;
    bool remove(OruProperties* child) override;

    /// Reach::UnderPick while all parts are drawn by the model's list.
    Reach reach() const override;

protected:
    void noteChange(const OruModified& child, const OruModified& origin) override;

private:
    friend class SharedSurfaces;

    /// What draws its parts together with others of the model; null: nobody.
    SharedSurfaces* shared_ = nullptr;
};

} // namespace hostkit
