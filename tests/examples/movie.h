/** Moving pictures as the GIF library's own reader has them. */
#pragma once

#include "argb_image.h"

#include <string>
#include <vector>

namespace kestrin_test {

struct Movie
{
    std::vector<kestrin_display::ArgbImage> frames; ///< as a viewer shows them, one upon the other
    std::vector<int> hundredths;
    bool repeats = false; ///< for ever
};

/** Reads a GIF file; without frames if there is none that can be read. */
Movie ReadMovie(const std::string& path);

} // namespace kestrin_test
