#include "hosts/viewer/window/ViewPointer.h"

#include "Scene/controller/IOruSceneController.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "hosts/widgets/SceneWidget.h"

#include <boost/make_shared.hpp>

/// Hands on what the scene tells; nobody hears it once the pointer is gone.
class ViewPointer::Controller : public IOruSceneController
{
public:
    explicit Controller(ViewPointer& pointer)
        : pointer_(&pointer)
    {}

    void leave() { pointer_ = nullptr; }

    bool OnHoverEnter(const OruVisHitRecord& hit, const OruVisualization* visualization, QString&) override
    {
        if (pointer_) {
            Q_EMIT pointer_->hovered(pointer_->targetOf(hit, visualization));
        }
        return false;
    }

    bool OnHoverLeave(const OruVisHitRecord&, const OruVisualization*, QString&) override
    {
        if (pointer_) {
            Q_EMIT pointer_->left();
        }
        return false;
    }

    bool OnDrag(const OruVisHitRecord&, const OruVisualization*, QPoint) override { return false; }

    bool OnRelease(const OruVisHitRecord&, const OruVisualization*) override { return false; }

    void OnDrop(const OruVisHitRecord&, const OruVisHitRecord&, const OruVisualization*,
                const OruVisualization*) override
    {}

    bool OnClick(const OruVisHitRecord& hit, const OruVisualization* visualization,
                 bool withModifier) override
    {
        if (!pointer_) {
            return false;
        }
        Target target = pointer_->targetOf(hit, visualization);
        target.withModifier = withModifier;
        return pointer_->click(target);
    }

private:
    /// Null: it is gone.
    ViewPointer* pointer_;
};

ViewPointer::ViewPointer(hostkit::SceneWidget& view, QObject* parent)
    : QObject(parent)
    , view_(view)
    , controller_(boost::make_shared<Controller>(*this))
{
    connect(&view.window(), &hostkit::SceneWindow::sceneRenewed, this, [this] { install(); });
    install();
}

ViewPointer::~ViewPointer()
{
    controller_->leave();
}

void ViewPointer::install()
{
    if (view_.window().hasScene()) {
        OruScene& scene = view_.host().scene();
        scene.controller().reset(controller_, scene.render);
    }
}

ViewPointer::Target ViewPointer::targetOf(const OruVisHitRecord& hit, const OruVisualization* object) const
{
    const OruSceneEventContext& ctx = view_.host().context();
    Target target;
    target.object = object;
    target.pixel = ctx.mouse.curpos();
    if (object) {
        const Kelvar::Math::Vector3 window(static_cast<float>(target.pixel.x()) + 0.5f,
                                           static_cast<float>(target.pixel.y()) + 0.5f,
                                           static_cast<float>(hit.distance));
        target.depth = hit.distance;
        target.point = window.unProject(ctx.modelView, ctx.projection, ctx.viewport.data());
    }
    return target;
}

bool ViewPointer::click(const Target& target)
{
    const Clicks& clicks = toolClicks_ ? toolClicks_ : clicks_;
    return clicks && clicks(target);
}
