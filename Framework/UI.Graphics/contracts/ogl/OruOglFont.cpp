#include "contracts/ogl/OruOglFont.h"

#include "contracts/core/OruResource.h"
#include "contracts/ogl/internal/OruOglFontFile.h"

#include <QFile>
#include <QStringList>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>
#include <mutex>

namespace {

/// Hinted for whole pixels in height, with the shapes left alone in width.
constexpr FT_Int32 loadFlags = FT_LOAD_TARGET_LIGHT;

constexpr unsigned int smallestXHeight = 3;
constexpr unsigned int largestXHeight = 100;

/// The height of a small x as a share of the em, where a font does not say.
constexpr double usualXHeight = 0.5;

constexpr int tabWidth = 4;

int roundedPixels(FT_Pos units64)
{
    return static_cast<int>((units64 + 32) >> 6);
}

int pixelsAbove(FT_Pos units64)
{
    return static_cast<int>((units64 + 63) >> 6);
}

/// FreeType lets threads share a handle if they take turns in making and ending its faces.
std::mutex faceTurns;

FT_Error newFace(FT_Library library, const char* path, FT_Long index, FT_Face* face)
{
    const std::lock_guard<std::mutex> turn(faceTurns);
    return FT_New_Face(library, path, index, face);
}

void doneFace(FT_Face face)
{
    const std::lock_guard<std::mutex> turn(faceTurns);
    FT_Done_Face(face);
}

/// One for all fonts of the process, as long as there is a font.
std::shared_ptr<FT_LibraryRec_> freeType()
{
    const std::lock_guard<std::mutex> turn(faceTurns);
    static std::weak_ptr<FT_LibraryRec_> shared;
    std::shared_ptr<FT_LibraryRec_> library = shared.lock();
    FT_Library made = nullptr;
    if (!library && FT_Init_FreeType(&made) == 0) {
        library = std::shared_ptr<FT_LibraryRec_>(made, [](FT_Library last) { FT_Done_FreeType(last); });
        shared = library;
    }
    return library;
}

double xHeightOfEm(FT_Face face)
{
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (os2 && os2->version != 0xFFFF && os2->version >= 2 && os2->sxHeight > 0) {
        return static_cast<double>(os2->sxHeight) / face->units_per_EM;
    }
    if (FT_Load_Char(face, 'x', FT_LOAD_NO_SCALE) == 0 && face->glyph->metrics.horiBearingY > 0) {
        return static_cast<double>(face->glyph->metrics.horiBearingY) / face->units_per_EM;
    }
    return usualXHeight;
}

} // namespace

struct OruOglFont::Face
{
    std::shared_ptr<FT_LibraryRec_> library = freeType();
    FT_Face face = nullptr;

    Face() = default;
    ~Face() { close(); }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    void close()
    {
        if (face) {
            doneFace(face);
            face = nullptr;
        }
    }

    // False for a file that is no scalable font.
    bool open(const oru::FontFile& file)
    {
        close();
        if (!library || file.path.isEmpty() ||
            newFace(library.get(), QFile::encodeName(file.path).constData(), file.index, &face) != 0) {
            face = nullptr;
            return false;
        }
        if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
            close();
            return false;
        }
        return true;
    }
};

OruOglFont::OruOglFont(const OruResource& resource, const QString& face, unsigned int xHeight)
    : face_(std::make_unique<Face>())
{
    const unsigned int size = std::clamp(xHeight, smallestXHeight, largestXHeight);
    oru::FontFile file = oru::findFontFile(resource, face);
    if (!face_->open(file)) {
        file = oru::defaultFontFile();
        face_->open(file);
    }
    key_ = QStringLiteral("%1|%2|%3").arg(size).arg(file.index).arg(file.path);
    measure(size);
}

OruOglFont::~OruOglFont() = default;

void OruOglFont::measure(unsigned int xHeight)
{
    boxHeight_ = static_cast<int>(std::lround(xHeight * 1.4));
    boxWidth_ = static_cast<int>(std::lround(xHeight * 0.8));
    ascent_ = boxHeight_ + 2;
    descent_ = static_cast<int>(std::lround(xHeight * 0.5));
    lineHeight_ = ascent_ + descent_;
    FT_Face face = face_->face;
    if (!face) {
        return;
    }
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(std::lround(xHeight / xHeightOfEm(face))));
    const FT_Size_Metrics& metrics = face->size->metrics;
    ascent_ = pixelsAbove(metrics.ascender);
    descent_ = pixelsAbove(-metrics.descender);
    lineHeight_ = std::max(roundedPixels(metrics.height), ascent_ + descent_);
}

QString OruOglFont::family() const
{
    return face_->face ? QString::fromUtf8(face_->face->family_name) : QString();
}

std::uint32_t OruOglFont::glyphOf(std::uint32_t character) const
{
    return face_->face ? FT_Get_Char_Index(face_->face, character) : missingGlyph;
}

int OruOglFont::advance(std::uint32_t glyph) const
{
    if (glyph == missingGlyph) {
        return boxWidth_ + 2;
    }
    const auto known = advances_.find(glyph);
    if (known != advances_.end()) {
        return known->second;
    }
    const bool loaded = FT_Load_Glyph(face_->face, glyph, loadFlags) == 0;
    const int width = loaded ? roundedPixels(face_->face->glyph->advance.x) : 0;
    advances_.emplace(glyph, width);
    return width;
}

int OruOglFont::kerning(std::uint32_t left, std::uint32_t right) const
{
    FT_Vector shift = {0, 0};
    if (left == missingGlyph || right == missingGlyph || !FT_HAS_KERNING(face_->face) ||
        FT_Get_Kerning(face_->face, left, right, FT_KERNING_DEFAULT, &shift) != 0) {
        return 0;
    }
    return roundedPixels(shift.x);
}

OruOglFont::Layout OruOglFont::layout(const QString& text) const
{
    Layout result;
    result.size = QSize(0, 0);
    if (text.isEmpty()) {
        return result;
    }
    const QStringList lines = text.split(QLatin1Char('\n'));
    const int lineCount = static_cast<int>(lines.size());
    int width = 0;
    for (int line = 0; line < lineCount; ++line) {
        QPoint pen(0, (lineCount - 1 - line) * lineHeight_ + descent_);
        std::uint32_t before = missingGlyph;
        for (const std::uint32_t character : lines[line].toUcs4()) {
            if (character == '\t') {
                pen.rx() += tabWidth * advance(glyphOf(' '));
            }
            if (character < ' ') {
                continue;
            }
            const std::uint32_t glyph = glyphOf(character);
            pen.rx() += kerning(before, glyph);
            result.glyphs.push_back({glyph, pen});
            pen.rx() += advance(glyph);
            before = glyph;
        }
        width = std::max(width, pen.x());
    }
    result.size = QSize(width, lineCount * lineHeight_);
    return result;
}

QSize OruOglFont::size(const QString& text) const
{
    return layout(text).size;
}

OruOglFont::Bitmap OruOglFont::missingBox() const
{
    Bitmap box{1, boxHeight_, boxWidth_, boxHeight_, {}};
    box.coverage.assign(static_cast<std::size_t>(boxWidth_) * boxHeight_, 0);
    for (int y = 0; y < boxHeight_; ++y) {
        for (int x = 0; x < boxWidth_; ++x) {
            const bool edge = x == 0 || y == 0 || x == boxWidth_ - 1 || y == boxHeight_ - 1;
            box.coverage[static_cast<std::size_t>(y) * boxWidth_ + x] = edge ? 255 : 0;
        }
    }
    return box;
}

OruOglFont::Bitmap OruOglFont::rasterise(std::uint32_t glyph) const
{
    if (glyph == missingGlyph) {
        return missingBox();
    }
    FT_GlyphSlot slot = face_->face->glyph;
    if (FT_Load_Glyph(face_->face, glyph, loadFlags | FT_LOAD_RENDER) != 0 ||
        slot->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY) {
        return Bitmap();
    }
    Bitmap result{slot->bitmap_left,
                  slot->bitmap_top,
                  static_cast<int>(slot->bitmap.width),
                  static_cast<int>(slot->bitmap.rows),
                  {}};
    result.coverage.reserve(static_cast<std::size_t>(result.width) * result.rows);
    for (int y = 0; y < result.rows; ++y) {
        const unsigned char* row = slot->bitmap.buffer + static_cast<std::ptrdiff_t>(y) * slot->bitmap.pitch;
        result.coverage.insert(result.coverage.end(), row, row + result.width);
    }
    return result;
}
