/** Sleep of the operating-system layer. */
#include "os_support.h"
#include "vrel_kestrin_thread.h"

#include <climits>

#include <gtest/gtest.h>

using kestrin_test::Elapsed;
using kestrin_test::RunningThread;
using kestrin_test::SignalCounter;

namespace {

TEST(Sleep, TakesItsMilliseconds)
{
    const Elapsed elapsed;
    Vrel_Sleep(300);
    EXPECT_GE(elapsed.Milliseconds(), 250);
    EXPECT_LT(elapsed.Milliseconds(), 1300);
}

TEST(Sleep, TakesSecondsAndTheRest)
{
    const Elapsed elapsed;
    Vrel_Sleep(1200);
    EXPECT_GE(elapsed.Milliseconds(), 1150);
    EXPECT_LT(elapsed.Milliseconds(), 2200);
}

TEST(Sleep, LastsOneAndAHalfSecondsAcrossSignals)
{
    const SignalCounter signals(0);
    const pthread_t sleeper = pthread_self();
    std::atomic<bool> awake = {false};
    int sent = 0;
    const Elapsed elapsed;
    RunningThread disturber([&] {
        while (!awake && elapsed.Milliseconds() < 1400) {
            pthread_kill(sleeper, SignalCounter::kSignal);
            ++sent;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    });
    Vrel_Sleep(1500);
    const long long slept = elapsed.Milliseconds();
    awake = true;
    disturber.Join();
    EXPECT_GT(sent, 5);
    EXPECT_GT(signals.Count(), 0);
    EXPECT_GE(slept, 1450);
    EXPECT_LT(slept, 2500); // started anew by each signal, it would be 2900
}

TEST(Sleep, ZeroAndLessReturnAtOnce)
{
    const Elapsed elapsed;
    for (const INT milliseconds : {0, -1, -999, -1000, -5000, INT_MIN})
        Vrel_Sleep(milliseconds);
    EXPECT_LT(elapsed.Milliseconds(), 900);
}

} // namespace
