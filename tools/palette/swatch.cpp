#include "swatch.h"

#include "lay_over.h"

#include <cstddef>

namespace kestrin_tools {
namespace {

using kestrin_display::ArgbImage;

constexpr std::uint32_t gap_colour = 0xFF181C20;
constexpr std::uint32_t dark_square = 0xFF484848;
constexpr std::uint32_t light_square = 0xFF6C6C6C;
constexpr int square = 8;
constexpr int gap = 1;

constexpr int digit_width = 3;
constexpr int digit_height = 5;
constexpr int digit_scale = 2;

/** Rows of three pixels, the top one in the highest bits. */
constexpr int digits[] = {
    0b111101101101111, 0b010110010010111, 0b111001111100111, 0b111001011001111, 0b101101111001001,
    0b111100111001111, 0b111100111101111, 0b111001010010010, 0b111101111101111, 0b111101111001111};

void Fill(ArgbImage& image, int left, int top, int width, int height, std::uint32_t colour)
{
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x)
            image.At(x, y) = colour;
    }
}

void DrawDigit(ArgbImage& image, int left, int top, int digit, std::uint32_t colour)
{
    for (int i = 0; i < digit_width * digit_height; ++i) {
        const int bit = digit_width * digit_height - 1 - i;
        if (digits[digit] >> bit & 1)
            Fill(image, left + i % digit_width * digit_scale, top + i / digit_width * digit_scale,
                 digit_scale, digit_scale, colour);
    }
}

/** Black or white, whichever is read more easily on a colour. */
std::uint32_t InkOn(std::uint32_t colour)
{
    const std::uint32_t luma =
        (colour >> 16 & 0xff) * 299 + (colour >> 8 & 0xff) * 587 + (colour & 0xff) * 114;
    return luma > 128000 ? 0xFF000000 : 0xFFFFFFFF;
}

void DrawNumber(ArgbImage& image, int left, int top, int number)
{
    const std::uint32_t ink = InkOn(image.At(left, top));
    const std::string text = std::to_string(number);
    for (std::size_t i = 0; i < text.size(); ++i)
        DrawDigit(image, left + static_cast<int>(i) * (digit_width + 1) * digit_scale, top,
                  text[i] - '0', ink);
}

ArgbImage Squares(int width, int height)
{
    ArgbImage image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.At(x, y) = (x / square + y / square) % 2 == 0 ? light_square : dark_square;
    }
    return image;
}

} // namespace

ArgbImage Swatch(const Palette& palette)
{
    const int rows = static_cast<int>(palette.size()) / swatch_columns;
    ArgbImage colours(swatch_columns * swatch_cell_width, rows * swatch_cell_height, gap_colour);
    for (int i = 0; i < static_cast<int>(palette.size()); ++i)
        Fill(colours, i % swatch_columns * swatch_cell_width + gap,
             i / swatch_columns * swatch_cell_height + gap, swatch_cell_width - 2 * gap,
             swatch_cell_height - 2 * gap, palette[static_cast<std::size_t>(i)]);
    LayOver(colours, Squares(colours.width, colours.height));
    constexpr int margin = 4;
    for (int i = 0; i < static_cast<int>(palette.size()); ++i)
        DrawNumber(colours, i % swatch_columns * swatch_cell_width + margin,
                   i / swatch_columns * swatch_cell_height + margin, i);
    return colours;
}

} // namespace kestrin_tools
