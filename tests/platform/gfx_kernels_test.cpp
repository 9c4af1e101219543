/**
 * The driver's loops alone: each set against plain arithmetic, between pages that cannot be
 * touched.
 */
#include "guarded_buffer.h"
#include "kernels.h"
#include "pixel_bytes.h"
#include "seeded_random.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

using kestrin_display::LoadPixel;
using kestrin_display::StorePixel;
using kestrin_gfx::Kernels;
using kestrin_test::GuardedBuffer;
using kestrin_test::SeededRandom;

namespace {

struct KernelSet
{
    const char* name;
    const Kernels* kernels;
};

void PrintTo(const KernelSet& set, std::ostream* out)
{
    *out << set.name;
}

std::vector<KernelSet> KernelSets()
{
    std::vector<KernelSet> sets = {{"Base", &kestrin_gfx::base_kernels}};
#ifdef KESTRIN_GFX_AVX2
    if (__builtin_cpu_supports("avx2"))
        sets.push_back({"Avx2", &kestrin_gfx::avx2_kernels});
#endif
    return sets;
}

unsigned Channel(std::uint32_t pixel, int index)
{
    return pixel >> (8 * index) & 0xff;
}

unsigned Alpha(std::uint32_t pixel)
{
    return pixel >> 24;
}

/** Puts a pixel together from what a function of the channel's number gives. */
std::uint32_t EachChannel(const std::function<unsigned(int index)>& channel)
{
    std::uint32_t pixel = 0;
    for (int i = 0; i < 4; ++i)
        pixel |= channel(i) << (8 * i);
    return pixel;
}

using Drawing = std::function<void(kestrin_gfx::Target, kestrin_gfx::Source, kestrin_gfx::Size)>;
using Arithmetic = std::function<std::uint32_t(std::uint32_t to, std::uint32_t from)>;

/**
 * A rectangle between forbidden pages, with `gap` pixels from one row to the next. Every second row
 * of larger pixels than bytes is opaque, as most pictures are.
 */
class Rows
{
public:
    Rows(int width, int height, int gap, std::size_t pixel_bytes, GuardedBuffer::Side tight,
         SeededRandom& random)
        : _row(static_cast<std::size_t>(width) * pixel_bytes),
          _pitch(_row + static_cast<std::size_t>(gap) * pixel_bytes),
          _buffer(height == 0 ? 0 : _pitch * static_cast<std::size_t>(height - 1) + _row, tight)
    {
        std::generate_n(_buffer.Data(), _buffer.Size(),
                        [&] { return static_cast<std::uint8_t>(random.Between(0, 255)); });
        for (std::size_t y = 0; pixel_bytes == 4 && y < _buffer.Size(); y += 2 * _pitch) {
            for (std::size_t x = 0; x < _row; x += pixel_bytes) {
                std::uint8_t* pixel = _buffer.Data() + y + x;
                StorePixel(pixel, LoadPixel(pixel, pixel_bytes) | 0xff000000U, pixel_bytes);
            }
        }
    }

    std::uint8_t* Data() const { return _buffer.Data(); }
    std::ptrdiff_t Pitch() const { return static_cast<std::ptrdiff_t>(_pitch); }
    std::vector<std::uint8_t> Bytes() const { return {Data(), Data() + _buffer.Size()}; }

private:
    std::size_t _row;
    std::size_t _pitch;
    GuardedBuffer _buffer;
};

/** Draws between guards and says what should be there by arithmetic; gaps must stay. */
void ExpectDrawn(const Drawing& draw, const Arithmetic& arithmetic, std::size_t pixel_bytes)
{
    SeededRandom random;
    for (int width = 0; width <= 70; ++width) {
        const auto tight = width % 2 == 0 ? GuardedBuffer::AtEnd : GuardedBuffer::AtBegin;
        const int height = static_cast<int>(random.Between(0, 5));
        const Rows to(width, height, static_cast<int>(random.Between(0, 9)), pixel_bytes, tight,
                      random);
        const Rows from(width, height, static_cast<int>(random.Between(0, 9)), pixel_bytes, tight,
                        random);
        std::vector<std::uint8_t> expected = to.Bytes();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::ptrdiff_t column = x * static_cast<std::ptrdiff_t>(pixel_bytes);
                const std::uint32_t old =
                    LoadPixel(to.Data() + y * to.Pitch() + column, pixel_bytes);
                const std::uint32_t source =
                    LoadPixel(from.Data() + y * from.Pitch() + column, pixel_bytes);
                StorePixel(expected.data() + y * to.Pitch() + column, arithmetic(old, source),
                           pixel_bytes);
            }
        }
        draw({to.Data(), to.Pitch()}, {from.Data(), from.Pitch()}, {width, height});
        EXPECT_TRUE(to.Bytes() == expected) << width << " x " << height;
    }
}

class GfxKernels : public testing::TestWithParam<KernelSet>
{
protected:
    const Kernels& Set() const { return *GetParam().kernels; }
};

TEST_P(GfxKernels, Fill)
{
    ExpectDrawn([this](auto to, auto, auto size) { Set().fill(to, size, 0x12345678); },
                [](std::uint32_t, std::uint32_t) { return 0x12345678U; }, 4);
}

TEST_P(GfxKernels, FillOver)
{
    for (const unsigned keep : {0U, 1U, 100U, 255U, 256U}) {
        ExpectDrawn([&](auto to, auto, auto size) { Set().fill_over(to, size, 0x80ff2001, keep); },
                    [&](std::uint32_t to, std::uint32_t) {
                        return EachChannel([&](int i) {
                            return std::min(Channel(to, i) * keep / 256 + Channel(0x80ff2001, i),
                                            255U);
                        });
                    },
                    4);
    }
}

TEST_P(GfxKernels, BlitOverRunsOverIntoTheNextChannel)
{
    ExpectDrawn([this](auto to, auto from, auto size) { Set().blit_over(to, from, size); },
                [](std::uint32_t to, std::uint32_t from) {
                    return from + EachChannel([&](int i) {
                               return Channel(to, i) * (256 - Alpha(from)) / 256;
                           });
                },
                4);
}

TEST_P(GfxKernels, BlitFaded)
{
    for (const unsigned opacity : {1U, 100U, 255U, 256U}) {
        ExpectDrawn(
            [&](auto to, auto from, auto size) { Set().blit_faded(to, from, size, opacity); },
            [&](std::uint32_t to, std::uint32_t from) {
                const unsigned alpha = Alpha(from) * opacity / 256;
                return EachChannel([&](int i) {
                    const unsigned added = i == 3 ? alpha : Channel(from, i);
                    return std::min(Channel(to, i) * (256 - alpha) / 256 + added, 255U);
                });
            },
            4);
    }
}

TEST_P(GfxKernels, BlitStraight)
{
    const auto multiplied = [](std::uint32_t pixel, int i) {
        return i == 3 ? Alpha(pixel) : Channel(pixel, i) * (Alpha(pixel) + 1) / 256;
    };
    ExpectDrawn([this](auto to, auto from, auto size) { Set().blit_straight(to, from, size); },
                [&](std::uint32_t to, std::uint32_t from) {
                    const auto sum = [&](int i) {
                        return multiplied(from, i) + multiplied(to, i) * (256 - Alpha(from)) / 256;
                    };
                    return EachChannel(
                        [&](int i) { return i == 3 ? sum(i) : sum(i) * 256 / (sum(3) + 1); });
                },
                4);
}

/** Each level of a channel under each level at each opacity; the three colours are alike. */
TEST_P(GfxKernels, BlitStraightOntoOpaquePixels)
{
    constexpr std::uint32_t levels = 256;
    std::vector<std::uint32_t> from(levels);
    for (std::uint32_t alpha = 0; alpha < levels; ++alpha) {
        for (std::uint32_t level = 0; level < levels; ++level)
            from[level] = alpha << 24 | level * 0x010101;
        for (std::uint32_t old = 0; old < levels; ++old) {
            std::vector<std::uint32_t> to(levels, 0xff000000U | old * 0x010101);
            Set().blit_straight({reinterpret_cast<std::uint8_t*>(to.data()), 0},
                                {reinterpret_cast<const std::uint8_t*>(from.data()), 0},
                                {static_cast<int>(levels), 1});
            bool same = true;
            for (std::uint32_t level = 0; level < levels; ++level) {
                const std::uint32_t sum = level * (alpha + 1) / 256 + old * (256 - alpha) / 256;
                same = same && to[level] == (0xff000000U | sum * 0x010101);
            }
            ASSERT_TRUE(same) << "alpha " << alpha << " over " << old;
        }
    }
}

TEST_P(GfxKernels, BlitUnder)
{
    ExpectDrawn([this](auto to, auto from, auto size) { Set().blit_under(to, from, size); },
                [](std::uint32_t to, std::uint32_t from) {
                    return EachChannel([&](int i) {
                        return std::min(Channel(to, i) + Channel(from, i) * (256 - Alpha(to)) / 256,
                                        255U);
                    });
                },
                4);
}

// Random pixels hardly ever have the key; these are few enough.
TEST_P(GfxKernels, BlitKeyedIgnoresAlpha)
{
    constexpr std::uint32_t key = 0x00336699;
    constexpr int width = 37;
    const std::vector<std::uint32_t> pixels = {key, 0xff336699, 0x00336698, 0x01000000, 0x80336699};
    for (int count = 0; count <= width; ++count) {
        std::vector<std::uint32_t> from(width);
        for (std::size_t i = 0; i < from.size(); ++i)
            from[i] = pixels[i % pixels.size()];
        std::vector<std::uint32_t> to(width, 7);
        std::vector<std::uint32_t> expected = to;
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            expected[i] = (from[i] & 0xffffff) == key ? 7 : from[i];
        Set().blit_keyed({reinterpret_cast<std::uint8_t*>(to.data()), 0},
                         {reinterpret_cast<const std::uint8_t*>(from.data()), 0}, {count, 1}, key);
        EXPECT_EQ(to, expected) << count;
    }
    ExpectDrawn(
        [&](auto to, auto from, auto size) { Set().blit_keyed(to, from, size, key); },
        [&](std::uint32_t to, std::uint32_t from) { return (from & 0xffffff) == key ? to : from; },
        4);
}

TEST_P(GfxKernels, BlitKeyedBytes)
{
    for (const int key : {0, 1, 127, 128, 255}) {
        ExpectDrawn(
            [&](auto to, auto from, auto size) {
                Set().blit_keyed_bytes(to, from, size, static_cast<std::uint8_t>(key));
            },
            [&](std::uint32_t to, std::uint32_t from) {
                return from == static_cast<std::uint32_t>(key) ? to : from;
            },
            1);
    }
}

TEST_P(GfxKernels, FillBytesAndCopy)
{
    ExpectDrawn([this](auto to, auto, auto size) { Set().fill_bytes(to, size, 0x9a); },
                [](std::uint32_t, std::uint32_t) { return 0x9aU; }, 1);
    ExpectDrawn([this](auto to, auto from, auto size) { Set().copy(to, from, size); },
                [](std::uint32_t, std::uint32_t from) { return from; }, 1);
}

TEST_P(GfxKernels, LongRowsAreFilledAndCopied)
{
    for (const int width : {500, 511, 512, 513, 1000}) {
        const auto size = static_cast<std::size_t>(width);
        const GuardedBuffer from(size);
        const GuardedBuffer to(size);
        Set().fill_bytes({from.Data(), 0}, {width, 1}, 0x77);
        Set().copy({to.Data(), 0}, {from.Data(), 0}, {width, 1});
        EXPECT_EQ(std::count(to.Data(), to.Data() + size, 0x77), width);
    }
}

/** Coverage is bytes beside pixels of four, so it has a buffer of its own. */
void ExpectCovered(
    const std::function<void(kestrin_gfx::Target, kestrin_gfx::Source, kestrin_gfx::Size)>& draw,
    const std::function<std::uint32_t(std::uint32_t to, unsigned coverage)>& arithmetic)
{
    SeededRandom random;
    for (int width = 0; width <= 70; ++width) {
        const auto tight = width % 2 == 0 ? GuardedBuffer::AtEnd : GuardedBuffer::AtBegin;
        const Rows to(width, 1, 0, 4, tight, random);
        const Rows from(width, 1, 0, 1, tight, random);
        for (int x = 0; x < width; x += 9)
            from.Data()[x] = x % 2 == 0 ? 0xff : 0;
        std::vector<std::uint8_t> expected = to.Bytes();
        for (int x = 0; x < width; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, to.Data() + 4 * x, 4);
            pixel = arithmetic(pixel, from.Data()[x]);
            std::memcpy(expected.data() + 4 * x, &pixel, 4);
        }
        draw({to.Data(), 0}, {from.Data(), 0}, {width, 1});
        EXPECT_TRUE(to.Bytes() == expected) << width;
    }
}

TEST_P(GfxKernels, BlitCovered)
{
    constexpr std::uint32_t color = 0x80ff2001;
    ExpectCovered(
        [this](auto to, auto from, auto size) { Set().blit_covered(to, from, size, color); },
        [](std::uint32_t to, unsigned coverage) {
            return EachChannel([&](int i) {
                const unsigned kept = Channel(to, i) * (256 - coverage);
                return i == 3 ? kept / 256 + coverage
                              : (kept + Channel(color, i) * (coverage + 1)) / 256;
            });
        });
}

TEST_P(GfxKernels, BlitCoveredFaded)
{
    constexpr std::uint32_t color = 0x80ff2001;
    for (const unsigned opacity : {1U, 100U, 255U, 256U}) {
        ExpectCovered([&](auto to, auto from,
                          auto size) { Set().blit_covered_faded(to, from, size, color, opacity); },
                      [&](std::uint32_t to, unsigned coverage) {
                          const unsigned alpha = coverage * opacity / 256;
                          return EachChannel([&](int i) {
                              const unsigned added = i == 3 ? alpha : Channel(color, i);
                              return std::min(added * (alpha + 1) / 256 +
                                                  Channel(to, i) * (256 - alpha) / 256,
                                              255U);
                          });
                      });
    }
}

INSTANTIATE_TEST_SUITE_P(Sets, GfxKernels, testing::ValuesIn(KernelSets()));

TEST(GfxKernelSets, BestAreTheWidestThatTheProcessorHas)
{
    EXPECT_EQ(&kestrin_gfx::BestKernels(), KernelSets().back().kernels);
}

} // namespace
