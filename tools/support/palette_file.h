/**
 * Palettes of 8-bit displays: the fixed one, palette files, and palettes that drawing programs
 * write.
 *
 * A palette file has no header: 256 records of alpha, red, green and blue, a byte each, 1024 bytes
 * in all. Alpha is the opacity, 255 opaque.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrin_tools {

/** The colours of indices 0 to 255, each 0xAARRGGBB; transparent black where there is none. */
using Palette = std::array<std::uint32_t, 256>;

constexpr std::size_t palette_file_size = 1024;

/** A palette cannot be read; what() names the file, the reason and, where there is one, a line. */
class PaletteError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/**
 * The palette that the engine's 8-bit blending is made for, in 188 entries: 0 transparent, 48
 * colours at 70 % opacity, 4 greys, a cube of 135 colours. The rest is transparent.
 */
Palette FixedPalette();

/** What a palette file holds, as the engine takes it. */
struct PaletteReport
{
    std::size_t size = 0; ///< bytes in the file
    Palette palette = {};
    std::vector<std::string> damage; ///< in words, each a sentence without its stop; empty: sound
};

/** Looks at a palette file, also a damaged one. Throws PaletteError when there is none to read. */
PaletteReport InspectPalette(const std::string& path);

/** Reads a sound palette file. */
Palette ReadPalette(const std::string& path);

/** The 1024 bytes of a palette file. */
std::string PackPalette(const Palette& palette);

/** A palette of a drawing program. */
struct GimpPalette
{
    std::string name; ///< empty when the file gives none
    Palette palette = {};
    int count = 0; ///< colours, which have the indices from 0 on and are opaque
};

/** Whether a file begins like a GIMP palette (.gpl). False for one that cannot be read. */
bool IsGimpPalette(const std::string& path);

/** Reads a GIMP palette; a line that is no colour, name or comment is an error. */
GimpPalette ReadGimpPalette(const std::string& path);

} // namespace kestrin_tools
