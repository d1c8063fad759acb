#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/Model.h"
#include "hosts/mesh/Origin.h"
#include "hosts/mesh/PartList.h"
#include "hosts/mesh/UpAxis.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace hostkit {

/// A model in a scene: the list of its parts, which stands where the model belongs and is turned upright.
///
/// It draws small surfaces together that are shown as they came, from few buffers by few calls, as if each
/// were drawn by itself.
///
/// Its properties tell what the file says of itself, and "origin" what has to be added to coordinates of the
/// scene to get those of the file with Z upwards: three numbers in double, x, y and z.
class KELVAR_MESH_API ModelList : public PartList
{
public:
    static const QString typeString;

    /// An empty list named as the model is, for its parts. `sceneOrigin` is what all models of the scene have
    /// taken off their coordinates; so models that are far from 0 keep their places to each other.
    ModelList(OruModifiedGroup& modifiedGroup, const Model& model, const Origin& sceneOrigin);
    ~ModelList() override;

    /// The name of the axis that points up in the file, one of UpAxis; key "up". Another one turns the model
    /// about the origin of the scene.
    OruPropertyAdaptor<QString> up;

    /// What is to be added to coordinates of the scene to get those of this model: the origin of the scene,
    /// turned as the model is.
    Origin origin() const;

    const Origin& sceneOrigin() const { return sceneOrigin_; }

    /// What section planes cut away of a part of a model, in the pick of the model that is under way.
    static const std::vector<OruVisPickVolume::Cut>& cutsThrough(const OruProperties& part);

    /// From the frame of its parts to that of the scene.
    const Kelvar::Math::Matrix& place() const { return stand().place; }

    void update(const DrawContext& context) override;
    void draw3d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;
    Kelvar::Math::BoundingBox bounds() const override;
    Reach reach() const override;

private:
    /// Where the frame of the parts is in the scene.
    struct Stand
    {
        std::uint64_t revision = 0;
        /// From the parts as they were read to where "up" wants them.
        Kelvar::Math::Matrix turn;
        Kelvar::Math::Matrix place;
        bool placed = false;
    };

    const Stand& stand() const;
    void drawWhole(const DrawContext& context);
    void drawParts(const DrawContext& context);

    UpAxis fileUp_;
    Origin sceneOrigin_;
    /// From the origin of the scene to that of the model, before any turn.
    Kelvar::Math::Matrix shift_;
    /// As of its revision of this node.
    mutable Stand stand_;
    /// Never null.
    std::unique_ptr<SharedSurfaces> surfaces_;
    /// As of the last pick.
    std::vector<OruVisPickVolume::Cut> cuts_;
};

} // namespace hostkit
