#pragma once

#include "contracts/vis/IOruVisEventHandler.h"

namespace hostkit {

class SectionPlane;

/// What the handle of a section plane does under the pointer. Owned by its plane and never outlives it.
class SectionHandle : public IOruVisEventHandler
{
public:
    explicit SectionHandle(SectionPlane& plane)
        : plane_(plane)
    {}

    /// Axis and place.
    bool OnHoverEnter(const OruVisHitRecord& hit, const OruStringBuilder& builder, QString& tooltip) override;
    bool OnHoverLeave(const OruVisHitRecord& hit, const OruStringBuilder& builder, QString& tooltip) override;

    bool OnDrag(const OruVisHitRecord& hit, QPoint delta) override;
    bool OnRelease(const OruVisHitRecord& hit, IOruVisPropertyEdit* editor) override;
    bool OnDrop(const OruVisHitRecord& hit, const OruVisHitRecord& target,
                IOruVisPropertyEdit* editor) override;
    bool OnClick(const OruVisHitRecord& hit, IOruVisPropertyEdit* editor) override;

private:
    SectionPlane& plane_;
};

} // namespace hostkit
