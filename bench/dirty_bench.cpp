/**
 * The dirty manager beside pixman's regions, which keep exact sets of pixels as sorted rectangles.
 *
 * A number of rectangles of 1 to 100 pixels a side lies anywhere on 1280 x 720. Both take turns at
 * the same rectangles:
 *
 *     add     makes a fresh area dirty: Clear and Add; init, union_rect and fini. For a rectangle
 *     check   whether another rectangle touches what is dirty: Check; contains_rectangle. For one
 *     handle  takes all that is dirty: Handle; the list of rectangles. For all of it
 *     tiles   takes it in 100 parts of 128 x 72, as a scene with a small back buffer does: Handle;
 *             intersect_rect and the list. For all of it
 *
 * The counters are medians in the time of the processor: `engine_ns`, `pixman_ns` and `of_pixman`,
 * ours over pixman's: below 1 ours is faster. `pieces` and `pixman_pieces` are the rectangles
 * that each hands out, `pixels_more` the part of pixels that ours gives beyond the exact ones.
 */
#include "dirty.h"
#include "turns.h"

#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>
#include <pixman.h>

using namespace zelxxx;

namespace kestrin_bench {

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr int kParts = 10; // across and down
constexpr int kQuestions = 1000;
constexpr double kSeconds = 0.3;
constexpr DirtyRect kAll = {0, 0, kWidth, kHeight};

/** Numbers that are the same in every run. */
class Random
{
public:
    int Below(int limit) { return static_cast<int>((_state = Next()) >> 33) % limit; }

private:
    std::uint64_t Next() const { return _state * 6364136223846793005 + 1442695040888963407; }
    std::uint64_t _state = 1;
};

std::vector<DirtyRect> SomeRects(int count, Random& random)
{
    std::vector<DirtyRect> rects;
    for (int i = 0; i < count; ++i) {
        const int x = random.Below(kWidth);
        const int y = random.Below(kHeight);
        rects.push_back({static_cast<Int16>(x), static_cast<Int16>(y),
                         static_cast<Int16>(std::min(kWidth, x + 1 + random.Below(100))),
                         static_cast<Int16>(std::min(kHeight, y + 1 + random.Below(100)))});
    }
    return rects;
}

void Unite(pixman_region16_t& region, const std::vector<DirtyRect>& rects)
{
    pixman_region_init(&region);
    for (const DirtyRect& rect : rects)
        pixman_region_union_rect(&region, &region, rect.x1, rect.y1,
                                 static_cast<unsigned>(rect.x2 - rect.x1),
                                 static_cast<unsigned>(rect.y2 - rect.y1));
}

/** What handing out gives. */
struct Sum : IDirtyRectHandler
{
    void HandleRect(const DirtyRect& rect) override
    {
        ++pieces;
        pixels += (rect.x2 - rect.x1) * (rect.y2 - rect.y1);
    }
    void TakeAll(pixman_region16_t& region)
    {
        int count = 0;
        const pixman_box16_t* boxes = pixman_region_rectangles(&region, &count);
        for (int i = 0; i < count; ++i)
            HandleRect({boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2});
    }
    int pieces = 0;
    int pixels = 0;
};

/** Both with the same rectangles. */
struct Pair
{
    explicit Pair(int count) : rects(SomeRects(count, random)), manager(kWidth, kHeight)
    {
        Unite(region, rects);
        for (const DirtyRect& rect : rects)
            manager.Add(rect);
    }
    ~Pair() { pixman_region_fini(&region); }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    Random random;
    std::vector<DirtyRect> rects;
    DirtyManager manager;
    pixman_region16_t region;
};

void Report(benchmark::State& state, const std::vector<Turns::Work>& works, int operations)
{
    Turns turns(works);
    for (auto iteration : state) {
        static_cast<void>(iteration);
        turns.Run(kSeconds);
        state.SetIterationTime(turns.Median(0) / operations);
    }
    state.counters["engine_ns"] = turns.Median(0) / operations * 1e9;
    state.counters["pixman_ns"] = turns.Median(1) / operations * 1e9;
    state.counters["of_pixman"] = turns.MedianRatio(0, 1);
}

void Add(benchmark::State& state, int count)
{
    Pair pair(count);
    const auto ours = [&] {
        pair.manager.Clear();
        for (const DirtyRect& rect : pair.rects)
            pair.manager.Add(rect);
    };
    const auto pixmans = [&] {
        pixman_region16_t region;
        Unite(region, pair.rects);
        pixman_region_fini(&region);
    };
    Report(state, {ours, pixmans}, count);
}

void Check(benchmark::State& state, int count)
{
    Pair pair(count);
    const std::vector<DirtyRect> questions = SomeRects(kQuestions, pair.random);
    int found = 0;
    const auto ours = [&] {
        for (const DirtyRect& rect : questions)
            found += pair.manager.Check(rect, kAll) ? 1 : 0;
    };
    const auto pixmans = [&] {
        for (const DirtyRect& rect : questions) {
            pixman_box16_t box = {rect.x1, rect.y1, rect.x2, rect.y2};
            found -= pixman_region_contains_rectangle(&pair.region, &box) != PIXMAN_REGION_OUT;
        }
    };
    Report(state, {ours, pixmans}, kQuestions);
    benchmark::DoNotOptimize(found);
}

/** The area in parts, from the upper left. */
template <class Take>
void ForEachPart(int parts, Take take)
{
    const int width = kWidth / parts;
    const int height = kHeight / parts;
    for (int y = 0; y < kHeight; y += height) {
        for (int x = 0; x < kWidth; x += width)
            take(DirtyRect{static_cast<Int16>(x), static_cast<Int16>(y),
                           static_cast<Int16>(x + width), static_cast<Int16>(y + height)});
    }
}

void TakeOurs(const DirtyManager& manager, int parts, Sum& sum)
{
    ForEachPart(parts, [&](const DirtyRect& part) { manager.Handle(part, &sum); });
}

void TakePixmans(pixman_region16_t& region, int parts, Sum& sum)
{
    if (parts == 1) {
        sum.TakeAll(region);
        return;
    }
    pixman_region16_t cut;
    pixman_region_init(&cut);
    ForEachPart(parts, [&](const DirtyRect& part) {
        pixman_region_intersect_rect(&cut, &region, part.x1, part.y1,
                                     static_cast<unsigned>(part.x2 - part.x1),
                                     static_cast<unsigned>(part.y2 - part.y1));
        sum.TakeAll(cut);
    });
    pixman_region_fini(&cut);
}

void Handle(benchmark::State& state, int count, int parts)
{
    Pair pair(count);
    Sum ours, exact;
    TakeOurs(pair.manager, parts, ours);
    TakePixmans(pair.region, parts, exact);
    Sum sink;
    Report(state,
           {[&] { TakeOurs(pair.manager, parts, sink); },
            [&] { TakePixmans(pair.region, parts, sink); }},
           1);
    benchmark::DoNotOptimize(sink.pixels);
    state.counters["pieces"] = ours.pieces;
    state.counters["pixman_pieces"] = exact.pieces;
    state.counters["pixels_more"] = static_cast<double>(ours.pixels) / exact.pixels - 1;
}

void Register(const std::string& name, int count,
              const std::function<void(benchmark::State&, int)>& run)
{
    benchmark::RegisterBenchmark((name + "/" + std::to_string(count)).c_str(), run, count)
        ->UseManualTime()
        ->Iterations(1);
}

} // namespace

} // namespace kestrin_bench

int main(int argc, char** argv)
{
    using namespace kestrin_bench;
    for (const int count : {1, 10, 100, 1000})
        Register("add", count, Add);
    for (const int count : {1, 10, 100, 1000})
        Register("check", count, Check);
    for (const int count : {1, 10, 100, 1000})
        Register("handle", count,
                 [](benchmark::State& state, int rects) { Handle(state, rects, 1); });
    for (const int count : {1, 10, 100, 1000})
        Register("tiles", count,
                 [](benchmark::State& state, int rects) { Handle(state, rects, kParts); });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
