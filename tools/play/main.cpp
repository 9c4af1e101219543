/**
 * kestrin-play: shows a SubRip file on the display.
 */
#include "player.h"

#include "command_line.h"
#include "display_setup.h"
#include "lay_over.h"
#include "png_file.h"

#include <CLI/CLI.hpp>
#include <directfb.h>

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;
using namespace kestrin_play;
using kestrin_tools::Wrapped;

struct Arguments
{
    std::string size;
    int mode = 32;
    std::vector<std::string> fonts;
    std::string encoding = "utf-8";
    std::string background;
    std::string out;
    std::string screen;
    bool realtime = false;
    std::string file;
};

volatile std::sig_atomic_t g_stop = 0;

void RequestStop(int)
{
    g_stop = 1;
}

/** A directory that lives as long as the object. */
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        std::error_code failed;
        std::string pattern = (fs::temp_directory_path(failed) / "kestrin-play-XXXXXX").string();
        if (failed || !mkdtemp(pattern.data()))
            throw std::runtime_error("no temporary files; set TMPDIR to a directory that can be "
                                     "written to");
        _path = pattern;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        fs::remove_all(_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& Path() const { return _path; }

private:
    std::string _path;
};

/** Fails with CLI11's kind of message. */
std::string CheckSize(const std::string& text)
{
    int width = 0, height = 0;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%4dx%4d%c", &width, &height, &rest) != 2)
        return "write the size as 1280x720";
    const int limit = static_cast<int>(kestrin_display::screen_side_limit);
    if (width < 160 || height < 120 || width > limit || height > limit)
        return "choose a size from 160x120 to " + std::to_string(limit) + "x" +
               std::to_string(limit);
    return {};
}

std::string CheckEncoding(const std::string& name)
{
    return FindEncoding(name) ? "" : "unknown encoding " + name + "; one of " + EncodingNames();
}

void Declare(CLI::App& app, Arguments& arguments)
{
    app.add_option("file", arguments.file, "The SubRip file (.srt)")->required()->type_name("FILE");
    app.add_option(
           "--size", arguments.size,
           Wrapped("Size of the screen in pixels; 1280x720 by default, 720x576 with --mode 8"))
        ->type_name("WIDTHxHEIGHT")
        ->check(CheckSize);
    app.add_option("--mode", arguments.mode,
                   "32: true colour with transparency. 8: the fixed palette of 188 colours")
        ->check(CLI::IsMember({8, 32}))
        ->capture_default_str()
        ->type_name("BITS");
    app.add_option(
           "--font", arguments.fonts,
           Wrapped("A font file; may be repeated, the first that has all characters of a caption "
                   "is used. By default Tiresias, DejaVu Sans and WenQuanYi Micro Hei"))
        ->type_name("FILE")
        ->allow_extra_args(false);
    app.add_option("--encoding", arguments.encoding,
                   Wrapped("How the text is written: " + EncodingNames()))
        ->check(CheckEncoding)
        ->capture_default_str()
        ->type_name("NAME");
    app.add_option(
           "--background", arguments.background,
           Wrapped("A picture to show the screen over, scaled to its size; a landscape by default"))
        ->type_name("PNG");
    app.add_option(
           "--out", arguments.out,
           Wrapped("Directory for one picture of each cue, NAME-001.png and so on, and one of them "
                   "all, NAME-sheet.png"))
        ->type_name("DIR");
    app.add_option(
           "--screen", arguments.screen,
           Wrapped("The screen file to draw into, for kestrin-screen to look at; by default a "
                   "temporary one, with --realtime that of kestrin-screen"))
        ->type_name("FILE");
    app.add_flag("--realtime", arguments.realtime,
                 Wrapped("Play at the cues' own times; otherwise as fast as possible"));
    app.footer(
        Wrapped("Ends with 0 if anything was played, 1 if nothing could be, 2 for wrong arguments. "
                "Cues that cannot be shown are named with the reason and a remedy, and skipped."));
}

ScreenFormat Format(const Arguments& arguments)
{
    const bool indexed = arguments.mode == 8;
    ScreenFormat format = {indexed ? 720 : 1280, indexed ? 576 : 720,
                           indexed ? zelxxx::Color8Bit : zelxxx::Color32Bit};
    if (!arguments.size.empty())
        std::sscanf(arguments.size.c_str(), "%dx%d", &format.width, &format.height);
    return format;
}

ArgbImage Background(const Arguments& arguments, const ScreenFormat& format)
{
    if (arguments.background.empty())
        return TestPicture(format.width, format.height);
    ArgbImage video =
        Scaled(kestrin_tools::ReadPng(arguments.background), format.width, format.height);
    kestrin_tools::LayOver(video, ArgbImage(1, 1, 0xFF000000));
    return video;
}

/** Path and start of the names of the pictures; makes the directory. */
std::string PictureNames(const Arguments& arguments)
{
    if (arguments.out.empty())
        return {};
    std::error_code failed;
    fs::create_directories(arguments.out, failed);
    if (failed)
        throw std::runtime_error(arguments.out + ": " + failed.message() +
                                 "; name another directory with --out");
    return (fs::path(arguments.out) / fs::path(arguments.file).stem()).string();
}

std::string ScreenFile(const Arguments& arguments, const TemporaryDirectory& temporary)
{
    if (!arguments.screen.empty())
        return arguments.screen;
    return arguments.realtime ? kestrin_display::DefaultScreenFile() : temporary.Path() + "/screen";
}

void PrintSummary(const Arguments& arguments, const ScreenFormat& format, const PlayResult& result,
                  const Report& report)
{
    std::cout << arguments.file << ": " << format.width << "x" << format.height << ", "
              << static_cast<int>(format.mode) << " bit, " << report.Skipped() << " cues skipped, "
              << report.Warnings() << " warnings\n";
    result.costs.Print(std::cout);
    if (result.pictures > 0)
        std::cout << "  " << result.pictures << " pictures, all of them in " << result.sheet
                  << '\n';
}

/** Given no command line, DirectFB would look up the process's own and print it. */
void InitializeDirectFB()
{
    char name[] = "kestrin-play";
    char* words[] = {name, nullptr};
    char** arguments = words;
    int count = 1;
    DirectFBInit(&count, &arguments);
}

/** From the moment the engine runs until it is given back. */
PlayResult PlayOnDisplay(const Arguments& arguments, const ScreenFormat& format,
                         const TemporaryDirectory& temporary, Programme& programme, Report& report)
{
    const std::string screen_file = ScreenFile(arguments, temporary);
    const bool own_screen =
        kestrin_display::UseScreenFile(screen_file, format.width, format.height) ==
        kestrin_display::SetupResult::Applied;
    PlayOptions options = {format, arguments.realtime, PictureNames(arguments)};
    ArgbImage background = Background(arguments, format);
    if (!own_screen) {
        report.Warn({0, "DFBARGS chooses the display: no pictures and no dirty share",
                     "unset it to have them"});
        options.pictures.clear();
    }

    InitializeDirectFB();
    zelxxx::zelInitialize(static_cast<zelxxx::UInt32>(format.width),
                          static_cast<zelxxx::UInt32>(format.height),
                          static_cast<zelxxx::UInt8>(format.mode));
    PlayResult result;
    {
        const FontSet fonts(arguments.fonts.empty() ? DefaultFonts() : arguments.fonts,
                            temporary.Path());
        ChooseFonts(programme, fonts, report);
        std::optional<kestrin_display::ScreenReader> screen;
        if (own_screen)
            screen.emplace(screen_file);
        Player player(options, programme, report, screen ? &*screen : nullptr,
                      std::move(background));
        result = player.Run(g_stop);
        // Captions hold fonts, which go before the engine does.
        programme.clear();
    }
    zelxxx::zelUninitialize();
    return result;
}

int Play(const Arguments& arguments)
{
    Report report(arguments.file);
    Programme programme = LoadProgramme(arguments.file, *FindEncoding(arguments.encoding), report);
    if (programme.empty()) {
        std::cerr << arguments.file
                  << ": no cue to play; name a SubRip file (.srt) and its --encoding\n";
        return kestrin_tools::ExitProblem;
    }
    // Static, since a failure of DirectFB ends the process without coming back here.
    static const TemporaryDirectory temporary;
    const ScreenFormat format = Format(arguments);
    const PlayResult result = PlayOnDisplay(arguments, format, temporary, programme, report);
    PrintSummary(arguments, format, result, report);
    return kestrin_tools::ExitDone;
}

int Run(int argc, char** argv)
{
    Arguments arguments;
    CLI::App app("Shows a SubRip file on the display.", "kestrin-play");
    Declare(app, arguments);
    if (const auto end = kestrin_tools::Parse(app, argc, argv))
        return *end;
    std::signal(SIGINT, RequestStop);
    std::signal(SIGTERM, RequestStop);
    return Play(arguments);
}

} // namespace

int main(int argc, char** argv)
{
    return kestrin_tools::RunTool("kestrin-play", Run, argc, argv);
}
