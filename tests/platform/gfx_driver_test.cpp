/**
 * Where the driver comes in and where it does not.
 */
#include "gfx_renderers.h"

#include <algorithm>
#include <array>
#include <string>

using kestrin_test::Drawn;
using kestrin_test::DriverDrawsTheSame;
using kestrin_test::Renderer;
using kestrin_test::SameDrawn;
using kestrin_test::Scene;
using kestrin_test::Studio;

namespace {

constexpr int side = 40;

std::uint32_t Pattern(int x, int y)
{
    return static_cast<std::uint32_t>(x) * 0x04050607 + static_cast<std::uint32_t>(y) * 0x03112233;
}

/** With the driver and DirectFB's renderer together, as programs run. */
testing::AssertionResult SameWithTheDriver(const Scene& scene)
{
    return SameDrawn(Drawn(Renderer::Driver, scene), Drawn(Renderer::Software, scene));
}

std::uint32_t MaskOf(IDirectFBSurface* to, IDirectFBSurface* from)
{
    DFBAccelerationMask mask = DFXL_NONE;
    to->GetAccelerationMask(to, from, &mask);
    return mask;
}

void ShowMasks(Studio& studio)
{
    IDirectFBSurface* to = studio.Make(side, side, DSPF_ARGB);
    IDirectFBSurface* from = studio.Make(side, side, DSPF_ARGB);
    studio.Show(MaskOf(to, from));
    to->SetPorterDuff(to, DSPD_DST_OVER);
    to->SetBlittingFlags(to, DSBLIT_BLEND_ALPHACHANNEL);
    studio.Show(MaskOf(to, from));
    to->SetBlittingFlags(to, DSBLIT_COLORIZE);
    to->SetDrawingFlags(to, DSDRAW_XOR);
    studio.Show(MaskOf(to, from));
}

TEST(GfxDriver, TellsWhatItTakesOver)
{
    EXPECT_EQ(Drawn(Renderer::Driver, ShowMasks),
              (std::vector<std::uint32_t>{DFXL_FILLRECTANGLE | DFXL_BLIT,
                                          DFXL_FILLRECTANGLE | DFXL_STRETCHBLIT, DFXL_NONE}));
}

TEST(GfxDriver, TakesNothingOverWhereItIsSwitchedOff)
{
    EXPECT_EQ(Drawn(Renderer::Software, ShowMasks),
              (std::vector<std::uint32_t>{DFXL_NONE, DFXL_NONE, DFXL_NONE}));
}

TEST(GfxDriver, IsTheOneOfThisProject)
{
    const Scene scene = [](Studio& studio) {
        DFBGraphicsDeviceDescription description = {};
        studio.Dfb()->GetDeviceDescription(studio.Dfb(), &description);
        studio.Show(std::string(description.driver.name) == "Kestrin Graphics" ? 1 : 0);
        studio.Show(std::string(description.driver.vendor) == "Kestrin" ? 1 : 0);
    };
    EXPECT_EQ(Drawn(Renderer::Driver, scene), (std::vector<std::uint32_t>{1, 1}));
}

/** A part of a surface after operations of a kind that the driver leaves to DirectFB. */
struct Left
{
    const char* name;
    std::function<void(IDirectFBSurface* to, IDirectFBSurface* from)> draw;
};

void PrintTo(const Left& left, std::ostream* out)
{
    *out << left.name;
}

void BlitWith(IDirectFBSurface* to, IDirectFBSurface* from, int flags,
              DFBSurfacePorterDuffRule rule = DSPD_SRC_OVER)
{
    to->SetBlittingFlags(to, static_cast<DFBSurfaceBlittingFlags>(flags));
    to->SetPorterDuff(to, rule);
    to->Blit(to, from, nullptr, 3, 4);
}

void FillWith(IDirectFBSurface* to, int flags, DFBSurfacePorterDuffRule rule)
{
    to->SetDrawingFlags(to, static_cast<DFBSurfaceDrawingFlags>(flags));
    to->SetPorterDuff(to, rule);
    to->FillRectangle(to, 3, 4, 20, 20);
}

const std::array<Left, 12> left_to_directfb = {{
    {"lines", [](auto to, auto) { to->DrawLine(to, 1, 2, 30, 35); }},
    {"fills under", [](auto to, auto) { FillWith(to, DSDRAW_BLEND, DSPD_DST_OVER); }},
    {"fills that add", [](auto to, auto) { FillWith(to, DSDRAW_BLEND, DSPD_ADD); }},
    {"fills with exclusive or", [](auto to, auto) { FillWith(to, DSDRAW_XOR, DSPD_NONE); }},
    {"fills that multiply their colour",
     [](auto to, auto) { FillWith(to, DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY, DSPD_SRC_OVER); }},
    {"fills of a key",
     [](auto to, auto) {
         to->SetDstColorKey(to, 0, 0, 0);
         FillWith(to, DSDRAW_DST_COLORKEY, DSPD_NONE);
     }},
    {"blits under",
     [](auto to, auto from) { BlitWith(to, from, DSBLIT_BLEND_ALPHACHANNEL, DSPD_DST_OVER); }},
    {"blits of straight colours without a common flag",
     [](auto to, auto from) { BlitWith(to, from, DSBLIT_BLEND_ALPHACHANNEL, DSPD_NONE); }},
    {"coloured blits", [](auto to, auto from) { BlitWith(to, from, DSBLIT_COLORIZE); }},
    {"turned blits", [](auto to, auto from) { BlitWith(to, from, DSBLIT_ROTATE180); }},
    {"blits with a key in the target",
     [](auto to, auto from) { BlitWith(to, from, DSBLIT_DST_COLORKEY); }},
    {"stretches that replace",
     [](auto to, auto from) {
         const DFBRectangle area = {2, 2, 31, 17};
         to->SetBlittingFlags(to, DSBLIT_NOFX);
         to->StretchBlit(to, from, nullptr, &area);
     }},
}};

Scene SceneOf(const Left& left)
{
    return [&left](Studio& studio) {
        IDirectFBSurface* to = studio.Make(side, side, DSPF_ARGB);
        IDirectFBSurface* from = studio.Make(side, side, DSPF_ARGB);
        studio.Write(to, Pattern);
        studio.Write(from, [](int x, int y) { return Pattern(y, x) * 7; });
        to->SetColor(to, 200, 100, 50, 128);
        left.draw(to, from);
        studio.Show(to);
    };
}

class GfxLeft : public testing::TestWithParam<Left>
{
};

TEST_P(GfxLeft, ToDirectFBIsTheSame)
{
    EXPECT_TRUE(SameWithTheDriver(SceneOf(GetParam())));
}

TEST_P(GfxLeft, ToDirectFBIsNotTouched)
{
    const auto alone = Drawn(Renderer::DriverAlone, SceneOf(GetParam()));
    std::vector<std::uint32_t> untouched;
    for (int i = 0; i < side * side; ++i)
        untouched.push_back(Pattern(i % side, i / side));
    EXPECT_TRUE(SameDrawn(alone, untouched));
}

INSTANTIATE_TEST_SUITE_P(Kinds, GfxLeft, testing::ValuesIn(left_to_directfb));

TEST(GfxDriver, OutlinesAndTrianglesAreMadeOfFills)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* to = studio.Make(side, side, DSPF_ARGB);
        studio.Write(to, Pattern);
        to->SetDrawingFlags(to, DSDRAW_BLEND);
        to->SetPorterDuff(to, DSPD_SRC_OVER);
        for (int i = 0; i < side; ++i) {
            to->SetColor(to, 200, 100, 50, static_cast<u8>(6 * i));
            to->DrawRectangle(to, 20 - i, i, 2 * i, i / 2);
            to->FillTriangle(to, i, 2, 30, 40 - i, 15, 2 * i);
        }
        studio.Show(to);
    }));
}

TEST(GfxDriver, OtherFormatsAreDirectFBs)
{
    EXPECT_TRUE(SameWithTheDriver([](Studio& studio) {
        for (const auto format : {DSPF_RGB16, DSPF_RGB32, DSPF_A8, DSPF_ARGB4444}) {
            IDirectFBSurface* to = studio.Make(side, side, DSPF_ARGB);
            IDirectFBSurface* other = studio.Make(side, side, format);
            studio.Write(to, Pattern);
            studio.Write(other, Pattern);
            BlitWith(other, to, DSBLIT_BLEND_ALPHACHANNEL);
            BlitWith(to, other, DSBLIT_BLEND_ALPHACHANNEL);
            FillWith(other, DSDRAW_BLEND, DSPD_SRC_OVER);
            studio.Show(to);
            studio.Show(other);
        }
    }));
}

TEST(GfxDriver, OtherBlendsAndFormatsOntoIndicesAreDirectFBs)
{
    EXPECT_TRUE(SameWithTheDriver([](Studio& studio) {
        for (const auto format : {DSPF_LUT8, DSPF_ARGB, DSPF_A8}) {
            IDirectFBSurface* to = studio.Make(side, side, DSPF_LUT8);
            IDirectFBSurface* from = studio.Make(side, side, format);
            studio.Write(to, Pattern);
            studio.Write(from, [](int x, int y) { return Pattern(y, x); });
            BlitWith(to, from, DSBLIT_BLEND_ALPHACHANNEL, DSPD_NONE);
            BlitWith(to, from, DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_COLORIZE, DSPD_NONE);
            BlitWith(to, from, DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_COLORKEY);
            studio.Show(to);
        }
    }));
}

TEST(GfxDriver, AKeyBetweenPalettesIsDirectFBs)
{
    EXPECT_TRUE(SameWithTheDriver([](Studio& studio) {
        IDirectFBSurface* to = studio.Make(side, side, DSPF_LUT8);
        IDirectFBSurface* from = studio.Make(side, side, DSPF_LUT8);
        studio.SetColors(from, [](int i) { return static_cast<std::uint32_t>(i) * 0x03050709U; });
        studio.Write(from, Pattern);
        from->SetSrcColorKeyIndex(from, 7);
        BlitWith(to, from, DSBLIT_SRC_COLORKEY);
        studio.Show(to);
    }));
}

TEST(GfxDriver, AKeyThatNoIndexIsKeepsNothingBack)
{
    EXPECT_TRUE(SameWithTheDriver([](Studio& studio) {
        for (const auto format : {DSPF_LUT8, DSPF_ARGB}) {
            IDirectFBSurface* to = studio.Make(side, side, format);
            IDirectFBSurface* from = studio.Make(side, side, DSPF_LUT8);
            studio.Write(from, Pattern);
            from->SetSrcColorKeyIndex(from, 256);
            BlitWith(to, from, DSBLIT_SRC_COLORKEY);
            studio.Show(to);
        }
    }));
}

TEST(GfxDriver, MemoryOfAClientIsDrawnOnInPlace)
{
    EXPECT_TRUE(SameWithTheDriver([](Studio& studio) {
        static std::array<std::uint32_t, side * side> pixels;
        DFBSurfaceDescription description = {};
        description.flags = static_cast<DFBSurfaceDescriptionFlags>(
            DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT | DSDESC_PREALLOCATED);
        description.width = side;
        description.height = side;
        description.pixelformat = DSPF_ARGB;
        description.preallocated[0].data = pixels.data();
        description.preallocated[0].pitch = side * 4;
        IDirectFBSurface* to = nullptr;
        studio.Dfb()->CreateSurface(studio.Dfb(), &description, &to);
        IDirectFBSurface* from = studio.Make(side, side, DSPF_ARGB);
        studio.Write(from, Pattern);
        to->SetColor(to, 200, 100, 50, 128);
        FillWith(to, DSDRAW_BLEND, DSPD_SRC_OVER);
        BlitWith(to, from, DSBLIT_BLEND_ALPHACHANNEL);
        BlitWith(from, to, DSBLIT_BLEND_ALPHACHANNEL);
        studio.Show(to);
        studio.Show(from);
    }));
}

// Clients may rely on a pitch.
TEST(GfxDriver, PitchesAreDirectFBs)
{
    EXPECT_TRUE(SameWithTheDriver([](Studio& studio) {
        for (const auto format : {DSPF_LUT8, DSPF_ARGB, DSPF_RGB16, DSPF_RGB24, DSPF_A8}) {
            for (int width = 1; width < 40; ++width) {
                IDirectFBSurface* surface = studio.Make(width, 3, format);
                void* data = nullptr;
                int pitch = 0;
                surface->Lock(surface, DSLF_READ, &data, &pitch);
                surface->Unlock(surface);
                surface->Release(surface);
                studio.Show(static_cast<std::uint32_t>(pitch));
            }
        }
    }));
}

TEST(GfxDriver, APaletteThatChangesIsFollowed)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* indices = studio.Make(side, side, DSPF_LUT8);
        IDirectFBSurface* colors = studio.Make(side, side, DSPF_ARGB);
        studio.Write(indices, Pattern);
        for (std::uint32_t factor : {0x01020304U, 0x070b0d11U, 0xff00ff01U}) {
            studio.SetColors(indices,
                             [&](int i) { return static_cast<std::uint32_t>(i) * factor; });
            indices->SetColor(indices, 200, 100, 50, 128);
            FillWith(indices, DSDRAW_BLEND, DSPD_SRC_OVER);
            BlitWith(colors, indices, DSBLIT_BLEND_ALPHACHANNEL);
            studio.Show(indices);
            studio.Show(colors);
        }
    }));
}

TEST(GfxDriver, ASubSurfaceIsAPartOfItsSurface)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* whole = studio.Make(side, side, DSPF_ARGB);
        studio.Write(whole, Pattern);
        const DFBRectangle area = {7, 9, 20, 15};
        IDirectFBSurface* part = nullptr;
        whole->GetSubSurface(whole, &area, &part);
        part->SetColor(part, 200, 100, 50, 128);
        FillWith(part, DSDRAW_BLEND, DSPD_SRC_OVER);
        IDirectFBSurface* copy = studio.Make(side, side, DSPF_ARGB);
        BlitWith(copy, part, DSBLIT_BLEND_ALPHACHANNEL);
        studio.Show(whole);
        studio.Show(copy);
    }));
}

/** What a layer's buffers hold after each of some frames. */
void ShowFrames(Studio& studio, DFBDisplayLayerBufferMode mode, DFBSurfaceFlipFlags flip)
{
    IDirectFBDisplayLayer* layer = nullptr;
    studio.Dfb()->GetDisplayLayer(studio.Dfb(), 1, &layer);
    layer->SetCooperativeLevel(layer, DLSCL_EXCLUSIVE);
    DFBDisplayLayerConfig config = {};
    config.flags = static_cast<DFBDisplayLayerConfigFlags>(DLCONF_WIDTH | DLCONF_HEIGHT |
                                                           DLCONF_PIXELFORMAT | DLCONF_BUFFERMODE);
    config.width = side;
    config.height = side;
    config.pixelformat = DSPF_ARGB;
    config.buffermode = mode;
    layer->SetConfiguration(layer, &config);
    IDirectFBSurface* primary = nullptr;
    layer->GetSurface(layer, &primary);
    for (int i = 0; i < 3; ++i) {
        primary->Clear(primary, 0, 0, 0, 0);
        primary->Flip(primary, nullptr, DSFLIP_NONE);
    }

    IDirectFBSurface* picture = studio.Make(side, side, DSPF_ARGB);
    studio.Write(picture, Pattern);
    for (u8 frame = 0; frame < 5; ++frame) {
        primary->SetColor(primary, 200, frame, 50, 128);
        FillWith(primary, DSDRAW_BLEND, DSPD_SRC_OVER);
        BlitWith(primary, picture, DSBLIT_BLEND_ALPHACHANNEL);
        BlitWith(picture, primary, DSBLIT_NOFX);
        primary->Flip(primary, nullptr, flip);
        studio.Show(primary);
        studio.Show(picture);
    }
}

TEST(GfxDriver, ALayerOfOneBufferIsDrawnOn)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        [](Studio& studio) { ShowFrames(studio, DLBM_FRONTONLY, DSFLIP_NONE); }));
}

TEST(GfxDriver, ALayersBuffersTakeTurns)
{
    EXPECT_TRUE(
        DriverDrawsTheSame([](Studio& studio) { ShowFrames(studio, DLBM_TRIPLE, DSFLIP_NONE); }));
}

TEST(GfxDriver, ALayersBackBufferInSystemMemoryIsCopied)
{
    EXPECT_TRUE(DriverDrawsTheSame(
        [](Studio& studio) { ShowFrames(studio, DLBM_BACKSYSTEM, DSFLIP_BLIT); }));
}

TEST(GfxDriver, TwoSurfacesInTurnsKeepTheirStates)
{
    EXPECT_TRUE(DriverDrawsTheSame([](Studio& studio) {
        IDirectFBSurface* one = studio.Make(side, side, DSPF_ARGB);
        IDirectFBSurface* two = studio.Make(side, side, DSPF_LUT8);
        one->SetColor(one, 1, 2, 3, 4);
        two->SetColorIndex(two, 5);
        for (int i = 0; i < side; ++i) {
            one->FillRectangle(one, i, 0, 1, i);
            two->FillRectangle(two, 0, i, i, 1);
            one->SetColor(one, static_cast<u8>(i), 2, 3, 4);
        }
        studio.Show(one);
        studio.Show(two);
    }));
}

} // namespace
