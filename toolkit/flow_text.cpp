#include "flow_text_p.h"

#include "flow_bidi_p.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <map>
#include <utility>

namespace zelxxx {

namespace {

constexpr UInt32 kLineFeed = 0x0a;
constexpr UInt32 kVerticalTab = 0x0b;
constexpr UInt32 kFormFeed = 0x0c;
constexpr UInt32 kCarriageReturn = 0x0d;
constexpr UInt32 kNextLine = 0x85;
constexpr UInt32 kSoftHyphen = 0xad;
constexpr UInt32 kLineSeparator = 0x2028;
constexpr UInt32 kParagraphSeparator = 0x2029;

bool EndsParagraph(UInt32 code)
{
    return code == kLineFeed || code == kCarriageReturn || code == kNextLine ||
           code == kParagraphSeparator;
}

bool EndsLine(UInt32 code)
{
    return EndsParagraph(code) || code == kVerticalTab || code == kFormFeed ||
           code == kLineSeparator;
}

bool IsHangul(UInt32 code)
{
    return code >= 0xac00 && code <= 0xd7a3;
}

/** Spaces and tabs, but none that hold words together. */
bool IsBlank(UInt32 code)
{
    if (code < 0x80)
        return code == ' ' || code == '\t';
    return code >= 0x1680 && u_isWhitespace(static_cast<UChar32>(code)) && !EndsLine(code);
}

bool IsInvisible(UInt32 code)
{
    if (code < 0x7f)
        return code < 0x20 && code != '\t';
    return (code < 0xa0) || code == kSoftHyphen || EndsLine(code) ||
           (code >= 0x300 &&
            u_hasBinaryProperty(static_cast<UChar32>(code), UCHAR_DEFAULT_IGNORABLE_CODE_POINT));
}

/** Whether a font may lack a shape that stands for a letter it has. */
bool IsPresentationForm(UInt32 code)
{
    return code >= 0xfb50 && code < 0xfeff;
}

/** Chooses between a character, its presentation form and its ligature by what a font has. */
class FormChooser
{
public:
    FormChooser(IFont* font, UInt16 size) : _font(font), _size(size) {}

    bool Has(UInt32 code)
    {
        const auto known = _known.find(code);
        if (known != _known.end())
            return known->second;
        const bool has = FlowText::HasGlyph(_font, _size, static_cast<WChar>(code));
        _known.emplace(code, has);
        return has;
    }

    UInt32 Choose(UInt32 shape, UInt32 nominal)
    {
        return shape == nominal || !IsPresentationForm(shape) || Has(shape) ? shape : nominal;
    }

private:
    IFont* _font;
    UInt16 _size;
    std::map<UInt32, bool> _known;
};

WChar GlyphOf(UInt32 code, UInt32 shape)
{
    if (code == '\t')
        return ' ';
    if (IsInvisible(code))
        return 0;
    return shape > 0xffff || U_IS_SURROGATE(shape) ? kReplacement : static_cast<WChar>(shape);
}

} // namespace

bool FlowSource::operator==(const FlowSource& other) const
{
    return size == other.size && font == other.font && direction == other.direction &&
           korean_words == other.korean_words && cut == other.cut && units == other.units;
}

FlowText::FlowText(FlowSource text_source, FlowBreaker& breaker, FlowMeter& meter)
    : source(std::move(text_source))
{
    const std::vector<UInt32> codes = Decode();
    TakeBoundaries(breaker, codes);
    Shape(codes);
    Measure(meter);
}

bool FlowText::HasGlyph(IFont* font, UInt16 size, WChar character)
{
    CharMetrics glyph = {};
    font->GetFTCharMetrics(character, size, FontRegular, &glyph, 1, 1);
    return glyph.width > 0 && glyph.height > 0;
}

UInt32 FlowText::Trim(UInt32 begin, UInt32 end) const
{
    while (end > begin &&
           (characters[end - 1].glyph == 0 || characters[end - 1].Is(FlowCharacter::Blank)))
        --end;
    return end;
}

/** The codes of the characters; half pairs remain what they are. */
std::vector<UInt32> FlowText::Decode()
{
    const std::vector<WChar>& units = source.units;
    std::vector<UInt32> codes;
    codes.reserve(units.size());
    characters.reserve(units.size());
    of_unit.reserve(units.size() + 1);
    for (std::size_t i = 0; i < units.size();) {
        const auto first = static_cast<UInt32>(i);
        UChar32 code = 0;
        U16_NEXT(units.data(), i, units.size(), code);
        of_unit.insert(of_unit.end(), i - first, Count());
        characters.push_back({first, 0, 0, 0, 0});
        codes.push_back(static_cast<UInt32>(code));
    }
    of_unit.push_back(Count());
    return codes;
}

void FlowText::TakeBoundaries(FlowBreaker& breaker, const std::vector<UInt32>& codes)
{
    const std::vector<UInt8> found =
        breaker.Find(source.units.data(), static_cast<UInt32>(source.units.size()));
    for (UInt32 i = 0; i < Count(); ++i) {
        UInt16& flags = characters[i].flags;
        if (i > 0 && !(found[characters[i].source] & FlowCluster))
            flags |= FlowCharacter::Continues;
        const UInt32 next = i + 1 < Count() ? characters[i + 1].source : of_unit.size() - 1;
        const bool in_word =
            source.korean_words && i + 1 < Count() && IsHangul(codes[i]) && IsHangul(codes[i + 1]);
        if ((found[next] & FlowBreak) && !in_word)
            flags |= FlowCharacter::BreakAfter;
        if (EndsLine(codes[i]) &&
            (codes[i] != kCarriageReturn || i + 1 == Count() || codes[i + 1] != kLineFeed))
            flags |= FlowCharacter::EndsLine;
        if (codes[i] == kSoftHyphen)
            flags |= FlowCharacter::SoftHyphen;
        if (IsBlank(codes[i]))
            flags |= FlowCharacter::Blank;
    }
}

void FlowText::Shape(const std::vector<UInt32>& codes)
{
    FlowOrder order(codes);
    for (UInt32 begin = 0; begin < Count();) {
        UInt32 end = begin;
        while (end < Count() &&
               !(EndsParagraph(codes[end]) && characters[end].Is(FlowCharacter::EndsLine)))
            ++end;
        end = std::min(end + 1, Count());
        if (order.Resolve(begin, end, source.direction)) {
            for (UInt32 i = begin; i < end; ++i)
                characters[i].flags |= FlowCharacter::RightToLeft;
        }
        begin = end;
    }

    ChooseGlyphs(codes, order);
    types = std::move(order.types);
    levels = std::move(order.levels);
}

void FlowText::ChooseGlyphs(const std::vector<UInt32>& codes, const FlowOrder& order)
{
    FormChooser chooser(source.font, source.size);
    bool joined = true; // to what is drawn before it; nothing is before the first
    for (UInt32 i = 0; i < Count(); ++i) {
        FlowCharacter& character = characters[i];
        if (character.Is(FlowCharacter::LigatureRest)) {
            joined = order.joined[i];
            continue;
        }
        // The order has a ligature in its second place.
        const bool ligature = order.ligatures[i] == kLigatureFill && codes[i] != kLigatureFill &&
                              chooser.Has(order.ligatures[i + 1]);
        if (ligature) {
            character.glyph = static_cast<WChar>(order.ligatures[i + 1]);
            characters[i + 1].flags |= FlowCharacter::LigatureRest | FlowCharacter::Continues;
        } else {
            character.glyph = GlyphOf(codes[i], chooser.Choose(order.shapes[i], codes[i]));
        }
        if (character.glyph == 0 || character.Is(FlowCharacter::Continues))
            continue;
        if (!joined)
            character.flags |= FlowCharacter::GapBefore;
        joined = order.joined[i];
    }
}

/**
 * Whether kerning applies between a character and the next: on every line that both are on they
 * stand side by side, with no mark between them.
 */
bool FlowText::AreNeighbours(UInt32 first) const
{
    const FlowCharacter& one = characters[first];
    const FlowCharacter& other = characters[first + 1];
    if (one.glyph == 0 || other.glyph == 0 || levels[first] != levels[first + 1] ||
        other.Is(FlowCharacter::Continues))
        return false;
    if (!IsReversed(first))
        return true;
    return !one.Is(FlowCharacter::Continues) &&
           (first + 2 == Count() || !characters[first + 2].Is(FlowCharacter::Continues));
}

void FlowText::Measure(FlowMeter& meter)
{
    IFont* const font = source.font;
    pens.assign(1, 0);
    gaps.assign(1, 0);
    for (UInt32 i = 0; i < Count(); ++i) {
        FlowCharacter& character = characters[i];
        if (character.glyph != 0)
            character.advance = meter.Advance(font, source.size, character.glyph);
        if (i + 1 < Count() && AreNeighbours(i)) {
            const UInt32 left = IsReversed(i) ? i + 1 : i;
            const UInt32 right = IsReversed(i) ? i : i + 1;
            character.kerning =
                meter.Kerning(font, source.size, characters[left].glyph, characters[right].glyph);
        }
        pens.push_back(pens.back() + character.advance + character.kerning);
        gaps.push_back(gaps.back() + (character.Is(FlowCharacter::GapBefore) ? 1 : 0));
    }
}

} // namespace zelxxx
