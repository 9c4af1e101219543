/**
 * What is reported when a DirectFB call of the display, of a canvas or of a painter fails: each
 * call is made to fail in a child process, which then ends in DirectFB's own fatal report.
 */
#include "DFB/canvas.h"
#include "DFB/font.h"
#include "DFB/painter.h"
#include "DFB/view.h"
#include "report_case.h"
#include "surface_of.h"
#include "test_font.h"

#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::ExitsWith;
using kestrin_test::FailCall;
using kestrin_test::kInjected;
using kestrin_test::NameOfCase;
using kestrin_test::ReportCase;
using kestrin_test::Reports;
using kestrin_test::ReportTest;
using kestrin_test::SurfaceOf;
using kestrin_test::TestDisplay;
using zelxxx::BlendMode;
using zelxxx::BlendSrcCopy;
using zelxxx::BlendSrcOver;
using zelxxx::CharMetrics;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::ColorMode;
using zelxxx::Font;
using zelxxx::FontRegular;
using zelxxx::NoBlit;
using zelxxx::Painter;
using zelxxx::PCanvas;
using zelxxx::View;
using zelxxx::zelCreateCanvas;
using zelxxx::zelCreatePainter;
using zelxxx::zelInitialize;

namespace {

constexpr char kView[] = "Graphic/DFB/view.cpp";
constexpr char kCanvas[] = "Graphic/DFB/canvas.cpp";
constexpr char kPainter[] = "Graphic/DFB/painter.cpp";

using PFont = zelxxx::ZELObjPtr<zelxxx::IFont>;

class Report : public ReportTest
{
};

TEST_P(Report, HasTheCallsOwnText)
{
    ExpectTheCallsOwnText();
}

// ---- Display

/** DirectFB stays after the end, so that the next start meets prepared objects. */
void StartAndEnd()
{
    zelInitialize(64, 48, 32);
    zelxxx::zelUninitialize();
}

decltype(IDirectFB::GetDisplayLayer) real_get_display_layer;
decltype(IDirectFBDisplayLayer::GetSurface) real_get_surface;
void (*prepare_layer)(IDirectFBDisplayLayer*);
void (*prepare_primary)(IDirectFBSurface*);

/** Starts with a layer that was prepared when it was taken. */
void StartWithLayer(void (*prepare)(IDirectFBDisplayLayer*))
{
    StartAndEnd();
    prepare_layer = prepare;
    real_get_display_layer = View::_dfb->GetDisplayLayer;
    View::_dfb->GetDisplayLayer = [](IDirectFB* dfb, DFBDisplayLayerID id,
                                     IDirectFBDisplayLayer** layer) {
        const DFBResult result = real_get_display_layer(dfb, id, layer);
        prepare_layer(*layer);
        return result;
    };
    zelInitialize(64, 48, 32);
}

/** Starts with a primary surface that was prepared when it was taken. */
void StartWithPrimary(void (*prepare)(IDirectFBSurface*))
{
    prepare_primary = prepare;
    StartWithLayer([](IDirectFBDisplayLayer* layer) {
        real_get_surface = layer->GetSurface;
        layer->GetSurface = [](IDirectFBDisplayLayer* self, IDirectFBSurface** surface) {
            const DFBResult result = real_get_surface(self, surface);
            prepare_primary(*surface);
            return result;
        };
    });
}

/** Presents a part of a canvas on a display whose primary surface was prepared. */
void Present(void (*prepare)(IDirectFBSurface*))
{
    zelInitialize(64, 48, 32);
    prepare(View::_primary);
    const zelxxx::PView view = zelxxx::zelCreateView(0, 64, 48, Color32Bit, false);
    const PCanvas canvas = zelCreateCanvas(8, 8, Color32Bit);
    view->Copy(0, 0, canvas, 0, 0, 8, 8);
}

const ReportCase kViewCases[] = {
    {"GetDisplayLayer", kView, "GetDisplayLayer",
     [] {
         StartAndEnd();
         FailCall<&IDirectFB::GetDisplayLayer>(View::_dfb);
         zelInitialize(64, 48, 32);
     }},
    {"SetConfiguration", kView, "_layer->SetConfiguration(_layer, &layer_config)",
     [] {
         StartWithLayer([](IDirectFBDisplayLayer* layer) {
             FailCall<&IDirectFBDisplayLayer::SetConfiguration>(layer);
         });
     }},
    {"Lock", kView, "_primary->Lock(_primary, DSLF_READ, &viraddr, &pitch)",
     [] { StartWithPrimary([](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::Lock>(s); }); }},
    {"GetPhysicalAddress", kView, "_primary->GetPhysicalAddress(_primary, &_phyaddr)",
     [] {
         StartWithPrimary(
             [](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::GetPhysicalAddress>(s); });
     }},
    {"Unlock", kView, "_primary->Unlock(_primary)",
     [] { StartWithPrimary([](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::Unlock>(s); }); }},
    {"CreateSubtitleSurface", kView,
     "View::_dfb->CreateSurface(View::_dfb, &dsc, &_surface_subtitle)",
     [] {
         StartAndEnd();
         FailCall<&IDirectFB::CreateSurface>(View::_dfb);
         zelInitialize(64, 48, 32);
     }},
    {"Blit", kView, "_primary->Blit(_primary, back, &rect, x, y)",
     [] { Present([](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::Blit>(s); }); }},
    {"Flip", kView, "_primary->Flip(_primary, NULL, DSFLIP_NONE)",
     [] { Present([](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::Flip>(s); }); }},
};
INSTANTIATE_TEST_SUITE_P(View, Report, testing::ValuesIn(kViewCases), NameOfCase);

TEST_F(Report, BusyLayerIsAskedForUntilItFailsOtherwise)
{
    EXPECT_EXIT(
        {
            StartAndEnd();
            static int calls = 0;
            View::_dfb->GetDisplayLayer = [](IDirectFB*, DFBDisplayLayerID,
                                             IDirectFBDisplayLayer**) {
                return calls++ < 2 ? DFB_TEMPUNAVAIL : kInjected;
            };
            zelInitialize(64, 48, 32);
        },
        ExitsWith(kInjected),
        testing::HasSubstr("GetDisplayLayer temporarily failed, try again!"
                           "GetDisplayLayer temporarily failed, try again!Graphic/DFB/view.cpp "));
}

TEST(ReportOfTheStart, DirectFBInit)
{
    setenv("DFBARGS", "system", 1);
    EXPECT_EXIT(zelInitialize(64, 48, 32), ExitsWith(DFB_INVARG),
                kestrin_test::ReportsAtLast(kView, "DirectFBInit(0, 0)", DFB_INVARG));
}

TEST(ReportOfTheStart, DirectFBCreate)
{
    setenv("DFBARGS", "remote=localhost:1,module-dir=/nonexistent", 1);
    EXPECT_EXIT(zelInitialize(64, 48, 32), ExitsWith(DFB_FILENOTFOUND),
                kestrin_test::ReportsAtLast(kView, "DirectFBCreate(&_dfb)", DFB_FILENOTFOUND));
}

// ---- Canvas

/** Clears a canvas whose surface was prepared. */
void Clear(ColorMode mode, void (*prepare)(IDirectFBSurface*))
{
    zelInitialize(64, 48, static_cast<zelxxx::UInt8>(mode));
    const PCanvas canvas = zelCreateCanvas(8, 8, mode);
    prepare(SurfaceOf(canvas));
    canvas->Clear(0, 0, 8, 8, 1, 255);
}

const ReportCase kCanvasCases[] = {
    {"CreateSurface", kCanvas, "View::_dfb->CreateSurface(View::_dfb, &dsc, &_back)",
     [] {
         zelInitialize(64, 48, 32);
         FailCall<&IDirectFB::CreateSurface>(View::_dfb);
         zelCreateCanvas(8, 8, Color32Bit);
     }},
    {"SetColor", kCanvas,
     "_back->SetColor(_back, (color & 0xff0000) >> 16, (color & 0x00ff00) >> 8, "
     "color & 0x0000ff, (blend))",
     [] {
         Clear(Color32Bit, [](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::SetColor>(s); });
     }},
    {"SetColorIndex", kCanvas, "_back->SetColorIndex(_back, color)",
     [] {
         Clear(Color8Bit,
               [](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::SetColorIndex>(s); });
     }},
    {"FillRectangle", kCanvas, "_back->FillRectangle(_back, x, y, w, h)",
     [] {
         Clear(Color32Bit,
               [](IDirectFBSurface* s) { FailCall<&IDirectFBSurface::FillRectangle>(s); });
     }},
    {"Blit", kCanvas, "_back->Blit(_back, back, &rect, x, y)",
     [] {
         zelInitialize(64, 48, 32);
         const PCanvas canvas = zelCreateCanvas(8, 8, Color32Bit);
         const PCanvas source = zelCreateCanvas(8, 8, Color32Bit);
         FailCall<&IDirectFBSurface::Blit>(SurfaceOf(canvas));
         canvas->Copy(0, 0, source, 0, 0, 8, 8);
     }},
};
INSTANTIATE_TEST_SUITE_P(Canvas, Report, testing::ValuesIn(kCanvasCases), NameOfCase);

TEST_F(Report, EmptyClearEndsTheProcess)
{
    EXPECT_EXIT(
        {
            zelInitialize(64, 48, 32);
            zelCreateCanvas(8, 8, Color32Bit)->Clear(0, 0, 0, 8, 0, 255);
        },
        ExitsWith(DFB_INVARG),
        Reports(kCanvas, "_back->FillRectangle(_back, x, y, w, h)", DFB_INVARG));
}

TEST_F(Report, CopyFromOutsideTheSourceEndsTheProcess)
{
    EXPECT_EXIT(
        {
            zelInitialize(64, 48, 32);
            const PCanvas source(zelCreateCanvas(8, 8, Color32Bit));
            zelCreateCanvas(8, 8, Color32Bit)->Copy(0, 0, source, 8, 0, 4, 4);
        },
        ExitsWith(DFB_INVAREA),
        Reports(kCanvas, "_back->Blit(_back, back, &rect, x, y)", DFB_INVAREA));
}

TEST_F(Report, PaletteIndexOnA32BitDisplayEndsTheProcess)
{
    EXPECT_EXIT(
        {
            zelInitialize(64, 48, 32);
            zelCreateCanvas(8, 8, Color8Bit)->Clear(0, 0, 8, 8, 3, 255);
        },
        ExitsWith(DFB_UNSUPPORTED),
        Reports(kCanvas, "_back->SetColorIndex(_back, color)", DFB_UNSUPPORTED));
}

// ---- Painter: rectangles

constexpr char kFill[] =
    "_canvas_surface->FillRectangle(_canvas_surface, left, top, right - left, bottom - top)";
constexpr char kSetColor[] = "_canvas_surface->SetColor(_canvas_surface, (color & 0xff), "
                             "(color & 0xff00) >> 8, (color & 0xff0000) >> 16, blend)";
constexpr char kSetColorIndex[] = "_canvas_surface->SetColorIndex(_canvas_surface, color)";
constexpr char kSourceOver[] = "_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC_OVER)";
constexpr char kNoRule[] = "_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_NONE)";
constexpr char kNoFlags[] = "_canvas_surface->SetDrawingFlags(_canvas_surface, DSDRAW_NOFX)";
constexpr char kTextFlags[] = "_canvas_surface->SetDrawingFlags(_canvas_surface, "
                              "(DFBSurfaceDrawingFlags)(DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY))";

/** A painter on a canvas of the display's own mode. */
struct Painting
{
    explicit Painting(ColorMode mode)
    {
        zelInitialize(64, 48, static_cast<zelxxx::UInt8>(mode));
        canvas = zelCreateCanvas(40, 30, mode);
        surface = SurfaceOf(canvas);
        painter = zelCreatePainter(canvas);
    }
    PCanvas canvas;
    IDirectFBSurface* surface;
    zelxxx::ZELObjPtr<zelxxx::IPainter> painter;
};

template <auto Operation>
void FailRectangle(ColorMode color_mode, BlendMode blend_mode, int successes,
                   zelxxx::BlitFlag flag = NoBlit)
{
    const Painting painting(color_mode);
    FailCall<Operation>(painting.surface, successes);
    painting.painter->DrawRectangle(1, 1, 5, 5, 60, 128, blend_mode, flag, 0);
}

using S = IDirectFBSurface;

const ReportCase kRectangleCases[] = {
    {"SetClipOfTheConstructor", kPainter, "_canvas_surface->SetClip(_canvas_surface, &clip_rect)",
     [] {
         const Painting painting(Color32Bit);
         FailCall<&S::SetClip>(painting.surface);
         zelCreatePainter(painting.canvas);
     }},
    {"ColourKeyFill", kPainter, kFill,
     [] {
         FailRectangle<&S::FillRectangle>(Color32Bit, BlendSrcOver, 0, zelxxx::Blit_SRC_COLORKEY);
     }},
    {"CopyFlags", kPainter, "_canvas_surface->SetDrawingFlags(_canvas_surface, DSDRAW_BLEND)",
     [] { FailRectangle<&S::SetDrawingFlags>(Color32Bit, BlendSrcCopy, 0); }},
    {"CopyRule", kPainter, "_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC)",
     [] { FailRectangle<&S::SetPorterDuff>(Color32Bit, BlendSrcCopy, 0); }},
    {"CopyColour", kPainter, kSetColor,
     [] { FailRectangle<&S::SetColor>(Color32Bit, BlendSrcCopy, 0); }},
    {"CopyIndex", kPainter, kSetColorIndex,
     [] { FailRectangle<&S::SetColorIndex>(Color8Bit, BlendSrcCopy, 0); }},
    {"CopyFill", kPainter, kFill,
     [] { FailRectangle<&S::FillRectangle>(Color32Bit, BlendSrcCopy, 0); }},
    {"OverFlags", kPainter,
     "_canvas_surface->SetDrawingFlags(_canvas_surface, (DFBSurfaceDrawingFlags)(DSDRAW_BLEND))",
     [] { FailRectangle<&S::SetDrawingFlags>(Color32Bit, BlendSrcOver, 0); }},
    {"OverRule", kPainter, kSourceOver,
     [] { FailRectangle<&S::SetPorterDuff>(Color32Bit, BlendSrcOver, 0); }},
    {"OverColour", kPainter, kSetColor,
     [] { FailRectangle<&S::SetColor>(Color32Bit, BlendSrcOver, 0); }},
    {"OverFill", kPainter, kFill,
     [] { FailRectangle<&S::FillRectangle>(Color32Bit, BlendSrcOver, 0); }},
    {"OverFlagsReset", kPainter, kNoFlags,
     [] { FailRectangle<&S::SetDrawingFlags>(Color32Bit, BlendSrcOver, 1); }},
    {"OverRuleReset", kPainter, kNoRule,
     [] { FailRectangle<&S::SetPorterDuff>(Color32Bit, BlendSrcOver, 1); }},
};
INSTANTIATE_TEST_SUITE_P(Rectangle, Report, testing::ValuesIn(kRectangleCases), NameOfCase);

TEST_F(Report, EmptyColourKeyFillEndsTheProcess)
{
    EXPECT_EXIT(
        {
            const Painting painting(Color32Bit);
            painting.painter->DrawRectangle(1, 1, 0, 5, 60, 128, BlendSrcOver,
                                            zelxxx::Blit_SRC_COLORKEY, 0);
        },
        ExitsWith(DFB_INVARG), Reports(kPainter, kFill, DFB_INVARG));
}

// ---- Painter: text

constexpr char kDrawString[] = "_canvas_surface->DrawString(_canvas_surface, &text, 1, x, y, "
                               "(DFBSurfaceTextFlags)(DSTF_LEFT | DSTF_TOP))";
constexpr char kDrawGlyph[] = "_canvas_surface->DrawGlyph(_canvas_surface, glyphindex, x, y, "
                              "(DFBSurfaceTextFlags)(DSTF_LEFT | DSTF_TOP))";
constexpr char kExtents[] =
    "cur_font->GetGlyphExtents(cur_font, glyphindex, &glyphrect, &glyphadvance)";

template <auto Operation>
void FailChar(BlendMode mode, int successes)
{
    const Painting painting(mode == BlendSrcOver ? Color32Bit : Color8Bit);
    const PFont font(new Font(kestrin_test::kSans.c_str()));
    FailCall<Operation>(painting.surface, successes);
    painting.painter->DrawChar('A', 1, 1, font, 12, FontRegular, 60, 128, mode, 1, 1);
}

template <auto Operation>
void FailString(int successes)
{
    const Painting painting(Color32Bit);
    FailCall<Operation>(painting.surface, successes);
    const zelxxx::WChar glyphs[] = {36};
    const PFont font(new Font(kestrin_test::kSans.c_str()));
    painting.painter->DrawString(glyphs, 1, 1, 1, font, 12, FontRegular, 60, 128, BlendSrcOver, 1);
}

/** Draws a bitmap glyph after the canvas and the scratch surface were prepared. */
void DrawGlyphBitmap(void (*prepare)(const Painting&))
{
    const Painting painting(Color32Bit);
    static zelxxx::UInt8 coverage[4] = {255, 255, 255, 255};
    const CharMetrics glyph = {2, 2, 2, 0, 2, coverage};
    const PFont font(new Font(kestrin_test::kSans.c_str()));
    prepare(painting);
    painting.painter->Draw32BitCharBitmap(&glyph, font, 12, 1, 1, 60, 255);
}

decltype(IDirectFB::CreateSurface) real_create_surface;

template <auto Operation>
void FailNewScratchSurface()
{
    zelInitialize(64, 48, 32);
    real_create_surface = View::_dfb->CreateSurface;
    View::_dfb->CreateSurface = [](IDirectFB* dfb, const DFBSurfaceDescription* description,
                                   IDirectFBSurface** surface) {
        const DFBResult result = real_create_surface(dfb, description, surface);
        FailCall<Operation>(*surface);
        return result;
    };
    Painter::GetFontSurface(10, 10);
}

const ReportCase kTextCases[] = {
    {"CharIndex", kPainter, kSetColorIndex, [] { FailChar<&S::SetColorIndex>(BlendSrcCopy, 0); }},
    {"CharByIndex", kPainter, kDrawString, [] { FailChar<&S::DrawString>(BlendSrcCopy, 0); }},
    {"CharFlags", kPainter, kTextFlags, [] { FailChar<&S::SetDrawingFlags>(BlendSrcOver, 0); }},
    {"CharRule", kPainter, kSourceOver, [] { FailChar<&S::SetPorterDuff>(BlendSrcOver, 0); }},
    {"CharColour", kPainter, kSetColor, [] { FailChar<&S::SetColor>(BlendSrcOver, 0); }},
    {"Char", kPainter, kDrawString, [] { FailChar<&S::DrawString>(BlendSrcOver, 0); }},
    {"CharFlagsReset", kPainter, kNoFlags, [] { FailChar<&S::SetDrawingFlags>(BlendSrcOver, 1); }},
    {"CharRuleReset", kPainter, kNoRule, [] { FailChar<&S::SetPorterDuff>(BlendSrcOver, 1); }},
    {"StringFont", kPainter, "_canvas_surface->SetFont(_canvas_surface, cur_font)",
     [] { FailString<&S::SetFont>(0); }},
    {"StringColour", kPainter, kSetColor, [] { FailString<&S::SetColor>(0); }},
    {"StringFlags", kPainter, kTextFlags, [] { FailString<&S::SetDrawingFlags>(0); }},
    {"StringRule", kPainter, kSourceOver, [] { FailString<&S::SetPorterDuff>(0); }},
    {"StringExtents", kPainter, kExtents,
     [] {
         const Painting painting(Color32Bit);
         Font* own = new Font(kestrin_test::kSans.c_str());
         const PFont font(own);
         FailCall<&IDirectFBFont::GetGlyphExtents>(own->GetFont(12, FontRegular, 0x10000));
         const zelxxx::WChar glyphs[] = {36};
         painting.painter->DrawString(glyphs, 1, 1, 1, font, 12, FontRegular, 60, 128, BlendSrcCopy,
                                      1);
     }},
    {"StringGlyph", kPainter, kDrawGlyph, [] { FailString<&S::DrawGlyph>(0); }},
    {"StringFlagsReset", kPainter, kNoFlags, [] { FailString<&S::SetDrawingFlags>(1); }},
    {"StringRuleReset", kPainter, kNoRule, [] { FailString<&S::SetPorterDuff>(1); }},
    {"BitmapLock", kPainter, "img_surf->Lock(img_surf, DSLF_WRITE, &surf_data, &ret_pitch)",
     [] {
         DrawGlyphBitmap(
             [](const Painting&) { FailCall<&S::Lock>(Painter::GetFontSurface(2, 2)); });
     }},
    {"BitmapUnlock", kPainter, "img_surf->Unlock(img_surf)",
     [] {
         DrawGlyphBitmap(
             [](const Painting&) { FailCall<&S::Unlock>(Painter::GetFontSurface(2, 2)); });
     }},
    {"BitmapBlit", kPainter,
     "_canvas_surface->Blit(_canvas_surface, img_surf, &rect, new_left, new_top)",
     [] { DrawGlyphBitmap([](const Painting& p) { FailCall<&S::Blit>(p.surface); }); }},
    {"ScratchSurface", kPainter, "View::_dfb->CreateSurface(View::_dfb, &dsc, &_font_surface)",
     [] {
         DrawGlyphBitmap([](const Painting&) { FailCall<&IDirectFB::CreateSurface>(View::_dfb); });
     }},
    {"ScratchFlags", kPainter,
     "_font_surface->SetDrawingFlags(_font_surface, "
     "(DFBSurfaceDrawingFlags)(DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY))",
     [] { FailNewScratchSurface<&S::SetDrawingFlags>(); }},
    {"ScratchKey", kPainter, "_font_surface->SetSrcColorKey(_font_surface, 0, 0, 0)",
     [] { FailNewScratchSurface<&S::SetSrcColorKey>(); }},
};
INSTANTIATE_TEST_SUITE_P(Text, Report, testing::ValuesIn(kTextCases), NameOfCase);

// ---- Calls whose result is not examined

TEST(UnexaminedCalls, FailureIsNotReported)
{
    const TestDisplay display(64, 48);
    const Painting painting(Color32Bit);
    testing::internal::CaptureStderr();
    FailCall<&S::SetClip>(painting.surface);
    painting.painter->SetClipping(1, 1, 20, 20);
    FailCall<&S::SetDstColorKey>(painting.surface);
    FailCall<&S::SetBlittingFlags>(painting.surface);
    painting.painter->DrawRectangle(1, 1, 5, 5, 60, 128, BlendSrcOver, zelxxx::Blit_SRC_COLORKEY,
                                    0);
    FailCall<&S::Flip>(View::_primary);
    FailCall<&S::Clear>(View::_primary);
    const zelxxx::PView view = zelxxx::zelCreateView(0, 64, 48, Color32Bit, false);
    view->Flip();
    view->Clear(0, 0, 1, 1, 0, 0);
    FailCall<&IDirectFBDisplayLayer::SetOpacity>(View::_layer);
    view->Hide();
    view->Show(0, 0, 1, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
