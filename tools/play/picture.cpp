#include "picture.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdint>

namespace kestrin_play {
namespace {

constexpr std::uint32_t sheet_colour = 0xFF181C20;
constexpr int sheet_gap = 8;
constexpr int sheet_width_limit = 2560;
constexpr int sheet_cell_limit = 400;

struct Rgb
{
    double red, green, blue;
};

Rgb Mix(const Rgb& a, const Rgb& b, double share)
{
    share = std::clamp(share, 0.0, 1.0);
    return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share,
            a.blue + (b.blue - a.blue) * share};
}

std::uint32_t Pack(const Rgb& c)
{
    const auto byte = [](double v) {
        return static_cast<std::uint32_t>(std::clamp(std::lround(v), 0L, 255L));
    };
    return 0xFF000000 | byte(c.red) << 16 | byte(c.green) << 8 | byte(c.blue);
}

/** Height of a row of hills at x, as a share of the picture's height from the top. */
double HillTop(int row, double x)
{
    const double base = 0.56 + 0.12 * row;
    const double pitch = 5.0 + 2.5 * row;
    return base + 0.045 * std::sin(pitch * x + 1.7 * row) +
           0.02 * std::sin(2.7 * pitch * x + 0.6 * row);
}

/** Colour of the landscape at (x, y), both from 0 to 1, in a picture of width x height pixels. */
Rgb Landscape(double x, double y, int width, int height)
{
    static const std::array<Rgb, 3> hills = {{{96, 108, 148}, {62, 96, 92}, {36, 66, 44}}};
    const Rgb zenith = {58, 92, 160};
    const Rgb horizon = {250, 196, 140};
    Rgb colour = Mix(zenith, horizon, y / 0.62);

    const double dx = (x - 0.7) * width / height;
    const double distance = std::sqrt(dx * dx + (y - 0.34) * (y - 0.34));
    colour = Mix(Rgb{255, 240, 200}, colour, (distance - 0.06) / 0.01);
    for (int row = 0; row < 3; ++row) {
        const double below = y - HillTop(row, x);
        const Rgb hill = Mix(hills[static_cast<std::size_t>(row)], Rgb{20, 34, 30}, below * 1.4);
        // The edge is as soft as a pixel is high.
        colour = Mix(colour, hill, below * height + 0.5);
    }
    return colour;
}

std::uint32_t Channel(std::uint32_t pixel, int shift)
{
    return (pixel >> shift) & 0xFF;
}

/** Mean colour of the pixels x1 <= x < x2, y1 <= y < y2, weighted by opacity. */
std::uint32_t Mean(const ArgbImage& image, int x1, int y1, int x2, int y2)
{
    std::uint64_t alpha = 0, red = 0, green = 0, blue = 0;
    for (int y = y1; y < y2; ++y) {
        for (int x = x1; x < x2; ++x) {
            const std::uint32_t pixel = image.At(x, y);
            const std::uint32_t a = pixel >> 24;
            alpha += a;
            red += a * Channel(pixel, 16);
            green += a * Channel(pixel, 8);
            blue += a * Channel(pixel, 0);
        }
    }
    if (alpha == 0)
        return 0;
    const std::uint64_t count =
        static_cast<std::uint64_t>(x2 - x1) * static_cast<std::uint64_t>(y2 - y1);
    return static_cast<std::uint32_t>(alpha / count << 24 | red / alpha << 16 | green / alpha << 8 |
                                      blue / alpha);
}

} // namespace

ArgbImage TestPicture(int width, int height)
{
    ArgbImage image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.At(x, y) = Pack(Landscape((x + 0.5) / width, (y + 0.5) / height, width, height));
    }
    return image;
}

ArgbImage Scaled(const ArgbImage& image, int width, int height)
{
    ArgbImage scaled(width, height);
    for (int y = 0; y < height; ++y) {
        const int y1 = y * image.height / height;
        const int y2 = std::max(y1 + 1, (y + 1) * image.height / height);
        for (int x = 0; x < width; ++x) {
            const int x1 = x * image.width / width;
            const int x2 = std::max(x1 + 1, (x + 1) * image.width / width);
            scaled.At(x, y) = Mean(image, x1, y1, x2, y2);
        }
    }
    return scaled;
}

Change Compare(const ArgbImage& before, const ArgbImage& after)
{
    assert(before.width == after.width && before.height == after.height);
    std::size_t count = 0;
    int left = after.width, right = -1, top = after.height, bottom = -1;
    for (int y = 0; y < after.height; ++y) {
        for (int x = 0; x < after.width; ++x) {
            if (before.At(x, y) == after.At(x, y))
                continue;
            ++count;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = y;
        }
    }
    if (count == 0)
        return {0, 0};
    const double area = static_cast<double>(after.pixels.size());
    return {static_cast<double>(count) / area,
            static_cast<double>(right - left + 1) * (bottom - top + 1) / area};
}

ContactSheet::ContactSheet(std::size_t count, int width, int height)
{
    const double columns = std::ceil(std::sqrt(static_cast<double>(count)));
    _columns = static_cast<int>(columns);
    const int rows = static_cast<int>(std::ceil(static_cast<double>(count) / columns));
    _width = std::max(16, std::min({sheet_cell_limit, width,
                                    (sheet_width_limit - sheet_gap) / _columns - sheet_gap}));
    _height = std::max(16, _width * height / width);
    _sheet = ArgbImage(_columns * (_width + sheet_gap) + sheet_gap,
                       rows * (_height + sheet_gap) + sheet_gap, sheet_colour);
}

ContactSheet::Place ContactSheet::PlaceOf(std::size_t index) const
{
    const int column = static_cast<int>(index) % _columns;
    const int row = static_cast<int>(index) / _columns;
    return {sheet_gap + column * (_width + sheet_gap), sheet_gap + row * (_height + sheet_gap),
            _width, _height};
}

void ContactSheet::Add(const ArgbImage& image)
{
    const Place place = PlaceOf(_used++);
    // A picture of other proportions is fitted in, not stretched.
    const double ratio = std::min(static_cast<double>(place.width) / image.width,
                                  static_cast<double>(place.height) / image.height);
    const auto scaled = [&](int side, int limit) {
        return std::clamp(static_cast<int>(std::lround(side * ratio)), 1, limit);
    };
    const int width = scaled(image.width, place.width);
    const int height = scaled(image.height, place.height);
    const ArgbImage small = Scaled(image, width, height);
    const int left = place.x + (place.width - width) / 2;
    const int top = place.y + (place.height - height) / 2;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            _sheet.At(left + x, top + y) = small.At(x, y);
    }
}

} // namespace kestrin_play
