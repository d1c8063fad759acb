#pragma once

#include <QSize>

/// A two-dimensional texture of an OruOglCache. The whole image lies in texture coordinates 0 to 1, (0, 0) at
/// its lower left; colors are not premultiplied. Filtered with mipmaps, clamped at its edges unless it was
/// asked for otherwise.
struct OruOglTexture
{
    unsigned int name = 0; ///< The GL name; belongs to the cache.
    QSize size;            ///< Of the image in pixels, also where the texture had to be made smaller.
};
