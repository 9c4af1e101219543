// SDL2_gfx on SDL's software renderer. SDL collects commands, so each drawing ends with a flush.
#include "dla_shapes.h"

#include <SDL.h>
#include <SDL2_gfxPrimitives.h>

namespace kestrin_bench {

namespace {

/** SDL2_gfx takes a colour's bytes as 0xAABBGGRR. */
constexpr std::uint32_t GfxColour(std::uint32_t argb)
{
    return (argb & 0xff00ff00U) | (argb >> 16 & 0xffU) | (argb & 0xffU) << 16;
}

constexpr std::uint32_t kFill = GfxColour(kFillColour);
constexpr std::uint32_t kLine = GfxColour(kLineColour);

class SdlPainter final : public Painter
{
public:
    SdlPainter()
        : _surface(SDL_CreateRGBSurfaceWithFormatFrom(Buffer(), kBufferWidth, kBufferHeight, 32,
                                                      kBufferWidth * 4, SDL_PIXELFORMAT_RGB888)),
          _renderer(SDL_CreateSoftwareRenderer(_surface))
    {
    }
    ~SdlPainter() override
    {
        SDL_DestroyRenderer(_renderer);
        SDL_FreeSurface(_surface);
    }
    SdlPainter(const SdlPainter&) = delete;
    SdlPainter& operator=(const SdlPainter&) = delete;

    const char* Name() const override { return "SDL2_gfx"; }

    std::function<void()> Prepare(const Shape& shape) override
    {
        const auto s16 = [](int value) { return static_cast<Sint16>(value); };
        const Sint16 left = s16(shape.x);
        const Sint16 top = s16(shape.y);
        const Sint16 right = s16(shape.x + shape.w);
        const Sint16 bottom = s16(shape.y + shape.h);
        const Sint16 rx = s16(shape.w / 2);
        const Sint16 ry = s16(shape.h / 2);
        const Sint16 cx = s16(shape.x + rx);
        const Sint16 cy = s16(shape.y + ry);
        switch (shape.kind) {
        case Kind::Line:
            if (shape.width == 1)
                return Flushed([=] { lineColor(_renderer, left, top, right, bottom, kLine); });
            return Flushed([=, width = static_cast<Uint8>(shape.width)] {
                thickLineColor(_renderer, left, top, right, bottom, width, kLine);
            });
        case Kind::Rectangle:
            return Flushed([=] { boxColor(_renderer, left, top, right - 1, bottom - 1, kFill); });
        case Kind::Polygon:
            return Polygon(shape.corners);
        case Kind::Ellipse:
            return Flushed([=, outline = shape.width != 0] {
                filledEllipseColor(_renderer, cx, cy, rx, ry, kFill);
                if (outline)
                    ellipseColor(_renderer, cx, cy, rx, ry, kLine);
            });
        // Arcs and pies of circles only, and arcs of one pixel only.
        case Kind::Sector:
            if (shape.w != shape.h)
                return {};
            return Flushed([=, start = s16(360 - shape.start - shape.extent),
                            end = s16(360 - shape.start), outline = shape.width != 0] {
                filledPieColor(_renderer, cx, cy, rx, start, end, kFill);
                if (outline)
                    pieColor(_renderer, cx, cy, rx, start, end, kLine);
            });
        default:
            return {};
        }
    }

private:
    std::function<void()> Polygon(const std::vector<Corner>& corners)
    {
        std::vector<Sint16> columns;
        std::vector<Sint16> rows;
        for (const Corner& corner : corners) {
            columns.push_back(corner.x);
            rows.push_back(corner.y);
        }
        return Flushed([this, columns, rows] {
            filledPolygonColor(_renderer, columns.data(), rows.data(),
                               static_cast<int>(columns.size()), kFill);
        });
    }

    template <typename Draw>
    std::function<void()> Flushed(Draw draw)
    {
        return [this, draw] {
            draw();
            SDL_RenderFlush(_renderer);
        };
    }

    SDL_Surface* _surface;
    SDL_Renderer* _renderer;
};

} // namespace

std::unique_ptr<Painter> MakeSdlPainter()
{
    return std::make_unique<SdlPainter>();
}

} // namespace kestrin_bench
