/** Takes the time of pieces of work that are to be compared, in turns. */
#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <functional>
#include <random>
#include <utility>
#include <vector>

namespace kestrin_bench {

/** Seconds of the processor that this thread had so far. */
inline double ThreadSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/** The middle one; of an even number the upper of the two. Not of nothing. */
inline double MedianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/**
 * Pieces of work that take turns in short rounds, in an order that changes from round to round.
 *
 * Whatever else the machine does slows neighbouring turns alike, so what is compared is taken from
 * each round by itself, and the median of the rounds counts. Every turn begins with runs that are
 * not timed, since what the turn before left in the caches is not this one's.
 */
class Turns
{
public:
    using Work = std::function<void()>;

    explicit Turns(std::vector<Work> works) : _works(std::move(works)), _seconds(_works.size())
    {
        for (const Work& work : _works) {
            _order.push_back(_order.size());
            for (int i = 0; i < kUntimed; ++i)
                work();
            const double start = ThreadSeconds();
            work();
            const double once = std::max(ThreadSeconds() - start, 1e-9);
            _repeats.push_back(static_cast<int>(std::clamp(kTurn / once, 2.0, 1e6)));
        }
    }

    /** Takes rounds for a while; never too few for a median, nor more than it needs. */
    void Run(double seconds)
    {
        const double start = ThreadSeconds();
        int rounds = 0;
        while (rounds < kFewestRounds ||
               (rounds < kMostRounds && ThreadSeconds() - start < seconds)) {
            std::shuffle(_order.begin(), _order.end(), _random);
            for (const std::size_t piece : _order)
                Take(piece);
            ++rounds;
        }
    }

    /** Seconds of one run of a piece. */
    double Median(std::size_t piece) const { return MedianOf(_seconds[piece]); }

    /** How many seconds one piece takes more than another. */
    double MedianExcess(std::size_t piece, std::size_t other) const
    {
        return Compared(piece, other, [](double a, double b) { return a - b; });
    }

    /** How many times as long one piece takes as another. */
    double MedianRatio(std::size_t piece, std::size_t other) const
    {
        return Compared(piece, other, [](double a, double b) { return a / b; });
    }

private:
    static constexpr double kTurn = 60e-6; // seconds
    static constexpr int kUntimed = 2;
    static constexpr int kFewestRounds = 7;
    static constexpr int kMostRounds = 201;

    void Take(std::size_t piece)
    {
        const Work& work = _works[piece];
        for (int i = 0; i < kUntimed; ++i)
            work();
        const double start = ThreadSeconds();
        for (int i = 0; i < _repeats[piece]; ++i)
            work();
        _seconds[piece].push_back((ThreadSeconds() - start) / _repeats[piece]);
    }

    template <class Compare>
    double Compared(std::size_t piece, std::size_t other, Compare compare) const
    {
        std::vector<double> results;
        for (std::size_t i = 0; i < _seconds[piece].size(); ++i)
            results.push_back(compare(_seconds[piece][i], _seconds[other][i]));
        return MedianOf(std::move(results));
    }

    std::vector<Work> _works;
    std::vector<int> _repeats;
    std::vector<std::vector<double>> _seconds;
    std::vector<std::size_t> _order;
    std::minstd_rand _random; // the same order in every run of the program
};

} // namespace kestrin_bench
