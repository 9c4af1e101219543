#include "frame_glyphs.h"

#include <stdexcept>
#include <utility>

#include <ft2build.h>

#include FT_FREETYPE_H

namespace kestrin_bench {

namespace {

/** A face at a size. */
class Face
{
public:
    Face(const char* font, int size)
    {
        if (FT_Init_FreeType(&_library) || FT_New_Face(_library, font, 0, &_face) ||
            FT_Set_Pixel_Sizes(_face, 0, static_cast<FT_UInt>(size)))
            throw std::runtime_error(std::string("cannot use ") + font);
        // As far as any glyph of the face reaches, rounded up.
        const long units = _face->units_per_EM;
        _ascent = static_cast<int>((_face->bbox.yMax * size + units - 1) / units);
    }
    ~Face() { FT_Done_FreeType(_library); }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    int Ascent() const { return _ascent; }

    Glyph Render(char16_t character) const
    {
        FT_Load_Char(_face, character, FT_LOAD_RENDER);
        const FT_GlyphSlot slot = _face->glyph;
        const FT_Bitmap& bitmap = slot->bitmap;
        Glyph glyph = {slot->bitmap_left,
                       _ascent - slot->bitmap_top,
                       static_cast<int>(bitmap.width),
                       static_cast<int>(bitmap.rows),
                       {}};
        for (int y = 0; y < glyph.height; ++y) {
            const unsigned char* row = bitmap.buffer + y * bitmap.pitch;
            glyph.coverage.insert(glyph.coverage.end(), row, row + glyph.width);
        }
        return glyph;
    }

private:
    FT_Library _library = nullptr;
    FT_Face _face = nullptr;
    int _ascent = 0;
};

} // namespace

GlyphSet::GlyphSet(const char* font, int size)
{
    const Face face(font, size);
    for (char16_t character = '0'; character <= 'z'; ++character)
        _glyphs[character] = face.Render(character);
}

const GlyphSet& GlyphSet::Of(const TextGrid& grid)
{
    static std::map<std::pair<std::string, int>, GlyphSet> sets;
    return sets.try_emplace({grid.font, grid.size}, grid.font, grid.size).first->second;
}

int Ascent(const TextGrid& grid)
{
    return Face(grid.font, grid.size).Ascent();
}

} // namespace kestrin_bench
