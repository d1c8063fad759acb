#pragma once

#include <QImage>
#include <QSize>

#include <cstdint>
#include <vector>

namespace hostkit {

/// The sum of captures of one size, and their average with each component rounded to the nearest whole
/// number. Holds 64 captures at most; they are QImage::Format_RGB888.
///
/// A transparent sum takes each sample twice, over white and over black: what differs is what shows through.
/// Its average is QImage::Format_ARGB32.
class PictureSum
{
public:
    PictureSum(const QSize& size, bool transparent);

    /// A sample; one of a transparent sum over black.
    void add(const QImage& capture);

    /// The same sample over white; ahead of add().
    void addOverWhite(const QImage& capture);

    /// A null image where memory does not suffice.
    QImage average() const;

private:
    void averageOpaque(uchar* line, std::size_t first) const;
    void averageTransparent(QRgb* line, std::size_t first) const;

    QSize size_;
    int count_ = 0;
    /// Red, green and blue of each pixel.
    std::vector<std::uint16_t> color_;
    /// What shows through each pixel, in all three components together; empty if the sum is opaque.
    std::vector<std::uint16_t> through_;
};

} // namespace hostkit
