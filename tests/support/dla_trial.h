/**
 * What tests of the drawing primitives share: a buffer with guards, and arguments of all kinds.
 *
 *     DlaCanvas canvas(64, 48, background); // DLA_Init has been called for it
 *     DLA_Line(...);
 *     EXPECT_TRUE(canvas.Shows(expected));  // also: nothing was written beside it
 */
#pragma once

#include "argb_image.h"
#include "seeded_random.h"
#include "vrel_kestrin_dlautils.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace kestrin_test {

/** The buffer drawn into, between words that nobody may write. */
class DlaCanvas
{
public:
    DlaCanvas(int width, int height, std::uint32_t background);

    /** Succeeds when the buffer holds this picture and the guards are untouched. */
    testing::AssertionResult Shows(const kestrin_display::ArgbImage& expected) const;

    /** Succeeds when nothing was written before or behind the buffer. */
    testing::AssertionResult GuardsAreIntact() const;

    kestrin_display::ArgbImage Picture() const;
    int Width() const { return _width; }
    int Height() const { return _height; }

    std::uint32_t At(int x, int y) const
    {
        return Begin()[static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) +
                       static_cast<std::size_t>(x)];
    }

private:
    static constexpr std::size_t kGuardWords = 512;
    static constexpr std::uint32_t kGuard = 0xfee1deadU;

    const std::uint32_t* Begin() const { return _words.data() + kGuardWords; }

    int _width, _height;
    std::vector<std::uint32_t> _words;
};

/**
 * Coordinates for a buffer of a given size. Each object keeps to one neighbourhood, so that shapes
 * lie inside, at the edges, across or far away as a whole; some mix all of them.
 */
class DlaArguments
{
public:
    DlaArguments(SeededRandom& random, int width, int height)
        : _random(random), _width(width), _height(height),
          _place(static_cast<Place>(random.Between(Inside, Mixed)))
    {
    }

    std::int16_t X() { return Coordinate(_width); }
    std::int16_t Y() { return Coordinate(_height); }
    S_POINT Point();

    /** A line's width: mostly up to 40, now and then anything. */
    std::uint16_t LineWidth();

    /** A box's size: mostly about that of the buffer, now and then thousands. */
    std::uint16_t BoxWidth() { return Size(_width); }
    std::uint16_t BoxHeight() { return Size(_height); }

    SeededRandom& Random() { return _random; }
    int Width() const { return _width; }
    int Height() const { return _height; }

    /** A buffer's size: many small ones, for many cases; all up to `largest`. */
    static int BufferSize(SeededRandom& random, int largest);

private:
    enum Place
    {
        Inside,
        AtEdges,
        Across,
        FarOut,
        AtEnds,
        Mixed
    };

    std::int16_t Coordinate(int size);
    std::uint16_t Size(int size);

    SeededRandom& _random;
    int _width, _height;
    Place _place;
};

} // namespace kestrin_test
