/**
 * What becomes of each value of a channel at each opacity: the driver against DirectFB's renderer.
 */
#include "gfx_renderers.h"
#include "seeded_random.h"

#include <array>

using kestrin_test::DriverDrawsTheSame;
using kestrin_test::SeededRandom;
using kestrin_test::Studio;

namespace {

constexpr int levels = 256;
constexpr int straight =
    DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY | DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY;
constexpr int image = DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA;

// Ends, middles and both sides of where products round.
constexpr std::array<std::uint32_t, 10> colors = {0, 1, 2, 64, 127, 128, 129, 200, 254, 255};

std::uint32_t Word(int a, int r, int g, int b)
{
    return static_cast<std::uint32_t>(a) << 24 | static_cast<std::uint32_t>(r) << 16 |
           static_cast<std::uint32_t>(g) << 8 | static_cast<std::uint32_t>(b);
}

/** All of a pixel's channels at one level, a different one for each column. */
std::uint32_t Ramp(int x, int)
{
    return Word(x, x, x, x);
}

u8 Byte(std::uint32_t value)
{
    return static_cast<u8>(value);
}

/** Every level of each channel below a fill of each opacity, in several colours. */
void FillAtEachOpacity(Studio& studio, DFBSurfacePorterDuffRule rule)
{
    for (std::size_t i = 0; i < colors.size(); ++i) {
        IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
        studio.Write(to, Ramp);
        to->SetDrawingFlags(to, DSDRAW_BLEND);
        to->SetPorterDuff(to, rule);
        for (int alpha = 0; alpha < levels; ++alpha) {
            to->SetColor(to, Byte(colors[i]), Byte(colors[(i + 3) % colors.size()]),
                         Byte(colors[(i + 7) % colors.size()]), Byte(alpha));
            to->FillRectangle(to, 0, alpha, levels, 1);
        }
        studio.Show(to);
    }
}

TEST(GfxChannels, FillOver)
{
    EXPECT_TRUE(
        DriverDrawsTheSame([](Studio& studio) { FillAtEachOpacity(studio, DSPD_SRC_OVER); }));
}

TEST(GfxChannels, FillWithStraightColour)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) { FillAtEachOpacity(studio, DSPD_NONE); }));
}

TEST(GfxChannels, FillThatReplaces)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) { FillAtEachOpacity(studio, DSPD_SRC); }));
}

/** Pixels of each opacity above every level of each channel. */
void BlitAtEachOpacity(Studio& studio, int flags, int color_alpha)
{
    IDirectFBSurface* from = studio.Make(levels, levels, DSPF_ARGB);
    IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
    to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(flags));
    to->SetPorterDuff(to, DSPD_SRC_OVER);
    to->SetColor(to, 10, 20, 30, Byte(color_alpha));
    for (const std::uint32_t color : colors) {
        studio.Write(to, Ramp);
        studio.Write(from, [&](int, int y) {
            return Word(y, static_cast<int>(color), static_cast<int>(255 - color), y);
        });
        to->Blit(to, from, nullptr, 0, 0);
        studio.Show(to);
    }
}

TEST(GfxChannels, BlitOverLetsSumsRunOver)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        [](Studio& studio) { BlitAtEachOpacity(studio, DSBLIT_BLEND_ALPHACHANNEL, 255); }));
}

TEST(GfxChannels, BlitOverAtEachOpacityOfTheWhole)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        for (const std::uint32_t alpha : colors)
            BlitAtEachOpacity(studio, image, static_cast<int>(alpha));
    }));
}

TEST(GfxChannels, AlphaTimesOpacityOfTheWhole)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* from = studio.Make(levels, 1, DSPF_ARGB);
        IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
        studio.Write(from, Ramp);
        studio.Write(to, [](int x, int y) { return Word(y, x, 255 - y, 128); });
        to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(image));
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        for (int alpha = 0; alpha < levels; ++alpha) {
            to->SetColor(to, 0, 0, 0, Byte(alpha));
            to->Blit(to, from, nullptr, 0, alpha);
        }
        studio.Show(to);
    }));
}

/** Both opacities in all pairs; the colours are the parameter of each picture. */
TEST(GfxChannels, StraightColoursOverEachOther)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* from = studio.Make(levels, levels, DSPF_ARGB);
        IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
        to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(straight));
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        for (std::size_t i = 0; i < colors.size() * 4; ++i) {
            const auto c = [&](std::size_t k) {
                return static_cast<int>(colors[(i * k + i / colors.size()) % colors.size()]);
            };
            studio.Write(to, [&](int x, int) { return Word(x, c(1), c(3), c(7)); });
            studio.Write(from, [&](int, int y) { return Word(y, c(9), c(2), c(5)); });
            to->Blit(to, from, nullptr, 0, 0);
            studio.Show(to);
        }
    }));
}

TEST(GfxChannels, StraightColoursOfManyPictures)
{
    const SeededRandom seed;
    EXPECT_TRUE(DriverDrawsTheSame([&](Studio& studio) {
        SeededRandom random(seed.Seed());
        const auto any = [&](int, int) {
            return static_cast<std::uint32_t>(random.Between(0, 0xffffffff));
        };
        IDirectFBSurface* from = studio.Make(levels, levels, DSPF_ARGB);
        IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
        to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(straight));
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        for (int i = 0; i < 20; ++i) {
            studio.Write(to, any);
            studio.Write(from, any);
            to->Blit(to, from, nullptr, 0, 0);
            studio.Show(to);
        }
    }));
}

/** Each opacity of what is there and each level of what comes below it. */
TEST(GfxChannels, StretchUnder)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* from = studio.Make(levels, levels / 2, DSPF_ARGB);
        studio.Write(from, Ramp);
        for (const std::uint32_t color : colors) {
            IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
            studio.Write(to, [&](int, int y) {
                return Word(y, static_cast<int>(color), y, static_cast<int>(255 - color));
            });
            to->SetBlittingFlags(to, DSBLIT_BLEND_ALPHACHANNEL);
            to->SetPorterDuff(to, DSPD_DST_OVER);
            to->StretchBlit(to, from, nullptr, nullptr);
            studio.Show(to);
        }
    }));
}

/** Indices of all opacities, some of them with the same colour, above pixels of which many are 0.
 */
TEST(GfxChannels, StretchUnderIndices)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* from = studio.Make(levels / 2, levels, DSPF_ARGB);
        studio.Write(from, [](int x, int y) { return y % 3 == 0 ? 0 : Ramp(2 * x, y); });
        for (const std::uint32_t color : colors) {
            IDirectFBSurface* to = studio.Make(levels, levels, DSPF_LUT8);
            studio.SetColors(to, [&](int index) {
                return Word(index % 5 == 0 ? 255 : index / 2 * 2, static_cast<int>(color),
                            index / 2 * 2, static_cast<int>(255 - color));
            });
            studio.Write(to, [](int x, int) { return static_cast<std::uint32_t>(x); });
            to->SetBlittingFlags(to, DSBLIT_BLEND_ALPHACHANNEL);
            to->SetPorterDuff(to, DSPD_DST_OVER);
            to->StretchBlit(to, from, nullptr, nullptr);
            studio.Show(to);
        }
    }));
}

/** Each index of a palette below a fill of each opacity. */
void FillIndicesAtEachOpacity(Studio& studio, DFBSurfacePorterDuffRule rule)
{
    IDirectFBSurface* to = studio.Make(levels, levels, DSPF_LUT8);
    studio.SetColors(to, [](int i) { return Word(i, i * 7 % 256, 255 - i, i * 3 % 256); });
    studio.Write(to, [](int x, int) { return static_cast<std::uint32_t>(x); });
    to->SetDrawingFlags(to, DSDRAW_BLEND);
    to->SetPorterDuff(to, rule);
    for (int alpha = 0; alpha < levels; ++alpha) {
        to->SetColor(to, 200, 100, Byte(alpha), Byte(alpha));
        to->FillRectangle(to, 0, alpha, levels, 1);
    }
    studio.Show(to);
}

TEST(GfxChannels, FillOverIndices)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        [](Studio& studio) { FillIndicesAtEachOpacity(studio, DSPD_SRC_OVER); }));
}

TEST(GfxChannels, FillWithStraightColourOverIndices)
{
    EXPECT_TRUE(
        DriverDrawsTheSame([](Studio& studio) { FillIndicesAtEachOpacity(studio, DSPD_NONE); }));
}

/** Each coverage of each level of each channel, by several colours and their opacities. */
void CoverAtEachLevel(Studio& studio, int flags)
{
    IDirectFBSurface* from = studio.Make(levels, levels, DSPF_A8);
    studio.Write(from, [](int, int y) { return static_cast<std::uint32_t>(y); });
    for (std::size_t i = 0; i < colors.size(); ++i) {
        IDirectFBSurface* to = studio.Make(levels, levels, DSPF_ARGB);
        studio.Write(to, Ramp);
        to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(flags));
        to->SetPorterDuff(to, DSPD_NONE);
        to->SetColor(to, Byte(colors[i]), Byte(colors[(i + 3) % colors.size()]),
                     Byte(colors[(i + 7) % colors.size()]), Byte(colors[(i * 3) % colors.size()]));
        to->Blit(to, from, nullptr, 0, 0);
        studio.Show(to);
    }
}

TEST(GfxChannels, Coverage)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        CoverAtEachLevel(studio, DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_COLORIZE);
    }));
}

TEST(GfxChannels, FadedCoverage)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        [](Studio& studio) { CoverAtEachLevel(studio, image | DSBLIT_COLORIZE); }));
}

/** Each index over each other one; twice, as results are kept, and with other circumstances. */
TEST(GfxChannels, IndicesOverEachOther)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* from = studio.Make(levels, levels, DSPF_LUT8);
        IDirectFBSurface* to = studio.Make(levels, levels, DSPF_LUT8);
        studio.SetColors(to, [](int i) { return Word(i * 5 % 256, i * 7 % 256, 255 - i, i); });
        studio.Write(from, [](int, int y) { return static_cast<std::uint32_t>(y); });
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        const auto blend = [&](int flags, u8 alpha) {
            studio.Write(to, [](int x, int) { return static_cast<std::uint32_t>(x); });
            to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(flags));
            to->SetColor(to, 0, 0, 0, alpha);
            to->Blit(to, from, nullptr, 0, 0);
            studio.Show(to);
        };
        for (const std::uint32_t factor : {0x03050709U, 0x01010101U}) {
            studio.SetColors(from, [&](int i) { return static_cast<std::uint32_t>(i) * factor; });
            for (const int flags : {static_cast<int>(DSBLIT_BLEND_ALPHACHANNEL), image, straight})
                blend(flags, 200);
            blend(image, 100);
            blend(image, 100);
        }
    }));
}

} // namespace
