#include "png_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <png.h>

namespace kestrin_tools {
namespace {

using kestrin_display::ArgbImage;

constexpr png_uint_32 side_limit = 16384;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

// libpng's simplified interface does whole pictures in one call and reports errors as text. Its
// BGRA is 0xAARRGGBB on little-endian machines, its ARGB on the others.
constexpr png_uint_32 pixel_format =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;

/** libpng's description of a picture; frees what libpng keeps with it. */
class Description
{
public:
    Description() { image.version = PNG_IMAGE_VERSION; }
    ~Description() { png_image_free(&image); }

    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;

    png_image image = {};
};

[[noreturn]] void Fail(const std::string& path, const std::string& reason)
{
    throw PngError(path + ": " + reason);
}

} // namespace

void WritePng(const std::string& path, const ArgbImage& image)
{
    if (image.width < 1 || image.height < 1)
        Fail(path, "a picture without pixels cannot be a PNG");

    Description png;
    png.image.width = static_cast<png_uint_32>(image.width);
    png.image.height = static_cast<png_uint_32>(image.height);
    png.image.format = pixel_format;

    File file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr)
        Fail(path, std::strerror(errno));

    std::string reason;
    if (png_image_write_to_stdio(&png.image, file.get(), 0, image.pixels.data(), 0, nullptr) == 0)
        reason = png.image.message;
    errno = 0;
    if (std::fclose(file.release()) != 0 && reason.empty())
        reason = std::strerror(errno);
    if (!reason.empty()) {
        std::remove(path.c_str());
        Fail(path, reason);
    }
}

ArgbImage ReadPng(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr)
        Fail(path, std::strerror(errno));

    Description png;
    if (png_image_begin_read_from_stdio(&png.image, file.get()) == 0)
        Fail(path, png.image.message);
    if (png.image.width > side_limit || png.image.height > side_limit)
        Fail(path, "is " + std::to_string(png.image.width) + " x " +
                       std::to_string(png.image.height) + " pixels; " + std::to_string(side_limit) +
                       " a side is the limit");

    png.image.format = pixel_format;
    ArgbImage image(static_cast<int>(png.image.width), static_cast<int>(png.image.height));
    if (png_image_finish_read(&png.image, nullptr, image.pixels.data(), 0, nullptr) == 0)
        Fail(path, png.image.message);
    return image;
}

} // namespace kestrin_tools
