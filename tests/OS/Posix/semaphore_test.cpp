/** The semaphore of the operating-system layer. */
#include "VrelSemPsx.h"
#include "os_support.h"
#include "vtable_slot.h"

#include <climits>
#include <ctime>

#include <gtest/gtest.h>

using kestrin_test::Elapsed;
using kestrin_test::ExpectSlots;
using kestrin_test::kFailure;
using kestrin_test::kLongPast;
using kestrin_test::Pause;
using kestrin_test::RunningThread;
using kestrin_test::SignalCounter;

namespace {

/** What is left of a semaphore's count, taken away. */
int Drain(Vrel_ISemaphore& semaphore)
{
    int count = 0;
    while (semaphore.Wait(kLongPast) == 0)
        ++count;
    return count;
}

TEST(SemaphoreSlots, FollowTheDestructor)
{
    ExpectSlots<Vrel_ISemaphore>(2, &Vrel_ISemaphore::Post, &Vrel_ISemaphore::Wait,
                                 &Vrel_ISemaphore::GetHandle);
}

TEST(Semaphore, CountsFromZero)
{
    Vrel_Semaphore semaphore;
    EXPECT_EQ(Drain(semaphore), 0);
}

TEST(Semaphore, PostThreeRaisesTheCountByThree)
{
    Vrel_Semaphore semaphore;
    EXPECT_EQ(semaphore.Post(3), 0);
    EXPECT_EQ(semaphore.Wait(0), 0);
    EXPECT_EQ(semaphore.Wait(-1), 0);
    EXPECT_EQ(semaphore.Wait(1), 0);
    EXPECT_EQ(semaphore.Wait(1), kFailure);
}

TEST(Semaphore, PostZeroDoesNothingAndSucceeds)
{
    Vrel_Semaphore semaphore;
    EXPECT_EQ(semaphore.Post(0), 0);
    EXPECT_EQ(Drain(semaphore), 0);
}

TEST(Semaphore, PostOfANegativeCountDoesNothingAndSucceeds)
{
    Vrel_Semaphore semaphore;
    EXPECT_EQ(semaphore.Post(-3), 0);
    EXPECT_EQ(semaphore.Post(INT_MIN), 0);
    EXPECT_EQ(Drain(semaphore), 0);
}

/** A semaphore that counts from a number near the highest. */
class NearlyFull : public Vrel_PosixSem
{
public:
    NearlyFull() { sem_init(&sem, 0, SEM_VALUE_MAX - 1); }
    int Count()
    {
        int count = 0;
        sem_getvalue(&sem, &count);
        return count;
    }
};

TEST(Semaphore, PostFailsAtTheFirstFailedPost)
{
    NearlyFull semaphore;
    const Elapsed elapsed;
    EXPECT_EQ(semaphore.Post(INT_MAX), kFailure);
    EXPECT_LT(elapsed.Milliseconds(), 900); // it did not try the other two thousand millions
    EXPECT_EQ(semaphore.Count(), SEM_VALUE_MAX);
    EXPECT_EQ(semaphore.Post(1), kFailure);
    EXPECT_EQ(semaphore.Post(0), 0);
}

/** Waits on a count of 0 and expects that this takes until a post. */
void ExpectWaitWaits(INT timeout)
{
    Vrel_Semaphore semaphore;
    HRESULT result = kFailure;
    RunningThread other([&] { result = semaphore.Wait(timeout); });
    Pause();
    EXPECT_FALSE(other.Ended());
    EXPECT_EQ(semaphore.Post(1), 0);
    other.Join();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(Drain(semaphore), 0);
}

TEST(Semaphore, WaitWithTimeoutZeroWaitsWithoutLimit)
{
    ExpectWaitWaits(0);
}

TEST(Semaphore, WaitWithNegativeTimeoutWaitsWithoutLimit)
{
    ExpectWaitWaits(-1);
}

TEST(Semaphore, WaitWithPositiveTimeoutOnACountOfZeroFailsAtOnce)
{
    Vrel_Semaphore semaphore;
    for (const INT timeout : {1, 5, kLongPast}) {
        const Elapsed elapsed;
        EXPECT_EQ(semaphore.Wait(timeout), kFailure);
        EXPECT_LT(elapsed.Milliseconds(), 900) << timeout;
    }
}

TEST(Semaphore, PositiveTimeoutIsAPointInTimeSinceTheEpoch)
{
    Vrel_Semaphore semaphore;
    const Elapsed elapsed;
    EXPECT_EQ(semaphore.Wait(static_cast<INT>(time(nullptr)) + 2), kFailure);
    // The clock may stand anywhere in its second.
    EXPECT_GT(elapsed.Milliseconds(), 900);
}

/** Waits while signals arrive, until the wait ends or half a second is over; then posts. */
HRESULT WaitThroughSignals(int flags)
{
    const SignalCounter signals(flags);
    Vrel_Semaphore semaphore;
    HRESULT result = 0;
    RunningThread other([&] { result = semaphore.Wait(0); });
    const Elapsed elapsed;
    while (!other.Ended() && elapsed.Milliseconds() < 500) {
        pthread_kill(other.Id(), SignalCounter::kSignal);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    semaphore.Post(1);
    other.Join();
    EXPECT_GT(signals.Count(), 0);
    return result;
}

TEST(Semaphore, WaitFailsWhenASignalInterruptsIt)
{
    EXPECT_EQ(WaitThroughSignals(0), kFailure);
}

TEST(Semaphore, WaitGoesOnAfterASignalWhoseHandlerRestartsCalls)
{
    EXPECT_EQ(WaitThroughSignals(SA_RESTART), 0);
}

TEST(Semaphore, HandleIsNull)
{
    Vrel_Semaphore semaphore;
    EXPECT_EQ(semaphore.GetHandle(), nullptr);
}

TEST(Semaphore, ServesThroughItsInterface)
{
    Vrel_ISemaphore* semaphore = new Vrel_Semaphore;
    EXPECT_EQ(semaphore->Post(2), 0);
    EXPECT_EQ(Drain(*semaphore), 2);
    delete semaphore;
}

TEST(Semaphore, HandsValuesFromThreadToThread)
{
    Vrel_Semaphore filled;
    Vrel_Semaphore emptied;
    emptied.Post(1);
    int box = 0;
    long sum = 0;
    {
        RunningThread producer([&] {
            for (int i = 1; i <= 2000; ++i) {
                emptied.Wait(0);
                box = i;
                filled.Post(1);
            }
        });
        for (int i = 1; i <= 2000; ++i) {
            filled.Wait(0);
            sum += box;
            emptied.Post(1);
        }
    }
    EXPECT_EQ(sum, 2001000);
}

} // namespace
