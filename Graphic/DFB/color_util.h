/** The fixed palette behind the colour utilities, which are public. */
#pragma once

#include "vrel_kestrin_graphic.h"

namespace zelxxx {

/** Entries of the fixed palette. Indices from here up exist on the display but name no colour. */
constexpr int kMhegColorCount = 188;

/**
 * A colour of the fixed palette, 0xTTRRGGBB with TT its transparency: 0 opaque, 255 transparent.
 * The index is below kMhegColorCount.
 */
UInt32 MhegPaletteWord(UInt8 index);

} // namespace zelxxx
