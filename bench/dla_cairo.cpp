// Cairo on an image surface, antialiasing off.
#include "dla_shapes.h"

#include <cmath>

#include <cairo.h>

namespace kestrin_bench {

namespace {

constexpr double kPi = 3.14159265358979323846;

class CairoPainter final : public Painter
{
public:
    CairoPainter()
        : _surface(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(Buffer()),
                                                       CAIRO_FORMAT_RGB24, kBufferWidth,
                                                       kBufferHeight, kBufferWidth * 4)),
          _cairo(cairo_create(_surface))
    {
        cairo_set_antialias(_cairo, CAIRO_ANTIALIAS_NONE);
        cairo_set_operator(_cairo, CAIRO_OPERATOR_SOURCE);
    }
    ~CairoPainter() override
    {
        cairo_destroy(_cairo);
        cairo_surface_destroy(_surface);
    }
    CairoPainter(const CairoPainter&) = delete;
    CairoPainter& operator=(const CairoPainter&) = delete;

    const char* Name() const override { return "cairo"; }

    std::function<void()> Prepare(const Shape& shape) override
    {
        switch (shape.kind) {
        case Kind::Line:
            return [this, shape] {
                cairo_move_to(_cairo, shape.x + 0.5, shape.y + 0.5);
                cairo_line_to(_cairo, shape.x + shape.w + 0.5, shape.y + shape.h + 0.5);
                Stroke(shape.width);
            };
        case Kind::Rectangle:
            return [this, shape] {
                cairo_rectangle(_cairo, shape.x, shape.y, shape.w, shape.h);
                Fill(0);
            };
        case Kind::Polygon:
            return [this, shape] {
                for (const Corner& corner : shape.corners)
                    cairo_line_to(_cairo, corner.x, corner.y);
                cairo_close_path(_cairo);
                Fill(shape.width);
            };
        case Kind::Ellipse:
            return [this, shape] {
                Curve(shape, 0, 360);
                cairo_close_path(_cairo);
                Fill(shape.width);
            };
        case Kind::Arc:
            return [this, shape] {
                Curve(shape, shape.start, shape.extent);
                Stroke(shape.width);
            };
        default:
            return [this, shape] {
                cairo_move_to(_cairo, shape.x + shape.w / 2.0, shape.y + shape.h / 2.0);
                Curve(shape, shape.start, shape.extent);
                cairo_close_path(_cairo);
                Fill(shape.width);
            };
        }
    }

private:
    void Curve(const Shape& shape, int start, int extent)
    {
        cairo_save(_cairo);
        cairo_translate(_cairo, shape.x + shape.w / 2.0, shape.y + shape.h / 2.0);
        cairo_scale(_cairo, shape.w / 2.0, shape.h / 2.0);
        cairo_arc_negative(_cairo, 0, 0, 1, -start * kPi / 180, -(start + extent) * kPi / 180);
        cairo_restore(_cairo);
    }

    void Colour(std::uint32_t colour)
    {
        cairo_set_source_rgb(_cairo, (colour >> 16 & 0xff) / 255.0, (colour >> 8 & 0xff) / 255.0,
                             (colour & 0xff) / 255.0);
    }

    void Stroke(int width)
    {
        Colour(kLineColour);
        cairo_set_line_width(_cairo, width);
        cairo_stroke(_cairo);
    }

    void Fill(int outline)
    {
        Colour(kFillColour);
        if (outline == 0) {
            cairo_fill(_cairo);
            return;
        }
        cairo_fill_preserve(_cairo);
        Stroke(outline);
    }

    cairo_surface_t* _surface;
    cairo_t* _cairo;
};

} // namespace

std::unique_ptr<Painter> MakeCairoPainter()
{
    return std::make_unique<CairoPainter>();
}

} // namespace kestrin_bench
