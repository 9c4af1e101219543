#include "formatter.h"

#include "layout.h"

namespace kestrin_play {
namespace {

using zelxxx::ColorValue;
using zelxxx::Int16;
using zelxxx::IText;
using zelxxx::UInt16;
using zelxxx::UInt32;
using zelxxx::UInt8;

constexpr std::uint32_t shadow_colour = 0x000000;

/** Fainter edges would only smear the caption box. */
constexpr int least_coverage = 32;

/**
 * Between the palette's own greys the nearest colours are tinted, which makes fringes on white
 * text: such a grey goes to the end of the next range that has a true one.
 */
UInt32 TrueGrey(UInt32 argb)
{
    const UInt32 level = argb & 0xFF;
    if (argb != (0xFF000000 | level * 0x010101))
        return argb;
    UInt32 grey = level;
    if (level >= 16 && level < 22)
        grey = 22;
    else if (level > 105 && level < 112)
        grey = 112;
    else if (level > 143 && level < 149)
        grey = 149;
    else if (level > 232 && level < 240)
        grey = 240;
    return 0xFF000000 | grey * 0x010101;
}

UInt32 MixChannel(UInt32 box, UInt32 text, int shift, UInt32 coverage)
{
    const UInt32 from = (box >> shift) & 0xFF;
    const UInt32 to = (text >> shift) & 0xFF;
    return (from * (255 - coverage) + to * coverage + 127) / 255 << shift;
}

} // namespace

void CaptionFormatter::Format(IText* text, zelxxx::PtrWChar units, UInt32 length)
{
    zelxxx::IFont* font = text->GetFont();
    if (!font || length == 0)
        return;
    const auto size = static_cast<UInt16>(text->GetAttribute(zelxxx::AttrFontSize));
    const int span = text->GetAttribute(zelxxx::AttrSpanX);
    const int line_height = text->GetAttribute(zelxxx::AttrLineHeight);
    const std::vector<PlacedLine> lines =
        LayOut(*font, size, std::u16string(units, units + length), span - 2 * TextMargin(size));

    // All shadows first, so that none falls on a character.
    for (const int offset : {ShadowOffset(size), 0}) {
        std::uint32_t colour = offset > 0 ? shadow_colour : ColourAt(0);
        AddColour(text, colour);
        // Fonts put their line's top at different heights; baselines are what must agree.
        int top = Baseline(size) - font->GetFTYOffsetTop(size) + offset;
        for (const PlacedLine& line : lines) {
            const int left = (span - line.width) / 2 + offset;
            for (const PlacedUnit& placed : line.units) {
                if (offset == 0 && ColourAt(placed.source) != colour) {
                    colour = ColourAt(placed.source);
                    AddColour(text, colour);
                }
                text->AddCharInfo(static_cast<Int16>(left + placed.x), static_cast<Int16>(top),
                                  static_cast<UInt8>(size), placed.unit);
            }
            top += line_height;
        }
    }
}

void CaptionFormatter::AddColour(IText* text, std::uint32_t rgb) const
{
    if (_mode == zelxxx::Color8Bit)
        text->AddColorIndex(zelxxx::OSD_FindNearestColourIndex(0xFF000000 | rgb));
    else
        text->AddColorInfo(static_cast<UInt8>(rgb >> 16), static_cast<UInt8>(rgb >> 8),
                           static_cast<UInt8>(rgb), 255);
}

std::uint32_t CaptionFormatter::ColourAt(std::size_t source) const
{
    std::uint32_t colour = default_text_colour;
    for (const ColourRun& run : _colours) {
        if (run.begin <= source)
            colour = run.rgb;
    }
    return colour;
}

void CaptionFormatter::GetCharBuffer(const zelxxx::CharMetrics* char_metrics, ColorValue color,
                                     zelxxx::BlendValue blend, zelxxx::PtrSChar buffer)
{
    if (blend == 0 || !char_metrics->buffer)
        return;
    if (color != _ramp_colour)
        BuildRamp(color);
    const int count = char_metrics->width * char_metrics->height;
    for (int i = 0; i < count; ++i)
        buffer[i] = static_cast<zelxxx::SChar>(_ramp[char_metrics->buffer[i]]);
}

void CaptionFormatter::BuildRamp(ColorValue color)
{
    const UInt32 text = (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
    for (UInt32 coverage = 0; coverage < _ramp.size(); ++coverage) {
        UInt32 mixed = 0xFF000000;
        for (const int shift : {0, 8, 16})
            mixed |= MixChannel(caption_box_colour, text, shift, coverage);
        _ramp[coverage] =
            coverage < least_coverage ? 0 : zelxxx::OSD_FindNearestColourIndex(TrueGrey(mixed));
    }
    _ramp_colour = color;
}

} // namespace kestrin_play
