#include "vrel_kestrin_mutex.h"

#include "VrelPosix_p.h"

#include <pthread.h>

class Vrel_PosixMutex : public Vrel_IMutex
{
public:
    explicit Vrel_PosixMutex(Vrel_Mutex_Type type);
    ~Vrel_PosixMutex() override { pthread_mutex_destroy(&mutex); }
    Vrel_PosixMutex(const Vrel_PosixMutex&) = delete;
    Vrel_PosixMutex& operator=(const Vrel_PosixMutex&) = delete;

    HRESULT TryLock() override { return pthread_mutex_trylock(&mutex); }
    HRESULT Lock(INT timeout) override;
    HRESULT Unlock() override;
    void* GetHandle() override { return &mutex; }

private:
    pthread_mutex_t mutex;
};

static int PosixKind(Vrel_Mutex_Type type)
{
    switch (type) {
    case Vrel_MUTEX_NORMAL:
        return PTHREAD_MUTEX_NORMAL;
    case Vrel_MUTEX_ERRORCHECK:
        return PTHREAD_MUTEX_ERRORCHECK;
    default:
        return PTHREAD_MUTEX_RECURSIVE;
    }
}

Vrel_PosixMutex::Vrel_PosixMutex(Vrel_Mutex_Type type)
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PosixKind(type));
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

HRESULT Vrel_PosixMutex::Lock(INT timeout)
{
    if (VrelWaitsForEver(timeout))
        return VrelResult(pthread_mutex_lock(&mutex));
    const timespec deadline = VrelDeadline(timeout);
    return VrelResult(pthread_mutex_timedlock(&mutex, &deadline));
}

HRESULT Vrel_PosixMutex::Unlock()
{
    // Clients rely on it: what the unlock reports is not passed on.
    pthread_mutex_unlock(&mutex);
    return kVrelSuccess;
}

Vrel_Mutex::Vrel_Mutex(Vrel_Mutex_Type type) : m_Delegate(new Vrel_PosixMutex(type)) {}

Vrel_Mutex::~Vrel_Mutex()
{
    delete m_Delegate;
}

HRESULT Vrel_Mutex::TryLock()
{
    return m_Delegate->TryLock();
}

HRESULT Vrel_Mutex::Lock(INT timeout)
{
    return m_Delegate->Lock(timeout);
}

HRESULT Vrel_Mutex::Unlock()
{
    return m_Delegate->Unlock();
}

void* Vrel_Mutex::GetHandle()
{
    return m_Delegate->GetHandle();
}
