/** The tick count of the operating-system layer, on the real clock and on one that a test sets. */
#include "test_clock.h"
#include "vrel_kestrin_thread.h"

#include <type_traits>

#include <gtest/gtest.h>

using kestrin_test::SetClock;
using kestrin_test::TestClock;

namespace {

constexpr time_t kLastSecond = 4294967;

static_assert(std::is_same<decltype(Vrel_GetTickCount()), DWORD>::value, "32 bits, unsigned");

TEST(Ticks, AreZeroOnARealDate)
{
    timeval now;
    ASSERT_EQ(gettimeofday(&now, nullptr), 0);
    ASSERT_GT(now.tv_sec, 1000000000);
    EXPECT_EQ(Vrel_GetTickCount(), 0U);
}

TEST(Ticks, CountMillisecondsOfAClockThatStartsWithTheSystem)
{
    SetClock(0, 0);
    EXPECT_EQ(Vrel_GetTickCount(), 0U);
    SetClock(0, 25000);
    EXPECT_EQ(Vrel_GetTickCount(), 25U);
    SetClock(3600, 500000);
    EXPECT_EQ(Vrel_GetTickCount(), 3600500U);
}

TEST(Ticks, PartsOfAMillisecondAreCut)
{
    SetClock(0, 999);
    EXPECT_EQ(Vrel_GetTickCount(), 0U);
    SetClock(1, 999999);
    EXPECT_EQ(Vrel_GetTickCount(), 1999U);
}

TEST(Ticks, LastSecondCountsAndTheNextIsZero)
{
    SetClock(kLastSecond, 1000);
    EXPECT_EQ(Vrel_GetTickCount(), 4294967001U);
    SetClock(kLastSecond + 1, 0);
    EXPECT_EQ(Vrel_GetTickCount(), 0U);
    SetClock(kLastSecond + 2, 500000);
    EXPECT_EQ(Vrel_GetTickCount(), 0U);
}

TEST(Ticks, WrapWithinTheLastSecond)
{
    SetClock(kLastSecond, 295999);
    EXPECT_EQ(Vrel_GetTickCount(), 4294967295U);
    SetClock(kLastSecond, 999999);
    EXPECT_EQ(Vrel_GetTickCount(), 703U);
}

TEST(Ticks, AreZeroWhenTheClockCannotBeRead)
{
    SetClock(3600, 500000);
    TestClock().broken = true;
    EXPECT_EQ(Vrel_GetTickCount(), 0U);
}

} // namespace
