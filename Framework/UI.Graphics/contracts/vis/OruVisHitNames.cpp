#include "contracts/vis/OruVisHitNames.h"

#include "contracts/vis/OruVisHitRecord.h"

#include <deque>
#include <mutex>
#include <stdexcept>

namespace {

struct Names
{
    std::mutex turns;
    unsigned int next = 1;
    std::deque<unsigned int> freed;
};

/// Built by the first acquire() and so destroyed after every owner of a name that is static itself.
Names& names()
{
    static Names all;
    return all;
}

} // namespace

unsigned int OruVisHitNames::acquire()
{
    Names& all = names();
    const std::lock_guard<std::mutex> turn(all.turns);
    if (all.next < OruVisHitRecord::INVALID_NAME) {
        return all.next++;
    }
    if (all.freed.empty()) {
        throw std::length_error("all hit names are in use");
    }
    const unsigned int name = all.freed.front();
    all.freed.pop_front();
    return name;
}

void OruVisHitNames::release(unsigned int name)
{
    Names& all = names();
    const std::lock_guard<std::mutex> turn(all.turns);
    all.freed.push_back(name);
}
