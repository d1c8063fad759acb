// Small surfaces of a model that are drawn together look, and are picked, as if each were drawn by itself,
// whatever is done to them; and a change of one costs no more than that one.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "hosts/host/HostScene.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelList.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

using MeshPointer = std::shared_ptr<const Mesh>;

Model modelNamed(const char* name)
{
    Model model;
    model.name = QLatin1String(name);
    return model;
}

/// A scene with the parts of one model: in lists of models, whose small surfaces are drawn together, or in
/// plain ones, where each draws itself. What is done to two of them by the same numbers is the same.
class Stage
{
public:
    Stage(const QSize& size, bool shared)
        : shared_(shared)
    {
        host.setSize(size);
        auto& all = host.scene().render.visualizations;
        if (shared) {
            root = new ModelList(host.scene().group, modelNamed("model"), Origin());
        } else {
            root = new OruVisList(host.scene().group, "model");
        }
        all.insert(root, false);
    }

    OruVisList& addList(OruVisList& into)
    {
        const QString name = QStringLiteral("list %1").arg(++count_);
        auto* list = shared_ ? new PartList(into.group, name) : new OruVisList(into.group, name);
        into.insert(list, false);
        return *list;
    }

    MeshVisualization& add(OruVisList& into, const MeshPointer& mesh, const Matrix& place = Matrix())
    {
        auto* part = new MeshVisualization(into.group, mesh);
        part->rename(QStringLiteral("part %1").arg(++count_));
        part->setPlacement(place);
        into.insert(part, false);
        return *part;
    }

    template <typename Kind>
    std::vector<Kind*> all()
    {
        std::vector<Kind*> found;
        collect(*root, found);
        return found;
    }

    QImage drawn(const GlContext& gl)
    {
        host.changed();
        host.draw();
        return gl.grab();
    }

    std::string pickAt(const QPoint& pixel, int height)
    {
        OruSceneSelectContext sc(host.context());
        sc.pickPoint = QPoint(pixel.x(), height - 1 - pixel.y());
        sc.pickSize = QSize(3, 3);
        OruScene::setViewing(sc);
        const OruVisualization* hit = nullptr;
        OruVisHitRecordQuery::top(host.scene().render.select(sc), nullptr, &hit);
        return hit ? hit->name().toStdString() : std::string();
    }

    HostScene host{QString(), QString(), QString()};
    OruVisList* root;

private:
    template <typename Kind>
    static void collect(OruProperties& node, std::vector<Kind*>& found)
    {
        for (unsigned int i = 0; i < node.size(); ++i) {
            if (auto* const one = dynamic_cast<Kind*>(node.at(i))) {
                found.push_back(one);
            }
            collect(*node.at(i), found);
        }
    }

    bool shared_;
    int count_ = 0;
};

/// Meshes of all sorts: closed and open, with colors of their own, small ones and such that are too large to
/// be repeated in a buffer.
std::vector<MeshPointer> sampleMeshes(std::mt19937& random)
{
    std::vector<MeshPointer> meshes;
    for (const uint32_t triangles : {8U, 20U, 100U, 300U, 600U}) {
        MeshSource source = sourceOf(bumpySphere(triangles, 1.0f));
        meshes.push_back(built(source));
        source.indices.resize(source.indices.size() / 2 / 3 * 3);
        meshes.push_back(built(source));
        for (std::size_t i = 0; i < source.positions.size(); ++i) {
            source.colors.push_back(static_cast<uint32_t>(random()) | 0xFF000000U);
        }
        meshes.push_back(built(source));
    }
    return meshes;
}

class Numbers
{
public:
    explicit Numbers(unsigned seed)
        : random_(seed)
    {}

    std::size_t below(std::size_t count) { return random_() % count; }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    float between(float low, float high)
    {
        return low + (high - low) * static_cast<float>(random_() % 10007) / 10007.0f;
    }
    Vector3 point(float reach)
    {
        const float x = between(-reach, reach);
        const float y = between(-reach, reach);
        return Vector3(x, y, between(-reach, reach));
    }
    QColor color()
    {
        const auto hue = static_cast<int>(below(360));
        return QColor::fromHsv(hue, 150, 230);
    }

    /// Somewhere, turned, of some size, and every third one mirrored.
    Matrix place()
    {
        const float size = between(0.3f, 1.0f);
        const Vector3 factors(oneIn(3) ? -size : size, size * between(0.6f, 1.0f), size);
        const Matrix turned = Matrix::scale(factors) * Matrix::rotate(point(1.0f), between(0.0f, 360.0f));
        return turned * Matrix::translate(point(4.0f));
    }

    std::mt19937& engine() { return random_; }

private:
    std::mt19937 random_;
};

/// Lists in lists, and parts in all of them.
void fill(Stage& stage, unsigned seed)
{
    Numbers numbers(seed);
    const std::vector<MeshPointer> meshes = sampleMeshes(numbers.engine());
    std::vector<OruVisList*> lists = {stage.root};
    for (int i = 0; i < 8; ++i) {
        lists.push_back(&stage.addList(*lists[numbers.below(lists.size())]));
    }
    for (int i = 0; i < 120; ++i) {
        OruVisList& into = *lists[numbers.below(lists.size())];
        const MeshPointer& mesh = meshes[numbers.below(meshes.size())];
        stage.add(into, mesh, numbers.place()).color.setValue(numbers.color());
    }
}

/// What people and hosts do to parts and lists; each is done to both stages with the same numbers.
struct Step
{
    const char* name;
    void (*take)(Stage& stage, Numbers& numbers);
};

MeshVisualization& anyPart(Stage& stage, Numbers& numbers)
{
    const auto parts = stage.all<MeshVisualization>();
    return *parts[numbers.below(parts.size())];
}

OruVisList& anyList(Stage& stage, Numbers& numbers)
{
    const auto lists = stage.all<OruVisList>();
    return lists.empty() || numbers.oneIn(4) ? *stage.root : *lists[numbers.below(lists.size())];
}

template <typename Adaptor>
void toggle(Adaptor& flag)
{
    flag.setValue(!flag.value());
}

void reparent(OruVisualization& entry, OruVisList& into)
{
    for (const OruProperties* above = &into; above; above = above->parent()) {
        if (above == &entry) {
            return;
        }
    }
    entry.parent()->remove(&entry);
    into.insert(&entry, false);
}

const Step steps[] = {
    {"hide or show a part", [](Stage& s, Numbers& n) { toggle(anyPart(s, n).visible); }},
    {"hide or show a list",
     [](Stage& s, Numbers& n) {
         const auto lists = s.all<OruVisList>();
         if (!lists.empty()) {
             toggle(lists[n.below(lists.size())]->visible);
         }
     }},
    {"mark or not", [](Stage& s, Numbers& n) { toggle(anyPart(s, n).marked); }},
    {"color", [](Stage& s, Numbers& n) { anyPart(s, n).color.setValue(n.color()); }},
    {"move", [](Stage& s, Numbers& n) { anyPart(s, n).offset.setValue(Matrix::translate(n.point(1.0f))); }},
    {"move back", [](Stage& s, Numbers& n) { anyPart(s, n).offset.setValue(Matrix()); }},
    {"drag", [](Stage& s, Numbers& n) { anyPart(s, n).moveBy(QPoint(5, -3)); }},
    {"opacity", [](Stage& s, Numbers& n) { anyPart(s, n).opacity.setValue(n.oneIn(2) ? 1.0f : 0.5f); }},
    {"edges",
     [](Stage& s, Numbers& n) {
         const char* const words[] = {"off", "edges", "wireframe"};
         anyPart(s, n).edges.setValue(QLatin1String(words[n.below(3)]));
     }},
    {"place anew", [](Stage& s, Numbers& n) { anyPart(s, n).setPlacement(n.place()); }},
    {"remove a part",
     [](Stage& s, Numbers& n) {
         MeshVisualization& part = anyPart(s, n);
         part.parent()->erase(&part);
     }},
    {"remove a list",
     [](Stage& s, Numbers& n) {
         const auto lists = s.all<OruVisList>();
         OruVisList* const list = lists.empty() ? nullptr : lists[n.below(lists.size())];
         if (list && n.oneIn(4)) {
             list->parent()->erase(list);
         }
     }},
    {"insert",
     [](Stage& s, Numbers& n) {
         const MeshPointer mesh = built(sourceOf(bumpySphere(40, 1.0f)));
         for (int i = 0; i < 12; ++i) {
             s.add(anyList(s, n), mesh, n.place());
         }
     }},
    {"insert a list",
     [](Stage& s, Numbers& n) {
         OruVisList& list = s.addList(anyList(s, n));
         s.add(list, built(sourceOf(bumpySphere(60, 1.0f))), n.place());
     }},
    {"put a part elsewhere",
     [](Stage& s, Numbers& n) {
         MeshVisualization& part = anyPart(s, n);
         reparent(part, anyList(s, n));
     }},
    {"put a list elsewhere",
     [](Stage& s, Numbers& n) {
         const auto lists = s.all<OruVisList>();
         if (!lists.empty()) {
             OruVisList& list = *lists[n.below(lists.size())];
             reparent(list, anyList(s, n));
         }
     }},
    {"take a part out of the model",
     [](Stage& s, Numbers& n) { reparent(anyPart(s, n), s.host.scene().render.visualizations); }},
};

/// Pixels that differ, and by how much at most.
struct Difference
{
    int pixels = 0;
    int most = 0;
};

Difference between(const QImage& a, const QImage& b)
{
    Difference all;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (p != q) {
                ++all.pixels;
                all.most = std::max({all.most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                     std::abs(qBlue(p) - qBlue(q))});
            }
        }
    }
    return all;
}

/// A color from an array and a current color may differ by rounding.
constexpr int lastBit = 1;

int countOf(const std::vector<std::string>& calls, const std::string& name)
{
    return static_cast<int>(std::count_if(
        calls.begin(), calls.end(), [&](const std::string& call) { return call.rfind(name + "(", 0) == 0; }));
}

struct SharedSurfacesGLTest : testing::Test
{
    GlContext gl{QSize(320, 240)};
    std::unique_ptr<Stage> shared{new Stage(gl.size(), true)};
    std::unique_ptr<Stage> alone{new Stage(gl.size(), false)};

    void TearDown() override
    {
        EXPECT_EQ(gl.faults(), "");
        shared.reset();
        alone.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
    }

    void both(const std::function<void(Stage& stage)>& work)
    {
        work(*shared);
        work(*alone);
    }

    void showFrom(const char* position)
    {
        both([&](Stage& stage) { stage.host.showFrom(position); });
    }

    void setView(const Matrix& view)
    {
        both([&](Stage& stage) { stage.host.scene().setViewpoint("viewpoint", view); });
    }

    Difference difference() { return between(shared->drawn(gl), alone->drawn(gl)); }

    void expectSamePicks(Numbers& numbers)
    {
        for (int i = 0; i < 12; ++i) {
            const QPoint pixel(static_cast<int>(numbers.below(320)), static_cast<int>(numbers.below(240)));
            EXPECT_EQ(shared->pickAt(pixel, 240), alone->pickAt(pixel, 240))
                << pixel.x() << ", " << pixel.y();
        }
    }

    /// The calls of the shared stage's next frame.
    std::vector<std::string> callsOfFrame()
    {
        shared->host.changed();
        GlRecording recording;
        shared->host.draw();
        return recording.finish();
    }

    /// A row of spheres, each of its own shape, side by side in the XZ plane.
    std::vector<MeshVisualization*> addRow(Stage& stage, OruVisList& into, int count)
    {
        std::vector<MeshVisualization*> parts;
        for (int i = 0; i < count; ++i) {
            const int row = i / 8;
            const Vector3 place(static_cast<float>(i % 8), 0.0f, static_cast<float>(row));
            MeshSource source = sourceOf(bumpySphere(60, 0.4f));
            for (Vector3& position : source.positions) {
                position += place;
            }
            parts.push_back(&stage.add(into, built(source)));
        }
        return parts;
    }
};

} // namespace

TEST_F(SharedSurfacesGLTest, LookAsIfEachWereDrawnByItself)
{
    both([&](Stage& stage) {
        Numbers numbers(5);
        for (const MeshPointer& sample : sampleMeshes(numbers.engine())) {
            for (int i = 0; i < 6; ++i) {
                MeshSource source{sample->name,    sample->material, sample->positions,
                                  sample->normals, sample->colors,   {},
                                  sample->indices};
                const Vector3 place = numbers.point(4.0f);
                for (Vector3& position : source.positions) {
                    position = position * 0.7f + place;
                }
                stage.add(*stage.root, built(source)).color.setValue(numbers.color());
            }
        }
    });
    for (const char* position : {"iso", "x", "-z"}) {
        showFrom(position);
        EXPECT_LE(difference().most, lastBit) << position;
    }
    EXPECT_EQ(countOf(callsOfFrame(), "glDrawElements"), 0);
    EXPECT_EQ(countOf(callsOfFrame(), "glMultiDrawElements"), 2) << "closed ones and open ones";
}

TEST_F(SharedSurfacesGLTest, StayAlikeWhateverIsDoneToThem)
{
    // Corners of placed parts are rounded once more, so that a pixel on an outline may go to the other side.
    constexpr int fewPixels = 320 * 240 / 500;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        shared = std::make_unique<Stage>(gl.size(), true);
        alone = std::make_unique<Stage>(gl.size(), false);
        both([&](Stage& stage) { fill(stage, seed); });
        showFrom("iso");
        EXPECT_LE(difference().pixels, fewPixels);
        EXPECT_GT(countOf(callsOfFrame(), "glMultiDrawElements"), 0);
        Numbers choice(seed);
        for (int round = 0; round < 60; ++round) {
            const Step& step = steps[choice.below(std::size(steps))];
            const auto number = static_cast<unsigned>(choice.below(1000000));
            both([&](Stage& stage) {
                Numbers numbers(number);
                step.take(stage, numbers);
            });
            if (choice.oneIn(2)) {
                continue; // two changes between frames
            }
            const Difference found = difference();
            ASSERT_LE(found.pixels, fewPixels) << "round " << round << ": " << step.name;
            expectSamePicks(choice);
        }
    }
}

TEST_F(SharedSurfacesGLTest, AChangeOfOneTouchesNoOther)
{
    OruVisList& below = shared->addList(*shared->root);
    const auto parts = addRow(*shared, below, 64);
    shared->host.showFrom("-y");
    shared->host.draw();
    shared->host.draw();
    struct Row
    {
        const char* name;
        std::function<void()> change;
        int own; ///< draws of parts by themselves behind it
        int writes;
    };
    MeshVisualization& one = *parts[20];
    const Row rows[] = {
        {"nothing", [] {}, 0, 0},
        {"hidden", [&] { one.visible.setValue(false); }, 0, 0},
        {"shown", [&] { one.visible.setValue(true); }, 0, 0},
        {"colored", [&] { one.color.setValue(Qt::green); }, 0, 1},
        {"colored so again", [&] { one.color.setValue(Qt::green); }, 0, 0},
        {"marked", [&] { one.marked.setValue(true); }, 1, 3},
        {"not marked", [&] { one.marked.setValue(false); }, 0, 0},
        {"moved", [&] { one.offset.setValue(Matrix::translate(Vector3(0, -1, 0))); }, 1, 0},
        {"moved back", [&] { one.offset.setValue(Matrix()); }, 0, 0},
        {"see-through", [&] { one.opacity.setValue(0.5f); }, 2, 0},
        {"solid", [&] { one.opacity.setValue(1.0f); }, 0, 0},
        {"wireframe", [&] { one.edges.setValue("wireframe"); }, 1, 0},
        {"surface", [&] { one.edges.setValue("off"); }, 0, 0},
        {"list hidden", [&] { below.visible.setValue(false); }, 0, 0},
        {"list shown", [&] { below.visible.setValue(true); }, 0, 0},
        {"removed", [&] { below.erase(&one); }, 0, 0},
    };
    std::uint64_t revisions = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        row.change();
        const auto calls = callsOfFrame();
        EXPECT_EQ(countOf(calls, "glDrawElements"), row.own);
        EXPECT_EQ(countOf(calls, "glBufferSubData"), row.writes);
        EXPECT_EQ(countOf(calls, "glMultiDrawElements"), std::string(row.name) == "list hidden" ? 0 : 1);
        std::uint64_t sum = 0;
        for (const MeshVisualization* const part : parts) {
            sum += part == parts[20] ? 0 : part->revision();
        }
        EXPECT_TRUE(revisions == 0 || revisions == sum);
        revisions = sum;
    }
}

TEST_F(SharedSurfacesGLTest, TakeInWhatComesOnceItIsMany)
{
    addRow(*shared, *shared->root, 64);
    shared->host.showFrom("-y");
    shared->host.draw();
    OruVisList& later = shared->addList(*shared->root);
    const auto some = addRow(*shared, later, 63);
    EXPECT_EQ(countOf(callsOfFrame(), "glDrawElements"), 63);
    const auto last = addRow(*shared, later, 1);
    const auto calls = callsOfFrame();
    EXPECT_EQ(countOf(calls, "glDrawElements"), 0);
    EXPECT_EQ(countOf(calls, "glMultiDrawElements"), 1);
}

TEST_F(SharedSurfacesGLTest, DrawEachByItselfWhereTheGlHasNoRoom)
{
    both([&](Stage& stage) { addRow(stage, *stage.root, 20); });
    GlRecorder::instance().refuseBuffers(1);
    shared->host.draw();
    showFrom("-y");
    const auto calls = callsOfFrame();
    EXPECT_EQ(countOf(calls, "glMultiDrawElements"), 0);
    EXPECT_EQ(countOf(calls, "glDrawElements"), 20);
    EXPECT_LE(difference().most, lastBit);
}

TEST_F(SharedSurfacesGLTest, ADragKnowsTheViewOfTheLastDraw)
{
    MeshVisualization* dragged[2] = {};
    both([&](Stage& stage) { dragged[&stage == alone.get()] = addRow(stage, *stage.root, 20)[9]; });
    showFrom("-y");
    EXPECT_LE(difference().most, lastBit);
    both([&](Stage& stage) { stage.pickAt(QPoint(160, 120), 240); });
    showFrom("x");
    EXPECT_LE(difference().most, lastBit);
    for (MeshVisualization* const part : dragged) {
        part->moveBy(QPoint(40, 25));
    }
    EXPECT_LE(difference().most, lastBit);
    showFrom("iso");
    EXPECT_LE(difference().most, lastBit);
}
