/**
 * Whole frames through zelUpdateScreen, and the same scenes shown by others.
 *
 * Each painter has a process of its own, since DirectFB takes one display mode to a process; all of
 * them draw on memory, the engine on a screen file. KESTRIN_DISPLAY_OPTIONS=no-hardware leaves the
 * graphics driver out.
 *
 * A case is measured in short rounds: a calibration loop of fixed work, some frames, the changed
 * pixels of the same frames copied once with memcpy, and the calibration loop again. A round is
 * quiet when both calibrations took at most 20 % longer than the shortest of the run and the
 * process had its processor to itself; only quiet rounds count, and a case without any is an error.
 * (Two builds can be compared on a busy machine with KESTRIN_BENCH_NOISE=50, or another
 * percentage.) Times are those of the processor. Counters:
 *
 *     us_frame      a frame, median of the quiet rounds (idle: see ns_frame)
 *     us_kpixel     a frame over a thousand changed pixels
 *     painted       pixels written (cleared, painted, copied to the display), over pixels changed;
 *                   taken in a run of its own from the calls that write them
 *     copies        presented copies to the display in a frame, taken in the same run
 *     x_memcpy      a frame over the copying of its changed pixels, median of the quiet rounds'
 *     quiet, rounds how many rounds there were
 *
 * Immediate painters clear and draw every item that touches a changed rectangle, clipped to it,
 * straight into the visible buffer: the least that drawing with them could cost. The engine and EFL
 * find out themselves what has changed.
 */
#include "frame_scenes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

#include <benchmark/benchmark.h>

namespace kestrin_bench {

namespace {

constexpr int kQuietRounds = 15;
constexpr int kMostRounds = 200;
constexpr double kMostSeconds = 6; // of a case, on a machine that is never quiet
constexpr double kRoundSeconds = 0.004;
constexpr double kCopySeconds = 0.001;

/** How many times longer than the shortest a quiet calibration may take. */
double Noise()
{
    static const char* percent = std::getenv("KESTRIN_BENCH_NOISE");
    static const double factor = 1 + (percent ? std::atof(percent) : 20) / 100;
    return factor;
}

double Seconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/** Times something by the processor's time, and sees to it that wall time went along. */
class Watch
{
public:
    double Stop()
    {
        const double seconds = Seconds(CLOCK_PROCESS_CPUTIME_ID) - _processor;
        _alone = _alone && Seconds(CLOCK_MONOTONIC) - _wall <= seconds * Noise() + 20e-6;
        return seconds;
    }
    void Start()
    {
        _wall = Seconds(CLOCK_MONOTONIC);
        _processor = Seconds(CLOCK_PROCESS_CPUTIME_ID);
    }
    bool WasAlone() const { return _alone; }

private:
    bool _alone = true;
    double _wall = 0;
    double _processor = 0;
};

/** Fixed work in the first caches: what else the core and its memory do shows in its time. */
void Calibrate()
{
    static std::vector<std::uint32_t> words(1 << 16, 1);
    std::uint32_t sum = 0;
    for (int turn = 0; turn < 8; ++turn) {
        for (std::uint32_t& word : words) {
            sum = sum * 1664525 + word;
            word = sum;
        }
    }
    benchmark::DoNotOptimize(sum);
}

struct Order
{
    int scene;
    bool first; // prepare, check and count instead of a round
};

struct Answer
{
    double calibration; // the longer of the two
    double frame;       // seconds
    double copy;
    double painted; // pixels of a frame; below 0 where they cannot be counted
    double copies;  // likewise of the display's
    bool alone;
    bool good; // the frames change what they should and nothing else
};

/** Measures in the process of one painter. */
class Stage
{
public:
    Stage(std::unique_ptr<FramePainter> painter, std::vector<Scene> scenes)
        : _painter(std::move(painter)), _scenes(std::move(scenes))
    {
    }

    Answer Take(const Order& order)
    {
        _scene = &_scenes[static_cast<std::size_t>(order.scene)];
        return order.first ? Prepare() : Round();
    }

private:
    Answer Prepare()
    {
        Answer answer = {};
        _from.assign(static_cast<std::size_t>(_scene->width * _scene->height) *
                         static_cast<std::size_t>(_scene->PixelBytes()),
                     1);
        _to = _from;
        _painter->Prepare(*_scene);
        answer.good = IsTrue();
        _painter->StartCounting();
        Circle();
        const Work work = _painter->StopCounting();
        const double frames = _scene->steps.empty() ? 1 : static_cast<double>(_scene->steps.size());
        answer.painted = static_cast<double>(work.pixels) / frames;
        answer.copies = static_cast<double>(work.copies) / frames;
        _circles = Repeats(kRoundSeconds, [this] { Circle(); });
        _copies = _scene->steps.empty() ? 0 : Repeats(kCopySeconds, [this] { Copy(); });
        return answer;
    }

    /** Whether each step changes pixels, and none outside what it says. */
    bool IsTrue()
    {
        std::vector<std::uint32_t> before = _painter->Screen();
        for (const Step& step : _scene->steps) {
            _painter->Show(step);
            std::vector<std::uint32_t> after = _painter->Screen();
            const bool changed = after != before;
            std::swap(after, before);
            // Where it may have changed the old picture takes the new one's pixels.
            for (const Rect& rect : step.changed) {
                for (int y = rect.y; y < rect.Bottom(); ++y) {
                    const auto at = static_cast<std::ptrdiff_t>(y) * _scene->width + rect.x;
                    std::copy_n(before.begin() + at, rect.w, after.begin() + at);
                }
            }
            if (!changed || after != before)
                return false;
        }
        return true;
    }

    Answer Round()
    {
        Answer answer = {};
        Watch watch;
        watch.Start();
        Calibrate();
        answer.calibration = watch.Stop();
        watch.Start();
        for (int i = 0; i < _circles; ++i)
            Circle();
        answer.frame = watch.Stop() / _circles / CircleLength();
        if (_copies > 0) {
            watch.Start();
            for (int i = 0; i < _copies; ++i)
                Copy();
            answer.copy = watch.Stop() / _copies / CircleLength();
        }
        watch.Start();
        Calibrate();
        answer.calibration = std::max(answer.calibration, watch.Stop());
        answer.alone = watch.WasAlone();
        answer.good = true;
        return answer;
    }

    double CircleLength() const
    {
        return _scene->steps.empty() ? kIdleFrames : static_cast<double>(_scene->steps.size());
    }

    void Circle()
    {
        for (const Step& step : _scene->steps)
            _painter->Show(step);
        for (int i = 0; _scene->steps.empty() && i < kIdleFrames; ++i)
            _painter->Idle();
    }

    void Copy()
    {
        const auto size = static_cast<std::size_t>(_scene->PixelBytes());
        const std::size_t pitch = static_cast<std::size_t>(_scene->width) * size;
        for (const Step& step : _scene->steps) {
            for (const Rect& rect : step.changed) {
                std::size_t at = static_cast<std::size_t>(rect.y) * pitch +
                                 static_cast<std::size_t>(rect.x) * size;
                for (int y = 0; y < rect.h; ++y, at += pitch)
                    std::memcpy(&_to[at], &_from[at], static_cast<std::size_t>(rect.w) * size);
            }
            benchmark::ClobberMemory();
        }
    }

    /** How often something fits into a time. */
    static int Repeats(double seconds, const std::function<void()>& call)
    {
        call();
        const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
        call();
        const double once = std::max(Seconds(CLOCK_PROCESS_CPUTIME_ID) - start, 1e-7);
        return std::max(static_cast<int>(seconds / once), 1);
    }

    static constexpr int kIdleFrames = 1000;

    std::unique_ptr<FramePainter> _painter;
    std::vector<Scene> _scenes;
    const Scene* _scene = nullptr;
    std::vector<std::uint8_t> _from, _to;
    int _circles = 1;
    int _copies = 1;
};

/** The process of one painter; it is told what to measure, and answers. */
class Worker
{
public:
    using Make = std::function<std::unique_ptr<FramePainter>()>;

    Worker(std::string name, bool palette, const Make& make) : _name(std::move(name))
    {
        int orders[2];
        int answers[2];
        if (pipe(orders) != 0 || pipe(answers) != 0)
            throw std::runtime_error("no pipe");
        const pid_t child = fork();
        if (child < 0)
            throw std::runtime_error("no process");
        if (child == 0) {
            close(orders[1]);
            Serve(palette, make, orders[0], answers[1]);
        }
        close(orders[0]);
        close(answers[1]);
        _orders = orders[1];
        _answers = answers[0];
    }

    const std::string& Name() const { return _name; }

    Answer Take(const Order& order) const
    {
        Answer answer = {};
        if (write(_orders, &order, sizeof order) != sizeof order ||
            read(_answers, &answer, sizeof answer) != sizeof answer)
            throw std::runtime_error("the process of " + _name + " has ended");
        return answer;
    }

private:
    [[noreturn]] static void Serve(bool palette, const Make& make, int orders, int answers)
    {
        try {
            std::unique_ptr<Stage> stage; // made by the first order: it may never come
            Order order = {};
            while (read(orders, &order, sizeof order) == sizeof order) {
                if (!stage)
                    stage = std::make_unique<Stage>(make(), MakeScenes(palette));
                const Answer answer = stage->Take(order);
                if (write(answers, &answer, sizeof answer) != sizeof answer)
                    break;
            }
        } catch (const std::exception& error) {
            std::fprintf(stderr, "frame_bench: %s\n", error.what());
        }
        _exit(0);
    }

    std::string _name;
    int _orders = -1;
    int _answers = -1;
};

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/** The shortest calibration of the run so far. */
double least_calibration = 1;

std::vector<Answer> QuietOnes(const std::vector<Answer>& rounds)
{
    std::vector<Answer> quiet;
    std::copy_if(rounds.begin(), rounds.end(), std::back_inserter(quiet), [](const Answer& round) {
        return round.alone && round.calibration <= least_calibration * Noise();
    });
    return quiet;
}

void Measure(benchmark::State& state, const Worker& worker, const Scene& scene, int number)
{
    const Answer first = worker.Take({number, true});
    if (!first.good) {
        state.SkipWithError("the frames do not change what they should");
        return;
    }
    std::vector<Answer> rounds;
    std::vector<Answer> quiet;
    const double end = Seconds(CLOCK_MONOTONIC) + kMostSeconds;
    while (rounds.size() < kMostRounds && quiet.size() < kQuietRounds &&
           Seconds(CLOCK_MONOTONIC) < end) {
        rounds.push_back(worker.Take({number, false}));
        if (rounds.back().alone)
            least_calibration = std::min(least_calibration, rounds.back().calibration);
        quiet = QuietOnes(rounds);
    }
    if (quiet.empty()) {
        state.SkipWithError("no quiet round");
        return;
    }
    std::vector<double> frames;
    std::vector<double> ratios;
    for (const Answer& round : quiet) {
        frames.push_back(round.frame);
        ratios.push_back(round.frame / round.copy);
    }
    const double frame = Median(frames);
    for (auto unused : state) {
        static_cast<void>(unused);
        state.SetIterationTime(frame);
    }
    if (scene.steps.empty()) {
        state.counters["ns_frame"] = frame * 1e9;
    } else {
        state.counters["us_frame"] = frame * 1e6;
        state.counters["us_kpixel"] = frame * 1e9 / scene.ChangedPixels();
        state.counters["x_memcpy"] = Median(ratios);
        if (first.painted >= 0)
            state.counters["painted"] = first.painted / scene.ChangedPixels();
        if (first.copies >= 0)
            state.counters["copies"] = first.copies;
    }
    state.counters["quiet"] = static_cast<double>(quiet.size());
    state.counters["rounds"] = static_cast<double>(rounds.size());
}

std::vector<std::unique_ptr<Worker>> MakeWorkers(bool palette)
{
    std::vector<std::unique_ptr<Worker>> workers;
    const auto add = [&](const char* name, const Worker::Make& make) {
        workers.push_back(std::make_unique<Worker>(name, palette, make));
    };
    add("kestrin", [palette] { return MakeKestrinFrames(palette); });
    if (palette) // the others know no palettes
        return workers;
#ifdef KESTRIN_BENCH_EFL
    add("efl", [] { return MakeEflFrames(); });
#endif
#ifdef KESTRIN_BENCH_CAIRO
    add("cairo", [] { return MakeCairoFrames(); });
#endif
#ifdef KESTRIN_BENCH_PIXMAN
    add("pixman", [] { return MakePixmanFrames(); });
#endif
#ifdef KESTRIN_BENCH_SDL
    add("sdl", [] { return MakeSdlFrames(); });
#endif
    return workers;
}

void Register(const std::vector<Scene>& scenes, const std::vector<std::unique_ptr<Worker>>& workers,
              const std::string& mode)
{
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        for (const auto& worker : workers) {
            const bool retained = worker->Name() == "kestrin" || worker->Name() == "efl";
            if (scenes[i].steps.empty() && !retained) // what is told of changes has none to find
                continue;
            benchmark::RegisterBenchmark(
                (scenes[i].name + "/" + mode + "/" + worker->Name()).c_str(),
                [&worker = *worker, &scene = scenes[i], i](benchmark::State& state) {
                    Measure(state, worker, scene, static_cast<int>(i));
                })
                ->UseManualTime()
                ->Iterations(1)
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

} // namespace

} // namespace kestrin_bench

int main(int argc, char** argv)
{
    using namespace kestrin_bench;
    const auto colours = MakeWorkers(false);
    const auto indices = MakeWorkers(true);
    const std::vector<Scene> colour_scenes = MakeScenes(false);
    const std::vector<Scene> index_scenes = MakeScenes(true);
    Register(colour_scenes, colours, "32");
    Register(index_scenes, indices, "8");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
