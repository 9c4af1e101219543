#include "image_pixels_p.h"

#include <algorithm>
#include <cstring>

namespace zelxxx {

namespace {

constexpr UInt32 kOpaque = 0xff000000;

/** A channel of 5 or 6 bits widened to 8, so that all ones stay all ones. */
constexpr UInt32 Widen5(UInt32 channel)
{
    return channel << 3 | channel >> 2;
}
constexpr UInt32 Widen6(UInt32 channel)
{
    return channel << 2 | channel >> 4;
}

/** A little-endian RGB565 pixel. */
UInt32 From565(const UInt8* pixel)
{
    const UInt32 value = pixel[0] | static_cast<UInt32>(pixel[1]) << 8;
    return kOpaque | Widen5(value >> 11) << 16 | Widen6(value >> 5 & 0x3f) << 8 |
           Widen5(value & 0x1f);
}

UInt32 From888(const UInt8* pixel)
{
    return kOpaque | static_cast<UInt32>(pixel[0]) << 16 | static_cast<UInt32>(pixel[1]) << 8 |
           pixel[2];
}

/** A length times a magnification, as far as coordinates reach. */
Int32 Magnified(int length, Int32 factor)
{
    return static_cast<Int32>(std::min<int64_t>(int64_t{length} * factor, INT16_MAX));
}

} // namespace

std::size_t PixelRowBytes(ColorMode mode, int width)
{
    const auto pixels = static_cast<std::size_t>(width);
    switch (mode) {
    case Color1Bit:
        return pixels / 8;
    case Color4Bit:
        return (pixels + 1) / 2;
    case Color16Bit:
        return pixels * 2;
    case Color24Bit:
        return pixels * 3;
    case Color32Bit:
        return pixels * 4;
    default:
        return pixels;
    }
}

void TakeRgba(const UInt8* bytes, std::size_t pixels, UInt32* words)
{
    for (std::size_t i = 0; i < pixels; ++i, bytes += 4)
        words[i] = static_cast<UInt32>(bytes[3]) << 24 | static_cast<UInt32>(bytes[0]) << 16 |
                   static_cast<UInt32>(bytes[1]) << 8 | bytes[2];
}

PixelReader::PixelReader(const UInt8* data, ColorMode mode, int width, int height,
                         const MonoGlyphAttr& mono)
    : _data(data), _mode(mode), _row_bytes(PixelRowBytes(mode, width)), _size(_row_bytes * height),
      _mono(mono), _picture_width(width), _picture_height(height)
{
    if (mode != Color1Bit)
        return;
    if (_mono.rowbyte < 1)
        _mono.rowbyte = static_cast<Int32>(_row_bytes);
    _mono.hz = std::max(_mono.hz, 1);
    _mono.vz = std::max(_mono.vz, 1);
    _picture_width = Magnified(width, _mono.hz);
    _picture_height = Magnified(height, _mono.vz);
}

/** Clear for a bit that lies outside its row or the data. */
bool PixelReader::MonoBit(Int32 x, Int32 y) const
{
    const int64_t bit = int64_t{_mono.bitoffset} + x / _mono.hz;
    if (bit < 0 || bit >= int64_t{_mono.rowbyte} * 8)
        return false;
    const auto byte = static_cast<std::size_t>(int64_t{_mono.rowbyte} * (y / _mono.vz) + bit / 8);
    return byte < _size && (_data[byte] << bit % 8 & 0x80) != 0;
}

UInt8 PixelReader::Index(const UInt8* row, Int32 x) const
{
    if (_mode == Color4Bit)
        return x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0xf;
    return row[x];
}

void PixelReader::Indices(Int32 x, Int32 y, Int32 count, UInt8* to) const
{
    if (_mode == Color1Bit) {
        for (Int32 i = 0; i < count; ++i)
            to[i] = static_cast<UInt8>(MonoBit(x + i, y) ? _mono.fgcolor : _mono.bgcolor);
        return;
    }
    const UInt8* row = _data + _row_bytes * y;
    if (_mode == Color8Bit) {
        std::memcpy(to, row + x, static_cast<std::size_t>(count));
        return;
    }
    for (Int32 i = 0; i < count; ++i)
        to[i] = Index(row, x + i);
}

void PixelReader::Colors(Int32 x, Int32 y, Int32 count, const UInt32* palette, UInt32* to) const
{
    const UInt8* row = _data + _row_bytes * y;
    switch (_mode) {
    case Color1Bit:
        for (Int32 i = 0; i < count; ++i)
            to[i] = static_cast<UInt32>(MonoBit(x + i, y) ? _mono.fgcolor : _mono.bgcolor);
        break;
    case Color16Bit:
        for (Int32 i = 0; i < count; ++i)
            to[i] = From565(row + 2 * std::ptrdiff_t{x + i});
        break;
    case Color24Bit:
        for (Int32 i = 0; i < count; ++i)
            to[i] = From888(row + 3 * std::ptrdiff_t{x + i});
        break;
    case Color32Bit:
        std::memcpy(to, row + 4 * std::ptrdiff_t{x}, 4 * static_cast<std::size_t>(count));
        break;
    default:
        for (Int32 i = 0; i < count; ++i)
            to[i] = palette[Index(row, x + i)];
        break;
    }
}

} // namespace zelxxx
