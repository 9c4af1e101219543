/** PNG and JPEG files in memory, as other programs write them. */
#pragma once

#include <cstdint>
#include <vector>

namespace kestrin_test {

using Bytes = std::vector<std::uint8_t>;

/** A PNG of 8 bits a channel; `rgba` has four bytes a pixel, not premultiplied. */
Bytes PngFile(int width, int height, const Bytes& rgba);

/** A JPEG of one grey, which comes back exactly. */
Bytes JpegFile(unsigned width, unsigned height, std::uint8_t grey);

/** A JPEG of the highest quality; `rgb` has three bytes a pixel. */
Bytes JpegFile(unsigned width, unsigned height, const Bytes& rgb, bool progressive);

} // namespace kestrin_test
