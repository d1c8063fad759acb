#include "hosts/host/internal/PictureSum.h"

#include <algorithm>

namespace hostkit {

namespace {

constexpr int components = 3;

std::size_t pixelsOf(const QSize& size)
{
    return static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
}

int rounded(int dividend, int divisor)
{
    return (dividend + divisor / 2) / divisor;
}

} // namespace

PictureSum::PictureSum(const QSize& size, bool transparent)
    : size_(size)
    , color_(pixelsOf(size) * components)
    , through_(transparent ? pixelsOf(size) : 0)
{}

void PictureSum::add(const QImage& capture)
{
    ++count_;
    std::uint16_t* sum = color_.data();
    std::uint16_t* through = through_.data();
    for (int y = 0; y < size_.height(); ++y) {
        const uchar* const line = capture.constScanLine(y);
        const int bytes = size_.width() * components;
        for (int i = 0; i < bytes; ++i) {
            sum[i] = static_cast<std::uint16_t>(sum[i] + line[i]);
        }
        sum += bytes;
        if (!through_.empty()) {
            for (int i = 0; i < bytes; i += components, ++through) {
                // Where a logic operation turned the background over, black is the brighter one.
                *through =
                    static_cast<std::uint16_t>(std::max(0, *through - line[i] - line[i + 1] - line[i + 2]));
            }
        }
    }
}

void PictureSum::addOverWhite(const QImage& capture)
{
    std::uint16_t* through = through_.data();
    for (int y = 0; y < size_.height(); ++y) {
        const uchar* pixel = capture.constScanLine(y);
        for (int x = 0; x < size_.width(); ++x, ++through, pixel += components) {
            *through = static_cast<std::uint16_t>(*through + pixel[0] + pixel[1] + pixel[2]);
        }
    }
}

QImage PictureSum::average() const
{
    const bool opaque = through_.empty();
    QImage picture(size_, opaque ? QImage::Format_RGB888 : QImage::Format_ARGB32);
    if (picture.isNull()) {
        return picture;
    }
    std::size_t first = 0;
    for (int y = 0; y < size_.height(); ++y, first += static_cast<std::size_t>(size_.width())) {
        uchar* const line = picture.scanLine(y);
        if (opaque) {
            averageOpaque(line, first);
        } else {
            averageTransparent(reinterpret_cast<QRgb*>(line), first);
        }
    }
    return picture;
}

void PictureSum::averageOpaque(uchar* line, std::size_t first) const
{
    const std::uint16_t* const sum = &color_[first * components];
    for (int i = 0; i < size_.width() * components; ++i) {
        line[i] = static_cast<uchar>(rounded(sum[i], count_));
    }
}

/// Over black a color is what it is times its alpha.
void PictureSum::averageTransparent(QRgb* line, std::size_t first) const
{
    const std::uint16_t* sum = &color_[first * components];
    for (int x = 0; x < size_.width(); ++x, sum += components) {
        const int through = rounded(through_[first + static_cast<std::size_t>(x)], components);
        const int alphas = std::max(0, 255 * count_ - through);
        const auto color = [&](int part) {
            return alphas == 0 ? 0 : std::min(255, rounded(255 * part, alphas));
        };
        line[x] = qRgba(color(sum[0]), color(sum[1]), color(sum[2]), rounded(alphas, count_));
    }
}

} // namespace hostkit
