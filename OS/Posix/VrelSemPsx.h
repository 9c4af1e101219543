/** The semaphore of POSIX behind Vrel_Semaphore. */
#pragma once

#include "vrel_kestrin_semaphore.h"

#include <semaphore.h>

class Vrel_PosixSem : public Vrel_ISemaphore
{
public:
    Vrel_PosixSem() { sem_init(&sem, 0, 0); }
    // The semaphore is not destroyed: a thread that posted last may still be on its way out of it.
    Vrel_PosixSem(const Vrel_PosixSem&) = delete;
    Vrel_PosixSem& operator=(const Vrel_PosixSem&) = delete;

    HRESULT Post(INT count) override;
    HRESULT Wait(INT timeout) override;
    void* GetHandle() override { return nullptr; }

protected:
    sem_t sem;
};
