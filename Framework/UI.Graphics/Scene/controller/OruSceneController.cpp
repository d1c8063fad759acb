#include "Scene/controller/OruSceneController.h"

#include "Scene/controller/internal/OruSceneDispatch.h"
#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "Scene/render/OruSceneRender.h"
#include "Scene/render/internal/OruSceneRenderRecovery.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/math/NumberFormat.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "contracts/vis/OruVisualization.h"

#include <algorithm>
#include <cmath>

using oru::tellBoth;
using oru::tellHandler;

namespace {

OruStringBuilder makeStringBuilder(OruSceneRender& render)
{
    const int digits = render.significantDigits.value();
    const int separator = render.decimalSeparator.value();
    return OruStringBuilder(Kelvar::Math::NumberFormat(static_cast<char>(separator & 0xff), 0, digits));
}

/// A length in pixels, truncated towards zero. What is beyond an int becomes the nearest one, and what is no
/// number 0.
int wholePixels(float length)
{
    const float largest = 2147483520.0f;
    return std::isnan(length) ? 0 : static_cast<int>(std::clamp(length, -largest, largest));
}

/// The resets that are under way, innermost first. A handler may call reset from the call that a reset sends
/// it; the inner one finds its controller here and does not tell the handlers again.
class ResetScope
{
public:
    explicit ResetScope(const OruSceneController& controller)
        : controller_(&controller)
        , outer_(innermost_)
    {
        innermost_ = this;
    }
    ~ResetScope() { innermost_ = outer_; }
    ResetScope(const ResetScope&) = delete;
    ResetScope& operator=(const ResetScope&) = delete;

    static bool underWay(const OruSceneController& controller)
    {
        const ResetScope* scope = innermost_;
        while (scope && scope->controller_ != &controller) {
            scope = scope->outer_;
        }
        return scope;
    }

private:
    static thread_local const ResetScope* innermost_;

    const OruSceneController* controller_;
    const ResetScope* outer_;
};

thread_local const ResetScope* ResetScope::innermost_ = nullptr;

} // namespace

OruSceneController::CurrentHitRecord::CurrentHitRecord()
    : visualization(nullptr)
{}

OruSceneController::CurrentHitRecord::CurrentHitRecord(const CurrentHitRecord& other) = default;

OruSceneController::CurrentHitRecord::CurrentHitRecord(CurrentHitRecord&& other) noexcept = default;

OruSceneController::CurrentHitRecord&
OruSceneController::CurrentHitRecord::operator=(const CurrentHitRecord& other) = default;

OruSceneController::CurrentHitRecord&
OruSceneController::CurrentHitRecord::operator=(CurrentHitRecord&& other) noexcept = default;

OruSceneController::CurrentHitRecord::~CurrentHitRecord() = default;

bool OruSceneController::CurrentHitRecord::hasHandler() const
{
    return !handler.expired() && handler.lock() != nullptr;
}

OruSceneController::OruSceneController() = default;
OruSceneController::OruSceneController(const OruSceneController& other) = default;
OruSceneController::OruSceneController(OruSceneController&& other) noexcept = default;
OruSceneController& OruSceneController::operator=(const OruSceneController& other) = default;
OruSceneController& OruSceneController::operator=(OruSceneController&& other) noexcept = default;
OruSceneController::~OruSceneController() = default;

void OruSceneController::reset(const boost::shared_ptr<IOruSceneController>& newController,
                               OruSceneRender& render)
{
    // The argument may be a pointer that a call below changes. NOLINTNEXTLINE(performance-unnecessary-*)
    const boost::shared_ptr<IOruSceneController> next = newController;
    if (ResetScope::underWay(*this)) {
        hostController = next;
        return;
    }
    if (hostController.get() == next.get()) {
        return;
    }
    const ResetScope scope(*this);
    const CurrentHitRecord down = downHit;
    tellHandler(down, [&](IOruVisEventHandler& handler) {
        const boost::shared_ptr<IOruVisPropertyEdit> editor = render.editor();
        return handler.OnRelease(down.hit, editor.get());
    });
    const CurrentHitRecord hover = hoverHit;
    tellHandler(hover, [&](IOruVisEventHandler& handler) {
        QString dropped;
        return handler.OnHoverLeave(hover.hit, makeStringBuilder(render), dropped);
    });
    hostController = next;
}

bool OruSceneController::hitTop(OruSceneRender& render, const OruSceneEventContext& ctx,
                                CurrentHitRecord& record)
{
    ORU_SCENE_TRACE();
    const OruSceneRenderRecovery recovery(render);
    // Property changes reach the visualizations ahead of the pick.
    render.update(OruSceneRenderContext(ctx));

    OruSceneSelectContext sc(ctx);
    sc.pickPoint = ctx.mouse.curpos();
    const int edge = wholePixels(render.pickSize.value());
    sc.pickSize = QSize(edge, edge);
    OruScene::setViewing(sc);
    const OruVisHitRecordList hits = render.select(sc);
    if (!OruVisHitRecordQuery::any(hits)) {
        return false;
    }
    record.hit = OruVisHitRecordQuery::top(hits, &record.handler, &record.visualization);
    return true;
}

bool OruSceneController::OnMouseDown(OruSceneRender& render, const OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    // The first grab stands until its release.
    if (downHit.hasHandler()) {
        return false;
    }
    CurrentHitRecord grabbed;
    if (hitTop(render, ctx, grabbed)) {
        downHit = grabbed;
    }
    return false;
}

bool OruSceneController::OnMouseDrag(OruSceneRender&, const OruSceneEventContext& ctx)
{
    if (!downHit.hasHandler()) {
        return false;
    }
    const CurrentHitRecord held = downHit;
    const QPoint delta = ctx.mouse.mousedelta();
    return tellBoth(
        held, hostController, [&](IOruVisEventHandler& handler) { return handler.OnDrag(held.hit, delta); },
        [&](IOruSceneController& host, const OruVisualization* object) {
            return host.OnDrag(held.hit, object, delta);
        });
}

bool OruSceneController::OnMouseMove(OruSceneRender& render, const OruSceneEventContext& ctx,
                                     QString& tooltip)
{
    CurrentHitRecord current;
    const bool found = hitTop(render, ctx, current);
    bool changed = false;
    if (hoverHit.hasHandler()) {
        changed = leaveHovered(render, tooltip);
    }
    // The enter comes last, so that it has the last word on the tooltip.
    if (found && current.hasHandler()) {
        hoverHit = current;
        changed = enterHovered(render, tooltip) || changed;
    }
    return changed;
}

bool OruSceneController::leaveHovered(OruSceneRender& render, QString& tooltip)
{
    const CurrentHitRecord left = hoverHit;
    return tellBoth(
        left, hostController,
        [&](IOruVisEventHandler& handler) {
            return handler.OnHoverLeave(left.hit, makeStringBuilder(render), tooltip);
        },
        [&](IOruSceneController& host, const OruVisualization* object) {
            return host.OnHoverLeave(left.hit, object, tooltip);
        });
}

bool OruSceneController::enterHovered(OruSceneRender& render, QString& tooltip)
{
    const CurrentHitRecord entered = hoverHit;
    return tellBoth(
        entered, hostController,
        [&](IOruVisEventHandler& handler) {
            return handler.OnHoverEnter(entered.hit, makeStringBuilder(render), tooltip);
        },
        [&](IOruSceneController& host, const OruVisualization* object) {
            return host.OnHoverEnter(entered.hit, object, tooltip);
        });
}

bool OruSceneController::OnMouseUp(OruSceneRender& render, const OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    if (!downHit.hasHandler()) {
        return false;
    }
    CurrentHitRecord released;
    const bool found = hitTop(render, ctx, released);
    // A copy, since a call may come back with events of its own.
    const CurrentHitRecord held = downHit;
    bool changed = false;
    if (found && released.hit.name != held.hit.name) {
        changed = drop(render, held, released);
    }
    changed = release(render, held) || changed;
    downHit = CurrentHitRecord();
    return changed;
}

/// The object under the pointer gets no call of its own, and whether it lives nobody asks: the host is handed
/// what was hit. The host's answer to a drop does not count.
bool OruSceneController::drop(OruSceneRender& render, const CurrentHitRecord& held,
                              const CurrentHitRecord& released)
{
    return tellBoth(
        held, hostController,
        [&](IOruVisEventHandler& handler) {
            const boost::shared_ptr<IOruVisPropertyEdit> editor = render.editor();
            return handler.OnDrop(held.hit, released.hit, editor.get());
        },
        [&](IOruSceneController& host, const OruVisualization* object) {
            host.OnDrop(held.hit, released.hit, object, released.visualization);
            return false;
        });
}

bool OruSceneController::release(OruSceneRender& render, const CurrentHitRecord& held)
{
    return tellBoth(
        held, hostController,
        [&](IOruVisEventHandler& handler) {
            const boost::shared_ptr<IOruVisPropertyEdit> editor = render.editor();
            return handler.OnRelease(held.hit, editor.get());
        },
        [&](IOruSceneController& host, const OruVisualization* object) {
            return host.OnRelease(held.hit, object);
        });
}
