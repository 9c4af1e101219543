#include "vrel_kestrin_thread.h"

#include "VrelPosix_p.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>

#include <sched.h>
#include <sys/prctl.h>
#include <sys/select.h>
#include <sys/time.h>

class Vrel_PosixThread : public Vrel_IThread
{
public:
    Vrel_PosixThread(Vrel_Thread* delegator, Vrel_Thread_Sched sched, BOOL detached)
        : m_Delegator(delegator), m_Sched(sched), m_Detached(detached)
    {
    }
    ~Vrel_PosixThread() override;
    Vrel_PosixThread(const Vrel_PosixThread&) = delete;
    Vrel_PosixThread& operator=(const Vrel_PosixThread&) = delete;

    HRESULT Start(void* param) override;
    HRESULT Task(void* param) override { return m_Delegator->Task(param); }
    HRESULT Wait(INT dwTimeout) override;
    pthread_t GetThreadID() override { return *m_ThreadId; }
    HRESULT SetThreadName(PCHAR name) override;

private:
    static void* Procedure(void* self);

    Vrel_Thread* const m_Delegator; // the object that owns this one
    const Vrel_Thread_Sched m_Sched;
    const BOOL m_Detached;
    // 0 until started. Both the new thread and Start store it, so that each finds it set; Start
    // does so when a detached thread may have deleted this object already, and so holds it as well.
    const std::shared_ptr<std::atomic<pthread_t>> m_ThreadId{new std::atomic<pthread_t>(0)};
    bool m_Joined = false;
    void* m_param = nullptr;
};

Vrel_PosixThread::~Vrel_PosixThread()
{
    if (!m_Detached)
        Vrel_PosixThread::Wait(-1);
}

/** Sets the policy only. New threads inherit theirs unless told otherwise, so it has no effect. */
static void SetPolicy(pthread_attr_t& attributes, Vrel_Thread_Sched sched)
{
    switch (sched) {
    case Vrel_THREAD_SCHED_FIFO:
        pthread_attr_setschedpolicy(&attributes, SCHED_FIFO);
        break;
    case Vrel_THREAD_SCHED_RR:
        pthread_attr_setschedpolicy(&attributes, SCHED_RR);
        break;
    case Vrel_THREAD_SCHED_OTHER:
        pthread_attr_setschedpolicy(&attributes, SCHED_OTHER);
        break;
    default:
        break;
    }
}

HRESULT Vrel_PosixThread::Start(void* param)
{
    m_param = param;
    const bool was_joined = m_Joined;
    m_Joined = false;

    pthread_attr_t attributes; // holds no memory, and so is not destroyed
    const bool with_attributes = m_Sched != Vrel_THREAD_SCHED_DEFAULT;
    if (with_attributes) {
        pthread_attr_init(&attributes);
        SetPolicy(attributes, m_Sched);
    }

    // A detached thread deletes this object, perhaps before pthread_create returns: what is needed
    // from then on is taken out now.
    const auto thread_id = m_ThreadId;
    const bool detached = m_Detached != 0;
    pthread_t id;
    if (pthread_create(&id, with_attributes ? &attributes : nullptr, Procedure, this) != 0) {
        m_Joined = was_joined;
        return kVrelFailure;
    }
    *thread_id = id;
    if (detached)
        pthread_detach(id);
    return kVrelSuccess;
}

void* Vrel_PosixThread::Procedure(void* self)
{
    auto* thread = static_cast<Vrel_PosixThread*>(self);
    *thread->m_ThreadId = pthread_self();
    Vrel_Thread* const owned = thread->m_Detached ? thread->m_Delegator : nullptr;
    thread->Task(thread->m_param);
    delete owned;
    return nullptr;
}

HRESULT Vrel_PosixThread::Wait(INT /*dwTimeout*/)
{
    const pthread_t id = *m_ThreadId;
    if (id == 0 || m_Detached || m_Joined)
        return kVrelFailure;
    std::puts("Before join...");
    std::fflush(stdout);
    const int result = pthread_join(id, nullptr);
    std::puts("After join...");
    std::fflush(stdout);
    if (result == 0)
        m_Joined = true;
    return VrelResult(result);
}

HRESULT Vrel_PosixThread::SetThreadName(PCHAR name)
{
    if (name == nullptr)
        return kVrelFailure;
    return VrelResult(prctl(PR_SET_NAME, name));
}

Vrel_Thread::Vrel_Thread(Vrel_Thread_Sched sched, BOOL detached)
    : delegate(new Vrel_PosixThread(this, sched, detached))
{
}

Vrel_Thread::~Vrel_Thread()
{
    delete delegate;
}

HRESULT Vrel_Thread::Start(void* param)
{
    return delegate->Start(param);
}

HRESULT Vrel_Thread::Task(void* /*param*/)
{
    return kVrelSuccess;
}

HRESULT Vrel_Thread::Wait(INT dwTimeout)
{
    return delegate->Wait(dwTimeout);
}

pthread_t Vrel_Thread::GetThreadID()
{
    return delegate->GetThreadID();
}

HRESULT Vrel_Thread::SetThreadName(PCHAR name)
{
    return delegate->SetThreadName(name);
}

DWORD Vrel_GetTickCount()
{
    // Beyond it milliseconds do not fit. A clock that knows the date is always beyond.
    constexpr time_t last_second = 4294967;
    timeval now;
    if (gettimeofday(&now, nullptr) != 0 || now.tv_sec > last_second)
        return 0;
    return static_cast<DWORD>(now.tv_sec) * 1000 + static_cast<DWORD>(now.tv_usec / 1000);
}

void Vrel_Sleep(INT milliseconds)
{
    timeval left;
    left.tv_sec = milliseconds / 1000;
    left.tv_usec = milliseconds % 1000 * 1000;
    // The system writes the time that is left back, so that a signal does not start it anew.
    while (select(0, nullptr, nullptr, nullptr, &left) != 0 && errno == EINTR) {
    }
}
