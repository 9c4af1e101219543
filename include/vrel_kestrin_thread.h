/**
 * @file
 * Threads, ticks and sleep.
 *
 * A thread is a class of the client's, derived from Vrel_Thread, whose Task runs on the new thread:
 *
 *     class Loader : public Vrel_Thread
 *     {
 *     public:
 *         Loader() : Vrel_Thread(Vrel_THREAD_SCHED_DEFAULT, 0) {}
 *         ~Loader() override { Wait(0); } // before the members that Task uses go
 *         HRESULT Task(void* param) override;
 *     };
 *
 * The engine is called from one thread only. Threads of this kind prepare work and hand it to that
 * thread; they do not touch scenes and widgets.
 *
 * What surprises:
 *
 * - A detached thread owns its object and deletes it when Task returns. Make it with new, keep no
 *   pointer to it after Start, which itself may return when the object is gone, and never delete it
 *   after a Start that succeeded. After one that failed the object is still the caller's.
 * - Wait ignores its timeout and writes two lines to standard output, before and after it waits.
 *   A program whose output is read by another uses a semaphore that Task posts at its end, and
 *   still lets the destructor wait.
 * - The destructor of a thread that is not detached waits for it. By then the derived class is
 *   gone: a class whose Task uses members calls Wait in its own destructor, as above.
 * - The scheduling policy has no effect: no priority is set, and POSIX lets a new thread inherit
 *   policy and priority of the one that starts it. Call pthread_setschedparam within Task.
 * - SetThreadName names the thread that calls it, not the object's: call it within Task.
 */
#pragma once

#include "vrel_kestrin_datatype.h"
#include "vrel_kestrin_scalar.h"

#include <pthread.h>

/**
 * @addtogroup os
 * @{
 */

/** Scheduling policies, asked for without effect. Every other value counts as the default. */
enum Vrel_Thread_Sched : int32_t
{
    Vrel_THREAD_SCHED_DEFAULT = 0, /**< none asked for */
    Vrel_THREAD_SCHED_FIFO = 1,    /**< SCHED_FIFO of POSIX */
    Vrel_THREAD_SCHED_RR = 2,      /**< SCHED_RR */
    Vrel_THREAD_SCHED_OTHER = 3    /**< SCHED_OTHER */
};

/** What a thread does. Results are 0 for success and 0x80004005 for failure. */
class KESTRIN_EXPORT Vrel_IThread
{
public:
    virtual ~Vrel_IThread() {}
    /**
     * Starts the thread. A thread that is not detached may be started again after it was waited
     * for, not before.
     *
     * @param param  handed to Task; to outlive the thread if it points to something
     * @return 0, or 0x80004005 when the system has no thread to give
     */
    virtual HRESULT Start(void* param) = 0;
    /**
     * What the thread does; called on the new thread.
     *
     * @param param  as given to Start
     * @return not used
     */
    virtual HRESULT Task(void* param) = 0;
    /**
     * Waits without limit for the thread to end, once; called from one thread.
     *
     * @param dwTimeout  ignored
     * @return 0, or 0x80004005: at once and without a word, when the thread was not started, was
     *         waited for before or is detached; also when a thread waits for itself
     */
    virtual HRESULT Wait(INT dwTimeout) = 0;
    /** The thread's id, of no more use once it was waited for. @return 0 before the first start */
    virtual pthread_t GetThreadID() = 0;
    /**
     * Names the calling thread, whichever it is.
     *
     * @param name  copied; the system cuts it to 15 bytes. Null fails
     * @return 0 or 0x80004005
     */
    virtual HRESULT SetThreadName(PCHAR name) = 0;
};

/** A POSIX thread. */
class KESTRIN_EXPORT Vrel_Thread : public Vrel_IThread
{
public:
    /**
     * A thread that is not started.
     *
     * @param sched     asked of the system, without effect
     * @param detached  not 0: nobody waits for it, and it deletes this object at its end
     */
    Vrel_Thread(Vrel_Thread_Sched sched, BOOL detached);
    /** Waits for a thread that was started and is not detached, unless it was waited for. */
    ~Vrel_Thread() override;
    Vrel_Thread(const Vrel_Thread&) = delete;
    Vrel_Thread& operator=(const Vrel_Thread&) = delete;

    HRESULT Start(void* param) override;
    /** To be overridden; does nothing. @param param  as given to Start @return not used */
    HRESULT Task(void* param) override;
    HRESULT Wait(INT dwTimeout) override;
    pthread_t GetThreadID() override;
    HRESULT SetThreadName(PCHAR name) override;

private:
    Vrel_IThread* delegate; /**< owned */
};

/**
 * Milliseconds of a clock that counts from the start of the system. On one that knows the date it
 * is always 0: the milliseconds since 1970 fit for the first 4294967 seconds only (49.7 days). Use
 * zelxxx::zelGetTickCount or std::chrono::steady_clock instead.
 *
 * @return milliseconds, or 0
 */
KESTRIN_EXPORT DWORD Vrel_GetTickCount();

/**
 * Sleeps, for the whole time also when signals interrupt it.
 *
 * @param milliseconds  below 1: returns at once
 */
KESTRIN_EXPORT void Vrel_Sleep(INT milliseconds);

/** @} */
