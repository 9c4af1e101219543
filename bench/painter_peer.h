/** What pixman takes for the jobs of the painter. */
#pragma once

#include "turns.h"

namespace kestrin_bench {

enum class PeerJob
{
    Fill,     /**< writes a colour */
    FillOver, /**< blends one colour */
    Copy,     /**< copies pixels */
    Over,     /**< blends pixels by their alpha and one opacity */
    Tile,     /**< copies a picture of 16 x 16 again and again */
    TileOver, /**< blends it by its alpha and one opacity */
    Glyph,    /**< blends a colour by coverage */
    FillBytes,
    CopyBytes
};

/**
 * One call of pixman's that does a job on its own pixels, with everything that may be kept from one
 * call to the next made beforehand. Empty where pixman is not installed.
 */
Turns::Work PixmanWork(PeerJob job, int width, int height);

} // namespace kestrin_bench
