// pixman: fills, composites, and its glyph cache.
#include "frame_immediate.h"

#include <algorithm>

#include <pixman.h>

namespace kestrin_bench {

namespace {

pixman_color_t ColourOf(std::uint32_t argb)
{
    const std::uint32_t word = Premultiplied(argb);
    const auto channel = [&](int shift) {
        return static_cast<std::uint16_t>((word >> shift & 0xff) * 0x101);
    };
    return {channel(16), channel(8), channel(0), channel(24)};
}

class PixmanFrames final : public ImmediateFrames
{
public:
    PixmanFrames() : _cache(pixman_glyph_cache_create())
    {
        const pixman_color_t white = ColourOf(0xffffffff);
        _white = pixman_image_create_solid_fill(&white);
    }
    ~PixmanFrames() override
    {
        Free();
        pixman_image_unref(_white);
        pixman_glyph_cache_destroy(_cache);
    }
    PixmanFrames(const PixmanFrames&) = delete;
    PixmanFrames& operator=(const PixmanFrames&) = delete;

protected:
    void Load(const Scene& scene) override
    {
        Free();
        _image = pixman_image_create_bits(PIXMAN_a8r8g8b8, scene.width, scene.height, Words(),
                                          scene.width * 4);
        for (const Item& item : scene.items)
            _pictures.push_back(item.kind == Kind::Picture ? MakePicture(item.picture) : nullptr);
    }

    void Begin(const Rect& clip) override
    {
        pixman_region32_t region;
        pixman_region32_init_rect(&region, clip.x, clip.y, static_cast<unsigned>(clip.w),
                                  static_cast<unsigned>(clip.h));
        pixman_image_set_clip_region32(_image, &region);
        pixman_region32_fini(&region);
        Fill(clip, kBackground);
    }

    void Fill(const Rect& box, std::uint32_t argb) override
    {
        const pixman_color_t colour = ColourOf(argb);
        const pixman_box32_t area = {box.x, box.y, box.Right(), box.Bottom()};
        pixman_image_fill_boxes(PIXMAN_OP_OVER, _image, &colour, 1, &area);
    }

    void Draw(std::size_t item, int x, int y) override
    {
        pixman_image_t* picture = _pictures[item];
        pixman_image_composite32(PIXMAN_OP_OVER, picture, nullptr, _image, 0, 0, 0, 0, x, y,
                                 pixman_image_get_width(picture), pixman_image_get_height(picture));
    }

    void Write(const TextGrid& grid, const std::u16string& text, int x, int y) override
    {
        _run.clear();
        pixman_glyph_cache_freeze(_cache);
        ForEachGlyph(grid, text, x, y, [&](const Glyph& glyph, int left, int top) {
            _run.push_back({left, top, Cached(glyph)});
        });
        pixman_composite_glyphs_no_mask(PIXMAN_OP_OVER, _white, _image, 0, 0, 0, 0, _cache,
                                        static_cast<int>(_run.size()), _run.data());
        pixman_glyph_cache_thaw(_cache);
    }

private:
    static pixman_image_t* MakePicture(const Picture& picture)
    {
        pixman_image_t* image =
            pixman_image_create_bits(picture.opaque ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8,
                                     picture.width, picture.height, nullptr, 0);
        std::uint32_t* words = pixman_image_get_data(image);
        for (std::size_t i = 0; i < picture.words.size(); ++i)
            words[i] = Premultiplied(picture.words[i]);
        return image;
    }

    const void* Cached(const Glyph& glyph)
    {
        auto* key = const_cast<Glyph*>(&glyph);
        if (const void* cached = pixman_glyph_cache_lookup(_cache, this, key))
            return cached;
        pixman_image_t* mask =
            pixman_image_create_bits(PIXMAN_a8, glyph.width, glyph.height, nullptr, 0);
        auto* row = reinterpret_cast<std::uint8_t*>(pixman_image_get_data(mask));
        for (int y = 0; y < glyph.height; ++y, row += pixman_image_get_stride(mask))
            std::copy_n(glyph.coverage.begin() + y * glyph.width, glyph.width, row);
        const void* cached = pixman_glyph_cache_insert(_cache, this, key, 0, 0, mask);
        pixman_image_unref(mask);
        return cached;
    }

    void Free()
    {
        for (pixman_image_t* picture : _pictures) {
            if (picture)
                pixman_image_unref(picture);
        }
        _pictures.clear();
        if (_image)
            pixman_image_unref(_image);
        _image = nullptr;
    }

    pixman_glyph_cache_t* _cache;
    pixman_image_t* _white = nullptr;
    pixman_image_t* _image = nullptr;
    std::vector<pixman_image_t*> _pictures;
    std::vector<pixman_glyph_t> _run;
};

} // namespace

std::unique_ptr<FramePainter> MakePixmanFrames()
{
    return std::make_unique<PixmanFrames>();
}

} // namespace kestrin_bench
