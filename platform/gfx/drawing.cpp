#include "drawing.h"

#include "palette_table.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace kestrin_gfx {
namespace {

constexpr unsigned blit_image = DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA;
constexpr unsigned blit_straight =
    DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY | DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY;

constexpr unsigned blit_covered = DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_COLORIZE;

constexpr std::uint32_t Pixel(unsigned a, unsigned r, unsigned g, unsigned b)
{
    return a << 24 | r << 16 | g << 8 | b;
}

std::uint32_t PixelOf(const DFBColor& color)
{
    return Pixel(color.a, color.r, color.g, color.b);
}

bool IsIndexed(const CoreSurface& surface)
{
    return surface.config.format == DSPF_LUT8;
}

bool IsKnown(const CoreSurface& surface)
{
    if ((surface.config.caps & DSCAPS_SEPARATED) != 0)
        return false;
    return surface.config.format == DSPF_ARGB ||
           (IsIndexed(surface) && surface.palette != nullptr &&
            surface.palette->num_entries == palette_size);
}

bool IsCoverage(const CoreSurface& surface)
{
    return surface.config.format == DSPF_A8 && (surface.config.caps & DSCAPS_SEPARATED) == 0;
}

int BytesPerPixel(DFBSurfacePixelFormat format)
{
    return format == DSPF_ARGB ? 4 : 1;
}

bool IsSourceOver(const CardState& state)
{
    return state.src_blend == DSBF_ONE && state.dst_blend == DSBF_INVSRCALPHA;
}

bool IsStraightOver(const CardState& state)
{
    return state.src_blend == DSBF_SRCALPHA && state.dst_blend == DSBF_INVSRCALPHA;
}

std::uint8_t NearestIndex(CorePalette* palette, std::uint32_t pixel)
{
    return static_cast<std::uint8_t>(
        dfb_palette_search(palette, static_cast<u8>(pixel >> 16), static_cast<u8>(pixel >> 8),
                           static_cast<u8>(pixel), static_cast<u8>(pixel >> 24)));
}

// A row of one pixel, or of many.

Target RowOf(std::uint32_t* pixels)
{
    return {reinterpret_cast<std::uint8_t*>(pixels), 0};
}

Source SourceRowOf(const std::uint32_t* pixels)
{
    return {reinterpret_cast<const std::uint8_t*>(pixels), 0};
}

} // namespace

bool Drawing::CanDo(const CardState& state, DFBAccelerationMask operation)
{
    if ((operation & operations) == 0 || state.render_options != DSRO_NONE ||
        !IsKnown(*state.destination))
        return false;
    if (operation == DFXL_FILLRECTANGLE)
        return FillOf(state) != Fill::None;
    if (!IsKnown(*state.source) && !IsCoverage(*state.source))
        return false;
    return operation == DFXL_BLIT ? CopyOf(state) != Copy::None : IsStretchUnder(state);
}

Drawing::Fill Drawing::FillOf(const CardState& state)
{
    if (state.drawingflags == DSDRAW_NOFX)
        return Fill::Opaque;
    if (state.drawingflags != DSDRAW_BLEND)
        return Fill::None;
    if (state.src_blend == DSBF_ONE && state.dst_blend == DSBF_ZERO)
        return Fill::Opaque;
    if (IsSourceOver(state))
        return Fill::Over;
    return IsStraightOver(state) ? Fill::Straight : Fill::None;
}

Drawing::Copy Drawing::CopyOf(const CardState& state)
{
    const auto flags = static_cast<unsigned>(state.blittingflags);
    const bool indices = IsIndexed(*state.source);
    if (IsCoverage(*state.source)) {
        if (!IsStraightOver(state) || IsIndexed(*state.destination))
            return Copy::None;
        if (flags == blit_covered)
            return Copy::Covered;
        return flags == (blit_covered | blit_image) ? Copy::CoveredFaded : Copy::None;
    }
    if (IsIndexed(*state.destination) && !indices)
        return Copy::None;
    if (flags == DSBLIT_NOFX)
        return Copy::Opaque;
    if (flags == DSBLIT_SRC_COLORKEY)
        return Copy::Keyed;
    if (!IsSourceOver(state))
        return Copy::None;
    // DirectFB's loop for this one alone lets sums run over, and only from ARGB.
    if (flags == DSBLIT_BLEND_ALPHACHANNEL)
        return indices ? Copy::Faded : Copy::Over;
    if (flags == blit_image)
        return Copy::Faded;
    return flags == blit_straight ? Copy::Straight : Copy::None;
}

bool Drawing::IsStretchUnder(const CardState& state)
{
    return state.blittingflags == DSBLIT_BLEND_ALPHACHANNEL &&
           state.src_blend == DSBF_INVDESTALPHA && state.dst_blend == DSBF_ONE &&
           state.source->config.format == DSPF_ARGB;
}

void Drawing::Open(const Kernels& kernels)
{
    _kernels = &kernels;
    _pairs = new (std::nothrow) PairTable;
}

void Drawing::Close()
{
    delete _pairs;
    _pairs = nullptr;
}

void Drawing::Prepare(CardState& state, DFBAccelerationMask operation)
{
    _target = {static_cast<std::uint8_t*>(state.dst.addr), static_cast<int>(state.dst.pitch)};
    _target_format = state.destination->config.format;
    _target_palette = state.destination->palette;
    _clip = state.clip;
    if (operation == DFXL_FILLRECTANGLE)
        PrepareFill(state);
    else
        PrepareBlit(state);
}

void Drawing::PrepareFill(const CardState& state)
{
    const DFBColor& color = state.color;
    _fill = FillOf(state);
    _pixel = _target_format == DSPF_LUT8 ? state.color_index & 0xff : PixelOf(color);
    _keep = 256U - color.a;
    _added = PixelOf(color);
    if (_fill == Fill::Straight) {
        const unsigned factor = color.a + 1U;
        _added = Pixel(color.a * factor >> 8, color.r * factor >> 8, color.g * factor >> 8,
                       color.b * factor >> 8);
    }
    if (_fill != Fill::Opaque && _keep == 1 && _target_format == DSPF_ARGB) {
        // A 256th of what is there is nothing.
        _fill = Fill::Opaque;
        _pixel = _added;
    }
}

void Drawing::PrepareBlit(const CardState& state)
{
    _source = {static_cast<const std::uint8_t*>(state.src.addr), static_cast<int>(state.src.pitch)};
    _source_format = state.source->config.format;
    _source_palette = state.source->palette;
    _copy = CopyOf(state);
    _opacity = (state.blittingflags & DSBLIT_BLEND_COLORALPHA) != 0 ? state.color.a + 1U : 256;
    _key = state.src_colorkey;
    _pixel = PixelOf(state.color);
}

Target Drawing::At(int x, int y) const
{
    return {_target.start + y * _target.pitch + std::ptrdiff_t{x} * BytesPerPixel(_target_format),
            _target.pitch};
}

Source Drawing::From(int x, int y) const
{
    return {_source.start + y * _source.pitch + std::ptrdiff_t{x} * BytesPerPixel(_source_format),
            _source.pitch};
}

Size Drawing::Bytes(const Size& pixels) const
{
    return {pixels.width * BytesPerPixel(_target_format), pixels.height};
}

bool Drawing::FillRectangle(const DFBRectangle& area) const
{
    const Size size = {area.w, area.h};
    const Target to = At(area.x, area.y);
    const bool indices = _target_format == DSPF_LUT8;
    if (_fill == Fill::Opaque && indices)
        _kernels->fill_bytes(to, size, static_cast<std::uint8_t>(_pixel));
    else if (_fill == Fill::Opaque)
        _kernels->fill(to, size, _pixel);
    else if (indices)
        FillIndicesOver(to, size);
    else
        _kernels->fill_over(to, size, _added, _keep);
    return true;
}

/** Blends with the colours behind palette indices and takes the nearest that the palette has. */
void Drawing::FillIndicesOver(Target to, Size size) const
{
    IndexTable table;
    const auto blended = [this](std::uint8_t index) {
        std::uint32_t pixel = PixelOf(_target_palette->entries[index]);
        _kernels->fill_over(RowOf(&pixel), {1, 1}, _added, _keep);
        return NearestIndex(_target_palette, pixel);
    };
    for (int y = 0; y < size.height; ++y, to.start += to.pitch) {
        for (int x = 0; x < size.width; ++x)
            to.start[x] = table(to.start[x], blended);
    }
}

bool Drawing::Blit(const DFBRectangle& from, int x, int y) const
{
    const Size size = {from.w, from.h};
    const Target to = At(x, y);
    const Source source = From(from.x, from.y);
    if (_source.start == _target.start)
        return BlitInPlace(from, x, y);
    if (_copy == Copy::Keyed) {
        // DirectFB's own loops do not agree on keys that no pixel can have.
        if (_key > (_source_format == DSPF_LUT8 ? 0xffU : 0xffffffU))
            return false;
        if (_target_format == DSPF_LUT8 && !dfb_palette_equal(_target_palette, _source_palette))
            return false;
    }
    const bool blends = _copy != Copy::Opaque && _copy != Copy::Keyed;
    if (_target_format == DSPF_LUT8 && blends && _pairs == nullptr)
        return false;

    if (_target_format != DSPF_LUT8 && _source_format == DSPF_LUT8)
        BlitFromPalette(to, source, size);
    else if (_target_format != DSPF_LUT8)
        BlitPixels(to, source, size);
    else if (blends)
        BlendIndices(to, source, size);
    else
        BlitIndices(to, source, size);
    return true;
}

/** Moves a part of a surface; blending within one is DirectFB's. */
bool Drawing::BlitInPlace(const DFBRectangle& from, int x, int y) const
{
    if (_copy != Copy::Opaque || _target_format != _source_format)
        return false;
    const bool upwards = y > from.y;
    const int last = upwards ? from.h - 1 : 0;
    const std::ptrdiff_t step = upwards ? -_target.pitch : _target.pitch;
    const auto bytes = static_cast<std::size_t>(Bytes({from.w, 1}).width);
    std::uint8_t* to = At(x, y + last).start;
    const std::uint8_t* row = From(from.x, from.y + last).start;
    for (int i = 0; i < from.h; ++i, to += step, row += step)
        std::memmove(to, row, bytes);
    return true;
}

void Drawing::BlitPixels(Target to, Source from, Size size) const
{
    switch (_copy) {
    case Copy::Keyed:
        _kernels->blit_keyed(to, from, size, _key);
        break;
    case Copy::Over:
        _kernels->blit_over(to, from, size);
        break;
    case Copy::Faded:
        _kernels->blit_faded(to, from, size, _opacity);
        break;
    case Copy::Straight:
        _kernels->blit_straight(to, from, size);
        break;
    case Copy::Covered:
        _kernels->blit_covered(to, from, size, _pixel);
        break;
    case Copy::CoveredFaded:
        _kernels->blit_covered_faded(to, from, size, _pixel, _opacity);
        break;
    default:
        _kernels->copy(to, from, Bytes(size));
    }
}

/** Puts the colours behind palette indices onto a target of colours. */
void Drawing::BlitFromPalette(Target to, Source from, Size size) const
{
    constexpr int part = 256;
    const DFBColor* colors = _source_palette->entries;
    for (int y = 0; y < size.height; ++y, to.start += to.pitch, from.start += from.pitch) {
        for (int x = 0; x < size.width; x += part) {
            const int width = std::min(part, size.width - x);
            std::uint32_t row[part];
            auto* target = reinterpret_cast<std::uint32_t*>(to.start) + x;
            const std::uint8_t* indices = from.start + x;
            if (_copy == Copy::Keyed) {
                for (int i = 0; i < width; ++i)
                    target[i] = indices[i] == _key ? target[i] : PixelOf(colors[indices[i]]);
                continue;
            }
            std::uint32_t* expanded = _copy == Copy::Opaque ? target : row;
            for (int i = 0; i < width; ++i)
                expanded[i] = PixelOf(colors[indices[i]]);
            if (_copy != Copy::Opaque)
                BlitPixels(RowOf(target), SourceRowOf(row), {width, 1});
        }
    }
}

void Drawing::BlitIndices(Target to, Source from, Size size) const
{
    if (_copy == Copy::Keyed) {
        _kernels->blit_keyed_bytes(to, from, size, static_cast<std::uint8_t>(_key));
        return;
    }
    if (dfb_palette_equal(_target_palette, _source_palette)) {
        _kernels->copy(to, from, size);
        return;
    }
    IndexTable table;
    const auto converted = [this](std::uint8_t index) {
        return NearestIndex(_target_palette, PixelOf(_source_palette->entries[index]));
    };
    for (int y = 0; y < size.height; ++y, to.start += to.pitch, from.start += from.pitch) {
        for (int x = 0; x < size.width; ++x)
            to.start[x] = table(from.start[x], converted);
    }
}

/** Blends the colours behind palette indices and takes the nearest that the palette has. */
void Drawing::BlendIndices(Target to, Source from, Size size) const
{
    _pairs->Use(*_target_palette, *_source_palette,
                _opacity << 1 | (_copy == Copy::Straight ? 1U : 0U));
    const auto blended = [this](std::uint8_t old, std::uint8_t index) {
        std::uint32_t pixel = PixelOf(_target_palette->entries[old]);
        const std::uint32_t source = PixelOf(_source_palette->entries[index]);
        BlitPixels(RowOf(&pixel), SourceRowOf(&source), {1, 1});
        return NearestIndex(_target_palette, pixel);
    };
    for (int y = 0; y < size.height; ++y, to.start += to.pitch, from.start += from.pitch) {
        for (int x = 0; x < size.width; ++x)
            to.start[x] = (*_pairs)(to.start[x], from.start[x], blended);
    }
}

/**
 * Puts colours below a row of palette indices and takes the nearest that the palette has. Below
 * opaque ones, and where there is nothing to put, that depends on the index alone.
 */
void Drawing::PutUnderIndices(std::uint8_t* to, const std::uint32_t* from, int count,
                              IndexTable& alone) const
{
    const DFBColor* colors = _target_palette->entries;
    int last = -1; // an index above `last_from`, and what they became
    std::uint32_t last_from = 0;
    std::uint8_t last_result = 0;
    for (int i = 0; i < count; ++i) {
        const std::uint8_t index = to[i];
        if (from[i] == 0 || colors[index].a == 255) {
            to[i] = alone(index, [&](std::uint8_t kept) {
                return NearestIndex(_target_palette, PixelOf(colors[kept]));
            });
            continue;
        }
        if (index != last || from[i] != last_from) {
            std::uint32_t pixel = PixelOf(colors[index]);
            _kernels->blit_under(RowOf(&pixel), SourceRowOf(&from[i]), {1, 1});
            last_result = NearestIndex(_target_palette, pixel);
            last = index;
            last_from = from[i];
        }
        to[i] = last_result;
    }
}

/**
 * Puts a stretched picture below what is there, taking for each pixel the one source pixel at its
 * upper left. Steps and phases are 16.16 fixed point and rounded down.
 */
bool Drawing::StretchBlit(const DFBRectangle& from, const DFBRectangle& to) const
{
    constexpr int part = 1024;
    if (_source.start == _target.start)
        return false;
    const int left = std::max(to.x, _clip.x1);
    const int top = std::max(to.y, _clip.y1);
    const int right = std::min(to.x + to.w - 1, _clip.x2);
    const int bottom = std::min(to.y + to.h - 1, _clip.y2);
    const int step_x = (from.w << 16) / to.w;
    const int step_y = (from.h << 16) / to.h;
    IndexTable alone;

    for (int y = top; y <= bottom; ++y) {
        const int source_y = from.y + (step_y * (y - to.y) >> 16);
        const auto* source = reinterpret_cast<const std::uint32_t*>(From(from.x, source_y).start);
        for (int x = left; x <= right; x += part) {
            const int width = std::min(part, right + 1 - x);
            std::uint32_t row[part];
            int position = step_x * (x - to.x);
            for (int i = 0; i < width; ++i, position += step_x)
                row[i] = source[position >> 16];
            if (_target_format == DSPF_LUT8)
                PutUnderIndices(At(x, y).start, row, width, alone);
            else
                _kernels->blit_under(At(x, y), SourceRowOf(row), {width, 1});
        }
    }
    return true;
}

} // namespace kestrin_gfx
