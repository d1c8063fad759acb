#pragma once

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Matrix.h"
#include "hosts/import/internal/ModelSource.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <vector>

struct aiMesh;
struct aiNode;
struct aiScene;

namespace hostkit {

/// The lists that a model's parts stand in, and the uses of meshes that make the parts: the nodes of assimp's
/// scene without what nobody needs.
///
/// A node is a list when the file gives it a name and it holds more than one part; one that holds nothing but
/// one part is that part and gives it its name. The content of any other belongs to the list above. The
/// outermost node is the model, and so is one that holds all of it.
class SceneTree
{
public:
    struct Use
    {
        std::uint32_t node;
        /// In the scene.
        unsigned int mesh;
        QString name;
        Kelvar::Math::DoubleMatrix place;
    };

    /// The scene is borrowed. `toScene` comes behind the places of all nodes.
    SceneTree(const aiScene& scene, const Kelvar::Math::Matrix& toScene);

    /// The first one is the model itself.
    const std::vector<ModelSource::Node>& nodes() const { return nodes_; }
    const std::vector<Use>& uses() const { return uses_; }

    /// How often each mesh of the scene is used.
    std::vector<std::size_t> useCounts() const;

private:
    /// Where a node's content goes.
    struct Above
    {
        std::uint32_t list;
        unsigned int level;
        Kelvar::Math::DoubleMatrix place;
        /// Nothing has come into the model yet.
        bool outermost;
    };

    bool findParts(const aiNode& node);
    std::vector<const aiNode*> childrenWithParts(const aiNode& node) const;
    void collect(const aiNode& node, const Above& above);
    Above listOf(const aiNode& node, const Above& above, bool holdsAll);

    const aiScene& scene_;
    /// Nodes with a mesh in them or below them.
    std::unordered_set<const aiNode*> withParts_;
    std::vector<ModelSource::Node> nodes_{{0, QString()}};
    std::vector<Use> uses_;
};

} // namespace hostkit
