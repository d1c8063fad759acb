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
        return sumOver<Mesh>([](const Mesh& mesh) { return mesh.triangleCount(); });
    }
    uint64_t segmentCount() const
    {
        return sumOver<LineSet>([](const LineSet& lines) { return lines.segmentCount(); });
    }
    uint64_t pointCount() const
    {
        return sumOver<PointSet>([](const PointSet& points) { return points.pointCount(); });
    }

    /// Without '/'. Empty: it is no list of its own in a scene, its content goes to the list above.
    QString name;

    /// In the order of the file.
    std::vector<ModelPart> parts;
    std::vector<ModelNode> children;

private:
    template <typename Kind, typename Count>
    uint64_t sumOver(const Count& count) const
    {
        uint64_t sum = 0;
        visitParts([&](const ModelPart& part) {
            const auto shape = part.as<Kind>();
            sum += shape ? count(*shape) : 0;
        });
        return sum;
    }
};

} // namespace hostkit
