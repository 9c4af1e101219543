/** Angles and the points of an ellipse that they hit, in integers. */
#pragma once

#include "DlaUtils.h"

/** A turn and a quarter of it, in 1/64 degree. */
constexpr U16BIT kFullTurn = 360 * 64;
constexpr U16BIT kQuarterTurn = 90 * 64;

/** tan(d degrees) * 2^32, rounded down, for d = 0 to 44. */
extern const U32BIT tan_table_32[45];

/** A signed 64-bit number in two words. */
struct S_64_BIT
{
    S32BIT high;
    U32BIT low;
};

constexpr S_64_BIT S64FromS32(S32BIT value)
{
    return {value < 0 ? -1 : 0, static_cast<U32BIT>(value)};
}

constexpr int64_t S64Value(S_64_BIT value)
{
    return static_cast<int64_t>(static_cast<uint64_t>(value.high) << 32 | value.low);
}

constexpr S_64_BIT S64MultiplyS32(S_64_BIT a, S32BIT b)
{
    const auto product = static_cast<uint64_t>(S64Value(a)) * static_cast<uint64_t>(int64_t{b});
    return {static_cast<S32BIT>(product >> 32), static_cast<U32BIT>(product)};
}

/** Negative, 0 or positive, as `a` is less than, equal to or greater than `b`. */
constexpr int S64CompareS64(S_64_BIT a, S_64_BIT b)
{
    return S64Value(a) < S64Value(b) ? -1 : S64Value(a) > S64Value(b) ? 1 : 0;
}

/** The position of the highest set bit: 0 for 1. Not for 0. */
int GetLog2(uint64_t value);

/**
 * The offset from the centre of the point of an ellipse that lies in a direction, counted
 * counter-clockwise on the screen: up is negative. The angle is rounded to whole degrees, the point
 * to whole pixels; far out it may be one pixel off the nearest.
 *
 * @param rx, ry  radii, up to 32767. With one radius 0 only the directions of the other axis hit
 *                anything but the centre
 */
void GetHitPoints(U32BIT rx, U32BIT ry, U16BIT angle, S32BIT* hx, S32BIT* hy);
