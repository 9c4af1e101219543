/**
 * The time of day that gettimeofday tells, for programs that link kestrin_clock_test_support. The
 * real clock runs until a test sets another.
 */
#pragma once

#include <optional>

#include <sys/time.h>

namespace kestrin_test {

struct Clock
{
    std::optional<timeval> now; ///< without it the real clock runs
    bool broken = false;        ///< gettimeofday fails
};

Clock& TestClock();

void SetClock(time_t seconds, suseconds_t microseconds);

} // namespace kestrin_test
