// The tree of a new scene, viewpoints, the editors, and the settings of the render.

#include "contracts/core/OruPropertiesFile.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "tests/core/QtPrint.h"
#include "tests/scene/SceneFixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <set>

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

TEST_F(SceneTreeGLTest, DefaultValuesByPathAndWhatTheyWant)
{
    const char* const buttons = "one of: 0 (none), 1 (pick), 2 (context), 3 (view)";
    const char* const modifiers = "a whole number such as 0 (none), 1 (first), 2 (second), 3 (both)";
    const char* const rows[][4] = {
        {"render", "background", "#ff000000", "a color like #rrggbb"},
        {"render", "textInfo", "false", "true or false"},
        {"render", "pickSize", "3", "a number from 0"},
        {"render", "decimalSeparator", "46", "a whole number such as 46 (full stop), 44 (comma)"},
        {"render", "significantDigits", "-1", "a whole number from -1 such as -1 (as many as needed)"},
        {"render/visualization/lights/light.1", "visible", "true", "true or false"},
        {"render/visualization/kelvar logo", "visible", "false", "true or false"},
        {"render/visualization/kelvar logo", "file", "logoKelvar.png", "any text"},
        {"render/visualization/kelvar logo", "order", "1000", "a whole number"},
        {"render/visualization/kelvar logo", "alignment", "34",
         "a whole number from 0 to 511 such as 33 (top left), 36 (top), 34 (top right), 129 (left), "
         "132 (center), 130 (right), 65 (bottom left), 68 (bottom), 66 (bottom right)"},
        {"render/visualization/kelvar logo", "unit", "0",
         "one of: 0 (pixels), 1 (percent of the viewport's height)"},
        {"render/visualization/kelvar logo", "height", "64", "a number from 0"},
        {"render/visualization/kelvar logo", "minimumHeight", "16", "a number from 0"},
        {"render/visualization/kelvar logo", "marginTop", "4", "a number"},
        {"zpr", "zoomMove", "0.01", "a number"},
        {"zpr", "zoomWheelFactor", "1.1", "a number from 0"},
        {"mouse mappings", "rotateBut", "3", buttons},
        {"mouse mappings", "boxZoomBut", "2", buttons},
        {"mouse mappings", "panMod", "1", modifiers},
        {"mouse mappings", "zoomMod", "2", modifiers},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row[0] << '/' << row[1]);
        OruProperties* const node = scene.find(row[0]);
        ASSERT_TRUE(node);
        QString value;
        node->getValue(row[1], value, QString());
        EXPECT_EQ(value.toStdString(), row[2]);
        EXPECT_EQ(node->kind(row[1]).wanted().toStdString(), row[3]);
    }
    scene.render.visualizations.child("triad", OruVisTriad::typeString);
    const QTemporaryDir folder;
    QString error;
    EXPECT_TRUE(OruPropertiesFile::save(scene, folder.filePath("tree"), &error));
    EXPECT_TRUE(OruPropertiesFile::load(scene, folder.filePath("tree"), &error)) << error.toStdString();
}

/// The settings below a node as "node key value"; of visualizations those of each type, what all of them have
/// once.
void collect(const OruProperties& node, std::set<QString>& settings)
{
    const bool visualization = node.type().startsWith("vis.");
    for (const QString& key : node.string().keys()) {
        QString value;
        node.getValue(key, value, QString());
        const QString owner = !visualization     ? node.name()
                              : key == "visible" ? QStringLiteral("any visualization")
                                                 : node.type();
        settings.insert(owner + ' ' + key + ' ' + value);
    }
    for (unsigned int i = 0; i < node.size(); ++i) {
        collect(*node.at(i), settings);
    }
}

/// The same from the rows `| node | key, ... | value, ... | meaning |`; a row without a node goes on with the
/// one above, and one value holds for all keys.
std::set<QString> settingsOfManual()
{
    QFile manual(QStringLiteral(KELVAR_MANUAL));
    std::set<QString> settings;
    QString node;
    bool inTable = false;
    for (bool open = manual.open(QIODevice::ReadOnly); open && !manual.atEnd();) {
        const QStringList cells = QString::fromUtf8(manual.readLine()).remove('`').split('|');
        inTable = cells.size() > 4 && (inTable || cells[2] == " Key ");
        if (!inTable || cells[1].startsWith('-') || cells[2] == " Key ") {
            continue;
        }
        node = cells[1].trimmed().isEmpty() ? node : cells[1].trimmed();
        const QStringList keys = cells[2].trimmed().split(", ");
        const QStringList values = cells[3].trimmed().split(", ");
        for (int i = 0; i < keys.size(); ++i) {
            settings.insert(node + ' ' + keys[i] + ' ' + values.value(i, values.last()));
        }
    }
    return settings;
}

TEST_F(SceneTreeGLTest, TheManualTellsEachSettingAndItsStartValue)
{
    OruScene fresh{QString(), QString(), QString()};
    OruVisList& list = fresh.render.visualizations;
    list.erase(list["kelvar logo"]); // has other values than images have at first
    list.child("image", OruVisImage::typeString);
    list.child("triad", OruVisTriad::typeString);
    std::set<QString> settings;
    collect(fresh, settings);
    EXPECT_THAT(settingsOfManual(), testing::ContainerEq(settings));
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
    OruVisList& list = scene.render.visualizations;
    editor->action = [&](const std::string&) { list.erase(list["viewpoint"]); };
    editor->calls.clear();
    EXPECT_FALSE(scene.setViewpoint("viewpoint", Matrix::Identity)) << "gone when the session has begun";
    EXPECT_THAT(editor->calls, ElementsAre("begin", "end"));
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
    scene.render.editor().reset();
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
