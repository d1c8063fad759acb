// A window with an assembly of 100,000 parts: it turns, hovers, marks, hides and drags, and what it does to
// one part costs no more than in an assembly of 1,000.

#include "hosts/host/Recording.h"
#include "hosts/host/SceneWindow.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"
#include "tests/support/CpuTime.h"

#include <QCoreApplication>
#include <QScreen>

#include <gmock/gmock.h>

#include <functional>
#include <vector>

using namespace hostkit;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int many = 10000;
#else
constexpr int many = 100000;
#endif
constexpr int few = 1000;

/// Cubes in layers of 25 x 40, in two groups.
Model assemblyOf(int parts)
{
    Model model;
    model.name = QStringLiteral("assembly");
    for (int i = 0; i < parts; ++i) {
        if (i % (parts / 2) == 0) {
            model.children.emplace_back();
            model.children.back().name = QStringLiteral("group %1").arg(model.children.size());
        }
        const int row = i / 25;
        const int layer = row / 40;
        const Vector3 place(static_cast<float>(i % 25), static_cast<float>(row % 40),
                            static_cast<float>(layer));
        hostkit::MeshSource source = kelvartest::cubeSource(place * 2.5f);
        source.name = QStringLiteral("part %1").arg(i);
        source.material.color = QColor(90 + i % 25 * 6, 120, 90 + row % 40 * 4);
        model.children.back().parts.emplace_back(kelvartest::built(std::move(source)));
    }
    return model;
}

/// An assembly in a window on the screen.
struct Assembly
{
    explicit Assembly(int parts)
    {
        const Model model = assemblyOf(parts);
        window.setContent([&](HostScene& host) {
            ModelParts(host.scene().render.visualizations).add(model);
            host.showFrom(QStringLiteral("iso"));
        });
        window.resize(640, 480);
        QObject::connect(&window, &SceneWindow::frameDrawn, [this] { ++frames; });
        window.show();
        settle();
    }

    /// Until the window shows what there is.
    void settle()
    {
        while (frames == 0) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QCoreApplication::processEvents();
    }

    void play(const std::vector<InputEvent>& events)
    {
        for (const InputEvent& event : events) {
            window.run([&](HostScene&) { return window.input().apply(event); });
            settle();
        }
    }

    void play(const char* events)
    {
        play(Recording::parse(QByteArray("kelvar-recording 1\nsize 640x480\n") + events, QString())
                 .events(window.size()));
    }

    std::vector<MeshVisualization*> all()
    {
        std::vector<MeshVisualization*> parts;
        const OruProperties& model = *window.host().scene().find("render/visualization/assembly");
        for (unsigned int group = 0; group < model.size(); ++group) {
            for (unsigned int i = 0; i < model.at(group)->size(); ++i) {
                parts.push_back(dynamic_cast<MeshVisualization*>(model.at(group)->at(i)));
            }
        }
        return parts;
    }

    std::vector<MeshVisualization*> marked()
    {
        std::vector<MeshVisualization*> parts = all();
        parts.erase(std::remove_if(parts.begin(), parts.end(),
                                   [](const auto* part) { return !part->marked.value(); }),
                    parts.end());
        return parts;
    }

    QImage screen() const
    {
        return window.screen()->grabWindow(window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
    }

    SceneWindow window;
    int frames = 0;
};

/// Seconds of processor time that a change of the scene takes up to the end of a frame.
double costOf(Assembly& assembly, const std::function<void()>& change)
{
    const auto nothing = [] {};
    return kelvartest::cpuTime(nothing, [&] {
        assembly.window.run([&](HostScene& host) {
            change();
            host.changed();
            host.draw();
            return false;
        });
    });
}

} // namespace

TEST(Assembly, TurnsMarksHidesAndDrags)
{
    Assembly assembly(many);
    const QImage start = assembly.screen();
    assembly.play(Recording::read(KELVAR_RECORDINGS "/assembly.txt").events(assembly.window.size()));
    ASSERT_THAT(assembly.marked(), testing::SizeIs(1));
    MeshVisualization& first = *assembly.marked().front();
    const QImage turned = assembly.screen();
    EXPECT_NE(turned, start);

    assembly.window.run([&](HostScene&) {
        first.visible.setValue(false);
        return true;
    });
    assembly.settle();
    assembly.play("press left - 0.5 0.5\nrelease left - 0.5 0.5\nclick\n");
    ASSERT_THAT(assembly.marked(), testing::SizeIs(2)) << "the one behind";
    EXPECT_NE(assembly.screen(), turned);

    MeshVisualization& second =
        *(assembly.marked().front() == &first ? assembly.marked().back() : assembly.marked().front());
    second.movable.setValue(true);
    assembly.play("press left - 0.5 0.5\nmove - 0.55 0.5\nmove - 0.6 0.55\nrelease left - 0.6 0.55\n");
    const Vector3 moved = second.offset.value().transform(Vector3());
    EXPECT_GT(moved.length(), 2.0f);
    for (const MeshVisualization* const part : assembly.all()) {
        if (part != &second) {
            ASSERT_EQ(part->offset.value(), Matrix()) << part->name().toStdString();
        }
    }
}

TEST(Assembly, AChangeOfOneCostsNoMoreForOthersThatStandStill)
{
    // Nothing in view, so that it is not the picture that costs.
    const auto lookPast = [](Assembly& assembly) {
        assembly.window.run([](HostScene& host) {
            host.setView(host.context().modelView * Matrix::translate(Vector3(100.0f, 0.0f, 0.0f)));
            host.draw();
            return false;
        });
    };
    Assembly small(few);
    Assembly large(many);
    const std::pair<const char*, void (*)(MeshVisualization&)> rows[] = {
        {"hide or show", [](MeshVisualization& part) { part.visible.setValue(!part.visible.value()); }},
        {"mark", [](MeshVisualization& part) { part.marked.setValue(!part.marked.value()); }},
        {"move",
         [](MeshVisualization& part) {
             part.offset.setValue(part.offset.value() * Matrix::translate(Vector3(1.0f, 0.0f, 0.0f)));
         }},
        {"color", [](MeshVisualization& part) { part.color.setValue(part.color.value().darker(105)); }},
    };
    for (Assembly* const assembly : {&small, &large}) {
        lookPast(*assembly);
    }
    for (const auto& [name, change] : rows) {
        double costs[2] = {};
        for (const auto& [assembly, cost] : {std::pair(&small, &costs[0]), std::pair(&large, &costs[1])}) {
            MeshVisualization& part = *assembly->all()[few / 2];
            *cost = costOf(*assembly, [&part = part, change = change] { change(part); });
        }
        // A look at all parts of a list costs twenty times as much.
        EXPECT_LT(costs[1], 4.0 * costs[0]) << name << ": " << costs[0] << " s, " << costs[1] << " s";
    }
}
