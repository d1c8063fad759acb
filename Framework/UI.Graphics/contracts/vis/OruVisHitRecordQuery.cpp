#include "contracts/vis/OruVisHitRecordQuery.h"

#include "contracts/vis/IOruVisEventHandler.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisualization.h"

#include <cmath>
#include <limits>

namespace {

using Entry = OruVisHitRecordList::Entry;
using Rank = OruVisHitRecordList::Rank;

/// A number that is none counts as farther than all others.
double ranked(double distance)
{
    return std::isnan(distance) ? std::numeric_limits<double>::infinity() : distance;
}

/// `later`, reported behind `best`, takes its place.
bool beats(const Entry& later, const Entry& best)
{
    if (later.rank != best.rank) {
        return later.rank == Rank::Flat2d;
    }
    if (later.rank == Rank::Flat2d) {
        return true;
    }
    const double laterDistance = ranked(later.record.distance);
    const double bestDistance = ranked(best.record.distance);
    if (laterDistance != bestDistance) {
        return laterDistance < bestDistance;
    }
    return ranked(later.centerDistance) < ranked(best.centerDistance);
}

} // namespace

bool OruVisHitRecordQuery::any(const OruVisHitRecordList& list)
{
    return list.size() > 0;
}

OruVisHitRecord OruVisHitRecordQuery::top(const OruVisHitRecordList& list,
                                          boost::weak_ptr<IOruVisEventHandler>* handler,
                                          const OruVisualization** visualization)
{
    const Entry* best = nullptr;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Entry& entry = list.at(i);
        if (!best || beats(entry, *best)) {
            best = &entry;
        }
    }
    if (handler) {
        *handler = best ? best->handler : boost::weak_ptr<IOruVisEventHandler>();
    }
    if (visualization) {
        *visualization = best ? best->visualization : nullptr;
    }
    return best ? best->record : OruVisHitRecord();
}
