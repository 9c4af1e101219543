/**
 * The graphics driver beside DirectFB's own renderer, on the operations that the engine uses.
 *
 * DirectFB chooses its renderer when a process starts, so each has a process of its own. They take
 * turns on one processor, in an order that changes, each turn after runs that are not timed, in the
 * time that the thread had the processor: what else the machine does hits both alike. The counters
 * are medians of the turns: nanoseconds of one call with each renderer, drawn bytes of the target
 * in a second with the driver, and `ratio`, how many times faster the driver is, from neighbouring
 * turns. Operations that the driver leaves to DirectFB end in "left"; what they lose is the cost of
 * asking.
 */
#include "display_setup.h"
#include "turns.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <directfb.h>

namespace {

constexpr int screen_width = 1280;
constexpr int screen_height = 720;
constexpr int untimed = 2;
constexpr int image = DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA;
constexpr int straight =
    DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY | DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY;

void Require(bool good, const char* what)
{
    if (good)
        return;
    std::fprintf(stderr, "gfx_bench: %s failed\n", what);
    std::_Exit(1);
}

/** Both renderers take turns, so one processor is enough, and its caches are the same for both. */
void StayOnThisProcessor()
{
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(sched_getcpu(), &processors);
    Require(sched_setaffinity(0, sizeof processors, &processors) == 0, "sched_setaffinity");
}

/** Surfaces as large as the screen, full of noise. */
struct Surfaces
{
    explicit Surfaces(IDirectFB* dfb)
        : argb(Make(dfb, DSPF_ARGB)), argb_source(Make(dfb, DSPF_ARGB)), lut(Make(dfb, DSPF_LUT8)),
          lut_source(Make(dfb, DSPF_LUT8)), coverage(Make(dfb, DSPF_A8))
    {
        IDirectFBPalette* palette = nullptr;
        lut->GetPalette(lut, &palette);
        lut_source->SetPalette(lut_source, palette);
        palette->Release(palette);
    }

    static IDirectFBSurface* Make(IDirectFB* dfb, DFBSurfacePixelFormat format)
    {
        DFBSurfaceDescription description = {};
        description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT |
                                                                    DSDESC_PIXELFORMAT);
        description.width = screen_width;
        description.height = screen_height;
        description.pixelformat = format;
        IDirectFBSurface* surface = nullptr;
        Require(dfb->CreateSurface(dfb, &description, &surface) == DFB_OK, "CreateSurface");
        void* data = nullptr;
        int pitch = 0;
        surface->Lock(surface, DSLF_WRITE, &data, &pitch);
        std::uint32_t noise = 1;
        for (int i = 0; i < pitch * screen_height; ++i) {
            noise = noise * 1664525 + 1013904223;
            static_cast<std::uint8_t*>(data)[i] = static_cast<std::uint8_t>(noise >> 24);
        }
        surface->Unlock(surface);
        return surface;
    }

    IDirectFBSurface* argb;
    IDirectFBSurface* argb_source;
    IDirectFBSurface* lut;
    IDirectFBSurface* lut_source;
    IDirectFBSurface* coverage;
};

struct Operation
{
    const char* name;
    int pixel_bytes;
    std::function<void(Surfaces&, int width, int height)> call;
};

Operation Fill(const char* name, int flags, DFBSurfacePorterDuffRule rule)
{
    return {name, 4, [=](Surfaces& s, int width, int height) {
                s.argb->SetDrawingFlags(s.argb, static_cast<DFBSurfaceDrawingFlags>(flags));
                s.argb->SetPorterDuff(s.argb, rule);
                s.argb->SetColor(s.argb, 10, 20, 30, 100);
                s.argb->FillRectangle(s.argb, 0, 0, width, height);
            }};
}

void Blit(IDirectFBSurface* to, IDirectFBSurface* from, int flags, int width, int height)
{
    const DFBRectangle area = {0, 0, width, height};
    to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(flags));
    to->SetPorterDuff(to, DSPD_SRC_OVER);
    to->SetColor(to, 0, 0, 0, 100);
    to->Blit(to, from, &area, 0, 0);
}

Operation BlitOf(const char* name, int flags)
{
    return {name, 4, [=](Surfaces& s, int width, int height) {
                Blit(s.argb, s.argb_source, flags, width, height);
            }};
}

/** As the engine draws a glyph in true colour: its pixels are written first. */
void Glyph(Surfaces& s, int width, int height)
{
    void* data = nullptr;
    int pitch = 0;
    s.argb_source->Lock(s.argb_source, DSLF_WRITE, &data, &pitch);
    s.argb_source->Unlock(s.argb_source);
    Blit(s.argb, s.argb_source, straight, width, height);
}

/** As the engine puts subtitles below a frame. */
void StretchUnder(IDirectFBSurface* frame, IDirectFBSurface* subtitles, int width, int height)
{
    const DFBRectangle from = {0, 0, 720, 576};
    const DFBRectangle to = {0, 0, width, height};
    frame->SetBlittingFlags(frame, DSBLIT_BLEND_ALPHACHANNEL);
    frame->SetPorterDuff(frame, DSPD_DST_OVER);
    frame->StretchBlit(frame, subtitles, &from, &to);
}

void StretchUnderPixels(Surfaces& s, int width, int height)
{
    StretchUnder(s.argb, s.argb_source, width, height);
}

void StretchUnderIndices(Surfaces& s, int width, int height)
{
    StretchUnder(s.lut, s.argb_source, width, height);
}

/** As DirectFB draws a character of a font. */
void Character(Surfaces& s, int width, int height)
{
    const DFBRectangle area = {0, 0, width, height};
    s.argb->SetBlittingFlags(
        s.argb, static_cast<DFBSurfaceBlittingFlags>(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_COLORIZE));
    s.argb->SetPorterDuff(s.argb, DSPD_NONE);
    s.argb->SetColor(s.argb, 10, 20, 30, 255);
    s.argb->Blit(s.argb, s.coverage, &area, 0, 0);
}

void FillIndices(Surfaces& s, int width, int height)
{
    s.lut->SetDrawingFlags(s.lut, DSDRAW_NOFX);
    s.lut->SetColorIndex(s.lut, 3);
    s.lut->FillRectangle(s.lut, 0, 0, width, height);
}

void FillOverIndices(Surfaces& s, int width, int height)
{
    s.lut->SetDrawingFlags(s.lut, DSDRAW_BLEND);
    s.lut->SetPorterDuff(s.lut, DSPD_SRC_OVER);
    s.lut->SetColor(s.lut, 100, 50, 20, 100);
    s.lut->FillRectangle(s.lut, 0, 0, width, height);
}

void KeyIndices(Surfaces& s, int width, int height)
{
    s.lut_source->SetSrcColorKeyIndex(s.lut_source, 5);
    Blit(s.lut, s.lut_source, DSBLIT_SRC_COLORKEY, width, height);
}

const std::vector<Operation>& Operations()
{
    static const std::vector<Operation> operations = {
        Fill("fill", DSDRAW_NOFX, DSPD_NONE),
        Fill("fill_src", DSDRAW_BLEND, DSPD_SRC),
        Fill("fill_src_over", DSDRAW_BLEND, DSPD_SRC_OVER),
        Fill("fill_none", DSDRAW_BLEND, DSPD_NONE),
        BlitOf("blit", DSBLIT_NOFX),
        BlitOf("blit_1", DSBLIT_BLEND_ALPHACHANNEL),
        BlitOf("blit_3", image),
        BlitOf("blit_225", straight),
        {"glyph", 4, Glyph},
        {"character", 4, Character},
        BlitOf("blit_key", DSBLIT_SRC_COLORKEY),
        {"stretch_dst_over", 4, StretchUnderPixels},
        {"lut8_stretch_dst_over", 1, StretchUnderIndices},
        {"lut8_fill", 1, FillIndices},
        {"lut8_fill_src_over", 1, FillOverIndices},
        {"lut8_blit", 1,
         [](Surfaces& s, int width, int height) {
             Blit(s.lut, s.lut_source, DSBLIT_NOFX, width, height);
         }},
        {"lut8_blit_key", 1, KeyIndices},
        {"lut8_to_argb", 4,
         [](Surfaces& s, int width, int height) {
             Blit(s.argb, s.lut_source, DSBLIT_NOFX, width, height);
         }},
        {"lut8_to_argb_3", 4,
         [](Surfaces& s, int width, int height) {
             Blit(s.argb, s.lut_source, image, width, height);
         }},
        Fill("fill_dst_over_left", DSDRAW_BLEND, DSPD_DST_OVER),
        BlitOf("blit_colorize_left", DSBLIT_COLORIZE),
        {"lut8_blit_3", 1,
         [](Surfaces& s, int width, int height) {
             Blit(s.lut, s.lut_source, image, width, height);
         }},
    };
    return operations;
}

struct Turn
{
    int operation;
    int width;
    int height;
    int repeats;
};

/** A process that draws with one renderer; it is told what, and answers how long that took. */
class Worker
{
public:
    explicit Worker(const std::string& options)
    {
        int orders[2];
        int answers[2];
        Require(pipe(orders) == 0 && pipe(answers) == 0, "pipe");
        const std::string screen = "/tmp/kestrin-gfx-bench-" + std::to_string(getpid());
        const pid_t child = fork();
        Require(child >= 0, "fork");
        if (child == 0) {
            close(orders[1]);
            Serve(screen + options, options, orders[0], answers[1]);
        }
        close(orders[0]);
        close(answers[1]);
        _orders = orders[1];
        _answers = answers[0];
    }

    /** Seconds of one call. */
    double Take(const Turn& turn) const
    {
        double seconds = 0;
        Require(write(_orders, &turn, sizeof turn) == sizeof turn, "write");
        Require(read(_answers, &seconds, sizeof seconds) == sizeof seconds, "a renderer");
        return seconds;
    }

private:
    [[noreturn]] static void Serve(const std::string& screen, const std::string& options,
                                   int orders, int answers)
    {
        const std::string arguments =
            kestrin_display::ScreenFileArguments(screen, screen_width, screen_height) + "," +
            options;
        setenv("DFBARGS", arguments.c_str(), 1);
        IDirectFB* dfb = nullptr;
        Require(DirectFBInit(nullptr, nullptr) == DFB_OK, "DirectFBInit");
        Require(DirectFBCreate(&dfb) == DFB_OK, "DirectFBCreate");
        unlink(screen.c_str());
        Surfaces surfaces(dfb);
        Turn turn = {};
        while (read(orders, &turn, sizeof turn) == sizeof turn) {
            const auto& call = Operations()[static_cast<std::size_t>(turn.operation)].call;
            for (int i = 0; i < untimed; ++i)
                call(surfaces, turn.width, turn.height);
            const double start = kestrin_bench::ThreadSeconds();
            for (int i = 0; i < turn.repeats; ++i)
                call(surfaces, turn.width, turn.height);
            const double seconds = (kestrin_bench::ThreadSeconds() - start) / turn.repeats;
            Require(write(answers, &seconds, sizeof seconds) == sizeof seconds, "write");
        }
        _exit(0);
    }

    int _orders = -1;
    int _answers = -1;
};

double least_ratio = std::numeric_limits<double>::max();
std::string least_name;

void Compare(benchmark::State& state, const Worker& software, const Worker& driver, Turn turn,
             const std::string& name)
{
    turn.repeats = 1;
    software.Take(turn);
    const double once = std::max(software.Take(turn), 1e-9);
    turn.repeats = std::clamp(static_cast<int>(100e-6 / once), 2, 500);

    std::vector<double> software_seconds, driver_seconds, ratios;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): as the library counts
        const bool driver_first = ratios.size() % 2 != 0;
        double seconds = driver_first ? driver.Take(turn) : 0;
        software_seconds.push_back(software.Take(turn));
        if (!driver_first)
            seconds = driver.Take(turn);
        driver_seconds.push_back(seconds);
        ratios.push_back(software_seconds.back() / seconds);
        state.SetIterationTime(seconds);
    }
    const double driver_median = kestrin_bench::MedianOf(driver_seconds);
    const int bytes = Operations()[static_cast<std::size_t>(turn.operation)].pixel_bytes;
    const double ratio = kestrin_bench::MedianOf(ratios);
    state.counters["software_ns"] = kestrin_bench::MedianOf(software_seconds) * 1e9;
    state.counters["driver_ns"] = driver_median * 1e9;
    state.counters["bytes"] = {1.0 * turn.width * turn.height * bytes / driver_median,
                               benchmark::Counter::kDefaults, benchmark::Counter::kIs1000};
    state.counters["ratio"] = ratio;
    if (ratio < least_ratio) {
        least_ratio = ratio;
        least_name = name;
    }
}

} // namespace

int main(int argc, char** argv)
{
    StayOnThisProcessor();
    const Worker software("no-hardware");
    const Worker driver("hardware");
    const Turn sizes[] = {{0, 1, 1, 0}, {0, 16, 16, 0}, {0, 100, 100, 0}, {0, 1280, 720, 0}};
    for (std::size_t i = 0; i < Operations().size(); ++i) {
        for (Turn turn : sizes) {
            turn.operation = static_cast<int>(i);
            const std::string name = std::string(Operations()[i].name) + "/" +
                                     std::to_string(turn.width) + "x" + std::to_string(turn.height);
            benchmark::RegisterBenchmark(name.c_str(),
                                         [&software, &driver, turn, name](benchmark::State& state) {
                                             Compare(state, software, driver, turn, name);
                                         })
                ->UseManualTime()
                ->Iterations(turn.width > 100 ? 31 : 201)
                ->Unit(benchmark::kMicrosecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    if (!least_name.empty())
        std::fprintf(stderr, "least ratio: %.2f, of %s\n", least_ratio, least_name.c_str());
    return 0;
}
