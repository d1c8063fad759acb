#include "contracts/core/internal/OruPropertiesNames.h"

#include "contracts/core/OruProperties.h"

#include <QHashFunctions>

#include <utility>

namespace {

constexpr std::size_t leastPlaces = 4;

} // namespace

std::uint32_t OruPropertiesNames::hashOf(const QString& name)
{
    // As QHash does it: nobody outside can make up names that all meet in one place.
    return static_cast<std::uint32_t>(qHash(name, static_cast<uint>(qGlobalQHashSeed())));
}

OruProperties* OruPropertiesNames::find(const QString& name) const
{
    if (count_ == 0) {
        return nullptr;
    }
    const std::uint32_t hash = hashOf(name);
    std::size_t place = home(hash);
    while (nodes_[place] && (hashes_[place] != hash || nodes_[place]->name() != name)) {
        place = next(place);
    }
    return nodes_[place];
}

void OruPropertiesNames::insert(OruProperties& node)
{
    if (4 * (count_ + 1) > 3 * nodes_.size()) {
        grow();
    }
    put(node, hashOf(node.name()));
    ++count_;
}

void OruPropertiesNames::remove(const QString& name, const OruProperties& node)
{
    if (count_ == 0) {
        return;
    }
    std::size_t free = home(hashOf(name));
    while (nodes_[free] && nodes_[free] != &node) {
        free = next(free);
    }
    if (!nodes_[free]) {
        return;
    }
    // Who comes behind and would not be found across a gap moves into it.
    for (std::size_t place = next(free); nodes_[place]; place = next(place)) {
        const std::size_t mask = nodes_.size() - 1;
        const std::size_t way = (place - home(hashes_[place])) & mask;
        if (way >= ((place - free) & mask)) {
            nodes_[free] = nodes_[place];
            hashes_[free] = hashes_[place];
            free = place;
        }
    }
    nodes_[free] = nullptr;
    --count_;
}

void OruPropertiesNames::clear()
{
    count_ = 0;
    nodes_.clear();
    hashes_.clear();
}

/// There must be room.
void OruPropertiesNames::put(OruProperties& node, std::uint32_t hash)
{
    std::size_t place = home(hash);
    while (nodes_[place]) {
        place = next(place);
    }
    nodes_[place] = &node;
    hashes_[place] = hash;
}

void OruPropertiesNames::grow()
{
    const std::size_t places = nodes_.empty() ? leastPlaces : 2 * nodes_.size();
    const auto nodes = std::exchange(nodes_, std::vector<OruProperties*>(places));
    const auto hashes = std::exchange(hashes_, std::vector<std::uint32_t>(places));
    for (std::size_t place = 0; place < nodes.size(); ++place) {
        if (nodes[place]) {
            put(*nodes[place], hashes[place]);
        }
    }
}
