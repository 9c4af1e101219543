/**
 * @file
 * A counting semaphore for the threads of one process, counting from 0.
 *
 * Ownership: the client makes and deletes the objects. They have no reference count.
 *
 * Threads: any thread may call any function.
 *
 * Results are 0 for success and 0x80004005 for failure.
 *
 * As with a mutex, a timeout is not a length of time: Wait(5) does not wait five seconds but fails
 * at once when the count is 0. Where waiting is meant, pass 0. Wait(1) takes one if there is one.
 */
#pragma once

#include "vrel_kestrin_datatype.h"
#include "vrel_kestrin_scalar.h"

/**
 * @addtogroup os
 * @{
 */

/** What a semaphore does. */
class KESTRIN_EXPORT Vrel_ISemaphore
{
public:
    virtual ~Vrel_ISemaphore() {}
    /**
     * Raises the count, by one at a time.
     *
     * @param count  how often; below 1 does nothing and succeeds
     * @return 0, or 0x80004005 when the count cannot rise further (2147483647); what was added
     *         before stays
     */
    virtual HRESULT Post(INT count) = 0;
    /**
     * Lowers the count by one, waiting for it to be above 0.
     *
     * @param timeout  below 1: waits without limit, which is what callers want. From 1: until that
     *                 second after 1970, so that a count of 0 fails at once
     * @return 0 when the count was lowered, else 0x80004005. Failure also when the handler of a
     *         signal ran meanwhile that was installed without SA_RESTART: wait again then
     */
    virtual HRESULT Wait(INT timeout) = 0;
    /** The semaphore of the system is not handed out. @return null */
    virtual void* GetHandle() = 0;
};

/** A semaphore of POSIX threads. Destroy it only when no thread waits for it. */
class KESTRIN_EXPORT Vrel_Semaphore : public Vrel_ISemaphore
{
public:
    /** With a count of 0. */
    Vrel_Semaphore();
    ~Vrel_Semaphore() override;
    Vrel_Semaphore(const Vrel_Semaphore&) = delete;
    Vrel_Semaphore& operator=(const Vrel_Semaphore&) = delete;

    HRESULT Post(INT count) override;
    HRESULT Wait(INT timeout) override;
    void* GetHandle() override;

private:
    Vrel_ISemaphore* m_Delegate; /**< owned */
};

/** @} */
