#include "hosts/host/HostScene.h"

#include "contracts/core/OruText.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/InputNames.h"
#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"
#include "tests/scene/SceneFixture.h"

#include <QTemporaryDir>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using testing::ElementsAre;

namespace {

Model cubes(std::initializer_list<Vector3> centers)
{
    Model model;
    for (const Vector3& center : centers) {
        model.parts.emplace_back(built(cubeSource(center)));
    }
    return model;
}

const Vector3 left(-2, 0, 0);
const Vector3 right(2, 0, 0);

/// Two cubes in a view of 400 x 300 pixels in which one world unit is 50 pixels, from the front, with an
/// editor installed.
struct HostSceneGLTest : testing::Test
{
    static constexpr int width = 400;
    static constexpr int height = 300;
    GlContext gl{QSize(width, height)};
    std::unique_ptr<HostScene> host{new HostScene(QString(), QString(), QString())};
    boost::shared_ptr<NotingEditor> editor = boost::make_shared<NotingEditor>();
    ModelParts parts{host->scene().render.visualizations};
    InputFeed input{*host};
    std::vector<QString> dropped;

    HostSceneGLTest()
    {
        host->setSize(gl.size());
        host->scene().render.setCustomEditor(editor);
        const Matrix view = Matrix::rotate(Kelvar::Math::VectorX, -90.0f) * Matrix::scale(1.0f / 3.0f);
        host->scene().setViewpoint("viewpoint", view);
        parts.setDropListener([&](const QString& source, const QString& target) {
            dropped = {source, target};
        });
        parts.add(cubes({left, right}));
        host->draw();
        editor->calls.clear();
    }

    void TearDown() override
    {
        EXPECT_EQ(count("begin"), count("end"));
        EXPECT_EQ(gl.faults(), "");
        host.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
    }

    void add(const Model& model)
    {
        parts.add(model);
        host->changed();
    }

    MeshVisualization& part(const char* name)
    {
        return dynamic_cast<MeshVisualization&>(*host->scene().render.visualizations[name]);
    }

    QImage drawn()
    {
        host->draw();
        return gl.grab();
    }

    long count(const char* call) { return std::count(editor->calls.begin(), editor->calls.end(), call); }

    /// How often a frame turns the culling of back faces off and on.
    std::pair<long, long> culling()
    {
        GlRecorder::instance().start();
        host->draw();
        const auto calls = GlRecorder::instance().stop();
        return {std::count(calls.begin(), calls.end(), "glDisable(GL_CULL_FACE)"),
                std::count(calls.begin(), calls.end(), "glEnable(GL_CULL_FACE)")};
    }

    /// A press, moves to each of the pixels and the release; what the release answers.
    bool drag(const QPoint& from, const std::vector<QPoint>& pixels)
    {
        input.press(OruMouse::ButtonPick, 0, from);
        for (const QPoint& pixel : pixels) {
            EXPECT_TRUE(input.move(0, pixel));
        }
        return input.release(OruMouse::ButtonPick, 0, pixels.back());
    }

    /// Where in the window, y up, the scene shows a place, and the pixel of it.
    Vector3 windowOf(const Vector3& place)
    {
        const OruSceneEventContext& ctx = host->context();
        return place.project(ctx.modelView, ctx.projection, ctx.viewport.data());
    }
    QPoint pixelOf(const Vector3& place)
    {
        const Vector3 window = windowOf(place);
        return QPoint(static_cast<int>(window.x), static_cast<int>(window.y));
    }

    /// A drag a quarter of the view to the right and downwards, about its middle, or what else is done at its
    /// end.
    void play(const InputNames::Gesture& gesture)
    {
        const QPoint end(250, 100);
        if (gesture.kind != InputEvent::Kind::Move && gesture.kind != InputEvent::Kind::Abort) {
            input.apply(
                {gesture.kind, gesture.button, gesture.modifiers, end, gesture.key ? gesture.key : 2.0});
            return;
        }
        input.press(gesture.button, gesture.modifiers, QPoint(150, 200));
        input.move(gesture.modifiers, end);
        if (gesture.kind == InputEvent::Kind::Abort) {
            EXPECT_TRUE(input.abort());
        }
        input.release(gesture.button, gesture.modifiers, end);
    }

    QColor colorAt(const QImage& image, const Vector3& place)
    {
        const QPoint pixel = pixelOf(place);
        return image.pixelColor(pixel.x(), height - 1 - pixel.y());
    }
};

} // namespace

TEST_F(HostSceneGLTest, DrawsPartsLitInTheirColorsAndNamesThemApart)
{
    EXPECT_TRUE(host->setValue("render/visualization/cube.2/color", "#ff2020ff", nullptr));
    const QImage image = drawn();
    EXPECT_GT(colorAt(image, left).red(), 100);
    EXPECT_LT(colorAt(image, left).blue(), 60);
    EXPECT_GT(colorAt(image, right).blue(), 100);
    EXPECT_LT(colorAt(image, right).red(), 60);
    EXPECT_EQ(colorAt(image, Vector3()), QColor(Qt::black)) << "between them";
    EXPECT_NE(image.pixelColor(0, height / 2), QColor(Qt::black)) << "the frame";

    EXPECT_TRUE(host->setValue("render/visualization/cube/visible", "false", nullptr));
    EXPECT_EQ(colorAt(drawn(), left), QColor(Qt::black));
}

TEST_F(HostSceneGLTest, ShowsOpenMeshesFromBothSidesAndClosedOnesFromOutside)
{
    EXPECT_EQ(culling(), std::make_pair(1L, 1L)) << "off in the 2D pass alone";
    // The front half of a cube is missing, so one looks at its back from inside.
    MeshSource open = cubeSource();
    open.indices.erase(open.indices.begin() + 12, open.indices.begin() + 18);
    Model model;
    model.parts.emplace_back(built(open));
    add(model);
    EXPECT_EQ(culling(), std::make_pair(2L, 2L)) << "for the open cube as well, and on again";
    EXPECT_GT(colorAt(drawn(), Vector3()).red(), 60);
}

TEST_F(HostSceneGLTest, KeepsTheProjectionInStepAndNeverWritesAStaleViewBack)
{
    const Matrix stored = host->scene().viewpoint("viewpoint");
    host->context().modelView = Matrix();
    host->changed();
    input.move(0, QPoint(5, 5));
    EXPECT_EQ(host->scene().viewpoint("viewpoint"), stored);
    EXPECT_EQ(host->context().modelView, stored);
    EXPECT_EQ(count("edit matrix"), 0);

    host->setSize(QSize(200, 300));
    input.wheel(1, 0, QPoint(10, 10));
    host->draw();
    const OruSceneEventContext& ctx = host->context();
    EXPECT_EQ(ctx.viewport.width, 200);
    EXPECT_EQ(ctx.projection, glGetOrtho(ctx.viewport, ctx.bounds, ctx.modelView));
}

TEST_F(HostSceneGLTest, TellsAndMarksThePartUnderThePointerAndTurnsTheViewWithIt)
{
    const QColor plain = colorAt(drawn(), left);
    const QPoint pixel = pixelOf(left);
    EXPECT_TRUE(input.move(0, pixelOf(right)));
    EXPECT_EQ(host->context().tooltip, "cube.2\ntriangles: 12");
    EXPECT_TRUE(input.move(0, pixelOf(Vector3()))) << "the tooltip goes";
    EXPECT_FALSE(input.move(0, pixelOf(Vector3()) + QPoint(1, 1)));
    EXPECT_TRUE(input.press(OruMouse::ButtonContext, 0, pixel)) << "for the sake of the tooltip alone";
    input.release(OruMouse::ButtonContext, 0, pixel);
    for (const bool marked : {true, false}) {
        input.press(OruMouse::ButtonPick, 0, pixel);
        EXPECT_TRUE(input.release(OruMouse::ButtonPick, 0, pixel + QPoint(2, -2)));
        EXPECT_EQ(part("cube").marked.value(), marked);
        EXPECT_EQ(colorAt(drawn(), left).green() > plain.green() + 40, marked);
    }
    EXPECT_FALSE(part("cube.2").marked.value());
    drag(pixel, {pixel + QPoint(80, 0)});
    EXPECT_EQ(count("edit marked"), 2);
    EXPECT_EQ(count("edit matrix"), 1);
    EXPECT_EQ(part("cube").offset.value(), Matrix());
}

TEST_F(HostSceneGLTest, MovesAMovablePartInTheViewPlaneAsOneEdit)
{
    part("cube").movable.setValue(true);
    const Matrix view = host->scene().viewpoint("viewpoint");
    const QPoint start = pixelOf(left);
    EXPECT_TRUE(drag(start, {start + QPoint(30, 10), start + QPoint(30, 50)}));
    EXPECT_THAT(editor->calls, ElementsAre("begin", "edit offset", "end"));
    const Vector3 moved = part("cube").offset.value().transform(Vector3());
    EXPECT_LT((moved - Vector3(0.6f, 0, 1)).length(), 1e-4f) << moved.x << ' ' << moved.y << ' ' << moved.z;
    EXPECT_EQ(host->scene().viewpoint("viewpoint"), view);
    EXPECT_THAT(dropped, ElementsAre()) << "let go over nothing else";

    input.press(OruMouse::ButtonPick, 0, pixelOf(left + moved));
    input.move(0, start);
    EXPECT_GT(colorAt(drawn(), left - Vector3(0.5f, 0, 0.5f)).red(), 60) << "it follows before the release";
    input.release(OruMouse::ButtonPick, 0, start);
    // The part under the pointer stands behind the one that is dragged there.
    part("cube").offset.setValue(Matrix::translate(Vector3(0, 3, 0)));
    drag(start, {pixelOf(right)});
    EXPECT_THAT(dropped, ElementsAre("cube", "cube.2"));

    dropped.clear();
    part("cube").movable.setValue(false);
    part("cube").offset.setValue(Matrix());
    host->scene().setMode(0);
    drag(pixelOf(left), {pixelOf(right)});
    EXPECT_THAT(dropped, ElementsAre()) << "nothing was carried";
}

TEST_F(HostSceneGLTest, MovesAPartByAllPixelsOfADragHoweverTheyCome)
{
    const Vector3 away(150000, 0, 0);
    host->scene().render.visualizations.erase(&part("cube"));
    host->scene().render.visualizations.erase(&part("cube.2"));
    add(cubes({away}));
    MeshVisualization& cube = part("cube");
    cube.movable.setValue(true);
    // A pixel is 0.0075 units, less than floats can tell apart out there.
    const Matrix front =
        Matrix::translate(-away) * host->scene().viewpoint("viewpoint") * Matrix::scale(8.0f / 3.0f);
    const struct
    {
        const char* what;
        int moves;
        int pixels;
        bool zoom; ///< by a turn of the wheel after the first move
        float moved;
    } rows[] = {
        {"fast", 1, 50, false, 0.375f}, {"slow", 50, 1, false, 0.375f}, {"zoomed", 2, 55, true, 0.7875f}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        cube.offset.setValue(Matrix());
        host->scene().setViewpoint("viewpoint", front);
        host->draw();
        QPoint pixel = pixelOf(away);
        input.press(OruMouse::ButtonPick, 0, pixel);
        for (int i = 0; i < row.moves; ++i) {
            pixel += QPoint(row.pixels, 0);
            input.move(0, pixel);
            if (row.zoom && i == 0) {
                input.wheel(1.0, 0, pixel);
                host->draw();
            }
        }
        input.release(OruMouse::ButtonPick, 0, pixel);
        EXPECT_NEAR(cube.offset.value().transform(Vector3()).x, row.moved, 1e-4f);
    }
}

TEST_F(HostSceneGLTest, DrawsWhatIsInViewOfALargePartWhereItWasMoved)
{
    const Vector3 away(20, 0, 0);
    Model model;
    model.parts.emplace_back(built(sourceOf(bumpySphere(5000, 0.7f))));
    add(model);
    part("sample").offset.setValue(Matrix::translate(away));
    host->scene().setViewpoint("viewpoint", Matrix::translate(-away) * host->scene().viewpoint("viewpoint"));
    EXPECT_GT(colorAt(drawn(), away).blue(), 60);
}

TEST_F(HostSceneGLTest, ShowsAModelWholeFromAboveFrontRight)
{
    Progress progress;
    add(ModelImporter::load(engineFile(), progress));
    ASSERT_TRUE(host->showFrom("iso"));
    const QImage image = drawn();
    const Kelvar::Math::BoundingBox box = host->context().bounds;
    for (int i = 0; i < 8; ++i) {
        EXPECT_TRUE(QRect(0, 0, width, height).contains(pixelOf(box.corner(i)))) << "corner " << i;
    }
    const Vector3 c = box.center();
    EXPECT_LT(windowOf(c + Vector3(9, 0, 0)).z, windowOf(c).z) << "the right side is near";
    EXPECT_LT(windowOf(c + Vector3(0, -9, 0)).z, windowOf(c).z) << "the front is near";
    EXPECT_LT(windowOf(c + Vector3(0, 0, 9)).z, windowOf(c).z) << "the top is near";
    EXPECT_GT(windowOf(c + Vector3(0, 0, 9)).y, windowOf(c).y) << "the top is up";
    EXPECT_GT(colorAt(image, c).red(), 40) << "and there is something to see";
    EXPECT_FALSE(host->showFrom("top"));
}

TEST_F(HostSceneGLTest, SavesAndLoadsTheWholeState)
{
    QTemporaryDir folder;
    const QString file = folder.filePath("state.json");
    QString error;
    part("cube").marked.setValue(true);
    part("cube.2").offset.setValue(Matrix::translate(Vector3(0.3f, 0, -0.7f)));
    host->showFrom("iso");
    const QImage before = drawn();
    ASSERT_TRUE(host->save(file, &error)) << error.toStdString();

    HostScene other{QString(), QString(), QString()};
    other.setSize(gl.size());
    ModelParts(other.scene().render.visualizations).add(cubes({left, right}));
    other.draw();
    ASSERT_TRUE(other.load(file, &error)) << error.toStdString();
    other.send(&OruSceneEventHandler::mouseMove);
    EXPECT_EQ(other.context().modelView, host->context().modelView)
        << "the event found the view that was loaded";
    EXPECT_EQ(other.picture(gl.size()), before);
    EXPECT_FALSE(other.load(folder.filePath("missing.json"), &error));
}

TEST_F(HostSceneGLTest, SetsPropertiesByPathAndSaysWhatIsWrong)
{
    const struct
    {
        const char* path;
        const char* value;
        const char* reason;
        bool accepted; ///< for when the property exists
    } rows[] = {
        {"nowhere/textInfo", "true", "there is no node \"nowhere\"", true},
        {"render/textinfo", "true", "\"render\" has no property \"textinfo\"", true},
        {"render/pickSize", "perhaps", "must be a number from 0, not \"perhaps\"", false},
        {"render/visualization/cube/movable", "2", "must be true or false, not \"2\"", false},
    };
    for (const auto& row : rows) {
        QString error;
        const std::uint64_t before = host->scene().subtreeRevision();
        EXPECT_EQ(host->accepts(row.path, row.value, &error), row.accepted);
        EXPECT_FALSE(host->setValue(row.path, row.value, &error));
        EXPECT_EQ(error.toStdString(), row.reason);
        EXPECT_EQ(host->scene().subtreeRevision(), before);
    }
}

TEST_F(HostSceneGLTest, WheelAndFingersEnlargeAndTurnWhatLiesUnderThem)
{
    const QPoint pixel = pixelOf(right);
    const Vector3 orbit = host->context().center;
    const struct
    {
        const char* name;
        std::function<bool()> act;
        double scale;
        double degrees;
    } rows[] = {
        {"a part of a step, with a key", [&] { return input.wheel(0.25, 1, pixel); }, std::pow(1.1, 0.25), 0},
        {"two and a half back", [&] { return input.wheel(-2.5, 0, pixel); }, std::pow(1.1, -2.5), 0},
        {"fingers apart", [&] { return input.pinch(1.5, pixel); }, 1.5, 0},
        {"fingers turn", [&] { return input.turn(30, pixel); }, 1, 30},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Vector3 before = windowOf(right + Vector3(1, 0, 0)) - windowOf(right);
        EXPECT_TRUE(row.act());
        host->draw();
        const Vector3 after = windowOf(right + Vector3(1, 0, 0)) - windowOf(right);
        EXPECT_LE((pixelOf(right) - pixel).manhattanLength(), 2);
        EXPECT_NEAR(after.length() / before.length(), row.scale, 1e-3);
        EXPECT_NEAR(std::atan2(after.y, after.x) - std::atan2(before.y, before.x),
                    row.degrees * 3.14159265 / 180, 1e-3);
        EXPECT_EQ(host->context().center, orbit);
    }
    std::vector<double> heard;
    input.setListener([&](const InputEvent& event) { heard.push_back(event.amount); });
    EXPECT_FALSE(input.wheel(0, 0, pixel) || input.wheel(NAN, 0, pixel));
    EXPECT_FALSE(input.pinch(-1, pixel) || input.turn(INFINITY, pixel));
    EXPECT_TRUE(input.turn(1e9, pixel));
    EXPECT_THAT(heard, ElementsAre(InputEvent::mostAmount)) << "what a recording takes";
}

TEST_F(HostSceneGLTest, EachGestureDoesWhatItsRowSays)
{
    const Vector3 middle(200, 150, 0.5f);
    const Vector3 pointer(250, 100, 0.5f);
    const Vector3 same;
    const struct
    {
        const char* effect;
        double scale; ///< a fit leaves a tenth of the width or the height free
        Vector3 eye;
        Vector3 from; ///< what is seen there is seen at `to` afterwards
        Vector3 to;
        bool turns = false; ///< the near side to the right and downwards
    } effects[] = {
        {"turns the view", 1, same, middle, middle, true},
        {"moves the view", 1, same, {150, 200, 0.5f}, pointer},
        {"zooms; downwards enlarges", std::exp(1.0), same, middle, middle},
        {"draws a zoom box; downwards enlarges, upwards shrinks", 3, same, middle, middle},
        {"zooms about the pointer; forwards enlarges", 1.21, same, pointer, pointer},
        {"zooms about the pointer; apart enlarges", 2, same, pointer, pointer},
        {"turns the view about the pointer", 1, same, pointer, pointer},
        {"calls a drag off; the view, or what was dragged, goes back to where it began", 1, same, middle,
         middle},
        {"fits the scene into the view", 1.8157, same, middle, middle},
        {"isometric view, from below", 1.6623, {-0.5f, -0.5f, -std::sqrt(0.5f)}, middle, middle},
        {"looks from the positive end of X", 4.5, {1, 0, 0}, middle, middle},
        {"looks from the positive end of Y", 2, {0, 1, 0}, middle, middle},
        {"looks from the positive end of Z", 2, {0, 0, 1}, middle, middle},
        {"looks from the negative end of X", 4.5, {-1, 0, 0}, middle, middle},
        {"looks from the negative end of Y", 2, {0, -1, 0}, middle, middle},
        {"looks from the negative end of Z", 2, {0, 0, -1}, middle, middle},
    };
    const Matrix start = Matrix::rotate(Vector3(1, 2, 3), 30.0f) * Matrix::scale(0.2f);
    const auto scaleOf = [](const Matrix& view) {
        return view.transformDirection(Vector3(1, 0, 0)).length();
    };
    const auto eyeOf = [](const Matrix& view) { return Vector3(view(0, 2), view(1, 2), view(2, 2)); };
    for (const InputNames::Gesture& gesture : InputNames::gestures) {
        SCOPED_TRACE(InputNames::text(gesture).toStdString());
        const auto row = std::find_if(std::begin(effects), std::end(effects), [&](const auto& each) {
            return std::string(each.effect) == gesture.effect;
        });
        ASSERT_NE(row, std::end(effects)) << gesture.effect;
        host->setView(start);
        host->draw();
        const OruSceneEventContext& ctx = host->context();
        const Vector3 place = row->from.unProject(ctx.modelView, ctx.projection, ctx.viewport.data());
        const Vector3 eye = eyeOf(start) / scaleOf(start);
        const Vector3 near = windowOf(eye);
        play(gesture);
        host->draw();
        const Matrix& view = ctx.modelView;
        EXPECT_EQ(view == start, gesture.kind == InputEvent::Kind::Abort);
        EXPECT_LE((windowOf(place) - row->to).length(), 1.5f)
            << windowOf(place).x << ' ' << windowOf(place).y;
        EXPECT_NEAR(scaleOf(view) / scaleOf(start), row->scale, 2e-3);
        if (row->turns) {
            EXPECT_GT(windowOf(eye).x, near.x + 5);
            EXPECT_LT(windowOf(eye).y, near.y - 5);
        } else {
            const Vector3 wanted = row->eye == same ? eye : row->eye;
            EXPECT_LT((eyeOf(view) / scaleOf(view) - wanted).length(), 1e-4f);
        }
    }
}

TEST_F(HostSceneGLTest, AsksTheHoverAnewWhenTheViewMovesAwayUnderThePointer)
{
    const Matrix view = host->view();
    host->setView(Matrix::translate(-left) * view * Matrix::scale(10.0f)); // one cube in every pixel
    EXPECT_FALSE(input.hoverAgain()) << "the pointer has not come yet";
    host->setView(view);
    input.move(0, pixelOf(Vector3()));
    ASSERT_EQ(host->context().tooltip, "") << "between the cubes";
    EXPECT_TRUE(input.keyPress('X', 0));
    EXPECT_NE(host->context().tooltip, "") << "one cube behind the other";
    EXPECT_TRUE(input.keyPress('Z', 0));
    EXPECT_EQ(host->context().tooltip, "");
    std::vector<InputEvent::Kind> heard;
    input.setListener([&](const InputEvent& event) { heard.push_back(event.kind); });
    for (const bool wheel : {true, false}) {
        input.move(0, pixelOf(left));
        ASSERT_NE(host->context().tooltip, "");
        EXPECT_TRUE(wheel ? input.wheel(0.1, 1, pixelOf(left)) : input.move(1, pixelOf(left)));
        EXPECT_EQ(host->context().tooltip, "") << "with a key held nothing is hovered";
    }
    input.hoverAgain();
    using Kind = InputEvent::Kind;
    EXPECT_THAT(heard, ElementsAre(Kind::Move, Kind::Wheel, Kind::Move, Kind::Move, Kind::Move));
}

TEST_F(HostSceneGLTest, EndsAGestureThatTheWindowSystemTookAway)
{
    const Matrix view = host->context().modelView;
    input.press(OruMouse::ButtonContext, 0, QPoint(20, 200));
    input.press(OruMouse::ButtonView, 1, QPoint(20, 200));
    input.release(OruMouse::ButtonView, 0, QPoint(20, 200));
    EXPECT_TRUE(input.move(0, QPoint(220, 20))) << "the band grows";
    EXPECT_EQ(count("begin") - count("end"), 1);
    EXPECT_TRUE(input.cancel()) << "the band goes from the screen";
    EXPECT_EQ(count("begin"), count("end"));
    EXPECT_EQ(host->context().modelView, view) << "no box zoom ran";
    EXPECT_FALSE(input.held(OruMouse::ButtonContext));
    EXPECT_FALSE(input.release(OruMouse::ButtonContext, 0, QPoint(220, 20))) << "the late release is no news";
    EXPECT_FALSE(input.cancel());
}

TEST_F(HostSceneGLTest, PutsAllDownWhenAReleaseNeverComes)
{
    part("cube").movable.setValue(true);
    editor->action = [](const std::string& call) {
        if (call == "edit offset") {
            throw std::runtime_error(call);
        }
    };
    input.press(OruMouse::ButtonPick, 0, pixelOf(left));
    input.move(0, pixelOf(right));
    input.press(OruMouse::ButtonView, 0, pixelOf(right));
    EXPECT_THROW(input.press(OruMouse::ButtonPick, 0, pixelOf(right)), std::runtime_error);
    EXPECT_EQ(count("begin"), count("end"));
    EXPECT_FALSE(input.held(OruMouse::ButtonView)) << "the other button went up, too";
}

TEST_F(HostSceneGLTest, DropsNothingThatAGestureCarriesWhichIsCalledOff)
{
    part("cube").movable.setValue(true);
    for (bool (InputFeed::*const end)() : {&InputFeed::cancel, &InputFeed::abort}) {
        part("cube").offset.setValue(Matrix());
        host->draw();
        input.press(OruMouse::ButtonPick, 0, pixelOf(left));
        input.move(0, pixelOf(right));
        EXPECT_TRUE((input.*end)());
        EXPECT_THAT(dropped, ElementsAre());
        const bool kept = end == &InputFeed::cancel;
        EXPECT_EQ(part("cube").offset.value() != Matrix(), kept) << "what is aborted changes nothing";
        EXPECT_EQ(part("cube").carried(), false);
        EXPECT_EQ(host->context().mouse.curpos(), pixelOf(right));
        EXPECT_NE(host->context().tooltip, "") << "the pointer hovers where it is";
    }
}

TEST_F(HostSceneGLTest, EditsJoinAGestureAndWhatAnEditorThrowsLeavesAllInOrder)
{
    const QString path = "render/pickSize";
    input.press(OruMouse::ButtonContext, 0, QPoint(5, 5));
    host->setValue(path, "5", nullptr);
    input.release(OruMouse::ButtonContext, 0, QPoint(5, 90));
    EXPECT_THAT(editor->calls, ElementsAre("begin", "edit pickSize", "end"));

    editor->action = [](const std::string& call) {
        if (call != "begin") {
            throw std::runtime_error(call);
        }
    };
    EXPECT_THROW(host->setValue(path, "6", nullptr), std::runtime_error) << "the edit and the end both throw";
    host->changed();
    EXPECT_THROW(host->view(), std::runtime_error);
    editor->action = nullptr;
    EXPECT_EQ(colorAt(drawn(), Vector3()), QColor(Qt::black)) << "a frame, where a pick has left white";
}

TEST_F(HostSceneGLTest, TellsTheNameAgainWhenThePointerComesBack)
{
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(input.move(0, pixelOf(left)));
        EXPECT_EQ(host->context().tooltip, "cube\ntriangles: 12");
        EXPECT_TRUE(input.enter(false));
        EXPECT_EQ(host->context().tooltip, "");
        EXPECT_LT(host->context().mouse.curpos().x(), -1000) << "the hover has ended outside";
    }
    input.move(0, pixelOf(left));
    input.press(OruMouse::ButtonPick, 1, pixelOf(left));
    EXPECT_TRUE(input.move(1, pixelOf(right))) << "a drag that does nothing else";
    EXPECT_EQ(host->context().tooltip, "");
    input.cancel();
}

TEST_F(HostSceneGLTest, TakesAReleaseFarFromItsPressForNoClick)
{
    input.setDragThreshold(6);
    for (const QPoint& way : {QPoint(6, -6), QPoint(7, 0), QPoint(0, -7)}) {
        part("cube").marked.setValue(false);
        input.press(OruMouse::ButtonPick, 0, pixelOf(left));
        input.release(OruMouse::ButtonPick, 0, pixelOf(left) + way);
        EXPECT_EQ(part("cube").marked.value(), way == QPoint(6, -6)) << way.x() << ' ' << way.y();
    }
}
