#include "picture_files.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <png.h>

namespace kestrin_test {

namespace {

Bytes Compressed(unsigned width, unsigned height, const Bytes& pixels, int channels,
                 bool progressive)
{
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = width;
    info.image_height = height;
    info.input_components = channels;
    info.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&info);
    if (channels == 3) {
        // Colours at full resolution.
        jpeg_set_quality(&info, 100, TRUE);
        info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    }
    if (progressive)
        jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    const std::size_t row_bytes = std::size_t{width} * static_cast<std::size_t>(channels);
    while (info.next_scanline < height) {
        JSAMPROW row = const_cast<JSAMPROW>(pixels.data() + info.next_scanline * row_bytes);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    Bytes file(memory, memory + size);
    std::free(memory);
    return file;
}

} // namespace

Bytes PngFile(int width, int height, const Bytes& rgba)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0;
    EXPECT_TRUE(png_image_write_get_memory_size(image, size, 0, rgba.data(), 0, nullptr));
    Bytes file(size);
    EXPECT_TRUE(png_image_write_to_memory(&image, file.data(), &size, 0, rgba.data(), 0, nullptr));
    file.resize(size);
    return file;
}

Bytes JpegFile(unsigned width, unsigned height, std::uint8_t grey)
{
    return Compressed(width, height, Bytes(std::size_t{width} * height, grey), 1, false);
}

Bytes JpegFile(unsigned width, unsigned height, const Bytes& rgb, bool progressive)
{
    return Compressed(width, height, rgb, 3, progressive);
}

} // namespace kestrin_test
