/** Threads and times for the tests of the operating-system layer, made without it. */
#pragma once

#include "vrel_kestrin_scalar.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

#include <pthread.h>
#include <signal.h>

namespace kestrin_test {

/** The failure code. */
constexpr HRESULT kFailure = static_cast<HRESULT>(0x80004005U);

/** A second that was over before any clock these tests run on started: in the year 2001. */
constexpr INT kLongPast = 1000000000;

/** The time since it was made. */
class Elapsed
{
public:
    long long Milliseconds() const
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - _start).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    const Clock::time_point _start = Clock::now();
};

/** Long enough for another thread to come as far as it can. */
inline void Pause()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
}

/** A thread that is joined at the latest when this object goes, and can be asked if it ended. */
class RunningThread
{
public:
    template <class Function>
    explicit RunningThread(Function function)
        : _thread([this, function = std::move(function)]() mutable {
              function();
              _ended = true;
          })
    {
    }
    ~RunningThread() { Join(); }
    RunningThread(const RunningThread&) = delete;
    RunningThread& operator=(const RunningThread&) = delete;

    bool Ended() const { return _ended; }
    pthread_t Id() { return _thread.native_handle(); }
    void Join()
    {
        if (_thread.joinable())
            _thread.join();
    }

private:
    std::atomic<bool> _ended = {false};
    std::thread _thread;
};

/** Runs a function on a thread of its own and returns its result. */
template <class Function>
auto OnOtherThread(Function function)
{
    decltype(function()) result = {};
    RunningThread([&] { result = function(); }).Join();
    return result;
}

/** Handles a signal by counting it, as long as it lives. One at a time. */
class SignalCounter
{
public:
    static constexpr int kSignal = SIGUSR1;

    /** @param flags  of sigaction, such as SA_RESTART */
    explicit SignalCounter(int flags)
    {
        Counted() = 0;
        struct sigaction action = {};
        action.sa_handler = [](int) { ++Counted(); };
        action.sa_flags = flags;
        sigaction(kSignal, &action, &_before);
    }
    ~SignalCounter() { sigaction(kSignal, &_before, nullptr); }
    SignalCounter(const SignalCounter&) = delete;
    SignalCounter& operator=(const SignalCounter&) = delete;

    int Count() const { return Counted(); }

private:
    static std::atomic<int>& Counted()
    {
        static std::atomic<int> count;
        return count;
    }

    struct sigaction _before = {};
};

} // namespace kestrin_test
