/**
 * Fewer colours.
 */
#pragma once

#include "argb_image.h"
#include "palette_file.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace kestrin_tools {

/** Shows pictures in the colours of a palette. */
class Quantiser
{
public:
    /**
     * @param palette of two colours at least, transparent ones counted as one
     * @param dither  spreads what a colour misses over the pixels beside it; otherwise each pixel
     *                takes the colour nearest to it, and one that the palette has stays as it is
     * @throws std::runtime_error
     */
    Quantiser(const Palette& palette, bool dither);
    ~Quantiser();
    Quantiser(const Quantiser&) = delete;
    Quantiser& operator=(const Quantiser&) = delete;

    /** The palette indices of a picture. */
    std::vector<std::uint8_t> Map(const kestrin_display::ArgbImage& image);

private:
    struct State;
    std::unique_ptr<State> _state;
};

/** Finds the colours that suit pictures best. */
class PaletteMaker
{
public:
    PaletteMaker();
    ~PaletteMaker();
    PaletteMaker(const PaletteMaker&) = delete;
    PaletteMaker& operator=(const PaletteMaker&) = delete;

    /** Takes a picture into account; it need not be kept. */
    void Add(const kestrin_display::ArgbImage& image);

    /**
     * The palette of all pictures added, of which there is one at least. Index 0 is transparent
     * black, which an empty screen shows; the pictures' colours follow.
     *
     * @param count  colours at most, 2 to 256, with the transparent one
     */
    Palette Make(int count);

private:
    struct State;
    std::unique_ptr<State> _state;
};

} // namespace kestrin_tools
