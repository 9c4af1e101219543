/** A text in a font, before it is known where its lines end. */
#pragma once

#include "flow_breaks_p.h"
#include "flow_meter_p.h"
#include "vrel_kestrin_flow.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace zelxxx {

struct FlowOrder;

/** Longer texts are cut: more do not fit on any screen, and the work stays bounded. */
constexpr UInt32 kMostUnits = 65536;

/** Shown for what has no code of 16 bits. */
constexpr WChar kReplacement = 0xfffd;

/** What a text is laid out from, apart from the box. */
struct FlowSource
{
    std::vector<WChar> units; /**< at most kMostUnits */
    bool cut;                 /**< there were more */
    ZELObjPtr<IFont> font;
    UInt16 size;
    FlowDirection direction;
    bool korean_words;

    bool operator==(const FlowSource& other) const;
};

/** One character of a text: a code unit, or a pair of them. */
struct FlowCharacter
{
    enum Flag : UInt16
    {
        Continues = 1,   /**< goes with the character before: a mark, or the rest of a ligature */
        Blank = 2,       /**< takes no room at the end of a line */
        BreakAfter = 4,  /**< a line may end behind it */
        EndsLine = 8,    /**< a line must end behind it */
        SoftHyphen = 16, /**< a line that ends behind it shows a hyphen */
        GapBefore = 32,  /**< takes letter space from the character before it on its line */
        LigatureRest = 64,
        RightToLeft = 128 /**< its paragraph runs so */
    };

    UInt32 source; /**< its first code unit */
    Int32 advance; /**< in font units times the size, as kerning */
    Int32 kerning; /**< to the next character, if both stand on one line */
    WChar glyph;   /**< 0 draws nothing and takes no room */
    UInt16 flags;

    bool Is(Flag flag) const { return (flags & flag) != 0; }
};

/** The characters of a text in logical order, shaped and measured. Immutable. */
class FlowText
{
public:
    FlowText(FlowSource text_source, FlowBreaker& breaker, FlowMeter& meter);

    /** Whether the font draws something for a character. */
    static bool HasGlyph(IFont* font, UInt16 size, WChar character);

    UInt32 Count() const { return static_cast<UInt32>(characters.size()); }
    /** The end of begin <= i < end without blanks and characters that draw nothing. */
    UInt32 Trim(UInt32 begin, UInt32 end) const;
    /** Whether the characters around this one run from right to left. */
    bool IsReversed(UInt32 character) const { return (levels[character] & 1) != 0; }

    const FlowSource source;
    std::vector<FlowCharacter> characters;
    /** Pen in front of each character and of the end, were all on one line, without letter space.
     */
    std::vector<std::int64_t> pens;
    std::vector<UInt32> gaps;    /**< characters before this one that have GapBefore */
    std::vector<UInt32> of_unit; /**< number of a code unit's character; Count() for the end */
    std::vector<UInt32> types;   /**< for VisualOrder, as levels */
    std::vector<signed char> levels;

private:
    std::vector<UInt32> Decode();
    void TakeBoundaries(FlowBreaker& breaker, const std::vector<UInt32>& codes);
    void Shape(const std::vector<UInt32>& codes);
    void ChooseGlyphs(const std::vector<UInt32>& codes, const FlowOrder& order);
    bool AreNeighbours(UInt32 first) const;
    void Measure(FlowMeter& meter);
};

} // namespace zelxxx
