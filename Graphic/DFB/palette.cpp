#include "palette.h"

#include <cstdio>

namespace zelxxx {

Palette::Palette(PaletteEntry* palette_entry)
{
    if (!palette_entry)
        return;
    for (DFBColor& color : _colors) {
        color.a = palette_entry->blending;
        color.r = palette_entry->red;
        color.g = palette_entry->green;
        color.b = palette_entry->blue;
        ++palette_entry;
    }
}

Palette::Palette(const char* file)
{
    std::FILE* stream = std::fopen(file, "rb");
    if (!stream)
        return;
    // Byte by byte: a file that ends within a record still sets the channels it has.
    for (DFBColor& color : _colors) {
        for (UInt8* channel : {&color.a, &color.r, &color.g, &color.b}) {
            const int byte = std::fgetc(stream);
            if (byte != EOF)
                *channel = static_cast<UInt8>(byte);
        }
    }
    std::fclose(stream);
}

IPalette* zelCreatePalette(PaletteEntry* palette_entry)
{
    return new Palette(palette_entry);
}

IPalette* zelCreatePalette(const char* file)
{
    return new Palette(file);
}

} // namespace zelxxx
