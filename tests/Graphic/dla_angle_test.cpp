#include "dla_angle_p.h"

#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Real = long double;

Real Radians(int degrees)
{
    return degrees * std::acos(Real{-1}) / 180;
}

std::pair<S32BIT, S32BIT> Hit(U32BIT rx, U32BIT ry, int angle)
{
    S32BIT hx = 12345;
    S32BIT hy = 12345;
    GetHitPoints(rx, ry, static_cast<U16BIT>(angle), &hx, &hy);
    return {hx, hy};
}

using Point = std::pair<S32BIT, S32BIT>;

TEST(DlaTangents, AreTangentsTimes2To32RoundedDown)
{
    EXPECT_EQ(tan_table_32[0], 0U);
    for (int degrees = 1; degrees < 45; ++degrees) {
        const Real exact = std::ldexp(std::tan(Radians(degrees)), 32);
        // Far from a whole number for what long double is off.
        ASSERT_GT(std::abs(exact - std::round(exact)), 1e-6L) << degrees;
        EXPECT_EQ(tan_table_32[degrees], static_cast<U32BIT>(std::floor(exact))) << degrees;
    }
}

TEST(DlaLog2, IsThePositionOfTheHighestBit)
{
    for (int bit = 0; bit < 64; ++bit) {
        const uint64_t power = uint64_t{1} << bit;
        EXPECT_EQ(GetLog2(power), bit);
        EXPECT_EQ(GetLog2(power | (power - 1)), bit);
    }
}

TEST(DlaS64, ProductsHaveTwoWords)
{
    const S_64_BIT small = S64MultiplyS32(S64FromS32(7), -3);
    EXPECT_EQ(small.high, -1);
    EXPECT_EQ(small.low, static_cast<U32BIT>(-21));
    const S_64_BIT large = S64MultiplyS32(S64FromS32(INT32_MIN), INT32_MIN);
    EXPECT_EQ(large.high, 0x40000000);
    EXPECT_EQ(large.low, 0U);
    const S_64_BIT larger = S64MultiplyS32(S_64_BIT{1, 0x80000000}, 2);
    EXPECT_EQ(larger.high, 3);
    EXPECT_EQ(larger.low, 0U);
}

TEST(DlaS64, ComparesHighWordsWithTheirSign)
{
    const S_64_BIT rising[] = {{INT32_MIN, 0},  {-1, 0}, {-1, 0xffffffff},       {0, 0}, {0, 1},
                               {0, 0xffffffff}, {1, 0},  {INT32_MAX, 0xffffffff}};
    for (int i = 0; i < 8; ++i) {
        for (int j = 0; j < 8; ++j) {
            const int compared = S64CompareS64(rising[i], rising[j]);
            EXPECT_EQ((compared > 0) - (compared < 0), (i > j) - (i < j)) << i << " " << j;
        }
    }
}

TEST(DlaHitPoints, GrowCounterClockwiseFromThreeOClock)
{
    EXPECT_EQ(Hit(100, 60, 0), Point(100, 0));
    EXPECT_EQ(Hit(100, 60, 90 * 64), Point(0, -60));
    EXPECT_EQ(Hit(100, 60, 180 * 64), Point(-100, 0));
    EXPECT_EQ(Hit(100, 60, 270 * 64), Point(0, 60));
    EXPECT_EQ(Hit(100, 60, 360 * 64), Point(100, 0));
    EXPECT_EQ(Hit(100, 100, 30 * 64), Point(87, -50));
}

TEST(DlaHitPoints, LieInTheDirectionNotAtTheParameter)
{
    // At 45 degrees both offsets are equal, whatever the radii.
    EXPECT_EQ(Hit(100, 50, 45 * 64), Point(45, -45));
    EXPECT_EQ(Hit(50, 100, 225 * 64), Point(-45, 45));
}

TEST(DlaHitPoints, AnglesAreRoundedToWholeDegrees)
{
    for (int degrees = 0; degrees < 360; ++degrees) {
        const Point whole = Hit(30000, 30000, degrees * 64);
        EXPECT_EQ(Hit(30000, 30000, degrees * 64 + 31), whole) << degrees;
        EXPECT_NE(Hit(30000, 30000, degrees * 64 + 32), whole) << degrees;
        if (degrees > 0) {
            EXPECT_EQ(Hit(30000, 30000, degrees * 64 - 32), whole) << degrees;
        }
    }
}

/** Radii at which something changes, and some between; 0 has a test of its own. */
std::vector<U32BIT> Radii()
{
    std::vector<U32BIT> radii;
    for (U32BIT radius = 1; radius <= 40; ++radius)
        radii.push_back(radius);
    for (U32BIT power = 64; power <= 16384; power *= 2)
        radii.insert(radii.end(), {power - 1, power, power + 1, power + power / 3});
    radii.insert(radii.end(), {719, 1000, 9999, 23170, 30011, 32766, 32767});
    return radii;
}

TEST(DlaHitPoints, AreWithinAPixelOfTheExactPoint)
{
    const std::vector<U32BIT> radii = Radii();
    for (int degrees = 0; degrees < 360; ++degrees) {
        const Real cosine = std::cos(Radians(degrees));
        const Real sine = std::sin(Radians(degrees));
        for (const U32BIT rx : radii) {
            for (const U32BIT ry : radii) {
                const Real scale = Real(rx) * ry / std::hypot(ry * cosine, rx * sine);
                const Point hit = Hit(rx, ry, degrees * 64);
                ASSERT_LT(std::abs(hit.first - scale * cosine), 1.0L)
                    << degrees << " degrees, radii " << rx << ", " << ry;
                ASSERT_LT(std::abs(hit.second + scale * sine), 1.0L)
                    << degrees << " degrees, radii " << rx << ", " << ry;
            }
        }
    }
}

// Of the radii that screens have.
TEST(DlaHitPoints, AreTheNearestPixelUpToRadiiOf2000)
{
    for (int degrees = 0; degrees < 360; ++degrees) {
        const Real cosine = std::cos(Radians(degrees));
        const Real sine = std::sin(Radians(degrees));
        for (U32BIT rx = 1; rx <= 2000; rx = rx * 11 / 10 + 1) {
            for (U32BIT ry = 1; ry <= 2000; ry = ry * 11 / 10 + 1) {
                const Real scale = Real(rx) * ry / std::hypot(ry * cosine, rx * sine);
                const Point hit = Hit(rx, ry, degrees * 64);
                ASSERT_LT(std::abs(hit.first - scale * cosine), 0.52L)
                    << degrees << " degrees, radii " << rx << ", " << ry;
                ASSERT_LT(std::abs(hit.second + scale * sine), 0.52L)
                    << degrees << " degrees, radii " << rx << ", " << ry;
            }
        }
    }
}

TEST(DlaHitPoints, OfARadiusOfZeroOnlyTheOtherAxisIsHit)
{
    for (int degrees = 0; degrees < 360; ++degrees) {
        const bool across = degrees % 180 == 0;
        const bool upright = degrees % 180 == 90;
        const S32BIT x = across ? (degrees == 0 ? 50 : -50) : 0;
        const S32BIT y = upright ? (degrees == 90 ? -50 : 50) : 0;
        EXPECT_EQ(Hit(50, 0, degrees * 64), Point(x, 0)) << degrees;
        EXPECT_EQ(Hit(0, 50, degrees * 64), Point(0, y)) << degrees;
        EXPECT_EQ(Hit(0, 0, degrees * 64), Point(0, 0)) << degrees;
    }
}

} // namespace
