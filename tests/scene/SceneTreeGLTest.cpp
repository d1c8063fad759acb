// The tree of a new scene, viewpoints, the editors, and the settings of the render.

#include "contracts/core/OruText.h"
#include "contracts/vis/OruVisLight.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "tests/scene/SceneFixture.h"

#include <QFile>
#include <QTemporaryDir>

using namespace kelvartest;
using Kelvar::Math::Matrix;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class SceneTreeGLTest : public SceneTest
{};

std::vector<std::string> children(const OruProperties& node)
{
    std::vector<std::string> names;
    for (unsigned int i = 0; i < node.size(); ++i) {
        names.push_back(node.at(i)->name().toStdString() + ":" + node.at(i)->type().toStdString());
    }
    return names;
}

TEST_F(SceneTreeGLTest, DefaultTree)
{
    OruScene fresh{QString(), QString(), QString()};
    EXPECT_EQ(fresh.name(), "scene.1");
    EXPECT_EQ(fresh.type(), "scene");
    EXPECT_THAT(children(fresh),
                ElementsAre("zpr:scene.zpr", "render:scene.render", "mouse mappings:scene.mouse_mappings"));
    EXPECT_TRUE(fresh.render.flags & 0x100);
    ASSERT_EQ(fresh.render.size(), 2u);
    EXPECT_EQ(fresh.render.at(0)->name(), "geometry");
    EXPECT_EQ(fresh.render.at(1)->name(), "visualization");
    const OruVisList& list = fresh.render.visualizations;
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list.at(0)->name(), "viewpoint");
    EXPECT_EQ(list.at(0)->type(), OruVisViewpoint::typeString);
    EXPECT_EQ(list.at(1)->name(), "lights");
    EXPECT_EQ(list.at(2)->name(), "kelvar logo");
    ASSERT_EQ(list.at(1)->size(), 1u);
    EXPECT_EQ(list.at(1)->at(0)->name(), "light.1");
    EXPECT_EQ(list.at(1)->at(0)->type(), OruVisLight::typeString);
    EXPECT_EQ(fresh.mode(), 3);
}

TEST_F(SceneTreeGLTest, DefaultValuesByPath)
{
    const struct
    {
        const char* path;
        const char* key;
        const char* text;
    } rows[] = {
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
        {"mouse mappings", "boxZoomBut", "2"},
    };
    for (const auto& row : rows) {
        OruProperties* const node = scene.find(row.path);
        ASSERT_TRUE(node) << row.path;
        QString value;
        node->getValue(row.key, value, QString());
        EXPECT_EQ(value.toStdString(), row.text) << row.path << '/' << row.key;
    }
}

TEST_F(SceneTreeGLTest, FontOfTheEnvironmentOnlyIfItIsThere)
{
    // An existing file that is no font shows that the name was taken: the text then falls back by itself, so
    // the scene must still be able to measure and draw.
    QTemporaryDir folder;
    QFile file(folder.filePath("letters.ttf"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    for (const QByteArray& name : {QByteArray("letters.ttf"), QByteArray("missing.ttf"), QByteArray()}) {
        qputenv("TARNIS_GRAPHICS_FONTFACE_TTF", name);
        OruScene other(folder.path(), QString(), QString());
        other.render.string().setValue(QStringLiteral("textInfo"), true);
        OruSceneEventContext own = ctx;
        other.drawGl(own);
        EXPECT_EQ(gl.grab().pixelColor(150, 112), QColor(Qt::darkGray)) << name.constData();
    }
    qunsetenv("TARNIS_GRAPHICS_FONTFACE_TTF");
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
    QString getValue(const QString& key, QString& value, const QString& fallback) const override
    {
        ++reads;
        return OruProperties::getValue(key, value, fallback);
    }
    QString setValue(const QString& key, const QString& value) override
    {
        ++writes;
        return OruProperties::setValue(key, value);
    }
    mutable int reads = 0;
    int writes = 0;
};

TEST_F(SceneTreeGLTest, DefaultEditorWritesOnlyChanges)
{
    scene.render.setCustomEditor(nullptr);
    const boost::shared_ptr<IOruVisPropertyEdit> byDefault = scene.render.editor();
    ASSERT_TRUE(byDefault);
    CountingNode node(scene.group);
    node.string().setValue(QStringLiteral("size"), QStringLiteral("1.0"));
    OruVisList* const list = &scene.render.visualizations;
    const struct
    {
        const char* what;
        OruVisList* owner;
        OruProperties* properties;
        const char* value;
        int reads;
        int writes;
    } rows[] = {
        {"no owner", nullptr, &node, "2", 0, 0},
        {"no node", list, nullptr, "2", 0, 0},
        {"equal text", list, &node, "1.0", 1, 0},
        {"same number, other text", list, &node, "1", 1, 1},
    };
    for (const auto& row : rows) {
        node.reads = node.writes = 0;
        byDefault->beginEdit();
        byDefault->editValue(row.owner, row.properties, QStringLiteral("size"), row.value);
        byDefault->endEdit();
        EXPECT_EQ(node.reads, row.reads) << row.what;
        EXPECT_EQ(node.writes, row.writes) << row.what;
    }
}

} // namespace
