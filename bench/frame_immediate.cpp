#include "frame_immediate.h"

namespace kestrin_bench {

void ImmediateFrames::Prepare(const Scene& scene)
{
    _scene = &scene;
    _words.assign(static_cast<std::size_t>(scene.width * scene.height), 0);
    Load(scene);
    Paint({0, 0, scene.width, scene.height}, scene.steps.back());
    End();
}

void ImmediateFrames::Show(const Step& step)
{
    for (const Rect& rect : step.changed)
        Paint(rect, step);
    End();
}

void ImmediateFrames::Paint(const Rect& clip, const Step& step)
{
    Begin(clip);
    if (_counting)
        _counted += clip.Area();
    const std::size_t count = _scene->items.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Item& item = _scene->items[i];
        Rect box = item.box;
        if (i + 1 == count) {
            box.x = step.x;
            box.y = step.y;
        }
        if (Intersection(box, clip).IsEmpty())
            continue;
        if (_counting)
            _counted += InkWithin(clip, item, box, step);
        switch (item.kind) {
        case Kind::Rectangle:
            Fill(box, (item.argb >> 24) * step.opacity / 255 << 24 | (item.argb & 0xffffff));
            break;
        case Kind::Picture:
            Draw(i, box.x, box.y);
            break;
        case Kind::Text:
            Write(item.text, step.text, box.x, box.y);
            break;
        }
    }
}

/** How many pixels an item writes inside a rectangle. */
std::int64_t ImmediateFrames::InkWithin(const Rect& clip, const Item& item, const Rect& box,
                                        const Step& step)
{
    if (item.kind != Kind::Text)
        return Intersection(box, clip).Area();
    std::int64_t pixels = 0;
    ForEachGlyph(item.text, step.text, box.x, box.y, [&](const Glyph& glyph, int x, int y) {
        pixels += Intersection({x, y, glyph.width, glyph.height}, clip).Area();
    });
    return pixels;
}

} // namespace kestrin_bench
