#include "lay_over.h"

namespace kestrin_tools {
namespace {

using kestrin_display::ArgbImage;

std::uint32_t Channel(std::uint32_t argb, unsigned shift)
{
    return argb >> shift & 0xff;
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

} // namespace

void Fade(ArgbImage& image, std::uint32_t opacity)
{
    for (std::uint32_t& pixel : image.pixels) {
        const std::uint32_t alpha = (Channel(pixel, 24) * opacity + 127) / 255;
        pixel = alpha << 24 | (pixel & 0xffffff);
    }
}

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

} // namespace kestrin_tools
