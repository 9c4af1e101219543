/**
 * Draws with DirectFB itself on the display module and reads the picture back from the screen file.
 */
#include "display_fixture.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>

#include <directfb.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::PixelFormat;
using kestrin_test::TestDisplay;

namespace {

/** DirectFB with layer 1 taken, as the engine does it. Releases what it made. */
class Screen
{
public:
    Screen()
    {
        EXPECT_EQ(DirectFBInit(nullptr, nullptr), DFB_OK);
        EXPECT_EQ(DirectFBCreate(&dfb), DFB_OK);
    }

    ~Screen()
    {
        Drop();
        dfb->Release(dfb);
    }

    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    void Take(int width, int height, DFBSurfacePixelFormat format,
              DFBDisplayLayerBufferMode mode = DLBM_FRONTONLY)
    {
        ASSERT_EQ(dfb->GetDisplayLayer(dfb, 1, &layer), DFB_OK);
        ASSERT_EQ(layer->SetCooperativeLevel(layer, DLSCL_EXCLUSIVE), DFB_OK);
        DFBDisplayLayerConfig config = {};
        config.flags = static_cast<DFBDisplayLayerConfigFlags>(
            DLCONF_WIDTH | DLCONF_HEIGHT | DLCONF_PIXELFORMAT | DLCONF_BUFFERMODE);
        config.width = width;
        config.height = height;
        config.pixelformat = format;
        config.buffermode = mode;
        ASSERT_EQ(layer->SetConfiguration(layer, &config), DFB_OK);
        ASSERT_EQ(layer->GetSurface(layer, &surface), DFB_OK);
    }

    void Drop()
    {
        if (surface != nullptr)
            surface->Release(surface);
        if (layer != nullptr)
            layer->Release(layer);
        surface = nullptr;
        layer = nullptr;
    }

    void Fill(int x, int y, int width, int height, std::uint32_t argb)
    {
        surface->SetColor(surface, argb >> 16 & 0xff, argb >> 8 & 0xff, argb & 0xff, argb >> 24);
        ASSERT_EQ(surface->FillRectangle(surface, x, y, width, height), DFB_OK);
    }

    void Flip(DFBSurfaceFlipFlags flags = DSFLIP_NONE)
    {
        ASSERT_EQ(surface->Flip(surface, nullptr, flags), DFB_OK);
    }

    IDirectFB* dfb = nullptr;
    IDirectFBDisplayLayer* layer = nullptr;
    IDirectFBSurface* surface = nullptr;
};

struct FormatCase
{
    DFBSurfacePixelFormat format;
    PixelFormat recorded;
    std::uint32_t drawn;
    std::uint32_t seen;
};

void PrintTo(const FormatCase& value, std::ostream* out)
{
    *out << kestrin_display::FormatName(value.recorded);
}

class DisplayFormat : public testing::TestWithParam<FormatCase>
{
};

TEST_P(DisplayFormat, FillIsReadBack)
{
    TestDisplay display;
    Screen screen;
    screen.Take(321, 203, GetParam().format);
    screen.Fill(0, 0, 321, 203, 0);
    screen.Fill(300, 100, 21, 103, GetParam().drawn);
    screen.Flip();

    const auto shot = display.Reader().Snapshot(1);
    EXPECT_EQ(shot.facts.format, GetParam().recorded);
    EXPECT_EQ(shot.facts.width, 321U);
    EXPECT_EQ(shot.facts.height, 203U);
    EXPECT_EQ(shot.facts.shown, 1U);
    EXPECT_EQ(shot.image.At(300, 100), GetParam().seen);
    EXPECT_EQ(shot.image.At(320, 202), GetParam().seen);
    EXPECT_NE(shot.image.At(299, 100), GetParam().seen);
    EXPECT_NE(shot.image.At(300, 99), GetParam().seen);
}

INSTANTIATE_TEST_SUITE_P(
    All, DisplayFormat,
    testing::Values(FormatCase{DSPF_ARGB, PixelFormat::Argb, 0x80123456, 0x80123456},
                    FormatCase{DSPF_RGB32, PixelFormat::Rgb32, 0x80123456, 0xff123456},
                    FormatCase{DSPF_RGB24, PixelFormat::Rgb24, 0x80123456, 0xff123456},
                    FormatCase{DSPF_RGB16, PixelFormat::Rgb16, 0xffff8421, 0xffff8621},
                    FormatCase{DSPF_ARGB1555, PixelFormat::Argb1555, 0xffff8421, 0xffff8421},
                    FormatCase{DSPF_ARGB4444, PixelFormat::Argb4444, 0x88ff1122, 0x88ff1122},
                    FormatCase{DSPF_LUT8, PixelFormat::Lut8, 0xffff0000, 0xffff0000}),
    [](const auto& test) { return kestrin_display::FormatName(test.param.recorded); });

} // namespace
