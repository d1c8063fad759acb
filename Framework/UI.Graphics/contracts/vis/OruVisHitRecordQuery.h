#pragma once

#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/kelvar_vis_api.h"

/// Questions to the hits of a selection pass.
///
/// The top hit is the one that a person means: a hit in 2D beats every hit in 3D, since it is drawn over the
/// scene. Among hits in 2D the last reported wins, since it is drawn last. Among hits in 3D the smallest
/// distance wins; of two at the same distance the one nearer to the center of the pick window, and then the
/// one reported first.
class KELVAR_VIS_API OruVisHitRecordQuery
{
public:
    OruVisHitRecordQuery() = delete;

    /// The list holds at least one hit.
    static bool any(const OruVisHitRecordList& list);

    /// The top hit; the handler and the visualization that go with it are stored through the pointers, either
    /// of which may be null. Of an empty list: a default record, an empty handler and null.
    static OruVisHitRecord top(const OruVisHitRecordList& list, boost::weak_ptr<IOruVisEventHandler>* handler,
                               const OruVisualization** visualization);
};
