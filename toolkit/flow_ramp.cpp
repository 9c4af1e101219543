#include "flow_ramp_p.h"

namespace zelxxx {

namespace {

/** On a known ground, fainter edges would only smear. */
constexpr UInt32 kLeastOpacity = 32;

UInt32 MixChannel(UInt32 ground, UInt32 ink, int shift, UInt32 alpha)
{
    const UInt32 from = ground >> shift & 0xff;
    const UInt32 to = ink >> shift & 0xff;
    return (from * (255 - alpha) + to * alpha + 127) / 255 << shift;
}

/**
 * Between the palette's own greys the nearest colours are tinted, which makes fringes on white
 * text: such a grey goes to the end of the next range that has a true one.
 */
UInt32 TrueGrey(UInt32 rgb)
{
    const UInt32 level = rgb & 0xff;
    if (rgb != level * 0x010101)
        return rgb;
    UInt32 grey = level;
    if (level >= 16 && level < 22)
        grey = 22;
    else if (level > 105 && level < 112)
        grey = 112;
    else if (level > 143 && level < 149)
        grey = 149;
    else if (level > 232 && level < 240)
        grey = 240;
    return grey * 0x010101;
}

} // namespace

void FlowRamps::SetGround(bool known, ColorValue color)
{
    _has_ground = known;
    _ground = SwapRedAndBlue(color);
    for (Entry& entry : _entries)
        entry.made = false;
}

const FlowRamps::Ramp& FlowRamps::Find(ColorValue color, BlendValue blend)
{
    for (const Entry& entry : _entries) {
        if (entry.made && entry.color == color && entry.blend == blend)
            return entry.ramp;
    }
    Entry& entry = _entries[_oldest];
    _oldest = (_oldest + 1) % kMostRamps;
    entry.made = true;
    entry.color = color;
    entry.blend = blend;
    for (UInt32 coverage = 0; coverage < entry.ramp.size(); ++coverage)
        entry.ramp[coverage] = IndexOf(SwapRedAndBlue(color), coverage * blend / 255);
    return entry.ramp;
}

UInt8 FlowRamps::IndexOf(UInt32 rgb, UInt32 alpha) const
{
    if (!_has_ground)
        return OSD_FindNearestColourIndex(alpha << 24 | rgb);
    if (alpha < kLeastOpacity)
        return 0;
    UInt32 mixed = 0;
    for (const int shift : {0, 8, 16})
        mixed |= MixChannel(_ground, rgb, shift, alpha);
    return OSD_FindNearestColourIndex(0xff000000 | TrueGrey(mixed));
}

} // namespace zelxxx
