// The truth about picking: what top() answers is compared with a picture that this test draws itself, each
// object flat in the colour of its hit name, and with the depth buffer of that picture.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "contracts/vis/OruVisTriad.h"
#include "hosts/kit/HostScene.h"
#include "hosts/kit/ModelImporter.h"
#include "hosts/kit/SampleMeshes.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>
#include <set>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

constexpr unsigned int nobody = OruVisHitRecord::INVALID_NAME;
constexpr double depthStep = 1.0 / 16777216.0;
/// What a renderer that interpolates in single precision may be off, too.
constexpr double depthTolerance = 32 * depthStep;
const QColor logoColor(255, 0, 255);

struct PixelRange
{
    int left, bottom, right, top; ///< right and top are the first ones outside
};

/// Something flat over the scene and the pixels that it covers.
struct Flat
{
    unsigned int name;
    PixelRange pixels;
};

/// The picture of the test: name and depth at each pixel of the window.
struct Picture
{
    int width = 0;
    std::vector<unsigned int> names;
    std::vector<float> depths;

    std::size_t at(int x, int y) const { return static_cast<std::size_t>(y) * width + x; }
};

/// A cube of edge 0.6 at a place.
Matrix cubeAt(float x, float y, float z)
{
    return Matrix::scale(0.3f) * Matrix::translate(Vector3(x, y, z));
}

class PickTruthGLTest : public ::testing::Test
{
protected:
    PickTruthGLTest()
    {
        QImage opaque(40, 30, QImage::Format_RGB888);
        opaque.fill(logoColor);
        opaque.save(folder.filePath("opaque.png"));
        context().viewport = OruOglViewport(0, 0, gl.size().width(), gl.size().height());
    }

    void TearDown() override { EXPECT_EQ(gl.faults(), ""); }

    OruSceneEventContext& context() { return host.context(); }
    OruVisList& list() { return host.scene().render.visualizations; }

    MeshVisualization& add(const std::shared_ptr<const Mesh>& mesh, const Matrix& place = Matrix())
    {
        auto* part = new MeshVisualization(host.scene().group, mesh);
        part->rename(QString("part %1").arg(list().size()));
        part->offset.setValue(place);
        list().insert(part, false);
        host.changed();
        return *part;
    }

    /// Draws what is visible of the meshes, or of one of them, flat in the colours of their names.
    Picture drawNames(const MeshVisualization* only = nullptr)
    {
        const OruSceneEventContext& ctx = context();
        glPushAttrib(OruOglAllAttribBits);
        glDisable(GL_DITHER);
        glClearColor(QColor(Qt::white));
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        OruScene::setViewing(OruSceneRenderContext(ctx));
        glEnable(GL_DEPTH_TEST);
        glEnableClientState(GL_VERTEX_ARRAY);
        for (unsigned int i = 0; i < list().size(); ++i) {
            const auto* part = dynamic_cast<const MeshVisualization*>(list().at(i));
            if (part && part->visible.value() && (!only || only == part)) {
                drawName(*part);
            }
        }
        glDisableClientState(GL_VERTEX_ARRAY);
        Picture picture = readNames();
        glPopAttrib();
        return picture;
    }

    void drawName(const MeshVisualization& part)
    {
        const unsigned int name = part.hitName();
        glColor3ub(name >> 16 & 0xff, name >> 8 & 0xff, name & 0xff);
        glPushMatrix();
        glMultMatrixf(part.offset.value().data());
        glVertexPointer(3, GL_FLOAT, sizeof(Vector3), part.mesh().positions.data());
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(part.mesh().indices.size()), GL_UNSIGNED_INT,
                       part.mesh().indices.data());
        glPopMatrix();
    }

    Picture readNames()
    {
        Picture picture;
        picture.width = gl.size().width();
        const std::size_t count = static_cast<std::size_t>(picture.width) * gl.size().height();
        std::vector<unsigned char> colors(4 * count);
        picture.depths.resize(count);
        ::glReadPixels(0, 0, picture.width, gl.size().height(), GL_RGBA, GL_UNSIGNED_BYTE, colors.data());
        ::glReadPixels(0, 0, picture.width, gl.size().height(), GL_DEPTH_COMPONENT, GL_FLOAT,
                       picture.depths.data());
        for (std::size_t i = 0; i < count; ++i) {
            picture.names.push_back(colors[4 * i] << 16 | colors[4 * i + 1] << 8 | colors[4 * i + 2]);
        }
        return picture;
    }

    /// What the scene answers for a pick window, with the matrices as they stand in the context.
    OruVisHitRecordList pick(const QPoint& point, const QSize& size)
    {
        OruSceneSelectContext sc(context());
        sc.pickPoint = point;
        sc.pickSize = size;
        OruScene::setViewing(sc);
        return host.scene().render.select(sc);
    }

    /// The pixels of a pick window that lie in the viewport.
    PixelRange windowAt(const QPoint& point, int size)
    {
        const OruOglViewport& view = context().viewport;
        const int left = point.x() - (size - 1) / 2;
        const int bottom = point.y() - (size - 1) / 2;
        return {std::max(left, view.x), std::max(bottom, view.y), std::min(left + size, view.x + view.width),
                std::min(bottom + size, view.y + view.height)};
    }

    /// The object of that name lies as near as the nearest one, only drawn later.
    bool isTie(unsigned int name, const PixelRange& window, float depth)
    {
        for (unsigned int i = 0; i < list().size(); ++i) {
            const auto* part = dynamic_cast<const MeshVisualization*>(list().at(i));
            if (part && part->hitName() == name) {
                return nearestIn(drawNames(part), window).depth - depth <= 2.5 * depthStep;
            }
        }
        return false;
    }

    struct Nearest
    {
        float depth = 1.0f;
        std::set<unsigned int> names;
    };

    /// What a depth buffer cannot tell apart counts as equally near.
    static Nearest nearestIn(const Picture& truth, const PixelRange& window)
    {
        Nearest nearest;
        for (const bool collecting : {false, true}) {
            for (int y = window.bottom; y < window.top; ++y) {
                for (int x = window.left; x < window.right; ++x) {
                    const std::size_t at = truth.at(x, y);
                    if (truth.names[at] == nobody) {
                        continue;
                    }
                    if (!collecting) {
                        nearest.depth = std::min(nearest.depth, truth.depths[at]);
                    } else if (truth.depths[at] - nearest.depth <= 2.5 * depthStep) {
                        nearest.names.insert(truth.names[at]);
                    }
                }
            }
        }
        return nearest;
    }

    void compareAt(const Picture& truth, const QPoint& point, int size)
    {
        SCOPED_TRACE(::testing::Message() << "at " << point.x() << "," << point.y() << " size " << size);
        const PixelRange window = windowAt(point, size);
        const OruVisHitRecord record =
            OruVisHitRecordQuery::top(pick(point, QSize(size, size)), nullptr, nullptr);
        for (auto flat = flats.rbegin(); flat != flats.rend(); ++flat) {
            const PixelRange& box = flat->pixels;
            if (std::max(window.left, box.left) < std::min(window.right, box.right) &&
                std::max(window.bottom, box.bottom) < std::min(window.top, box.top)) {
                EXPECT_EQ(record.name, flat->name);
                EXPECT_EQ(record.distance, 0.0);
                return;
            }
        }
        const Nearest nearest = nearestIn(truth, window);
        if (nearest.names.empty()) {
            EXPECT_EQ(record.name, nobody);
            return;
        }
        ++hits;
        EXPECT_TRUE(nearest.names.count(record.name) || isTie(record.name, window, nearest.depth))
            << record.name << " instead of " << ::testing::PrintToString(nearest.names);
        EXPECT_NEAR(record.distance, nearest.depth, depthTolerance);
    }

    void show(const char* position)
    {
        ASSERT_TRUE(host.showFrom(position));
        host.draw();
    }

    static std::shared_ptr<const Mesh> bumpy(unsigned int triangles, float radius)
    {
        const SampleMesh sample = bumpySphere(triangles, radius);
        MeshSource source;
        source.name = "sphere";
        source.colour = QColor(90, 140, 200);
        source.positions = sample.positions;
        source.normals = sample.normals;
        source.indices = sample.indices;
        return built(std::move(source));
    }

    /// Solids that cross and touch, one that is open, one that is hidden, a triad and an opaque logo.
    void buildMixedScene()
    {
        add(bumpy(2000, 0.7f));
        add(built(cubeSource()), cubeAt(0.6f, -0.4f, 0.3f));
        // Side by side: they share the plane between them.
        add(built(cubeSource()), cubeAt(-0.7f, 0.5f, 0.0f));
        add(built(cubeSource()), cubeAt(-0.7f, -0.1f, 0.0f));
        MeshSource open = cubeSource();
        open.indices.resize(18);
        add(built(open), cubeAt(0.1f, 0.2f, 0.9f));
        add(built(cubeSource()), cubeAt(0.5f, -0.5f, 0.9f)).visible.setValue(false);
        triad = new OruVisTriad(host.scene().group);
        triad->rename("triad");
        list().insert(triad, false);
        list()["kelvar logo"]->setValue("visible", "false");
    }

    /// The label of a name is what lights up under the pointer.
    void findLabels()
    {
        boost::weak_ptr<IOruVisEventHandler> handler;
        OruVisHitRecordQuery::top(pick(QPoint(0, 0), QSize(1000, 1000)), &handler, nullptr);
        const boost::shared_ptr<IOruVisEventHandler> labels = handler.lock();
        ASSERT_TRUE(labels);
        const OruStringBuilder builder(Kelvar::Math::NumberFormat('.', 0, -1));
        QString tooltip;
        host.draw();
        const QImage dark = gl.grab();
        for (auto at = triad->hitProperties.cbegin(); at != triad->hitProperties.cend(); ++at) {
            OruVisHitRecord record;
            record.name = at.key();
            labels->OnHoverEnter(record, builder, tooltip);
            host.draw();
            const QImage lit = gl.grab();
            const auto change = [&](int x, int y) {
                return qGreen(lit.pixel(x, y)) - qGreen(dark.pixel(x, y));
            };
            flats.push_back({record.name, rangeOf([&](int x, int y) { return change(x, y) > 15; })});
            labels->OnHoverLeave(record, builder, tooltip);
        }
    }

    /// In the place of some of the labels, and drawn behind them in time: it wins.
    void showLogo()
    {
        OruVisualization& logo = *list()["kelvar logo"];
        const std::pair<const char*, QString> values[] = {
            {"file", "opaque.png"},
            {"visible", "true"},
            {"marginLeft", "60"},
            {"alignment", QString::number(static_cast<int>(Qt::AlignLeft | Qt::AlignBottom))}};
        for (const auto& [key, value] : values) {
            logo.setValue(key, value);
        }
        host.draw();
        const QImage frame = gl.grab();
        flats.push_back({logo.hitProperties.begin().key(),
                         rangeOf([&](int x, int y) { return QColor(frame.pixel(x, y)) == logoColor; })});
    }

    /// The smallest range that holds all pixels of an upright picture which a test picks out.
    template <typename Test>
    PixelRange rangeOf(Test test) const
    {
        PixelRange range{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
        const int height = gl.size().height();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < gl.size().width(); ++x) {
                if (test(x, height - 1 - y)) {
                    range = {std::min(range.left, x), std::min(range.bottom, y), std::max(range.right, x + 1),
                             std::max(range.top, y + 1)};
                }
            }
        }
        return range;
    }

    /// 200 pixels in and just outside the viewport.
    void compareAtRandomPixels()
    {
        const Picture truth = drawNames();
        std::mt19937 random(20);
        const OruOglViewport& view = context().viewport;
        for (int i = 0; i < 200; ++i) {
            const int x = view.x - 5 + static_cast<int>(random() % (view.width + 10));
            const int y = view.y - 5 + static_cast<int>(random() % (view.height + 10));
            for (const int size : {1, 3, 9}) {
                compareAt(truth, QPoint(x, y), size);
            }
        }
        EXPECT_GT(hits, 100) << "mostly empty pixels prove little";
    }

    GlContext gl{QSize(400, 300)};
    QTemporaryDir folder;
    HostScene host{QString(), folder.path(), QString()};
    std::vector<Flat> flats;      ///< in the order of drawing
    OruVisTriad* triad = nullptr; ///< the list's
    int hits = 0;
};

TEST_F(PickTruthGLTest, Engine)
{
    Progress progress;
    host.addModel(ModelImporter::load(engineFile(), progress));
    show("iso");
    compareAtRandomPixels();
}

TEST_F(PickTruthGLTest, TenThousandSmallObjects)
{
    const auto sphere = bumpy(100, 0.35f);
    for (int i = 0; i < 10000; ++i) {
        const int cell[3] = {i % 25, i / 25 % 20, i / 500};
        add(sphere, Matrix::translate(Vector3(cell[0], cell[1], cell[2])));
    }
    show("iso");
    compareAtRandomPixels();
}

TEST_F(PickTruthGLTest, FlatOverSolid)
{
    context().viewport = OruOglViewport(30, 20, 340, 260);
    buildMixedScene();
    show("iso");
    findLabels();
    showLogo();
    ASSERT_EQ(flats.size(), 8u);
    compareAtRandomPixels();
    // The corners of all that is flat, from inside and outside.
    const Picture truth = drawNames();
    for (const Flat& flat : flats) {
        const PixelRange& box = flat.pixels;
        for (const int x : {box.left - 1, box.left, box.right - 1, box.right}) {
            for (const int y : {box.bottom - 1, box.bottom, box.top - 1, box.top}) {
                compareAt(truth, QPoint(x, y), 1);
            }
        }
    }
}

TEST_F(PickTruthGLTest, ObjectsCutByTheViewVolume)
{
    buildMixedScene();
    triad->visible.setValue(false);
    show("iso");
    const Matrix whole = context().projection;
    const struct
    {
        const char* name;
        Matrix inClipSpace;
    } rows[] = {
        {"near half", Matrix::translate(Vector3(0, 0, 1))},
        {"far half", Matrix::translate(Vector3(0, 0, -1))},
        {"a slice", Matrix::scale(Vector3(1, 1, 2))},
        {"all gone", Matrix::translate(Vector3(0, 0, 5))},
        {"beside the window", Matrix::translate(Vector3(0.8f, -0.9f, 0))},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        context().projection = whole * row.inClipSpace;
        hits = 1000; // some of the rows show little or nothing
        compareAtRandomPixels();
    }
}

TEST_F(PickTruthGLTest, WindowsOfAnySizeAtAnyPlace)
{
    context().viewport = OruOglViewport(30, 20, 340, 260);
    const MeshVisualization& cube = add(built(cubeSource()), Matrix::scale(100.0f));
    host.draw();
    const struct
    {
        QPoint point;
        QSize size;
        bool hit;
    } rows[] = {
        {{200, 150}, {1, 1}, true},
        {{200, 150}, {0, 0}, false},
        {{200, 150}, {-1, -1}, false},
        {{200, 150}, {INT_MIN, 3}, false},
        {{200, 150}, {INT_MAX, INT_MAX}, true},
        {{30, 20}, {1, 1}, true},
        {{29, 20}, {1, 1}, false},
        {{29, 19}, {3, 3}, true},
        {{28, 150}, {3, 3}, false},
        {{369, 279}, {1, 1}, true},
        {{370, 279}, {1, 1}, false},
        {{370, 280}, {3, 3}, true},
        {{371, 150}, {3, 3}, false},
        {{371, 150}, {4, 4}, false},
        {{371, 150}, {5, 5}, true},
        {{-5000, 150}, {9, 9}, false},
        {{INT_MIN, INT_MIN}, {9, 9}, false},
        {{INT_MAX, INT_MAX}, {9, 9}, false},
        {{INT_MAX, INT_MIN}, {INT_MAX, INT_MAX}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.point.x() << "," << row.point.y() << " " << row.size.width()
                                          << "x" << row.size.height());
        const OruVisHitRecordList found = pick(row.point, row.size);
        EXPECT_EQ(OruVisHitRecordQuery::any(found), row.hit);
        EXPECT_EQ(OruVisHitRecordQuery::top(found, nullptr, nullptr).name, row.hit ? cube.hitName() : nobody);
    }
    context().viewport = OruOglViewport(30, 20, 0, 260);
    EXPECT_FALSE(OruVisHitRecordQuery::any(pick(QPoint(30, 150), QSize(9, 9))));
}

} // namespace
