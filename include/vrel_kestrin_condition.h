/**
 * @file
 * A condition: threads wait with a mutex in hand until another thread signals.
 *
 * Ownership: the client makes and deletes the objects. A condition uses a mutex of the client's,
 * which outlives it.
 *
 * Threads: any thread may call any function.
 *
 * Two things surprise:
 *
 * - Wait gives the mutex back for good: the caller comes out of it without the lock, whatever the
 *   result. So the state that is waited for has to be looked at after locking again, and Unlock
 *   after Wait is one too many:
 *
 *       mutex.Lock(0);
 *       while (queue.empty()) {
 *           condition.Wait(0);
 *           mutex.Lock(0); // Wait came back without it
 *       }
 *       ... take from the queue ...
 *       mutex.Unlock();
 *
 * - As with a mutex, a timeout is not a length of time: Wait(5) does not wait five seconds but
 *   fails at once, without the lock. Where waiting is meant, pass 0.
 */
#pragma once

#include "vrel_kestrin_mutex.h"

/**
 * @addtogroup os
 * @{
 */

/** What a condition does. */
class KESTRIN_EXPORT Vrel_ICondition
{
public:
    virtual ~Vrel_ICondition() {}
    /**
     * Waits for a signal and unlocks the mutex. The caller holds the mutex once (a recursive one
     * no deeper) and comes out without it in every case.
     *
     * A wait may also end without a signal, so look at what was waited for, in a loop.
     *
     * @param timeout  below 1: waits without limit, which is what callers want. From 1: until that
     *                 second after 1970, so that it fails at once
     * @return 0 when the wait ended, 0x80004005 on failure
     */
    virtual HRESULT Wait(INT timeout) = 0;
    /** Wakes one waiting thread, if there is one. @return 0 or the number of the POSIX error */
    virtual HRESULT Signal() = 0;
    /** Wakes all waiting threads. @return 0 or the number of the POSIX error */
    virtual HRESULT Broadcast() = 0;
};

/** A condition of POSIX threads. Destroy it only when no thread waits for it. */
class KESTRIN_EXPORT Vrel_Condition : public Vrel_ICondition
{
public:
    /** Nobody waits. @param lock  the one mutex it is used with; outlives the condition */
    explicit Vrel_Condition(Vrel_Mutex& lock);
    ~Vrel_Condition() override;
    Vrel_Condition(const Vrel_Condition&) = delete;
    Vrel_Condition& operator=(const Vrel_Condition&) = delete;

    HRESULT Wait(INT timeout) override;
    HRESULT Signal() override;
    HRESULT Broadcast() override;

private:
    Vrel_ICondition* m_Delegate; /**< owned */
};

/** @} */
