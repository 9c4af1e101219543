// Cairo: rectangles aligned to pixels, pictures as patterns, glyphs of a FreeType face.
#include "frame_immediate.h"

#include <stdexcept>

#include <cairo-ft.h>
#include <cairo.h>

namespace kestrin_bench {

namespace {

class CairoFrames final : public ImmediateFrames
{
public:
    CairoFrames() { FT_Init_FreeType(&_library); }
    ~CairoFrames() override
    {
        Free();
        FT_Done_FreeType(_library);
    }
    CairoFrames(const CairoFrames&) = delete;
    CairoFrames& operator=(const CairoFrames&) = delete;

protected:
    void Load(const Scene& scene) override
    {
        Free();
        _surface = cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(Words()),
                                                       CAIRO_FORMAT_ARGB32, scene.width,
                                                       scene.height, scene.width * 4);
        _cairo = cairo_create(_surface);
        cairo_set_antialias(_cairo, CAIRO_ANTIALIAS_NONE);
        for (const Item& item : scene.items) {
            _pictures.push_back(item.kind == Kind::Picture ? MakePicture(item.picture) : nullptr);
            if (item.kind == Kind::Text)
                LoadFont(item.text);
        }
    }

    void Begin(const Rect& clip) override
    {
        cairo_reset_clip(_cairo);
        cairo_rectangle(_cairo, clip.x, clip.y, clip.w, clip.h);
        cairo_clip(_cairo);
        cairo_set_operator(_cairo, CAIRO_OPERATOR_SOURCE);
        Fill(clip, kBackground);
        cairo_set_operator(_cairo, CAIRO_OPERATOR_OVER);
    }

    void Fill(const Rect& box, std::uint32_t argb) override
    {
        cairo_set_source_rgba(_cairo, (argb >> 16 & 0xff) / 255.0, (argb >> 8 & 0xff) / 255.0,
                              (argb & 0xff) / 255.0, (argb >> 24) / 255.0);
        cairo_rectangle(_cairo, box.x, box.y, box.w, box.h);
        cairo_fill(_cairo);
    }

    void Draw(std::size_t item, int x, int y) override
    {
        cairo_set_source_surface(_cairo, _pictures[item], x, y);
        cairo_paint(_cairo);
    }

    void Write(const TextGrid& grid, const std::u16string& text, int x, int y) override
    {
        _glyphs.clear();
        for (std::size_t i = 0; i < text.size(); ++i) {
            const int column = static_cast<int>(i) % grid.columns;
            const int row = static_cast<int>(i) / grid.columns;
            _glyphs.push_back({_indices[text[i]], 1.0 * x + column * grid.cell_width,
                               1.0 * y + row * grid.line_height + _ascent});
        }
        cairo_set_source_rgb(_cairo, 1, 1, 1);
        cairo_show_glyphs(_cairo, _glyphs.data(), static_cast<int>(_glyphs.size()));
    }

    void End() override { cairo_surface_flush(_surface); }

private:
    /** Cairo takes colours multiplied by their opacity. */
    static cairo_surface_t* MakePicture(const Picture& picture)
    {
        cairo_surface_t* surface =
            cairo_image_surface_create(picture.opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32,
                                       picture.width, picture.height);
        auto* words = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface));
        for (std::size_t i = 0; i < picture.words.size(); ++i)
            words[i] = Premultiplied(picture.words[i]);
        cairo_surface_mark_dirty(surface);
        return surface;
    }

    void LoadFont(const TextGrid& grid)
    {
        if (FT_New_Face(_library, grid.font, 0, &_face))
            throw std::runtime_error(std::string("cannot use ") + grid.font);
        cairo_font_face_t* face = cairo_ft_font_face_create_for_ft_face(_face, 0);
        cairo_set_font_face(_cairo, face);
        cairo_set_font_size(_cairo, grid.size);
        cairo_font_face_destroy(face);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_set_font_options(_cairo, options);
        cairo_font_options_destroy(options);
        for (FT_ULong character = '0'; character <= 'z'; ++character)
            _indices[character] = FT_Get_Char_Index(_face, character);
        _ascent = Ascent(grid);
    }

    void Free()
    {
        for (cairo_surface_t* picture : _pictures)
            cairo_surface_destroy(picture);
        _pictures.clear();
        cairo_destroy(_cairo);
        cairo_surface_destroy(_surface);
    }

    FT_Library _library = nullptr;
    FT_Face _face = nullptr; // Cairo uses it for as long as it likes; freed with the library
    int _ascent = 0;
    unsigned long _indices[128] = {};
    std::vector<cairo_glyph_t> _glyphs;
    std::vector<cairo_surface_t*> _pictures;
    cairo_surface_t* _surface = nullptr;
    cairo_t* _cairo = nullptr;
};

} // namespace

std::unique_ptr<FramePainter> MakeCairoFrames()
{
    return std::make_unique<CairoFrames>();
}

} // namespace kestrin_bench
