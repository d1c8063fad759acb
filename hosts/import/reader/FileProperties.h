#pragma once

#include <QString>

#include <utility>
#include <vector>

struct aiScene;

namespace hostkit {

/// What a file tells of itself.
struct FileProperties
{
    /// Key and value, in an order that does not depend on the file. Values are cut to a readable length.
    static std::vector<std::pair<QString, QString>> of(const aiScene& scene);
};

} // namespace hostkit
