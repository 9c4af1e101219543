/**
 * How far long work is, on standard error.
 */
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

namespace kestrin_tools {

/** Work that takes longer than the interval says how far it is, once each interval. */
class Progress
{
public:
    explicit Progress(std::string what,
                      std::chrono::milliseconds interval = std::chrono::seconds(2))
        : _what(std::move(what)), _interval(interval), _told(Clock::now())
    {
    }

    void Tell(std::size_t done, std::size_t total)
    {
        const Clock::time_point now = Clock::now();
        if (now - _told < _interval)
            return;
        _told = now;
        std::fprintf(stderr, "%s: %zu of %zu\n", _what.c_str(), done, total);
    }

private:
    using Clock = std::chrono::steady_clock;

    std::string _what;
    std::chrono::milliseconds _interval;
    Clock::time_point _told;
};

} // namespace kestrin_tools
