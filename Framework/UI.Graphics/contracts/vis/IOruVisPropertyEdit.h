#pragma once

#include "contracts/vis/kelvar_vis_api.h"

#include <QString>

class OruProperties;
class OruVisList;

/// The road by which a property change that comes from interaction reaches the tree.
///
/// An undo stack, a document or a recorder stands behind it in a host. `beginEdit` and `endEdit` bracket the
/// changes that belong together. The interface has no public destructor: an editor is owned by a
/// boost::shared_ptr made from its concrete type.
class KELVAR_VIS_API IOruVisPropertyEdit
{
public:
    /// Opens an edit session.
    virtual void beginEdit() = 0;

    /// Sets the property `name` of `properties`, a node below `owner`, to the text `value`. A null `owner` or
    /// `properties` makes it do nothing.
    virtual void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                           const QString& value) = 0;

    /// Closes the edit session.
    virtual void endEdit() = 0;

protected:
    IOruVisPropertyEdit() = default;
    IOruVisPropertyEdit(const IOruVisPropertyEdit&) = default;
    IOruVisPropertyEdit& operator=(const IOruVisPropertyEdit&) = default;
    ~IOruVisPropertyEdit() = default;
};
