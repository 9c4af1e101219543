/** Off-screen canvases: their format, clearing and copying. */
#include "DFB/canvas.h"

#include "engine_display.h"
#include "picture_compare.h"
#include "recording_surface.h"
#include "surface_of.h"
#include "surface_pixels.h"

#include <ostream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::EngineDisplay;
using kestrin_test::NameInLogs;
using kestrin_test::PixelsOf;
using kestrin_test::RecordingSurface;
using kestrin_test::SamePicture;
using kestrin_test::SetPixels;
using kestrin_test::SurfaceOf;
using testing::ElementsAre;
using testing::IsEmpty;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::ColorMode;
using zelxxx::PCanvas;
using zelxxx::View;
using zelxxx::zelCreateCanvas;

namespace {

/** A picture with a different value in every pixel. */
ArgbImage Ramp(int width, int height, std::uint32_t first)
{
    ArgbImage image(width, height);
    for (std::uint32_t& pixel : image.pixels)
        pixel = first++;
    return image;
}

struct FormatCase
{
    ColorMode display, canvas;
    DFBSurfacePixelFormat format;
};

void PrintTo(const FormatCase& value, std::ostream* out)
{
    *out << value.canvas << " bits on " << value.display;
}

class CanvasFormat : public testing::TestWithParam<FormatCase>
{
};

TEST_P(CanvasFormat, IsTheDisplaysWhateverTheColorMode)
{
    const EngineDisplay engine(64, 48, GetParam().display);
    const PCanvas canvas = zelCreateCanvas(30, 20, GetParam().canvas);
    IDirectFBSurface* surface = SurfaceOf(canvas);
    DFBSurfacePixelFormat format = DSPF_UNKNOWN;
    int width = 0;
    int height = 0;
    surface->GetPixelFormat(surface, &format);
    surface->GetSize(surface, &width, &height);
    EXPECT_EQ(format, GetParam().format);
    EXPECT_EQ(width, 30);
    EXPECT_EQ(height, 20);
    EXPECT_EQ(canvas->GetColorMode(), GetParam().canvas);
    EXPECT_EQ(canvas->GetWidth(), 30);
    EXPECT_EQ(canvas->GetHeight(), 20);
}

INSTANTIATE_TEST_SUITE_P(Modes, CanvasFormat,
                         testing::Values(FormatCase{Color32Bit, Color32Bit, DSPF_ARGB},
                                         FormatCase{Color32Bit, Color8Bit, DSPF_ARGB},
                                         FormatCase{Color32Bit, zelxxx::Color16Bit, DSPF_ARGB},
                                         FormatCase{Color8Bit, Color8Bit, DSPF_LUT8},
                                         FormatCase{Color8Bit, Color32Bit, DSPF_LUT8},
                                         FormatCase{Color8Bit, zelxxx::Color1Bit, DSPF_LUT8}));

/** On a 32-bit display. */
class CanvasTest : public testing::Test
{
protected:
    EngineDisplay _engine{64, 48};
};

TEST_F(CanvasTest, IsCreatedWithoutAReference)
{
    zelxxx::ICanvas* canvas = zelCreateCanvas(4, 4, Color32Bit);
    EXPECT_EQ(canvas->Hold(), 1);
    EXPECT_EQ(canvas->Release(), 0);
}

TEST_F(CanvasTest, ClearReadsBlueFromTheLowestByte)
{
    const PCanvas canvas = zelCreateCanvas(6, 5, Color32Bit);
    SetPixels(SurfaceOf(canvas), ArgbImage(6, 5, 0));
    canvas->Clear(0, 0, 4, 4, 0x00FF8040, 255);
    ArgbImage expected(6, 5, 0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x)
            expected.At(x, y) = 0xffff8040;
    }
    EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(canvas)), expected));
}

TEST_F(CanvasTest, ClearReplacesTheOpacity)
{
    const PCanvas canvas = zelCreateCanvas(2, 2, Color32Bit);
    canvas->Clear(0, 0, 2, 2, 0xffffff, 255);
    canvas->Clear(0, 0, 2, 2, 0x123456, 0x10);
    EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(canvas)), ArgbImage(2, 2, 0x10123456)));
}

TEST_F(CanvasTest, ClearSetsTheColourAndFills)
{
    const PCanvas canvas = zelCreateCanvas(8, 8, Color32Bit);
    const RecordingSurface recording(SurfaceOf(canvas));
    canvas->Clear(1, -2, 3, 4, 0xaa112233, 0x44);
    EXPECT_THAT(recording.Calls(),
                ElementsAre("SetColor(17, 34, 51, 68)", "FillRectangle(1, -2, 3, 4)"));
}

TEST_F(CanvasTest, ClearKeepsTheDrawingFlagsAPainterLeft)
{
    const PCanvas canvas = zelCreateCanvas(2, 2, Color32Bit);
    canvas->Clear(0, 0, 2, 2, 0x000000, 255);
    IDirectFBSurface* surface = SurfaceOf(canvas);
    surface->SetDrawingFlags(surface, DSDRAW_BLEND);
    surface->SetPorterDuff(surface, DSPD_SRC_OVER);
    canvas->Clear(0, 0, 2, 2, 0xffffff, 0);
    EXPECT_TRUE(SamePicture(PixelsOf(surface), ArgbImage(2, 2, 0xffffffff)))
        << "the source's colour is not multiplied, so an opacity of 0 adds it";
}

TEST_F(CanvasTest, BlendModeIsRecordedWithoutACall)
{
    const PCanvas canvas = zelCreateCanvas(2, 2, Color32Bit);
    const RecordingSurface recording(SurfaceOf(canvas));
    canvas->SetBlendMode(zelxxx::BlendSrcCopy);
    EXPECT_THAT(recording.Calls(), IsEmpty());
}

TEST_F(CanvasTest, CopyTakesARectangleOfAnotherCanvas)
{
    const PCanvas source = zelCreateCanvas(10, 10, Color32Bit);
    const PCanvas target = zelCreateCanvas(12, 12, Color32Bit);
    const ArgbImage ramp = Ramp(10, 10, 0x12345600);
    SetPixels(SurfaceOf(source), ramp);
    SetPixels(SurfaceOf(target), ArgbImage(12, 12, 0));
    target->Copy(5, 6, source, 2, 3, 4, 5);
    ArgbImage expected(12, 12, 0);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 4; ++x)
            expected.At(5 + x, 6 + y) = ramp.At(2 + x, 3 + y);
    }
    EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(target)), expected));
}

TEST_F(CanvasTest, CopyIsOneBlit)
{
    const PCanvas source = zelCreateCanvas(10, 10, Color32Bit);
    const PCanvas target = zelCreateCanvas(12, 12, Color32Bit);
    NameInLogs(SurfaceOf(source), "source");
    const RecordingSurface recording(SurfaceOf(target));
    target->Copy(5, -6, source, 2, 3, 4, 5);
    EXPECT_THAT(recording.Calls(), ElementsAre("Blit(source, [2 3 4 5], 5, -6)"));
}

TEST_F(CanvasTest, CopyOfAViewReadsTheDisplay)
{
    const zelxxx::PView view = zelxxx::zelCreateView(0, 64, 48, Color32Bit, false);
    const ArgbImage ramp = Ramp(64, 48, 0x80000000);
    SetPixels(View::_primary, ramp);
    const PCanvas canvas = zelCreateCanvas(64, 48, Color32Bit);
    canvas->Copy(0, 0, view, 0, 0, 64, 48);
    EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(canvas)), ramp));
}

/** On an 8-bit display. */
class CanvasOn8Bit : public testing::Test
{
protected:
    EngineDisplay _engine{64, 48, Color8Bit};
};

TEST_F(CanvasOn8Bit, ClearTakesThePaletteIndexAndNoOpacity)
{
    const PCanvas canvas = zelCreateCanvas(5, 4, Color8Bit);
    SetPixels(SurfaceOf(canvas), ArgbImage(5, 4, 9));
    canvas->Clear(1, 1, 2, 2, 201, 0);
    ArgbImage expected(5, 4, 9);
    for (int y = 1; y < 3; ++y) {
        for (int x = 1; x < 3; ++x)
            expected.At(x, y) = 201;
    }
    EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(canvas)), expected));
}

TEST_F(CanvasOn8Bit, EveryModeBut32BitClearsByIndex)
{
    for (const ColorMode mode : {zelxxx::Color1Bit, zelxxx::Color4Bit, Color8Bit,
                                 zelxxx::Color16Bit, zelxxx::Color24Bit}) {
        const PCanvas canvas = zelCreateCanvas(5, 4, mode);
        const RecordingSurface recording(SurfaceOf(canvas));
        canvas->Clear(1, 1, 2, 2, 201, 77);
        EXPECT_THAT(recording.Calls(),
                    ElementsAre("SetColorIndex(201)", "FillRectangle(1, 1, 2, 2)"))
            << mode;
    }
}

TEST_F(CanvasOn8Bit, A32BitCanvasClearsByColour)
{
    const PCanvas canvas = zelCreateCanvas(5, 4, Color32Bit);
    const RecordingSurface recording(SurfaceOf(canvas));
    canvas->Clear(0, 0, 5, 4, 0x112233, 255);
    EXPECT_THAT(recording.Calls(),
                ElementsAre("SetColor(17, 34, 51, 255)", "FillRectangle(0, 0, 5, 4)"));
}

TEST_F(CanvasOn8Bit, CopiesKeepTheIndices)
{
    const PCanvas source = zelCreateCanvas(16, 16, Color8Bit);
    const PCanvas target = zelCreateCanvas(16, 16, Color8Bit);
    const zelxxx::PView view = zelxxx::zelCreateView(0, 64, 48, Color8Bit, false);
    // Equal colours everywhere: a translation by colour would merge them.
    zelxxx::PaletteEntry entries[256] = {};
    view->SetPalette(zelxxx::zelCreatePalette(entries), 256, 256, 256);
    const ArgbImage ramp = Ramp(16, 16, 0);
    SetPixels(SurfaceOf(source), ramp);
    SetPixels(SurfaceOf(target), ArgbImage(16, 16, 5));
    target->Copy(0, 0, source, 0, 0, 16, 16);
    EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(target)), ramp));
    view->Copy(0, 0, target, 0, 0, 16, 16);
    EXPECT_TRUE(SamePicture(kestrin_test::PartOf(PixelsOf(View::_primary), 0, 0, 16, 16), ramp));
}

TEST_F(CanvasOn8Bit, ColoursChangedLaterFollow)
{
    const zelxxx::PView view = zelxxx::zelCreateView(0, 64, 48, Color8Bit, false);
    const PCanvas canvas = zelCreateCanvas(4, 4, Color8Bit);
    canvas->Clear(0, 0, 4, 4, 3, 0);
    zelxxx::PaletteEntry entries[256] = {};
    view->SetPalette(zelxxx::zelCreatePalette(entries), 256, 256, 256);
    view->SetPaletteEntry(3, 1, 2, 3, 255);
    IDirectFBPalette* palette = nullptr;
    DFBColor color = {};
    ASSERT_EQ(SurfaceOf(canvas)->GetPalette(SurfaceOf(canvas), &palette), DFB_OK);
    ASSERT_EQ(palette->GetEntries(palette, &color, 1, 3), DFB_OK);
    palette->Release(palette);
    EXPECT_EQ(color.a, 255);
    EXPECT_EQ(color.r, 1);
    EXPECT_EQ(color.g, 2);
    EXPECT_EQ(color.b, 3);
    view->Copy(0, 0, canvas, 0, 0, 4, 4);
    EXPECT_EQ(_engine.Shot().At(2, 2), 0xff010203U);
}

} // namespace
