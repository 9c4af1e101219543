#include "vrel_kestrin_condition.h"

#include "VrelPosix_p.h"

#include <pthread.h>

class Vrel_PosixCond : public Vrel_ICondition
{
public:
    explicit Vrel_PosixCond(Vrel_Mutex& lock) : _lock(lock) { pthread_cond_init(&_cond, nullptr); }
    ~Vrel_PosixCond() override { pthread_cond_destroy(&_cond); }
    Vrel_PosixCond(const Vrel_PosixCond&) = delete;
    Vrel_PosixCond& operator=(const Vrel_PosixCond&) = delete;

    HRESULT Wait(INT timeout) override;
    HRESULT Signal() override { return pthread_cond_signal(&_cond); }
    HRESULT Broadcast() override { return pthread_cond_broadcast(&_cond); }

private:
    Vrel_Mutex& _lock;
    pthread_cond_t _cond;
};

HRESULT Vrel_PosixCond::Wait(INT timeout)
{
    auto* mutex = static_cast<pthread_mutex_t*>(_lock.GetHandle());
    int result;
    if (VrelWaitsForEver(timeout)) {
        result = pthread_cond_wait(&_cond, mutex);
    } else {
        const timespec deadline = VrelDeadline(timeout);
        result = pthread_cond_timedwait(&_cond, mutex, &deadline);
    }
    // POSIX hands the lock back; clients of this class expect to come out without it.
    _lock.Unlock();
    return VrelResult(result);
}

Vrel_Condition::Vrel_Condition(Vrel_Mutex& lock) : m_Delegate(new Vrel_PosixCond(lock)) {}

Vrel_Condition::~Vrel_Condition()
{
    delete m_Delegate;
}

HRESULT Vrel_Condition::Wait(INT timeout)
{
    return m_Delegate->Wait(timeout);
}

HRESULT Vrel_Condition::Signal()
{
    return m_Delegate->Signal();
}

HRESULT Vrel_Condition::Broadcast()
{
    return m_Delegate->Broadcast();
}
