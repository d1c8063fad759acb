#pragma once

#include "contracts/vis/OruVisualization.h"

#include <memory>

class OruOglMeshBuffer;

/// A tube along a trefoil knot, about 6 units wide, in the colors of the rainbow: something to look at.
class Knot : public OruVisualization
{
public:
    explicit Knot(OruModifiedGroup& modifiedGroup);
    ~Knot() override;

    void draw3d(const DrawContext& context) override;
    Kelvar::Math::BoundingBox bounds() const override;

private:
    std::unique_ptr<OruOglMeshBuffer> mesh_;
};
