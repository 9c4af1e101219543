#include "test_clock.h"

#include <dlfcn.h>

namespace kestrin_test {

Clock& TestClock()
{
    static Clock clock;
    return clock;
}

void SetClock(time_t seconds, suseconds_t microseconds)
{
    TestClock().now = timeval{seconds, microseconds};
}

} // namespace kestrin_test

extern "C" int gettimeofday(timeval* time, void* zone) noexcept
{
    const kestrin_test::Clock& clock = kestrin_test::TestClock();
    if (clock.broken)
        return -1;
    if (clock.now) {
        *time = *clock.now;
        return 0;
    }
    using Function = int(timeval*, void*);
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "gettimeofday"))(time, zone);
}
