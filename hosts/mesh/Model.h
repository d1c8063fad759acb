#pragma once

#include "hosts/mesh/Mesh.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace hostkit {

/// What a file shows: its parts in the order of the file. Never without a part when it comes from the
/// importer.
struct Model
{
    uint64_t triangleCount() const
    {
        uint64_t count = 0;
        for (const auto& part : parts) {
            count += part->triangleCount();
        }
        return count;
    }

    /// The file's name without folder and suffix.
    QString name;
    std::vector<std::shared_ptr<const Mesh>> parts;
};

} // namespace hostkit
