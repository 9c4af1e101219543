/** Glyphs on 8-bit displays: palette indices for coverages. */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <array>
#include <cstddef>

namespace zelxxx {

/** Makes the indices for a colour once and keeps them for glyphs to come. */
class FlowRamps
{
public:
    using Ramp = std::array<UInt8, 256>; /**< a palette index for each coverage */

    /** Glyphs stand on one opaque colour, 0x00BBGGRR, or on what is not known. */
    void SetGround(bool known, ColorValue color);

    /** The ramp of a colour, 0x00BBGGRR, at an opacity; valid until the next call. */
    const Ramp& Find(ColorValue color, BlendValue blend);

private:
    /** More colours than this in turn are made anew. */
    static constexpr std::size_t kMostRamps = 16;

    struct Entry
    {
        bool made = false;
        ColorValue color = 0;
        BlendValue blend = 0;
        Ramp ramp = {};
    };

    UInt8 IndexOf(UInt32 rgb, UInt32 alpha) const;

    bool _has_ground = false;
    UInt32 _ground = 0; /**< 0x00RRGGBB */
    std::array<Entry, kMostRamps> _entries;
    std::size_t _oldest = 0;
};

/** Exchanges red and blue. */
constexpr UInt32 SwapRedAndBlue(UInt32 color)
{
    return (color & 0xff) << 16 | (color & 0xff00) | (color >> 16 & 0xff);
}

} // namespace zelxxx
