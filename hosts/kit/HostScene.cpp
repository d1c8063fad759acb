#include "hosts/kit/HostScene.h"

#include "contracts/core/OruPropertiesFile.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/ogl/OruOglFunctions.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <memory>

namespace hostkit {

using Kelvar::Math::Matrix;

namespace {

/// A standard view: the orientation to fit from, where it is the host's own, else the library's position.
struct NamedPosition
{
    const char* name;
    OruSceneZpr::Position position;
    bool own;
};

constexpr std::array<NamedPosition, 8> namedPositions = {{
    {"x", OruSceneZpr::ViewX, false},
    {"-x", OruSceneZpr::ViewXReverse, false},
    {"y", OruSceneZpr::ViewY, false},
    {"-y", OruSceneZpr::ViewYReverse, false},
    {"z", OruSceneZpr::ViewZ, false},
    {"-z", OruSceneZpr::ViewZReverse, false},
    {"iso", OruSceneZpr::ViewFit, true},
    {"fit", OruSceneZpr::ViewFit, false},
}};

/// The eye at (1, -1, 1), Z up on the screen. The library's own isometric view looks from below.
Matrix fromAboveFrontRight()
{
    constexpr float tilt = -54.7356103f; // 90 degrees less atan(1 / sqrt 2)
    return Matrix::rotate(Kelvar::Math::VectorZ, -45.0f) * Matrix::rotate(Kelvar::Math::VectorX, tilt);
}

} // namespace

HostScene::HostScene(const QString& fonts, const QString& images, const QString& user)
    : scene_(fonts, images, user)
{}

void HostScene::setSize(const QSize& pixels)
{
    const OruOglViewport viewport(0, 0, pixels.width(), pixels.height());
    stale_ = stale_ || viewport != context_.viewport;
    context_.viewport = viewport;
}

void HostScene::addModel(const Model& model)
{
    for (const auto& mesh : model.parts) {
        auto part = std::make_unique<MeshVisualization>(scene_.group, mesh);
        part->rename(freeName(mesh->name));
        part->setDropListener(dropListener_);
        if (scene_.render.visualizations.insert(part.get(), false)) {
            static_cast<void>(part.release()); // the tree's from now on
        }
    }
    stale_ = true;
}

bool HostScene::send(Event event)
{
    if (stale_) {
        refresh();
    }
    updateProjection();
    const OruOglViewport band = context_.boxZoom;
    const QString tooltip = context_.tooltip;
    const bool changed = (scene_.*event)(context_);
    return changed || band != context_.boxZoom || tooltip != context_.tooltip;
}

void HostScene::draw()
{
    scene_.drawGl(context_);
    stale_ = false;
    updateProjection();
}

QImage HostScene::picture(const QSize& pixels)
{
    if (stale_) {
        refresh();
    }
    OruSceneEventContext shot(context_);
    shot.viewport = OruOglViewport(0, 0, pixels.width(), pixels.height());
    QImage image;
    return scene_.drawGl(shot, image) ? image : QImage();
}

bool HostScene::showFrom(const QString& position)
{
    const auto found =
        std::find_if(namedPositions.begin(), namedPositions.end(),
                     [&](const NamedPosition& named) { return position == QLatin1String(named.name); });
    if (found == namedPositions.end()) {
        return false;
    }
    refresh();
    Matrix view = found->own ? fromAboveFrontRight() : context_.modelView;
    if (!scene_.zpr.zoomTo(context_, found->position, view)) {
        return false;
    }
    context_.modelView = view;
    scene_.setViewpoint(context_.viewpointName, view);
    stale_ = true;
    return true;
}

QStringList HostScene::positions()
{
    QStringList names;
    for (const NamedPosition& named : namedPositions) {
        names.append(QLatin1String(named.name));
    }
    return names;
}

bool HostScene::load(const QString& file, QString* error)
{
    stale_ = true;
    return OruPropertiesFile::load(scene_, file, error);
}

bool HostScene::save(const QString& file, QString* error) const
{
    return OruPropertiesFile::save(scene_, file, error);
}

HostScene::Place HostScene::placeOf(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QString nodePath = slash < 0 ? QString() : path.left(slash);
    return {scene_.find(nodePath), nodePath, path.mid(slash + 1)};
}

bool HostScene::setValue(const QString& path, const QString& value, QString* error)
{
    const Place place = placeOf(path);
    if (!place.node) {
        *error = QStringLiteral("there is no node \"%1\"").arg(place.nodePath);
        return false;
    }
    if (!place.node->string().defined(place.key)) {
        *error = QStringLiteral("\"%1\" has no property \"%2\"").arg(place.nodePath, place.key);
        return false;
    }
    if (!accepts(path, value, error)) {
        return false;
    }
    place.node->setValue(place.key, value);
    stale_ = true;
    return true;
}

bool HostScene::accepts(const QString& path, const QString& value, QString* error)
{
    const Place place = placeOf(path);
    return !place.node || place.node->kind(place.key).accepts(value, error);
}

void HostScene::refresh()
{
    const bool paints = !context_.noDraw;
    context_.noDraw = true;
    scene_.drawGl(context_);
    context_.noDraw = !paints;
    stale_ = false;
    updateProjection();
}

void HostScene::updateProjection()
{
    // The bounds of this moment: what was moved since the last draw must not fall behind the far plane.
    const Kelvar::Math::BoundingBox bounds = scene_.render.visualizations.bounds();
    context_.projection = glGetOrtho(context_.viewport, bounds, context_.modelView);
}

QString HostScene::freeName(const QString& name)
{
    QString free = name;
    while (scene_.render.visualizations.childByName(free)) {
        free = QStringLiteral("%1.%2").arg(name).arg(++nameUses_[name] + 1);
    }
    return free;
}

} // namespace hostkit
