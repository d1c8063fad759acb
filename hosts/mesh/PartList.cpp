#include "hosts/mesh/PartList.h"

#include "hosts/mesh/internal/SharedSurfaces.h"

namespace hostkit {

const QString PartList::typeString = QStringLiteral("hostkit.parts");

PartList::PartList(OruModifiedGroup& modifiedGroup, const QString& name)
    : OruVisList(modifiedGroup, name)
{
    setType(typeString);
    setReach(Reach::WhenInView);
}

PartList::~PartList()
{
    if (shared_) {
        shared_->leave(*this);
    }
}

bool PartList::insert(OruVisualization* entry, bool member)
{
    if (!OruVisList::insert(entry, member)) {
        return false;
    }
    if (shared_) {
        shared_->noteAdded(*entry);
    }
    return true;
}

bool PartList::remove(OruProperties* child)
{
    if (!OruVisList::remove(child)) {
        return false;
    }
    if (shared_) {
        shared_->noteRemoved(*child);
    }
    return true;
}

OruVisualization::Reach PartList::reach() const
{
    return shared_ && onlyPicked() ? Reach::UnderPick : OruVisList::reach();
}

void PartList::noteChange(const OruModified& child, const OruModified& origin)
{
    OruVisList::noteChange(child, origin);
    if (shared_ && &child == &origin) {
        shared_->noteChange(child);
    }
}

} // namespace hostkit
