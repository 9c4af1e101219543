/** Pictures that the tools are given. */
#pragma once

#include "argb_image.h"
#include "palette_file.h"

namespace kestrin_test {

/** All colours of a palette, from an index on, in turn: a picture it can show exactly. */
inline kestrin_display::ArgbImage PaletteColours(const kestrin_tools::Palette& palette, int width,
                                                 int height, std::size_t first, std::size_t count)
{
    kestrin_display::ArgbImage image(width, height);
    for (std::size_t i = 0; i < image.pixels.size(); ++i)
        image.pixels[i] = palette[first + i % count];
    return image;
}

/** A colour that changes from left to right and from top to bottom, which no palette has. */
inline kestrin_display::ArgbImage Gradient(int width, int height)
{
    kestrin_display::ArgbImage image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.At(x, y) = 0xFF000040 | static_cast<std::uint32_t>(x * 255 / width) << 16 |
                             static_cast<std::uint32_t>(y * 255 / height) << 8;
    }
    return image;
}

} // namespace kestrin_test
