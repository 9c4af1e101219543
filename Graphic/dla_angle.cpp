#include "dla_angle_p.h"

#include <utility>

const U32BIT tan_table_32[45] = {
    0x00000000, 0x0477ef65, 0x08f0914a, 0x0d6a98a2, 0x11e6b93a, 0x1665a834, 0x1ae81c75, 0x1f6ecf19,
    0x23fa7bf0, 0x288be1f7, 0x2d23c3d7, 0x31c2e86e, 0x366a1b58, 0x3b1a2d82, 0x3fd3f5c2, 0x4498517a,
    0x49682546, 0x4e445dae, 0x532defed, 0x5825dabe, 0x5d2d273c, 0x6244e9d4, 0x676e4342, 0x6caa61ad,
    0x71fa81d2, 0x775ff04d, 0x7cdc0afd, 0x82704286, 0x881e1bfb, 0x8de732af, 0x93cd3a2c, 0x99d20064,
    0x9ff77016, 0xa63f9376, 0xacac9714, 0xb340cd1d, 0xb9feb0ec, 0xc0e8eb10, 0xc80255b6, 0xcf4e01a3,
    0xd6cf3bc1, 0xde89935d, 0xe680e123, 0xeeb94f05, 0xf7376129};

int GetLog2(uint64_t value)
{
    return 63 - __builtin_clzll(value);
}

namespace {

/** The square root of a number of 32 bits, rounded to nearest, a bit of it at a time. */
U32BIT Root32(U32BIT value)
{
    U32BIT root = 0;
    for (int i = 15; i >= 0; --i) {
        const U32BIT larger = root | 1U << i;
        if (larger * larger <= value)
            root = larger;
    }
    return value - root * root > root ? root + 1 : root;
}

/** The square root of a large number, good to 16 bits. */
uint64_t Root64(uint64_t value)
{
    int shift = GetLog2(value) - 31;
    if (shift <= 0)
        return Root32(static_cast<U32BIT>(value));
    shift += shift % 2;
    return static_cast<uint64_t>(Root32(static_cast<U32BIT>(value >> shift))) << (shift / 2);
}

uint64_t DivideRounded(uint64_t dividend, uint64_t divisor)
{
    return (dividend + divisor / 2) / divisor;
}

/**
 * The point of the first quarter in a direction from 0 to 45 degrees. With the tangent t it is
 * x = rx * ry / sqrt(ry^2 + (rx * t)^2) and y = t * x; the root is taken times 2^16.
 */
void GetLowPoint(uint64_t rx, uint64_t ry, U32BIT degrees, S32BIT& x, S32BIT& y)
{
    x = y = 0;
    if (degrees == 0)
        x = static_cast<S32BIT>(rx);
    if (degrees == 0 || rx == 0 || ry == 0)
        return;
    const uint64_t tangent = degrees == 45 ? uint64_t{1} << 32 : tan_table_32[degrees];
    const uint64_t across = rx * tangent >> 16;
    const uint64_t root = Root64((ry << 16) * (ry << 16) + across * across);
    x = static_cast<S32BIT>(DivideRounded(rx * ry << 16, root));
    y = static_cast<S32BIT>(DivideRounded(rx * ry * tangent, root << 16));
}

} // namespace

void GetHitPoints(U32BIT rx, U32BIT ry, U16BIT angle, S32BIT* hx, S32BIT* hy)
{
    const U32BIT degrees = (angle + 32U) >> 6;
    const U32BIT quadrant = degrees / 90 % 4;
    const U32BIT within = quadrant % 2 == 0 ? degrees % 90 : 90 - degrees % 90;
    if (within <= 45)
        GetLowPoint(rx, ry, within, *hx, *hy);
    else
        GetLowPoint(ry, rx, 90 - within, *hy, *hx);
    if (quadrant == 1 || quadrant == 2)
        *hx = -*hx;
    if (quadrant < 2)
        *hy = -*hy;
}
