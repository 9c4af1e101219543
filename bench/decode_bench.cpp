/**
 * The decompressor of image files beside UCL's own checked one, on the same streams.
 *
 * Both take turns on one stream, so that what else the machine does hits both alike. "Time" is ours
 * for one stream; the counters are bytes decoded in a second and `ratio`, our time over UCL's:
 * below 1 is faster. The last line is the geometric mean of all ratios.
 */
#include "DFB/image.h"

#include "nrv2b_samples.h"

#include <chrono>
#include <cmath>
#include <cstdio>
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

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void DecodeBoth(benchmark::State& state, const SampleKind& kind)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    std::mt19937_64 random(20030415);
    const std::string pixels = kind.make(size, random);
    const std::string stream = Compressed(pixels, static_cast<int>(state.range(1)));
    const auto* in = reinterpret_cast<const UInt8*>(stream.data());
    std::vector<UInt8> out(size);
    double ours = 0;
    double theirs = 0;
    // A turn lasts long enough for the clock.
    const std::size_t repeats = 200000 / size + 1;
    for (auto unused : state) {
        static_cast<void>(unused);
        Clock::time_point start = Clock::now();
        int decoded = 1;
        for (std::size_t i = 0; i < repeats; ++i)
            decoded &= Image::Decode(in, stream.size(), out.data(), size);
        const double turn = SecondsSince(start);
        benchmark::ClobberMemory();
        start = Clock::now();
        ucl_uint length = 0;
        for (std::size_t i = 0; i < repeats; ++i) {
            length = static_cast<ucl_uint>(size);
            ucl_nrv2b_decompress_safe_8(in, static_cast<ucl_uint>(stream.size()), out.data(),
                                        &length, nullptr);
        }
        const double their_turn = SecondsSince(start);
        benchmark::ClobberMemory();
        if (decoded != 1 || length != size)
            state.SkipWithError("a stream was not decoded");
        ours += turn;
        theirs += their_turn;
        state.SetIterationTime(turn + their_turn);
    }
    const double bytes = static_cast<double>(size) * static_cast<double>(repeats) *
                         static_cast<double>(state.iterations());
    state.counters["ours"] = benchmark::Counter(bytes / ours, benchmark::Counter::kDefaults,
                                                benchmark::Counter::kIs1024);
    state.counters["ucl"] = benchmark::Counter(bytes / theirs, benchmark::Counter::kDefaults,
                                               benchmark::Counter::kIs1024);
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
            ->UseManualTime()
            ->MinTime(0.1)
            ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
