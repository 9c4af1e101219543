/**
 * PNG files as pictures of 0xAARRGGBB pixels with straight alpha, which is what PNG itself stores.
 */
#pragma once

#include "argb_image.h"

#include <stdexcept>
#include <string>

namespace kestrin_tools {

/** A PNG file cannot be read or written; what() names the file and the reason. */
class PngError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/**
 * Writes a picture with 8 bits a channel and alpha. A file that could not be completed is removed.
 *
 * @param path   the file; one with the same name is replaced
 * @param image  at least 1 x 1 pixels
 * @throws PngError
 */
void WritePng(const std::string& path, const kestrin_display::ArgbImage& image);

/**
 * Reads a PNG of any kind: palettes, grey, 16 bits and interlacing become 8-bit channels with
 * alpha, opaque if the file has none.
 *
 * @throws PngError also for pictures of more than 16384 pixels a side
 */
kestrin_display::ArgbImage ReadPng(const std::string& path);

} // namespace kestrin_tools
