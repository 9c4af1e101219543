/** Comparison of pictures, with a report that says where they differ. */
#pragma once

#include "argb_image.h"

#include <gtest/gtest.h>

namespace kestrin_test {

/**
 * Succeeds when both pictures have the same size and pixels. Otherwise says how many pixels differ,
 * in which rectangle and the first few of them, and draws a map of the picture: a mark stands for a
 * field of pixels with a difference in it.
 */
testing::AssertionResult SamePicture(const kestrin_display::ArgbImage& actual,
                                     const kestrin_display::ArgbImage& expected);

/** Succeeds when all pixels of the half-open rectangle have the colour 0xAARRGGBB. */
testing::AssertionResult AreaHasColor(const kestrin_display::ArgbImage& image, int x1, int y1,
                                      int x2, int y2, std::uint32_t color);

} // namespace kestrin_test
