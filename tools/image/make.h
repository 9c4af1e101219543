/**
 * Making image files from PNG files.
 */
#pragma once

#include <string>
#include <vector>

namespace kestrin_tools {

struct MakeOptions
{
    std::vector<std::string> pictures; ///< PNG files, a frame each
    std::string output;
    std::string palette;      ///< a palette file; empty for the fixed palette
    bool own_palette = false; ///< of the pictures' own colours, written beside the output
    bool dither = false;
    int level = 10;
};

/** The name of the palette file that is written beside an image file. */
std::string OwnPaletteName(const std::string& output);

/**
 * Makes an image file, or throws std::exception with what() naming the file and what to do; then no
 * file is written.
 *
 * @return what was made, in words
 */
std::string MakeImage(const MakeOptions& options);

} // namespace kestrin_tools
