#pragma once

#include "contracts/math/Vector3.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit {

/// Finds which vertices stand at exactly the same place, in time linear in their number.
///
/// Files repeat a corner bit by bit, so equal means equal: no tolerance that could join what is apart. Minus
/// zero equals zero.
class PointWelder
{
public:
    /// Numbers the places: result[v] is the place of vertex v, counted from 0 in order of first use.
    static std::vector<uint32_t> weld(const std::vector<Kelvar::Math::Vector3>& positions);

    /// Whether all stand apart from each other: much quicker than weld(). Now and then it says no where they
    /// do.
    static bool allApart(const std::vector<Kelvar::Math::Vector3>& positions);

    /// How many places weld() has numbered.
    static uint32_t countOf(const std::vector<uint32_t>& points);

private:
    struct Slot
    {
        uint32_t tag;
        uint32_t point;
    };

    explicit PointWelder(const std::vector<Kelvar::Math::Vector3>& positions);

    uint32_t pointOf(uint32_t vertex, uint64_t hash);
    void grow();
    static uint64_t hashOf(const Kelvar::Math::Vector3& position);

    const std::vector<Kelvar::Math::Vector3>& positions_;
    std::vector<Slot> slots_;
    std::size_t mask_;
    /// For each place the first vertex there.
    std::vector<uint32_t> first_;
};

} // namespace hostkit
