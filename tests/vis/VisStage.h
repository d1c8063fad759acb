#pragma once

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruResource.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/vis/OruVisualization.h"

#include <functional>
#include <string>
#include <vector>

namespace kelvartest {

/// What a render would own, and the contexts that it would hand out.
struct VisStage
{
    OruModifiedGroup group;
    OruResource resource;
    OruOglGeometry geometry{group};
    OruOglCache cache{resource};
    OruOglText text{cache, 7, OruOglText::defaultFace};
    OruOglViewport viewport{0, 0, 200, 100};

    explicit VisStage(const QString& images = QString())
        : resource(QString(), images, QString())
    {}

    OruVisualization::DrawContext draw()
    {
        return {geometry, cache, resource, viewport, text, nullptr, Kelvar::Math::NumberFormat('.', 0, -1)};
    }

    /// A pick of `size` by `size` pixels.
    struct Pick : OruVisualization::SelectContext
    {
        Pick(VisStage& stage, const QPoint& point, int size)
            : SelectContext(stage.geometry, stage.cache, stage.resource, stage.viewport, stage.text,
                            Kelvar::Math::NumberFormat('.', 0, -1))
        {
            pickPoint = point;
            pickSize = QSize(size, size);
        }
    };
};

inline Kelvar::Math::BoundingBox boxAt(float x, float y, float z, float half = 0.1f)
{
    return {{x - half, y - half, z - half}, {x + half, y + half, z + half}};
}

/// An entry that writes down by whom it is reached.
class Probe : public OruVisualization
{
public:
    using Log = std::vector<std::string>;

    Probe(OruModifiedGroup& sharedGroup, const char* name, Log& log, Reach when = Reach::Always)
        : OruVisualization(sharedGroup, "probe")
        , log_(log)
    {
        rename(name);
        setReach(when);
    }

    void setBox(const Kelvar::Math::BoundingBox& box)
    {
        box_ = box;
        boundsChanged();
    }

    using OruVisualization::setReach;
    int order = 0;
    /// It asks for a second call, and is told whether it gets one.
    bool transparent = false;
    bool deferred = false;
    std::function<void()> action = [] {};
    mutable int asked = 0;

    void update(const DrawContext&) override { reached("update"); }
    void resize(const DrawContext&) override { reached("resize"); }
    void draw3d(const DrawContext& context) override
    {
        reached("draw3d");
        deferred = transparent && context.defer(*this);
    }
    void drawTransparent3d(const DrawContext&) override { reached("transparent"); }
    void draw2d(const DrawContext&) override { reached("draw2d"); }
    OruVisHitRecordList select3d(const SelectContext&) override { return reached("select3d"); }
    OruVisHitRecordList select2d(const SelectContext&) override { return reached("select2d"); }
    int drawOrder() const override { return order; }
    Kelvar::Math::BoundingBox bounds() const override
    {
        ++asked;
        return box_;
    }

private:
    OruVisHitRecordList reached(const char* operation)
    {
        log_.push_back(std::string(operation) + " " + name().toStdString());
        action();
        return {};
    }

    Log& log_;
    Kelvar::Math::BoundingBox box_;
};

} // namespace kelvartest
