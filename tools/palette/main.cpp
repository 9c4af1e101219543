/**
 * kestrin-palette: makes, shows and examines palette files.
 */
#include "swatch.h"

#include "command_line.h"
#include "palette_file.h"
#include "png_file.h"
#include "progress.h"
#include "quantise.h"
#include "whole_file.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace kestrin_tools;

struct Arguments
{
    std::vector<std::string> files; ///< sources, then the palette file
    bool fixed = false;
    int colours = 256;
    std::vector<int> transparent; ///< indices to be made so
    std::string file;
    std::string output;
};

Palette OfPictures(const std::vector<std::string>& files, int colours)
{
    PaletteMaker maker;
    Progress progress("kestrin-palette: looking at the colours of pictures");
    for (std::size_t i = 0; i < files.size(); ++i) {
        progress.Tell(i, files.size());
        maker.Add(ReadPng(files[i]));
    }
    return maker.Make(colours);
}

Palette OfSources(const std::vector<std::string>& sources, const Arguments& arguments)
{
    if (arguments.fixed) {
        if (!sources.empty())
            throw std::runtime_error(sources.front() + ": is not needed for the fixed palette; "
                                                       "leave it out or leave out --fixed");
        return FixedPalette();
    }
    if (sources.empty())
        throw std::runtime_error(arguments.files.front() +
                                 ": is the only name; name the pictures or the GIMP palette and "
                                 "then the palette file, or say --fixed");
    const auto gimp = std::find_if(sources.begin(), sources.end(), IsGimpPalette);
    if (gimp == sources.end())
        return OfPictures(sources, arguments.colours);
    if (sources.size() > 1)
        throw std::runtime_error(*gimp + ": is a GIMP palette, which makes a palette by itself; "
                                         "name it alone");
    return ReadGimpPalette(*gimp).palette;
}

/** A picture or a GIMP palette would be replaced if the last name was forgotten. */
void CheckOutput(const std::vector<std::string>& sources, const std::string& output)
{
    std::string extension = std::filesystem::path(output).extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    if (extension == ".png" || extension == ".gpl")
        throw std::runtime_error(output + ": would be made, but is named like a source; name the "
                                          "palette file to make last");
    for (const std::string& source : sources) {
        std::error_code ignored;
        if (std::filesystem::equivalent(source, output, ignored))
            throw std::runtime_error(output + ": is one of the sources as well; choose another "
                                              "name for the palette file");
    }
}

std::string Describe(const Palette& palette)
{
    const auto opacity = [&](std::uint32_t low, std::uint32_t high) {
        return static_cast<std::size_t>(
            std::count_if(palette.begin(), palette.end(), [=](std::uint32_t colour) {
                return colour >> 24 >= low && colour >> 24 <= high;
            }));
    };
    return std::to_string(opacity(255, 255)) + " opaque, " + std::to_string(opacity(1, 254)) +
           " semi-transparent, " + std::to_string(opacity(0, 0)) + " transparent";
}

void Make(const Arguments& arguments)
{
    std::vector<std::string> sources = arguments.files;
    const std::string output = sources.back();
    sources.pop_back();
    CheckOutput(sources, output);
    Palette palette = OfSources(sources, arguments);
    for (const int index : arguments.transparent)
        palette[static_cast<std::size_t>(index)] = 0;
    NewFile(output, PackPalette(palette)).Publish();
    std::printf("%s: %s\n", output.c_str(), Describe(palette).c_str());
}

void Show(const Arguments& arguments)
{
    const PaletteReport report = InspectPalette(arguments.file);
    for (const std::string& damage : report.damage)
        std::fprintf(stderr, "kestrin-palette: %s: %s; it is shown so\n", arguments.file.c_str(),
                     damage.c_str());
    WritePng(arguments.output, Swatch(report.palette));
}

int Info(const std::string& file)
{
    const PaletteReport report = InspectPalette(file);
    const Palette& palette = report.palette;
    const std::set<std::uint32_t> different(palette.begin(), palette.end());
    std::printf("%s\n", file.c_str());
    std::printf("  size       %zu bytes\n", report.size);
    std::printf("  colours    %s\n", Describe(palette).c_str());
    std::printf("  different  %zu\n", different.size());
    std::printf("  fixed      %s\n", palette == FixedPalette()
                                         ? "yes, the palette of 188 colours"
                                         : "no; show it on scenes that do not use "
                                           "BlendSrcOver8BIT, which is for the fixed palette");
    if (palette[0] >> 24 != 0)
        std::printf("  note       index 0 is not transparent: an empty screen shows its colour\n");
    for (const std::string& damage : report.damage)
        std::printf("  damage     %s\n", damage.c_str());
    if (report.damage.empty())
        std::printf("  damage     none\n");
    return report.damage.empty() ? ExitDone : ExitProblem;
}

CLI::App* DeclareMake(CLI::App& app, Arguments& arguments)
{
    CLI::App* make = app.add_subcommand(
        "make", "Makes a palette file of pictures, of a GIMP palette, or the fixed one.");
    make->add_option("files", arguments.files,
                     Wrapped("PNG files or one GIMP palette (.gpl), and the palette file to make"))
        ->required()
        ->type_name("IN... OUT");
    make->add_flag("--fixed", arguments.fixed,
                   Wrapped("Make the fixed palette of 188 colours, of nothing"));
    make->add_option("--colours", arguments.colours,
                     Wrapped("Colours to find in pictures, with the transparent one at index 0"))
        ->check(CLI::Range(2, 256))
        ->capture_default_str()
        ->type_name("N");
    make->add_option("--transparent", arguments.transparent,
                     Wrapped("Make the colour of this index transparent, as GIMP palettes cannot "
                             "say; may be repeated"))
        ->check(CLI::Range(0, 255))
        ->allow_extra_args(false)
        ->type_name("INDEX");
    make->footer("Colours of a GIMP palette keep their order, the first has index 0.\n\nExamples:\n"
                 "  kestrin-palette make --fixed fixed.pal\n"
                 "  kestrin-palette make --transparent 0 channel.gpl channel.pal\n"
                 "  kestrin-palette make --colours 64 logo.png photo.png banner.pal");
    return make;
}

int Run(int argc, char** argv)
{
    Arguments arguments;
    CLI::App app("Makes, shows and examines palette files, the colours of 8-bit displays.",
                 "kestrin-palette");
    app.require_subcommand(1);
    app.footer("Ends with 0 if all is done and sound, 1 if something failed or a file is damaged, "
               "2 for wrong\narguments. A file that could not be completed is not left.");
    const CLI::App* make = DeclareMake(app, arguments);
    CLI::App* show = app.add_subcommand(
        "show", "Writes a picture of all colours with their indices to a PNG file.");
    show->add_option("file", arguments.file, "The palette file")->required()->type_name("FILE");
    show->add_option("output", arguments.output, "The PNG file to write")
        ->required()
        ->type_name("OUT.png");
    show->footer("Squares show through transparent colours.\n\nExample:\n"
                 "  kestrin-palette show banner.pal banner-colours.png");
    CLI::App* info = app.add_subcommand("info", "Prints what is in a palette file.");
    info->add_option("file", arguments.file, "The palette file")->required()->type_name("FILE");
    info->footer("Example:\n  kestrin-palette info banner.pal");
    if (const auto end = kestrin_tools::Parse(app, argc, argv))
        return *end;
    if (make->parsed())
        Make(arguments);
    else if (show->parsed())
        Show(arguments);
    else
        return Info(arguments.file);
    return ExitDone;
}

} // namespace

int main(int argc, char** argv)
{
    return kestrin_tools::RunTool("kestrin-palette", Run, argc, argv);
}
