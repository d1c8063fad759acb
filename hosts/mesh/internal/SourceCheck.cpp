#include "hosts/mesh/internal/SourceCheck.h"

#include <stdexcept>
#include <string>

namespace hostkit {

namespace {

const char* nameOf(Primitive primitive)
{
    static constexpr const char* names[] = {"triangle", "line", "point"};
    return names[static_cast<int>(primitive)];
}

} // namespace

void checkSource(const MeshSource& source)
{
    for (std::size_t vertex = 0; vertex < source.positions.size(); ++vertex) {
        if (!source.positions[vertex].isFinite()) {
            throw std::runtime_error("vertex " + std::to_string(vertex) + " is not a finite position");
        }
    }
    for (const uint32_t index : source.indices) {
        if (index >= source.positions.size()) {
            throw std::runtime_error(std::string("a ") + nameOf(source.primitive) + " uses vertex " +
                                     std::to_string(index) + " of " +
                                     std::to_string(source.positions.size()));
        }
    }
}

} // namespace hostkit
