#include "VrelSemPsx.h"

#include "VrelPosix_p.h"

HRESULT Vrel_PosixSem::Post(INT count)
{
    for (INT i = 0; i < count; ++i) {
        if (sem_post(&sem) != 0)
            return kVrelFailure;
    }
    return kVrelSuccess;
}

HRESULT Vrel_PosixSem::Wait(INT timeout)
{
    if (VrelWaitsForEver(timeout))
        return VrelResult(sem_wait(&sem));
    const timespec deadline = VrelDeadline(timeout);
    return VrelResult(sem_timedwait(&sem, &deadline));
}

Vrel_Semaphore::Vrel_Semaphore() : m_Delegate(new Vrel_PosixSem) {}

Vrel_Semaphore::~Vrel_Semaphore()
{
    delete m_Delegate;
}

HRESULT Vrel_Semaphore::Post(INT count)
{
    return m_Delegate->Post(count);
}

HRESULT Vrel_Semaphore::Wait(INT timeout)
{
    return m_Delegate->Wait(timeout);
}

void* Vrel_Semaphore::GetHandle()
{
    return m_Delegate->GetHandle();
}
