#include "painter_peer.h"

#ifdef KESTRIN_BENCH_PIXMAN

#include <cstdint>
#include <vector>

#include <pixman.h>

namespace kestrin_bench {

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr int kTile = 16;

std::vector<std::uint32_t>& Noise()
{
    static std::vector<std::uint32_t> pixels = [] {
        std::vector<std::uint32_t> noise(std::size_t{kWidth} * kHeight);
        std::uint32_t value = 1;
        for (std::uint32_t& pixel : noise)
            pixel = value = value * 1664525 + 1013904223;
        return noise;
    }();
    return pixels;
}

std::vector<std::uint32_t>& Pixels()
{
    static std::vector<std::uint32_t> pixels = Noise();
    return pixels;
}

/** Lives as long as the program. */
struct Images
{
    Images()
        : target(Make(PIXMAN_a8r8g8b8, kWidth, kHeight, Pixels().data(), kWidth * 4)),
          source(Make(PIXMAN_a8r8g8b8, kWidth, kHeight, Noise().data(), kWidth * 4)),
          tile(Make(PIXMAN_a8r8g8b8, kTile, kTile, Noise().data(), kTile * 4)),
          coverage(Make(PIXMAN_a8, kWidth, kHeight, Noise().data(), kWidth)),
          bytes(Make(PIXMAN_a8, kWidth, kHeight, Pixels().data(), kWidth))
    {
        const pixman_color_t half = {0, 0, 0, 0x8080};
        const pixman_color_t color = {0x1111, 0x2222, 0x3333, 0xffff};
        opacity = pixman_image_create_solid_fill(&half);
        solid = pixman_image_create_solid_fill(&color);
        pixman_image_set_repeat(tile, PIXMAN_REPEAT_NORMAL);
    }
    static pixman_image_t* Make(pixman_format_code_t format, int width, int height,
                                std::uint32_t* pixels, int pitch)
    {
        return pixman_image_create_bits(format, width, height, pixels, pitch);
    }

    pixman_image_t* target;
    pixman_image_t* source;
    pixman_image_t* tile;
    pixman_image_t* coverage;
    pixman_image_t* bytes;
    pixman_image_t* opacity;
    pixman_image_t* solid;
};

const Images& TheImages()
{
    static const Images images;
    return images;
}

Turns::Work Composite(pixman_op_t operation, pixman_image_t* source, pixman_image_t* mask,
                      int width, int height)
{
    pixman_image_t* target = TheImages().target;
    return [=] {
        pixman_image_composite32(operation, source, mask, target, 0, 0, 0, 0, 0, 0, width, height);
    };
}

} // namespace

Turns::Work PixmanWork(PeerJob job, int width, int height)
{
    const Images& images = TheImages();
    switch (job) {
    case PeerJob::Fill:
        return [=] { pixman_fill(Pixels().data(), kWidth, 32, 0, 0, width, height, 0xff112233); };
    case PeerJob::FillOver:
        return [=] {
            const pixman_color_t color = {0x0808, 0x1111, 0x1919, 0x8080};
            const pixman_box32_t box = {0, 0, width, height};
            pixman_image_fill_boxes(PIXMAN_OP_OVER, TheImages().target, &color, 1, &box);
        };
    case PeerJob::Copy:
        return [=] {
            pixman_blt(Noise().data(), Pixels().data(), kWidth, kWidth, 32, 32, 0, 0, 0, 0, width,
                       height);
        };
    case PeerJob::Over:
        return Composite(PIXMAN_OP_OVER, images.source, images.opacity, width, height);
    case PeerJob::Tile:
        return Composite(PIXMAN_OP_SRC, images.tile, nullptr, width, height);
    case PeerJob::TileOver:
        return Composite(PIXMAN_OP_OVER, images.tile, images.opacity, width, height);
    case PeerJob::Glyph:
        return Composite(PIXMAN_OP_OVER, images.solid, images.coverage, width, height);
    case PeerJob::FillBytes:
        return [=] { pixman_fill(Pixels().data(), kWidth / 4, 8, 0, 0, width, height, 60); };
    case PeerJob::CopyBytes:
        return [=] {
            pixman_image_composite32(PIXMAN_OP_SRC, TheImages().coverage, nullptr,
                                     TheImages().bytes, 0, 0, 0, 0, 0, 0, width, height);
        };
    }
    return {};
}

} // namespace kestrin_bench

#else

namespace kestrin_bench {

Turns::Work PixmanWork(PeerJob, int, int)
{
    return {};
}

} // namespace kestrin_bench

#endif
