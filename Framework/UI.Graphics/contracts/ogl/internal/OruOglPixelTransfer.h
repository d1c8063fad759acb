#pragma once

#include <array>

/// A plain state for moving pixels between OpenGL and tightly kept images, for the length of a scope: rows
/// aligned to `rowAlignment` bytes (1, 2, 4 or 8), no offsets, no buffer objects bound for packing and
/// unpacking, colors passed through unchanged. At the end the caller's state is back.
class OruOglPixelTransfer
{
public:
    explicit OruOglPixelTransfer(int rowAlignment);
    ~OruOglPixelTransfer();
    OruOglPixelTransfer(const OruOglPixelTransfer&) = delete;
    OruOglPixelTransfer& operator=(const OruOglPixelTransfer&) = delete;

private:
    static constexpr int transferCount = 9;

    std::array<float, transferCount> transfer_{};
    int packBuffer_ = 0;
    int unpackBuffer_ = 0;
};
