/**
 * kestrin-screen: looks at the screen file of a running or finished program.
 */
#include "command_line.h"
#include "display_setup.h"
#include "lay_over.h"
#include "png_file.h"
#include "screen_reader.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

namespace {

using kestrin_display::DefaultScreenFile;
using kestrin_display::FormatName;
using kestrin_display::LayerFacts;
using kestrin_display::LayerSnapshot;
using kestrin_display::ScreenReader;

struct Options
{
    std::string screen = DefaultScreenFile();
    std::string output;
    std::string background;
    int layer = 1;
};

void Shoot(const Options& options)
{
    LayerSnapshot snapshot = ScreenReader(options.screen).Snapshot(options.layer);
    kestrin_tools::Fade(snapshot.image, snapshot.facts.opacity);
    if (!options.background.empty())
        kestrin_tools::LayOver(snapshot.image, kestrin_tools::ReadPng(options.background));
    kestrin_tools::WritePng(options.output, snapshot.image);
}

void PrintInfo(const Options& options)
{
    const ScreenReader reader(options.screen);
    const auto& header = reader.Header();
    std::printf("screen %s\n%u x %u pixels, made by process %u\n\n", options.screen.c_str(),
                header.width, header.height, header.process);
    std::printf("layer  state  size         format    pitch  opacity    updates      flips\n");

    for (int layer = 0; layer < reader.LayerCount(); layer++) {
        const LayerFacts facts = reader.Facts(layer);
        const std::string size = std::to_string(facts.width) + " x " + std::to_string(facts.height);
        std::printf("%5d  %-5s  %-11s  %-8s  %5u  %7u  %9llu  %9llu\n", layer,
                    facts.shown != 0 ? "shown" : "off", size.c_str(), FormatName(facts.format),
                    facts.pitch, facts.opacity, static_cast<unsigned long long>(facts.update_count),
                    static_cast<unsigned long long>(facts.flip_count));
    }
}

std::string HowToMakeOne(const std::string& screen)
{
    try {
        return "Name another file with --screen, or start a DirectFB program that makes it:\n"
               "    DFBARGS=" +
               kestrin_display::ScreenFileArguments(screen, 1280, 720) + " PROGRAM\n";
    } catch (const std::exception& error) {
        return std::string("No program can make it: ") + error.what() + "\n";
    }
}

void AddScreenOption(CLI::App& command, Options& options)
{
    command
        .add_option("--screen", options.screen,
                    "The screen file. By default $XDG_RUNTIME_DIR/kestrin-screen, and without that "
                    "variable /tmp/kestrin-screen-<user id>")
        ->type_name("FILE");
}

int Run(int argc, char** argv)
{
    Options options;
    CLI::App app("Looks at the screen of a program that draws into a screen file, while it runs or "
                 "after it has ended.",
                 "kestrin-screen");
    app.require_subcommand(1);

    CLI::App* shot = app.add_subcommand(
        "shot",
        "Writes what is on a layer to a PNG file. The layer's opacity is applied; without a "
        "background, what is transparent stays so.");
    shot->add_option("output", options.output, "The PNG file to write")
        ->required()
        ->type_name("OUT.png");
    AddScreenOption(*shot, options);
    shot->add_option("--layer", options.layer, "The layer to look at")
        ->type_name("N")
        ->capture_default_str();
    shot->add_option("--background", options.background,
                     "A PNG file to lay the layer over, as a television lays it over the video. It "
                     "is stretched to the size of the layer, without smoothing")
        ->type_name("PNG");

    CLI::App* info = app.add_subcommand("info", "Prints what the layers show.");
    AddScreenOption(*info, options);

    CLI11_PARSE(app, argc, argv);

    try {
        if (shot->parsed())
            Shoot(options);
        else
            PrintInfo(options);
    } catch (const std::exception& error) {
        std::cerr << "kestrin-screen: " << error.what() << "\n";
        if (!std::filesystem::exists(options.screen))
            std::cerr << HowToMakeOne(options.screen);
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    return kestrin_tools::RunTool("kestrin-screen", Run, argc, argv);
}
