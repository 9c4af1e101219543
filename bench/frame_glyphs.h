/** Coverage of the benchmark's characters, for painters that rasterise none themselves. */
#pragma once

#include "frame_scenes.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrin_bench {

struct Glyph
{
    int left = 0; // from the pen
    int top = 0;  // from the top of the line
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverage; // rows without gaps
};

/** The characters of a font at a size, rendered once. */
class GlyphSet
{
public:
    GlyphSet(const char* font, int size);

    /** Characters that no scene uses are empty. */
    const Glyph& operator[](char16_t character) const
    {
        const auto found = _glyphs.find(character);
        return found == _glyphs.end() ? _none : found->second;
    }

    /** The same set for every use of a font and size. */
    static const GlyphSet& Of(const TextGrid& grid);

private:
    std::map<char16_t, Glyph> _glyphs;
    Glyph _none;
};

/** Calls back for each glyph of a text, with where its first pixel goes. */
template <class Draw>
void ForEachGlyph(const TextGrid& grid, const std::u16string& text, int x, int y, Draw draw)
{
    const GlyphSet& glyphs = GlyphSet::Of(grid);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Glyph& glyph = glyphs[text[i]];
        draw(glyph, x + static_cast<int>(i) % grid.columns * grid.cell_width + glyph.left,
             y + static_cast<int>(i) / grid.columns * grid.line_height + glyph.top);
    }
}

/** Pixels from the top of a line to its baseline, as the engine has them. */
int Ascent(const TextGrid& grid);

} // namespace kestrin_bench
