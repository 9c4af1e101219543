/**
 * kestrin-image: makes, shows and examines image files.
 */
#include "compress.h"
#include "make.h"

#include "command_line.h"
#include "image_file.h"
#include "png_file.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace kestrin_tools;

struct Arguments
{
    std::vector<std::string> files; ///< pictures, then the image file
    MakeOptions make;
    std::string file;
    std::string output;
    int frame = 0;
};

void Make(Arguments& arguments)
{
    if (arguments.files.size() < 2)
        throw std::runtime_error(arguments.files.front() +
                                 ": is the only name; name the pictures and then the image file");
    arguments.make.output = arguments.files.back();
    arguments.files.pop_back();
    arguments.make.pictures = arguments.files;
    std::fputs(MakeImage(arguments.make).c_str(), stdout);
}

void Show(const Arguments& arguments)
{
    const IndexedImage image = ReadImage(arguments.file);
    if (arguments.frame >= image.frames)
        throw std::runtime_error(arguments.file + ": has no frame " +
                                 std::to_string(arguments.frame) + "; its frames are 0 to " +
                                 std::to_string(image.frames - 1));
    const Palette palette =
        arguments.make.palette.empty() ? FixedPalette() : ReadPalette(arguments.make.palette);
    WritePng(arguments.output, FrameOf(image, arguments.frame, palette));
}

int Info(const std::string& file)
{
    const ImageReport report = InspectImage(file);
    std::printf("%s\n", file.c_str());
    if (report.size >= image_header_size) {
        std::printf("  size    %d x %d pixels, %d bits per pixel\n", report.width, report.height,
                    report.depth);
        std::printf("  frames  %d\n", report.frames);
        const std::size_t packed = report.size - image_header_size;
        std::printf("  packed  %zu bytes of %llu", packed,
                    static_cast<unsigned long long>(report.unpacked));
        if (report.unpacked != 0)
            std::printf(", %.1f %%",
                        100.0 * static_cast<double>(packed) / static_cast<double>(report.unpacked));
        std::printf("\n");
    }
    for (const std::string& damage : report.damage)
        std::printf("  damage  %s\n", damage.c_str());
    for (const std::string& note : report.notes)
        std::printf("  note    %s\n", note.c_str());
    if (report.damage.empty())
        std::printf("  damage  none\n");
    return report.damage.empty() ? ExitDone : ExitProblem;
}

CLI::App* DeclareMake(CLI::App& app, Arguments& arguments)
{
    CLI::App* make = app.add_subcommand(
        "make", "Makes an image file of PNG files: one frame of each, in their order.");
    make->add_option("files", arguments.files,
                     Wrapped("The pictures, all of one size, and the image file to make"))
        ->required()
        ->type_name("IN.png... OUT");
    CLI::Option* palette =
        make->add_option("--palette", arguments.make.palette,
                         Wrapped("The display's palette file, if it is not the fixed palette of "
                                 "188 colours"))
            ->type_name("FILE");
    make->add_flag("--own-palette", arguments.make.own_palette,
                   Wrapped("Choose the 255 colours that suit the pictures best, beside a "
                           "transparent one, and write them to OUT.pal, for the display to show"))
        ->excludes(palette);
    make->add_flag("--dither", arguments.make.dither,
                   Wrapped("Spread what colours miss over the pixels beside: smoother photos, "
                           "larger files. Without, a colour of the palette stays exactly as it "
                           "is"));
    make->add_option("--level", arguments.make.level,
                     Wrapped("How hard to compress, from 1 (fast) to 10 (small)"))
        ->check(CLI::Range(least_compression, most_compression))
        ->capture_default_str()
        ->type_name("N");
    make->footer("Transparent pixels take the palette's transparent colour, index 0 of the fixed "
                 "and of own\npalettes.\n\nExamples:\n"
                 "  kestrin-image make logo.png logo.img\n"
                 "  kestrin-image make --palette channel.pal wheel-?.png wheel.img\n"
                 "  kestrin-image make --own-palette --dither photo.png photo.img");
    return make;
}

CLI::App* DeclareShow(CLI::App& app, Arguments& arguments)
{
    CLI::App* show = app.add_subcommand("show", "Writes a frame of an image file to a PNG file.");
    show->add_option("file", arguments.file, "The image file")->required()->type_name("FILE");
    show->add_option("output", arguments.output, "The PNG file to write")
        ->required()
        ->type_name("OUT.png");
    show->add_option("--frame", arguments.frame, "The frame to show, the first is 0")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str()
        ->type_name("N");
    show->add_option("--palette", arguments.make.palette,
                     Wrapped("The display's palette file, if it is not the fixed palette of 188 "
                             "colours"))
        ->type_name("FILE");
    show->footer("Examples:\n"
                 "  kestrin-image show logo.img logo.png\n"
                 "  kestrin-image show wheel.img --frame 3 --palette channel.pal third.png");
    return show;
}

int Run(int argc, char** argv)
{
    Arguments arguments;
    CLI::App app("Makes, shows and examines image files, the pictures of 8-bit displays.",
                 "kestrin-image");
    app.require_subcommand(1);
    app.footer("Ends with 0 if all is done and sound, 1 if something failed or a file is damaged, "
               "2 for wrong\narguments. A file that could not be completed is not left.");
    const CLI::App* make = DeclareMake(app, arguments);
    const CLI::App* show = DeclareShow(app, arguments);
    CLI::App* info = app.add_subcommand(
        "info", "Prints what is in an image file, and all damage for which it would not be shown.");
    info->add_option("file", arguments.file, "The image file")->required()->type_name("FILE");
    info->footer("Example:\n  kestrin-image info logo.img");
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
    return kestrin_tools::RunTool("kestrin-image", Run, argc, argv);
}
