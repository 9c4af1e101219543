/** Glyphs of the painter: coverage bitmaps, palette indices and DirectFB's own fonts. */
#include "DFB/painter.h"

#include "DFB/font.h"
#include "engine_display.h"
#include "picture_compare.h"
#include "recording_surface.h"
#include "surface_pixels.h"
#include "test_font.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::EngineDisplay;
using kestrin_test::PixelsOf;
using kestrin_test::RecordingSurface;
using kestrin_test::SamePicture;
using kestrin_test::SetPixels;
using testing::Contains;
using testing::IsEmpty;
using testing::StartsWith;
using zelxxx::BlendSrcOver;
using zelxxx::BlendSrcOver8BIT;
using zelxxx::BlendValue;
using zelxxx::CharMetrics;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::ColorMode;
using zelxxx::Font;
using zelxxx::FontRegular;
using zelxxx::IFont;
using zelxxx::Int16;
using zelxxx::MetricValue;
using zelxxx::Painter;
using zelxxx::PCanvas;
using zelxxx::UInt8;
using zelxxx::WChar;
using zelxxx::zelCreatePainter;

namespace {

constexpr int kSide = 200;
constexpr zelxxx::UInt16 kSize = 16;

/** A glyph of one coverage, or of one palette index, whose top is the line's. */
struct Glyph
{
    Glyph(int width, int height, UInt8 value, IFont* font, Int16 bearing = 0)
        : bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), value),
          metrics{
              2,           width, height, bearing, static_cast<Int16>(font->GetFTYOffsetTop(kSize)),
              bytes.data()}
    {
    }
    std::vector<UInt8> bytes;
    CharMetrics metrics;
};

class PainterGlyph : public testing::Test
{
protected:
    explicit PainterGlyph(ColorMode mode = Color32Bit, std::uint32_t ground = 0xff000000)
        : _engine(64, 48, mode), _canvas(zelxxx::zelCreateCanvas(kSide, kSide, mode)),
          _painter(zelCreatePainter(_canvas)), _font(new Font(kestrin_test::kSans.c_str())),
          _expected(kSide, kSide, ground)
    {
        SetPixels(Surface(), _expected);
    }
    ~PainterGlyph() override { Painter::ReleaseFontSurface(); }

    IDirectFBSurface* Surface()
    {
        return zelxxx::SideOf<zelxxx::CanvasBase>(static_cast<zelxxx::ICanvas*>(_canvas))
            ->GetSurface();
    }
    Painter& Own() { return *zelxxx::SideOf<Painter>(static_cast<zelxxx::IPainter*>(_painter)); }
    ArgbImage Drawn() { return PixelsOf(Surface()); }
    testing::AssertionResult Untouched() { return SamePicture(Drawn(), _expected); }
    testing::AssertionResult Shows(int x, int y, int w, int h, std::uint32_t value)
    {
        for (int row = y; row < y + h; ++row) {
            for (int column = x; column < x + w; ++column)
                _expected.At(column, row) = value;
        }
        return SamePicture(Drawn(), _expected);
    }
    void Draw(const Glyph& glyph, int left, int top, zelxxx::ColorValue color = 0x332211,
              int blend = 255)
    {
        _painter->Draw32BitCharBitmap(&glyph.metrics, _font, kSize, static_cast<MetricValue>(left),
                                      static_cast<MetricValue>(top), color,
                                      static_cast<BlendValue>(blend));
    }
    void DrawIndex(Glyph& glyph, int left, int top, int blend = 255)
    {
        _painter->DrawCharBitmap(reinterpret_cast<char*>(glyph.bytes.data()), &glyph.metrics, _font,
                                 kSize, static_cast<MetricValue>(left),
                                 static_cast<MetricValue>(top), static_cast<BlendValue>(blend));
    }
    void DrawChar(WChar ch, int left, int top, BlendValue blend = 255)
    {
        _painter->DrawChar(ch, static_cast<MetricValue>(left), static_cast<MetricValue>(top), _font,
                           24, FontRegular, 0xffffff, blend, BlendSrcOver, 1, 1);
    }

    EngineDisplay _engine;
    PCanvas _canvas;
    zelxxx::ZELObjPtr<zelxxx::IPainter> _painter;
    zelxxx::ZELObjPtr<IFont> _font;
    ArgbImage _expected;
};

// ---- Coverage

TEST_F(PainterGlyph, OpaqueGlyphStandsAtPenBearingAndTop)
{
    _painter->SetOrigin(10, 20);
    const Glyph glyph(7, 9, 255, _font, 3);
    Draw(glyph, 50, 60);
    EXPECT_TRUE(Shows(43, 40, 7, 9, 0xff112233));
}

TEST_F(PainterGlyph, BitmapTopIsCountedUpFromTheBaseline)
{
    Glyph glyph(7, 9, 255, _font);
    glyph.metrics.bitmap_top -= 5;
    Draw(glyph, 50, 60);
    EXPECT_TRUE(Shows(50, 65, 7, 9, 0xff112233));
}

TEST_F(PainterGlyph, RowsOfCoverageHaveNoPadding)
{
    Glyph glyph(3, 2, 0, _font);
    glyph.bytes = {255, 0, 0, 0, 0, 255};
    glyph.metrics.buffer = glyph.bytes.data();
    Draw(glyph, 50, 60, 0xffffff);
    Shows(50, 60, 1, 1, 0xffffffff);
    EXPECT_TRUE(Shows(52, 61, 1, 1, 0xffffffff));
}

TEST_F(PainterGlyph, CoverageAndOpacityBlendOverTheGround)
{
    for (const int coverage : {1, 64, 128, 200, 255}) {
        for (const int blend : {1, 100, 254, 255}) {
            SetPixels(Surface(), ArgbImage(kSide, kSide, 0xff204060));
            const Glyph glyph(4, 4, static_cast<UInt8>(coverage), _font);
            Draw(glyph, 50, 60, 0x3264c8, blend); // red 200, green 100, blue 50
            const int alpha = coverage * blend / 255;
            const std::uint32_t pixel = Drawn().At(51, 61);
            const auto over = [alpha](int source, int ground) {
                return (source * alpha + ground * (255 - alpha)) / 255.0;
            };
            EXPECT_NEAR(pixel >> 24, 255.0, 2.0) << coverage << " " << blend;
            EXPECT_NEAR(pixel >> 16 & 0xff, over(200, 0x20), 3.0) << coverage << " " << blend;
            EXPECT_NEAR(pixel >> 8 & 0xff, over(100, 0x40), 3.0) << coverage << " " << blend;
            EXPECT_NEAR(pixel & 0xff, over(50, 0x60), 3.0) << coverage << " " << blend;
        }
    }
}

TEST_F(PainterGlyph, TenThousandPixelsAreDrawnAndMoreAreNot)
{
    const Glyph most(100, 100, 255, _font);
    Draw(most, 0, 0);
    EXPECT_TRUE(Shows(0, 0, 100, 100, 0xff112233));
    const Glyph wide(101, 100, 255, _font);
    const Glyph tall(100, 101, 255, _font);
    Draw(wide, 90, 90, 0xffffff);
    Draw(tall, 90, 90, 0xffffff);
    EXPECT_TRUE(Untouched());
}

TEST_F(PainterGlyph, NothingToDrawMakesNoCall)
{
    const RecordingSurface recording(Surface());
    Glyph glyph(4, 4, 255, _font);
    Draw(glyph, 50, 60, 0, 0);
    glyph.metrics.buffer = nullptr;
    Draw(glyph, 50, 60);
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, 4}, {4, -4}, {-4, -4}}) {
        Glyph other(4, 4, 255, _font);
        other.metrics.width = width;
        other.metrics.height = height;
        Draw(other, 50, 60);
    }
    EXPECT_THAT(recording.Calls(), IsEmpty());
}

TEST_F(PainterGlyph, GlyphBeyondTheClipsRightEdgeIsDroppedWhole)
{
    _painter->SetClipping(0, 0, 60, kSide);
    const Glyph glyph(5, 5, 255, _font);
    Draw(glyph, 56, 10);
    EXPECT_TRUE(Untouched());
    Draw(glyph, 55, 10);
    EXPECT_TRUE(Shows(55, 10, 5, 5, 0xff112233));
}

TEST_F(PainterGlyph, RightEdgeIsTestedAfterTheOriginIsSubtracted)
{
    _painter->SetClipping(0, 0, 60, kSide);
    _painter->SetOrigin(100, 0);
    const Glyph glyph(5, 5, 255, _font, 2);
    Draw(glyph, 154, 10);
    EXPECT_TRUE(Untouched());
    Draw(glyph, 153, 10);
    EXPECT_TRUE(Shows(55, 10, 5, 5, 0xff112233));
}

TEST_F(PainterGlyph, OtherEdgesCutTheGlyphAndTheBottomLetsOneRowThrough)
{
    _painter->SetClipping(10, 10, 100, 20);
    const Glyph glyph(8, 20, 255, _font);
    Draw(glyph, 6, 5);
    // DirectFB's corners are inclusive, so its own clip lets one more row through.
    EXPECT_TRUE(Shows(10, 10, 4, 11, 0xff112233));
}

TEST_F(PainterGlyph, SceneClippingDropsAtTheSceneRectanglesEdgeAndNotAtTheTiles)
{
    // The tile begins at 100; the widget shows up to 350, beyond the tile's end at 300.
    _painter->SetOrigin(100, 0);
    Own().SetSceneClipping({150, 0, 350, 50});
    const Glyph glyph(10, 10, 255, _font);
    Draw(glyph, 295, 10);
    EXPECT_TRUE(Shows(195, 10, 5, 10, 0xff112233)) << "cut at the tile";
    Draw(glyph, 341, 10);
    EXPECT_TRUE(Untouched()) << "beyond the scene's rectangle";
    Draw(glyph, 140, 30);
    EXPECT_TRUE(Untouched()) << "left of the shown rectangle";
    Own().SetSceneClipping({150, 0, 300, 50});
    Draw(glyph, 291, 30);
    EXPECT_TRUE(Untouched()) << "the scene's rectangle ends with the tile";
}

// ---- The scratch surface

class FontSurface : public PainterGlyph
{
protected:
    /** Its size, without a wish of one's own. */
    static std::pair<int, int> Size()
    {
        int width = 0;
        int height = 0;
        IDirectFBSurface* surface = Painter::GetFontSurface(1, 1);
        surface->GetSize(surface, &width, &height);
        return {width, height};
    }
};

TEST_F(FontSurface, GrowsInEachDirectionByItself)
{
    Draw(Glyph(10, 12, 255, _font), 0, 0);
    EXPECT_EQ(Size(), std::pair(25, 25));
    Draw(Glyph(30, 20, 255, _font), 0, 0);
    EXPECT_EQ(Size(), std::pair(30, 25));
    Draw(Glyph(5, 70, 255, _font), 0, 0);
    EXPECT_EQ(Size(), std::pair(30, 70));
    Draw(Glyph(10, 10, 255, _font), 0, 0);
    EXPECT_EQ(Size(), std::pair(30, 70));
}

TEST_F(FontSurface, IsTheSameUntilItGrows)
{
    IDirectFBSurface* surface = Painter::GetFontSurface(10, 10);
    EXPECT_EQ(Painter::GetFontSurface(25, 25), surface);
    surface->AddRef(surface);
    EXPECT_NE(Painter::GetFontSurface(26, 1), surface);
    surface->Release(surface);
}

TEST_F(FontSurface, RecordedSizeOutlivesTheSurface)
{
    Painter::GetFontSurface(40, 50);
    Painter::ReleaseFontSurface();
    EXPECT_EQ(Size(), std::pair(40, 50));
}

TEST_F(FontSurface, SurvivesItsPainter)
{
    Draw(Glyph(10, 12, 255, _font), 0, 0);
    IDirectFBSurface* surface = Painter::GetFontSurface(1, 1);
    _painter = nullptr;
    EXPECT_EQ(Painter::GetFontSurface(1, 1), surface);
}

TEST_F(FontSurface, ReleaseTwiceIsHarmless)
{
    Painter::GetFontSurface(1, 1);
    Painter::ReleaseFontSurface();
    Painter::ReleaseFontSurface();
}

// ---- Palette indices

class PainterGlyphOn8Bit : public PainterGlyph
{
protected:
    PainterGlyphOn8Bit() : PainterGlyph(Color8Bit, 60) { _painter->SetBlendMode(BlendSrcOver8BIT); }
};

TEST_F(PainterGlyphOn8Bit, IndicesStandAtPenBearingAndTop)
{
    _painter->SetOrigin(10, 20);
    Glyph glyph(7, 9, 100, _font, 3);
    DrawIndex(glyph, 50, 60, 1);
    EXPECT_TRUE(Shows(43, 40, 7, 9, 100)) << "an opacity that is not 0 plays no part";
}

TEST_F(PainterGlyphOn8Bit, IndexZeroLeavesThePixelAndOthersBlend)
{
    Glyph glyph(3, 1, 0, _font);
    glyph.bytes = {0, 10, 100};
    DrawIndex(glyph, 50, 60);
    UInt8 blended = 60;
    zelxxx::OSD_BlendPixels(&blended, 10);
    ASSERT_NE(blended, 60);
    Shows(51, 60, 1, 1, blended);
    EXPECT_TRUE(Shows(52, 60, 1, 1, 100));
}

TEST_F(PainterGlyphOn8Bit, OtherModesOfThePainterDrawNothing)
{
    Glyph glyph(7, 9, 100, _font);
    _painter->SetBlendMode(BlendSrcOver);
    DrawIndex(glyph, 50, 60);
    _painter->SetBlendMode(zelxxx::BlendSrcCopy);
    DrawIndex(glyph, 50, 60);
    EXPECT_TRUE(Untouched());
}

TEST_F(PainterGlyphOn8Bit, NothingToDrawMakesNoCall)
{
    const RecordingSurface recording(Surface());
    Glyph glyph(7, 9, 100, _font);
    DrawIndex(glyph, 50, 60, 0);
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, 4}, {4, -4}}) {
        glyph.metrics.width = width;
        glyph.metrics.height = height;
        DrawIndex(glyph, 50, 60);
    }
    EXPECT_THAT(recording.Calls(), IsEmpty());
}

TEST_F(PainterGlyphOn8Bit, RightEdgeIsTestedBeforeTheOriginIsSubtracted)
{
    _painter->SetClipping(0, 0, 60, kSide);
    _painter->SetOrigin(10, 0);
    Glyph glyph(5, 5, 100, _font);
    DrawIndex(glyph, 56, 10); // would stand at 46 to 51
    EXPECT_TRUE(Untouched());
    DrawIndex(glyph, 55, 10);
    EXPECT_TRUE(Shows(45, 10, 5, 5, 100));
}

TEST_F(PainterGlyphOn8Bit, BearingIsOnTheEdgesSideOfTheTest)
{
    _painter->SetClipping(0, 0, 60, kSide);
    Glyph glyph(5, 5, 100, _font, 3);
    DrawIndex(glyph, 58, 10); // 63 is not beyond 60 + 3, though the glyph stands at 61 to 66
    EXPECT_TRUE(Shows(61, 10, 5, 5, 100));
    DrawIndex(glyph, 59, 30);
    EXPECT_TRUE(Untouched());
}

TEST_F(PainterGlyphOn8Bit, SceneClippingTestsTheSceneRectanglesEdge)
{
    _painter->SetOrigin(100, 0);
    Own().SetSceneClipping({150, 0, 350, 50});
    Glyph glyph(5, 5, 100, _font);
    DrawIndex(glyph, 290, 10);
    EXPECT_TRUE(Shows(190, 10, 5, 5, 100));
    DrawIndex(glyph, 346, 10);
    EXPECT_TRUE(Untouched());
}

TEST_F(PainterGlyphOn8Bit, GlyphIsCutAtTheCanvas)
{
    Glyph glyph(8, 8, 100, _font);
    DrawIndex(glyph, -4, -3);
    EXPECT_TRUE(Shows(0, 0, 4, 5, 100));
    DrawIndex(glyph, 100, kSide - 2);
    EXPECT_TRUE(Shows(100, kSide - 2, 8, 2, 100));
}

TEST_F(PainterGlyphOn8Bit, CoverageGlyphWithoutRoomForItsPixelsIsNotDrawn)
{
    const RecordingSurface recording(Surface());
    Draw(Glyph(100, 100, 255, _font), 0, 0);
    EXPECT_THAT(recording.Calls(), IsEmpty());
    EXPECT_TRUE(Untouched());
}

// ---- DirectFB's own fonts

TEST_F(PainterGlyph, DrawCharTakesTheLowByte)
{
    DrawChar('A', 20, 20);
    const ArgbImage plain = Drawn();
    EXPECT_FALSE(Untouched());
    SetPixels(Surface(), _expected);
    DrawChar(0x2500 + 'A', 20, 20);
    EXPECT_TRUE(SamePicture(Drawn(), plain));
    SetPixels(Surface(), _expected);
    DrawChar('B', 20, 20);
    EXPECT_FALSE(SamePicture(Drawn(), plain));
}

TEST_F(PainterGlyph, DrawCharSubtractsTheOriginAndObeysTheClip)
{
    DrawChar('A', 20, 20);
    const ArgbImage plain = Drawn();
    SetPixels(Surface(), _expected);
    _painter->SetOrigin(1000, -500);
    DrawChar('A', 1020, -480);
    EXPECT_TRUE(SamePicture(Drawn(), plain));
    SetPixels(Surface(), _expected);
    _painter->SetClipping(0, 0, 20, 20);
    DrawChar('A', 1020, -480);
    EXPECT_TRUE(Untouched());
}

/** DirectFB looks a value up as a character in its default encoding, UTF-8. */
TEST_F(PainterGlyph, DrawStringDrawsCodePointsSideBySide)
{
    IDirectFBFont* font =
        zelxxx::SideOf<Font>(static_cast<IFont*>(_font))->GetFont(24, FontRegular, 0x10000);
    const WChar characters[] = {'A', 0x00e4};
    int advance = 0;
    font->GetGlyphExtents(font, 'A', nullptr, &advance);
    ASSERT_GT(advance, 0);
    DrawChar('A', 20, 20);
    const ArgbImage first = Drawn();
    SetPixels(Surface(), _expected);
    _painter->DrawString(characters, 2, 20, 20, _font, 24, FontRegular, 0xffffff, 255, BlendSrcOver,
                         1);
    const ArgbImage both = Drawn();
    // The second glyph stands right of the first one's advance and is not the first one again.
    EXPECT_TRUE(SamePicture(kestrin_test::PartOf(both, 0, 0, 20 + advance, kSide),
                            kestrin_test::PartOf(first, 0, 0, 20 + advance, kSide)));
    SetPixels(Surface(), _expected);
    const WChar twice[] = {'A', 'A'};
    _painter->DrawString(twice, 2, 20, 20, _font, 24, FontRegular, 0xffffff, 255, BlendSrcOver, 1);
    EXPECT_FALSE(SamePicture(Drawn(), both));
}

TEST_F(PainterGlyph, ScalersPlayNoPart)
{
    DrawChar('A', 20, 20);
    const ArgbImage plain = Drawn();
    SetPixels(Surface(), _expected);
    _painter->DrawChar('A', 20, 20, _font, 24, FontRegular, 0xffffff, 255, BlendSrcOver, 7, 0);
    EXPECT_TRUE(SamePicture(Drawn(), plain));
}

TEST_F(PainterGlyph, FullTableOfDirectFBFontsDrawsNothing)
{
    Font* font = zelxxx::SideOf<Font>(static_cast<IFont*>(_font));
    for (zelxxx::UInt16 size = 1; size <= 20; ++size)
        font->GetFont(size, FontRegular, 0x10000);
    DrawChar('A', 20, 20);
    EXPECT_TRUE(Untouched());
}

} // namespace
