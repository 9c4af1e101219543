/**
 * Memory and start.
 *
 *     widget/KIND   heap that one of 1,000 widgets in a shown layer takes (`bytes`)
 *     library       size of the library without symbols (`bytes`, `of_goal` of 200 KiB)
 *     scene/N       resident memory of a program with N widgets at its first frame (`bytes`),
 *                   what of it is no file's (`own_bytes`), and both of a program that does the
 *                   same by DirectFB alone (`bare_bytes`, `bare_own_bytes`)
 *     first_frame   from the start of that program to its first frame (`ms`), of the one by
 *                   DirectFB alone (`bare_ms`), and the engine's share (`engine_ms`). The two take
 *                   turns; medians, by the clock on the wall
 */
#include "display_setup.h"
#include "engine_display.h"
#include "quiet_output.h"
#include "test_font.h"
#include "turns.h"
#include "vrel_kestrin_anim.h"
#include "vrel_kestrin_graphic.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zelxxx;

extern char** environ; // as POSIX has it

namespace kestrin_bench {

namespace {

constexpr int kWidgets = 1000;
constexpr int kStarts = 21;
constexpr double kLibraryGoal = 200 * 1024;

void Require(bool good, const char* what)
{
    if (good)
        return;
    std::fprintf(stderr, "memory_bench: %s failed\n", what);
    std::_Exit(1);
}

// ---- Widgets

using Make = std::function<IWidget*()>;

/** Puts forty characters one after another. */
class Line : public ITextFormater
{
public:
    void Format(IText* text, PtrWChar units, UInt32 length) override
    {
        for (UInt32 i = 0; i < length; ++i)
            text->AddCharInfo(static_cast<Int16>(10 * i), 0, 20, units[i]);
    }
    void GetCharBuffer(const CharMetrics*, ColorValue, BlendValue, PtrSChar) override {}
};

void AddWidgets(ILayer* layer, int count, const Make& make)
{
    for (int i = 0; i < count; ++i) {
        IWidget* widget = make();
        widget->SetAttribute(AttrPosX, i * 37 % 1280);
        widget->SetAttribute(AttrPosY, i * 53 % 720);
        widget->SetAttribute(AttrSpanX, 60);
        widget->SetAttribute(AttrSpanY, 40);
        layer->AddWidget(widget);
    }
    zelUpdateScreen(false, false);
}

/** Scenes stay until the end: DirectFB frees their surfaces later, amid the next one's counting. */
std::vector<ZELObjPtr<IScene>>& Scenes()
{
    static std::vector<ZELObjPtr<IScene>> scenes;
    return scenes;
}

/** Bytes taken from the heap, large blocks as well. */
double HeapBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

void WidgetBytes(benchmark::State& state, const Make& make)
{
    IScene* scene = zelCreateScene(0, 1280, 720, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver);
    Scenes().emplace_back(scene);
    const ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
    scene->AddLayer(layer);
    // What only the first one of a kind takes.
    AddWidgets(layer, 1, make);
    const double before = HeapBytes();
    for (auto iteration : state) {
        static_cast<void>(iteration);
        AddWidgets(layer, kWidgets, make);
    }
    state.counters["bytes"] = (HeapBytes() - before) / kWidgets;
}

IWidget* MakeText(int length)
{
    static const PResource resource = kestrin_test::MakeFontResource();
    static Line line;
    IText* text = zelCreateText(resource);
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, 20);
    const std::string words(static_cast<std::size_t>(length), 'a');
    text->SetText(words.data(), static_cast<UInt32>(length), EncodingASCII, &line);
    return text;
}

template <class Kind>
IWidget* MakeModified()
{
    IWidget* widget = zelCreateRectangle(nullptr);
    widget->AddModifier(new Kind);
    return widget;
}

void RegisterWidgets()
{
    const std::pair<const char*, Make> kinds[] = {
        {"rectangle", [] { return zelCreateRectangle(nullptr); }},
        {"sprite", [] { return zelCreateSprite(nullptr); }},
        {"text", [] { return MakeText(1); }},
        {"text_of_40", [] { return MakeText(40); }},
        {"layer", [] { return zelCreateLayer(nullptr); }},
        {"rectangle_with_translation", MakeModified<TranslateModifier>},
        {"rectangle_with_perspective", MakeModified<PerspectiveModifier>},
        {"rectangle_with_fading", MakeModified<FadingModifier>},
    };
    for (const auto& [name, make] : kinds)
        benchmark::RegisterBenchmark((std::string("widget/") + name).c_str(), WidgetBytes, make)
            ->Iterations(1);
}

// ---- The library's file

void LibraryBytes(benchmark::State& state)
{
    const std::filesystem::path stripped =
        std::filesystem::temp_directory_path() / ("kestrin-" + std::to_string(getpid()) + ".so");
    const std::string command =
        std::string(KESTRIN_STRIP) + " -o " + stripped.string() + " " + KESTRIN_LIBRARY;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        Require(std::system(command.c_str()) == 0, "strip"); // NOLINT(cert-env33-c)
    }
    const auto bytes = static_cast<double>(std::filesystem::file_size(stripped));
    std::filesystem::remove(stripped);
    state.counters["bytes"] = bytes;
    state.counters["of_goal"] = bytes / kLibraryGoal;
}

// ---- Programs

/** What a program reported of itself at its first frame. */
struct FirstFrame
{
    double seconds = 0; /**< from its start */
    long resident = 0;
    long own = 0;
};

/** A display and a font for the program that is started. */
class Client
{
public:
    Client()
        : _directory(std::filesystem::temp_directory_path() /
                     ("kestrin-start-" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(_directory);
        // Names in an index file count from where it lies.
        std::filesystem::create_symlink(kestrin_test::kSans, _directory / "font");
        std::ofstream(Index()) << "1\nfnt:font\n";
        const std::string screen = _directory / "screen";
        _arguments = "DFBARGS=" + kestrin_display::ScreenFileArguments(screen, 1280, 720);
    }
    ~Client() { std::filesystem::remove_all(_directory); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    FirstFrame Start(int widgets) const { return Run({Index(), std::to_string(widgets)}); }
    FirstFrame StartBare() const { return Run({"bare"}); }

private:
    std::string Index() const { return _directory / "index"; }
    FirstFrame Run(std::vector<std::string> arguments) const;

    std::filesystem::path _directory;
    std::string _arguments;
};

FirstFrame Client::Run(std::vector<std::string> arguments) const
{
    std::vector<char*> argv = {const_cast<char*>(KESTRIN_FIRST_FRAME)};
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::vector<char*> environment = {const_cast<char*>(_arguments.c_str())};
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::string(*variable).rfind("DFBARGS=", 0) != 0)
            environment.push_back(*variable);
    }
    environment.push_back(nullptr);

    int ends[2];
    Require(pipe2(ends, O_CLOEXEC) == 0, "pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    // DirectFB writes the command line there.
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    FirstFrame frame;
    pid_t child = 0;
    const auto start = std::chrono::steady_clock::now();
    Require(posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environment.data()) == 0,
            "starting a program");
    close(ends[1]);
    std::FILE* answer = fdopen(ends[0], "r");
    Require(std::fscanf(answer, "%ld %ld", &frame.resident, &frame.own) == 2, "a program");
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    frame.seconds = time.count();
    std::fclose(answer);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    waitpid(child, &status, 0);
    return frame;
}

void SceneBytes(benchmark::State& state, int widgets)
{
    const Client client;
    FirstFrame frame;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        frame = client.Start(widgets);
    }
    const FirstFrame bare = client.StartBare();
    state.counters["bytes"] = static_cast<double>(frame.resident);
    state.counters["own_bytes"] = static_cast<double>(frame.own);
    state.counters["bare_bytes"] = static_cast<double>(bare.resident);
    state.counters["bare_own_bytes"] = static_cast<double>(bare.own);
}

void TimeToFirstFrame(benchmark::State& state)
{
    const Client client;
    std::vector<double> times, bares, shares;
    client.Start(0);
    for (auto iteration : state) {
        static_cast<void>(iteration);
        for (int i = 0; i < kStarts; ++i) {
            bares.push_back(client.StartBare().seconds * 1e3);
            times.push_back(client.Start(0).seconds * 1e3);
            shares.push_back(times.back() - bares.back());
        }
        state.SetIterationTime(MedianOf(times) / 1e3);
    }
    state.counters["ms"] = MedianOf(times);
    state.counters["bare_ms"] = MedianOf(bares);
    state.counters["engine_ms"] = MedianOf(shares);
}

} // namespace

} // namespace kestrin_bench

int main(int argc, char** argv)
{
    using namespace kestrin_bench;
    RegisterWidgets();
    benchmark::RegisterBenchmark("library", LibraryBytes)->Iterations(1);
    for (const int widgets : {0, kWidgets})
        benchmark::RegisterBenchmark(("scene/" + std::to_string(widgets)).c_str(), SceneBytes,
                                     widgets)
            ->Iterations(1);
    benchmark::RegisterBenchmark("first_frame", TimeToFirstFrame)
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    {
        std::optional<kestrin_test::EngineDisplay> engine(std::in_place, 1280, 720);
        benchmark::RunSpecifiedBenchmarks();
        const QuietOutput quiet;
        Scenes().clear();
        engine.reset();
    }
    return 0;
}
