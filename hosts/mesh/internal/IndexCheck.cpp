#include "hosts/mesh/internal/IndexCheck.h"

#include <algorithm>
#include <cstddef>

namespace hostkit {

namespace {

/// Calls visit(lower vertex, higher vertex, whether it runs down) for each side of each triangle.
template <typename Visit>
void visitSides(const std::vector<uint32_t>& indices, const Visit& visit)
{
    for (std::size_t at = 0; at + 2 < indices.size(); at += 3) {
        uint32_t from = indices[at + 2];
        for (std::size_t corner = at; corner < at + 3; ++corner) {
            const uint32_t to = indices[corner];
            visit(std::min(from, to), std::max(from, to), from > to);
            from = to;
        }
    }
}

/// Sorts a few. Vertices have three sides to higher ones in the mean.
void sort(uint32_t* first, uint32_t* last)
{
    constexpr std::ptrdiff_t mostInserted = 16;
    if (last - first > mostInserted) {
        std::sort(first, last);
        return;
    }
    for (uint32_t* next = first; next != last; ++next) {
        const uint32_t value = *next;
        uint32_t* place = next;
        for (; place != first && place[-1] > value; --place) {
            *place = place[-1];
        }
        *place = value;
    }
}

/// Sorted sides come in pairs, 2 v up to a vertex v and 2 v + 1 down from it, each once.
bool arePairs(const uint32_t* first, const uint32_t* last)
{
    if ((last - first) % 2 != 0) {
        return false;
    }
    bool paired = true;
    for (const uint32_t* side = first; side != last; side += 2) {
        paired &= side[0] % 2 == 0 && side[1] == side[0] + 1;
    }
    return paired;
}

} // namespace

bool allUsed(const std::vector<uint32_t>& indices, uint32_t vertexCount)
{
    std::vector<uint8_t> used(vertexCount, 0u);
    for (const uint32_t vertex : indices) {
        used[vertex] = 1u;
    }
    return std::find(used.begin(), used.end(), 0u) == used.end();
}

bool allPaired(const std::vector<uint32_t>& indices, uint32_t vertexCount)
{
    // Each vertex has the sides between it and a higher one. While they are put down, ends[v + 1] is where
    // the next one of v goes, so that ends[v] is where those of v end in the end.
    std::vector<uint32_t> ends(vertexCount + 2u, 0u);
    visitSides(indices, [&](uint32_t low, uint32_t, bool) { ++ends[low + 2]; });
    for (std::size_t i = 2; i < ends.size(); ++i) {
        ends[i] += ends[i - 1];
    }
    std::vector<uint32_t> sides(indices.size());
    visitSides(indices, [&](uint32_t low, uint32_t high, bool down) {
        sides[ends[low + 1]++] = 2 * high + (down ? 1u : 0u);
    });
    for (uint32_t vertex = 0; vertex < vertexCount; ++vertex) {
        uint32_t* const first = sides.data() + ends[vertex];
        uint32_t* const last = sides.data() + ends[vertex + 1];
        sort(first, last);
        if (!arePairs(first, last)) {
            return false;
        }
    }
    return !indices.empty();
}

} // namespace hostkit
