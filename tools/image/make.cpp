#include "make.h"

#include "compress.h"
#include "quantise.h"

#include "image_file.h"
#include "png_file.h"
#include "progress.h"
#include "whole_file.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace kestrin_tools {
namespace {

namespace fs = std::filesystem;
using kestrin_display::ArgbImage;

std::string SizeOf(int width, int height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

bool IsPngName(const std::string& name)
{
    std::string extension = fs::path(name).extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return extension == ".png";
}

/** The last name is easily forgotten: a picture would be replaced then. */
void CheckNames(const MakeOptions& options)
{
    if (IsPngName(options.output))
        throw std::runtime_error(options.output + ": would be made, but is named like a PNG file; "
                                                  "name the image file to make last");
    for (const std::string& picture : options.pictures) {
        std::error_code ignored;
        if (fs::equivalent(picture, options.output, ignored))
            throw std::runtime_error(options.output + ": is one of the pictures as well; choose "
                                                      "another name for the image file");
    }
    if (options.pictures.size() > image_frame_limit)
        throw std::runtime_error(std::to_string(options.pictures.size()) +
                                 " pictures; an image file has at most " +
                                 std::to_string(image_frame_limit) + " frames");
}

/** Reads the pictures one after another, so that only one need be kept. */
class PictureReader
{
public:
    PictureReader(const std::vector<std::string>& files, const std::string& what)
        : _files(files), _progress("kestrin-image: " + what)
    {
    }

    /** Hands every picture to a function, each as large as the first. */
    template <class Function>
    void ForEach(Function function)
    {
        ArgbImage first;
        for (std::size_t i = 0; i < _files.size(); ++i) {
            _progress.Tell(i, _files.size());
            const ArgbImage picture = ReadPng(_files[i]);
            if (i == 0) {
                CheckTotal(picture);
                first.width = picture.width;
                first.height = picture.height;
            } else if (picture.width != first.width || picture.height != first.height) {
                throw std::runtime_error(_files[i] + ": is " +
                                         SizeOf(picture.width, picture.height) + " pixels and " +
                                         _files[0] + " is " + SizeOf(first.width, first.height) +
                                         "; make all frames one size");
            }
            function(picture);
        }
    }

private:
    void CheckTotal(const ArgbImage& picture) const
    {
        if (picture.pixels.size() * _files.size() > image_size_limit)
            throw std::runtime_error(
                std::to_string(_files.size()) + " frames of " +
                SizeOf(picture.width, picture.height) + " pixels are more than the " +
                std::to_string(image_size_limit) + " that an image file may have; make several");
    }

    const std::vector<std::string>& _files;
    Progress _progress;
};

Palette ChoosePalette(const MakeOptions& options)
{
    if (!options.palette.empty())
        return ReadPalette(options.palette);
    if (!options.own_palette)
        return FixedPalette();
    PaletteMaker maker;
    PictureReader(options.pictures, "looking at the colours of pictures")
        .ForEach([&](const ArgbImage& picture) { maker.Add(picture); });
    return maker.Make(256);
}

struct Quantised
{
    IndexedImage image;
    bool misses_transparency = false; ///< the pictures have some and the palette has none
};

Quantised Quantise(const MakeOptions& options, const Palette& palette)
{
    const auto is_clear = [](std::uint32_t colour) { return colour >> 24 == 0; };
    const bool can_be_clear = std::any_of(palette.begin(), palette.end(), is_clear);
    if (std::all_of(palette.begin(), palette.end(),
                    [&](std::uint32_t colour) { return colour == palette.front(); }))
        throw std::runtime_error(options.palette + ": all its colours are the same; name another "
                                                   "palette file after --palette");
    Quantiser quantiser(palette, options.dither);
    Quantised result;
    PictureReader(options.pictures, "reducing the colours of pictures")
        .ForEach([&](const ArgbImage& picture) {
            if (!can_be_clear)
                result.misses_transparency |=
                    std::any_of(picture.pixels.begin(), picture.pixels.end(), is_clear);
            const std::vector<std::uint8_t> pixels = quantiser.Map(picture);
            IndexedImage& image = result.image;
            image.width = picture.width;
            image.height = picture.height;
            image.frames++;
            image.pixels.insert(image.pixels.end(), pixels.begin(), pixels.end());
        });
    return result;
}

std::string Summary(const MakeOptions& options, const IndexedImage& image, std::size_t size)
{
    const std::size_t pixels = image.pixels.size();
    std::string text = options.output + ": " + std::to_string(image.frames) +
                       (image.frames == 1 ? " frame of " : " frames of ") +
                       SizeOf(image.width, image.height) + " pixels, " + std::to_string(pixels) +
                       " bytes packed into " + std::to_string(size) + " (" +
                       std::to_string((size * 100 + pixels / 2) / pixels) + " %)\n";
    if (options.own_palette)
        text += OwnPaletteName(options.output) + ": its palette\n";
    return text;
}

} // namespace

std::string OwnPaletteName(const std::string& output)
{
    return output + ".pal";
}

std::string MakeImage(const MakeOptions& options)
{
    CheckNames(options);
    const Palette palette = ChoosePalette(options);
    const Quantised quantised = Quantise(options, palette);
    const IndexedImage& image = quantised.image;

    Progress progress("kestrin-image: compressing bytes");
    const std::string stream = Compress(image.pixels, options.level, [&](std::size_t done) {
        progress.Tell(done, image.pixels.size());
    });
    const std::string file = PackImage(image, stream);

    // Both are written before either appears.
    NewFile image_file(options.output, file);
    std::optional<NewFile> palette_file;
    if (options.own_palette) {
        palette_file.emplace(OwnPaletteName(options.output), PackPalette(palette));
        palette_file->Publish();
    }
    image_file.Publish();
    std::string summary = Summary(options, image, file.size());
    if (quantised.misses_transparency)
        summary += "warning: pictures have transparent pixels and " + options.palette +
                   " has no transparent colour; the nearest ones were taken\n";
    return summary;
}

} // namespace kestrin_tools
