#pragma once

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "contracts/vis/OruVisualization.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

namespace kelvartest {

/// An entry of the list that does in each pass what the test says, and notes the pass in the recorder.
class Probe : public OruVisualization
{
public:
    explicit Probe(OruModifiedGroup& modifiedGroup)
        : OruVisualization(modifiedGroup, QStringLiteral("probe"))
    {}

    void update(const DrawContext& dc) override { pass("update", &dc); }
    void resize(const DrawContext& dc) override { pass("resize", &dc); }
    void draw3d(const DrawContext& dc) override { pass("draw3d", &dc); }
    void draw2d(const DrawContext& dc) override { pass("draw2d", &dc); }
    OruVisHitRecordList select3d(const SelectContext& sel) override { return pick("select3d", sel); }
    OruVisHitRecordList select2d(const SelectContext& sel) override { return pick("select2d", sel); }
    Kelvar::Math::BoundingBox bounds() const override
    {
        boundsAction();
        return box;
    }

    /// Called in every pass, with its name.
    std::function<void(const std::string&)> action;
    std::function<void()> boundsAction = [] {};
    std::function<void(const std::string&, const DrawContext&)> drawAction;
    std::function<void(const std::string&, const SelectContext&, OruVisHitRecordList&)> pickAction;
    Kelvar::Math::BoundingBox box{{-1.0f, -1.0f, -1.0f}, {1.0f, 1.0f, 1.0f}};
    std::vector<std::string> passes;

private:
    void pass(const std::string& name, const DrawContext* dc)
    {
        passes.push_back(name);
        GlRecorder::instance().note(name);
        if (action) {
            action(name);
        }
        if (drawAction && dc) {
            drawAction(name, *dc);
        }
    }

    OruVisHitRecordList pick(const std::string& name, const SelectContext& sel)
    {
        pass(name, nullptr);
        OruVisHitRecordList hits;
        if (pickAction) {
            pickAction(name, sel, hits);
        }
        return hits;
    }
};

/// Notes what an editor is told; writes like the default one unless told otherwise; can throw.
class NotingEditor : public IOruVisPropertyEdit
{
public:
    virtual ~NotingEditor() = default;

    void beginEdit() override { note("begin"); }
    void endEdit() override { note("end"); }
    void editValue(OruVisList*, OruProperties* properties, const QString& key, const QString& value) override
    {
        note("edit " + key.toStdString());
        if (writes) {
            properties->setValue(key, value);
        }
    }

    bool writes = true;
    std::function<void(const std::string&)> action;
    std::vector<std::string> calls;

private:
    void note(const std::string& call)
    {
        calls.push_back(call);
        if (action) {
            action(call);
        }
    }
};

/// A scene over a real context with one probe in its list and an editor that notes.
class SceneTest : public ::testing::Test
{
protected:
    explicit SceneTest(const QSize& size = QSize(160, 120))
        : gl(size)
        , scene(QString(), QString(), QString())
        , probe(scene.group)
        , editor(new NotingEditor)
    {
        probe.rename(QStringLiteral("probe"));
        scene.render.visualizations.insert(&probe, true);
        scene.render.setCustomEditor(editor);
        ctx.viewport.width = gl.size().width();
        ctx.viewport.height = gl.size().height();
    }

    void TearDown() override { EXPECT_EQ(gl.faults(), ""); }

    /// Draws once, so that nothing is stale and the viewport is known.
    void settle()
    {
        scene.drawGl(ctx);
        probe.passes.clear();
        editor->calls.clear();
    }

    GlContext gl;
    OruScene scene;
    Probe probe;
    boost::shared_ptr<NotingEditor> editor;
    OruSceneEventContext ctx;
};

} // namespace kelvartest
