#include "hosts/mesh/PartList.h"

namespace hostkit {

const QString PartList::typeString = QStringLiteral("hostkit.parts");

PartList::PartList(OruModifiedGroup& modifiedGroup, const QString& name)
    : OruVisList(modifiedGroup, name)
{
    setType(typeString);
    setReach(Reach::WhenInView);
}

PartList::~PartList() = default;

} // namespace hostkit
