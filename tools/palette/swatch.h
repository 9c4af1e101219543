/**
 * A picture of a palette.
 */
#pragma once

#include "argb_image.h"
#include "palette_file.h"

namespace kestrin_tools {

/** Sides of a colour's place in the swatch, in pixels. */
constexpr int swatch_cell_width = 40;
constexpr int swatch_cell_height = 32;
constexpr int swatch_columns = 16;

/**
 * All 256 colours in rows of 16, index 0 top left, each with its index. Where a colour is
 * transparent, squares of two greys show through. Opaque.
 */
kestrin_display::ArgbImage Swatch(const Palette& palette);

} // namespace kestrin_tools
