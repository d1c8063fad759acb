#include "contracts/ogl/internal/OruOglPixelTransfer.h"

#include "contracts/ogl/OruOglGl.h"

namespace {

struct Setting
{
    GLenum name;
    float plain;
};

/// What lies between a pixel in memory and its color.
constexpr Setting transferSettings[] = {
    {GL_MAP_COLOR, 0.0f},  {GL_RED_SCALE, 1.0f},   {GL_GREEN_SCALE, 1.0f},
    {GL_BLUE_SCALE, 1.0f}, {GL_ALPHA_SCALE, 1.0f}, {GL_RED_BIAS, 0.0f},
    {GL_GREEN_BIAS, 0.0f}, {GL_BLUE_BIAS, 0.0f},   {GL_ALPHA_BIAS, 0.0f},
};

/// Offsets and byte orders of images in memory; all are 0 in a plain image.
constexpr GLenum storeSettings[] = {
    GL_PACK_SWAP_BYTES,     GL_PACK_LSB_FIRST,     GL_PACK_ROW_LENGTH,  GL_PACK_SKIP_ROWS,
    GL_PACK_SKIP_PIXELS,    GL_PACK_IMAGE_HEIGHT,  GL_PACK_SKIP_IMAGES, GL_UNPACK_SWAP_BYTES,
    GL_UNPACK_LSB_FIRST,    GL_UNPACK_ROW_LENGTH,  GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
    GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_IMAGES,
};

} // namespace

OruOglPixelTransfer::OruOglPixelTransfer(int rowAlignment)
{
    static_assert(sizeof(transferSettings) / sizeof(Setting) == transferCount, "one slot for each setting");
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer_);
    glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &unpackBuffer_);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    for (const GLenum name : storeSettings) {
        glPixelStorei(name, 0);
    }
    glPixelStorei(GL_PACK_ALIGNMENT, rowAlignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, rowAlignment);
    for (int i = 0; i < transferCount; ++i) {
        glGetFloatv(transferSettings[i].name, &transfer_[i]);
        glPixelTransferf(transferSettings[i].name, transferSettings[i].plain);
    }
}

OruOglPixelTransfer::~OruOglPixelTransfer()
{
    for (int i = 0; i < transferCount; ++i) {
        glPixelTransferf(transferSettings[i].name, transfer_[i]);
    }
    glPopClientAttrib();
    glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer_));
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(unpackBuffer_));
}
