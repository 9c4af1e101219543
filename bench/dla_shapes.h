/**
 * The shapes of the drawing benchmark and those who draw them.
 *
 * A painter draws a shape into a buffer of its own, without antialiasing or blending. What has to
 * be set up once (surfaces, lists of points) is done by Prepare; what it returns is measured.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrin_bench {

constexpr int kBufferWidth = 720;
constexpr int kBufferHeight = 576;
constexpr std::uint32_t kFillColour = 0xff2040c0;
constexpr std::uint32_t kLineColour = 0xfff0e020;

struct Corner
{
    std::int16_t x, y;
};

enum class Kind
{
    Line,      // from (x, y) to (x + w, y + h)
    Rectangle, // filled
    Polygon,   // filled
    Ellipse,   // filled, with an outline if the width is not 0
    Arc,
    Sector // filled, with an outline if the width is not 0
};

struct Shape
{
    std::string name;
    Kind kind;
    int x, y, w, h; // of curves the box
    int width;      // of the line or outline
    int start = 0;  // degrees, counter-clockwise from three o'clock
    int extent = 0; // degrees
    std::vector<Corner> corners;
};

class Painter
{
public:
    virtual ~Painter() = default;

    virtual const char* Name() const = 0;

    /** Draws the shape once; empty for a shape that this painter has no means for. */
    virtual std::function<void()> Prepare(const Shape& shape) = 0;

    /** kBufferWidth x kBufferHeight words without gaps. */
    std::uint32_t* Buffer() { return _buffer.data(); }

private:
    std::vector<std::uint32_t> _buffer =
        std::vector<std::uint32_t>(static_cast<std::size_t>(kBufferWidth) * kBufferHeight);
};

/** Those that the build found; null otherwise. */
std::unique_ptr<Painter> MakeCairoPainter();
std::unique_ptr<Painter> MakeSdlPainter();
std::unique_ptr<Painter> MakePixmanPainter();

} // namespace kestrin_bench
