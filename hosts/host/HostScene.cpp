#include "hosts/host/HostScene.h"

#include "Scene/core/OruSceneEventHandler.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertiesFile.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "hosts/host/internal/PictureMaker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QScopedValueRollback>

#include <dlfcn.h>

#include <algorithm>
#include <array>

namespace hostkit {

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

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

bool isOneCapture(const PictureOptions& options)
{
    return options.samples == 1 && options.overlayScale == 1.0 && !options.transparent;
}

/// The folder that is installed with this library.
QString installedImages()
{
    Dl_info self;
    if (dladdr(reinterpret_cast<void*>(&installedImages), &self) == 0) {
        return QString();
    }
    const QDir folder = QFileInfo(QFile::decodeName(self.dli_fname)).dir();
    return QDir::cleanPath(folder.filePath(QStringLiteral(KELVAR_IMAGES_FROM_LIBRARY)));
}

} // namespace

HostScene::HostScene(const QString& fonts, const QString& images, const QString& user)
    : scene_(fonts, images.isEmpty() ? installedImages() : images, user)
{}

void HostScene::setSize(const QSize& pixels)
{
    const OruOglViewport viewport(0, 0, pixels.width(), pixels.height());
    stale_ = stale_ || viewport != context_.viewport;
    context_.viewport = viewport;
}

/// To be called ahead of whatever works on the view.
void HostScene::catchUp()
{
    if (stale_) {
        refresh();
    }
    updateProjection();
}

bool HostScene::send(Event event)
{
    catchUp();
    const OruOglViewport band = context_.boxZoom;
    const QString tooltip = context_.tooltip;
    const bool changed = (scene_.*event)(context_);
    return changed || band != context_.boxZoom || tooltip != context_.tooltip;
}

/// The world point under the middle of a pixel, in the plane through the middle of the scene.
Vector3 HostScene::pointUnder(const QPoint& pixel) const
{
    const int* const viewport = context_.viewport.data();
    const Vector3 middle = context_.center.project(context_.modelView, context_.projection, viewport);
    const Vector3 window(static_cast<float>(pixel.x()) + 0.5f, static_cast<float>(pixel.y()) + 0.5f,
                         middle.z);
    return window.unProject(context_.modelView, context_.projection, viewport);
}

bool HostScene::wheelAbout(const QPoint& pixel)
{
    catchUp();
    const QScopedValueRollback<Vector3> fixed(context_.center, pointUnder(pixel));
    return send(&OruSceneEventHandler::mouseWheel);
}

bool HostScene::zoomAbout(const QPoint& pixel, double factor)
{
    catchUp();
    OruSceneEventContext about(context_);
    about.center = pointUnder(pixel);
    Matrix view = context_.modelView;
    return scene_.zpr.zoomStep(about, static_cast<float>(factor), view) && setView(view);
}

bool HostScene::turnAbout(const QPoint& pixel, double degrees)
{
    catchUp();
    const Vector3 fixed = pointUnder(pixel);
    Vector3 axis = Kelvar::Math::VectorZ;
    axis.mult3x3(context_.modelView.inverse());
    return setView(Matrix::translate(-fixed) * Matrix::rotate(axis, static_cast<float>(degrees)) *
                   Matrix::translate(fixed) * context_.modelView);
}

const Matrix& HostScene::view()
{
    catchUp();
    return context_.modelView;
}

bool HostScene::setView(const Matrix& view)
{
    context_.modelView = view;
    return scene_.setViewpoint(context_.viewpointName, view);
}

void HostScene::draw()
{
    scene_.drawGl(context_);
    stale_ = false;
    updateProjection();
}

QImage HostScene::picture(const QSize& pixels, const PictureOptions& options)
{
    catchUp();
    return capture(context_, pixels, options);
}

QImage HostScene::picture(const QSize& pixels, const Matrix& view, const PictureOptions& options)
{
    catchUp();
    OruSceneEventContext shot(context_);
    shot.viewpointName.clear(); // the matrix of the context counts then
    shot.modelView = view;
    return capture(shot, pixels, options);
}

QImage HostScene::capture(OruSceneEventContext shot, const QSize& pixels, const PictureOptions& options)
{
    shot.viewport = OruOglViewport(0, 0, pixels.width(), pixels.height());
    if (isOneCapture(options) || pixels.isEmpty()) {
        QImage image;
        return scene_.drawGl(shot, image) ? image : QImage();
    }
    stale_ = true; // until the window is drawn again
    QImage image = PictureMaker(scene_, shot).make(options);
    draw();
    return image;
}

/// False: there is no such position, or nothing to see.
bool HostScene::viewFrom(const QString& position, Matrix& view)
{
    const auto found =
        std::find_if(namedPositions.begin(), namedPositions.end(),
                     [&](const NamedPosition& named) { return position == QLatin1String(named.name); });
    if (found == namedPositions.end()) {
        return false;
    }
    refresh();
    view = found->own ? fromAboveFrontRight() : context_.modelView;
    return scene_.zpr.zoomTo(context_, found->position, view);
}

bool HostScene::showFrom(const QString& position)
{
    Matrix view;
    if (!viewFrom(position, view)) {
        return false;
    }
    setView(view);
    stale_ = true;
    fit_ = Fit{position, context_.viewport, view};
    return true;
}

bool HostScene::fitAgain()
{
    OruProperties* const viewpoint = scene_.render.visualizations.childByName(context_.viewpointName);
    Matrix view;
    if (!viewpoint || fit_.viewport == context_.viewport || fit_.view != this->view() ||
        !viewFrom(fit_.position, view)) {
        return false;
    }
    fit_.viewport = context_.viewport;
    fit_.view = view;
    viewpoint->setValue(QStringLiteral("matrix"), oru::toString(view));
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
    edit(*place.node, place.key, value);
    return true;
}

void HostScene::edit(OruProperties& node, const QString& key, const QString& value)
{
    const auto stale = qScopeGuard([this] { stale_ = true; });
    scene_.inEditSession([&](IOruVisPropertyEdit& editor) {
        editor.editValue(&scene_.render.visualizations, &node, key, value);
    });
}

void HostScene::undo(const EditStep& step)
{
    step.undo(scene_);
    tellEditor(step);
}

void HostScene::redo(const EditStep& step)
{
    step.redo(scene_);
    tellEditor(step);
}

void HostScene::tellEditor(const EditStep& step)
{
    const auto stale = qScopeGuard([this] { stale_ = true; });
    scene_.inEditSession([&](IOruVisPropertyEdit& editor) {
        for (const EditStep::Change& change : step.changes()) {
            OruProperties* const node = scene_.find(change.path);
            if (node && node->string().defined(change.key)) {
                QString value;
                node->getValue(change.key, value, QString());
                editor.editValue(&scene_.render.visualizations, node, change.key, value);
            }
        }
    });
}

bool HostScene::accepts(const QString& path, const QString& value, QString* error)
{
    const Place place = placeOf(path);
    return !place.node || place.node->kind(place.key).accepts(value, error);
}

void HostScene::refresh()
{
    {
        const QScopedValueRollback<bool> unpainted(context_.noDraw, true);
        scene_.drawGl(context_);
    }
    stale_ = false;
    updateProjection();
}

void HostScene::updateProjection()
{
    // The bounds of this moment: what was moved since the last draw must not fall behind the far plane.
    const Kelvar::Math::BoundingBox bounds = scene_.render.visualizations.bounds();
    context_.projection = glGetOrtho(context_.viewport, bounds, context_.modelView);
}

} // namespace hostkit
