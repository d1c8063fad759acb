// The truth about picking: what top() answers is compared with a picture that this test draws itself, each
// object flat in the color of its hit name, and with the depth buffer of that picture.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "contracts/vis/OruVisTriad.h"
#include "hosts/host/HostScene.h"
#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/LineVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/PointVisualization.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

constexpr unsigned int nobody = OruVisHitRecord::INVALID_NAME;
constexpr double depthStep = 1.0 / 16777216.0;
/// What a depth buffer cannot tell apart, and what a renderer in single precision may be off.
constexpr double tieTolerance = 2.5 * depthStep;
constexpr double depthTolerance = 32 * depthStep;

/// The picture of the test: name and depth at each pixel of the window, the lowest row first.
struct Picture
{
    explicit Picture(const QSize& size)
        : names(size, QImage::Format_RGB32)
        , depths(static_cast<std::size_t>(size.width()) * size.height())
    {}

    unsigned int name(int x, int y) const { return names.pixel(x, y) & 0xffffff; }
    float& depth(int x, int y) { return depths[static_cast<std::size_t>(y) * names.width() + x]; }

    /// What lies flat over all that is in the picture.
    void cover(const QRect& box, unsigned int flatName)
    {
        flats.push_back(box);
        for (int y = box.top(); y <= box.bottom(); ++y) {
            for (int x = box.left(); x <= box.right(); ++x) {
                names.setPixel(x, y, flatName);
                depth(x, y) = -static_cast<float>(flats.size());
            }
        }
    }

    /// How near each object comes in a window.
    std::map<unsigned int, float> nearestIn(const QRect& window)
    {
        std::map<unsigned int, float> nearest{{nobody, 1.0f}};
        for (int y = window.top(); y <= window.bottom(); ++y) {
            for (int x = window.left(); x <= window.right(); ++x) {
                float& found = nearest.emplace(name(x, y), 1.0f).first->second;
                found = std::min(found, depth(x, y));
            }
        }
        return nearest;
    }

    QImage names;
    std::vector<float> depths;
    std::vector<QRect> flats;
};

/// The smallest box in GL coordinates that holds every pixel in which two upright pictures clearly differ.
QRect changeBetween(const QImage& before, const QImage& after)
{
    QRect box;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            if (std::abs(qGray(after.pixel(x, y)) - qGray(before.pixel(x, y))) > 15) {
                box |= QRect(x, before.height() - 1 - y, 1, 1);
            }
        }
    }
    return box;
}

/// A cube of edge 0.6 at a place.
Matrix cubeAt(float x, float y, float z)
{
    return Matrix::scale(0.3f) * Matrix::translate(Vector3(x, y, z));
}

struct PickTruthGLTest : ::testing::Test
{
    PickTruthGLTest() { context().viewport = OruOglViewport(0, 0, gl.size().width(), gl.size().height()); }
    void TearDown() override { EXPECT_EQ(gl.faults(), ""); }

    OruSceneEventContext& context() { return host.context(); }
    OruVisList& list() { return host.scene().render.visualizations; }

    template <typename Kind = MeshVisualization, typename Content>
    Kind& add(const Content& content, const Matrix& place = Matrix())
    {
        auto* part = new Kind(host.scene().group, content);
        part->rename(QStringLiteral("part %1").arg(list().size()));
        part->offset.setValue(place);
        list().insert(part, false);
        host.changed();
        return *part;
    }

    /// Draws what is visible of the parts, or of the one of that name, flat in the colors of their names.
    Picture drawNames(unsigned int only = nobody)
    {
        glPushAttrib(OruOglAllAttribBits);
        glDisable(GL_DITHER);
        glClearColor(QColor(Qt::white));
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        OruScene::setViewing(OruSceneRenderContext(context()));
        glEnable(GL_DEPTH_TEST);
        glEnableClientState(GL_VERTEX_ARRAY);
        drawNamesBelow(list(), only);
        glDisableClientState(GL_VERTEX_ARRAY);
        glPopAttrib();
        Picture picture(gl.size());
        const int width = gl.size().width();
        const int height = gl.size().height();
        ::glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, picture.names.bits());
        ::glReadPixels(0, 0, width, height, GL_DEPTH_COMPONENT, GL_FLOAT, picture.depths.data());
        return picture;
    }

    void drawNamesBelow(const OruProperties& node, unsigned int only)
    {
        for (unsigned int i = 0; i < node.size(); ++i) {
            const auto* part = dynamic_cast<const PartVisualization*>(node.at(i));
            if (part && part->visible.value() && (only == nobody || only == part->hitName())) {
                drawName(*part);
            }
            drawNamesBelow(*node.at(i), only);
        }
    }

    static void drawName(const PartVisualization& part)
    {
        const unsigned int name = part.hitName();
        glColor3ub(name >> 16 & 0xff, name >> 8 & 0xff, name & 0xff);
        glPushMatrix();
        glMultMatrixf((part.placement() * part.offset.value()).data());
        glVertexPointer(3, GL_FLOAT, sizeof(Vector3), part.shape().positions.data());
        const auto drawItems = [](GLenum mode, const std::vector<uint32_t>& indices) {
            glDrawElements(mode, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_INT, indices.data());
        };
        if (const auto* surface = dynamic_cast<const MeshVisualization*>(&part)) {
            drawItems(GL_TRIANGLES, surface->mesh().indices);
        } else if (const auto* lines = dynamic_cast<const LineVisualization*>(&part)) {
            glLineWidth(std::round(lines->width.value()));
            drawItems(GL_LINES, lines->lines().indices);
        } else if (const auto* points = dynamic_cast<const PointVisualization*>(&part)) {
            glPointSize(std::round(points->width.value()));
            glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(points->points().pointCount()));
        }
        glPopMatrix();
    }

    /// What the scene answers for a pick window, with the matrices as they stand in the context.
    OruVisHitRecordList pick(const QPoint& point, int size)
    {
        OruSceneSelectContext sc(context());
        sc.pickPoint = point;
        sc.pickSize = QSize(size, size);
        OruScene::setViewing(sc);
        return host.scene().render.select(sc);
    }

    /// Whether there is something to hit.
    bool compareAt(Picture& truth, const QPoint& point, int size)
    {
        SCOPED_TRACE(::testing::Message() << "at " << point.x() << "," << point.y() << " size " << size);
        const OruOglViewport& view = context().viewport;
        const int before = (size - 1) / 2;
        const QRect window = QRect(point - QPoint(before, before), QSize(size, size)) &
                             QRect(view.x, view.y, view.width, view.height);
        const OruVisHitRecord record = OruVisHitRecordQuery::top(pick(point, size), nullptr, nullptr);
        auto depths = truth.nearestIn(window);
        const auto [name, depth] = *std::min_element(depths.begin(), depths.end(),
                                                     [](auto& a, auto& b) { return a.second < b.second; });
        if (record.name == name && name == nobody) {
            return false;
        }
        if (record.name != name) {
            depths = drawNames(record.name).nearestIn(window); // an equal one that was drawn later
        }
        EXPECT_NEAR(depths[record.name], depth, tieTolerance) << record.name << " instead of " << name;
        EXPECT_NEAR(record.distance, std::max(0.0f, depth), depthTolerance);
        return true;
    }

    /// 200 pixels in and just outside the viewport; how often there was something to hit.
    int compareAtRandomPixels(Picture truth)
    {
        std::mt19937 random(20);
        const OruOglViewport& view = context().viewport;
        int hits = 0;
        for (int i = 0; i < 200; ++i) {
            const int x = view.x - 5 + static_cast<int>(random() % (view.width + 10));
            const int y = view.y - 5 + static_cast<int>(random() % (view.height + 10));
            for (const int size : {1, 3, 9}) {
                hits += compareAt(truth, QPoint(x, y), size);
            }
        }
        return hits;
    }

    /// Whether the record tells what a picture has in the window.
    static bool tells(const OruVisHitRecord& record, Picture& truth, const QRect& window)
    {
        const auto depths = truth.nearestIn(window);
        const auto found = depths.find(record.name);
        const float nearest = std::min_element(depths.begin(), depths.end(), [](auto& a, auto& b) {
                                  return a.second < b.second;
                              })->second;
        return found != depths.end() && std::abs(found->second - nearest) <= tieTolerance &&
               (record.name == nobody || std::abs(record.distance - nearest) <= depthTolerance);
    }

    /// 800 pixels, as a renderer may draw them whose rounding moves things by a fiftieth of a pixel; how
    /// often there was something to hit.
    int compareWithRounding()
    {
        const Matrix exact = context().projection;
        const OruOglViewport& view = context().viewport;
        std::vector<Picture> truths;
        const float step = 0.04f; // in clip coordinates a pixel is two steps of one over the side
        for (const auto& [x, y] :
             {std::pair(0.0f, 0.0f), {step, 0.0f}, {-step, 0.0f}, {0.0f, step}, {0.0f, -step}}) {
            context().projection = exact * Matrix::translate(Vector3(x / view.width, y / view.height, 0.0f));
            truths.push_back(drawNames());
        }
        context().projection = exact;
        std::mt19937 random(20);
        int hits = 0;
        for (int i = 0; i < 800; ++i) {
            const QPoint point(view.x + static_cast<int>(random() % view.width),
                               view.y + static_cast<int>(random() % view.height));
            const int reach = static_cast<int>(random() % 3);
            const QRect window = QRect(point, QSize(1, 1)).adjusted(-reach, -reach, reach, reach) &
                                 QRect(view.x, view.y, view.width, view.height);
            const auto record = OruVisHitRecordQuery::top(pick(point, 1 + 2 * reach), nullptr, nullptr);
            EXPECT_TRUE(std::any_of(truths.begin(), truths.end(),
                                    [&](Picture& truth) { return tells(record, truth, window); }))
                << "at " << point.x() << "," << point.y() << " window " << window.width() << " found "
                << record.name;
            hits += record.name != nobody;
        }
        return hits;
    }

    void show()
    {
        ASSERT_TRUE(host.showFrom("iso"));
        host.draw();
    }

    QImage drawn()
    {
        host.draw();
        return gl.grab();
    }

    /// Solids that cross and touch, one that is open, one that is hidden, a triad and an image that is.
    void buildMixedScene()
    {
        add(built(sourceOf(bumpySphere(2000, 0.7f))));
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
        show();
    }

    /// The label of a name is what lights up under the pointer.
    void coverWithLabels(Picture& truth)
    {
        boost::weak_ptr<IOruVisEventHandler> handler;
        OruVisHitRecordQuery::top(pick(QPoint(0, 0), 1000), &handler, nullptr);
        const boost::shared_ptr<IOruVisEventHandler> labels = handler.lock();
        ASSERT_TRUE(labels);
        const OruStringBuilder builder(Kelvar::Math::NumberFormat('.', 0, -1));
        QString tooltip;
        const QImage dark = drawn();
        for (const unsigned int name : triad->hitProperties.keys()) {
            labels->OnHoverEnter({0.0, name}, builder, tooltip);
            truth.cover(changeBetween(dark, drawn()), name);
            labels->OnHoverLeave({0.0, name}, builder, tooltip);
        }
    }

    /// In the place of some of the labels, and drawn behind them in time: it wins.
    void coverWithLogo(Picture& truth)
    {
        OruVisualization& logo = *list()["kelvar logo"];
        QImage opaque(40, 30, QImage::Format_RGB888);
        opaque.fill(Qt::magenta);
        opaque.save(folder.filePath("opaque.png"));
        logo.setValue("file", "opaque.png");
        logo.setValue("marginLeft", "60");
        logo.setValue("alignment", QString::number(static_cast<int>(Qt::AlignLeft | Qt::AlignBottom)));
        const QImage without = drawn();
        logo.setValue("visible", "true");
        truth.cover(changeBetween(without, drawn()), logo.hitProperties.begin().key());
    }

    GlContext gl{QSize(400, 300)};
    QTemporaryDir folder;
    HostScene host{QString(), folder.path(), QString()};
    OruVisTriad* triad = nullptr; ///< the list's
};

TEST_F(PickTruthGLTest, Engine)
{
    Progress progress;
    hostkit::ModelParts(host.scene().render.visualizations).add(ModelImporter::load(engineFile(), progress));
    show();
    EXPECT_GT(compareAtRandomPixels(drawNames()), 100);
}

TEST_F(PickTruthGLTest, TenThousandSmallObjects)
{
    const auto sphere = built(sourceOf(bumpySphere(100, 0.35f)));
    for (int i = 0; i < 10000; ++i) {
        add(sphere, Matrix::translate(Vector3(i % 25, i / 25 % 20, i / 500)));
    }
    show();
    EXPECT_GT(compareAtRandomPixels(drawNames()), 100);
}

TEST_F(PickTruthGLTest, FlatOverSolid)
{
    context().viewport = OruOglViewport(30, 20, 340, 260);
    buildMixedScene();
    Picture truth = drawNames();
    coverWithLabels(truth);
    coverWithLogo(truth);
    ASSERT_EQ(truth.flats.size(), 8u);
    EXPECT_GT(compareAtRandomPixels(truth), 100);
    // The corners of all that is flat, from inside and outside.
    for (const QRect& box : truth.flats) {
        for (const int x : {box.left() - 1, box.left(), box.right(), box.right() + 1}) {
            for (const int y : {box.top() - 1, box.top(), box.bottom(), box.bottom() + 1}) {
                compareAt(truth, QPoint(x, y), 1);
            }
        }
    }
    EXPECT_FALSE(OruVisHitRecordQuery::any(pick(QPoint(INT_MIN, INT_MAX), 9)));
    EXPECT_FALSE(OruVisHitRecordQuery::any(pick(QPoint(200, 150), INT_MIN)));
    EXPECT_TRUE(OruVisHitRecordQuery::any(pick(QPoint(200, 150), INT_MAX)));
}

/// Points at random places, or lines between every two of them.
MeshSource scattered(Primitive primitive, uint32_t vertices, float reach)
{
    std::mt19937 random(vertices);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    MeshSource source;
    source.primitive = primitive;
    source.name = "scattered";
    for (uint32_t i = 0; i < vertices; ++i) {
        const Vector3 place(unit(random), unit(random), unit(random));
        const bool ends = primitive == Primitive::Lines && i % 2 == 1;
        source.positions.push_back(ends ? source.positions.back() + place * reach : place);
        source.indices.push_back(i);
    }
    return source;
}

TEST_F(PickTruthGLTest, PointsAndLinesOfAllWidths)
{
    context().viewport = OruOglViewport(30, 20, 340, 260);
    add(built(sourceOf(bumpySphere(500, 0.4f))));
    ThinVisualization* const parts[] = {
        &add<PointVisualization>(builtAs<PointSet>(scattered(Primitive::Points, 4000, 0.0f))),
        &add<LineVisualization>(builtAs<LineSet>(scattered(Primitive::Lines, 300, 2.0f))),
        &add<LineVisualization>(builtAs<LineSet>(scattered(Primitive::Lines, 4000, 0.1f)))};
    show();
    const Matrix whole = context().projection;
    Matrix perspective;
    perspective(2, 3) = 0.6f;
    const Matrix near = Matrix::scale(Vector3(3, 3, 1)) * perspective;
    const std::pair<float, Matrix> rows[] = {{1.0f, Matrix()}, {1.0f, near},     {2.0f, perspective},
                                             {3.4f, near},     {8.0f, Matrix()}, {8.0f, near}};
    for (const auto& [width, view] : rows) {
        SCOPED_TRACE(::testing::Message() << "row " << &view - &rows[0].second);
        for (ThinVisualization* const part : parts) {
            part->width.setValue(width);
        }
        context().projection = whole * view;
        EXPECT_GT(compareWithRounding(), 50);
    }
}

TEST_F(PickTruthGLTest, ObjectsCutByTheViewVolume)
{
    buildMixedScene();
    triad->visible.setValue(false);
    const Matrix whole = context().projection;
    const std::pair<const char*, Matrix> rows[] = {
        {"near half", Matrix::translate(Vector3(0, 0, 1))},
        {"far half", Matrix::translate(Vector3(0, 0, -1))},
        {"a slice", Matrix::scale(Vector3(1, 1, 2))},
        {"all gone", Matrix::translate(Vector3(0, 0, 5))},
        {"beside the window", Matrix::translate(Vector3(0.8f, -0.9f, 0))},
    };
    for (const auto& [name, inClipSpace] : rows) {
        SCOPED_TRACE(name);
        context().projection = whole * inClipSpace;
        compareAtRandomPixels(drawNames());
    }
}

} // namespace
