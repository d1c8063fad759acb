#include "contracts/core/OruModified.h"

OruModified::OruModified(OruModifiedGroup& sharedGroup)
    : group(sharedGroup)
    , revision_(sharedGroup.nextRevision())
    , subtreeRevision_(revision_)
{
    group.attach();
}

OruModified::OruModified(const OruModified& other)
    : OruModified(other.group)
{}

OruModified& OruModified::operator=(const OruModified& other)
{
    if (this != &other) {
        touch();
    }
    return *this;
}

OruModified::~OruModified()
{
    group.detach();
}

void OruModified::touch()
{
    revision_ = group.nextRevision();
    subtreeRevision_ = revision_;
    // A parent may belong to another group, whose numbers mean nothing here: it counts on by its own.
    const OruModified* child = this;
    for (OruModified* above = parentRecord_; above; above = above->parentRecord_) {
        above->subtreeRevision_ = above->group.nextRevision();
        above->noteChange(*child, *this);
        child = above;
    }
}

void OruModified::noteChange(const OruModified& /*child*/, const OruModified& /*origin*/) {}
