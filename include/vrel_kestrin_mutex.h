/**
 * @file
 * A mutex, for clients with threads of their own. The engine itself has one thread and locks
 * nothing.
 *
 * Results are 0 for success and 0x80004005 for failure, except where a function says otherwise.
 *
 * Ownership: the client makes and deletes the objects. They have no reference count.
 *
 * Threads: any thread may call any function.
 *
 * Two things surprise:
 *
 * - A timeout is not a length of time. A positive one is a point in time, in seconds since 1970,
 *   and long past: Lock(5) does not wait five seconds but fails at once when the mutex is held.
 *   Where waiting is meant, pass 0; to try without waiting, call TryLock. A wait with a limit does
 *   not exist; a thread that must not wait long tries and sleeps in turns.
 * - Unlock always reports success. A client that wants to know whether it held the mutex keeps
 *   account itself, or calls pthread_mutex_unlock on GetHandle().
 */
#pragma once

#include "vrel_kestrin_datatype.h"
#include "vrel_kestrin_scalar.h"

/**
 * @addtogroup os
 * @{
 */

/** What happens when a thread locks a mutex it holds. Every other value counts as recursive. */
enum Vrel_Mutex_Type : int32_t
{
    Vrel_MUTEX_NORMAL = 0,     /**< it waits for itself, for ever */
    Vrel_MUTEX_RECURSIVE = 1,  /**< it holds the mutex once more, and unlocks as often */
    Vrel_MUTEX_ERRORCHECK = 2, /**< Lock fails; TryLock answers EBUSY, as for any held mutex */
    Vrel_MUTEX_DEFAULT = 0     /**< Vrel_MUTEX_NORMAL */
};

/** What a mutex does. */
class KESTRIN_EXPORT Vrel_IMutex
{
public:
    virtual ~Vrel_IMutex() {}
    /**
     * Locks without waiting.
     *
     * @return 0 when locked, else the number of the POSIX error itself, never 0x80004005: EBUSY
     *         (16) when the mutex is held. Compare with 0; a test for negative numbers misses it
     */
    virtual HRESULT TryLock() = 0;
    /**
     * Locks, waiting for the holder.
     *
     * @param timeout  below 1: waits without limit, which is what callers want. From 1: until that
     *                 second after 1970, so that a held mutex fails at once
     * @return 0 when locked, 0x80004005 when not
     */
    virtual HRESULT Lock(INT timeout) = 0;
    /** Unlocks. @return 0, also when the caller did not hold the mutex and nothing happened */
    virtual HRESULT Unlock() = 0;
    /** The mutex of the system. @return address of the pthread_mutex_t; owned here, never null */
    virtual void* GetHandle() = 0;
};

/** A mutex of POSIX threads. Destroy it only when no thread holds it or waits for it. */
class KESTRIN_EXPORT Vrel_Mutex : public Vrel_IMutex
{
public:
    /** Unlocked. @param type  how it answers a thread that locks it twice */
    explicit Vrel_Mutex(Vrel_Mutex_Type type);
    ~Vrel_Mutex() override;
    Vrel_Mutex(const Vrel_Mutex&) = delete;
    Vrel_Mutex& operator=(const Vrel_Mutex&) = delete;

    HRESULT TryLock() override;
    HRESULT Lock(INT timeout) override;
    HRESULT Unlock() override;
    void* GetHandle() override;

private:
    Vrel_IMutex* m_Delegate; /**< owned */
};

/** @} */
