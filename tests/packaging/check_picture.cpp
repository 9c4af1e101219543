/**
 * check_picture PICTURE.png: whether the picture shows what client.cpp draws.
 */
#include "png_file.h"

#include <cstdint>
#include <cstdio>
#include <exception>

namespace {

using kestrin_display::ArgbImage;

constexpr std::uint32_t box_pixel = 0xffc81432;
constexpr std::uint32_t letter_pixel = 0xff002060;

bool IsIn(int x, int y, int left, int top, int right, int bottom)
{
    return x >= left && x < right && y >= top && y < bottom;
}

/** Nothing but the box and the word, and of the word enough to be one and not a filled box. */
int Check(const ArgbImage& picture)
{
    if (picture.width != 1280 || picture.height != 720) {
        std::printf("the picture is %d x %d pixels\n", picture.width, picture.height);
        return 1;
    }
    int letter_pixels = 0;
    for (int y = 0; y < 720; y++) {
        for (int x = 0; x < 1280; x++) {
            const std::uint32_t pixel = picture.At(x, y);
            if (IsIn(x, y, 400, 100, 800, 200)) {
                letter_pixels += pixel == letter_pixel ? 1 : 0;
                continue;
            }
            const std::uint32_t expected = IsIn(x, y, 150, 120, 350, 220) ? box_pixel : 0;
            if (pixel != expected) {
                std::printf("(%d, %d) is %08x, not %08x\n", x, y, pixel, expected);
                return 1;
            }
        }
    }
    if (letter_pixels < 2000 || letter_pixels > 12000) {
        std::printf("%d pixels of the word have its colour\n", letter_pixels);
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Check(kestrin_tools::ReadPng(argc > 1 ? argv[1] : ""));
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
