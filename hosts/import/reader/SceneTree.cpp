#include "hosts/import/reader/SceneTree.h"

#include "hosts/import/internal/ReaderProtocol.h"

#include <assimp/scene.h>

#include <QRegularExpression>

#include <utility>

namespace hostkit {

using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;

namespace {

/// assimp's matrices map column vectors, ours row vectors.
Matrix matrixOf(const aiMatrix4x4& m)
{
    const float rows[16] = {m.a1, m.b1, m.c1, m.d1, m.a2, m.b2, m.c2, m.d2,
                            m.a3, m.b3, m.c3, m.d3, m.a4, m.b4, m.c4, m.d4};
    return Matrix::fromRows(rows);
}

/// Names that assimp makes up where a file has none.
bool isMadeUp(const QString& name)
{
    static const QRegularExpression patterns(
        QStringLiteral("^(nodes|meshes)\\[\\d+\\]$|^\\$ColladaAutoName\\$_\\d+$|_\\$AssimpFbx\\$_|^<.*>$|^"
                       "NoName_\\d+$|^defaultobject$"));
    return patterns.match(name).hasMatch();
}

/// Names are steps of a path in the property tree. Empty when the file gives none.
QString nameOf(const aiString& given)
{
    const QString name = QString::fromUtf8(given.C_Str()).trimmed();
    return isMadeUp(name) ? QString() : QString(name).replace(QLatin1Char('/'), QLatin1Char('_'));
}

} // namespace

SceneTree::SceneTree(const aiScene& scene, const Matrix& toScene)
    : scene_(scene)
{
    if (findParts(*scene.mRootNode)) {
        collect(*scene.mRootNode, Above{0, 0, DoubleMatrix(toScene), true});
    }
}

std::vector<std::size_t> SceneTree::useCounts() const
{
    std::vector<std::size_t> counts(scene_.mNumMeshes);
    for (const Use& use : uses_) {
        ++counts[use.mesh];
    }
    return counts;
}

bool SceneTree::findParts(const aiNode& node)
{
    bool found = node.mNumMeshes > 0;
    for (unsigned int i = 0; i < node.mNumChildren; ++i) {
        found = findParts(*node.mChildren[i]) || found;
    }
    if (found) {
        withParts_.insert(&node);
    }
    return found;
}

std::vector<const aiNode*> SceneTree::childrenWithParts(const aiNode& node) const
{
    std::vector<const aiNode*> children;
    for (unsigned int i = 0; i < node.mNumChildren; ++i) {
        if (withParts_.count(node.mChildren[i]) > 0) {
            children.push_back(node.mChildren[i]);
        }
    }
    return children;
}

void SceneTree::collect(const aiNode& node, const Above& above)
{
    const DoubleMatrix place = DoubleMatrix(matrixOf(node.mTransformation)) * above.place;
    const std::vector<const aiNode*> children = childrenWithParts(node);
    const bool isPart = node.mNumMeshes == 1 && children.empty();
    Above here = isPart ? above : listOf(node, above, node.mNumMeshes == 0 && children.size() == 1);
    here.place = place;
    for (unsigned int i = 0; i < node.mNumMeshes; ++i) {
        const unsigned int mesh = node.mMeshes[i];
        const bool isRoot = &node == scene_.mRootNode;
        QString name = isPart && !isRoot ? nameOf(node.mName) : QString();
        if (name.isEmpty()) {
            name = nameOf(scene_.mMeshes[mesh]->mName);
        }
        uses_.push_back(Use{here.list, mesh, std::move(name), place});
    }
    for (const aiNode* const child : children) {
        collect(*child, here);
    }
}

/// A list for the content of a node, or the one above it. `holdsAll`: the node has a single child, and
/// nothing else.
SceneTree::Above SceneTree::listOf(const aiNode& node, const Above& above, bool holdsAll)
{
    Above list = above;
    list.outermost = above.outermost && holdsAll;
    const QString name = nameOf(node.mName);
    if (above.outermost || name.isEmpty() || above.level >= ReaderProtocol::mostLevels) {
        return list;
    }
    nodes_.push_back({above.list, name});
    list.list = static_cast<std::uint32_t>(nodes_.size() - 1);
    ++list.level;
    return list;
}

} // namespace hostkit
