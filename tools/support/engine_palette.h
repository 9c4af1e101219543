/**
 * Palettes of the tools for the engine.
 */
#pragma once

#include "palette_file.h"

#include "vrel_kestrin_graphic.h"

namespace kestrin_tools {

/** The engine's palette of the same colours. Count 0. */
inline zelxxx::IPalette* CreatePalette(const Palette& palette)
{
    std::array<zelxxx::PaletteEntry, 256> entries = {};
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto channel = [&](unsigned shift) {
            return static_cast<zelxxx::UInt8>(palette[i] >> shift);
        };
        entries[i] = {channel(16), channel(8), channel(0), channel(24)};
    }
    return zelxxx::zelCreatePalette(entries.data());
}

} // namespace kestrin_tools
