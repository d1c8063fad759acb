#include "contracts/vis/OruVisHitLabelQualifier.h"
#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisHitNames.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisTriadLayout.h"
#include "tests/vis/VisStage.h"

#include <gmock/gmock.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <limits>
#include <set>

using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Rank = OruVisHitRecordList::Rank;

TEST(OruVisHitRecordQuery, chooses_the_hit_that_a_person_means)
{
    struct Hit
    {
        Rank rank;
        double distance;
        double center;
    };
    struct Row
    {
        const char* name;
        std::vector<Hit> hits;
        unsigned int top;
    };
    const double none = std::numeric_limits<double>::quiet_NaN();
    const Row rows[] = {
        {"nothing", {}, OruVisHitRecord::INVALID_NAME},
        {"the nearer in 3D", {{Rank::Scene3d, 0.5, 0}, {Rank::Scene3d, 0.25, 2}, {Rank::Scene3d, 0.7, 0}}, 1},
        {"2D over 3D", {{Rank::Scene3d, 0.0, 0}, {Rank::Flat2d, 0.0, 9}, {Rank::Scene3d, -1, 0}}, 1},
        {"the later in 2D", {{Rank::Flat2d, 0.0, 0}, {Rank::Flat2d, 0.0, 5}}, 1},
        {"a tie goes to the center", {{Rank::Scene3d, 0.5, 2}, {Rank::Scene3d, 0.5, 1}}, 1},
        {"a whole tie to the first", {{Rank::Scene3d, 0.5, 1}, {Rank::Scene3d, 0.5, 1}}, 0},
        {"no number is farthest", {{Rank::Scene3d, none, 0}, {Rank::Scene3d, 0.9, 0}}, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        OruVisHitRecordList first;
        OruVisHitRecordList all;
        for (std::size_t i = 0; i < row.hits.size(); ++i) {
            OruVisHitRecordList& target = i == 0 ? all : first;
            target.add({row.hits[i].distance, static_cast<unsigned int>(i)}, row.hits[i].rank,
                       row.hits[i].center, {}, nullptr);
        }
        all.insert(first);
        EXPECT_EQ(OruVisHitRecordQuery::any(all), !row.hits.empty());
        EXPECT_EQ(OruVisHitRecordQuery::top(all, nullptr, nullptr).name, row.top);
    }
}

TEST(OruVisHitNames, come_back_last)
{
    std::set<unsigned int> seen;
    for (int i = 0; i < 1000; ++i) {
        OruVisHitName name;
        OruVisHitName taken(std::move(name));
        EXPECT_TRUE(seen.insert(taken.value()).second) << "reused at once";
        EXPECT_NE(taken.value(), OruVisHitRecord::INVALID_NAME);
        EXPECT_NE(taken.value(), 0U);
        EXPECT_EQ(name.value(), OruVisHitRecord::INVALID_NAME); // NOLINT: that is what a move leaves
    }
    // All names in use: the first freed are the first to be given again, and white never is.
    std::vector<unsigned int> all;
    EXPECT_THROW(
        for (;;) {
            all.push_back(OruVisHitNames::acquire());
            ASSERT_LT(all.back(), OruVisHitRecord::INVALID_NAME);
        },
        std::length_error);
    OruVisHitNames::release(all[17]);
    OruVisHitNames::release(all[3]);
    EXPECT_EQ(OruVisHitNames::acquire(), all[17]);
    std::for_each(all.begin(), all.end(), OruVisHitNames::release);
}

TEST(OruVisPickVolume, is_the_part_of_the_window_inside_the_viewport)
{
    const int big = std::numeric_limits<int>::max();
    const OruOglViewport view(10, 20, 200, 100);
    struct Row
    {
        const char* name;
        OruOglViewport viewport;
        QPoint point;
        int size;
        QRect expected;
    };
    const Row rows[] = {
        {"one pixel", view, {50, 60}, 1, {50, 60, 1, 1}},
        {"odd", view, {50, 60}, 3, {49, 59, 3, 3}},
        {"even", view, {50, 60}, 4, {49, 59, 4, 4}},
        {"two", view, {50, 60}, 2, {50, 60, 2, 2}},
        {"first pixel", view, {10, 20}, 5, {10, 20, 3, 3}},
        {"last pixel", view, {209, 119}, 5, {207, 117, 3, 3}},
        {"just outside", view, {210, 60}, 1, {}},
        {"reaching in", view, {210, 60}, 3, {209, 59, 1, 3}},
        {"left of it", view, {9, 60}, 2, {10, 60, 1, 2}},
        {"size 0", view, {50, 60}, 0, {}},
        {"size -1", view, {50, 60}, -1, {}},
        {"at the end of all numbers", view, {big, -big}, 3, {}},
        {"all of it", view, {50, 60}, big, {10, 20, 200, 100}},
        {"an empty viewport", {10, 20, 0, 100}, {10, 60}, 3, {}},
        {"a negative viewport", {10, 20, 200, -100}, {50, 10}, 3, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        VisStage stage;
        stage.viewport = row.viewport;
        const OruVisPickVolume pick(VisStage::Pick(stage, row.point, row.size));
        EXPECT_EQ(pick.empty(), row.expected.isNull());
        EXPECT_EQ(QRect(pick.x(), pick.y(), pick.width(), pick.height()), row.expected);
        EXPECT_EQ(pick.meets(BoundingBox()), !pick.empty());
        EXPECT_EQ(pick.meets2d(-1e9, -1e9, 1e9, 1e9), !pick.empty());
    }
}

TEST(OruVisPickVolume, measures_in_pixels_and_depths)
{
    VisStage stage;
    stage.viewport = OruOglViewport(10, 20, 200, 100);
    VisStage::Pick context(stage, QPoint(50, 60), 3);
    context.modelView = Matrix::scale(0.5f) * Matrix::translate({0.25f, 0.0f, 0.0f});
    const OruVisPickVolume pick(context);
    EXPECT_EQ(pick.toWindow().transform({0.5f, 1.0f, -1.0f}), Vector3(160.0f, 95.0f, 0.25f));
    EXPECT_DOUBLE_EQ(pick.distanceFromCenter(50.5, 60.5), 0.0);
    EXPECT_DOUBLE_EQ(pick.distanceFromCenter(53.5, 64.5), 5.0);
    EXPECT_FLOAT_EQ(static_cast<float>(pick.nearestDepth(boxAt(0, 0, -1, 0.5f))), 0.125f);
    EXPECT_EQ(pick.nearestDepth(BoundingBox()), -std::numeric_limits<double>::infinity());

    // In 2D the window's pixels have their centers at 39 to 41 and 39 to 41.
    EXPECT_TRUE(pick.meets2d(41.0, 41.0, 99.0, 99.0));
    EXPECT_FALSE(pick.meets2d(41.1, 0.0, 99.0, 99.0));
    EXPECT_FALSE(pick.meets2d(39.2, 39.2, 39.8, 39.8)) << "between two centers";
    EXPECT_DOUBLE_EQ(pick.distance2d(43.0, 36.0, 50.0, 36.0), 5.0);
    EXPECT_DOUBLE_EQ(pick.distance2d(0.0, 0.0, 99.0, 99.0), 0.0);
}

TEST(OruVisImage, lies_where_its_properties_say)
{
    VisStage stage;
    OruVisImage image(stage.group);
    struct Row
    {
        const char* name;
        int alignment;
        int unit;
        float height;
        float margin;
        QSize viewport;
        QRect place;
    };
    const int corner = Qt::AlignTop | Qt::AlignRight;
    const Row rows[] = {
        {"top right", corner, 0, 64, 4, {800, 600}, {668, 532, 128, 64}},
        {"bottom left", Qt::AlignBottom | Qt::AlignLeft, 0, 64, 4, {800, 600}, {4, 4, 128, 64}},
        {"no flags: centered", 0, 0, 64, 4, {800, 600}, {336, 268, 128, 64}},
        {"in percent", corner, 1, 10, 1, {800, 600}, {674, 534, 120, 60}},
        {"shrunk to the width", corner, 0, 64, 4, {68, 600}, {4, 566, 60, 30}},
        {"shrunk to the height", corner, 0, 64, 4, {800, 48}, {716, 4, 80, 40}},
        {"no room", corner, 0, 64, 4, {30, 30}, {}},
        {"no viewport", corner, 0, 64, 4, {0, -3}, {}},
        {"no number", corner, 0, std::nanf(""), 4, {800, 600}, {}},
        {"out of all bounds", corner, 0, 64, -1e30f, {800, 600}, {}},
    };
    for (const Row& row : rows) {
        image.alignment.setValue(row.alignment);
        image.unit.setValue(row.unit);
        image.height.setValue(row.height);
        for (auto* margin : {&image.marginLeft, &image.marginRight, &image.marginTop, &image.marginBottom}) {
            margin->setValue(row.margin);
        }
        EXPECT_EQ(image.placeIn(row.viewport, QSize(256, 128)), row.place) << row.name;
    }
}

TEST(OruVisTriadLayout, puts_labels_at_the_ends_and_hides_those_behind_others)
{
    OruVisTriadLayout::Request request;
    request.viewport = QSize(800, 600);
    request.length = 40.0f;
    request.margin = 8.0f;
    request.texts.fill(QSize(12, 16));
    for (const float degrees : {0.0f, 90.0f, 30.0f, 45.0f, 200.0f, 0.5f}) {
        SCOPED_TRACE(degrees);
        const bool topRight = degrees < 45.0f;
        request.alignment = topRight ? Qt::AlignTop | Qt::AlignRight : Qt::AlignLeft | Qt::AlignBottom;
        const QRect corner(topRight ? QPoint(392, 292) : QPoint(8, 8), QSize(400, 300));
        request.orientation = Matrix::rotate({0.3f, 1.0f, degrees == 45.0f ? 0.4f : 0.0f}, degrees);
        const OruVisTriadLayout layout(request);
        ASSERT_TRUE(layout.fits());
        ASSERT_EQ(layout.labels().size(), 7U);
        float nearness = -2.0f;
        for (const OruVisTriadLayout::Label& label : layout.labels()) {
            EXPECT_TRUE(corner.contains(label.box)) << label.number;
            EXPECT_GE(label.nearness, nearness);
            nearness = label.nearness;
            if (label.number < OruVisTriadLayout::Isometric) {
                const Vector3 axis = layout.axis(label.number % 3) * (label.number < 3 ? 1.0f : -1.0f);
                const QPointF offset = QRectF(label.box).center() - QPointF(0.5, 0.5) - layout.center();
                EXPECT_NEAR(offset.x() * axis.y, offset.y() * axis.x, 1.0) << label.number;
                EXPECT_GE(offset.x() * axis.x + offset.y() * axis.y, -1.0) << label.number;
            }
        }
    }
    request.orientation = Matrix();
    const OruVisTriadLayout along(request);
    for (const OruVisTriadLayout::Label& label : along.labels()) {
        EXPECT_EQ(label.shown, label.number != 5) << "-Z lies behind Z; label " << label.number;
    }
    request.texts[1] = QSize(0, 0);
    request.viewport = QSize(200, 200);
    const OruVisTriadLayout small(request);
    EXPECT_LT(small.length(), 40.0f);
    EXPECT_GT(small.length(), 0.0f);
    request.viewport = QSize(100, 100);
    EXPECT_FALSE(OruVisTriadLayout(request).fits());
    request.viewport = QSize(800, 600);
    request.length = std::nanf("");
    EXPECT_FALSE(OruVisTriadLayout(request).fits());
}

TEST(OruVisTriad, answers_picks_of_its_labels)
{
    VisStage stage;
    stage.viewport = OruOglViewport(30, 40, 640, 480);
    OruVisTriad triad(stage.group);
    triad.labelX.setValue("East");
    ASSERT_EQ(triad.hitProperties.size(), 7);

    std::set<QString> labels;
    for (int y = 40; y < 240; y += 3) {
        for (int x = 30; x < 230; x += 3) {
            VisStage::Pick pick(stage, QPoint(x, y), 3);
            pick.modelView = Matrix::rotate({1.0f, 1.0f, 0.2f}, 40.0f) * Matrix::scale(7.0f);
            triad.select3d(pick);
            const OruVisHitRecordList hits = triad.select2d(pick);
            if (!OruVisHitRecordQuery::any(hits)) {
                continue;
            }
            boost::weak_ptr<IOruVisEventHandler> handler;
            const OruVisualization* who = nullptr;
            const OruVisHitRecord hit = OruVisHitRecordQuery::top(hits, &handler, &who);
            EXPECT_EQ(who, &triad);
            EXPECT_FALSE(handler.expired());
            const OruVisHitProperty property = triad.hitProperties.value(hit.name);
            EXPECT_EQ(property.object, &triad);
            labels.insert(dynamic_cast<OruVisHitLabelQualifier*>(property.qualifier)->label);
        }
    }
    EXPECT_THAT(labels, testing::UnorderedElementsAre("East", "Y", "Z", "-X", "-Y", "-Z", "Iso"));
}
