#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

/// The GL buffer names of one geometry store. They are made and deleted only where the context is current: a
/// name that is given back waits for the next collect().
class OruOglBufferStore
{
public:
    OruOglBufferStore() = default;
    ~OruOglBufferStore();
    OruOglBufferStore(const OruOglBufferStore&) = delete;
    OruOglBufferStore& operator=(const OruOglBufferStore&) = delete;

    unsigned int make();
    void giveBack(unsigned int name);
    void collect();
    std::size_t count() const { return used_.size() + returned_.size(); }

private:
    std::unordered_set<unsigned int> used_;
    std::vector<unsigned int> returned_;
};
