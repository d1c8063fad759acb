#pragma once

#include "contracts/ogl/OruOglCanvas.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/SectionPlane.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <array>
#include <vector>

namespace hostkit {

/// The planes that cut the models of a list open, one across each axis.
///
///     scene.render.visualizations.insert(new SectionPlanes(group), false);
///     host.setValue("render/visualization/section/x/active", "true", &error);
///
/// Put beside models under the name "section", it is found by them: they draw what is left of their parts,
/// with the cut faces of closed surfaces in the colors of the parts, and what is cut away is not picked.
class KELVAR_MESH_API SectionPlanes : public OruVisList
{
public:
    static const QString typeString;

    /// The name that models look for.
    static const QString usualName;

    explicit SectionPlanes(OruModifiedGroup& modifiedGroup);
    ~SectionPlanes() override;

    /// Those of x, y and z.
    SectionPlane& plane(int axis) { return *planes_[static_cast<std::size_t>(axis)]; }
    const SectionPlane& plane(int axis) const { return *planes_[static_cast<std::size_t>(axis)]; }

    /// Those that cut; none while the list is hidden.
    std::vector<const SectionPlane*> active() const;

    /// The planes beside a node; null: there are none.
    static const SectionPlanes* beside(const OruProperties& node);

    /// The extent of the models beside it; undefined: there is nothing.
    Kelvar::Math::BoundingBox extent() const;

    /// What the planes cut away under a pick with these matrices of the world.
    std::vector<OruVisPickVolume::Cut> cuts(const SelectContext& context) const;

    /// What cut faces are made in, one after the other.
    OruOglCanvas& canvas() const { return canvas_; }

    Kelvar::Math::BoundingBox bounds() const override;

private:
    std::array<SectionPlane*, 3> planes_;
    mutable OruOglCanvas canvas_;
};

} // namespace hostkit
