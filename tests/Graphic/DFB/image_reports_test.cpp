/**
 * What is reported when a DirectFB call of an image, or of a painter that draws one, fails: each
 * call is made to fail in a child process, which then ends in DirectFB's own fatal report.
 */
#include "image_support.h"
#include "nrv2b_stream.h"
#include "report_case.h"
#include "temp_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::ExitsWith;
using kestrin_test::FailCall;
using kestrin_test::kInjected;
using kestrin_test::MemoryImage;
using kestrin_test::NameOfCase;
using kestrin_test::PlainImageFile;
using kestrin_test::ReportCase;
using kestrin_test::Reports;
using kestrin_test::ReportTest;
using kestrin_test::SurfaceOf;
using namespace zelxxx;

namespace {

constexpr char kImage[] = "Graphic/DFB/image.cpp";
constexpr char kPainter[] = "Graphic/DFB/painter.cpp";

class ImageReport : public ReportTest
{
};

TEST_P(ImageReport, HasTheCallsOwnText)
{
    ExpectTheCallsOwnText();
}

void Start(ColorMode mode)
{
    zelInitialize(64, 48, static_cast<UInt8>(mode));
}

using S = IDirectFBSurface;

decltype(IDirectFB::CreateSurface) real_create_surface;
void (*prepare_surface)(IDirectFBSurface*);

/** From now on surfaces are made in which a call fails after so many that do their work. */
template <auto Operation, int Successes = 0>
void FailInNewSurfaces()
{
    prepare_surface = [](IDirectFBSurface* s) { FailCall<Operation>(s, Successes); };
    real_create_surface = View::_dfb->CreateSurface;
    View::_dfb->CreateSurface = [](IDirectFB* dfb, const DFBSurfaceDescription* description,
                                   IDirectFBSurface** surface) {
        const DFBResult result = real_create_surface(dfb, description, surface);
        prepare_surface(*surface);
        return result;
    };
}

void ReadFile()
{
    const kestrin_test::TempDirectory directory;
    const PImage image(
        zelCreateImage(directory.Write("image", PlainImageFile(3, 1, 1, "abc")).c_str()));
    kestrin_test::PaintedOn(Color8Bit, image, 0, 3, 1);
}

template <auto Operation>
void FailRead()
{
    Start(Color8Bit);
    FailInNewSurfaces<Operation>();
    ReadFile();
}

/** Fails in the frame of an image that is cleared, or given data when `data` says so. */
template <auto Operation, int Successes = 0>
void FailFrame(ColorMode color_mode, bool data)
{
    Start(Color8Bit);
    FailInNewSurfaces<Operation, Successes>();
    const PImage image = MemoryImage(Color8Bit, 2, 1, {1, 2}, UseFrameBuffer);
    UInt32 pixel = 0;
    if (data)
        image->SetImageData(&pixel, 4, 0, 0, 1, 1, color_mode);
    else
        image->ImageClear(color_mode, 0, 0, 1, 1, 5, 255);
}

/** Fails on a canvas that a picture in memory is painted on. */
template <auto Operation>
void FailCanvas(BlendMode blend_mode)
{
    Start(Color8Bit);
    const PCanvas canvas(zelCreateCanvas(4, 4, Color8Bit));
    const PImage image = MemoryImage(Color8Bit, 2, 1, {1, 2});
    FailCall<Operation>(SurfaceOf(canvas));
    SideOf<Image>(static_cast<IImage*>(image))
        ->PaintToSurface(SurfaceOf(canvas), 0, 0, 0, 2, 1, 0, 0, blend_mode);
}

/** Fails in the scratch surface of a picture in memory. */
template <auto Operation>
void FailScratch()
{
    Start(Color8Bit);
    const PCanvas canvas(zelCreateCanvas(4, 4, Color8Bit));
    const PImage image = MemoryImage(Color8Bit, 2, 1, {1, 2});
    FailInNewSurfaces<Operation>();
    SideOf<Image>(static_cast<IImage*>(image))
        ->PaintToSurface(SurfaceOf(canvas), 0, 0, 0, 2, 1, 0, 0, BlendSrcOver);
}

constexpr char kCreate[] = "View::_dfb->CreateSurface(View::_dfb, &dsc, &img_surf)";
constexpr char kDrawingFlags[] = "img_surf->SetDrawingFlags(img_surf, DSDRAW_BLEND)";
constexpr char kLock[] = "img_surf->Lock(img_surf, DSLF_WRITE, &surf_data, &ret_pitch)";
constexpr char kUnlock[] = "img_surf->Unlock(img_surf)";

const ReportCase kFileCases[] = {
    {"Create", kImage, kCreate,
     [] {
         Start(Color8Bit);
         FailCall<&IDirectFB::CreateSurface>(View::_dfb);
         ReadFile();
     }},
    {"Flags", kImage, kDrawingFlags, FailRead<&S::SetDrawingFlags>},
    {"Lock", kImage, kLock, FailRead<&S::Lock>},
    {"Unlock", kImage, kUnlock, FailRead<&S::Unlock>},
    {"ColourKey", kImage,
     "info->surf->SetSrcColorKey(info->surf, info->colorkey & 0xff, "
     "(info->colorkey & 0xff00) >> 8, (info->colorkey & 0xff0000) >> 16)",
     FailRead<&S::SetSrcColorKey>},
    {"Blit", kImage, "surface->Blit(surface, info->surf, &rect, x, y)", FailRead<&S::Blit>},
};
INSTANTIATE_TEST_SUITE_P(File, ImageReport, testing::ValuesIn(kFileCases), NameOfCase);

const ReportCase kMemoryCases[] = {
    {"ClearColour", kImage,
     "_frames[0].surf->SetColor(_frames[0].surf, (color & 0xff0000) >> 16, "
     "(color & 0x00ff00) >> 8, color & 0x0000ff, (blend))",
     [] { FailFrame<&S::SetColor>(Color32Bit, false); }},
    {"ClearIndex", kImage, "_frames[0].surf->SetColorIndex(_frames[0].surf, color)",
     [] { FailFrame<&S::SetColorIndex>(Color8Bit, false); }},
    {"ClearFill", kImage, "_frames[0].surf->FillRectangle(_frames[0].surf, x, y, w, h)",
     [] { FailFrame<&S::FillRectangle>(Color8Bit, false); }},
    {"DataLock", kImage,
     "_frames[0].surf->Lock(_frames[0].surf, DSLF_WRITE, &surf_data, &ret_pitch)",
     [] { FailFrame<&S::Lock, 1>(Color8Bit, true); }},
    {"DataUnlock", kImage, "_frames[0].surf->Unlock(_frames[0].surf)",
     [] { FailFrame<&S::Unlock, 1>(Color8Bit, true); }},
    {"FrameLock", kImage, kLock, [] { FailFrame<&S::Lock>(Color8Bit, true); }},
    {"CopyLock", kImage, "surface->Lock(surface, DSLF_WRITE, &surf_data, &ret_pitch)",
     [] { FailCanvas<&S::Lock>(BlendSrcCopy); }},
    {"CopyUnlock", kImage, "surface->Unlock(surface)",
     [] { FailCanvas<&S::Unlock>(BlendSrcCopy); }},
    {"ScratchBlit", kImage, "surface->Blit(surface, img_surf, &rect, x, y)",
     [] { FailCanvas<&S::Blit>(BlendSrcOver); }},
    {"ScratchFlags", kImage, kDrawingFlags, FailScratch<&S::SetDrawingFlags>},
    {"ScratchLock", kImage, kLock, FailScratch<&S::Lock>},
    {"ScratchUnlock", kImage, kUnlock, FailScratch<&S::Unlock>},
    {"ScratchKey", kImage, "img_surf->SetSrcColorKey(img_surf, 0, 0, 0)",
     FailScratch<&S::SetSrcColorKey>},
};
INSTANTIATE_TEST_SUITE_P(Memory, ImageReport, testing::ValuesIn(kMemoryCases), NameOfCase);

template <auto Operation, int Successes = 0>
void FailPainter(BlendMode blend_mode)
{
    Start(Color32Bit);
    const PCanvas canvas(zelCreateCanvas(4, 4, Color32Bit));
    const ZELObjPtr<IPainter> painter(zelCreatePainter(canvas));
    const PImage image = MemoryImage(Color32Bit, 1, 1, {1, 2, 3, 4});
    FailCall<Operation>(SurfaceOf(canvas), Successes);
    painter->DrawImage(image, 0, 0, 0, 1, 1, 0, 0, 1, 1, 128, blend_mode);
}

constexpr char kBlitFlags[] = "_canvas_surface->SetBlittingFlags(_canvas_surface, blitflag)";

const ReportCase kPainterCases[] = {
    {"OverFlags", kPainter, kBlitFlags, [] { FailPainter<&S::SetBlittingFlags>(BlendSrcOver); }},
    {"OtherFlags", kPainter, kBlitFlags, [] { FailPainter<&S::SetBlittingFlags>(BlendSrcCopy); }},
    {"Opacity", kPainter, "_canvas_surface->SetColor(_canvas_surface, 0, 0, 0, blend)",
     [] { FailPainter<&S::SetColor>(BlendSrcOver); }},
    {"FlagsReset", kPainter, "_canvas_surface->SetBlittingFlags(_canvas_surface, DSBLIT_NOFX)",
     [] { FailPainter<&S::SetBlittingFlags, 1>(BlendSrcOver); }},
};
INSTANTIATE_TEST_SUITE_P(Painter, ImageReport, testing::ValuesIn(kPainterCases), NameOfCase);

TEST_F(ImageReport, SideBeyondDirectFBsIsReported)
{
    EXPECT_EXIT(
        {
            Start(Color8Bit);
            const kestrin_test::TempDirectory directory;
            zelCreateImage(
                directory.Write("image", PlainImageFile(30000, 1, 1, std::string(30000, 'x')))
                    .c_str());
        },
        ExitsWith(DFB_INVARG), Reports(kImage, kCreate, DFB_INVARG));
}

TEST_F(ImageReport, ClearOfNothingEndsTheProcess)
{
    EXPECT_EXIT(
        {
            Start(Color8Bit);
            MemoryImage(Color8Bit, 2, 1, {1, 2}, UseFrameBuffer)
                ->ImageClear(Color8Bit, 0, 0, 0, 1, 5, 255);
        },
        ExitsWith(DFB_INVARG),
        Reports(kImage, "_frames[0].surf->FillRectangle(_frames[0].surf, x, y, w, h)", DFB_INVARG));
}

} // namespace
