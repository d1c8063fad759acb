#include "hosts/host/internal/PictureMaker.h"

#include "Scene/core/OruScene.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "hosts/host/internal/OverlaySizes.h"
#include "hosts/host/internal/PictureSum.h"
#include "hosts/host/internal/TreeValues.h"

#include <QColor>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iostream>
#include <numeric>

namespace hostkit {

namespace {

const QString textInfo = QStringLiteral("textInfo");
const QString background = QStringLiteral("background");

bool sensible(const PictureOptions& options)
{
    const bool good = options.samples >= 1 && options.samples <= PictureOptions::mostSamples &&
                      options.overlayScale >= PictureOptions::smallestOverlayScale &&
                      options.overlayScale <= PictureOptions::largestOverlayScale;
    if (!good) {
        std::cerr << "a picture cannot have " << options.samples << " samples and overlays "
                  << options.overlayScale << " times their size" << std::endl;
    }
    return good;
}

/// Puts the pixels that `with` has other than `without` into `picture`, opaque.
void copyChanges(const QImage& with, const QImage& without, QImage& picture)
{
    for (int y = 0; y < picture.height(); ++y) {
        const auto bytes = static_cast<std::size_t>(with.width()) * 3;
        if (std::memcmp(with.constScanLine(y), without.constScanLine(y), bytes) == 0) {
            continue;
        }
        for (int x = 0; x < picture.width(); ++x) {
            if (with.pixel(x, y) != without.pixel(x, y)) {
                picture.setPixel(x, y, with.pixel(x, y));
            }
        }
    }
}

} // namespace

PictureMaker::PictureMaker(OruScene& scene, const OruSceneEventContext& shot)
    : scene_(scene)
    , shot_(shot)
{
    shot_.viewpointName.clear(); // the matrix of the context counts then
}

/// The rows are in the order of the multiples of the golden ratio, less their whole parts: neighboring
/// columns lie far apart.
std::vector<QPointF> PictureMaker::positions(int samples)
{
    const auto multiple = [](int i) {
        constexpr double goldenRatio = 0.6180339887498949;
        const double value = (i + 1) * goldenRatio;
        return value - std::floor(value);
    };
    std::vector<int> columns(static_cast<std::size_t>(samples));
    std::iota(columns.begin(), columns.end(), 0);
    std::sort(columns.begin(), columns.end(), [&](int a, int b) { return multiple(a) < multiple(b); });
    const auto middle = [&](int cell) { return (cell + 0.5) / samples - 0.5; };
    std::vector<QPointF> found;
    found.reserve(columns.size());
    for (int row = 0; row < samples; ++row) {
        found.emplace_back(middle(columns[static_cast<std::size_t>(row)]), middle(row));
    }
    return found;
}

QImage PictureMaker::make(const PictureOptions& options)
{
    if (!sensible(options)) {
        return QImage();
    }
    leaveWindow();
    TreeValues scaled;
    OverlaySizes::scale(scene_.render.visualizations, options.overlayScale, scaled);
    bool information = false;
    render().string().getValue(textInfo, information, false);
    TreeValues silent;
    silent.set(render(), textInfo, false);
    QImage picture = sampled(options);
    if (information && !picture.isNull() && !addPerformanceText(picture)) {
        return QImage();
    }
    return picture;
}

QImage PictureMaker::sampled(const PictureOptions& options)
{
    PictureSum sum(QSize(shot_.viewport.width, shot_.viewport.height), options.transparent);
    for (const QPointF& position : positions(options.samples)) {
        if (!addSample(sum, position, options.transparent)) {
            return QImage();
        }
    }
    return sum.average();
}

bool PictureMaker::addSample(PictureSum& sum, const QPointF& shift, bool transparent)
{
    TreeValues backgrounds;
    if (transparent) {
        backgrounds.set(render(), background, QColor(Qt::white));
        const QImage overWhite = capture(shift);
        if (overWhite.isNull()) {
            return false;
        }
        sum.addOverWhite(overWhite);
        backgrounds.set(render(), background, QColor(Qt::black));
    }
    const QImage image = capture(shift);
    if (!image.isNull()) {
        sum.add(image);
    }
    return !image.isNull();
}

/// The performance text tells something else after every draw, so an average of it could not be read.
bool PictureMaker::addPerformanceText(QImage& picture)
{
    const QImage without = capture(QPointF());
    TreeValues shown;
    shown.set(render(), textInfo, true);
    const QImage with = capture(QPointF());
    if (without.isNull() || with.isNull()) {
        return false;
    }
    copyChanges(with, without, picture);
    return true;
}

/// The second draw of a capture goes to a viewport of the size that was drawn last.
void PictureMaker::leaveWindow()
{
    OruSceneEventContext nothing(shot_);
    nothing.viewport = OruOglViewport();
    nothing.noDraw = true;
    scene_.drawGl(nothing);
}

/// The projection is orthographic and 2 units high: a shift of the view is one of the picture, and the depths
/// stay.
QImage PictureMaker::capture(const QPointF& shift)
{
    OruSceneEventContext shifted(shot_);
    const double pixel = 2.0 / shot_.viewport.height;
    shifted.modelView =
        shot_.modelView *
        Kelvar::Math::Matrix::translate(Kelvar::Math::Vector3(static_cast<float>(shift.x() * pixel),
                                                              static_cast<float>(shift.y() * pixel), 0.0f));
    QImage image;
    return scene_.drawGl(shifted, image) ? image : QImage();
}

OruProperties& PictureMaker::render()
{
    return scene_.render;
}

} // namespace hostkit
