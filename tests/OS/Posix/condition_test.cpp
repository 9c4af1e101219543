/** The condition of the operating-system layer. */
#include "os_support.h"
#include "vrel_kestrin_condition.h"
#include "vtable_slot.h"

#include <cerrno>
#include <ctime>
#include <deque>

#include <gtest/gtest.h>

using kestrin_test::Elapsed;
using kestrin_test::ExpectSlots;
using kestrin_test::kFailure;
using kestrin_test::kLongPast;
using kestrin_test::OnOtherThread;
using kestrin_test::Pause;
using kestrin_test::RunningThread;

namespace {

TEST(ConditionSlots, FollowTheDestructor)
{
    ExpectSlots<Vrel_ICondition>(2, &Vrel_ICondition::Wait, &Vrel_ICondition::Signal,
                                 &Vrel_ICondition::Broadcast);
}

/** A condition, its mutex, and threads that wait once and count themselves. */
class Condition : public testing::Test
{
protected:
    HRESULT WaitOnce(INT timeout)
    {
        mutex.Lock(0);
        ++waiting;
        const HRESULT result = condition.Wait(timeout);
        ++woken;
        return result;
    }
    /** Returns when so many threads are inside Wait: they have counted and let the mutex go. */
    void UntilWaiting(int count)
    {
        for (;;) {
            mutex.Lock(0);
            const bool there = waiting == count;
            mutex.Unlock();
            if (there)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    /** Whether another thread can take the mutex. */
    bool Free()
    {
        return OnOtherThread([this] {
            const HRESULT result = mutex.TryLock();
            if (result == 0)
                mutex.Unlock();
            return result == 0;
        });
    }
    void ExpectWaitWaits(INT timeout)
    {
        HRESULT result = kFailure;
        RunningThread other([&] { result = WaitOnce(timeout); });
        UntilWaiting(1);
        Pause();
        EXPECT_FALSE(other.Ended());
        EXPECT_EQ(condition.Signal(), 0);
        other.Join();
        EXPECT_EQ(result, 0);
    }

    Vrel_Mutex mutex{Vrel_MUTEX_ERRORCHECK};
    Vrel_Condition condition{mutex};
    int waiting = 0; // under the mutex
    std::atomic<int> woken = {0};
};

TEST_F(Condition, WaitWithTimeoutZeroWaitsWithoutLimit)
{
    ExpectWaitWaits(0);
}

TEST_F(Condition, WaitWithNegativeTimeoutWaitsWithoutLimit)
{
    ExpectWaitWaits(-1);
}

TEST_F(Condition, WaitLeavesWithoutTheLock)
{
    bool relocked = false;
    RunningThread other([&] {
        WaitOnce(0);
        // Its mutex checks for errors: had the thread come out with the lock, this would fail.
        relocked = mutex.Lock(0) == 0;
        mutex.Unlock();
    });
    UntilWaiting(1);
    condition.Signal();
    other.Join();
    EXPECT_TRUE(relocked);
    EXPECT_TRUE(Free());
}

TEST_F(Condition, FailedWaitLeavesWithoutTheLock)
{
    mutex.Lock(0);
    EXPECT_FALSE(Free());
    EXPECT_EQ(condition.Wait(kLongPast), kFailure);
    EXPECT_TRUE(Free());
}

TEST_F(Condition, WaitWithPositiveTimeoutFailsAtOnce)
{
    for (const INT timeout : {1, 5, kLongPast}) {
        const Elapsed elapsed;
        EXPECT_EQ(WaitOnce(timeout), kFailure);
        EXPECT_LT(elapsed.Milliseconds(), 900) << timeout;
    }
}

TEST_F(Condition, PositiveTimeoutIsAPointInTimeSinceTheEpoch)
{
    const Elapsed elapsed;
    EXPECT_EQ(WaitOnce(static_cast<INT>(time(nullptr)) + 2), kFailure);
    // The clock may stand anywhere in its second.
    EXPECT_GT(elapsed.Milliseconds(), 900);
}

TEST_F(Condition, OthersTakeTheLockMeanwhile)
{
    RunningThread other([&] { WaitOnce(0); });
    UntilWaiting(1);
    EXPECT_TRUE(Free());
    condition.Signal();
}

TEST_F(Condition, SignalWakesOneAndBroadcastAll)
{
    const auto wait = [&] { WaitOnce(0); };
    RunningThread one(wait);
    RunningThread two(wait);
    RunningThread three(wait);
    UntilWaiting(3);

    EXPECT_EQ(condition.Signal(), 0);
    while (woken == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    Pause();
    // POSIX allows a wait to end for no reason, so not exactly one.
    EXPECT_LT(woken, 3);

    EXPECT_EQ(condition.Broadcast(), 0);
    one.Join();
    two.Join();
    three.Join();
    EXPECT_EQ(woken, 3);
}

TEST_F(Condition, SignalsWithoutAWaiterAreLost)
{
    EXPECT_EQ(condition.Signal(), 0);
    EXPECT_EQ(condition.Broadcast(), 0);
    EXPECT_EQ(WaitOnce(kLongPast), kFailure);
}

TEST_F(Condition, ServesThroughItsInterface)
{
    Vrel_ICondition* other = new Vrel_Condition(mutex);
    EXPECT_EQ(other->Signal(), 0);
    EXPECT_EQ(other->Broadcast(), 0);
    mutex.Lock(0);
    EXPECT_EQ(other->Wait(kLongPast), kFailure);
    delete other;
}

TEST_F(Condition, QueueIsEmptiedInTheWayTheHeaderShows)
{
    std::deque<int> queue;
    constexpr int count = 2000;
    RunningThread producer([&] {
        for (int i = 1; i <= count; ++i) {
            mutex.Lock(0);
            queue.push_back(i);
            condition.Signal();
            mutex.Unlock();
        }
    });
    long sum = 0;
    for (int taken = 0; taken < count; ++taken) {
        ASSERT_EQ(mutex.Lock(0), 0);
        while (queue.empty()) {
            condition.Wait(0);
            mutex.Lock(0);
        }
        sum += queue.front();
        queue.pop_front();
        mutex.Unlock();
    }
    EXPECT_EQ(sum, 2001000);
}

} // namespace
