/** Colours of pictures on palettes. */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <array>
#include <cstddef>
#include <vector>

namespace zelxxx {

/** A colour with its opacity, in bytes; not premultiplied. */
struct Rgba
{
    UInt8 r = 0, g = 0, b = 0, a = 0;

    UInt32 Word() const
    {
        return static_cast<UInt32>(a) << 24 | static_cast<UInt32>(r) << 16 |
               static_cast<UInt32>(g) << 8 | b;
    }
    /** The same with red, green and blue times the opacity, rounded to the nearest. */
    Rgba Premultiplied() const;
};

using Colors = std::array<Rgba, 256>;

Colors ColorsOf(IPalette* palette);

/**
 * Finds the entry of a palette that comes nearest to a colour: the one that differs least when both
 * are laid over black and over white, so that opacity counts as much as it shows. Of equal ones it
 * is the first.
 */
class ColorMatch
{
public:
    /** Null stands for the engine's fixed palette, whose colours the engine itself matches. */
    explicit ColorMatch(IPalette* palette);

    UInt8 IndexOf(const Rgba& color);

private:
    /** A colour that was asked for, since pictures repeat theirs. */
    struct Known
    {
        UInt32 word = 0;
        bool set = false;
        UInt8 index = 0;
    };

    UInt8 Nearest(const Rgba& color) const;

    bool _fixed;
    Colors _palette; /**< premultiplied */
    std::vector<Known> _known;
};

} // namespace zelxxx
