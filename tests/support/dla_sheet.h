/**
 * One picture with every drawing primitive in it, for people to look at and for a test to compare.
 *
 * Each of its cells is a buffer of its own, so that the primitives are cut at the cells' edges.
 */
#pragma once

#include "argb_image.h"

namespace kestrin_test {

/** Draws the whole sheet with the library; takes over the drawing context. */
kestrin_display::ArgbImage DrawDlaSheet();

} // namespace kestrin_test
