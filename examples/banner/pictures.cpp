/**
 * Draws the pictures of the banner: banner-pictures DIRECTORY [video]
 *
 * logo.png, tile.png, photo.png and the frames icon-00.png to icon-15.png are shown by the banner;
 * text.png has the colours of its text, for the palette. If asked for, video.png stands in for what
 * runs behind.
 */
#include "png_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <string>

namespace {

using kestrin_display::ArgbImage;

constexpr double pi = 3.14159265358979;
constexpr int icon_frames = 16;

/** A colour with its opacity, all 0 to 1. */
struct Paint
{
    double red, green, blue, alpha = 1;
};

constexpr Paint clear = {0, 0, 0, 0};

Paint Rgb(unsigned rgb, double alpha = 1)
{
    return {(rgb >> 16 & 0xff) / 255.0, (rgb >> 8 & 0xff) / 255.0, (rgb & 0xff) / 255.0, alpha};
}

Paint Mix(const Paint& a, const Paint& b, double share)
{
    share = std::clamp(share, 0.0, 1.0);
    const auto mixed = [=](double x, double y) { return x + (y - x) * share; };
    return {mixed(a.red, b.red), mixed(a.green, b.green), mixed(a.blue, b.blue),
            mixed(a.alpha, b.alpha)};
}

/** Lays a shape over what is there: `inside` is how far a point is in it, in pixels. */
Paint Lay(const Paint& below, Paint shape, double inside)
{
    shape.alpha *= std::clamp(inside + 0.5, 0.0, 1.0);
    const double alpha = shape.alpha + below.alpha * (1 - shape.alpha);
    if (alpha == 0)
        return clear;
    Paint mixed = Mix(below, shape, shape.alpha / alpha);
    mixed.alpha = alpha;
    return mixed;
}

/** Calls a function for the middle of every pixel. */
template <class Function>
ArgbImage Draw(int width, int height, Function paint)
{
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    ArgbImage image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Paint c = paint(x + 0.5, y + 0.5);
            image.At(x, y) =
                byte(c.alpha) << 24 | byte(c.red) << 16 | byte(c.green) << 8 | byte(c.blue);
        }
    }
    return image;
}

struct Point
{
    double x, y;
};

double InDisc(double x, double y, Point centre, double radius)
{
    return radius - std::hypot(x - centre.x, y - centre.y);
}

double InRoundedBox(double x, double y, double size, double radius)
{
    const double dx = std::max(std::abs(x - size / 2) - (size / 2 - radius), 0.0);
    const double dy = std::max(std::abs(y - size / 2) - (size / 2 - radius), 0.0);
    return radius - std::hypot(dx, dy);
}

/** A curved stroke whose half width goes from `from` to `to`. */
double InStroke(double x, double y, const std::array<Point, 3>& curve, double from, double to)
{
    double inside = -1000;
    constexpr int steps = 60;
    for (int i = 0; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        const double a = (1 - t) * (1 - t), b = 2 * t * (1 - t), c = t * t;
        const Point at = {a * curve[0].x + b * curve[1].x + c * curve[2].x,
                          a * curve[0].y + b * curve[1].y + c * curve[2].y};
        inside = std::max(inside, InDisc(x, y, at, from + (to - from) * t));
    }
    return inside;
}

/** A K whose arms are wings. */
Paint Logo(double x, double y)
{
    Paint paint =
        Lay(clear, Mix(Rgb(0xFFA62B), Rgb(0xD42E1E), (x + y) / 280), InRoundedBox(x, y, 140, 30));
    const Paint white = Rgb(0xFFFFFF);
    paint = Lay(paint, white, std::min(8 - std::abs(x - 42), 42 - std::abs(y - 70)));
    paint = Lay(paint, white, InStroke(x, y, {{{57, 82}, {94, 76}, {116, 27}}}, 7, 1.5));
    paint = Lay(paint, white, InStroke(x, y, {{{70, 77}, {90, 78}, {114, 50}}}, 5, 1.5));
    return Lay(paint, white, InStroke(x, y, {{{66, 78}, {84, 84}, {106, 108}}}, 4, 7));
}

/** Slanting stripes, which meet themselves at all edges. */
Paint Tile(double x, double y)
{
    const double wave = 0.5 + 0.5 * std::sin((x + y) * 2 * pi / 16);
    return Mix(Rgb(0x0C1830, 0.92), Rgb(0x16294A, 0.92), wave * wave);
}

/** A sun whose rays turn by one ray in all frames, behind a cloud. */
Paint Icon(double x, double y, int frame)
{
    const Point sun = {56, 36};
    const double dx = x - sun.x, dy = y - sun.y;
    const double distance = std::hypot(dx, dy);
    const double turn = std::atan2(dy, dx) + frame * 2 * pi / 8 / icon_frames;
    const double sector = std::remainder(turn, 2 * pi / 8);
    const double across = std::abs(std::sin(sector)) * distance;
    Paint paint =
        Lay(clear, Rgb(0xFFC93C), std::min(3.2 - across, 5.5 - std::abs(distance - 28.5)));
    paint = Lay(paint, Mix(Rgb(0xFFE27A), Rgb(0xFFB01F), (dy + 18) / 36), 18 - distance);
    const double puffs = std::max(
        {InDisc(x, y, {30, 64}, 15), InDisc(x, y, {50, 56}, 19), InDisc(x, y, {68, 66}, 13)});
    const double base = std::min({79 - y, y - 62, x - 28, 70 - x});
    return Lay(paint, Mix(Rgb(0xFFFFFF), Rgb(0xB9C7DA), (y - 44) / 38), std::max(puffs, base));
}

double Ridge(double x, double base, double height, double pitch, double phase)
{
    return base - height * (0.55 * std::sin(pitch * x + phase) +
                            0.3 * std::sin(2.3 * pitch * x + 1.9 * phase) +
                            0.1 * std::sin(7.1 * pitch * x + phase));
}

struct Scenery
{
    Paint zenith, horizon, far, near, trees;
    bool night;
};

/** Curtains of light that hang from a winding line. */
Paint Aurora(const Paint& sky, double x, double y)
{
    Paint lit = sky;
    for (int i = 0; i < 2; ++i) {
        const double foot = 0.36 - 0.10 * i + 0.07 * std::sin(4.5 * x + 1.3 + 2.1 * i) +
                            0.02 * std::sin(17 * x + i);
        const double above = foot - y;
        const double rays = 0.65 + 0.35 * std::sin(70 * x + 9 * std::sin(6 * x + i));
        const double glow = above < 0 ? std::exp(above * 60) : std::exp(-above * 7);
        const Paint colour = Mix(Rgb(0x58F0A0), Rgb(0x9A5CE0), above * 4);
        lit = Mix(lit, colour, 0.75 * glow * rays);
    }
    return lit;
}

Paint SkyAndHills(const Scenery& scenery, double x, double y, double width)
{
    Paint paint = Mix(scenery.zenith, scenery.horizon, y / 0.52);
    const Point light = {0.72 * width, 0.33};
    if (scenery.night)
        paint = Aurora(paint, x / width, y);
    else {
        const double distance = std::hypot(x - light.x, y - light.y);
        paint = Mix(Rgb(0xFFE9BE), paint, (distance - 0.035) / 0.35 * 0.5 + 0.5);
        paint = Lay(paint, Rgb(0xFFF6DC), (0.036 - distance) * 700);
    }
    const double sharp = 500;
    paint = Lay(paint, Mix(scenery.far, scenery.horizon, (y - 0.3) * 1.6),
                (y - Ridge(x, 0.42, 0.10, 4.1, 0.7)) * sharp);
    paint = Lay(paint, scenery.near, (y - Ridge(x, 0.50, 0.06, 6.3, 2.9)) * sharp);
    // Firs along the shore.
    const double tooth = std::abs(std::remainder(x, 0.021)) / 0.0105;
    const double tops = 0.535 - 0.035 * (1 + 0.6 * std::sin(23 * x) + 0.4 * std::sin(57 * x)) / 2;
    return Lay(paint, scenery.trees, (y - tops - 0.022 * tooth) * sharp);
}

/** Hills and their reflection in a lake; y runs from 0 to 1, x to the proportions. */
Paint Lake(const Scenery& scenery, double x, double y, double width)
{
    constexpr double shore = 0.56;
    if (y < shore)
        return SkyAndHills(scenery, x, y, width);
    const double depth = y - shore;
    const double ripple = 0.012 * (0.2 + depth * 3) *
                          (std::sin(depth * 260 / (0.3 + depth)) + std::sin(31 * x + depth * 90));
    const double mirrored = std::clamp(shore - depth * 1.05 + ripple, 0.0, shore);
    const Paint image = SkyAndHills(scenery, x + ripple, mirrored, width);
    return Mix(image, scenery.trees, 0.22 + 0.45 * depth);
}

const Scenery evening = {Rgb(0x2F5C94), Rgb(0xF7BE8C), Rgb(0x6A7AA6),
                         Rgb(0x31506A), Rgb(0x12232F), false};
const Scenery night = {Rgb(0x060B24), Rgb(0x1C3A5E), Rgb(0x22365C),
                       Rgb(0x14233E), Rgb(0x060C18), true};

ArgbImage Landscape(const Scenery& scenery, int width, int height)
{
    const double proportions = static_cast<double>(width) / height;
    return Draw(width, height, [&](double x, double y) {
        return Lake(scenery, x / height, y / height, proportions);
    });
}

/** White and two other colours, on the way from the tile's own. */
Paint Text(double x, double y)
{
    const Paint colours[] = {Rgb(0xFFFFFF), Rgb(0xA9C1E6), Rgb(0xFFB54A)};
    return Mix(Rgb(0x10203C), colours[static_cast<int>(y) / 8], x / 64);
}

void DrawAll(const std::string& directory, bool with_video)
{
    const auto write = [&](const std::string& name, const ArgbImage& image) {
        kestrin_tools::WritePng(directory + "/" + name + ".png", image);
    };
    write("logo", Draw(140, 140, Logo));
    write("tile", Draw(32, 32, Tile));
    write("text", Draw(64, 24, Text));
    for (int frame = 0; frame < icon_frames; ++frame) {
        const std::string number = std::to_string(frame);
        write((frame < 10 ? "icon-0" : "icon-") + number,
              Draw(96, 88, [=](double x, double y) { return Icon(x, y, frame); }));
    }
    write("photo", Landscape(night, 256, 144));
    if (with_video)
        write("video", Landscape(evening, 1280, 720));
}

} // namespace

int main(int argc, char** argv)
{
    const bool with_video = argc == 3 && std::string(argv[2]) == "video";
    if (argc != 2 && !with_video) {
        std::fprintf(stderr, "Usage: banner-pictures DIRECTORY [video]\n");
        return 2;
    }
    try {
        DrawAll(argv[1], with_video);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "banner-pictures: %s\n", error.what());
        return 1;
    }
}
