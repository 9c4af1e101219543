/** The engine's arithmetic beside models of it that count in 64 bits. */
#include "ttypes.h"

#include "seeded_random.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::SeededRandom;

namespace zelxxx {
namespace {

std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    const std::int64_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

/** The number in -32768 to 32767 that differs from the value by a multiple of 65536. */
std::int64_t WrapModel(std::int64_t value)
{
    return value - 65536 * FloorDivide(value + 32768, 65536);
}

std::int64_t ScaleModel(std::int64_t value, std::int64_t ratio)
{
    return WrapModel(FloorDivide(value * ratio, 256));
}

std::int64_t CombineModel(std::int64_t own, std::int64_t outer)
{
    return own * outer / 256 % 65536;
}

const std::vector<int> kLengths = {-32768, -32767, -30000, -257, -256, -255,  -129,  -128,  -3,
                                   -2,     -1,     0,      1,    2,    3,     127,   128,   129,
                                   255,    256,    257,    719,  9999, 10000, 30000, 32766, 32767};
const std::vector<int> kRatios = {0,     1,     2,     127,   128,   129,   254,  255,
                                  256,   257,   258,   384,   511,   512,   513,  1000,
                                  32767, 32768, 40000, 65279, 65280, 65534, 65535};

TEST(Arithmetic, WrapKeepsTheLow16Bits)
{
    for (int value = -200000; value <= 200000; ++value)
        ASSERT_EQ(Wrap(value), WrapModel(value)) << value;
    for (std::int64_t value : {INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, INT32_MAX})
        EXPECT_EQ(Wrap(static_cast<Int32>(value)), WrapModel(value)) << value;
    static_assert(Wrap(32767 + 1) == -32768 && Wrap(-32768 - 1) == 32767, "wraps at compile time");
}

TEST(Arithmetic, ScaleRoundsTowardMinusInfinityAndWraps)
{
    for (int value : kLengths) {
        for (int ratio : kRatios) {
            ASSERT_EQ(Scale(static_cast<MetricValue>(value), static_cast<RatioValue>(ratio)),
                      ScaleModel(value, ratio))
                << value << " times " << ratio << " / 256";
        }
    }
    EXPECT_EQ(Scale(-1, 128), -1);
    EXPECT_EQ(Scale(1, 128), 0);
    EXPECT_EQ(Scale(32767, 512), -2);
}

TEST(Arithmetic, ScaleAgreesWithTheModelForRandomOperands)
{
    SeededRandom random(1);
    for (int i = 0; i < 200000; ++i) {
        const int value = random.Between(-32768, 32767);
        const int ratio = random.Between(0, 65535);
        ASSERT_EQ(Scale(static_cast<MetricValue>(value), static_cast<RatioValue>(ratio)),
                  ScaleModel(value, ratio))
            << value << " times " << ratio << " / 256";
    }
}

TEST(Arithmetic, AFactorOfOneLeavesEveryValueUntouched)
{
    for (int value = -32768; value <= 32767; ++value)
        ASSERT_EQ(Scale(static_cast<MetricValue>(value), kRatioOne), value);
    for (int ratio = 0; ratio <= 65535; ++ratio)
        ASSERT_EQ(CombineRatios(static_cast<RatioValue>(ratio), kRatioOne), ratio);
}

TEST(Arithmetic, CombinedRatiosAreCutTo16Bits)
{
    for (int own : kRatios) {
        for (int outer : kRatios) {
            ASSERT_EQ(CombineRatios(static_cast<RatioValue>(own), static_cast<RatioValue>(outer)),
                      CombineModel(own, outer))
                << own << " and " << outer;
        }
    }
    // 65535 squared does not fit in 31 bits.
    EXPECT_EQ(CombineRatios(65535, 65535), 65024);
    EXPECT_EQ(CombineRatios(4096, 4096), 0);
}

TEST(Arithmetic, CombinedBlendsAreRoundedDown)
{
    for (int a = 0; a <= 255; ++a) {
        for (int b = 0; b <= 255; ++b) {
            // The greatest opacity whose 255-fold does not pass the product.
            int expected = 0;
            while ((expected + 1) * 255 <= a * b)
                ++expected;
            ASSERT_EQ(CombineBlends(static_cast<BlendValue>(a), static_cast<BlendValue>(b)),
                      expected)
                << a << " and " << b;
        }
    }
}

TEST(Arithmetic, ColourChannelsHaveRedInTheLowestByte)
{
    const ColorValue color = 0xFF0A141E;
    EXPECT_EQ(LowRed(color), 0x1E);
    EXPECT_EQ(LowGreen(color), 0x14);
    EXPECT_EQ(LowBlue(color), 0x0A);
}

} // namespace
} // namespace zelxxx
