/** Which DirectFB calls each operation of the painter makes, in order. */
#include "DFB/painter.h"

#include "DFB/canvas.h"
#include "DFB/font.h"
#include "engine_display.h"
#include "recording_surface.h"
#include "surface_of.h"
#include "test_font.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::CallLog;
using kestrin_test::CallRecorder;
using kestrin_test::EngineDisplay;
using kestrin_test::NameInLogs;
using kestrin_test::RecordingSurface;
using kestrin_test::SurfaceOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using zelxxx::BlendSrcCopy;
using zelxxx::BlendSrcOver;
using zelxxx::BlendSrcOver8BIT;
using zelxxx::Blit_DST_COLORKEY;
using zelxxx::Blit_SRC_COLORKEY;
using zelxxx::CharMetrics;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::ColorMode;
using zelxxx::Font;
using zelxxx::FontRegular;
using zelxxx::IFont;
using zelxxx::NoBlit;
using zelxxx::Painter;
using zelxxx::PCanvas;
using zelxxx::UInt8;
using zelxxx::WChar;
using zelxxx::zelCreatePainter;

namespace {

constexpr zelxxx::ColorValue kColor = 0xaa332211; // red 0x11, green 0x22, blue 0x33

/** A painter on a canvas whose calls are recorded. */
class PainterCalls : public testing::Test
{
protected:
    explicit PainterCalls(ColorMode mode = Color32Bit)
        : _engine(64, 48, mode), _canvas(zelxxx::zelCreateCanvas(40, 30, mode)),
          _painter(zelCreatePainter(_canvas)), _font(new Font(kestrin_test::kSans.c_str())),
          _recording(SurfaceOf(_canvas))
    {
    }
    ~PainterCalls() override { Painter::ReleaseFontSurface(); }

    CallLog Take() { return _recording.Take(); }
    Font* OwnFont() { return zelxxx::SideOf<Font>(static_cast<IFont*>(_font)); }

    EngineDisplay _engine;
    PCanvas _canvas;
    zelxxx::ZELObjPtr<zelxxx::IPainter> _painter;
    zelxxx::ZELObjPtr<IFont> _font;
    RecordingSurface _recording;
};

class PainterCallsOn8Bit : public PainterCalls
{
protected:
    PainterCallsOn8Bit() : PainterCalls(Color8Bit) {}
};

const CallLog kSourceOverBegin = {"SetDrawingFlags(BLEND)", "SetPorterDuff(SRC_OVER)",
                                  "SetColor(17, 34, 51, 128)"};
const CallLog kSourceOverEnd = {"SetDrawingFlags(NOFX)", "SetPorterDuff(NONE)"};

CallLog SourceOver(const std::string& fill)
{
    CallLog calls = kSourceOverBegin;
    calls.push_back(fill);
    calls.insert(calls.end(), kSourceOverEnd.begin(), kSourceOverEnd.end());
    return calls;
}

// ---- Clip and origin

TEST_F(PainterCalls, ConstructionClipsOnePixelBeyondTheCanvas)
{
    Take();
    const zelxxx::ZELObjPtr<zelxxx::IPainter> painter = zelCreatePainter(_canvas);
    EXPECT_THAT(Take(), ElementsAre("SetClip([0 0 40 30])"));
}

TEST_F(PainterCalls, ConstructionOnTheViewClipsToTheViewsSize)
{
    const zelxxx::PView view = zelxxx::zelCreateView(0, 50, 20, Color32Bit, false);
    RecordingSurface primary(zelxxx::View::_primary);
    const zelxxx::ZELObjPtr<zelxxx::IPainter> painter = zelCreatePainter(view);
    EXPECT_THAT(primary.Take(), ElementsAre("SetClip([0 0 50 20])"));
}

TEST_F(PainterCalls, ClippingIsCutAtTheCanvasAndIgnoresTheOrigin)
{
    _painter->SetOrigin(7, 9);
    _painter->SetClipping(-5, -5, 10000, 10000);
    _painter->SetClipping(3, 4, 20, 10);
    EXPECT_THAT(Take(), ElementsAre("SetClip([0 0 40 30])", "SetClip([3 4 20 10])"));
}

TEST_F(PainterCalls, OriginModesAndFramesMakeNoCall)
{
    _painter->SetOrigin(7, 9);
    _painter->SetBlendMode(BlendSrcCopy);
    _painter->DrawFrame(0, 0, 10, 10, 2, kColor, 255, BlendSrcCopy);
    EXPECT_THAT(Take(), IsEmpty());
}

// ---- Rectangles

TEST_F(PainterCalls, SourceOverSetsEverythingAndResetsFlagsAndRule)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAreArray(SourceOver("FillRectangle(5, 6, 7, 8)")));
}

TEST_F(PainterCalls, SourceOverIsCutAtOriginAndClip)
{
    _painter->SetOrigin(10, 20);
    _painter->SetClipping(2, 3, 12, 13);
    Take();
    _painter->DrawRectangle(0, 0, 100, 100, kColor, 128, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAreArray(SourceOver("FillRectangle(2, 3, 10, 10)")));
}

TEST_F(PainterCalls, SourceOverOfNothingMakesNoCall)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 0, BlendSrcOver, NoBlit, 0);
    _painter->DrawRectangle(5, 6, 0, 8, kColor, 128, BlendSrcOver, NoBlit, 0);
    _painter->DrawRectangle(5, 6, 7, -1, kColor, 128, BlendSrcOver, NoBlit, 0);
    _painter->DrawRectangle(40, 6, 7, 8, kColor, 128, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PainterCalls, UnknownModeOfTheCallFollowsThePaintersMode)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcOver8BIT, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAreArray(SourceOver("FillRectangle(5, 6, 7, 8)")));
}

TEST_F(PainterCalls, CopyModeOfThePainterAloneDrawsNothing)
{
    _painter->SetBlendMode(BlendSrcCopy);
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PainterCalls, CopyLeavesFlagAndRuleOnTheSurface)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 0, BlendSrcCopy, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAre("SetDrawingFlags(BLEND)", "SetPorterDuff(SRC)",
                                    "SetColor(17, 34, 51, 0)", "FillRectangle(5, 6, 7, 8)"));
}

TEST_F(PainterCalls, EmptyCopySetsTheStateAndFillsNothing)
{
    _painter->DrawRectangle(5, 6, 0, 8, kColor, 128, BlendSrcCopy, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAre("SetDrawingFlags(BLEND)", "SetPorterDuff(SRC)",
                                    "SetColor(17, 34, 51, 128)"));
}

TEST_F(PainterCalls, ColourKeyOn32BitIsTheColourAndNotTheKeyGiven)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcOver, Blit_SRC_COLORKEY, 0x998877);
    EXPECT_THAT(Take(), ElementsAre("SetDstColorKey(17, 34, 51)", "SetBlittingFlags(SRC_COLORKEY)",
                                    "FillRectangle(5, 6, 7, 8)", "SetBlittingFlags(NOFX)"));
}

TEST_F(PainterCalls, DestinationColourKeyCollapsesToNoFlag)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcOver, Blit_DST_COLORKEY, 0);
    EXPECT_THAT(Take(), ElementsAre("SetDstColorKey(17, 34, 51)", "SetBlittingFlags(NOFX)",
                                    "FillRectangle(5, 6, 7, 8)", "SetBlittingFlags(NOFX)"));
}

TEST_F(PainterCalls, ColourKeyGoesBeforeTheCopyMode)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcCopy, Blit_DST_COLORKEY, 0);
    EXPECT_THAT(Take(), ElementsAre("SetDstColorKey(17, 34, 51)", "SetBlittingFlags(NOFX)",
                                    "FillRectangle(5, 6, 7, 8)", "SetBlittingFlags(NOFX)"));
}

TEST_F(PainterCallsOn8Bit, ColourKeyIsTheIndexGivenAndNotTheColour)
{
    _painter->DrawRectangle(5, 6, 7, 8, 60, 128, BlendSrcOver, Blit_SRC_COLORKEY, 99);
    EXPECT_THAT(Take(), ElementsAre("SetDstColorKeyIndex(99)", "SetBlittingFlags(SRC_COLORKEY)",
                                    "FillRectangle(5, 6, 7, 8)", "SetBlittingFlags(NOFX)"));
    _painter->DrawRectangle(5, 6, 7, 8, 60, 128, BlendSrcOver, Blit_DST_COLORKEY, 98);
    EXPECT_THAT(Take(), ElementsAre("SetDstColorKeyIndex(98)", "SetBlittingFlags(NOFX)",
                                    "FillRectangle(5, 6, 7, 8)", "SetBlittingFlags(NOFX)"));
}

TEST_F(PainterCallsOn8Bit, CopyIsByIndex)
{
    _painter->DrawRectangle(5, 6, 7, 8, 60, 0, BlendSrcCopy, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAre("SetDrawingFlags(BLEND)", "SetPorterDuff(SRC)",
                                    "SetColorIndex(60)", "FillRectangle(5, 6, 7, 8)"));
}

TEST_F(PainterCallsOn8Bit, SourceOverIsByColourAllTheSame)
{
    _painter->DrawRectangle(5, 6, 7, 8, kColor, 128, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAreArray(SourceOver("FillRectangle(5, 6, 7, 8)")));
}

TEST_F(PainterCallsOn8Bit, OpaqueIndexIn8BitModeIsFilledWithoutBlending)
{
    _painter->SetBlendMode(BlendSrcOver8BIT);
    _painter->DrawRectangle(5, 6, 7, 8, 60, 0, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAre("SetDrawingFlags(NOFX)", "SetPorterDuff(NONE)",
                                    "SetColorIndex(60)", "FillRectangle(5, 6, 7, 8)"));
}

TEST_F(PainterCallsOn8Bit, TranslucentIndexIn8BitModeIsBlendedInMemory)
{
    _painter->SetBlendMode(BlendSrcOver8BIT);
    _painter->DrawRectangle(5, 6, 7, 8, 10, 0, BlendSrcOver, NoBlit, 0);
    EXPECT_THAT(Take(), ElementsAre("Lock(WRITE, out, out)", "Unlock()"));
}

// ---- Text through DirectFB fonts

TEST_F(PainterCalls, DrawCharOverTheDestination)
{
    NameInLogs(OwnFont()->GetFont(16, FontRegular, 0x10000), "font16");
    _painter->SetOrigin(3, 4);
    _painter->DrawChar(0x2541, 10, 10, _font, 16, FontRegular, kColor, 128, BlendSrcOver, 2, 3);
    EXPECT_THAT(Take(), ElementsAre("SetFont(font16)", "SetDrawingFlags(BLEND|SRC_PREMULTIPLY)",
                                    "SetPorterDuff(SRC_OVER)", "SetColor(17, 34, 51, 128)",
                                    "DrawString(65, 1, 7, 6, TOP)", "SetDrawingFlags(NOFX)",
                                    "SetPorterDuff(NONE)"));
}

TEST_F(PainterCalls, DrawCharOfNothingMakesNoCall)
{
    _painter->DrawChar('A', 10, 10, _font, 16, FontRegular, kColor, 0, BlendSrcOver, 1, 1);
    _painter->DrawChar('A', 10, 10, nullptr, 16, FontRegular, kColor, 255, BlendSrcOver, 1, 1);
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PainterCallsOn8Bit, DrawCharOtherwiseIsByIndexAndLeavesTheFlags)
{
    NameInLogs(OwnFont()->GetFont(16, FontRegular, 0x10000), "font16");
    _painter->DrawChar('A', 10, 11, _font, 16, FontRegular, 60, 128, BlendSrcOver8BIT, 1, 1);
    EXPECT_THAT(Take(), ElementsAre("SetFont(font16)", "SetColorIndex(60)",
                                    "DrawString(65, 1, 10, 11, TOP)"));
}

class DrawStringCalls : public PainterCalls
{
protected:
    DrawStringCalls() : _dfb_font(OwnFont()->GetFont(16, FontRegular, 0x10000))
    {
        NameInLogs(_dfb_font, "font16");
    }
    int Advance(WChar glyph)
    {
        int advance = 0;
        _dfb_font->GetGlyphExtents(_dfb_font, glyph, nullptr, &advance);
        return advance;
    }
    std::string Glyph(WChar glyph, int x)
    {
        return "DrawGlyph(" + std::to_string(glyph) + ", " + std::to_string(x) + ", 6, TOP)";
    }

    IDirectFBFont* _dfb_font;
};

TEST_F(DrawStringCalls, GlyphsFollowOneAnotherByTheirAdvance)
{
    const WChar glyphs[] = {36, 45, 3};
    ASSERT_GT(Advance(36), 0);
    ASSERT_NE(Advance(36), Advance(45));
    CallLog log;
    CallRecorder<IDirectFBFont> font(_dfb_font, log);
    font.Watch<&IDirectFBFont::GetGlyphExtents>("GetGlyphExtents");
    font.Watch<&IDirectFBFont::GetKerning>("GetKerning");
    _painter->SetOrigin(3, 4);
    _painter->DrawString(glyphs, 3, 10, 10, _font, 16, FontRegular, kColor, 128, BlendSrcOver, 7);
    EXPECT_THAT(log, ElementsAre("GetGlyphExtents(36, out, out)", "GetGlyphExtents(45, out, out)",
                                 "GetGlyphExtents(3, out, out)"));
    EXPECT_THAT(Take(),
                ElementsAre("SetFont(font16)", "SetColor(17, 34, 51, 128)",
                            "SetDrawingFlags(BLEND|SRC_PREMULTIPLY)", "SetPorterDuff(SRC_OVER)",
                            Glyph(36, 7), Glyph(45, 7 + Advance(36)),
                            Glyph(3, 7 + Advance(36) + Advance(45)), "SetDrawingFlags(NOFX)",
                            "SetPorterDuff(NONE)"));
}

TEST_F(DrawStringCalls, OtherModesSetTheColourAndNoFlags)
{
    const WChar glyphs[] = {36};
    _painter->DrawString(glyphs, 1, 10, 6, _font, 16, FontRegular, kColor, 128, BlendSrcCopy, 7);
    EXPECT_THAT(Take(), ElementsAre("SetFont(font16)", "SetColor(17, 34, 51, 128)", Glyph(36, 10)));
}

TEST_F(DrawStringCalls, LengthZeroSetsAndResetsTheState)
{
    _painter->DrawString(nullptr, 0, 10, 6, _font, 16, FontRegular, kColor, 128, BlendSrcOver, 7);
    EXPECT_THAT(Take(),
                ElementsAre("SetFont(font16)", "SetColor(17, 34, 51, 128)",
                            "SetDrawingFlags(BLEND|SRC_PREMULTIPLY)", "SetPorterDuff(SRC_OVER)",
                            "SetDrawingFlags(NOFX)", "SetPorterDuff(NONE)"));
}

TEST_F(DrawStringCalls, NothingToShowMakesNoCall)
{
    const WChar glyphs[] = {36};
    _painter->DrawString(glyphs, 1, 10, 6, _font, 16, FontRegular, kColor, 0, BlendSrcOver, 7);
    _painter->DrawString(glyphs, 1, 10, 6, nullptr, 16, FontRegular, kColor, 9, BlendSrcOver, 7);
    EXPECT_THAT(Take(), IsEmpty());
}

// ---- Glyph bitmaps

TEST_F(PainterCalls, CoverageGlyphGoesThroughTheScratchSurface)
{
    std::vector<UInt8> coverage(6, 255);
    const CharMetrics glyph = {2, 3, 2, 1, 5, coverage.data()};
    CallLog log;
    RecordingSurface scratch(Painter::GetFontSurface(1, 1), log, "scratch ");
    NameInLogs(Painter::GetFontSurface(1, 1), "scratch");
    _painter->SetOrigin(2, 3);
    _painter->Draw32BitCharBitmap(&glyph, _font, 16, 10, 10, kColor, 128);
    const int top = 10 - 3 - 5 + _font->GetFTYOffsetTop(16);
    EXPECT_THAT(log, ElementsAre("scratch Lock(WRITE, out, out)", "scratch Unlock()"));
    EXPECT_THAT(Take(),
                ElementsAre("SetBlittingFlags(BLEND_ALPHACHANNEL|SRC_PREMULTIPLY|DST_PREMULTIPLY|"
                            "DEMULTIPLY)",
                            "SetPorterDuff(SRC_OVER)",
                            "Blit(scratch, [0 0 3 2], 9, " + std::to_string(top) + ")",
                            "SetBlittingFlags(NOFX)"));
    EXPECT_EQ(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY | DSBLIT_DST_PREMULTIPLY |
                  DSBLIT_DEMULTIPLY,
              225);
}

TEST_F(PainterCallsOn8Bit, IndexGlyphIsBlendedInMemory)
{
    std::vector<UInt8> indices(6, 60);
    const CharMetrics glyph = {2, 3, 2, 0, 5, nullptr};
    _painter->SetBlendMode(BlendSrcOver8BIT);
    _painter->DrawCharBitmap(reinterpret_cast<char*>(indices.data()), &glyph, _font, 16, 10, 10,
                             255);
    EXPECT_THAT(Take(), ElementsAre("Lock(WRITE, out, out)", "Unlock()"));
}

// The scratch surface is made in DirectFB, so its own calls are met on the way.
CallLog scratch_log;
RecordingSurface* scratch_recorder;
decltype(IDirectFB::CreateSurface) real_create_surface;

TEST_F(PainterCalls, ScratchSurfaceIsMadeLikeThis)
{
    IDirectFB* dfb = zelxxx::View::_dfb;
    real_create_surface = dfb->CreateSurface;
    dfb->CreateSurface = [](IDirectFB* self, const DFBSurfaceDescription* description,
                            IDirectFBSurface** surface) {
        const DFBResult result = real_create_surface(self, description, surface);
        scratch_recorder = new RecordingSurface(*surface, scratch_log, "scratch ");
        return result;
    };
    {
        CallRecorder<IDirectFB> recording(dfb, scratch_log);
        recording.Watch<&IDirectFB::CreateSurface>("CreateSurface");
        Painter::GetFontSurface(10, 40);
    }
    dfb->CreateSurface = real_create_surface;
    delete scratch_recorder;
    EXPECT_THAT(scratch_log, ElementsAre("CreateSurface({flags 14, 25x40, ARGB}, out)",
                                         "scratch SetDrawingFlags(BLEND|SRC_PREMULTIPLY)",
                                         "scratch SetSrcColorKey(0, 0, 0)"));
}

} // namespace
