#include "palette.h"

#include <algorithm>
#include <array>

namespace kestrin_play {

using zelxxx::PaletteEntry;
using zelxxx::UInt8;

zelxxx::IPalette* CreateFixedPalette()
{
    constexpr UInt8 semi_opacity = 255 - 0x4C;
    constexpr UInt8 greys[] = {0x2A, 0x55, 0xAA, 0xD4};
    constexpr UInt8 cube_greens[] = {0, 31, 63, 95, 127, 159, 191, 223, 255};
    constexpr UInt8 cube_reds[] = {0, 63, 127, 191, 255};
    constexpr UInt8 cube_blues[] = {0, 127, 255};

    std::array<PaletteEntry, 256> entries = {};
    auto next = entries.begin() + 1;
    for (int green = 0; green < 6; ++green) {
        for (int red = 0; red < 4; ++red) {
            for (int blue = 0; blue < 2; ++blue)
                *next++ = {static_cast<UInt8>(85 * red), static_cast<UInt8>(51 * green),
                           static_cast<UInt8>(255 * blue), semi_opacity};
        }
    }
    for (const UInt8 grey : greys)
        *next++ = {grey, grey, grey, 255};
    for (const UInt8 red : cube_reds) {
        for (const UInt8 green : cube_greens) {
            for (const UInt8 blue : cube_blues)
                *next++ = {red, green, blue, 255};
        }
    }
    return zelxxx::zelCreatePalette(entries.data());
}

} // namespace kestrin_play
