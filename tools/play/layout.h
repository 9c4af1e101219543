/**
 * Line breaking: where each character of a text goes.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <cstddef>
#include <string>
#include <vector>

namespace kestrin_play {

/** A character on a line; `source` is its index in the text. */
struct PlacedUnit
{
    zelxxx::Int16 x; ///< pen position from the line's left end, in pixels
    zelxxx::WChar unit;
    std::size_t source;
};

struct PlacedLine
{
    std::vector<PlacedUnit> units;
    int width; ///< in pixels, without blanks at the end
};

/**
 * Breaks a text into lines no wider than `width` pixels, all about equally long, between words or
 * between East Asian characters; inside a word only where nothing else fits.
 */
std::vector<PlacedLine> LayOut(zelxxx::IFont& font, zelxxx::UInt16 size, const std::u16string& text,
                               int width);

/** Lines of text stand this many pixels apart. */
constexpr int LineHeight(int font_size)
{
    return font_size * 13 / 10;
}

/** Kept free at both ends of a text's lines, so that no overhang or shadow is cut off. */
constexpr int TextMargin(int font_size)
{
    return font_size / 2;
}

/** From the top of a line to its baseline, the same in every font. */
constexpr int Baseline(int font_size)
{
    return font_size;
}

} // namespace kestrin_play
