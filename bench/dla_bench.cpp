/**
 * The drawing primitives beside Cairo, SDL2_gfx and pixman, on the same shapes in one run.
 *
 * Each painter draws into a buffer of its own. "word fill" writes the very words that our primitive
 * leaves, from a list of runs: for shapes of long rows that is the least that drawing can cost.
 * Every pair of shape and painter is measured several times, in random order, and the shortest time
 * counts, so that what else the machine does hits all alike.
 *
 * The table at the end has ns for a call and, below it, ns for a pixel that the painter itself
 * left. `best/ours` is the fastest peer's time over ours: above 1, ours is faster.
 */
#include "dla_shapes.h"

#include "vrel_kestrin_dlautils.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <map>

#include <benchmark/benchmark.h>

namespace kestrin_bench {

namespace {

class KestrinPainter final : public Painter
{
public:
    const char* Name() const override { return "kestrin"; }

    std::function<void()> Prepare(const Shape& shape) override
    {
        DLA_Init(Buffer(), kBufferWidth, kBufferHeight);
        const auto x = static_cast<S16BIT>(shape.x);
        const auto y = static_cast<S16BIT>(shape.y);
        const auto x2 = static_cast<S16BIT>(shape.x + shape.w);
        const auto y2 = static_cast<S16BIT>(shape.y + shape.h);
        const auto w = static_cast<U16BIT>(shape.w);
        const auto h = static_cast<U16BIT>(shape.h);
        const auto width = static_cast<U16BIT>(shape.width);
        const auto start = static_cast<U16BIT>(shape.start * 64);
        const auto arc = static_cast<U16BIT>(shape.extent * 64);
        switch (shape.kind) {
        case Kind::Line:
            return [=] { DLA_Line(x, y, x2, y2, width, kLineColour); };
        case Kind::Rectangle:
            return [=] { DLA_Rectangle(x, y, x2, y2, width, kFillColour, kLineColour); };
        case Kind::Polygon:
            return Polygon(shape.corners, width);
        case Kind::Ellipse:
            return [=] { DLA_Ellipse(x, y, w, h, width, kFillColour, kLineColour); };
        case Kind::Arc:
            return [=] { DLA_Arc(x, y, w, h, start, arc, width, kLineColour); };
        default:
            return [=] { DLA_Sector(x, y, w, h, start, arc, width, kFillColour, kLineColour); };
        }
    }

private:
    static std::function<void()> Polygon(const std::vector<Corner>& corners, U16BIT width)
    {
        std::vector<S_POINT> points;
        for (const Corner& corner : corners)
            points.push_back({corner.x, corner.y});
        return [points, width]() mutable {
            DLA_Polygon(points.data(), static_cast<U16BIT>(points.size()), width, kFillColour,
                        kLineColour);
        };
    }
};

/** The quickest way to set words: short runs are not worth a call. */
void SetWords(std::uint32_t* to, std::size_t count, std::uint32_t word)
{
    static_assert(sizeof(wchar_t) == sizeof(std::uint32_t), "wmemset sets words");
    if (count < 12)
        std::fill_n(to, count, word);
    else
        std::wmemset(reinterpret_cast<wchar_t*>(to), static_cast<wchar_t>(word), count);
}

/** Writes the pixels that our painter has left, as runs of words. */
class WordFill final : public Painter
{
public:
    explicit WordFill(Painter& model) : _model(model) {}

    const char* Name() const override { return "word fill"; }

    std::function<void()> Prepare(const Shape& shape) override
    {
        std::fill_n(_model.Buffer(), kWords, 0U);
        _model.Prepare(shape)();
        std::vector<std::pair<std::uint32_t*, std::size_t>> runs;
        const std::uint32_t* pixels = _model.Buffer();
        for (std::size_t i = 0; i < kWords; ++i) {
            if (pixels[i] == 0)
                continue;
            if (i % kBufferWidth == 0 || pixels[i - 1] == 0)
                runs.emplace_back(Buffer() + i, 0);
            ++runs.back().second;
        }
        return [runs] {
            for (const auto& run : runs)
                SetWords(run.first, run.second, kFillColour);
        };
    }

    static constexpr std::size_t kWords = static_cast<std::size_t>(kBufferWidth) * kBufferHeight;

private:
    Painter& _model;
};

std::vector<Corner> RegularPolygon(int count, int size, int x, int y)
{
    std::vector<Corner> corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 0.1 + i * 2 * 3.14159265358979323846 / count;
        corners.push_back(
            {static_cast<std::int16_t>(x + std::lround(size / 2.0 * std::cos(angle))),
             static_cast<std::int16_t>(y + std::lround(size / 2.0 * std::sin(angle)))});
    }
    return corners;
}

std::vector<Shape> Shapes()
{
    return {
        {"ellipse 200x120, outline 1", Kind::Ellipse, 101, 83, 200, 120, 1, 0, 0, {}},
        {"ellipse 200x120, fill only", Kind::Ellipse, 101, 83, 200, 120, 0, 0, 0, {}},
        {"ellipse 200x120, outline 5", Kind::Ellipse, 101, 83, 200, 120, 5, 0, 0, {}},
        {"convex polygon, 12 points, 200", Kind::Polygon, 0, 0, 0, 0, 0, 0, 0,
         RegularPolygon(12, 200, 220, 190)},
        {"line of 300, width 1", Kind::Line, 41, 57, 300, 130, 1, 0, 0, {}},
        {"line of 300, width 1, steep", Kind::Line, 41, 57, 130, 300, 1, 0, 0, {}},
        {"line of 300, width 5", Kind::Line, 41, 57, 300, 130, 5, 0, 0, {}},
        {"line of 300, width 5, steep", Kind::Line, 41, 57, 130, 300, 5, 0, 0, {}},
        {"quarter arc 200x120, width 1", Kind::Arc, 101, 83, 200, 120, 1, 30, 90, {}},
        {"quarter arc 200x120, width 5", Kind::Arc, 101, 83, 200, 120, 5, 30, 90, {}},
        {"quarter sector 200x120, fill only", Kind::Sector, 101, 83, 200, 120, 0, 30, 90, {}},
        {"quarter sector 200x120, outline 1", Kind::Sector, 101, 83, 200, 120, 1, 30, 90, {}},
        {"quarter sector 160x160, fill only", Kind::Sector, 101, 83, 160, 160, 0, 30, 90, {}},
        {"rectangle 300x200", Kind::Rectangle, 61, 83, 300, 200, 0, 0, 0, {}},
    };
}

struct Measured
{
    double nanoseconds = 0;
    double pixels = 0;
};

/** Keeps the shortest time of each pair and prints the table when all are done. */
class Table final : public benchmark::BenchmarkReporter
{
public:
    Table(const std::vector<Shape>& shapes, const std::vector<Painter*>& painters)
        : _shapes(shapes), _painters(painters)
    {
    }

    bool ReportContext(const Context& context) override
    {
        PrintBasicContext(&GetErrorStream(), context);
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred)
                continue;
            Measured& best = _times[run.run_name.function_name];
            const double time = run.GetAdjustedCPUTime();
            if (best.nanoseconds == 0 || time < best.nanoseconds)
                best = {time, run.counters.at("pixels")};
        }
    }

    void Finalize() override
    {
        std::printf("\n%-35s", "ns a call, ns a pixel");
        for (const Painter* painter : _painters)
            std::printf("%10s", painter->Name());
        std::printf("%10s%10s\n", "best/ours", "ours/fill");
        for (const Shape& shape : _shapes)
            PrintShape(shape);
    }

    static std::string Key(const Shape& shape, const Painter& painter)
    {
        return shape.name + "/" + painter.Name();
    }

private:
    void PrintShape(const Shape& shape)
    {
        // As they were registered: the words, ours, the peers.
        std::vector<Measured> measured;
        double best_peer = 0;
        for (const Painter* painter : _painters) {
            measured.push_back(_times[Key(shape, *painter)]);
            const double time = measured.back().nanoseconds;
            if (measured.size() > 2 && time > 0 && (best_peer == 0 || time < best_peer))
                best_peer = time;
        }
        const double words = measured[0].nanoseconds;
        const double ours = measured[1].nanoseconds;
        if (ours == 0)
            return;
        std::printf("%-35s", shape.name.c_str());
        for (const Measured& one : measured)
            PrintNumber("%10.0f", one.nanoseconds);
        PrintNumber("%10.2f", best_peer / ours);
        PrintNumber("%10.2f\n", words > 0 ? ours / words : 0);
        std::printf("%-26s%6.0f px", "", measured[1].pixels);
        for (const Measured& one : measured)
            PrintNumber("%10.2f", one.pixels > 0 ? one.nanoseconds / one.pixels : 0);
        std::printf("\n");
    }

    static void PrintNumber(const char* format, double number)
    {
        if (number > 0)
            std::printf(format, number);
        else
            std::printf("%10s%s", "-",
                        std::string(format).find('\n') == std::string::npos ? "" : "\n");
    }

    std::vector<Shape> _shapes;
    std::vector<Painter*> _painters;
    std::map<std::string, Measured> _times;
};

void Measure(benchmark::State& state, const Shape& shape, Painter& painter)
{
    std::fill_n(painter.Buffer(), WordFill::kWords, 0U);
    const std::function<void()> draw = painter.Prepare(shape);
    std::fill_n(painter.Buffer(), WordFill::kWords, 0U);
    draw();
    const auto pixels =
        static_cast<double>(std::count_if(painter.Buffer(), painter.Buffer() + WordFill::kWords,
                                          [](std::uint32_t pixel) { return pixel != 0; }));
    if (pixels == 0) {
        state.SkipWithError("nothing is drawn");
        return;
    }
    for (auto unused : state) {
        static_cast<void>(unused);
        draw();
        benchmark::ClobberMemory();
    }
    state.counters["pixels"] = pixels;
}

} // namespace

} // namespace kestrin_bench

using namespace kestrin_bench;

int main(int argc, char** argv)
{
    KestrinPainter kestrin;
    WordFill words(kestrin);
    std::vector<Painter*> painters{&words, &kestrin};
    std::vector<std::unique_ptr<Painter>> peers;
#ifdef KESTRIN_BENCH_CAIRO
    peers.push_back(MakeCairoPainter());
#endif
#ifdef KESTRIN_BENCH_SDL
    peers.push_back(MakeSdlPainter());
#endif
#ifdef KESTRIN_BENCH_PIXMAN
    peers.push_back(MakePixmanPainter());
#endif
    for (const auto& peer : peers)
        painters.push_back(peer.get());

    const std::vector<Shape> shapes = Shapes();
    for (const Shape& shape : shapes) {
        for (Painter* painter : painters) {
            if (!painter->Prepare(shape))
                continue;
            benchmark::RegisterBenchmark(
                Table::Key(shape, *painter).c_str(),
                [&shape, painter](benchmark::State& state) { Measure(state, shape, *painter); });
        }
    }

    // The user's own arguments come later and so win.
    std::string defaults[] = {"--benchmark_repetitions=7", "--benchmark_min_time=0.02",
                              "--benchmark_enable_random_interleaving=true"};
    std::vector<char*> arguments{argv[0]};
    for (std::string& argument : defaults)
        arguments.push_back(&argument[0]);
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    Table table(shapes, painters);
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return 0;
}
