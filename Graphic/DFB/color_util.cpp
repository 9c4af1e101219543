#include "color_util.h"

#include "tdebug.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zelxxx {

namespace {

constexpr UInt8 kTransparent = 0;
constexpr UInt8 kFirstSemi = 1;
constexpr UInt8 kFirstGrey = 49; // also the first opaque index
constexpr UInt8 kFirstCube = 53;
constexpr UInt8 kBlack = kFirstCube;
constexpr UInt8 kWhite = kMhegColorCount - 1;
constexpr UInt32 kSemiTransparency = 0x4c;

using MhegPalette = std::array<UInt32, kMhegColorCount>;

constexpr UInt32 Rgb(UInt32 red, UInt32 green, UInt32 blue)
{
    return red << 16 | green << 8 | blue;
}

constexpr UInt8 front_red[] = {0, 85, 170, 255};
constexpr UInt8 front_green[] = {0, 51, 102, 153, 204, 255};
constexpr UInt8 front_blue[] = {0, 255};
constexpr UInt8 grey_levels[] = {0x2a, 0x55, 0xaa, 0xd4};
constexpr UInt8 cube_red[] = {0, 63, 127, 191, 255};
constexpr UInt8 cube_green[] = {0, 31, 63, 95, 127, 159, 191, 223, 255};
constexpr UInt8 cube_blue[] = {0, 127, 255};

/** Blue varies fastest; then red within the semi-transparent colours, green within the cube. */
constexpr MhegPalette MakePalette()
{
    MhegPalette palette = {};
    std::size_t index = 0;
    palette[index++] = 0xff000000;
    for (const UInt8 green : front_green)
        for (const UInt8 red : front_red)
            for (const UInt8 blue : front_blue)
                palette[index++] = kSemiTransparency << 24 | Rgb(red, green, blue);
    for (const UInt8 grey : grey_levels)
        palette[index++] = Rgb(grey, grey, grey);
    for (const UInt8 red : cube_red)
        for (const UInt8 green : cube_green)
            for (const UInt8 blue : cube_blue)
                palette[index++] = Rgb(red, green, blue);
    return palette;
}

constexpr MhegPalette mheg_palette = MakePalette();

// Channel values of a background colour, by the top bits of the channel.
constexpr UInt8 back_red[] = {0, 63, 63, 127, 127, 191, 191, 255};
constexpr UInt8 back_green[] = {0,   31,  31,  63,  63,  95,  95,  127,
                                127, 159, 159, 191, 191, 223, 223, 255};
constexpr UInt8 back_blue[] = {0, 127, 127, 255};

// A semi-transparent colour over black, by its level.
constexpr UInt8 black_red_blend[] = {0, 59, 119, 179};
constexpr UInt8 black_green_blend[] = {0, 35, 71, 107, 143, 179};
constexpr UInt8 black_blue_blend[] = {0, 179};

// Over one of the four greys: a row for each level, a column for each grey.
constexpr UInt8 grey_grey_blend[] = {53, 49, 49, 49, 51, 51, 187, 187};
constexpr UInt8 grey_red_blend[] = {12,  25,  50,  63,  72,  85,  110, 122,
                                    131, 144, 170, 182, 191, 204, 229, 242};
constexpr UInt8 grey_green_blend[] = {12,  25,  50,  63,  48,  61,  86,  98,  84,  96,  122, 134,
                                      119, 132, 158, 170, 155, 168, 193, 206, 191, 204, 229, 242};
constexpr UInt8 grey_blue_blend[] = {12, 25, 50, 63, 191, 204, 229, 242};

// Over a colour of the cube: shares of the resulting index, a row for each front level and a column
// for each value of the background channel's top bits.
constexpr UInt8 opaque_grey_blend[] = {53, 49, 49, 50, 51, 52, 52, 187};
constexpr UInt8 red_blend[] = {0,  0,  0,  27, 27, 27, 27, 27, 27, 27, 27, 54, 54, 54,  54,  54,
                               54, 54, 54, 54, 54, 81, 81, 81, 81, 81, 81, 81, 81, 108, 108, 108};
constexpr UInt8 green_blend[] = {0,  0,  0,  3,  3,  3,  3,  3,  3,  3,  3,  6,  6,  6,  6,  6,  //
                                 3,  3,  3,  6,  6,  6,  6,  6,  6,  9,  9,  9,  9,  9,  9,  9,  //
                                 6,  9,  9,  9,  9,  9,  9,  9,  9,  12, 12, 12, 12, 12, 12, 15, //
                                 9,  12, 12, 12, 12, 12, 12, 15, 15, 15, 15, 15, 15, 15, 15, 18, //
                                 12, 15, 15, 15, 15, 15, 15, 18, 18, 18, 18, 18, 18, 21, 21, 21, //
                                 18, 18, 18, 18, 18, 18, 18, 21, 21, 21, 21, 21, 21, 24, 24, 24};
constexpr UInt8 blue_blend[] = {0, 0, 0, 1, 1, 2, 2, 2};

static_assert(sizeof red_blend == 4 * 8 && sizeof green_blend == 6 * 16);

/** The levels of a semi-transparent palette colour. */
struct FrontLevels
{
    explicit FrontLevels(UInt8 colour)
        : red((colour - kFirstSemi) >> 1 & 3), green((colour - kFirstSemi) >> 3 & 31),
          blue((colour - kFirstSemi) & 1)
    {
    }
    bool IsGrey() const
    {
        return front_red[red] == front_green[green] && front_green[green] == front_blue[blue];
    }
    int red, green, blue;
};

UInt8 FindOpaque(UInt32 red, UInt32 green, UInt32 blue)
{
    return OSD_FindNearestColourIndex(0xff000000 | Rgb(red, green, blue));
}

UInt8 BlendOverGrey(const FrontLevels& front, UInt32 back)
{
    const int grey = back >> 6 & 3;
    if (front.IsGrey())
        return grey_grey_blend[4 * front.blue + grey];
    return FindOpaque(grey_red_blend[4 * front.red + grey],
                      grey_green_blend[4 * front.green + grey],
                      grey_blue_blend[4 * front.blue + grey]);
}

UInt8 BlendOverCube(const FrontLevels& front, UInt32 back)
{
    const int red = back >> 21 & 7;
    const int green = back >> 12 & 15;
    const int blue = back >> 6 & 3;
    const bool back_grey =
        back_red[red] == back_green[green] && back_green[green] == back_blue[blue];
    if (back_grey && front.IsGrey())
        return opaque_grey_blend[4 * front.blue + blue];
    return kFirstCube + green_blend[16 * front.green + green] + red_blend[8 * front.red + red] +
           blue_blend[4 * front.blue + blue];
}

/** The index that shows palette colour `colour`, not transparent, over index `back`. */
UInt8 Blend(UInt8 back, UInt8 colour)
{
    // Only an opaque background shines through; indices above the palette count as none.
    if (colour >= kFirstGrey || back < kFirstGrey || back > kWhite)
        return colour;
    const FrontLevels front(colour);
    if (back == kBlack)
        return FindOpaque(black_red_blend[front.red], black_green_blend[front.green],
                          black_blue_blend[front.blue]);
    if (back < kFirstCube)
        return BlendOverGrey(front, mheg_palette[back]);
    return BlendOverCube(front, mheg_palette[back]);
}

/**
 * Blend for all translucent colours, a row each, over all that can be on a surface; the first row,
 * of colour 0, leaves what is there. Loops over pixels use this instead of OSD_BlendPixels.
 */
class BlendTable
{
public:
    static const BlendTable& Get()
    {
        static const BlendTable table;
        return table;
    }
    /** Over a background, indexed by it. Of the colours below kFirstGrey. */
    const UInt8* RowOf(UInt8 colour) const { return _results[colour]; }
    void Apply(UInt8* pixel, UInt8 colour) const
    {
        // Pictures and glyphs have runs of the one and of the other.
        if (colour >= kFirstGrey)
            *pixel = colour;
        else if (colour != kTransparent)
            *pixel = _results[colour][*pixel];
    }

private:
    BlendTable() : _results()
    {
        for (int back = 0; back < 256; ++back) {
            _results[kTransparent][back] = static_cast<UInt8>(back);
            for (UInt8 colour = kFirstSemi; colour < kFirstGrey; ++colour)
                _results[colour][back] = Blend(static_cast<UInt8>(back), colour);
        }
    }

    UInt8 _results[kFirstGrey][256];
};

UInt8 FindNearest(UInt32 colour)
{
    const UInt8 transparency = static_cast<UInt8>(~(colour >> 24));
    const UInt8 red = static_cast<UInt8>(colour >> 16);
    const UInt8 green = static_cast<UInt8>(colour >> 8);
    const UInt8 blue = static_cast<UInt8>(colour);
    if (transparency <= 24) {
        // The cube has a black, a middle grey and a white of its own.
        const bool between = (red >= 22 && red <= 105) || (red >= 149 && red <= 232);
        if (red == green && green == blue && between)
            return kFirstGrey + GetNearestGrey(red);
        return static_cast<UInt8>(kFirstCube + GetNearestRed(red) + GetNearestGreen(green) +
                                  GetNearestBlue(blue));
    }
    if (transparency > 230)
        return kTransparent;
    return kFirstSemi + GetNearestSemiRed(red) + GetNearestSemiGreen(green) +
           GetNearestSemiBlue(blue);
}

/** Columns or rows of a bitmap that fall on a destination: first <= i < last; may be empty. */
struct Span
{
    int64_t first, last;
    /** Of `length` from `position` on, what lies within 0 to `room`. */
    Span(Int32 position, Int32 length, int room)
        : first(std::max<int64_t>(0, -int64_t{position})),
          last(std::min<int64_t>(length, int64_t{room} - position))
    {
    }
    /** Also cut at a source that is read from `position` on. */
    void CutAt(Int32 position, int room)
    {
        first = std::max(first, -int64_t{position});
        last = std::min(last, int64_t{room} - position);
    }
    int64_t Length() const { return last - first; }
};

/** Draws a row of palette colours over another. */
void BlendRow(UInt8* pixels, const UInt8* colours, int64_t count)
{
    const BlendTable& table = BlendTable::Get();
    for (int64_t i = 0; i < count; ++i)
        table.Apply(pixels + i, colours[i]);
}

/** Draws one palette colour over a row. */
void BlendRow(UInt8* pixels, UInt8 colour, int64_t count)
{
    if (colour >= kFirstGrey) {
        std::memset(pixels, colour, static_cast<std::size_t>(count));
        return;
    }
    const UInt8* results = BlendTable::Get().RowOf(colour);
    for (int64_t i = 0; i < count; ++i)
        pixels[i] = results[pixels[i]];
}

/** The row of a locked surface or bitmap. */
UInt8* Row(void* pixels, std::ptrdiff_t pitch, int64_t row)
{
    return static_cast<UInt8*>(pixels) + static_cast<std::ptrdiff_t>(row) * pitch;
}

} // namespace

UInt32 MhegPaletteWord(UInt8 index)
{
    return mheg_palette[index];
}

UInt8 GetNearestGrey(UInt8 v)
{
    return v >> 6;
}

UInt8 GetNearestRed(UInt8 v)
{
    static constexpr UInt8 share[] = {0, 27, 27, 54, 54, 81, 81, 108};
    return share[v >> 5];
}

UInt8 GetNearestGreen(UInt8 v)
{
    static constexpr UInt8 share[] = {0, 3, 3, 6, 6, 9, 9, 12, 12, 15, 15, 18, 18, 21, 21, 24};
    return share[v >> 4];
}

UInt8 GetNearestBlue(UInt8 v)
{
    static constexpr UInt8 share[] = {0, 1, 1, 2};
    return share[v >> 6];
}

UInt8 GetNearestSemiRed(UInt8 v)
{
    return v < 43 ? 0 : v < 128 ? 2 : v < 213 ? 4 : 6;
}

UInt8 GetNearestSemiGreen(UInt8 v)
{
    return v < 26 ? 0 : v < 72 ? 8 : v < 128 ? 16 : v < 179 ? 24 : v < 230 ? 32 : 40;
}

UInt8 GetNearestSemiBlue(UInt8 v)
{
    return v >> 7;
}

UInt8 OSD_FindNearestColourIndex(UInt32 colour)
{
    // A fully transparent black is index 0, so the first entry is as good as a computed one.
    static UInt32 last_colour = 0;
    static UInt8 last_index = kTransparent;
    if (colour != last_colour) {
        last_index = FindNearest(colour);
        last_colour = colour;
    }
    return last_index;
}

void OSD_BlendPixels(UInt8* pixel, UInt8 colour)
{
    struct Entry
    {
        UInt8 back, colour, result;
    };
    // Colour 0 is never looked up, so fresh entries answer nothing.
    static Entry cache[2] = {};
    static unsigned oldest = 0;

    if (colour == kTransparent)
        return;
    for (const Entry& entry : cache) {
        if (entry.back == *pixel && entry.colour == colour) {
            *pixel = entry.result;
            return;
        }
    }
    const UInt8 result = Blend(*pixel, colour);
    cache[oldest] = {*pixel, colour, result};
    oldest ^= 1;
    *pixel = result;
}

void MHEG_displayRectangle(IDirectFBSurface* dest_surf, Int32 x1, Int32 y1, Int32 x2, Int32 y2,
                           Int32 color)
{
    if (!dest_surf || x1 < 0 || y1 < 0 || x2 < x1 || y2 < y1 || color == kTransparent)
        return;
    if (color >= kFirstGrey && color <= kWhite) {
        DFBCHECK(dest_surf->SetDrawingFlags(dest_surf, DSDRAW_NOFX));
        DFBCHECK(dest_surf->SetPorterDuff(dest_surf, DSPD_NONE));
        DFBCHECK(dest_surf->SetColorIndex(dest_surf, color));
        DFBCHECK(dest_surf->FillRectangle(dest_surf, x1, y1, x2 - x1 + 1, y2 - y1 + 1));
        return;
    }
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(dest_surf->Lock(dest_surf, DSLF_WRITE, &surf_data, &ret_pitch));
    for (Int32 y = y1; y <= y2; ++y)
        BlendRow(Row(surf_data, ret_pitch, y) + x1, static_cast<UInt8>(color),
                 int64_t{x2} - x1 + 1);
    DFBCHECK(dest_surf->Unlock(dest_surf));
}

void MHEG_draw_bitmap(IDirectFBSurface* dest_surf, Int32 X, Int32 Y, Int32 row_byte, Int32 width,
                      Int32 height, UInt8* src_img, Int32 SrcX, Int32 SrcY)
{
    void* surf_data = nullptr;
    int ret_pitch = 0;
    int room_x = 0;
    int room_y = 0;
    DFBCHECK(dest_surf->Lock(dest_surf, DSLF_WRITE, &surf_data, &ret_pitch));
    dest_surf->GetSize(dest_surf, &room_x, &room_y);
    const Span columns(X, width, room_x);
    const Span rows(Y, height, room_y);
    for (int64_t row = rows.first; columns.Length() > 0 && row < rows.last; ++row) {
        const UInt8* source = Row(src_img, row_byte, SrcY + row);
        UInt8* pixels = Row(surf_data, ret_pitch, Y + row);
        BlendRow(pixels + (X + columns.first), source + (SrcX + columns.first), columns.Length());
    }
    DFBCHECK(dest_surf->Unlock(dest_surf));
}

void MHEG_draw_bitmap(IDirectFBSurface* dest_surf, Int32 X, Int32 Y, Int32 width, Int32 height,
                      IDirectFBSurface* src_surf, Int32 SrcX, Int32 SrcY)
{
    void* surf_data_dst = nullptr;
    void* surf_data_src = nullptr;
    int ret_pitch_dst = 0;
    int ret_pitch_src = 0;
    int room_x = 0;
    int room_y = 0;
    DFBCHECK(dest_surf->Lock(dest_surf, DSLF_WRITE, &surf_data_dst, &ret_pitch_dst));
    DFBCHECK(src_surf->Lock(src_surf, DSLF_READ, &surf_data_src, &ret_pitch_src));
    dest_surf->GetSize(dest_surf, &room_x, &room_y);
    Span columns(X, width, room_x);
    Span rows(Y, height, room_y);
    src_surf->GetSize(src_surf, &room_x, &room_y);
    columns.CutAt(SrcX, room_x);
    rows.CutAt(SrcY, room_y);
    for (int64_t row = rows.first; columns.Length() > 0 && row < rows.last; ++row) {
        const UInt8* source = Row(surf_data_src, ret_pitch_src, SrcY + row);
        UInt8* pixels = Row(surf_data_dst, ret_pitch_dst, Y + row);
        BlendRow(pixels + (X + columns.first), source + (SrcX + columns.first), columns.Length());
    }
    DFBCHECK(src_surf->Unlock(src_surf));
    DFBCHECK(dest_surf->Unlock(dest_surf));
}

} // namespace zelxxx
