/**
 * The scenes of the frame benchmark and those who show them.
 *
 * A scene is a list of items in paint order over a plain background, and a circle of steps. Each
 * step changes one thing: the last item's place, the opacity of all items or the last item's text.
 * Everything that a painter can prepare (widgets, pictures, glyphs) is made before the clock runs;
 * a frame is the change and whatever brings it to the screen.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kestrin_bench {

/** Right and bottom exclusive. */
struct Rect
{
    int x, y, w, h;

    int Right() const { return x + w; }
    int Bottom() const { return y + h; }
    std::int64_t Area() const { return IsEmpty() ? 0 : std::int64_t{w} * h; }
    bool IsEmpty() const { return w <= 0 || h <= 0; }
};

Rect Intersection(const Rect& a, const Rect& b);
/** The same area as rectangles that do not overlap: bands from the top, left to right in each. */
std::vector<Rect> Union(const std::vector<Rect>& rects);

/** A picture of 32-bit words 0xAARRGGBB, straight colours, rows without gaps. */
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> words;
    bool opaque = true;
};

/** Rows of cells, a character in each; `size` is that of the font in pixels. */
struct TextGrid
{
    const char* font = nullptr; // file name
    int size = 0;
    int columns = 0;
    int rows = 0;
    int cell_width = 0;
    int line_height = 0;
};

enum class Kind
{
    Rectangle,
    Text,
    Picture
};

struct Item
{
    Kind kind = Kind::Rectangle;
    Rect box = {};
    std::uint32_t argb = 0; // of rectangles and characters
    std::uint8_t index = 0; // the same on a display of palette indices
    Picture picture = {};
    TextGrid text = {};
};

struct Step
{
    int x = 0; // of the last item
    int y = 0;
    std::uint8_t opacity = 255; // of everything
    std::u16string text;        // of the last item, row after row
    std::vector<Rect> changed;  // against the step before, not overlapping
};

struct Scene
{
    std::string name;
    int width = 0;
    int height = 0;
    bool palette = false; // 8 bits a pixel instead of 32
    bool blends = false;  // colours, also on a display of palette indices
    std::vector<Item> items;
    std::vector<Step> steps; // empty: nothing changes

    int PixelBytes() const { return palette ? 1 : 4; }
    /** Pixels that a step changes, on average. */
    double ChangedPixels() const;
};

/** A straight colour with its channels multiplied by its opacity. */
constexpr std::uint32_t Premultiplied(std::uint32_t argb)
{
    const std::uint32_t alpha = argb >> 24;
    return alpha << 24 | (argb >> 16 & 0xff) * alpha / 255 << 16 |
           (argb >> 8 & 0xff) * alpha / 255 << 8 | (argb & 0xff) * alpha / 255;
}

constexpr std::uint32_t kBackground = 0xff202020;
constexpr std::uint8_t kBackgroundIndex = 53;

/** All scenes at 1280 x 720 in 32 bits, or at 720 x 576 in palette indices. */
std::vector<Scene> MakeScenes(bool palette);

/** What frames did; below 0 what cannot be counted. */
struct Work
{
    std::int64_t pixels = -1; // written
    std::int64_t copies = -1; // to the display, each of them presented
};

class FramePainter
{
public:
    virtual ~FramePainter() = default;

    /** Makes what shows a scene, and shows its last step. */
    virtual void Prepare(const Scene& scene) = 0;
    /** Changes to a step, and brings it to the screen. */
    virtual void Show(const Step& step) = 0;
    /** Looks for changes where there are none; only painters that find them themselves do. */
    virtual void Idle() {}
    /** The words or indices on the screen. */
    virtual std::vector<std::uint32_t> Screen() const = 0;
    /** Counts what is done from now on. */
    virtual void StartCounting() {}
    /** Ends that. */
    virtual Work StopCounting() { return {}; }
};

/** Those that the build found have a definition. */
std::unique_ptr<FramePainter> MakeKestrinFrames(bool palette);
std::unique_ptr<FramePainter> MakeCairoFrames();
std::unique_ptr<FramePainter> MakePixmanFrames();
std::unique_ptr<FramePainter> MakeSdlFrames();
std::unique_ptr<FramePainter> MakeEflFrames();

} // namespace kestrin_bench
