/**
 * Rectangles of any size at any place under any clip: the driver against DirectFB's renderer.
 */
#include "gfx_renderers.h"
#include "seeded_random.h"

#include <algorithm>
#include <array>

using kestrin_test::Drawn;
using kestrin_test::DriverDrawsTheSame;
using kestrin_test::Renderer;
using kestrin_test::SameDrawn;
using kestrin_test::Scene;
using kestrin_test::SeededRandom;
using kestrin_test::Studio;

namespace {

constexpr int most = 70;
constexpr int straight =
    DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY | DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY;
constexpr int image = DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA;

DFBSurfaceBlittingFlags Flags(int flags)
{
    return static_cast<DFBSurfaceBlittingFlags>(flags);
}

/** Draws the same random things in every process that it lives in. */
class Dice
{
public:
    Dice(Studio& studio, std::uint32_t seed) : _studio(studio), _random(seed) {}

    int Between(int low, int high) { return static_cast<int>(_random.Between(low, high)); }
    u8 Byte() { return static_cast<u8>(Between(0, 255)); }

    /** Few values and many, so that equal ones and ends occur. */
    std::uint32_t Word()
    {
        if (_random.Chance(30))
            return _random.Chance(50) ? 0xff336699 : 0x00336699;
        return static_cast<std::uint32_t>(_random.Between(0, 0xffffffff));
    }

    /** A surface of a random size, full of random pixels. */
    IDirectFBSurface* Surface(DFBSurfacePixelFormat format)
    {
        IDirectFBSurface* surface = _studio.Make(Between(1, 97), Between(1, 97), format);
        _studio.Write(surface, [this](int, int) { return Word(); });
        if (format == DSPF_LUT8)
            _studio.SetColors(surface, [this](int) { return Word(); });
        return surface;
    }

    /** May reach out of any surface. */
    DFBRectangle Rectangle()
    {
        return {Between(-most, 97), Between(-most, 97), Between(0, most), Between(0, most)};
    }

    /** Inside a surface, as DirectFB wants the source of a stretch. */
    DFBRectangle RectangleIn(IDirectFBSurface* surface)
    {
        int width = 0;
        int height = 0;
        surface->GetSize(surface, &width, &height);
        const int x = Between(0, width - 1);
        const int y = Between(0, height - 1);
        return {x, y, Between(1, width - x), Between(1, height - y)};
    }

    void Clip(IDirectFBSurface* surface)
    {
        const int x = Between(-10, 90);
        const int y = Between(-10, 90);
        const DFBRegion region = {x, y, x + Between(0, 90), y + Between(0, 90)};
        surface->SetClip(surface, Between(0, 2) == 0 ? nullptr : &region);
    }

    void Color(IDirectFBSurface* surface)
    {
        surface->SetColor(surface, Byte(), Byte(), Byte(), Byte());
    }

private:
    Studio& _studio;
    SeededRandom _random;
};

/** A scene of many rounds, each with dice and surfaces of its own. */
Scene Rounds(int count, const std::function<void(Studio&, Dice&)>& round)
{
    const std::uint32_t seed = SeededRandom().Seed();
    return [=](Studio& studio) {
        Dice dice(studio, seed);
        for (int i = 0; i < SeededRandom::Rounds(count); ++i)
            round(studio, dice);
    };
}

void Fills(Studio& studio, Dice& dice, DFBSurfacePixelFormat format)
{
    constexpr std::array<DFBSurfacePorterDuffRule, 3> rules = {DSPD_SRC, DSPD_SRC_OVER, DSPD_NONE};
    IDirectFBSurface* to = dice.Surface(format);
    for (int i = 0; i < 10; ++i) {
        const int rule = dice.Between(0, 3);
        to->SetDrawingFlags(to, rule == 3 ? DSDRAW_NOFX : DSDRAW_BLEND);
        if (rule < 3)
            to->SetPorterDuff(to, rules[static_cast<std::size_t>(rule)]);
        dice.Color(to);
        if (format == DSPF_LUT8 && dice.Between(0, 1) == 0)
            to->SetColorIndex(to, dice.Byte());
        dice.Clip(to);
        const DFBRectangle area = dice.Rectangle();
        studio.Show(
            static_cast<std::uint32_t>(to->FillRectangle(to, area.x, area.y, area.w, area.h)));
    }
    studio.Show(to);
    to->Release(to);
}

TEST(GfxRectangles, FillsOfColours)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        Rounds(150, [](Studio& studio, Dice& dice) { Fills(studio, dice, DSPF_ARGB); })));
}

TEST(GfxRectangles, FillsOfIndices)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        Rounds(80, [](Studio& studio, Dice& dice) { Fills(studio, dice, DSPF_LUT8); })));
}

TEST(GfxRectangles, ManyFillsInOneCall)
{
    EXPECT_TRUE(DriverDrawsTheSame(Rounds(40, [](Studio& studio, Dice& dice) {
        IDirectFBSurface* to = dice.Surface(DSPF_ARGB);
        std::vector<DFBRectangle> areas(20);
        std::generate(areas.begin(), areas.end(), [&] {
            DFBRectangle area = dice.Rectangle();
            area.w = std::max(area.w, 1);
            area.h = std::max(area.h, 1);
            return area;
        });
        to->SetDrawingFlags(to, DSDRAW_BLEND);
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        dice.Color(to);
        dice.Clip(to);
        to->FillRectangles(to, areas.data(), static_cast<unsigned>(areas.size()));
        studio.Show(to);
        to->Release(to);
    })));
}

/** A key that some pixels have. */
void SetKey(IDirectFBSurface* from, DFBSurfacePixelFormat format, Dice& dice)
{
    if (format == DSPF_LUT8)
        from->SetSrcColorKeyIndex(from, dice.Between(0, 1) == 0 ? 0x99 : dice.Byte());
    else
        from->SetSrcColorKey(from, 0x33, 0x66, 0x99);
}

void Blits(Studio& studio, Dice& dice, DFBSurfacePixelFormat target, DFBSurfacePixelFormat source,
           int flags)
{
    IDirectFBSurface* to = dice.Surface(target);
    IDirectFBSurface* from = dice.Surface(source);
    to->SetBlittingFlags(to, Flags(flags));
    to->SetPorterDuff(to, DSPD_SRC_OVER);
    for (int i = 0; i < 10; ++i) {
        dice.Color(to);
        dice.Clip(to);
        SetKey(from, source, dice);
        const DFBRectangle area = dice.Rectangle();
        studio.Show(static_cast<std::uint32_t>(
            to->Blit(to, from, &area, dice.Between(-most, 97), dice.Between(-most, 97))));
    }
    studio.Show(to);
    to->Release(to);
    from->Release(from);
}

class GfxBlit : public testing::TestWithParam<int>
{
};

TEST_P(GfxBlit, OfColours)
{
    EXPECT_TRUE(DriverDrawsTheSame(Rounds(150, [](Studio& studio, Dice& dice) {
        Blits(studio, dice, DSPF_ARGB, DSPF_ARGB, GetParam());
    })));
}

TEST_P(GfxBlit, OfIndicesOntoColours)
{
    EXPECT_TRUE(DriverDrawsTheSame(Rounds(80, [](Studio& studio, Dice& dice) {
        Blits(studio, dice, DSPF_ARGB, DSPF_LUT8, GetParam());
    })));
}

INSTANTIATE_TEST_SUITE_P(Flags, GfxBlit,
                         testing::Values(DSBLIT_NOFX, DSBLIT_BLEND_ALPHACHANNEL, image, straight,
                                         DSBLIT_SRC_COLORKEY));

TEST_P(GfxBlit, OfIndicesBetweenPalettes)
{
    // With a key DirectFB converts between palettes itself.
    if (GetParam() == DSBLIT_SRC_COLORKEY)
        return;
    EXPECT_TRUE(DriverDrawsTheSame(Rounds(20, [](Studio& studio, Dice& dice) {
        Blits(studio, dice, DSPF_LUT8, DSPF_LUT8, GetParam());
    })));
}

TEST(GfxRectangles, BlitsOfIndicesUnderOnePalette)
{
    EXPECT_TRUE(DriverDrawsTheSame(Rounds(80, [](Studio& studio, Dice& dice) {
        IDirectFBSurface* to = dice.Surface(DSPF_LUT8);
        IDirectFBSurface* from = dice.Surface(DSPF_LUT8);
        IDirectFBPalette* palette = nullptr;
        to->GetPalette(to, &palette);
        from->SetPalette(from, palette);
        for (int i = 0; i < 10; ++i) {
            to->SetBlittingFlags(to, dice.Between(0, 1) == 0 ? DSBLIT_NOFX : DSBLIT_SRC_COLORKEY);
            SetKey(from, DSPF_LUT8, dice);
            dice.Clip(to);
            const DFBRectangle area = dice.Rectangle();
            to->Blit(to, from, &area, dice.Between(-most, 97), dice.Between(-most, 97));
        }
        studio.Show(to);
        palette->Release(palette);
        to->Release(to);
        from->Release(from);
    })));
}

/** Coverage onto colours, as DirectFB draws characters. */
Scene BlitsOfCoverage(int flags)
{
    return Rounds(150, [=](Studio& studio, Dice& dice) {
        IDirectFBSurface* to = dice.Surface(DSPF_ARGB);
        IDirectFBSurface* from = dice.Surface(DSPF_A8);
        to->SetBlittingFlags(to, Flags(flags));
        to->SetPorterDuff(to, DSPD_NONE);
        for (int i = 0; i < 10; ++i) {
            dice.Color(to);
            dice.Clip(to);
            const DFBRectangle area = dice.Rectangle();
            to->Blit(to, from, &area, dice.Between(-most, 97), dice.Between(-most, 97));
        }
        studio.Show(to);
        to->Release(to);
        from->Release(from);
    });
}

TEST(GfxRectangles, BlitsOfCoverage)
{
    EXPECT_TRUE(DriverDrawsTheSame(BlitsOfCoverage(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_COLORIZE)));
}

TEST(GfxRectangles, BlitsOfFadedCoverage)
{
    EXPECT_TRUE(DriverDrawsTheSame(BlitsOfCoverage(image | DSBLIT_COLORIZE)));
}

Scene StretchesUnder(DFBSurfacePixelFormat format)
{
    return Rounds(200, [=](Studio& studio, Dice& dice) {
        IDirectFBSurface* to = dice.Surface(format);
        IDirectFBSurface* from = dice.Surface(DSPF_ARGB);
        to->SetBlittingFlags(to, DSBLIT_BLEND_ALPHACHANNEL);
        to->SetPorterDuff(to, DSPD_DST_OVER);
        dice.Clip(to);
        const DFBRectangle source = dice.RectangleIn(from);
        DFBRectangle target = dice.Rectangle();
        // Of equal sizes DirectFB makes a blit, and blits under are its own.
        target.w += source.w == target.w ? 1 : 0;
        target.w = std::max(target.w, 1);
        target.h = std::max(target.h, 1);
        to->StretchBlit(to, from, &source, &target);
        studio.Show(to);
        to->Release(to);
        from->Release(from);
    });
}

TEST(GfxRectangles, StretchesUnderColours)
{
    EXPECT_TRUE(DriverDrawsTheSame(StretchesUnder(DSPF_ARGB)));
}

TEST(GfxRectangles, StretchesUnderIndices)
{
    EXPECT_TRUE(DriverDrawsTheSame(StretchesUnder(DSPF_LUT8)));
}

TEST(GfxRectangles, StretchWiderThanItsBuffer)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* to = studio.Make(3001, 7, DSPF_ARGB);
        IDirectFBSurface* from = studio.Make(721, 5, DSPF_ARGB);
        studio.Write(from, [](int x, int y) { return static_cast<std::uint32_t>(x * 77777 + y); });
        to->SetBlittingFlags(to, DSBLIT_BLEND_ALPHACHANNEL);
        to->SetPorterDuff(to, DSPD_DST_OVER);
        to->StretchBlit(to, from, nullptr, nullptr);
        studio.Show(to);
    }));
}

/** Blits within a surface; `flags` below 0 for copies, which the driver does. */
Scene BlitsInPlace(int flags, DFBSurfacePixelFormat format)
{
    return Rounds(100, [=](Studio& studio, Dice& dice) {
        IDirectFBSurface* to = dice.Surface(format);
        to->SetBlittingFlags(to, Flags(flags));
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        dice.Color(to);
        SetKey(to, format, dice);
        for (int i = 0; i < 5; ++i) {
            const DFBRectangle area = dice.RectangleIn(to);
            const int x = dice.Between(-30, 90);
            int y = dice.Between(-30, 90);
            // To the right on its own rows DirectFB's blending leaves the surface.
            y += flags != DSBLIT_NOFX && y == area.y ? 1 : 0;
            to->Blit(to, to, &area, x, y);
        }
        studio.Show(to);
        to->Release(to);
    });
}

TEST(GfxRectangles, CopiesWithinASurface)
{
    EXPECT_TRUE(DriverDrawsTheSame(BlitsInPlace(DSBLIT_NOFX, DSPF_ARGB)));
}

TEST(GfxRectangles, CopiesOfIndicesWithinASurface)
{
    EXPECT_TRUE(DriverDrawsTheSame(BlitsInPlace(DSBLIT_NOFX, DSPF_LUT8)));
}

TEST_P(GfxBlit, WithinASurfaceIsTheSameWithDirectFBsHelp)
{
    const Scene scene = BlitsInPlace(GetParam(), DSPF_ARGB);
    EXPECT_TRUE(SameDrawn(Drawn(Renderer::Driver, scene), Drawn(Renderer::Software, scene)));
}

} // namespace
