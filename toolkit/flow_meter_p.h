/** What fonts have been asked for before: advances, kernings, extents of glyphs. */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelxxx {

/**
 * Remembers what fonts say, since texts repeat their letters: each answer has one place that its
 * question leads to, where a later one may replace it. Holds the fonts, so that no other takes
 * their address.
 */
class FlowMeter
{
public:
    /** Columns of a glyph's picture from its pen, half open, in pixels. */
    struct Ink
    {
        Int32 left, right;
    };

    /** In font units times the size, as Kerning. */
    Int32 Advance(IFont* font, UInt16 size, WChar character)
    {
        Answer& answer = Find(font, size, character, 0);
        if (!answer.font) {
            Ask(answer, font, size, character, 0);
            answer.value = font->GetFTNoScaleCharMetricsX(character, size, FontRegular);
        }
        return answer.value;
    }
    /** The characters are not 0. */
    Int32 Kerning(IFont* font, UInt16 size, WChar left, WChar right)
    {
        Answer& answer = Find(font, size, right, left);
        if (!answer.font) {
            Ask(answer, font, size, right, left);
            answer.value = font->GetFTKerning(left, right, size, FontRegular);
        }
        return answer.value;
    }
    Ink InkOf(IFont* font, UInt16 size, WChar character, UInt32 molecule, UInt32 denominator)
    {
        InkAnswer& answer = _inks[character % kInkPlaces];
        if (answer.font != font || answer.size != size || answer.character != character ||
            answer.molecule != molecule || answer.denominator != denominator) {
            Hold(font);
            CharMetrics glyph = {};
            font->GetFTCharMetrics(character, size, FontRegular, &glyph, molecule, denominator);
            const Int32 left = glyph.hori_bearing_x;
            answer = {font, size, character, molecule, denominator, {left, left + glyph.width}};
        }
        return answer.ink;
    }
    void Clear()
    {
        _answers = {};
        _inks = {};
        _held.clear();
    }

private:
    static constexpr std::size_t kPlaces = 4096;
    static constexpr std::size_t kInkPlaces = 512;
    static constexpr std::size_t kMostFonts = 32;

    struct Answer
    {
        IFont* font = nullptr; /**< null: not asked yet */
        Int32 value = 0;
        UInt16 size = 0;
        WChar character = 0;
        WChar left = 0; /**< 0 for an advance */
    };

    struct InkAnswer
    {
        IFont* font = nullptr;
        UInt16 size = 0;
        WChar character = 0;
        UInt32 molecule = 0;
        UInt32 denominator = 0;
        Ink ink = {};
    };

    /** The place of a question, without a font if it holds another answer or none. */
    Answer& Find(IFont* font, UInt16 size, WChar character, WChar left)
    {
        const std::uint32_t pair = static_cast<std::uint32_t>(left) << 16 | character;
        const std::uint32_t mixed = (pair ^ size * 0x85ebca6bU) * 0x9e3779b1U;
        Answer& answer = _answers[mixed >> 20];
        if (answer.font != font || answer.size != size || answer.character != character ||
            answer.left != left)
            answer.font = nullptr;
        return answer;
    }
    void Ask(Answer& answer, IFont* font, UInt16 size, WChar character, WChar left)
    {
        Hold(font);
        answer = {font, 0, size, character, left};
    }
    void Hold(IFont* font)
    {
        for (const ZELObjPtr<IFont>& held : _held) {
            if (held == font)
                return;
        }
        if (_held.size() == kMostFonts)
            Clear();
        _held.push_back(font);
    }

    std::array<Answer, kPlaces> _answers;
    std::array<InkAnswer, kInkPlaces> _inks;
    std::vector<ZELObjPtr<IFont>> _held;
};

} // namespace zelxxx
