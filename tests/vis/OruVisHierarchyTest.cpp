#include "contracts/vis/OruVisHierarchy.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Objects = std::vector<OruVisHierarchy::Object>;
using Indices = std::vector<std::uint32_t>;

/// What looks along z at a square of the plane z = 0.
OruVisViewVolume squareAt(float x, float y, float halfSide)
{
    const OruOglViewport viewport(0, 0, 100, 100);
    const Matrix view = Matrix::translate(Vector3(-x, -y, 0.0f)) *
                        Matrix::scale(Vector3(1.0f / halfSide, 1.0f / halfSide, 1e-6f));
    return OruVisViewVolume::ofView(view, Matrix(), viewport);
}

BoundingBox cubeAt(const Vector3& center, float halfSide)
{
    const Vector3 half(halfSide, halfSide, halfSide);
    return BoundingBox(center - half, center + half);
}

/// Where the number lies, of 10,000 in all.
struct Cloud
{
    const char* name;
    Vector3 (*center)(std::uint32_t index, std::mt19937& random);
};

float number(std::mt19937& random, float most)
{
    return std::uniform_real_distribution<float>(-most, most)(random);
}

const Cloud clouds[] = {
    {"spread out",
     [](std::uint32_t, std::mt19937& random) {
         return Vector3(number(random, 100), number(random, 100), number(random, 100));
     }},
    {"in a plane",
     [](std::uint32_t, std::mt19937& random) {
         return Vector3(number(random, 100), number(random, 100), 0.0f);
     }},
    {"all in one place", [](std::uint32_t, std::mt19937&) { return Vector3(1.0f, 2.0f, 3.0f); }},
    {"one far away",
     [](std::uint32_t index, std::mt19937& random) {
         return index == 77 ? Vector3(1e7f, 0.0f, 0.0f)
                            : Vector3(number(random, 100), number(random, 100), number(random, 100));
     }},
    {"each much farther away than the one before",
     [](std::uint32_t index, std::mt19937&) {
         return Vector3(std::pow(2.0f, static_cast<float>(index % 120)), 0.0f, 0.0f);
     }},
    {"as far away as floats go",
     [](std::uint32_t index, std::mt19937& random) {
         return index % 2 ? Vector3(3e38f, number(random, 3e38f), 0.0f)
                          : Vector3(-3e38f, number(random, 3e38f), 0.0f);
     }},
};

/// Some have no box, a third is marked.
Objects objectsOf(const Cloud& cloud, std::uint32_t count)
{
    std::mt19937 random(5);
    Objects objects;
    for (std::uint32_t index = 0; index < count; ++index) {
        const BoundingBox box = cubeAt(cloud.center(index, random), 0.5f);
        objects.push_back({index % 10 == 9 ? BoundingBox() : box, index % 3 == 0});
    }
    return objects;
}

OruVisHierarchy::ObjectAt from(const Objects& objects)
{
    return [&objects](std::uint32_t index) { return objects[index]; };
}

Indices expected(const Objects& objects, const OruVisViewVolume& volume, bool markedOnly)
{
    Indices all;
    for (std::uint32_t index = 0; index < objects.size(); ++index) {
        const OruVisHierarchy::Object& object = objects[index];
        if (object.box.defined() && (object.marked || !markedOnly) && volume.meets(object.box)) {
            all.push_back(index);
        }
    }
    return all;
}

/// Asks for small squares and for all.
void checkAnswers(OruVisHierarchy& hierarchy, const Objects& objects)
{
    std::mt19937 random(8);
    for (int question = 0; question < 8; ++question) {
        const float halfSide = question == 7 ? 1e8f : 5.0f;
        const OruVisViewVolume volume = squareAt(number(random, 100), number(random, 100), halfSide);
        Indices found;
        hierarchy.collect(volume, found);
        std::sort(found.begin(), found.end());
        EXPECT_TRUE(found == expected(objects, volume, false)) << found.size() << " at " << question;
        Indices marked;
        hierarchy.collectMarked(volume, marked);
        std::sort(marked.begin(), marked.end());
        EXPECT_TRUE(marked == expected(objects, volume, true)) << marked.size() << " at " << question;
    }
}

TEST(OruVisHierarchy, findsWhatALookAtEachBoxFinds)
{
    for (const Cloud& cloud : clouds) {
        for (const std::uint32_t count : {0U, 1U, 5U, 300U, 10000U}) {
            SCOPED_TRACE(testing::Message() << count << " boxes, " << cloud.name);
            const Objects objects = objectsOf(cloud, count);
            OruVisHierarchy hierarchy;
            hierarchy.build(count, from(objects));
            checkAnswers(hierarchy, objects);
        }
    }
}

TEST(OruVisHierarchy, followsBoxesThatChange)
{
    for (const Cloud& cloud : clouds) {
        SCOPED_TRACE(cloud.name);
        Objects objects = objectsOf(cloud, 10000);
        OruVisHierarchy hierarchy;
        hierarchy.build(objects.size(), from(objects));
        for (std::uint32_t index = 0; index < objects.size(); index += 97) {
            const auto far = static_cast<float>(index);
            objects[index] = {index % 2 ? BoundingBox() : cubeAt(Vector3(far, far, far), 1.0f), true};
            hierarchy.set(index, objects[index]);
        }
        checkAnswers(hierarchy, objects);

        std::reverse(objects.begin(), objects.end());
        hierarchy.refit(from(objects));
        checkAnswers(hierarchy, objects);
    }
}

TEST(OruVisHierarchy, knowsTheBoundsOfAll)
{
    OruVisHierarchy hierarchy;
    EXPECT_FALSE(hierarchy.bounds().defined());
    const Objects objects(5000, {cubeAt(Vector3(), 1.0f), false});
    hierarchy.build(objects.size(), from(objects));
    hierarchy.set(4321, {cubeAt(Vector3(9.0f, 0.0f, 0.0f), 1.0f), false});
    EXPECT_EQ(hierarchy.bounds(), BoundingBox(Vector3(-1.0f, -1.0f, -1.0f), Vector3(10.0f, 1.0f, 1.0f)));
    hierarchy.set(4321, {BoundingBox(), false});
    EXPECT_EQ(hierarchy.bounds(), cubeAt(Vector3(), 1.0f));
}

template <typename Operation>
double secondsOf(Operation operation)
{
    const auto begin = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Halving them at their median, again and again, takes seven times as long as the building; this takes
/// three.
TEST(OruVisHierarchy, firstQuestionAboutASmallPlaceCostsLittleMoreThanTheBuilding)
{
    const Objects objects = objectsOf(clouds[0], 100000);
    OruVisHierarchy hierarchy;
    Indices found;
    // The quickest of some, by turns, since others use the machine, too.
    double building = 1e9;
    double asking = 1e9;
    for (int round = 0; round < 15; ++round) {
        building = std::min(building, secondsOf([&] { hierarchy.build(objects.size(), from(objects)); }));
        asking = std::min(asking, secondsOf([&] { hierarchy.collect(squareAt(3.0f, 4.0f, 0.5f), found); }));
    }
    EXPECT_FALSE(found.empty());
    EXPECT_LT(asking, 5.0 * building);
}

} // namespace
