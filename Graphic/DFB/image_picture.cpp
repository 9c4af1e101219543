#include "image_picture_p.h"

#include <algorithm>
#include <climits>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>

#include <jpeglib.h>
#include <png.h>

namespace zelxxx {

namespace {

constexpr int kBytesPerPixel = 4;
/** No deflate stream unpacks to more than this many times its length. */
constexpr std::size_t kMostDeflateRatio = 1032;

bool BeginsWith(const UInt8* data, std::size_t size, const char* signature, std::size_t length)
{
    return size >= length && std::memcmp(data, signature, length) == 0;
}

/** Whether a size has coordinates and room; clears nothing. */
bool IsAcceptable(std::size_t width, std::size_t height)
{
    return width > 0 && height > 0 && width <= INT16_MAX && height <= INT16_MAX &&
           width * height * kBytesPerPixel <= kMostImageBytes;
}

std::unique_ptr<UInt8[]> Allocate(std::size_t width, std::size_t height)
{
    return std::unique_ptr<UInt8[]>(new (std::nothrow) UInt8[width * height * kBytesPerPixel]());
}

/** libjpeg's state, with the place to return to when it meets an error. */
struct JpegReader
{
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    std::jmp_buf failed;
};

void JpegFailed(j_common_ptr info)
{
    std::longjmp(static_cast<JpegReader*>(info->client_data)->failed, 1);
}

void JpegIsSilent(j_common_ptr) {}

// libjpeg leaves these functions by a jump: nothing in them may have a destructor.

bool ReadJpegHeader(JpegReader& reader, const UInt8* data, std::size_t size)
{
    if (setjmp(reader.failed))
        return false;
    jpeg_create_decompress(&reader.info);
    jpeg_mem_src(&reader.info, data, static_cast<unsigned long>(size));
    jpeg_read_header(&reader.info, TRUE);
    reader.info.out_color_space = JCS_EXT_RGBA; // opaque
    return true;
}

bool ReadJpegRows(JpegReader& reader, UInt8* rgba)
{
    if (setjmp(reader.failed))
        return false;
    jpeg_start_decompress(&reader.info);
    const std::size_t row_bytes = std::size_t{reader.info.output_width} * kBytesPerPixel;
    while (reader.info.output_scanline < reader.info.output_height) {
        JSAMPROW row = rgba + reader.info.output_scanline * row_bytes;
        jpeg_read_scanlines(&reader.info, &row, 1);
    }
    return true;
}

} // namespace

bool IsPng(const UInt8* data, std::size_t size)
{
    return BeginsWith(data, size, "\x89PNG\r\n\x1a\n", 8);
}

bool IsJpeg(const UInt8* data, std::size_t size)
{
    return BeginsWith(data, size, "\xff\xd8\xff", 3);
}

Picture DecodePng(const UInt8* data, std::size_t size)
{
    Picture picture;
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, data, size))
        return picture;
    image.format = PNG_FORMAT_RGBA;
    // A pixel takes a bit at least, so a longer picture would not fit in the file.
    const std::size_t pixels = std::size_t{image.width} * image.height;
    if (IsAcceptable(image.width, image.height) && pixels / CHAR_BIT / kMostDeflateRatio <= size)
        picture.rgba = Allocate(image.width, image.height);
    if (picture.rgba && png_image_finish_read(&image, nullptr, picture.rgba.get(), 0, nullptr)) {
        picture.width = static_cast<int>(image.width);
        picture.height = static_cast<int>(image.height);
    } else {
        picture.rgba.reset();
    }
    png_image_free(&image);
    return picture;
}

Picture DecodeJpeg(const UInt8* data, std::size_t size)
{
    Picture picture;
    JpegReader reader = {};
    reader.info.err = jpeg_std_error(&reader.errors);
    reader.info.client_data = &reader;
    reader.errors.error_exit = JpegFailed;
    reader.errors.output_message = JpegIsSilent;
    if (ReadJpegHeader(reader, data, size) &&
        IsAcceptable(reader.info.image_width, reader.info.image_height)) {
        picture.width = static_cast<int>(reader.info.image_width);
        picture.height = static_cast<int>(reader.info.image_height);
        picture.rgba = Allocate(reader.info.image_width, reader.info.image_height);
    }
    if (picture.rgba && !ReadJpegRows(reader, picture.rgba.get()))
        picture.rgba.reset();
    jpeg_destroy_decompress(&reader.info);
    return picture;
}

} // namespace zelxxx
