// What surfaces look like and where they can be hit: textures, alpha and opacity, without lights, so that the
// pixels are what the materials say.

#include "hosts/host/HostScene.h"
#include "hosts/mesh/MeshVisualization.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "contracts/vis/OruVisList.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Alpha = Material::Alpha;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Wrap = Texture::Wrap;

namespace {

std::shared_ptr<const Texture> textureOf(const QImage& image, Wrap wrap = Wrap::Repeat)
{
    auto texture = std::make_shared<Texture>();
    texture->image = image;
    texture->wrapS = texture->wrapT = wrap;
    return texture;
}

std::shared_ptr<const Texture> plainTexture(const QColor& color)
{
    QImage image(3, 5, QImage::Format_ARGB32);
    image.fill(color);
    return textureOf(image);
}

/// A square of edge 2 that looks towards -Y, the texture from `first` to `last` on it.
MeshSource cardSource(const QColor& color, float first = 0.0f, float last = 1.0f)
{
    MeshSource source;
    source.name = QStringLiteral("card");
    source.material.color = color;
    source.positions = {{-1, 0, -1}, {1, 0, -1}, {1, 0, 1}, {-1, 0, 1}};
    source.texturePoints = {{first, first}, {last, first}, {last, last}, {first, last}};
    source.indices = {0, 1, 2, 0, 2, 3};
    return source;
}

uint32_t bytesOf(const QColor& color)
{
    return static_cast<uint32_t>(color.red() | color.green() << 8 | color.blue() << 16 | color.alpha() << 24);
}

QColor mixed(const QColor& over, double opacity, const QColor& under)
{
    const auto mix = [&](int a, int b) { return static_cast<int>(opacity * a + (1.0 - opacity) * b + 0.5); };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

bool alike(const QColor& a, const QColor& b)
{
    constexpr int rounding = 2;
    return std::abs(a.red() - b.red()) <= rounding && std::abs(a.green() - b.green()) <= rounding &&
           std::abs(a.blue() - b.blue()) <= rounding;
}

struct MaterialsGLTest : ::testing::Test
{
    MaterialsGLTest()
    {
        host.setSize(gl.size());
        list()["lights"]->setValue("visible", "false");
    }
    void TearDown() override { EXPECT_EQ(gl.faults(), ""); }

    OruVisList& list() { return host.scene().render.visualizations; }

    MeshVisualization& add(MeshSource source, const Matrix& place = Matrix(), OruVisList* into = nullptr)
    {
        auto* part = new MeshVisualization(host.scene().group, built(std::move(source)));
        part->rename(QStringLiteral("part %1").arg(part->hitName()));
        part->setPlacement(place);
        (into ? into : &list())->insert(part, false);
        host.changed();
        return *part;
    }

    QImage shownFrom(const char* position)
    {
        host.showFrom(position);
        host.draw();
        return gl.grab();
    }

    static QColor middle(const QImage& image)
    {
        return image.pixelColor(image.width() / 2, image.height() / 2);
    }

    /// The part that a pick of one pixel hits, y downwards as in images; null for none.
    const OruVisualization* hitAt(int x, int y)
    {
        OruSceneSelectContext sc(host.context());
        sc.pickPoint = QPoint(x, gl.size().height() - 1 - y);
        sc.pickSize = QSize(1, 1);
        OruScene::setViewing(sc);
        const OruVisualization* hit = nullptr;
        OruVisHitRecordQuery::top(host.scene().render.select(sc), nullptr, &hit);
        return hit;
    }

    GlContext gl{QSize(400, 300)};
    HostScene host;
};

} // namespace

TEST_F(MaterialsGLTest, ShowsWhatTheMaterialSaysAndPicksWhatShows)
{
    const QColor back(40, 200, 80);
    const QColor red(220, 60, 20);
    const QColor half(220, 60, 20, 128);
    const QColor faint(220, 60, 20, 10);
    constexpr double h = 128 / 255.0;
    struct Row
    {
        const char* name;
        QColor color, vertices, texture; ///< invalid: none
        Alpha alpha;
        float opacity; ///< below 0: as it comes
        QColor shown;
        bool hit;
    };
    const QColor none;
    const QColor dim(200, 100, 50);
    const QColor product(220 * 200 / 255, 60 * 100 / 255, 20 * 50 / 255);
    const Row rows[] = {
        {"opaque color", half, none, none, Alpha::Opaque, -1, red, true},
        {"opaque vertices", dim, half, none, Alpha::Opaque, -1, red, true},
        {"opaque texture", Qt::white, none, half, Alpha::Opaque, -1, red, true},
        {"color times texture", red, none, dim, Alpha::Opaque, -1, product, true},
        {"vertices times texture", Qt::blue, dim, red, Alpha::Opaque, -1, product, true},
        {"opaque color made half", half, none, none, Alpha::Opaque, 0.5f, mixed(red, 0.5, back), true},
        {"opaque vertices made half", dim, half, none, Alpha::Opaque, 0.5f, mixed(red, 0.5, back), true},
        {"opaque texture made half", Qt::white, none, half, Alpha::Opaque, 0.5f, mixed(red, 0.5, back), true},
        {"blended color", half, none, none, Alpha::Blend, -1, mixed(red, h, back), true},
        {"blended color made solid", half, none, none, Alpha::Blend, 1, red, true},
        {"blended vertices", dim, half, none, Alpha::Blend, -1, mixed(red, h, back), true},
        {"blended vertices made half", dim, half, none, Alpha::Blend, 0.5f, mixed(red, h / 2, back), true},
        {"blended texture", Qt::white, none, half, Alpha::Blend, -1, mixed(red, h, back), true},
        {"all of it", dim, QColor(255, 255, 255, 128), half, Alpha::Blend, 0.5f, mixed(red, h * h / 2, back),
         true},
        {"blended, hardly there", Qt::white, none, faint, Alpha::Blend, -1, mixed(red, 10 / 255.0, back),
         false},
        {"opaque, hardly there", red, none, none, Alpha::Opaque, 0.04f, mixed(red, 0.04, back), false},
        {"nothing of it", red, none, none, Alpha::Opaque, 0, back, false},
        {"cut out", Qt::white, none, QColor(220, 60, 20, 127), Alpha::CutOut, -1, back, false},
        {"just not cut out", Qt::white, none, half, Alpha::CutOut, -1, red, true},
        {"not cut out, made half", Qt::white, none, half, Alpha::CutOut, 0.5f, mixed(red, 0.5, back), true},
        {"cut out by color and vertices", half, half, none, Alpha::CutOut, -1, back, false},
    };
    MeshVisualization& behind = add(cardSource(back), Matrix::translate(Vector3(0, 1, 0)));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MeshSource source = cardSource(row.color);
        source.material.alpha = row.alpha;
        if (row.vertices.isValid()) {
            source.colors.assign(4, bytesOf(row.vertices));
        }
        if (row.texture.isValid()) {
            source.material.texture = plainTexture(row.texture);
        }
        MeshVisualization& part = add(source);
        if (row.opacity >= 0.0f) {
            part.opacity.setValue(row.opacity);
        }
        const QColor shown = middle(shownFrom("-y"));
        EXPECT_TRUE(alike(shown, row.shown))
            << shown.name().toStdString() << " for " << row.shown.name().toStdString();
        EXPECT_EQ(hitAt(200, 150), row.hit ? &part : &behind);
        list().erase(&part);
    }
}

TEST_F(MaterialsGLTest, DrawsGlassFromBackToFrontOverAllThatIsSolid)
{
    auto* const outer = new OruVisList(host.scene().group, "outer");
    auto* const inner = new OruVisList(host.scene().group, "inner");
    list().insert(outer, false);
    outer->insert(inner, false);
    struct Pane
    {
        float y;
        QColor color;
        OruVisList* into;
    };
    // The one in the middle is a box whose far side is blue.
    const Pane panes[] = {{-2, QColor(255, 0, 0, 128), inner},
                          {2, QColor(0, 255, 0, 128), &list()},
                          {0, QColor(255, 255, 0, 128), outer}};
    for (const Pane& pane : panes) {
        MeshSource source = pane.y == 0.0f ? cubeSource() : cardSource(pane.color);
        source.material.color = pane.color;
        source.material.alpha = Alpha::Blend;
        for (const Vector3& position : source.positions) {
            if (pane.y == 0.0f) {
                source.colors.push_back(bytesOf(position.y > 0.0f ? QColor(0, 0, 255) : QColor(255, 255, 0)));
            }
        }
        add(source, Matrix::translate(Vector3(0, pane.y, 0)), pane.into);
    }
    // Solid, in the list that comes last, between the front pane and the box as seen from -Y.
    auto* const last = new OruVisList(host.scene().group, "last");
    list().insert(last, false);
    MeshVisualization& solid = add(cardSource(Qt::white), Matrix::translate(Vector3(0, -1.5f, 0)), last);

    const QColor red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), yellow(255, 255, 0);
    constexpr double h = 128 / 255.0;
    EXPECT_TRUE(alike(middle(shownFrom("-y")), mixed(red, h, Qt::white)));
    QColor wanted = Qt::white;
    for (const QColor& nearer : {yellow, blue, green}) {
        wanted = mixed(nearer, h, wanted);
    }
    const QColor fromBehind = middle(shownFrom("y"));
    EXPECT_TRUE(alike(fromBehind, wanted)) << fromBehind.name().toStdString();
    solid.visible.setValue(false);
    wanted = Qt::black;
    for (const QColor& nearer : {green, blue, yellow, red}) {
        wanted = mixed(nearer, h, wanted);
    }
    host.changed();
    const QImage window = shownFrom("-y");
    EXPECT_TRUE(alike(middle(window), wanted)) << middle(window).name().toStdString();
    EXPECT_TRUE(alike(middle(host.picture(gl.size())), wanted)) << "a capture";
}

TEST_F(MaterialsGLTest, ShowsTheInsideOfWhatIsCutOpen)
{
    MeshSource source = cubeSource();
    source.material.alpha = Alpha::CutOut;
    for (const Vector3& position : source.positions) {
        source.colors.push_back(bytesOf(position.y > 0.0f ? QColor(Qt::blue) : QColor(255, 0, 0, 0)));
    }
    MeshVisualization& part = add(source);
    ASSERT_TRUE(part.mesh().closed);
    EXPECT_EQ(middle(shownFrom("-y")), QColor(Qt::blue));
    EXPECT_EQ(hitAt(200, 150), &part);
}

TEST_F(MaterialsGLTest, PicksThroughHolesJustWhereTheyShow)
{
    QImage holes(8, 8, QImage::Format_ARGB32);
    holes.fill(Qt::red);
    for (const QPoint& hole : {QPoint(1, 1), {2, 1}, {2, 2}, {6, 3}, {3, 6}, {0, 7}}) {
        holes.setPixelColor(hole, QColor(255, 0, 0, 0));
    }
    for (const Wrap wrap : {Wrap::Repeat, Wrap::Mirror, Wrap::Clamp}) {
        SCOPED_TRACE(static_cast<int>(wrap));
        MeshSource front = cardSource(Qt::white, -0.4f, 1.6f);
        front.material.texture = textureOf(holes, wrap);
        front.material.alpha = Alpha::CutOut;
        MeshVisualization& card = add(front);
        front.material.texture = textureOf(holes.rgbSwapped(), wrap);
        const Matrix turned = Matrix::rotate(Kelvar::Math::VectorY, 30.0f);
        MeshVisualization& second = add(front, turned * Matrix::translate(Vector3(0.2f, 0.3f, 0.1f)));
        const QImage shown = shownFrom("iso");
        const std::map<QRgb, const OruVisualization*> byColor = {
            {qRgb(255, 0, 0), &card}, {qRgb(0, 0, 255), &second}, {qRgb(0, 0, 0), nullptr}};
        std::map<const OruVisualization*, int> seen;
        for (int y = 10; y < shown.height() - 10; y += 6) {
            for (int x = 10; x < shown.width() - 10; x += 6) {
                const QRgb color = shown.pixel(x, y);
                // At an edge rounding decides.
                if (color == shown.pixel(x - 1, y) && color == shown.pixel(x + 1, y) &&
                    color == shown.pixel(x, y - 1) && color == shown.pixel(x, y + 1)) {
                    ASSERT_EQ(hitAt(x, y), byColor.at(color)) << x << "," << y;
                    ++seen[byColor.at(color)];
                }
            }
        }
        EXPECT_GT(std::min({seen[&card], seen[&second], seen[nullptr]}), 50);
        list().erase(&card);
        list().erase(&second);
    }
}

TEST_F(MaterialsGLTest, SharesATextureAmongPartsAndLetsItGo)
{
    const auto objects = [&] {
        shownFrom("-y");
        return GlRecorder::instance().liveObjects();
    };
    add(cardSource(Qt::white), Matrix::translate(Vector3(0, 1, 0)));
    const int before = objects();
    MeshSource source = cardSource(Qt::white);
    source.material.texture = plainTexture(QColor(60, 60, 120));
    const Matrix nearer = Matrix::translate(Vector3(0.5f, -1, 0));
    MeshVisualization* const parts[] = {&add(source, nearer), &add(source)};
    EXPECT_EQ(objects(), before + 3) << "two meshes and a texture";
    list()["lights"]->setValue("visible", "true");
    const QImage plain = shownFrom("-y");
    parts[0]->marked.setValue(true);
    const QImage marked = shownFrom("-y");
    EXPECT_GT(middle(marked).red(), 100) << "a mark shows through";
    EXPECT_EQ(marked.pixelColor(70, 150), plain.pixelColor(70, 150)) << "the other part, drawn after it";
    for (MeshVisualization* const part : parts) {
        list().erase(part);
    }
    add(cardSource(Qt::white));
    EXPECT_EQ(objects(), before + 1) << "that of the new card";
}
