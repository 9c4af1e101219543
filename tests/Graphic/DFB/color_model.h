/**
 * A model of the fixed palette's arithmetic, written without its tables: the palette by rule, the
 * nearest levels by search, blending by arithmetic.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

#include <cstdlib>
#include <vector>

namespace kestrin_test {

using zelxxx::UInt32;

using Levels = std::vector<int>;

inline const Levels kCubeRed = {0, 63, 127, 191, 255};
inline const Levels kCubeGreen = {0, 31, 63, 95, 127, 159, 191, 223, 255};
inline const Levels kCubeBlue = {0, 127, 255};
inline const Levels kGreys = {42, 85, 170, 212};
inline const Levels kSemiRed = {0, 85, 170, 255};
inline const Levels kSemiGreen = {0, 51, 102, 153, 204, 255};
inline const Levels kSemiBlue = {0, 255};

/** The level nearest to a value; the lower one when two are equally near. */
inline int Nearest(const Levels& levels, int value)
{
    int best = 0;
    for (int i = 1; i < static_cast<int>(levels.size()); ++i) {
        if (std::abs(levels[i] - value) < std::abs(levels[best] - value))
            best = i;
    }
    return best;
}

struct Rgb
{
    int red, green, blue;
    bool IsGrey() const { return red == green && green == blue; }
};

/** The colour behind an index, taken apart by the rule of its range. */
inline Rgb ColourOf(int index)
{
    if (index >= 53)
        return {kCubeRed[(index - 53) / 27], kCubeGreen[(index - 53) / 3 % 9],
                kCubeBlue[(index - 53) % 3]};
    if (index >= 49)
        return {kGreys[index - 49], kGreys[index - 49], kGreys[index - 49]};
    if (index == 0)
        return {0, 0, 0};
    return {kSemiRed[(index - 1) / 2 % 4], kSemiGreen[(index - 1) / 8], kSemiBlue[(index - 1) % 2]};
}

inline int NearestInCube(const Rgb& c)
{
    return 53 + 27 * Nearest(kCubeRed, c.red) + 3 * Nearest(kCubeGreen, c.green) +
           Nearest(kCubeBlue, c.blue);
}

inline int NearestOpaque(const Rgb& c)
{
    // Black, middle grey and white are the cube's.
    const bool grey =
        c.IsGrey() && ((c.red >= 22 && c.red <= 105) || (c.red >= 149 && c.red <= 232));
    return grey ? 49 + Nearest(kGreys, c.red) : NearestInCube(c);
}

inline int NearestSemi(const Rgb& c)
{
    // The one level that does not begin half-way: 72 to 76 already count as 102.
    const int green = c.green >= 72 && c.green <= 76 ? 2 : Nearest(kSemiGreen, c.green);
    return 1 + Nearest(kSemiBlue, c.blue) + 2 * Nearest(kSemiRed, c.red) + 8 * green;
}

inline int NearestIndex(UInt32 colour)
{
    const int alpha = static_cast<int>(colour >> 24);
    const Rgb c = {static_cast<int>(colour >> 16 & 255), static_cast<int>(colour >> 8 & 255),
                   static_cast<int>(colour & 255)};
    return alpha >= 231 ? NearestOpaque(c) : alpha < 25 ? 0 : NearestSemi(c);
}

/** `front` at opacity 255 - 0x4c over `back`. */
inline int Mix(int front, int back)
{
    return (front * 179 + back * 76) / 255;
}

inline int BlendModel(int back, int colour)
{
    if (colour == 0)
        return back;
    if (colour > 48 || back < 49 || back > 187)
        return colour;
    const Rgb f = ColourOf(colour);
    const Rgb b = ColourOf(back);
    // Over the two middle greys white comes out one step brighter or darker than the arithmetic.
    if (f.IsGrey() && f.red == 255 && (back == 50 || back == 51))
        return back == 50 ? 51 : 187;
    const Rgb mixed = {Mix(f.red, b.red), Mix(f.green, b.green), Mix(f.blue, b.blue)};
    const bool may_be_grey = back <= 53 || (f.IsGrey() && b.IsGrey());
    return may_be_grey ? NearestOpaque(mixed) : NearestInCube(mixed);
}

} // namespace kestrin_test
