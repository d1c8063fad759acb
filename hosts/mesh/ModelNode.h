#pragma once

#include "hosts/mesh/ModelPart.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace hostkit {

/// A group of parts, as a file has it.
struct ModelNode
{
    /// Calls `visit` with each ModelPart of this node and of those below it.
    template <typename Visit>
    void visitParts(const Visit& visit) const
    {
        for (const ModelPart& part : parts) {
            visit(part);
        }
        for (const ModelNode& child : children) {
            child.visitParts(visit);
        }
    }

    /// Of all parts below; a shape counts as often as it is used.
    uint64_t triangleCount() const
    {
        uint64_t count = 0;
        visitParts([&](const ModelPart& part) { count += part.mesh->triangleCount(); });
        return count;
    }

    /// Without '/'. Empty: it is no list of its own in a scene, its content goes to the list above.
    QString name;

    /// In the order of the file.
    std::vector<ModelPart> parts;
    std::vector<ModelNode> children;
};

} // namespace hostkit
