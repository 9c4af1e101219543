/** The view: the display layer, its surface and its palette. */
#include "DFB/view.h"

#include "call_recorder.h"
#include "engine_display.h"
#include "picture_compare.h"
#include "recording_surface.h"
#include "surface_of.h"
#include "surface_pixels.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::AreaHasColor;
using kestrin_test::CallLog;
using kestrin_test::CallRecorder;
using kestrin_test::EngineDisplay;
using kestrin_test::NameInLogs;
using kestrin_test::RecordingSurface;
using kestrin_test::SamePicture;
using kestrin_test::SetPixels;
using kestrin_test::SurfaceOf;
using testing::ElementsAre;
using testing::IsEmpty;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::PCanvas;
using zelxxx::PView;
using zelxxx::View;
using zelxxx::zelCreateCanvas;
using zelxxx::zelCreateView;

namespace {

/** Brings what was set on the layer to the display. */
void Flip()
{
    View::_primary->Flip(View::_primary, nullptr, DSFLIP_NONE);
}

TEST(ViewBeforeTheStart, KeepsWhatItsCreatorSaid)
{
    const PView view = zelCreateView(3, 320, -7, zelxxx::Color16Bit, true);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->GetColorMode(), zelxxx::Color16Bit);
    EXPECT_EQ(view->GetWidth(), 320);
    EXPECT_EQ(view->GetHeight(), -7);
}

TEST(ViewBeforeTheStart, IsCreatedWithoutAReference)
{
    zelxxx::IView* view = zelCreateView(0, 1, 1, Color32Bit, false);
    EXPECT_EQ(view->Hold(), 1);
    EXPECT_EQ(view->Release(), 0);
}

TEST(ViewBeforeTheStart, LayerAndPaletteCallsAreHarmless)
{
    const PView view = zelCreateView(0, 1, 1, Color32Bit, false);
    view->Show(0, 0, 1, 1);
    view->Hide();
    view->SetPaletteEntry(0, 1, 2, 3, 4);
    view->SetBlendMode(zelxxx::BlendSrcCopy);
    EXPECT_EQ(View::_layer, nullptr);
    EXPECT_EQ(View::_palette, nullptr);
}

TEST(ViewBeforeTheStart, PaletteIsRecordedWithoutADisplay)
{
    const PView view = zelCreateView(0, 1, 1, Color32Bit, false);
    const zelxxx::PPalette palette = zelxxx::zelCreatePalette(nullptr);
    view->SetPalette(palette, 256, 256, 256);
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == palette);
    EXPECT_EQ(View::_palette, nullptr);
}

/** A view of a small 32-bit display. */
class ViewTest : public testing::Test
{
protected:
    EngineDisplay _engine{64, 48};
    PView _view = zelCreateView(0, 64, 48, Color32Bit, false);
};

TEST_F(ViewTest, SurfaceIsTheLayersForEveryView)
{
    const PView other = zelCreateView(5, 10, 10, Color8Bit, true);
    EXPECT_EQ(SurfaceOf(_view), View::_primary);
    EXPECT_EQ(SurfaceOf(other), View::_primary);
}

TEST_F(ViewTest, ClearIgnoresTheRectangleAndReadsRedFromTheLowestByte)
{
    _view->Clear(10, 10, 5, 5, 0x00112233, 0x80);
    _view->Flip();
    EXPECT_TRUE(SamePicture(_engine.Shot(), ArgbImage(64, 48, 0x80332211)));
}

TEST_F(ViewTest, ClearReachesAsFarAsTheClipAPainterLeft)
{
    _view->Clear(0, 0, 64, 48, 0x0000ff, 255);
    {
        const zelxxx::ZELObjPtr<zelxxx::IPainter> painter(zelxxx::zelCreatePainter(_view));
        painter->SetClipping(0, 0, 9, 9);
    }
    _view->Clear(0, 0, 64, 48, 0x00ff00, 255);
    _view->Flip();
    const ArgbImage shot = _engine.Shot();
    EXPECT_TRUE(AreaHasColor(shot, 0, 0, 10, 10, 0xff00ff00)); // the clip's corners are inclusive
    EXPECT_TRUE(AreaHasColor(shot, 10, 0, 64, 48, 0xffff0000));
}

TEST_F(ViewTest, ClearIsOneCall)
{
    const RecordingSurface recording(View::_primary);
    _view->Clear(10, 10, 5, 5, 0xff112233, 0x80);
    EXPECT_THAT(recording.Calls(), ElementsAre("Clear(51, 34, 17, 128)"));
}

TEST_F(ViewTest, HideAndShowSwitchTheLayersOpacity)
{
    _view->Hide();
    Flip();
    EXPECT_EQ(_engine.Display().Facts().opacity, 0U);
    _view->Show(1, 2, 3, 4);
    Flip();
    EXPECT_EQ(_engine.Display().Facts().opacity, 255U);
}

TEST_F(ViewTest, ShowAndHideAreOneLayerCallEach)
{
    CallLog log;
    CallRecorder<IDirectFBDisplayLayer> layer(View::_layer, log);
    layer.Watch<&IDirectFBDisplayLayer::SetOpacity>("SetOpacity");
    const RecordingSurface recording(View::_primary, log, "primary ");
    _view->Hide();
    _view->Show(0, 0, 64, 48);
    EXPECT_THAT(log, ElementsAre("SetOpacity(0)", "SetOpacity(255)"));
}

TEST_F(ViewTest, FlipShowsThePictureOnce)
{
    const auto before = _engine.Display().Facts().update_count;
    _view->Flip();
    EXPECT_EQ(_engine.Display().Facts().update_count, before + 1);
}

TEST_F(ViewTest, FlipPassesNoRegionAndNoFlags)
{
    const RecordingSurface recording(View::_primary);
    _view->Flip();
    EXPECT_THAT(recording.Calls(), ElementsAre("Flip(null, NONE)"));
}

TEST_F(ViewTest, WaitVSyncAndBlendModeMakeNoCall)
{
    const RecordingSurface recording(View::_primary);
    View own(0, 64, 48, Color32Bit, false);
    own.WaitVSync();
    own.SetBlendMode(zelxxx::BlendSrcCopy);
    EXPECT_THAT(recording.Calls(), IsEmpty());
}

TEST_F(ViewTest, CopyPresentsARectangleAtItsPlace)
{
    const PCanvas canvas = zelCreateCanvas(20, 20, Color32Bit);
    canvas->Clear(0, 0, 20, 20, 0x0000ff, 255);
    canvas->Clear(5, 6, 7, 8, 0x00ff00, 0x90);
    _view->Clear(0, 0, 0, 0, 0, 0);
    _view->Copy(30, 10, canvas, 4, 6, 8, 8);

    ArgbImage expected(64, 48, 0);
    for (int y = 10; y < 18; ++y) {
        for (int x = 30; x < 38; ++x)
            expected.At(x, y) = x == 30 ? 0xff0000ff : 0x9000ff00;
    }
    EXPECT_TRUE(SamePicture(_engine.Shot(), expected));
}

TEST_F(ViewTest, CopyBlitsAndFlips)
{
    const PCanvas canvas = zelCreateCanvas(20, 20, Color32Bit);
    CallLog log;
    NameInLogs(SurfaceOf(canvas), "back");
    const RecordingSurface back(SurfaceOf(canvas), log, "back ");
    const RecordingSurface primary(View::_primary, log, "primary ");
    _view->Copy(30, -10, canvas, 4, 6, 8, 9);
    EXPECT_THAT(log,
                ElementsAre("primary Blit(back, [4 6 8 9], 30, -10)", "primary Flip(null, NONE)"));
}

TEST_F(ViewTest, PaletteOnA32BitDisplayIsOnlyRecorded)
{
    const zelxxx::PPalette palette = zelxxx::zelCreatePalette(nullptr);
    const RecordingSurface recording(View::_primary);
    _view->SetPalette(palette, 128, 256, 256);
    EXPECT_THAT(recording.Calls(), ElementsAre("GetPalette(out)"));
    EXPECT_EQ(View::_palette, nullptr);
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == palette);
    _view->SetPaletteEntry(1, 2, 3, 4, 5);
    EXPECT_THAT(recording.Calls(), ElementsAre("GetPalette(out)"));
}

TEST_F(ViewTest, CurrentPaletteIsHeldByTheViewAndByWhoeverAsks)
{
    zelxxx::IPalette* palette = zelxxx::zelCreatePalette(nullptr);
    palette->Hold();
    _view->SetPalette(palette);
    EXPECT_EQ(palette->Hold(), 3);
    EXPECT_EQ(palette->Release(), 2);
    {
        const zelxxx::PPalette current = zelxxx::zelGetCurrentPalette();
        EXPECT_EQ(palette->Hold(), 4);
        EXPECT_EQ(palette->Release(), 3);
    }
    _view->SetPalette(palette);
    EXPECT_EQ(palette->Hold(), 3) << "set twice and held once";
    palette->Release();
    _view->SetPalette(nullptr);
    EXPECT_EQ(palette->Release(), 0);
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == nullptr);
}

TEST_F(ViewTest, RecordingAPaletteMakesNoCall)
{
    const RecordingSurface recording(View::_primary);
    _view->SetPalette(zelxxx::zelCreatePalette(nullptr));
    EXPECT_THAT(recording.Calls(), IsEmpty());
    _view->SetPalette(nullptr);
}

TEST_F(ViewTest, DestroyingAViewLeavesTheDisplay)
{
    IDirectFBSurface* primary = View::_primary;
    _view = nullptr;
    EXPECT_EQ(View::_primary, primary);
    Flip();
    EXPECT_EQ(_engine.Display().Facts().shown, 1U);
}

// ---- Waiting for the layer

int busy_answers;
decltype(IDirectFB::GetDisplayLayer) real_get_display_layer;

TEST_F(ViewTest, BusyLayerIsAskedForAgainAtOnce)
{
    zelxxx::zelUninitialize();
    real_get_display_layer = View::_dfb->GetDisplayLayer;
    busy_answers = 2;
    View::_dfb->GetDisplayLayer = [](IDirectFB* dfb, DFBDisplayLayerID id,
                                     IDirectFBDisplayLayer** layer) {
        return busy_answers-- > 0 ? DFB_TEMPUNAVAIL : real_get_display_layer(dfb, id, layer);
    };
    testing::internal::CaptureStderr();
    zelxxx::zelInitialize(64, 48, 32);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "GetDisplayLayer temporarily failed, try again!"
              "GetDisplayLayer temporarily failed, try again!");
    EXPECT_EQ(busy_answers, -1);
    EXPECT_NE(View::_primary, nullptr);
    View::_dfb->GetDisplayLayer = real_get_display_layer;
}

// ---- Subtitles under full frames

/** A display and a back buffer of exactly the size that subtitles are composited under. */
class ViewSubtitles : public testing::Test
{
protected:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 720;

    void FillSubtitles(zelxxx::UInt8 a, zelxxx::UInt8 r, zelxxx::UInt8 g, zelxxx::UInt8 b, int x,
                       int y, int w, int h)
    {
        IDirectFBSurface* subtitles = zelxxx::zelGetSubtitleSurface();
        subtitles->SetColor(subtitles, r, g, b, a);
        subtitles->FillRectangle(subtitles, x, y, w, h);
    }

    EngineDisplay _engine{kWidth, kHeight};
    PView _view = zelCreateView(0, kWidth, kHeight, Color32Bit, false);
    PCanvas _back = zelCreateCanvas(kWidth, kHeight, Color32Bit);
};

TEST_F(ViewSubtitles, ShowThroughWhereTheFrameIsTransparent)
{
    FillSubtitles(255, 0, 200, 0, 0, 0, 720, 576);
    _back->Clear(0, 0, kWidth, kHeight, 0, 0);
    _back->Clear(0, 0, 640, 720, 0xff0000, 255);
    _view->Copy(0, 0, _back, 0, 0, kWidth, kHeight);
    const ArgbImage shot = _engine.Shot();
    EXPECT_TRUE(AreaHasColor(shot, 0, 0, 640, 720, 0xffff0000));
    EXPECT_TRUE(AreaHasColor(shot, 640, 0, 1280, 720, 0xff00c800));
}

TEST_F(ViewSubtitles, AreStretchedToTheFrame)
{
    FillSubtitles(255, 0, 0, 200, 360, 288, 360, 288);
    _back->Clear(0, 0, kWidth, kHeight, 0, 0);
    _view->Copy(0, 0, _back, 0, 0, kWidth, kHeight);
    const ArgbImage shot = _engine.Shot();
    EXPECT_TRUE(AreaHasColor(shot, 641, 361, 1280, 720, 0xff0000c8));
    EXPECT_TRUE(AreaHasColor(shot, 0, 0, 639, 720, 0));
    EXPECT_TRUE(AreaHasColor(shot, 0, 0, 1280, 359, 0));
}

TEST_F(ViewSubtitles, LieUnderATranslucentFrame)
{
    FillSubtitles(255, 0, 200, 0, 0, 0, 720, 576);
    _back->Clear(0, 0, kWidth, kHeight, 0x400000, 128);
    _view->Copy(0, 0, _back, 0, 0, kWidth, kHeight);
    // Destination over source: the frame's red as it is, the subtitles by what alpha leaves them.
    const std::uint32_t pixel = _engine.Shot().At(600, 300);
    EXPECT_GE(pixel >> 24, 254U);
    EXPECT_EQ(pixel >> 16 & 0xff, 0x40U);
    EXPECT_NEAR(static_cast<double>(pixel >> 8 & 0xff), 200 * 127 / 255.0, 1.0);
}

TEST_F(ViewSubtitles, FirstFrameShowsNothingUnder)
{
    ArgbImage frame(kWidth, kHeight, 0);
    frame.At(3, 4) = 0x80123456;
    frame.At(1279, 719) = 0x01ffffff;
    SetPixels(SurfaceOf(_back), frame);
    _view->Copy(0, 0, _back, 0, 0, kWidth, kHeight);
    EXPECT_TRUE(SamePicture(_engine.Shot(), frame));
}

TEST_F(ViewSubtitles, IgnoreTheClipAPainterLeft)
{
    FillSubtitles(255, 0, 200, 0, 0, 0, 720, 576);
    _back->Clear(0, 0, kWidth, kHeight, 0, 0);
    const DFBRegion clip = {0, 0, 99, 99};
    SurfaceOf(_back)->SetClip(SurfaceOf(_back), &clip);
    _view->Copy(0, 0, _back, 0, 0, kWidth, kHeight);
    EXPECT_TRUE(AreaHasColor(_engine.Shot(), 0, 0, 1280, 720, 0xff00c800));
}

TEST_F(ViewSubtitles, AnyOtherSizeHasNone)
{
    FillSubtitles(255, 0, 200, 0, 0, 0, 720, 576);
    _back->Clear(0, 0, kWidth, kHeight, 0, 0);
    _view->Clear(0, 0, 0, 0, 0, 0);
    const RecordingSurface recording(SurfaceOf(_back));
    _view->Copy(0, 0, _back, 0, 0, 1280, 719);
    _view->Copy(0, 0, _back, 0, 0, 1279, 720);
    _view->Copy(0, 0, _back, 0, 0, 720, 576);
    EXPECT_THAT(recording.Calls(), IsEmpty());
    EXPECT_TRUE(AreaHasColor(_engine.Shot(), 0, 0, 1280, 720, 0));
}

TEST_F(ViewSubtitles, CompositingLeavesTheDestinationOverRule)
{
    CallLog log;
    NameInLogs(SurfaceOf(_back), "back");
    NameInLogs(zelxxx::zelGetSubtitleSurface(), "subtitles");
    const RecordingSurface back(SurfaceOf(_back), log, "back ");
    const RecordingSurface primary(View::_primary, log, "primary ");
    _view->Copy(2, 3, _back, 0, 0, kWidth, kHeight);
    EXPECT_THAT(log, ElementsAre("back SetBlittingFlags(BLEND_ALPHACHANNEL)",
                                 "back SetPorterDuff(DST_OVER)", "back SetClip(null)",
                                 "back StretchBlit(subtitles, null, [2 3 1280 720])",
                                 "back SetBlittingFlags(NOFX)",
                                 "primary Blit(back, [0 0 1280 720], 2, 3)",
                                 "primary Flip(null, NONE)"));
}

} // namespace
