/**
 * The engine's arithmetic: sums that wrap to 16 bits, 8.8 fixed-point factors and opacities.
 *
 * Products are taken in 32 bits, shifted, and only then cut to 16: every operand pair fits, since
 * 32768 x 65535 is below 2^31.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

namespace zelxxx {

/** The factor 1.0. It leaves a value untouched, which (v * 256) >> 8 would cut to 16 bits only. */
constexpr RatioValue kRatioOne = 256;

/** Cuts a sum to 16 bits; what passes the range wraps around. */
constexpr MetricValue Wrap(Int32 value)
{
    return static_cast<MetricValue>(static_cast<UInt16>(value));
}

/** A length times a factor, rounded toward minus infinity. */
constexpr MetricValue Scale(MetricValue value, RatioValue ratio)
{
    return ratio == kRatioOne ? value : Wrap((value * static_cast<Int32>(ratio)) >> 8);
}

/** Two factors combined. */
constexpr RatioValue CombineRatios(RatioValue own, RatioValue outer)
{
    return static_cast<RatioValue>((static_cast<UInt32>(own) * outer) >> 8);
}

/** Two opacities combined: a * b / 255, rounded down. */
constexpr BlendValue CombineBlends(BlendValue a, BlendValue b)
{
    // For products of two bytes this is the quotient, and loops of it become vectors.
    const UInt32 product = UInt32{a} * b;
    return static_cast<BlendValue>((product + 1 + (product >> 8)) >> 8);
}

/** A product of 32 bits; what passes the range wraps around. */
constexpr Int32 Multiply(Int32 a, Int32 b)
{
    return static_cast<Int32>(static_cast<UInt32>(a) * static_cast<UInt32>(b));
}

/** A number times an 8.8 factor that is not 1.0, rounded toward minus infinity. */
constexpr Int32 Multiply88(Int32 value, Int32 ratio)
{
    return Multiply(value, ratio) >> 8;
}

/** The channels of a 0x00BBGGRR colour: red in the lowest byte. */
constexpr UInt8 LowRed(ColorValue color)
{
    return static_cast<UInt8>(color);
}
constexpr UInt8 LowGreen(ColorValue color)
{
    return static_cast<UInt8>(color >> 8);
}
constexpr UInt8 LowBlue(ColorValue color)
{
    return static_cast<UInt8>(color >> 16);
}

} // namespace zelxxx
