#include "Scene/navigation/OruSceneMouseMappings.h"
#include "contracts/core/OruModifiedGroup.h"

#include <gmock/gmock.h>

namespace {

const struct
{
    const char* key;
    const char* initial;
} rows[] = {{"rotateBut", "3"}, {"rotateMod", "0"}, {"panBut", "3"},     {"panMod", "1"},
            {"zoomBut", "3"},   {"zoomMod", "2"},   {"boxZoomBut", "2"}, {"boxZoomMod", "0"}};

QString stored(const OruProperties& node, const char* key)
{
    QString text;
    return node.getValue(key, text, QString());
}

TEST(OruSceneMouseMappingsTest, AssignmentWritesAllEightKeysIntoItsOwnStore)
{
    OruModifiedGroup group;
    OruSceneMouseMappings source(group);
    EXPECT_EQ(source.type(), "scene.mouse_mappings");
    int number = -1000;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(stored(source, row.key), row.initial);
        EXPECT_EQ(source.string().getUnit(row.key, QString()), QString());
        source.setValue(row.key, QString::number(++number));
    }
    OruSceneMouseMappings assigned(group);
    EXPECT_EQ(&(assigned = source), &assigned);
    number = -1000;
    for (const auto& row : rows) {
        EXPECT_EQ(stored(assigned, row.key), QString::number(++number)) << row.key;
    }
    EXPECT_EQ(static_cast<int>(assigned.boxZoomMod.value()), number);
    const OruSceneMouseMappings copy(source);
    EXPECT_EQ(stored(copy, "rotateBut"), "-999");
    source.setValue("rotateBut", "5");
    EXPECT_EQ(static_cast<int>(copy.rotateBut.value()), 5) << "copied adaptors stay with the source's node";
}

} // namespace
