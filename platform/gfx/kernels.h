/**
 * Loops over pixels, for the vector units that processors have.
 *
 * Pixels are 0xAARRGGBB words, or bytes that index a palette. Each loop takes a rectangle of a
 * target, most of them a rectangle of the same size of a source that does not overlap it, and gives
 * to the last bit what DirectFB's software renderer gives. Nothing outside the rectangles is read
 * or written. Sizes may be 0; addresses are multiples of the size of a pixel.
 */
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrin_gfx {

/** The first pixel of the first row to draw on; the pitch is in bytes and may be negative. */
struct Target
{
    std::uint8_t* start;
    std::ptrdiff_t pitch;
};

/** Likewise for reading. */
struct Source
{
    const std::uint8_t* start;
    std::ptrdiff_t pitch;
};

struct Size
{
    int width;
    int height;
};

struct Kernels
{
    /** Writes one value. */
    void (*fill)(Target to, Size size, std::uint32_t pixel);

    /** Writes one value into bytes. */
    void (*fill_bytes)(Target to, Size size, std::uint8_t value);

    /** Keeps `keep` (0 to 256) 256ths of what is there and adds a value, channel by channel. */
    void (*fill_over)(Target to, Size size, std::uint32_t added, unsigned keep);

    /** Copies rows of bytes; the width is in bytes. */
    void (*copy)(Target to, Source from, Size size);

    /**
     * Puts colours that were multiplied with their alpha over what is there. Colours that were
     * not run over into the next channel.
     */
    void (*blit_over)(Target to, Source from, Size size);

    /** The same with alpha scaled by `opacity` (1 to 256) 256ths, and without running over. */
    void (*blit_faded)(Target to, Source from, Size size, unsigned opacity);

    /** Puts colours over others, neither of which were multiplied with their alpha. */
    void (*blit_straight)(Target to, Source from, Size size);

    /** Puts colours below what is there. */
    void (*blit_under)(Target to, Source from, Size size);

    /** Copies pixels whose colour, alpha aside, is not the key. The key's upper byte is 0. */
    void (*blit_keyed)(Target to, Source from, Size size, std::uint32_t key);

    /** Puts an opaque colour over what is there where a source of bytes covers it. */
    void (*blit_covered)(Target to, Source from, Size size, std::uint32_t color);

    /** The same with coverage scaled by `opacity` (1 to 256) 256ths. */
    void (*blit_covered_faded)(Target to, Source from, Size size, std::uint32_t color,
                               unsigned opacity);

    /** Copies bytes that are not the key. */
    void (*blit_keyed_bytes)(Target to, Source from, Size size, std::uint8_t key);
};

/** For any processor the library is built for. */
extern const Kernels base_kernels;

/** The fastest ones that this processor can run. */
const Kernels& BestKernels();

#ifdef KESTRIN_GFX_AVX2
/** For processors with AVX2 only. */
extern const Kernels avx2_kernels;
#endif

} // namespace kestrin_gfx
