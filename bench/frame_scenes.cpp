#include "frame_scenes.h"

#include <algorithm>
#include <cmath>

namespace kestrin_bench {

namespace {

constexpr int kSteps = 32; // there and back again, so that the circle closes
constexpr char kSans[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr char kMono[] = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";
// Palette indices of the engine's fixed palette: opaque ones and ones that let 30 % through.
constexpr int kFirstOpaque = 54;
constexpr int kOpaqueCount = 130;
constexpr int kFirstSemi = 1;
constexpr int kSemiCount = 48;
constexpr std::uint8_t kWhiteIndex = 187;

std::uint32_t Colour(int number, std::uint32_t alpha)
{
    const auto n = static_cast<std::uint32_t>(number);
    return alpha << 24 | (n * 37 % 200 + 40) << 16 | (n * 91 % 200 + 40) << 8 | (n * 53 % 200 + 40);
}

Item Filled(int number, const Rect& box, std::uint32_t alpha)
{
    Item item;
    item.box = box;
    item.argb = Colour(number, alpha);
    item.index = static_cast<std::uint8_t>(alpha == 255 ? kFirstOpaque + number % kOpaqueCount
                                                        : kFirstSemi + number % kSemiCount);
    return item;
}

/** A grid of rectangles that leave a gap between them, over the whole screen. */
void AddGrid(Scene& scene, int columns, int rows)
{
    for (int i = 0; i < columns * rows; ++i) {
        const int column = i % columns;
        const int row = i / columns;
        const int x = column * scene.width / columns;
        const int y = row * scene.height / rows;
        const int right = (column + 1) * scene.width / columns;
        const int bottom = (row + 1) * scene.height / rows;
        scene.items.push_back(Filled(i, {x, y, right - x - 2, bottom - y - 2}, 255));
    }
}

/** Moves the last item 4 pixels to the right and 3 down a step, and back. */
void AddPath(Scene& scene)
{
    const Rect start = scene.items.back().box;
    Rect before = {start.x + 4, start.y + 3, start.w, start.h}; // the last step
    for (int i = 0; i < kSteps; ++i) {
        const int way = i <= kSteps / 2 ? i : kSteps - i;
        Step step;
        step.x = start.x + 4 * way;
        step.y = start.y + 3 * way;
        const Rect now = {step.x, step.y, start.w, start.h};
        step.changed = Union({before, now});
        before = now;
        scene.steps.push_back(step);
    }
}

void AddTexts(Scene& scene)
{
    const Item& item = scene.items.back();
    static const std::u16string letters =
        u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    for (int i = 0; i < kSteps; ++i) {
        Step step;
        step.x = item.box.x;
        step.y = item.box.y;
        for (int cell = 0; cell < item.text.columns * item.text.rows; ++cell)
            step.text += letters[static_cast<std::size_t>(cell * 7 + i * 13) % letters.size()];
        step.changed = {item.box};
        scene.steps.push_back(step);
    }
}

/** Room on the right and below for what of a glyph passes its cell. */
Item Grid(const TextGrid& text, int x, int y)
{
    Item item;
    item.kind = Kind::Text;
    item.box = {x, y, text.columns * text.cell_width + 8,
                text.rows * text.line_height + text.size * 6 / 10};
    item.argb = 0xffffffff;
    item.index = kWhiteIndex;
    item.text = text;
    return item;
}

/** A landscape of gradients. */
Picture MakeLandscape(int width, int height)
{
    Picture picture = {width, height, {}, true};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.words.push_back(0xff000000U |
                                    static_cast<std::uint32_t>(x * 255 / width) << 16 |
                                    static_cast<std::uint32_t>(y * 255 / height) << 8 |
                                    static_cast<std::uint32_t>((x ^ y) & 0x7f));
    }
    return picture;
}

/** A disc, opaque in the middle and transparent at the edge. */
Picture MakeDisc(int side)
{
    Picture picture = {side, side, {}, false};
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double distance = std::hypot(x - side / 2.0 + 0.5, y - side / 2.0 + 0.5);
            const double alpha = std::clamp(1.5 - 2.5 * distance / side, 0.0, 1.0);
            picture.words.push_back(static_cast<std::uint32_t>(alpha * 255) << 24 | 0xf0c020);
        }
    }
    return picture;
}

Scene Mover(Scene scene, int columns, int rows)
{
    AddGrid(scene, columns, rows);
    scene.name = "mover_" + std::to_string(columns * rows);
    scene.items.push_back(Filled(7, {scene.width / 3, scene.height / 3, 100, 100}, 255));
    AddPath(scene);
    return scene;
}

Scene Idle(Scene scene)
{
    AddGrid(scene, 40, 25);
    scene.name = "idle_1000";
    return scene;
}

/** Ten columns over the width and five rows that overlap. */
Scene Fade(Scene scene)
{
    scene.name = "fade";
    scene.blends = true; // indices are not faded
    std::vector<Rect> boxes;
    for (int i = 0; i < 50; ++i) {
        boxes.push_back({i % 10 * (scene.width - 200) / 9, 60 + i / 10 * 80, 200, 100});
        scene.items.push_back(Filled(i, boxes.back(), 128));
    }
    for (int i = 0; i < kSteps; ++i) {
        Step step;
        step.x = boxes.back().x;
        step.y = boxes.back().y;
        const int way = i <= kSteps / 2 ? i : kSteps - i;
        step.opacity = static_cast<std::uint8_t>(127 + 8 * way);
        step.changed = Union(boxes);
        scene.steps.push_back(step);
    }
    return scene;
}

Scene Subtitle(Scene scene)
{
    scene.name = "subtitle";
    const TextGrid text = {kSans, 36, 40, 2, scene.width > 1000 ? 22 : 17, 44};
    scene.items.push_back(Grid(text, 10, scene.height - 150));
    AddTexts(scene);
    return scene;
}

Scene Page(Scene scene)
{
    scene.name = "page";
    scene.items.push_back(Grid({kMono, 20, 40, 25, 12, 22}, 100, 6));
    AddTexts(scene);
    return scene;
}

Scene Sprite(Scene scene)
{
    scene.name = "sprite";
    for (const bool disc : {false, true}) {
        Item item;
        item.kind = Kind::Picture;
        item.picture = disc ? MakeDisc(64) : MakeLandscape(scene.width, scene.height);
        item.box = {disc ? 300 : 0, disc ? 200 : 0, item.picture.width, item.picture.height};
        scene.items.push_back(item);
    }
    AddPath(scene);
    return scene;
}

} // namespace

Rect Intersection(const Rect& a, const Rect& b)
{
    const int x = std::max(a.x, b.x);
    const int y = std::max(a.y, b.y);
    return {x, y, std::min(a.Right(), b.Right()) - x, std::min(a.Bottom(), b.Bottom()) - y};
}

std::vector<Rect> Union(const std::vector<Rect>& rects)
{
    std::vector<int> edges;
    for (const Rect& rect : rects) {
        edges.push_back(rect.y);
        edges.push_back(rect.Bottom());
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

    std::vector<Rect> bands;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        std::vector<Rect> band;
        for (const Rect& rect : rects) {
            if (rect.y <= edges[i] && rect.Bottom() > edges[i])
                band.push_back({rect.x, edges[i], rect.w, edges[i + 1] - edges[i]});
        }
        std::sort(band.begin(), band.end(), [](const Rect& a, const Rect& b) { return a.x < b.x; });
        std::size_t first = bands.size();
        for (const Rect& part : band) {
            if (bands.size() > first && part.x <= bands.back().Right())
                bands.back().w = std::max(bands.back().w, part.Right() - bands.back().x);
            else
                bands.push_back(part);
        }
    }
    return bands;
}

double Scene::ChangedPixels() const
{
    double pixels = 0;
    for (const Step& step : steps) {
        for (const Rect& rect : step.changed)
            pixels += static_cast<double>(rect.Area());
    }
    return steps.empty() ? 0 : pixels / static_cast<double>(steps.size());
}

std::vector<Scene> MakeScenes(bool palette)
{
    Scene empty;
    empty.width = palette ? 720 : 1280;
    empty.height = palette ? 576 : 720;
    empty.palette = palette;
    return {Idle(empty), Mover(empty, 10, 10), Mover(empty, 40, 25), Mover(empty, 125, 80),
            Fade(empty), Subtitle(empty),      Page(empty),          Sprite(empty)};
}

} // namespace kestrin_bench
