#include "color_match_p.h"

namespace zelxxx {

namespace {

constexpr unsigned kKnownBits = 12;

UInt8 Times(UInt8 channel, UInt8 opacity)
{
    return static_cast<UInt8>((channel * opacity + 127) / 255);
}

/** What a channel differs by over black and over white, squared and added. */
int ChannelDistance(int premultiplied, int opacity)
{
    const int over_white = premultiplied - opacity;
    return premultiplied * premultiplied + over_white * over_white;
}

int Distance(const Rgba& x, const Rgba& y)
{
    const int opacity = x.a - y.a;
    return ChannelDistance(x.r - y.r, opacity) + ChannelDistance(x.g - y.g, opacity) +
           ChannelDistance(x.b - y.b, opacity);
}

} // namespace

Rgba Rgba::Premultiplied() const
{
    return {Times(r, a), Times(g, a), Times(b, a), a};
}

Colors ColorsOf(IPalette* palette)
{
    Colors colors;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const auto index = static_cast<UInt8>(i);
        colors[i] = {palette->GetColorRed(index), palette->GetColorGreen(index),
                     palette->GetColorBlue(index), palette->GetColorBlending(index)};
    }
    return colors;
}

ColorMatch::ColorMatch(IPalette* palette) : _fixed(!palette), _known(std::size_t{1} << kKnownBits)
{
    if (palette)
        _palette = ColorsOf(palette);
    for (Rgba& color : _palette)
        color = color.Premultiplied();
}

UInt8 ColorMatch::IndexOf(const Rgba& color)
{
    const UInt32 word = color.Word();
    // Multiplied by an odd number without a pattern, the top bits depend on all others.
    Known& known = _known[word * 0x9e3779b1U >> (32 - kKnownBits)];
    if (!known.set || known.word != word)
        known = {word, true, _fixed ? OSD_FindNearestColourIndex(word) : Nearest(color)};
    return known.index;
}

UInt8 ColorMatch::Nearest(const Rgba& color) const
{
    const Rgba wanted = color.Premultiplied();
    std::size_t best = 0;
    int least = Distance(wanted, _palette[0]);
    for (std::size_t i = 1; i < _palette.size() && least > 0; ++i) {
        const int distance = Distance(wanted, _palette[i]);
        if (distance < least) {
            least = distance;
            best = i;
        }
    }
    return static_cast<UInt8>(best);
}

} // namespace zelxxx
