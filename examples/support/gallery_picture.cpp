/**
 * gallery-picture: a screen's picture as the gallery shows it, of half the size and opaque.
 *
 *     gallery-picture IN.png OUT.png
 */
#include "lay_over.h"
#include "picture.h"
#include "png_file.h"

#include <cstdio>
#include <exception>

namespace {

/** What stands for the video where a program draws nothing. */
constexpr std::uint32_t kDusk = 0xff34455c;

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: gallery-picture IN.png OUT.png\n");
        return 2;
    }
    try {
        kestrin_display::ArgbImage image = kestrin_tools::ReadPng(argv[1]);
        kestrin_tools::LayOver(image, kestrin_display::ArgbImage(1, 1, kDusk));
        kestrin_tools::WritePng(argv[2],
                                kestrin_play::Scaled(image, image.width / 2, image.height / 2));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "gallery-picture: %s\n", error.what());
        return 1;
    }
}
