/**
 * Results for palette indices, each worked out when it is first asked for.
 *
 * A blend of indices ends in a search for the nearest colour of the palette, which takes far longer
 * than all the rest; but there are only so many indices.
 */
#pragma once

#include "directfb_core.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace kestrin_gfx {

constexpr unsigned palette_size = 256;

/** What each index becomes, for one operation. */
class IndexTable
{
public:
    template <class Change>
    std::uint8_t operator()(std::uint8_t index, const Change& change)
    {
        if (!_known[index]) {
            _value[index] = change(index);
            _known[index] = true;
        }
        return _value[index];
    }

private:
    std::uint8_t _value[palette_size];
    bool _known[palette_size] = {};
};

/** What each pair of indices becomes; kept as long as the circumstances are the same. */
class PairTable
{
public:
    /** Forgets everything if palettes or the kind of blending are others than last time. */
    void Use(const CorePalette& to, const CorePalette& from, unsigned kind)
    {
        if (_used && kind == _kind && Same(to, _to) && Same(from, _from))
            return;
        std::fill(std::begin(_results), std::end(_results), unknown);
        std::memcpy(_to, to.entries, sizeof _to);
        std::memcpy(_from, from.entries, sizeof _from);
        _kind = kind;
        _used = true;
    }

    template <class Blend>
    std::uint8_t operator()(std::uint8_t to, std::uint8_t from, const Blend& blend)
    {
        std::uint16_t& result = _results[std::size_t{to} * palette_size + from];
        if (result == unknown)
            result = blend(to, from);
        return static_cast<std::uint8_t>(result);
    }

private:
    static constexpr std::uint16_t unknown = 256;

    static bool Same(const CorePalette& palette, const DFBColor (&kept)[palette_size])
    {
        return std::memcmp(palette.entries, kept, sizeof kept) == 0;
    }

    bool _used = false;
    unsigned _kind = 0;
    DFBColor _to[palette_size];
    DFBColor _from[palette_size];
    std::uint16_t _results[palette_size * palette_size]; // memory is touched with the first use
};

} // namespace kestrin_gfx
