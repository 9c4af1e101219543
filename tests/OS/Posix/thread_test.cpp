/** The threads of the operating-system layer. */
#include "os_support.h"
#include "vrel_kestrin_semaphore.h"
#include "vrel_kestrin_thread.h"
#include "vtable_slot.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

using kestrin_test::ExpectSlots;
using kestrin_test::kFailure;
using kestrin_test::Pause;
using kestrin_test::RunningThread;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

constexpr char kJoinLines[] = "Before join...\nAfter join...\n";

/** A thread whose task is a function that it is given. */
class FunctionThread : public Vrel_Thread
{
public:
    explicit FunctionThread(std::function<void()> function,
                            Vrel_Thread_Sched sched = Vrel_THREAD_SCHED_DEFAULT)
        : Vrel_Thread(sched, 0), _function(std::move(function))
    {
    }
    ~FunctionThread() override { Wait(0); }

    HRESULT Task(void* param) override
    {
        seen_param = param;
        seen_id = GetThreadID();
        own_id = pthread_self();
        _function();
        return kFailure; // which nobody looks at
    }

    void* seen_param = nullptr;
    pthread_t seen_id = 0;
    pthread_t own_id = 0;

private:
    const std::function<void()> _function;
};

void Nothing() {}

TEST(ThreadSlots, FollowTheDestructor)
{
    ExpectSlots<Vrel_IThread>(2, &Vrel_IThread::Start, &Vrel_IThread::Task, &Vrel_IThread::Wait,
                              &Vrel_IThread::GetThreadID, &Vrel_IThread::SetThreadName);
}

TEST(ThreadPolicies, HaveTheirNumbers)
{
    EXPECT_EQ(Vrel_THREAD_SCHED_DEFAULT, 0);
    EXPECT_EQ(Vrel_THREAD_SCHED_FIFO, 1);
    EXPECT_EQ(Vrel_THREAD_SCHED_RR, 2);
    EXPECT_EQ(Vrel_THREAD_SCHED_OTHER, 3);
}

TEST(Thread, TaskRunsOnAThreadOfItsOwnWithTheParameter)
{
    int something = 0;
    FunctionThread thread(Nothing);
    EXPECT_EQ(thread.Start(&something), 0);
    EXPECT_EQ(thread.Wait(0), 0);
    EXPECT_EQ(thread.seen_param, &something);
    EXPECT_FALSE(pthread_equal(thread.own_id, pthread_self()));
}

TEST(Thread, WithoutATaskOfItsOwnDoesNothing)
{
    Vrel_Thread thread(Vrel_THREAD_SCHED_DEFAULT, 0);
    EXPECT_EQ(thread.Start(nullptr), 0);
    EXPECT_EQ(thread.Wait(0), 0);
}

TEST(Thread, IdIsZeroUntilTheStart)
{
    FunctionThread thread(Nothing);
    EXPECT_EQ(thread.GetThreadID(), pthread_t(0));
}

TEST(Thread, IdIsThatOfTheThread)
{
    Vrel_Semaphore go_on;
    FunctionThread thread([&] { go_on.Wait(0); });
    thread.Start(nullptr);
    const pthread_t id = thread.GetThreadID();
    go_on.Post(1);
    thread.Wait(0);
    EXPECT_EQ(id, thread.own_id);
    EXPECT_EQ(thread.GetThreadID(), id);
}

TEST(Thread, TaskFindsItsIdSet)
{
    for (int round = 0; round < 200; ++round) {
        FunctionThread thread(Nothing);
        thread.Start(nullptr);
        thread.Wait(0);
        ASSERT_EQ(thread.seen_id, thread.own_id);
    }
}

// ---- Waiting ----------------------------------------------------------------------------------

TEST(ThreadWait, WritesItsTwoLines)
{
    FunctionThread thread(Nothing);
    CaptureStdout();
    thread.Start(nullptr);
    EXPECT_EQ(thread.Wait(0), 0);
    EXPECT_EQ(GetCapturedStdout(), kJoinLines);
}

/** Standard output through a pipe, as a program sees it that reads ours. */
class OutputPipe
{
public:
    OutputPipe()
    {
        EXPECT_EQ(pipe(_pipe), 0);
        std::fflush(stdout);
        dup2(_pipe[1], STDOUT_FILENO);
    }
    ~OutputPipe()
    {
        std::fflush(stdout);
        dup2(_saved, STDOUT_FILENO);
        for (const int file : {_saved, _pipe[0], _pipe[1]})
            close(file);
    }
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    /** What has arrived or arrives within ten seconds; empty if nothing does. */
    std::string Read() const
    {
        pollfd readable = {_pipe[0], POLLIN, 0};
        char text[64];
        if (poll(&readable, 1, 10000) != 1)
            return {};
        const ssize_t got = read(_pipe[0], text, sizeof text);
        return std::string(text, got > 0 ? static_cast<std::size_t>(got) : 0);
    }

private:
    const int _saved = dup(STDOUT_FILENO);
    int _pipe[2] = {-1, -1};
};

TEST(ThreadWait, EachLineIsOutBeforeAndAfterJoining)
{
    std::string before;
    std::string after;
    {
        const OutputPipe output;
        FunctionThread thread([&] { before = output.Read(); });
        thread.Start(nullptr);
        thread.Wait(0);
        after = output.Read();
    }
    EXPECT_EQ(before, "Before join...\n");
    EXPECT_EQ(after, "After join...\n");
}

TEST(ThreadWait, IgnoresItsTimeout)
{
    for (const INT timeout : {-1, 0, 1, 1000000000}) {
        std::atomic<bool> ended = {false};
        FunctionThread thread([&] {
            Pause();
            ended = true;
        });
        thread.Start(nullptr);
        EXPECT_EQ(thread.Wait(timeout), 0);
        EXPECT_TRUE(ended);
    }
}

TEST(ThreadWait, OfAThreadNeverStartedFailsWithoutPrinting)
{
    CaptureStdout();
    {
        FunctionThread thread(Nothing);
        EXPECT_EQ(thread.Wait(0), kFailure);
    }
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(ThreadWait, SecondWaitFailsWithoutPrinting)
{
    FunctionThread thread(Nothing);
    thread.Start(nullptr);
    thread.Wait(0);
    CaptureStdout();
    EXPECT_EQ(thread.Wait(0), kFailure);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(ThreadWait, DestructorDoesNotJoinAThreadThatWasJoined)
{
    CaptureStdout();
    {
        Vrel_Thread thread(Vrel_THREAD_SCHED_DEFAULT, 0);
        thread.Start(nullptr);
        EXPECT_EQ(thread.Wait(0), 0);
    }
    EXPECT_EQ(GetCapturedStdout(), kJoinLines);
}

/** A thread that leaves the waiting to its base class, and uses nothing of its own. */
class SlowThread : public Vrel_Thread
{
public:
    SlowThread(Vrel_Semaphore& started, std::atomic<bool>& ended)
        : Vrel_Thread(Vrel_THREAD_SCHED_DEFAULT, 0), _started(started), _ended(ended)
    {
    }
    HRESULT Task(void*) override
    {
        std::atomic<bool>& ended = _ended;
        _started.Post(1);
        Pause();
        ended = true;
        return 0;
    }

private:
    Vrel_Semaphore& _started;
    std::atomic<bool>& _ended;
};

TEST(ThreadWait, DestructorWaitsForAThreadThatWasNotJoined)
{
    Vrel_Semaphore started;
    std::atomic<bool> ended = {false};
    CaptureStdout();
    {
        SlowThread thread(started, ended);
        thread.Start(nullptr);
        started.Wait(0);
    }
    EXPECT_TRUE(ended);
    EXPECT_EQ(GetCapturedStdout(), kJoinLines);
}

TEST(ThreadWait, ThreadThatWasJoinedStartsAnew)
{
    int runs = 0;
    CaptureStdout();
    {
        FunctionThread thread([&] { ++runs; });
        thread.Start(nullptr);
        EXPECT_EQ(thread.Wait(0), 0);
        EXPECT_EQ(thread.Start(nullptr), 0);
    }
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(GetCapturedStdout(), std::string(kJoinLines) + kJoinLines);
}

TEST(ThreadWait, ForItselfFailsAndLeavesItToOthers)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "ThreadSanitizer forgets a thread whose join failed, and ends at the next one";
#endif
    HRESULT result = 0;
    Vrel_Thread* self = nullptr;
    Vrel_Semaphore tried;
    FunctionThread thread([&] {
        result = self->Wait(0);
        tried.Post(1);
    });
    self = &thread;
    thread.Start(nullptr);
    tried.Wait(0);
    EXPECT_EQ(result, kFailure);
    EXPECT_EQ(thread.Wait(0), 0);
}

// ---- Detached threads -------------------------------------------------------------------------

/** A detached thread that tells when it runs and when it is deleted. */
class DetachedThread : public Vrel_Thread
{
public:
    struct Events
    {
        Vrel_Semaphore go_on;
        Vrel_Semaphore deleted;
        std::atomic<int> ran = {0};
    };

    DetachedThread(Events& events, bool held)
        : Vrel_Thread(Vrel_THREAD_SCHED_DEFAULT, 1), _events(events), _held(held)
    {
    }
    ~DetachedThread() override { _events.deleted.Post(1); }
    HRESULT Task(void*) override
    {
        if (_held)
            _events.go_on.Wait(0);
        ++_events.ran;
        return 0;
    }

private:
    Events& _events;
    const bool _held;
};

TEST(DetachedThread, DeletesItsObjectWhenTheTaskReturns)
{
    DetachedThread::Events events;
    auto* thread = new DetachedThread(events, true);
    EXPECT_EQ(thread->Start(nullptr), 0);
    Pause();
    EXPECT_EQ(events.deleted.Wait(1), kFailure);
    events.go_on.Post(1);
    EXPECT_EQ(events.deleted.Wait(0), 0);
    EXPECT_EQ(events.ran, 1);
}

TEST(DetachedThread, MayBeGoneBeforeStartReturns)
{
    constexpr int rounds = 2000;
    DetachedThread::Events events;
    for (int round = 0; round < rounds; ++round)
        ASSERT_EQ((new DetachedThread(events, false))->Start(nullptr), 0);
    for (int round = 0; round < rounds; ++round)
        ASSERT_EQ(events.deleted.Wait(0), 0);
    EXPECT_EQ(events.ran, rounds);
}

TEST(DetachedThread, WaitFailsWithoutPrinting)
{
    DetachedThread::Events events;
    auto* thread = new DetachedThread(events, true);
    CaptureStdout();
    thread->Start(nullptr);
    EXPECT_EQ(thread->Wait(0), kFailure);
    events.go_on.Post(1);
    events.deleted.Wait(0);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(DetachedThread, HasItsIdAndIsDetachedWhenStartReturns)
{
    for (int round = 0; round < 50; ++round) {
        DetachedThread::Events events;
        auto* thread = new DetachedThread(events, true);
        thread->Start(nullptr);
        const pthread_t id = thread->GetThreadID();
        ASSERT_NE(id, pthread_t(0));
        pthread_attr_t attributes;
        int state = -1;
        ASSERT_EQ(pthread_getattr_np(id, &attributes), 0);
        pthread_attr_getdetachstate(&attributes, &state);
        pthread_attr_destroy(&attributes);
        EXPECT_EQ(state, PTHREAD_CREATE_DETACHED);
        events.go_on.Post(1);
        events.deleted.Wait(0);
    }
}

TEST(DetachedThread, NeverStartedIsDeletedByItsOwner)
{
    DetachedThread::Events events;
    CaptureStdout();
    delete new DetachedThread(events, false);
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(events.deleted.Wait(1), 0);
}

// ---- Starts that fail, policies, names --------------------------------------------------------

/** Asks the system for stacks of most of any address space, so that no thread can start. */
void MakeStartsFail()
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, SIZE_MAX / 8 * 7), 0);
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
    pthread_attr_destroy(&attributes);
}

TEST(ThreadStart, FailureIsReportedAndLeavesTheThreadUnstarted)
{
    MakeStartsFail();
    FunctionThread thread(Nothing);
    EXPECT_EQ(thread.Start(nullptr), kFailure);
    EXPECT_EQ(thread.GetThreadID(), pthread_t(0));
    CaptureStdout();
    EXPECT_EQ(thread.Wait(0), kFailure);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(ThreadStart, FailureLeavesADetachedThreadToItsOwner)
{
    MakeStartsFail();
    DetachedThread::Events events;
    const auto thread = std::make_unique<DetachedThread>(events, false);
    EXPECT_EQ(thread->Start(nullptr), kFailure);
    EXPECT_EQ(events.deleted.Wait(1), kFailure);
}

TEST(ThreadStart, FailureAfterAJoinDoesNotJoinAgain)
{
    CaptureStdout();
    {
        FunctionThread thread(Nothing);
        thread.Start(nullptr);
        thread.Wait(0);
        MakeStartsFail();
        EXPECT_EQ(thread.Start(nullptr), kFailure);
    }
    EXPECT_EQ(GetCapturedStdout(), kJoinLines);
}

TEST(ThreadStart, PolicyIsInheritedWhateverIsAsked)
{
    int own_policy = -1;
    sched_param parameters = {};
    pthread_getschedparam(pthread_self(), &own_policy, &parameters);
    for (const INT sched : {0, 1, 2, 3, 7, -1}) {
        int policy = -1;
        FunctionThread thread(
            [&] {
                sched_param ignored = {};
                pthread_getschedparam(pthread_self(), &policy, &ignored);
            },
            static_cast<Vrel_Thread_Sched>(sched));
        EXPECT_EQ(thread.Start(nullptr), 0) << sched;
        EXPECT_EQ(thread.Wait(0), 0) << sched;
        EXPECT_EQ(policy, own_policy) << sched;
    }
}

std::string NameOfThisThread()
{
    char name[16] = {};
    prctl(PR_GET_NAME, name);
    return name;
}

TEST(SetThreadName, NamesTheCallingThreadNotTheObjects)
{
    Vrel_Semaphore named;
    std::string name_of_task;
    FunctionThread thread([&] {
        named.Wait(0);
        name_of_task = NameOfThisThread();
    });
    thread.Start(nullptr);
    char name[] = "caller";
    EXPECT_EQ(thread.SetThreadName(name), 0);
    named.Post(1);
    thread.Wait(0);
    EXPECT_EQ(NameOfThisThread(), "caller");
    EXPECT_NE(name_of_task, "caller");
}

TEST(SetThreadName, NamesTheThreadFromWithinItsTask)
{
    std::string name_of_task;
    Vrel_Thread* self = nullptr;
    FunctionThread thread([&] {
        char name[] = "loader of subtitles";
        self->SetThreadName(name);
        name_of_task = NameOfThisThread();
    });
    self = &thread;
    const std::string before = NameOfThisThread();
    thread.Start(nullptr);
    thread.Wait(0);
    EXPECT_EQ(name_of_task, "loader of subti");
    EXPECT_EQ(NameOfThisThread(), before);
}

TEST(SetThreadName, NullFails)
{
    FunctionThread thread(Nothing);
    EXPECT_EQ(thread.SetThreadName(nullptr), kFailure);
}

} // namespace
