/**
 * What the player does with whole pictures: a stand-in for video, comparing screens and
 * arranging small copies on a sheet.
 */
#pragma once

#include "argb_image.h"

#include <cstddef>
#include <string>
#include <vector>

namespace kestrin_play {

using kestrin_display::ArgbImage;

/** An evening landscape, to see transparency against. Opaque; the same for equal sizes. */
ArgbImage TestPicture(int width, int height);

/** A copy of another size; each pixel is the mean of the area it stands for. */
ArgbImage Scaled(const ArgbImage& image, int width, int height);

/** Shares of a picture, 0 to 1. */
struct Change
{
    double pixels; ///< pixels that differ
    double box;    ///< area of the smallest rectangle around them
};

/** Compares two pictures of one size. */
Change Compare(const ArgbImage& before, const ArgbImage& after);

/** Small copies of pictures in rows, with the sheet's size fixed by how many there will be. */
class ContactSheet
{
public:
    /** Holds `count` pictures of the proportions width : height. Both and `count` are positive. */
    ContactSheet(std::size_t count, int width, int height);

    /** Puts a picture, of any size, into the next place. At most `count` times. */
    void Add(const ArgbImage& image);

    const ArgbImage& Image() const { return _sheet; }

    /** Left edge, top edge and size of a place, in pixels of the sheet. */
    struct Place
    {
        int x, y, width, height;
    };
    Place PlaceOf(std::size_t index) const;

private:
    int _columns;
    int _width;
    int _height;
    std::size_t _used = 0;
    ArgbImage _sheet;
};

} // namespace kestrin_play
