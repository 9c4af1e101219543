/**
 * Puts a caption's line on the screen: wrapped, centred, coloured, with a shadow.
 */
#pragma once

#include "markup.h"

#include "vrel_kestrin_graphic.h"

#include <array>
#include <vector>

namespace kestrin_play {

/** What captions stand on; glyph edges on 8-bit displays fade towards it. 0xRRGGBB. */
constexpr std::uint32_t caption_box_colour = 0x000000;

/** Shadows fall this far to the right and down, in pixels. */
constexpr int ShadowOffset(int font_size)
{
    return font_size / 16 + 1;
}

/** Formats one text widget, as wide as its span. */
class CaptionFormatter : public zelxxx::ITextFormater
{
public:
    explicit CaptionFormatter(zelxxx::ColorMode mode) : _mode(mode) {}

    /** Colours of the text that the widget is given next. */
    void SetColours(std::vector<ColourRun> colours) { _colours = std::move(colours); }

    void Format(zelxxx::IText* text, zelxxx::PtrWChar units, zelxxx::UInt32 length) override;
    void GetCharBuffer(const zelxxx::CharMetrics* char_metrics, zelxxx::ColorValue color,
                       zelxxx::BlendValue blend, zelxxx::PtrSChar buffer) override;

private:
    void AddColour(zelxxx::IText* text, std::uint32_t rgb) const;
    std::uint32_t ColourAt(std::size_t source) const;
    void BuildRamp(zelxxx::ColorValue color);

    const zelxxx::ColorMode _mode;
    std::vector<ColourRun> _colours;

    /** Palette index for each coverage in `_ramp_colour`; kept from glyph to glyph. */
    std::array<zelxxx::UInt8, 256> _ramp = {};
    zelxxx::ColorValue _ramp_colour = 0xFFFFFFFF;
};

} // namespace kestrin_play
