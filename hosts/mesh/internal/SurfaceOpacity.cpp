#include "hosts/mesh/internal/SurfaceOpacity.h"

#include <QRgb>

#include <algorithm>
#include <cmath>

namespace hostkit {

namespace {

/// The texels on both sides of a texture coordinate, and the share of the second one.
struct Texels
{
    int first, second;
    double share;
};

/// Puts a coordinate far beyond the picture where the same texels lie near it.
double nearPicture(double at, Texture::Wrap wrap)
{
    switch (wrap) {
    case Texture::Wrap::Repeat:
        return at - std::floor(at);
    case Texture::Wrap::Mirror:
        return at - 2.0 * std::floor(at / 2.0);
    default:
        return std::clamp(at, 0.0, 1.0);
    }
}

/// For a texel at most one picture beyond the edges.
int wrapped(int texel, int count, Texture::Wrap wrap)
{
    if (wrap == Texture::Wrap::Clamp) {
        return std::clamp(texel, 0, count - 1);
    }
    if (wrap == Texture::Wrap::Repeat) {
        return (texel + count) % count;
    }
    const int mirrored = (texel + 2 * count) % (2 * count);
    return std::min(mirrored, 2 * count - 1 - mirrored);
}

Texels texelsAt(double at, int count, Texture::Wrap wrap)
{
    const double texel = nearPicture(at, wrap) * count - 0.5;
    const double first = std::floor(texel);
    const int index = static_cast<int>(first);
    return {wrapped(index, count, wrap), wrapped(index + 1, count, wrap), texel - first};
}

double alphaAt(const Texture& texture, double s, double t)
{
    const QImage& image = texture.image;
    const Texels columns = texelsAt(s, image.width(), texture.wrapS);
    // The first row is the upper edge.
    const Texels rows = texelsAt(t, image.height(), texture.wrapT);
    const auto texel = [&](int column, int row) {
        return qAlpha(image.pixel(column, image.height() - 1 - row)) / 255.0;
    };
    const auto inRow = [&](int row) {
        return (1.0 - columns.share) * texel(columns.first, row) + columns.share * texel(columns.second, row);
    };
    return (1.0 - rows.share) * inRow(rows.first) + rows.share * inRow(rows.second);
}

bool hasAlpha(const Mesh& mesh)
{
    return !mesh.texturePoints.empty() && mesh.material.texture->image.hasAlphaChannel();
}

} // namespace

bool SurfaceOpacity::varies() const
{
    const Material::Alpha alpha = mesh_.material.alpha;
    return alpha == Material::Alpha::CutOut ||
           (alpha == Material::Alpha::Blend && (!mesh_.colors.empty() || hasAlpha(mesh_)));
}

double SurfaceOpacity::at(uint32_t triangle, const std::array<double, 3>& weights) const
{
    const uint32_t* const first = &mesh_.indices[3 * std::size_t{triangle}];
    const Corners corners{first[0], first[1], first[2]};
    const Material& material = mesh_.material;
    const double alpha = vertexAlpha(corners, weights) * textureAlpha(corners, weights);
    if (material.alpha == Material::Alpha::Blend) {
        return opacity_ * alpha;
    }
    const bool cut =
        material.alpha == Material::Alpha::CutOut && material.color.alphaF() * alpha < material.cutoff;
    return cut ? 0.0 : opacity_;
}

double SurfaceOpacity::vertexAlpha(const Corners& corners, const std::array<double, 3>& weights) const
{
    if (mesh_.colors.empty()) {
        return 1.0;
    }
    double alpha = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto* const bytes = reinterpret_cast<const uint8_t*>(&mesh_.colors[corners[i]]);
        alpha += weights[i] * bytes[3] / 255.0;
    }
    return alpha;
}

double SurfaceOpacity::textureAlpha(const Corners& corners, const std::array<double, 3>& weights) const
{
    if (!hasAlpha(mesh_)) {
        return 1.0;
    }
    double s = 0.0;
    double t = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        const TexturePoint& point = mesh_.texturePoints[corners[i]];
        s += weights[i] * point.s;
        t += weights[i] * point.t;
    }
    return alphaAt(*mesh_.material.texture, s, t);
}

} // namespace hostkit
