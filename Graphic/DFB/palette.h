/** The colours of an 8-bit display. */
#pragma once

#include "tbase.h"
#include "vrel_kestrin_graphic.h"

#include <directfb.h>

namespace zelxxx {

/** 256 colours in DirectFB's own layout, ready for the display's palette. */
class Palette : public ZELObject<IPalette, Palette>
{
public:
    /** Copies 256 entries; null leaves every colour transparent black. */
    explicit Palette(PaletteEntry* palette_entry);
    /**
     * Reads a palette file: 256 records of alpha, red, green and blue, one byte each. What the file
     * does not hold stays transparent black; nothing is reported.
     */
    explicit Palette(const char* file);

    int GetColorCount() override { return kColorCount; }
    UInt8 GetColorRed(UInt8 index) override { return _colors[index].r; }
    UInt8 GetColorGreen(UInt8 index) override { return _colors[index].g; }
    UInt8 GetColorBlue(UInt8 index) override { return _colors[index].b; }
    BlendValue GetColorBlending(UInt8 index) override { return _colors[index].a; }

    /** The colours themselves, kColorCount of them. */
    DFBColor* GetColors() { return _colors; }
    /** True, also after a file that could not be read. */
    bool IsAvailable() const { return true; }

    static constexpr int kColorCount = 256;

private:
    DFBColor _colors[kColorCount] = {};
};

} // namespace zelxxx
