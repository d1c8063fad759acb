#include "contracts/core/OruResource.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglTextureStages.h"

#include "tests/ogl/OglFixture.h"

#include <vector>

using kelvartest::glStateText;

namespace {

/// Two triangles that make the square of the pixels 10 to 19, in two colors if asked for.
struct Square
{
    std::vector<float> positions{9.5f, 9.5f, 0, 19.5f, 9.5f, 0, 19.5f, 19.5f, 0, 9.5f, 19.5f, 0};
    std::vector<float> normals{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    std::vector<std::uint8_t> colors{255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255};
    std::vector<std::uint32_t> indices{0, 1, 2, 0, 2, 3};

    OruOglMeshArrays arrays() const
    {
        OruOglMeshArrays result;
        result.positions = positions.data();
        result.normals = normals.data();
        result.vertexCount = positions.size() / 3;
        result.indices = indices.data();
        result.indexCount = indices.size();
        return result;
    }
};

struct OruOglMeshBufferGLTest : kelvartest::OglFixture
{
    /// The pixels that a mesh lights, all of it or a part.
    template <typename... Part>
    QRect litBy(const OruOglMeshBuffer& mesh, Part... part)
    {
        return lit(drawn([&] { mesh.draw(part...); }));
    }

    OruModifiedGroup group;
    OruOglGeometry geometry{group};
    Square square;
};

TEST_F(OruOglMeshBufferGLTest, DrawsAllOrAPart)
{
    glColor(QColor(Qt::green));
    const auto mesh = geometry.makeMesh();
    EXPECT_TRUE(mesh->empty());
    EXPECT_EQ(litBy(*mesh), QRect()) << "nothing uploaded";
    ASSERT_TRUE(mesh->upload(square.arrays()));
    EXPECT_EQ(mesh->byteCount(), 4 * 24U + 6 * 2U);
    EXPECT_EQ(litBy(*mesh), QRect(10, 10, 10, 10));
    EXPECT_EQ(pixel(context.grab(), 15, 12), QColor(Qt::green)) << "the current color";
    EXPECT_EQ(litBy(*mesh, 6, 3), QRect()) << "behind the end";
    const QImage second = drawn([&] { mesh->draw(3, 1000); });
    EXPECT_EQ(pixel(second, 18, 11), QColor(Qt::black)) << "the second triangle alone";
    EXPECT_EQ(pixel(second, 11, 18), QColor(Qt::green));

    OruOglMeshArrays arrays = square.arrays();
    arrays.colors = square.colors.data();
    arrays.primitive = OruOglMeshArrays::Primitive::Lines;
    ASSERT_TRUE(mesh->upload(arrays)) << "again, with other content";
    EXPECT_GE(litBy(*mesh).width(), 9);
    EXPECT_EQ(pixel(context.grab(), 15, 12), QColor(Qt::black)) << "lines, not triangles";
    EXPECT_EQ(pixel(context.grab(), 14, 14), QColor(Qt::red)) << "colors of its own";

    arrays.primitive = OruOglMeshArrays::Primitive::Points;
    arrays.indices = nullptr;
    ASSERT_TRUE(mesh->upload(arrays));
    EXPECT_EQ(mesh->byteCount(), 4 * 28U) << "without indices";
    EXPECT_EQ(mesh->indexCount(), 4U);
    EXPECT_EQ(litBy(*mesh), QRect(10, 10, 11, 11)) << "all corners";
    EXPECT_EQ(litBy(*mesh, 1, 2), QRect(20, 10, 1, 11)) << "those on the right";
}

TEST_F(OruOglMeshBufferGLTest, DrawsSeveralRangesAtOnce)
{
    glColor(QColor(Qt::green));
    for (const bool indexed : {true, false}) {
        SCOPED_TRACE(indexed);
        // Five triangles: the square, and smaller ones farther up.
        Square more;
        for (const float y : {30.0f, 50.0f, 70.0f}) {
            for (const float corner : {9.5f, y, 0.0f, 19.5f, y, 0.0f, 19.5f, y + 10.0f, 0.0f}) {
                more.positions.push_back(corner);
            }
            more.normals.insert(more.normals.end(), {0, 0, 1, 0, 0, 1, 0, 0, 1});
        }
        more.positions.erase(more.positions.begin(), more.positions.begin() + 12);
        more.normals.erase(more.normals.begin(), more.normals.begin() + 12);
        more.indices = {0, 1, 2, 3, 4, 5, 6, 7, 8};
        OruOglMeshArrays arrays = more.arrays();
        arrays.indices = indexed ? arrays.indices : nullptr;
        const auto mesh = geometry.makeMesh();
        mesh->draw(std::vector<OruOglMeshBuffer::Range>{{0, 3}});
        ASSERT_TRUE(mesh->upload(arrays));
        const auto litRows = [&](const std::vector<OruOglMeshBuffer::Range>& ranges) {
            const QImage image = drawn([&] { mesh->draw(ranges); });
            std::string rows;
            for (const int y : {32, 52, 72}) {
                rows += pixel(image, 18, y) == QColor(Qt::green) ? '1' : '0';
            }
            return rows;
        };
        EXPECT_EQ(litRows({}), "000");
        EXPECT_EQ(litRows({{6, 3}, {0, 3}}), "101");
        EXPECT_EQ(litRows({{3, 1000}, {1000, 3}}), "011") << "beyond the end";
    }
}

TEST_F(OruOglMeshBufferGLTest, TakesOtherColorsForSomeVertices)
{
    const std::uint8_t blue[] = {0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255};
    const auto mesh = geometry.makeMesh();
    EXPECT_FALSE(mesh->replaceColors(0, 1, blue)) << "empty";
    ASSERT_TRUE(mesh->upload(square.arrays()));
    EXPECT_FALSE(mesh->replaceColors(0, 1, blue)) << "without colors";
    OruOglMeshArrays arrays = square.arrays();
    arrays.colors = square.colors.data();
    ASSERT_TRUE(mesh->upload(arrays));
    EXPECT_FALSE(mesh->replaceColors(1, 4, blue)) << "beyond the end";
    EXPECT_FALSE(mesh->replaceColors(5, 0, blue)) << "beyond the end";
    const std::string before = glStateText();
    EXPECT_TRUE(mesh->replaceColors(0, 1, blue));
    EXPECT_EQ(glStateText(), before);
    const QImage image = drawn([&] { mesh->draw(); });
    EXPECT_GT(pixel(image, 11, 11).blue(), 150);
    EXPECT_GT(pixel(image, 18, 18).red(), 200) << "the others keep theirs";
}

TEST_F(OruOglMeshBufferGLTest, LargeMeshesKeepWideIndices)
{
    Square large;
    large.positions.insert(large.positions.begin(), 3 * 0x10000, 0.0f);
    large.normals.resize(large.positions.size(), 1.0f);
    for (std::uint32_t& index : large.indices) {
        index += 0x10000;
    }
    const auto mesh = geometry.makeMesh();
    ASSERT_TRUE(mesh->upload(large.arrays()));
    EXPECT_EQ(litBy(*mesh), QRect(10, 10, 10, 10));
}

TEST_F(OruOglMeshBufferGLTest, RefusesWhatCanNotBeDrawn)
{
    const std::function<void(OruOglMeshArrays&)> damages[] = {
        [](OruOglMeshArrays& a) { a.positions = nullptr; }, [](OruOglMeshArrays& a) { a.vertexCount = 0; },
        [](OruOglMeshArrays& a) { a.indexCount = 0; },
        [](OruOglMeshArrays& a) { a.vertexCount = 3; }, // fewer than the indices name
    };
    const auto mesh = geometry.makeMesh();
    for (const auto& damage : damages) {
        SCOPED_TRACE(&damage - damages);
        ASSERT_TRUE(mesh->upload(square.arrays()));
        OruOglMeshArrays arrays = square.arrays();
        damage(arrays);
        EXPECT_FALSE(mesh->upload(arrays));
        EXPECT_TRUE(mesh->empty());
        EXPECT_EQ(mesh->byteCount(), 0U);
    }
}

TEST_F(OruOglMeshBufferGLTest, ArraysAndBindingsOfTheHostStay)
{
    const float somewhere[] = {0, 0, 0};
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    for (const auto set : {&glVertexPointer, &glColorPointer, &glTexCoordPointer}) {
        set(3, GL_FLOAT, 0, somewhere);
    }
    const std::string before = glStateText();
    glColor(QColor(Qt::green));
    const auto mesh = geometry.makeMesh();
    ASSERT_TRUE(mesh->upload(square.arrays()));
    EXPECT_EQ(litBy(*mesh), QRect(10, 10, 10, 10));
    EXPECT_EQ(pixel(context.grab(), 15, 15), QColor(Qt::green)) << "not the host's color array";
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(glStateText(), before);
}

TEST_F(OruOglMeshBufferGLTest, TexturesOfImagesInMemoryLieOnSurfacesAndAreReleased)
{
    using Wrap = OruOglCache::Wrap;
    const OruResource resource{QString(), QString(), QString()};
    OruOglCache cache(resource);
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setPixelColor(0, 0, Qt::red);
    const float points[] = {0, 0, 1, 0, 1, 1, 0, 1};
    OruOglMeshArrays arrays = square.arrays();
    arrays.texturePoints = points;
    const auto mesh = geometry.makeMesh();
    ASSERT_TRUE(mesh->upload(arrays));
    EXPECT_EQ(mesh->byteCount(), 4 * 32U + 6 * 2U);

    auto texture = cache.texture(image, Wrap::Clamp, Wrap::Clamp, "picture");
    EXPECT_EQ(cache.texture(QImage(image), Wrap::Clamp, Wrap::Clamp, "the same"), texture);
    EXPECT_NE(cache.texture(image, Wrap::Clamp, Wrap::Repeat, "another"), texture);
    glActiveTexture(GL_TEXTURE1);
    glClientActiveTexture(GL_TEXTURE1);
    const std::string before = glStateText();
    glColor(QColor(0, 255, 255));
    const QImage picture = drawn([&] {
        const OruOglTextureStages stages;
        stages.mix(*texture, 0.3f);
        stages.scaleAlpha(0.5f, cache.blank());
        stages.multiply(*texture);
        mesh->draw();
    });
    EXPECT_EQ(pixel(picture, 10, 19), QColor(Qt::black)) << "red at the upper left";
    EXPECT_EQ(pixel(picture, 19, 10), QColor(0, 255, 255));
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(glStateText(), before);
    glClientActiveTexture(GL_TEXTURE0);

    EXPECT_EQ(cache.textureCount(), 3U);
    cache.releaseUnused();
    EXPECT_EQ(cache.textureCount(), 2U) << "one that is held, and the blank one";
    cache.clear();
    EXPECT_EQ(texture->name, 0U);
    texture = cache.texture(image, Wrap::Clamp, Wrap::Clamp, "picture");
    EXPECT_NE(texture->name, 0U);
    const QImage refused[] = {QImage(), QImage(OruOglCache::largestSide + 1, 1, QImage::Format_RGB32)};
    for (const QImage& each : refused) {
        EXPECT_EQ(cache.texture(each, Wrap::Clamp, Wrap::Clamp, "refused"), nullptr);
        cache.releaseUnused();
    }
}

TEST_F(OruOglMeshBufferGLTest, BuffersGoWithTheirOwners)
{
    auto store = std::make_unique<OruOglGeometry>(group);
    auto kept = store->makeMesh();
    auto dropped = store->makeMesh();
    ASSERT_TRUE(kept->upload(square.arrays()) && dropped->upload(square.arrays()));
    EXPECT_EQ(store->bufferCount(), 2U);
    {
        kelvartest::GlRecording recording;
        dropped.reset();
        EXPECT_THAT(recording.finish(), ::testing::IsEmpty()) << "a mesh may go without a context";
    }
    store->collect();
    EXPECT_EQ(store->bufferCount(), 1U);
    EXPECT_TRUE(kept->belongsTo(*store));
    EXPECT_FALSE(kept->belongsTo(geometry));

    store.reset();
    EXPECT_TRUE(kept->empty());
    kept->draw();
    EXPECT_FALSE(kept->upload(square.arrays())) << "the store is gone";
}

} // namespace
