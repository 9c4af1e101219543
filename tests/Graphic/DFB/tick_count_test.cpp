/** The tick count, on a clock that this program sets. */
#include "engine_display.h"
#include "test_clock.h"
#include "vrel_kestrin_graphic.h"

#include <gtest/gtest.h>

using kestrin_test::SetClock;
using kestrin_test::TestClock;
using kestrin_test::TestDisplay;
using zelxxx::UInt32;
using zelxxx::zelGetTickCount;

namespace {

constexpr time_t kStart = 1000000000;
constexpr time_t kMostSeconds = 4294967; // whose milliseconds fit in 32 bits

/** The engine, started at kStart and 900 ms. */
class TickCount : public testing::Test
{
protected:
    TickCount() : _display(64, 48)
    {
        SetClock(kStart, 900000);
        zelxxx::zelInitialize(64, 48, 32);
    }

    TestDisplay _display;
};

TEST_F(TickCount, StartsAtZero)
{
    EXPECT_EQ(zelGetTickCount(), 0U);
}

TEST_F(TickCount, CountsMilliseconds)
{
    SetClock(kStart + 3, 901000);
    EXPECT_EQ(zelGetTickCount(), 3001U);
}

TEST_F(TickCount, PartsOfAMillisecondAreCutTowardZero)
{
    SetClock(kStart, 901999);
    EXPECT_EQ(zelGetTickCount(), 1U);
    // 1000 ms less 899.5 ms: the difference is cut, not the sum.
    SetClock(kStart + 1, 500);
    EXPECT_EQ(zelGetTickCount(), 101U);
}

TEST_F(TickCount, LastSecondThatFits)
{
    SetClock(kStart + kMostSeconds - 1, 900000);
    EXPECT_EQ(zelGetTickCount(), 4294966000U);
}

TEST_F(TickCount, StartsAnewBeyondTheLastSecond)
{
    SetClock(kStart + kMostSeconds, 900000);
    EXPECT_EQ(zelGetTickCount(), 0U);
    SetClock(kStart + kMostSeconds + 2, 950000);
    EXPECT_EQ(zelGetTickCount(), 2050U);
}

TEST_F(TickCount, ClockSetBackByASecondWrapsBelowZero)
{
    SetClock(kStart - 1, 900000);
    EXPECT_EQ(zelGetTickCount(), static_cast<UInt32>(-1000));
}

TEST_F(TickCount, ClockSetBackByMoreStartsAnew)
{
    SetClock(kStart - 2, 900000);
    EXPECT_EQ(zelGetTickCount(), 0U);
    SetClock(kStart - 2, 907000);
    EXPECT_EQ(zelGetTickCount(), 7U);
}

TEST_F(TickCount, UnreadableClockAnswersZeroAndKeepsTheBase)
{
    TestClock().broken = true;
    EXPECT_EQ(zelGetTickCount(), 0U);
    TestClock().broken = false;
    SetClock(kStart + 1, 900000);
    EXPECT_EQ(zelGetTickCount(), 1000U);
}

TEST_F(TickCount, LaterInitialisationsStartAnew)
{
    SetClock(kStart + 5, 900000);
    zelxxx::zelInitialize(64, 48, 32);
    EXPECT_EQ(zelGetTickCount(), 0U);
}

TEST_F(TickCount, InitOsdAndTheEndLeaveTheBaseAlone)
{
    SetClock(kStart + 5, 900000);
    zelxxx::zelInitOSD(64, 48, 32);
    zelxxx::zelUninitialize();
    EXPECT_EQ(zelGetTickCount(), 5000U);
}

TEST(TickCountBeforeTheStart, FirstCallTakesTheBase)
{
    SetClock(kStart, 1000);
    EXPECT_EQ(zelGetTickCount(), 0U);
    SetClock(kStart, 26000);
    EXPECT_EQ(zelGetTickCount(), 25U);
}

TEST(TickCountOnTheRealClock, IsNearZeroAfterTheStart)
{
    const kestrin_test::EngineDisplay engine(64, 48);
    EXPECT_LT(zelGetTickCount(), 5000U);
}

} // namespace
