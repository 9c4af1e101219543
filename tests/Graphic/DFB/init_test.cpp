/** The library's entry: what the first and later initialisations and the end of it all do. */
#include "DFB/view.h"
#include "call_recorder.h"
#include "dfb_failure.h"
#include "display_fixture.h"
#include "platform_log.h"
#include "recording_surface.h"

#include <memory>
#include <ostream>
#include <string>

#include <dlfcn.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::PixelFormat;
using kestrin_test::CallLog;
using kestrin_test::CallRecorder;
using kestrin_test::PlatformLog;
using kestrin_test::RecordingSurface;
using kestrin_test::TestDisplay;
using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using zelxxx::View;
using zelxxx::zelInitialize;
using zelxxx::zelInitOSD;
using zelxxx::zelUninitialize;

namespace {

int directfb_inits = 0;
int directfb_creates = 0;

template <class Function>
Function* RealFunction(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// DirectFB's two entry functions are counted on the way to the real ones.
extern "C" {

DFBResult DirectFBInit(int* argc, char*** argv)
{
    ++directfb_inits;
    return RealFunction<DFBResult(int*, char***)>("DirectFBInit")(argc, argv);
}

DFBResult DirectFBCreate(IDirectFB** dfb)
{
    ++directfb_creates;
    return RealFunction<DFBResult(IDirectFB**)>("DirectFBCreate")(dfb);
}

} // extern "C"

namespace {

class Init : public testing::Test
{
protected:
    TestDisplay _display{320, 200};
};

TEST_F(Init, FirstInitialisationTakesEverything)
{
    EXPECT_TRUE(zelInitialize(320, 200, 32));
    EXPECT_EQ(View::_init_count, 1);
    EXPECT_NE(View::_dfb, nullptr);
    EXPECT_NE(View::_layer, nullptr);
    EXPECT_NE(View::_primary, nullptr);
    EXPECT_NE(View::_surface_subtitle, nullptr);
    EXPECT_EQ(View::_palette, nullptr);
    EXPECT_EQ(directfb_inits, 1);
    EXPECT_EQ(directfb_creates, 1);
}

TEST_F(Init, LaterInitialisationsOnlyRaiseTheCount)
{
    zelInitialize(320, 200, 32);
    IDirectFBDisplayLayer* layer = View::_layer;
    IDirectFBSurface* primary = View::_primary;
    IDirectFBSurface* subtitles = View::_surface_subtitle;
    EXPECT_TRUE(zelInitialize(160, 100, 8));
    EXPECT_TRUE(zelInitOSD(160, 100, 8));
    EXPECT_EQ(View::_init_count, 3);
    EXPECT_EQ(View::_layer, layer);
    EXPECT_EQ(View::_primary, primary);
    EXPECT_EQ(View::_surface_subtitle, subtitles);
    EXPECT_EQ(_display.Facts().width, 320U);
    EXPECT_EQ(_display.Facts().format, PixelFormat::Argb);
}

TEST_F(Init, OneUninitialiseUndoesThreeInitialisations)
{
    for (int i = 0; i < 3; ++i)
        zelInitialize(320, 200, 32);
    zelUninitialize();
    EXPECT_EQ(View::_init_count, 0);
    EXPECT_EQ(View::_layer, nullptr);
    EXPECT_EQ(View::_primary, nullptr);
    EXPECT_EQ(View::_surface_subtitle, nullptr);
    EXPECT_NE(View::_dfb, nullptr);
}

TEST_F(Init, ReleaseOsdDoesTheSame)
{
    zelInitOSD(320, 200, 32);
    zelInitOSD(320, 200, 32);
    zelxxx::zelReleaseOSD();
    EXPECT_EQ(View::_init_count, 0);
    EXPECT_EQ(View::_primary, nullptr);
}

TEST_F(Init, UninitialiseReleasesTheDisplaysPalette)
{
    zelInitialize(320, 200, 8);
    zelxxx::PView view = zelxxx::zelCreateView(0, 320, 200, zelxxx::Color8Bit, false);
    zelxxx::PaletteEntry entries[256] = {};
    view->SetPalette(zelxxx::zelCreatePalette(entries), 256, 256, 256);
    ASSERT_NE(View::_palette, nullptr);
    zelUninitialize();
    EXPECT_EQ(View::_palette, nullptr);
}

TEST_F(Init, UninitialiseBeforeTheStartIsHarmless)
{
    zelUninitialize();
    EXPECT_EQ(View::_init_count, 0);
    EXPECT_EQ(View::_dfb, nullptr);
}

TEST_F(Init, SecondStartGetsTheDisplayAgainWithoutCreatingDirectFB)
{
    zelInitialize(320, 200, 32);
    IDirectFB* dfb = View::_dfb;
    zelUninitialize();
    zelInitialize(160, 100, 8);
    EXPECT_EQ(View::_init_count, 1);
    EXPECT_EQ(View::_dfb, dfb);
    EXPECT_EQ(directfb_inits, 1);
    EXPECT_EQ(directfb_creates, 1);
    EXPECT_NE(View::_primary, nullptr);
    EXPECT_NE(View::_surface_subtitle, nullptr);
    EXPECT_EQ(_display.Facts().width, 160U);
    EXPECT_EQ(_display.Facts().height, 100U);
    EXPECT_EQ(_display.Facts().format, PixelFormat::Lut8);
    EXPECT_EQ(_display.Facts().shown, 1U);
}

TEST_F(Init, UninitialiseWritesOneLine)
{
    zelInitialize(320, 200, 32);
    testing::internal::CaptureStdout();
    zelUninitialize();
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("Kestrin====>>>>, DFBUnInitialize:[0-9]+, initCount=0\n"));
}

TEST_F(Init, CategoryIsCreatedOnce)
{
    zelInitialize(320, 200, 32);
    ASSERT_EQ(PlatformLog::Categories().size(), 1U);
    EXPECT_EQ(PlatformLog::Categories()[0].name, "Kestrin");
    EXPECT_EQ(PlatformLog::Categories()[0].flags, 0U);
    EXPECT_EQ(PlatformLog::Categories()[0].description, "kestrin debug");
    EXPECT_NE(zelxxx::kestrin_debug, nullptr);

    zelInitialize(320, 200, 32);
    zelUninitialize();
    zelInitialize(320, 200, 32);
    EXPECT_EQ(PlatformLog::Categories().size(), 1U);
}

TEST_F(Init, InitOsdCreatesNoCategory)
{
    zelInitOSD(320, 200, 32);
    EXPECT_THAT(PlatformLog::Categories(), IsEmpty());
    EXPECT_EQ(zelxxx::kestrin_debug, nullptr);
}

TEST_F(Init, CountIsLoggedAtTheFirstInitialisationAndTheEnd)
{
    PlatformLog::SetThreshold(4);
    zelInitialize(320, 200, 32);
    zelInitialize(320, 200, 32);
    EXPECT_THAT(PlatformLog::Texts(), ElementsAre("_init_count:1\n"));
    zelUninitialize();
    EXPECT_THAT(PlatformLog::Texts(), ElementsAre("_init_count:1\n", "_init_count:0\n"));
    for (const kestrin_test::LoggedMessage& message : PlatformLog::Messages()) {
        EXPECT_EQ(message.level, 4);
        EXPECT_EQ(message.file, "Graphic/DFB/view.cpp");
        EXPECT_EQ(message.category, zelxxx::kestrin_debug);
    }
    EXPECT_EQ(PlatformLog::Messages()[0].function, "DFBInitialize");
    EXPECT_EQ(PlatformLog::Messages()[1].function, "DFBUnInitialize");
}

TEST_F(Init, BelowLevelFourTheCountIsNotLogged)
{
    PlatformLog::SetThreshold(3);
    zelInitialize(320, 200, 32);
    zelUninitialize();
    EXPECT_THAT(PlatformLog::Messages(), IsEmpty());
}

TEST_F(Init, SinkOfErrorTextWritesNothing)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    zelxxx::zelError(zelxxx::EGraphicFailure(5, zelxxx::EGraphicFailure::CreateFont));
    zelxxx::zelDebugMessage("text");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Init, GettersAnswerNothingBeforeTheStart)
{
    EXPECT_EQ(zelxxx::zelGetDFBHandle(), nullptr);
    EXPECT_EQ(zelxxx::zelGetDFBPhyAddr(), 0UL);
    EXPECT_EQ(zelxxx::zelGetSubtitleSurface(), nullptr);
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == nullptr);
}

TEST_F(Init, GettersAnswerTheProcessesObjects)
{
    zelInitialize(320, 200, 32);
    EXPECT_EQ(zelxxx::zelGetDFBHandle(), View::_dfb);
    EXPECT_EQ(zelxxx::zelGetSubtitleSurface(), View::_surface_subtitle);
    EXPECT_EQ(zelxxx::zelGetDFBPhyAddr(), View::_phyaddr);
}

TEST_F(Init, PhysicalAddressIsThatOfThePrimarySurface)
{
    zelInitialize(320, 200, 32);
    unsigned long address = 0;
    void* data = nullptr;
    int pitch = 0;
    ASSERT_EQ(View::_primary->Lock(View::_primary, DSLF_READ, &data, &pitch), DFB_OK);
    ASSERT_EQ(View::_primary->GetPhysicalAddress(View::_primary, &address), DFB_OK);
    ASSERT_EQ(View::_primary->Unlock(View::_primary), DFB_OK);
    EXPECT_NE(address, 0UL);
    EXPECT_EQ(zelxxx::zelGetDFBPhyAddr(), address);
}

TEST_F(Init, LayerIsVisibleFromTheStart)
{
    zelInitialize(320, 200, 32);
    View::_primary->Flip(View::_primary, nullptr, DSFLIP_NONE);
    EXPECT_EQ(_display.Facts(1).opacity, 255U);
    EXPECT_EQ(_display.Facts(1).shown, 1U);
}

TEST_F(Init, SubtitleSurfaceHasItsOwnSizeAndIsTransparent)
{
    zelInitialize(320, 200, 8);
    IDirectFBSurface* subtitles = zelxxx::zelGetSubtitleSurface();
    int width = 0;
    int height = 0;
    DFBSurfacePixelFormat format = DSPF_UNKNOWN;
    DFBSurfaceCapabilities caps = DSCAPS_ALL;
    subtitles->GetSize(subtitles, &width, &height);
    subtitles->GetPixelFormat(subtitles, &format);
    subtitles->GetCapabilities(subtitles, &caps);
    EXPECT_EQ(width, 720);
    EXPECT_EQ(height, 576);
    EXPECT_EQ(format, DSPF_ARGB);
    EXPECT_EQ(caps & (DSCAPS_PREMULTIPLIED | DSCAPS_DOUBLE | DSCAPS_PRIMARY), 0);
}

struct ModeCase
{
    zelxxx::UInt8 mode;
    PixelFormat format;
};

void PrintTo(const ModeCase& value, std::ostream* out)
{
    *out << int{value.mode} << " bits";
}

class InitMode : public testing::TestWithParam<ModeCase>
{
};

TEST_P(InitMode, DecidesTheLayersFormat)
{
    const TestDisplay display(320, 200);
    zelInitialize(300, 180, GetParam().mode);
    EXPECT_EQ(display.Facts(1).format, GetParam().format);
    EXPECT_EQ(display.Facts(1).width, 300U);
    EXPECT_EQ(display.Facts(1).height, 180U);
}

INSTANTIATE_TEST_SUITE_P(
    ColorModes, InitMode,
    testing::Values(ModeCase{8, PixelFormat::Lut8}, ModeCase{1, PixelFormat::Argb},
                    ModeCase{4, PixelFormat::Argb}, ModeCase{16, PixelFormat::Argb},
                    ModeCase{24, PixelFormat::Argb}, ModeCase{32, PixelFormat::Argb}));

// ---- The order of DirectFB calls
// -----------------------------------------------------------------

// What the start is recorded with. The layer and its surface are met on the way.
CallLog start_log;
std::unique_ptr<CallRecorder<IDirectFBDisplayLayer>> layer_recorder;
std::unique_ptr<RecordingSurface> primary_recorder;
decltype(IDirectFB::GetDisplayLayer) real_get_display_layer;
decltype(IDirectFBDisplayLayer::GetSurface) real_get_surface;

DFBResult GetSurfaceAndRecord(IDirectFBDisplayLayer* layer, IDirectFBSurface** surface)
{
    const DFBResult result = real_get_surface(layer, surface);
    primary_recorder = std::make_unique<RecordingSurface>(*surface, start_log, "primary ");
    return result;
}

DFBResult GetDisplayLayerAndRecord(IDirectFB* dfb, DFBDisplayLayerID id,
                                   IDirectFBDisplayLayer** layer)
{
    const DFBResult result = real_get_display_layer(dfb, id, layer);
    real_get_surface = (*layer)->GetSurface;
    (*layer)->GetSurface = GetSurfaceAndRecord;
    layer_recorder =
        std::make_unique<CallRecorder<IDirectFBDisplayLayer>>(*layer, start_log, "layer ");
#define WATCH(operation) layer_recorder->Watch<&IDirectFBDisplayLayer::operation>(#operation)
    WATCH(SetCooperativeLevel);
    WATCH(GetConfiguration);
    WATCH(SetConfiguration);
    WATCH(GetSurface);
    WATCH(SetOpacity);
#undef WATCH
    return result;
}

TEST_F(Init, DisplayIsTakenInThisOrder)
{
    // DirectFB stays after the end, so its objects can be prepared for the second start.
    zelInitialize(320, 200, 32);
    zelUninitialize();
    real_get_display_layer = View::_dfb->GetDisplayLayer;
    View::_dfb->GetDisplayLayer = GetDisplayLayerAndRecord;
    {
        CallRecorder<IDirectFB> dfb(View::_dfb, start_log);
        dfb.Watch<&IDirectFB::GetDisplayLayer>("GetDisplayLayer");
        dfb.Watch<&IDirectFB::CreateSurface>("CreateSurface");
        dfb.Watch<&IDirectFB::SetCooperativeLevel>("SetCooperativeLevel");
        zelInitialize(300, 180, 8);
    }
    layer_recorder.reset();
    primary_recorder.reset();

    EXPECT_THAT(start_log,
                ElementsAre("GetDisplayLayer(1, out)", "layer SetCooperativeLevel(EXCLUSIVE)",
                            "layer GetConfiguration(out)",
                            "layer SetConfiguration({flags 7, 300x180, LUT8})",
                            "layer GetSurface(out)", "layer SetOpacity(255)",
                            "primary Lock(READ, out, out)", "primary GetPhysicalAddress(out)",
                            "primary Unlock()", "CreateSurface({flags 14, 720x576, ARGB}, out)"));
}

} // namespace
