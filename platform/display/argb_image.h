/**
 * A picture in memory, as the screen reader, the PNG functions and the tests exchange it.
 */
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrin_display {

/** Rows from top to bottom without gaps; each pixel 0xAARRGGBB with straight alpha. */
struct ArgbImage
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    ArgbImage() = default;

    /** A picture of one colour; transparent black if none is given. */
    ArgbImage(int image_width, int image_height, std::uint32_t color = 0)
        : width(image_width), height(image_height),
          pixels(static_cast<std::size_t>(image_width) * static_cast<std::size_t>(image_height),
                 color)
    {
    }

    /** The pixel at 0 <= x < width, 0 <= y < height. */
    std::uint32_t At(int x, int y) const { return pixels[Index(x, y)]; }
    std::uint32_t& At(int x, int y) { return pixels[Index(x, y)]; }

private:
    std::size_t Index(int x, int y) const
    {
        assert(x >= 0 && x < width && y >= 0 && y < height);
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
};

} // namespace kestrin_display
