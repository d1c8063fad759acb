// The tree of a new scene, viewpoints, the editors, and the settings of the render.

#include "contracts/core/OruText.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "tests/scene/SceneFixture.h"

using namespace kelvartest;
using Kelvar::Math::Matrix;
using ::testing::ElementsAre;

namespace {

using SceneTreeGLTest = SceneTest;

/// Each node below one with its type, depth first, a dot ahead for each level.
std::string tree(const OruProperties& node, const std::string& level = ".")
{
    std::string text;
    for (unsigned int i = 0; i < node.size(); ++i) {
        const OruProperties& child = *node.at(i);
        text += level + child.name().toStdString() + ":" + child.type().toStdString() + " ";
        text += tree(child, level + ".");
    }
    return text;
}

TEST_F(SceneTreeGLTest, DefaultTree)
{
    OruScene fresh{QString(), QString(), QString()};
    EXPECT_EQ(fresh.name() + ":" + fresh.type(), "scene.1:scene");
    EXPECT_EQ(tree(fresh),
              ".zpr:scene.zpr .render:scene.render ..geometry:ogl.geometry ..visualization:vis.list "
              "...viewpoint:vis.viewpoint ...lights:vis.lights ....light.1:vis.light "
              "...kelvar logo:vis.image .mouse mappings:scene.mouse_mappings ");
    EXPECT_TRUE(fresh.render.flags & 0x100);
    EXPECT_EQ(fresh.mode(), 3);
}

TEST_F(SceneTreeGLTest, DefaultValuesByPath)
{
    const char* const rows[][3] = {
        {"render", "background", "#ff000000"},
        {"render", "textInfo", "false"},
        {"render", "pickSize", "3"},
        {"render", "decimalSeparator", "46"},
        {"render", "significantDigits", "-1"},
        {"render/visualization/lights/light.1", "visible", "true"},
        {"render/visualization/kelvar logo", "visible", "false"},
        {"render/visualization/kelvar logo", "file", "logoKelvar.png"},
        {"render/visualization/kelvar logo", "order", "1000"},
        {"render/visualization/kelvar logo", "alignment", "34"},
        {"render/visualization/kelvar logo", "height", "64"},
        {"render/visualization/kelvar logo", "minimumHeight", "16"},
        {"render/visualization/kelvar logo", "marginTop", "4"},
        {"zpr", "zoomMove", "0.01"},
        {"zpr", "zoomWheelFactor", "1.1"},
    };
    for (const auto& row : rows) {
        OruProperties* const node = scene.find(row[0]);
        ASSERT_TRUE(node) << row[0];
        QString value;
        node->getValue(row[1], value, QString());
        EXPECT_EQ(value.toStdString(), row[2]) << row[0] << '/' << row[1];
    }
}

TEST_F(SceneTreeGLTest, FontOfTheEnvironmentOnlyIfItIsThere)
{
    const QString fonts = "/usr/share/fonts/truetype/dejavu"; // of the package fonts-dejavu-core
    const auto widthWith = [&](const QByteArray& name) {
        qputenv("TARNIS_GRAPHICS_FONTFACE_TTF", name);
        OruScene other(fonts, QString(), QString());
        int width = 0;
        Probe measuring(other.group);
        measuring.drawAction = [&](const std::string&, const OruVisualization::DrawContext& dc) {
            width = dc.text.size("ill.").width();
        };
        other.render.visualizations.insert(&measuring, true);
        OruSceneEventContext own = ctx;
        other.drawGl(own);
        other.render.visualizations.remove(&measuring);
        qunsetenv("TARNIS_GRAPHICS_FONTFACE_TTF");
        return width;
    };
    EXPECT_GT(widthWith("DejaVuSansMono.ttf"), widthWith("")) << "where an i is as wide as any letter";
    EXPECT_EQ(widthWith("DejaVu Sans Mono"), widthWith("")) << "no file";
}

TEST_F(SceneTreeGLTest, ViewpointsReadWithAFallBackAndWriteWithout)
{
    const Matrix first = Matrix::scale(2.0f);
    const Matrix second = Matrix::scale(3.0f);
    OruVisList& list = scene.render.visualizations;
    list.child(QStringLiteral("side"), OruVisViewpoint::typeString);
    EXPECT_TRUE(scene.setViewpoint("viewpoint", first));
    EXPECT_TRUE(scene.setViewpoint("side", second));
    const struct
    {
        const char* name;
        Matrix read;
        bool writable;
    } rows[] = {
        {"viewpoint", first, true}, {"side", second, true}, {"no such", first, false},
        {"lights", first, false},   {"", first, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(scene.viewpoint(row.name), row.read) << row.name;
        EXPECT_FALSE(scene.setViewpoint(row.name, row.read)) << row.name << ": equal or not there";
        EXPECT_EQ(scene.setViewpoint(row.name, Matrix::scale(0.5f)), row.writable) << row.name;
        scene.setViewpoint(row.name, row.read);
    }
    list.erase(list["side"]);
    list.erase(list["viewpoint"]);
    EXPECT_EQ(scene.viewpoint("viewpoint"), Matrix::Identity);
}

TEST_F(SceneTreeGLTest, ViewWritesGoThroughTheEditorAsText)
{
    settle();
    const Matrix view = Matrix::rotate(Kelvar::Math::Vector3(1, 2, 3), 0.1f);
    EXPECT_TRUE(scene.setViewpoint("viewpoint", view));
    EXPECT_FALSE(scene.setViewpoint("viewpoint", view)) << "the text form reads back bit-exactly";
    EXPECT_THAT(editor->calls, ElementsAre("begin", "edit matrix", "end"));
    editor->writes = false;
    EXPECT_TRUE(scene.setViewpoint("viewpoint", Matrix::Identity));
    EXPECT_TRUE(scene.setViewpoint("viewpoint", Matrix::Identity)) << "a dropped write stays different";
}

class CountingNode : public OruProperties
{
public:
    using OruProperties::OruProperties;
    QString setValue(const QString& key, const QString& value) override
    {
        ++writes;
        return OruProperties::setValue(key, value);
    }
    int writes = 0;
};

TEST_F(SceneTreeGLTest, DefaultEditorWritesOnlyChanges)
{
    scene.render.setCustomEditor(nullptr);
    const boost::shared_ptr<IOruVisPropertyEdit> byDefault = scene.render.editor();
    ASSERT_TRUE(byDefault);
    CountingNode node(scene.group);
    node.string().setValue(QStringLiteral("size"), QStringLiteral("1.0"));
    const auto writes = [&](OruVisList* owner, OruProperties* properties, const char* value) {
        node.writes = 0;
        byDefault->beginEdit();
        byDefault->editValue(owner, properties, QStringLiteral("size"), value);
        byDefault->endEdit();
        return node.writes;
    };
    OruVisList* const list = &scene.render.visualizations;
    EXPECT_EQ(writes(nullptr, &node, "2"), 0) << "no owner";
    EXPECT_EQ(writes(list, nullptr, "2"), 0) << "no node";
    EXPECT_EQ(writes(list, &node, "1.0"), 0) << "equal text";
    EXPECT_EQ(writes(list, &node, "1"), 1) << "same number, other text";
}

} // namespace
