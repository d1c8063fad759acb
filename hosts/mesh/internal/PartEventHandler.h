#pragma once

#include "contracts/vis/IOruVisEventHandler.h"

namespace hostkit {

class PartVisualization;

/// What a part of a model does under the pointer. Owned by its part and never outlives it.
class PartEventHandler : public IOruVisEventHandler
{
public:
    explicit PartEventHandler(PartVisualization& part)
        : part_(part)
    {}

    /// Name and size.
    bool OnHoverEnter(const OruVisHitRecord& hit, const OruStringBuilder& builder, QString& tooltip) override;
    bool OnHoverLeave(const OruVisHitRecord& hit, const OruStringBuilder& builder, QString& tooltip) override;

    /// Moves a movable part with the pointer.
    bool OnDrag(const OruVisHitRecord& hit, QPoint delta) override;

    /// Writes the new place of a part that was moved, as one edit.
    bool OnRelease(const OruVisHitRecord& hit, IOruVisPropertyEdit* editor) override;

    /// Tells the part's drop listener.
    bool OnDrop(const OruVisHitRecord& hit, const OruVisHitRecord& target,
                IOruVisPropertyEdit* editor) override;

    /// Marks the part, or takes its mark off.
    bool OnClick(const OruVisHitRecord& hit, IOruVisPropertyEdit* editor) override;

private:
    PartVisualization& part_;
};

} // namespace hostkit
