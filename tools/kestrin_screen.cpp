/**
 * kestrin-screen: looks at the screen file of a running or finished program.
 */
#include "display_setup.h"
#include "png_file.h"
#include "screen_reader.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

namespace {

using kestrin_display::ArgbImage;
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

std::uint32_t Channel(std::uint32_t argb, unsigned shift)
{
    return argb >> shift & 0xff;
}

/** Multiplies a pixel's alpha by the opacity of its layer, 0 to 255. */
std::uint32_t Fade(std::uint32_t argb, std::uint32_t opacity)
{
    const std::uint32_t alpha = (Channel(argb, 24) * opacity + 127) / 255;
    return alpha << 24 | (argb & 0xffffff);
}

/** Lays one pixel over another; both and the result have straight alpha. */
std::uint32_t Over(std::uint32_t front, std::uint32_t back)
{
    const std::uint32_t front_weight = Channel(front, 24) * 255;
    const std::uint32_t back_weight = Channel(back, 24) * (255 - Channel(front, 24));
    const std::uint32_t weight = front_weight + back_weight; // alpha of the result times 255
    if (weight == 0)
        return 0;

    std::uint32_t result = (weight + 127) / 255 << 24;
    for (unsigned shift : {16U, 8U, 0U}) {
        const std::uint32_t sum =
            Channel(front, shift) * front_weight + Channel(back, shift) * back_weight;
        result |= (sum + weight / 2) / weight << shift;
    }
    return result;
}

/** Lays the picture over a background that is stretched to its size, without smoothing. */
void LayOver(ArgbImage& image, const ArgbImage& background)
{
    for (int y = 0; y < image.height; y++) {
        const int from_y = y * background.height / image.height;
        for (int x = 0; x < image.width; x++) {
            const int from_x = x * background.width / image.width;
            image.At(x, y) = Over(image.At(x, y), background.At(from_x, from_y));
        }
    }
}

void Shoot(const Options& options)
{
    LayerSnapshot snapshot = ScreenReader(options.screen).Snapshot(options.layer);
    for (std::uint32_t& pixel : snapshot.image.pixels)
        pixel = Fade(pixel, snapshot.facts.opacity);
    if (!options.background.empty())
        LayOver(snapshot.image, kestrin_tools::ReadPng(options.background));
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
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestrin-screen: %s\n", error.what());
        return 1;
    }
}
