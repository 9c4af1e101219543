/** Rows of pixels: what every fill of the drawing primitives ends in. */
#pragma once

#include "DlaUtils.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>

/** A pixel that is in the buffer. */
inline U32BIT* PixelAt(S32BIT x, S32BIT y)
{
    return dla_info.screen + (static_cast<std::size_t>(y) * dla_info.width + x);
}

inline bool IsRow(S32BIT y)
{
    return y >= 0 && y < dla_info.height;
}

inline bool IsColumn(S32BIT x)
{
    return x >= 0 && x < dla_info.width;
}

/** A few pixels that compilers store with one instruction or two. */
template <std::size_t Count>
struct WordBlock
{
    explicit WordBlock(U32BIT colour) { std::fill_n(words, Count, colour); }
    void Store(U32BIT* to) const { std::memcpy(to, words, sizeof words); }

    U32BIT words[Count];
};

/** From here on a call pays, since the C library has the processor's widest stores. */
constexpr std::size_t kLongRow = 48;

/** Fills neighbouring pixels of a row. */
inline void FillWords(U32BIT* to, std::size_t count, U32BIT colour)
{
    if (count >= kLongRow) {
        static_assert(sizeof(wchar_t) == sizeof colour, "words are wide characters");
        std::wmemset(reinterpret_cast<wchar_t*>(to), static_cast<wchar_t>(colour), count);
    } else if (count >= 8) {
        // The first and the last block lie anywhere and overlap the others, which are aligned:
        // stores across cache lines cost half as much again.
        const WordBlock<8> block(colour);
        U32BIT* const last = to + count - 8;
        block.Store(to);
        to += 8 - reinterpret_cast<std::uintptr_t>(to) / sizeof colour % 8;
        for (; to < last; to += 8)
            block.Store(to);
        block.Store(last);
    } else if (count >= 4) {
        const WordBlock<4> block(colour);
        block.Store(to);
        block.Store(to + count - 4);
    } else if (count > 0) {
        to[0] = colour;
        to[count / 2] = colour;
        to[count - 1] = colour;
    }
}

/** Fills the half-open rectangle from (left, top) up to (right, bottom), clipped to the buffer. */
inline void FillBox(S32BIT left, S32BIT top, S32BIT right, S32BIT bottom, U32BIT colour)
{
    left = std::max(left, 0);
    top = std::max(top, 0);
    right = std::min<S32BIT>(right, dla_info.width);
    bottom = std::min<S32BIT>(bottom, dla_info.height);
    if (left >= right)
        return;
    for (S32BIT y = top; y < bottom; ++y)
        FillWords(PixelAt(left, y), static_cast<std::size_t>(right - left), colour);
}

/** Fills columns `left` up to, and not including, `right` of a row, clipped to the buffer. */
inline void FillRow(S32BIT y, S32BIT left, S32BIT right, U32BIT colour)
{
    if (!IsRow(y))
        return;
    left = std::max(left, 0);
    right = std::min<S32BIT>(right, dla_info.width);
    if (left < right)
        FillWords(PixelAt(left, y), static_cast<std::size_t>(right - left), colour);
}
