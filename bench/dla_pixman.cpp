// pixman: rectangles, and what is made of triangles with a mask of one bit.
#include "dla_shapes.h"

#include <cmath>

#include <pixman.h>

namespace kestrin_bench {

namespace {

pixman_point_fixed_t Fixed(double x, double y)
{
    return {pixman_double_to_fixed(x), pixman_double_to_fixed(y)};
}

pixman_image_t* Solid(std::uint32_t argb)
{
    const auto channel = [&](int shift) {
        return static_cast<std::uint16_t>((argb >> shift & 0xff) * 0x101);
    };
    const pixman_color_t colour{channel(16), channel(8), channel(0), channel(24)};
    return pixman_image_create_solid_fill(&colour);
}

class PixmanPainter final : public Painter
{
public:
    PixmanPainter()
        : _image(pixman_image_create_bits(PIXMAN_x8r8g8b8, kBufferWidth, kBufferHeight, Buffer(),
                                          kBufferWidth * 4)),
          _fill(Solid(kFillColour)), _line(Solid(kLineColour))
    {
    }
    ~PixmanPainter() override
    {
        pixman_image_unref(_image);
        pixman_image_unref(_fill);
        pixman_image_unref(_line);
    }
    PixmanPainter(const PixmanPainter&) = delete;
    PixmanPainter& operator=(const PixmanPainter&) = delete;

    const char* Name() const override { return "pixman"; }

    std::function<void()> Prepare(const Shape& shape) override
    {
        switch (shape.kind) {
        case Kind::Rectangle:
            return [this, shape] {
                pixman_fill(Buffer(), kBufferWidth, 32, shape.x, shape.y, shape.w, shape.h,
                            kFillColour);
            };
        case Kind::Line:
            return Triangles(ThickLine(shape), _line);
        case Kind::Polygon:
            return Triangles(Fan(shape.corners), _fill);
        default:
            return {};
        }
    }

private:
    static std::vector<pixman_triangle_t> Fan(const std::vector<Corner>& corners)
    {
        std::vector<pixman_triangle_t> triangles;
        for (std::size_t i = 2; i < corners.size(); ++i) {
            triangles.push_back({Fixed(corners[0].x, corners[0].y),
                                 Fixed(corners[i - 1].x, corners[i - 1].y),
                                 Fixed(corners[i].x, corners[i].y)});
        }
        return triangles;
    }

    static std::vector<pixman_triangle_t> ThickLine(const Shape& shape)
    {
        const double scale = shape.width / 2.0 / std::hypot(shape.w, shape.h);
        const double dx = -shape.h * scale;
        const double dy = shape.w * scale;
        const double x1 = shape.x + 0.5;
        const double y1 = shape.y + 0.5;
        const double x2 = x1 + shape.w;
        const double y2 = y1 + shape.h;
        const pixman_point_fixed_t a = Fixed(x1 - dx, y1 - dy);
        const pixman_point_fixed_t b = Fixed(x1 + dx, y1 + dy);
        const pixman_point_fixed_t c = Fixed(x2 + dx, y2 + dy);
        const pixman_point_fixed_t d = Fixed(x2 - dx, y2 - dy);
        return {{a, b, c}, {a, c, d}};
    }

    std::function<void()> Triangles(const std::vector<pixman_triangle_t>& triangles,
                                    pixman_image_t* colour)
    {
        return [this, triangles, colour] {
            pixman_composite_triangles(PIXMAN_OP_OVER, colour, _image, PIXMAN_a1, 0, 0, 0, 0,
                                       static_cast<int>(triangles.size()), triangles.data());
        };
    }

    pixman_image_t* _image;
    pixman_image_t* _fill;
    pixman_image_t* _line;
};

} // namespace

std::unique_ptr<Painter> MakePixmanPainter()
{
    return std::make_unique<PixmanPainter>();
}

} // namespace kestrin_bench
