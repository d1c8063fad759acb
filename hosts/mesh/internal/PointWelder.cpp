#include "hosts/mesh/internal/PointWelder.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace hostkit {

namespace {

constexpr uint32_t noPoint = 0xFFFFFFFF;
constexpr std::size_t startSize = 1024;
/// Hashes are worked out this far ahead, so that their slots are in the cache when their turn comes.
constexpr std::size_t ahead = 16;

uint32_t bits(float value)
{
    const float plain = value + 0.0f; // takes the sign off a zero
    uint32_t result = 0;
    std::memcpy(&result, &plain, sizeof(result));
    return result;
}

} // namespace

std::vector<uint32_t> PointWelder::weld(const std::vector<Kelvar::Math::Vector3>& positions)
{
    PointWelder welder(positions);
    std::vector<uint32_t> points(positions.size());
    std::array<uint64_t, ahead> hashes{};
    const std::size_t end = positions.size() + ahead;
    for (std::size_t next = 0; next < end; ++next) {
        uint64_t& hash = hashes[next % ahead];
        if (next >= ahead) {
            points[next - ahead] = welder.pointOf(static_cast<uint32_t>(next - ahead), hash);
        }
        if (next < positions.size()) {
            hash = hashOf(positions[next]);
            __builtin_prefetch(&welder.slots_[hash & welder.mask_]);
        }
    }
    return points;
}

uint32_t PointWelder::countOf(const std::vector<uint32_t>& points)
{
    return points.empty() ? 0 : *std::max_element(points.begin(), points.end()) + 1;
}

PointWelder::PointWelder(const std::vector<Kelvar::Math::Vector3>& positions)
    : positions_(positions)
    , slots_(startSize, Slot{0, noPoint})
    , mask_(startSize - 1)
{}

uint32_t PointWelder::pointOf(uint32_t vertex, uint64_t hash)
{
    const uint32_t tag = static_cast<uint32_t>(hash >> 32);
    std::size_t at = hash & mask_;
    for (; slots_[at].point != noPoint; at = (at + 1) & mask_) {
        if (slots_[at].tag == tag && positions_[first_[slots_[at].point]] == positions_[vertex]) {
            return slots_[at].point;
        }
    }
    const uint32_t point = static_cast<uint32_t>(first_.size());
    slots_[at] = Slot{tag, point};
    first_.push_back(vertex);
    if (2 * first_.size() > slots_.size()) {
        grow();
    }
    return point;
}

void PointWelder::grow()
{
    slots_.assign(4 * slots_.size(), Slot{0, noPoint});
    mask_ = slots_.size() - 1;
    for (uint32_t point = 0; point < first_.size(); ++point) {
        const uint64_t hash = hashOf(positions_[first_[point]]);
        std::size_t at = hash & mask_;
        while (slots_[at].point != noPoint) {
            at = (at + 1) & mask_;
        }
        slots_[at] = Slot{static_cast<uint32_t>(hash >> 32), point};
    }
}

uint64_t PointWelder::hashOf(const Kelvar::Math::Vector3& position)
{
    uint64_t hash = bits(position.x) | static_cast<uint64_t>(bits(position.y)) << 32;
    hash = (hash ^ bits(position.z)) * 0x9E3779B97F4A7C15u;
    hash = (hash ^ (hash >> 29)) * 0xBF58476D1CE4E5B9u;
    return hash ^ (hash >> 32);
}

} // namespace hostkit
