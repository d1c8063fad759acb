#pragma once

#include "contracts/vis/IOruVisEventHandler.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <boost/weak_ptr.hpp>

#include <cstddef>
#include <vector>

class OruVisualization;

/// The hits of a selection pass, in the order in which they were reported.
///
/// A record says only how far and which name, so the list keeps beside it who was hit and how the hit ranks.
/// It owns none of them: handlers are weak, visualizations borrowed for as long as their handler lives.
class KELVAR_VIS_API OruVisHitRecordList
{
public:
    /// What a hit lies in. Whatever is drawn flat over the scene covers the scene.
    enum class Rank
    {
        Scene3d,
        Flat2d
    };

    struct Entry
    {
        OruVisHitRecord record;
        Rank rank;
        /// Pixels from the center of the pick window.
        double centerDistance;
        boost::weak_ptr<IOruVisEventHandler> handler;
        /// May be null.
        const OruVisualization* visualization;
    };

    OruVisHitRecordList() = default;
    OruVisHitRecordList(const OruVisHitRecordList&) = default;
    OruVisHitRecordList(OruVisHitRecordList&&) noexcept = default;
    OruVisHitRecordList& operator=(const OruVisHitRecordList&) = default;
    OruVisHitRecordList& operator=(OruVisHitRecordList&&) noexcept = default;
    ~OruVisHitRecordList() = default;

    /// Appends one hit. 2D objects report in the order in which they are drawn, the topmost last.
    /// `centerDistance` is in pixels (OruVisPickVolume::distanceFromCenter).
    void add(const OruVisHitRecord& record, Rank rank, double centerDistance,
             const boost::weak_ptr<IOruVisEventHandler>& handler, const OruVisualization* visualization);

    /// Appends the hits of `other` behind the own ones.
    void insert(const OruVisHitRecordList& other);

    std::size_t size() const { return entries_.size(); }

    /// `index` is below size().
    const Entry& at(std::size_t index) const { return entries_[index]; }

private:
    std::vector<Entry> entries_;
};
