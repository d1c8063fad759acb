#include "hosts/mesh/internal/SectionHandle.h"

#include "contracts/core/OruStringBuilder.h"
#include "hosts/mesh/SectionPlane.h"

namespace hostkit {

bool SectionHandle::OnHoverEnter(const OruVisHitRecord&, const OruStringBuilder& builder, QString& tooltip)
{
    tooltip = builder.line(QStringLiteral("section ") + plane_.name(), builder.number(plane_.place()));
    return true;
}

bool SectionHandle::OnHoverLeave(const OruVisHitRecord&, const OruStringBuilder&, QString& tooltip)
{
    const bool shown = !tooltip.isEmpty();
    tooltip.clear();
    return shown;
}

bool SectionHandle::OnDrag(const OruVisHitRecord&, QPoint delta)
{
    plane_.moveBy(delta);
    return true;
}

bool SectionHandle::OnRelease(const OruVisHitRecord&, IOruVisPropertyEdit* editor)
{
    return plane_.endMove(editor);
}

bool SectionHandle::OnDrop(const OruVisHitRecord&, const OruVisHitRecord&, IOruVisPropertyEdit*)
{
    return false;
}

bool SectionHandle::OnClick(const OruVisHitRecord&, IOruVisPropertyEdit*)
{
    return false;
}

} // namespace hostkit
