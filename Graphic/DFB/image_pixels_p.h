/** The layouts of pixels that clients hand in, and what they look like. */
#pragma once

#include "tbase.h"
#include "vrel_kestrin_graphic.h"

#include <cstddef>

namespace zelxxx {

/** Bytes in a row of pixels without padding. Of 1-bit rows only whole bytes count. */
std::size_t PixelRowBytes(ColorMode mode, int width);

/** Whether pixels are palette indices once unpacked. 1-bit ones are either, by their use. */
constexpr bool IsIndexed(ColorMode mode)
{
    return mode != Color16Bit && mode != Color24Bit && mode != Color32Bit;
}

/** Turns bytes R, G, B, A into words 0xAARRGGBB. */
void TakeRgba(const UInt8* bytes, std::size_t pixels, UInt32* words);

/** Pixels in memory, row after row without padding. */
class PixelReader
{
public:
    PixelReader(const UInt8* data, ColorMode mode, int width, int height,
                const MonoGlyphAttr& mono);

    /** Size of the picture: that of the pixels, for 1-bit pixels as magnified. */
    Int32 Width() const { return _picture_width; }
    Int32 Height() const { return _picture_height; }

    /** Part of a row as palette indices; for modes of up to 8 bits. Within the picture. */
    void Indices(Int32 x, Int32 y, Int32 count, UInt8* to) const;
    /** Part of a row as 0xAARRGGBB. `palette` has the 256 colours of 4- and 8-bit pixels. */
    void Colors(Int32 x, Int32 y, Int32 count, const UInt32* palette, UInt32* to) const;

private:
    bool MonoBit(Int32 x, Int32 y) const;
    UInt8 Index(const UInt8* row, Int32 x) const;

    const UInt8* _data;
    ColorMode _mode;
    std::size_t _row_bytes;
    std::size_t _size; /**< bytes in all */
    MonoGlyphAttr _mono;
    Int32 _picture_width, _picture_height;
};

} // namespace zelxxx
