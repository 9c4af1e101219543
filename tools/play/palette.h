/**
 * The fixed palette of 8-bit displays that the engine's blending tables are made for.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

namespace kestrin_play {

/**
 * A palette of its 188 colours: transparent, 48 at 70 % opacity, 4 greys, a cube of 135; the
 * remaining entries are transparent. Count 0.
 */
zelxxx::IPalette* CreateFixedPalette();

} // namespace kestrin_play
