#include "contracts/vis/OruVisHitRecordList.h"

#include "contracts/vis/OruVisualization.h"

void OruVisHitRecordList::add(const OruVisHitRecord& record, Rank rank, double centerDistance,
                              const boost::weak_ptr<IOruVisEventHandler>& handler,
                              const OruVisualization* visualization)
{
    entries_.push_back(Entry{record, rank, centerDistance, handler, visualization});
}

void OruVisHitRecordList::insert(const OruVisHitRecordList& other)
{
    // By index and count, since a list may be appended to itself.
    const std::size_t count = other.size();
    entries_.reserve(entries_.size() + count);
    for (std::size_t i = 0; i < count; ++i) {
        entries_.push_back(other.at(i));
    }
}
