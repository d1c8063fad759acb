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

constexpr std::size_t bitsPerVertex = 16;

/// Bits that hashes stand for.
class BitSet
{
public:
    /// So many or more.
    explicit BitSet(std::size_t count)
    {
        std::size_t words = 1;
        while (64 * words < count) {
            words *= 2;
        }
        words_.resize(words);
    }

    bool test(uint64_t hash) const { return ((words_[word(hash)] >> (hash & 63u)) & 1u) != 0; }

    /// What test() said before.
    bool testAndSet(uint64_t hash)
    {
        const bool before = test(hash);
        words_[word(hash)] |= uint64_t{1} << (hash & 63u);
        return before;
    }

    void clear() { std::fill(words_.begin(), words_.end(), 0u); }

private:
    std::size_t word(uint64_t hash) const { return (hash >> 6) & (words_.size() - 1); }

    std::vector<uint64_t> words_;
};

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

/// Looks at hashes alone. Each sets a bit among so many that few bits are set twice. Vertices that stand
/// together have the same hash, so it is one of those that found their bit set, and in a second walk only
/// the hashes with the bits of these are compared.
bool PointWelder::allApart(const std::vector<Kelvar::Math::Vector3>& positions)
{
    BitSet seen(bitsPerVertex * positions.size());
    std::vector<uint64_t> suspects;
    for (const Kelvar::Math::Vector3& position : positions) {
        const uint64_t hash = hashOf(position);
        if (seen.testAndSet(hash)) {
            suspects.push_back(hash);
        }
    }
    if (suspects.size() > positions.size() / 8 + 8) {
        return false;
    }
    seen.clear();
    for (const uint64_t hash : suspects) {
        seen.testAndSet(hash);
    }
    suspects.clear();
    for (const Kelvar::Math::Vector3& position : positions) {
        const uint64_t hash = hashOf(position);
        if (seen.test(hash)) {
            suspects.push_back(hash);
        }
    }
    std::sort(suspects.begin(), suspects.end());
    return std::adjacent_find(suspects.begin(), suspects.end()) == suspects.end();
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
    hash *= 0x9E3779B97F4A7C15u;
    // Behind the first product, or (x, y, z) and (z, y, x) had the same hash.
    hash = (hash ^ (hash >> 29) ^ bits(position.z)) * 0xBF58476D1CE4E5B9u;
    return hash ^ (hash >> 32);
}

} // namespace hostkit
