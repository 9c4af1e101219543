/**
 * The decompressor of image files beside UCL's own checked one, on the same streams.
 *
 * Both take turns on one stream. Of each the fastest turn counts, in the time that the thread had
 * the processor, so that what else the machine does hardly matters. The counters are bytes decoded
 * in a second and `ratio`, our time over UCL's: below 1 is faster. The last line is the geometric
 * mean of all ratios; "Time" is that of a turn of both.
 */
#include "DFB/image.h"

#include "nrv2b_samples.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <ucl/ucl.h>

using kestrin_test::Compressed;
using kestrin_test::kSampleKinds;
using kestrin_test::SampleKind;
using zelxxx::Image;
using zelxxx::UInt8;

namespace {

/** Seconds of the processor that this thread had so far. */
double Now()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/** Decodes `repeats` times; returns the time of one, or a negative number on failure. */
template <class Decode>
double TimeOfTurn(std::size_t repeats, Decode decode)
{
    const double start = Now();
    bool decoded = true;
    for (std::size_t i = 0; i < repeats; ++i)
        decoded &= decode();
    const double time = Now() - start;
    benchmark::ClobberMemory();
    return decoded ? time / static_cast<double>(repeats) : -1;
}

benchmark::Counter Speed(double bytes, double seconds)
{
    return {bytes / seconds, benchmark::Counter::kDefaults, benchmark::Counter::kIs1024};
}

void DecodeBoth(benchmark::State& state, const SampleKind& kind)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    std::mt19937_64 random(20030415);
    const std::string pixels = kind.make(size, random);
    const std::string stream = Compressed(pixels, static_cast<int>(state.range(1)));
    const auto* in = reinterpret_cast<const UInt8*>(stream.data());
    std::vector<UInt8> out(size);
    double ours = std::numeric_limits<double>::max();
    double theirs = ours;
    // A turn lasts long enough for the clock.
    const std::size_t repeats = 200000 / size + 1;
    for (auto unused : state) {
        static_cast<void>(unused);
        ours = std::min(ours, TimeOfTurn(repeats, [&] {
                            return Image::Decode(in, stream.size(), out.data(), size) == 1;
                        }));
        theirs = std::min(theirs, TimeOfTurn(repeats, [&] {
                              auto length = static_cast<ucl_uint>(size);
                              return ucl_nrv2b_decompress_safe_8(
                                         in, static_cast<ucl_uint>(stream.size()), out.data(),
                                         &length, nullptr) == UCL_E_OK &&
                                     length == size;
                          }));
    }
    if (ours < 0 || theirs < 0)
        state.SkipWithError("a stream was not decoded");
    const auto bytes = static_cast<double>(size);
    state.counters["ours"] = Speed(bytes, ours);
    state.counters["ucl"] = Speed(bytes, theirs);
    state.counters["ratio"] = ours / theirs;
}

/** Adds up the ratios that are reported. */
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    RatioReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            const auto ratio = run.counters.find("ratio");
            if (ratio == run.counters.end())
                continue;
            _log_sum += std::log(ratio->second.value);
            ++_count;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override
    {
        if (_count > 0)
            std::printf("our time over UCL's, all streams: %.3f\n", std::exp(_log_sum / _count));
    }

private:
    double _log_sum = 0;
    int _count = 0;
};

} // namespace

int main(int argc, char** argv)
{
    for (const SampleKind& kind : kSampleKinds)
        benchmark::RegisterBenchmark(kind.name,
                                     [&kind](benchmark::State& state) { DecodeBoth(state, kind); })
            ->ArgNames({"size", "level"})
            ->ArgsProduct({{4096, 720 * 576}, {1, 5, 10}})
            ->MinTime(0.1)
            ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
