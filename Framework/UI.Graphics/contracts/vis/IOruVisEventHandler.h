#pragma once

#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <QPoint>
#include <QString>

class IOruVisPropertyEdit;
class OruStringBuilder;

/// What an object in the scene does when the pointer does something to it.
///
/// The object owns its handler; hit records and the dispatch hold it weakly, and a live handler stands for a
/// live object. Every operation is told the hit first. True means: something changed, the view wants to be
/// drawn anew. Positions and deltas are device pixels, y up. An editor is never null, is not owned and is
/// valid for the call only.
class KELVAR_VIS_API IOruVisEventHandler
{
public:
    /// The pointer rests on the object. `tooltip` is the text shown beside the pointer; numbers in it are
    /// best made by `builder`.
    virtual bool OnHoverEnter(const OruVisHitRecord& hit, const OruStringBuilder& builder,
                              QString& tooltip) = 0;

    /// The pointer is about to rest elsewhere, or perhaps on the object again. It may come more than once.
    virtual bool OnHoverLeave(const OruVisHitRecord& hit, const OruStringBuilder& builder,
                              QString& tooltip) = 0;

    /// The pointer moved by `delta` while it holds the object.
    virtual bool OnDrag(const OruVisHitRecord& hit, QPoint delta) = 0;

    /// The press that held the object ended.
    virtual bool OnRelease(const OruVisHitRecord& hit, IOruVisPropertyEdit* editor) = 0;

    /// The object was held and let go over another one, `target`; its release follows.
    virtual bool OnDrop(const OruVisHitRecord& hit, const OruVisHitRecord& target,
                        IOruVisPropertyEdit* editor) = 0;

    /// The object was clicked.
    virtual bool OnClick(const OruVisHitRecord& hit, IOruVisPropertyEdit* editor) = 0;

    virtual ~IOruVisEventHandler();

protected:
    IOruVisEventHandler() = default;
    IOruVisEventHandler(const IOruVisEventHandler&) = default;
    IOruVisEventHandler& operator=(const IOruVisEventHandler&) = default;
};
