/** The mutex of the operating-system layer. */
#include "os_support.h"
#include "vrel_kestrin_mutex.h"
#include "vtable_slot.h"

#include <cerrno>
#include <ctime>

#include <pthread.h>

#include <gtest/gtest.h>

using kestrin_test::Elapsed;
using kestrin_test::ExpectSlots;
using kestrin_test::kFailure;
using kestrin_test::kLongPast;
using kestrin_test::OnOtherThread;
using kestrin_test::Pause;
using kestrin_test::RunningThread;

/** Asked by ThreadSanitizer: one test unlocks a mutex that another thread holds, on purpose. */
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions()
{
    return "mutex:Mutex_UnlockAnswersZeroAlsoWhenTheUnlockFails_Test\n";
}

namespace {

TEST(MutexSlots, FollowTheDestructor)
{
    ExpectSlots<Vrel_IMutex>(2, &Vrel_IMutex::TryLock, &Vrel_IMutex::Lock, &Vrel_IMutex::Unlock,
                             &Vrel_IMutex::GetHandle);
}

TEST(MutexTypes, HaveTheirNumbers)
{
    EXPECT_EQ(Vrel_MUTEX_NORMAL, 0);
    EXPECT_EQ(Vrel_MUTEX_RECURSIVE, 1);
    EXPECT_EQ(Vrel_MUTEX_ERRORCHECK, 2);
    EXPECT_EQ(Vrel_MUTEX_DEFAULT, 0);
}

TEST(Mutex, LockKeepsOtherThreadsOutUntilUnlock)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    EXPECT_EQ(mutex.Lock(0), 0);
    EXPECT_EQ(OnOtherThread([&] { return mutex.TryLock(); }), EBUSY);
    EXPECT_EQ(mutex.Unlock(), 0);
    EXPECT_EQ(OnOtherThread([&] {
                  const HRESULT result = mutex.TryLock();
                  mutex.Unlock();
                  return result;
              }),
              0);
}

TEST(Mutex, TryLockOnAHeldMutexAnswersEbusyNotTheFailureCode)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    EXPECT_EQ(mutex.TryLock(), 0);
    EXPECT_EQ(mutex.TryLock(), 16);
    mutex.Unlock();
}

/** Locks a held mutex with a timeout and expects that this takes until it is unlocked. */
void ExpectLockWaits(INT timeout)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    mutex.Lock(0);
    HRESULT result = kFailure;
    RunningThread other([&] {
        result = mutex.Lock(timeout);
        mutex.Unlock();
    });
    Pause();
    EXPECT_FALSE(other.Ended());
    mutex.Unlock();
    other.Join();
    EXPECT_EQ(result, 0);
}

TEST(Mutex, LockWithTimeoutZeroWaitsWithoutLimit)
{
    ExpectLockWaits(0);
}

TEST(Mutex, LockWithNegativeTimeoutWaitsWithoutLimit)
{
    ExpectLockWaits(-1);
}

TEST(Mutex, LockWithPositiveTimeoutOnAHeldMutexFailsAtOnce)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    mutex.Lock(0);
    for (const INT timeout : {1, 5, kLongPast}) {
        const Elapsed elapsed;
        EXPECT_EQ(OnOtherThread([&] { return mutex.Lock(timeout); }), kFailure);
        EXPECT_LT(elapsed.Milliseconds(), 900) << timeout;
    }
    mutex.Unlock();
}

TEST(Mutex, LockWithPositiveTimeoutTakesAFreeMutex)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    EXPECT_EQ(mutex.Lock(1), 0);
    EXPECT_EQ(OnOtherThread([&] { return mutex.TryLock(); }), EBUSY);
    mutex.Unlock();
}

TEST(Mutex, PositiveTimeoutIsAPointInTimeSinceTheEpoch)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    mutex.Lock(0);
    const Elapsed elapsed;
    const INT in_two_seconds = static_cast<INT>(time(nullptr)) + 2;
    EXPECT_EQ(OnOtherThread([&] { return mutex.Lock(in_two_seconds); }), kFailure);
    // The clock may stand anywhere in its second.
    EXPECT_GT(elapsed.Milliseconds(), 900);
    mutex.Unlock();
}

TEST(Mutex, NormalMutexBlocksItsOwnHolder)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    mutex.Lock(0);
    EXPECT_EQ(mutex.Lock(1), kFailure); // a deadline, so that the test ends
    mutex.Unlock();
    EXPECT_EQ(mutex.TryLock(), 0);
    mutex.Unlock();
}

TEST(Mutex, RecursiveMutexIsUnlockedAsOftenAsLocked)
{
    Vrel_Mutex mutex(Vrel_MUTEX_RECURSIVE);
    EXPECT_EQ(mutex.Lock(0), 0);
    EXPECT_EQ(mutex.Lock(0), 0);
    mutex.Unlock();
    EXPECT_EQ(OnOtherThread([&] { return mutex.TryLock(); }), EBUSY);
    mutex.Unlock();
    EXPECT_EQ(OnOtherThread([&] {
                  const HRESULT result = mutex.TryLock();
                  mutex.Unlock();
                  return result;
              }),
              0);
}

TEST(Mutex, ErrorCheckMutexRefusesItsHolder)
{
    Vrel_Mutex mutex(Vrel_MUTEX_ERRORCHECK);
    EXPECT_EQ(mutex.Lock(0), 0);
    EXPECT_EQ(mutex.Lock(0), kFailure);
    mutex.Unlock();
}

TEST(Mutex, TypesOtherThanZeroToTwoAreRecursive)
{
    for (const INT type : {3, -1, 1000000}) {
        Vrel_Mutex mutex(static_cast<Vrel_Mutex_Type>(type));
        EXPECT_EQ(mutex.TryLock(), 0);
        EXPECT_EQ(mutex.TryLock(), 0) << type;
        mutex.Unlock();
        mutex.Unlock();
    }
}

TEST(Mutex, UnlockAnswersZeroAlsoWhenTheUnlockFails)
{
    Vrel_Mutex mutex(Vrel_MUTEX_ERRORCHECK);
    mutex.Lock(0);
    // The other thread does not hold it: POSIX answers EPERM, and the mutex stays locked.
    EXPECT_EQ(OnOtherThread([&] { return mutex.Unlock(); }), 0);
    EXPECT_EQ(OnOtherThread([&] { return mutex.TryLock(); }), EBUSY);
    mutex.Unlock();
}

TEST(Mutex, HandleIsThePosixMutex)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    auto* handle = static_cast<pthread_mutex_t*>(mutex.GetHandle());
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(pthread_mutex_lock(handle), 0);
    EXPECT_EQ(mutex.TryLock(), EBUSY);
    EXPECT_EQ(pthread_mutex_unlock(handle), 0);
    EXPECT_EQ(mutex.TryLock(), 0);
    mutex.Unlock();
}

TEST(Mutex, ServesThroughItsInterface)
{
    Vrel_IMutex* mutex = new Vrel_Mutex(Vrel_MUTEX_DEFAULT);
    EXPECT_EQ(mutex->Lock(0), 0);
    EXPECT_EQ(mutex->TryLock(), EBUSY);
    EXPECT_EQ(mutex->Unlock(), 0);
    delete mutex;
}

TEST(Mutex, KeepsACounterOfManyThreadsRight)
{
    Vrel_Mutex mutex(Vrel_MUTEX_NORMAL);
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 10000; ++i) {
            mutex.Lock(0);
            ++counter;
            mutex.Unlock();
        }
    };
    {
        RunningThread one(count);
        RunningThread two(count);
        RunningThread three(count);
    }
    EXPECT_EQ(counter, 30000);
}

} // namespace
