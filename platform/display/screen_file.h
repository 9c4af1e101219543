/**
 * The screen file: what stands in for a panel and its video memory.
 *
 * The display module draws into a file instead of a framebuffer device. Any process can look at the
 * picture at any time, also after the program that drew it has ended. The file is created under a
 * temporary name and renamed, so a reader never meets an unfinished one; a program started later
 * with the same name puts its own file in place, and the earlier program draws on unseen.
 *
 * Layout, all numbers in the byte order of the machine:
 *
 *     0                     ScreenHeader, written once
 *     4096                  LayerBlock of layer 0
 *     8192                  LayerBlock of layer 1, and so on
 *     memory_offset         video memory: page-aligned buffers with an unused page between them
 *
 * The video memory is a sparse area: only buffers that were used occupy the disk.
 *
 * A LayerBlock is guarded by a sequence lock. The writer makes `sequence` odd, changes the facts
 * and makes it even again. A reader takes the sequence, copies the facts and takes the sequence
 * again; the copy is good when both were the same even number. Pixels are not guarded: they are
 * what they are on a real panel, which shows half a drawing when it looks in the middle of one.
 */
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrin_display {

/** First eight bytes of every screen file. */
constexpr char screen_file_magic[8] = {'K', 'S', 'T', 'R', 'S', 'C', 'R', 'N'};

/** Changes whenever an older reader would misread the file. */
constexpr std::uint32_t screen_file_version = 1;

/** Layers the display module offers: ids 0 and 1. */
constexpr std::uint32_t screen_layer_count = 2;

/** Distance of the blocks at the start of the file, in bytes. */
constexpr std::uint32_t screen_block_size = 4096;

/** The widest and highest layer, in pixels. */
constexpr std::uint32_t screen_side_limit = 4096;

/** How the bytes of one pixel are to be read; multi-byte values are in the machine's byte order. */
enum class PixelFormat : std::uint32_t
{
    None = 0,     ///< the layer was never set up
    Lut8 = 1,     ///< 1 byte: index into the palette
    Argb = 2,     ///< 4 bytes: 0xAARRGGBB, straight alpha
    Rgb32 = 3,    ///< 4 bytes: 0x--RRGGBB, the top byte means nothing
    Rgb24 = 4,    ///< 3 bytes: blue, green, red
    Rgb16 = 5,    ///< 2 bytes: red 5 bits, green 6, blue 5
    Argb1555 = 6, ///< 2 bytes: alpha 1 bit, then 5 each
    Argb4444 = 7, ///< 2 bytes: 4 bits each
};

/** @return bytes of one pixel; 0 for None and for numbers that are no format */
constexpr std::uint32_t BytesPerPixel(PixelFormat format)
{
    switch (format) {
    case PixelFormat::Lut8:
        return 1;
    case PixelFormat::Rgb16:
    case PixelFormat::Argb1555:
    case PixelFormat::Argb4444:
        return 2;
    case PixelFormat::Rgb24:
        return 3;
    case PixelFormat::Argb:
    case PixelFormat::Rgb32:
        return 4;
    case PixelFormat::None:
        break;
    }
    return 0;
}

/** @return the format's usual name, "none" or "unknown"; never null */
const char* FormatName(PixelFormat format);

/** Start of the file; written before the file gets its name and not changed afterwards. */
struct ScreenHeader
{
    char magic[8];               ///< at 0: screen_file_magic
    std::uint32_t version;       ///< at 8: screen_file_version
    std::uint32_t layer_count;   ///< at 12
    std::uint32_t width;         ///< at 16: size of the screen in pixels
    std::uint32_t height;        ///< at 20
    std::uint32_t process;       ///< at 24: id of the process that made the file
    std::uint32_t reserved;      ///< at 28: 0
    std::uint64_t memory_offset; ///< at 32: where in the file the video memory begins
    std::uint64_t memory_size;   ///< at 40: in bytes
    std::uint64_t physical_base; ///< at 48: pretended physical address of the video memory
};

/** What a layer shows. */
struct LayerFacts
{
    std::uint32_t shown;   ///< 1 while the layer is on the screen; 0 keeps the last picture's facts
    std::uint32_t width;   ///< in pixels
    std::uint32_t height;  ///< in pixels
    std::uint32_t pitch;   ///< bytes from one row to the next, at least the bytes of a row
    PixelFormat format;    ///< None before the layer is set up for the first time
    std::uint32_t opacity; ///< of the whole layer, 0 (invisible) to 255
    std::uint64_t offset;  ///< of the front buffer's first pixel, from the start of the file
    std::uint64_t update_count; ///< how often a picture was reported finished, flips included
    std::uint64_t flip_count;   ///< how often the buffers were exchanged
    std::uint32_t palette[256]; ///< 0xAARRGGBB; used by Lut8 only
};

/** One layer's place in the file, at screen_block_size * (1 + layer id). */
struct LayerBlock
{
    std::atomic<std::uint32_t> sequence; ///< at 0: odd while the facts change
    std::uint32_t reserved;              ///< at 4: 0
    LayerFacts facts;                    ///< at 8
};

static_assert(sizeof(ScreenHeader) == 56 && offsetof(ScreenHeader, memory_offset) == 32);
static_assert(sizeof(LayerFacts) == 1072 && offsetof(LayerFacts, offset) == 24);
static_assert(sizeof(LayerBlock) == 1080 && offsetof(LayerBlock, facts) == 8);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

/** @return where the block of `layer` begins, in bytes from the start of the file */
constexpr std::uint64_t LayerBlockOffset(std::uint32_t layer)
{
    return std::uint64_t{screen_block_size} * (1 + layer);
}

/** Replaces a layer's facts so that readers see either the old ones or the new. One writer only. */
void PublishFacts(LayerBlock& block, const LayerFacts& facts);

/**
 * The screen file of programs that name none: `kestrin-screen` in $XDG_RUNTIME_DIR, and without
 * that variable `/tmp/kestrin-screen-<user id>`.
 */
std::string DefaultScreenFile();

} // namespace kestrin_display
