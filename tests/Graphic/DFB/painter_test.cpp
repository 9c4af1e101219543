/** Rectangles of the painter, pixel by pixel, against a model of its own. */
#include "DFB/painter.h"

#include "engine_display.h"
#include "picture_compare.h"
#include "seeded_random.h"
#include "surface_of.h"
#include "surface_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::EngineDisplay;
using kestrin_test::PixelsOf;
using kestrin_test::SamePicture;
using kestrin_test::SeededRandom;
using kestrin_test::SetPixels;
using kestrin_test::SurfaceOf;
using zelxxx::BlendSrcCopy;
using zelxxx::BlendSrcOver;
using zelxxx::BlendSrcOver8BIT;
using zelxxx::BlendValue;
using zelxxx::Blit_DST_COLORKEY;
using zelxxx::Blit_SRC_COLORKEY;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::ColorMode;
using zelxxx::ColorValue;
using zelxxx::MetricValue;
using zelxxx::NoBlit;
using zelxxx::PCanvas;
using zelxxx::UInt8;
using zelxxx::zelCreateCanvas;
using zelxxx::zelCreatePainter;
using PPainter = zelxxx::ZELObjPtr<zelxxx::IPainter>;

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 40;
constexpr std::uint32_t kGround = 0xff203040;

/** 0xAARRGGBB of a colour with red in its lowest byte. */
std::uint32_t Argb(ColorValue color, BlendValue blend)
{
    return std::uint32_t{blend} << 24 | (color & 0xff) << 16 | (color & 0xff00) |
           (color >> 16 & 0xff);
}

/** A half-open rectangle in canvas pixels. */
struct Box
{
    int x1, y1, x2, y2;
    bool Holds(int x, int y) const { return x >= x1 && x < x2 && y >= y1 && y < y2; }
};

/** A painter on a canvas of one colour or one palette index. */
class PainterTest : public testing::Test
{
protected:
    explicit PainterTest(ColorMode mode = Color32Bit, std::uint32_t ground = kGround)
        : _engine(64, 48, mode), _canvas(zelCreateCanvas(kWidth, kHeight, mode)),
          _painter(zelCreatePainter(_canvas)), _expected(kWidth, kHeight, ground)
    {
        SetPixels(SurfaceOf(_canvas), _expected);
    }

    ArgbImage Drawn() { return PixelsOf(SurfaceOf(_canvas)); }
    void Expect(const Box& box, std::uint32_t value)
    {
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                if (box.Holds(x, y))
                    _expected.At(x, y) = value;
            }
        }
    }
    testing::AssertionResult IsAsExpected() { return SamePicture(Drawn(), _expected); }
    void Fill(int x, int y, int w, int h, ColorValue color, BlendValue blend,
              zelxxx::BlendMode mode = BlendSrcOver, zelxxx::BlitFlag flag = NoBlit,
              ColorValue key = 0)
    {
        _painter->DrawRectangle(static_cast<MetricValue>(x), static_cast<MetricValue>(y),
                                static_cast<MetricValue>(w), static_cast<MetricValue>(h), color,
                                blend, mode, flag, key);
    }

    EngineDisplay _engine;
    PCanvas _canvas;
    PPainter _painter;
    ArgbImage _expected;
};

// ---- Construction

TEST(PainterWithoutACanvas, ExistsWithoutAReferenceAndIs32Bit)
{
    zelxxx::IPainter* painter = zelCreatePainter(nullptr);
    ASSERT_NE(painter, nullptr);
    EXPECT_EQ(painter->GetColorMode(), Color32Bit);
    EXPECT_EQ(painter->Hold(), 1);
    EXPECT_EQ(painter->Release(), 0);
}

TEST(PainterWithoutACanvas, ImagesAndTextDrawNothing)
{
    const PPainter painter = zelCreatePainter(nullptr);
    UInt8 coverage = 255;
    const zelxxx::CharMetrics glyph = {2, 1, 1, 0, 0, &coverage};
    painter->SetClipping(0, 0, 10, 10);
    painter->DrawImage(nullptr, 0, 0, 0, 1, 1, 0, 0, 1, 1, 255, BlendSrcOver);
    painter->DrawChar('A', 0, 0, nullptr, 10, zelxxx::FontRegular, 0, 255, BlendSrcOver, 1, 1);
    painter->Draw32BitCharBitmap(&glyph, nullptr, 10, 0, 0, 0, 255);
    char index = 60;
    painter->DrawCharBitmap(&index, &glyph, nullptr, 10, 0, 0, 255);
}

TEST_F(PainterTest, HoldsItsCanvas)
{
    zelxxx::ICanvas* canvas = zelCreateCanvas(4, 4, Color32Bit);
    canvas->Hold();
    PPainter painter = zelCreatePainter(canvas);
    EXPECT_EQ(canvas->Hold(), 3);
    canvas->Release();
    painter = nullptr;
    EXPECT_EQ(canvas->Release(), 0);
}

TEST_F(PainterTest, ColorModeIsTheCanvases)
{
    const PPainter painter = zelCreatePainter(zelCreateCanvas(4, 4, zelxxx::Color16Bit));
    EXPECT_EQ(painter->GetColorMode(), zelxxx::Color16Bit);
}

// ---- Origin and clip

TEST_F(PainterTest, OriginFallsOnTheTopLeftPixel)
{
    _painter->SetOrigin(100, 50);
    Fill(100, 50, 10, 10, 0x332211, 255);
    Expect({0, 0, 10, 10}, 0xff112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, NegativeOriginMovesRightAndDown)
{
    _painter->SetOrigin(-5, -6);
    Fill(0, 0, 3, 4, 0x332211, 255);
    Expect({5, 6, 8, 10}, 0xff112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, DifferenceToTheOriginWrapsTo16Bits)
{
    _painter->SetOrigin(-32768, 32767);
    Fill(32767, -32768, 3, 4, 0x332211, 255); // -1 and 1
    Expect({0, 1, 2, 5}, 0xff112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, RightAndBottomEdgesDoNotWrap)
{
    Fill(10, 20, 32767, 32767, 0x332211, 255);
    Expect({10, 20, kWidth, kHeight}, 0xff112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, HugeClipIsCutAtTheCanvas)
{
    _painter->SetClipping(-5, -5, 10000, 10000);
    Fill(-100, -100, 1000, 1000, 0x332211, 255);
    Expect({0, 0, kWidth, kHeight}, 0xff112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, ClipIsHalfOpenAndIgnoresTheOrigin)
{
    _painter->SetOrigin(7, 9);
    _painter->SetClipping(10, 11, 20, 15);
    Fill(0, 0, 1000, 1000, 0x332211, 255);
    Expect({10, 11, 20, 15}, 0xff112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, ClipOutsideTheCanvasDrawsNothing)
{
    _painter->SetClipping(kWidth, 0, kWidth + 10, kHeight);
    Fill(0, 0, 1000, 1000, 0x332211, 255);
    _painter->SetClipping(0, 0, -3, kHeight);
    Fill(0, 0, 1000, 1000, 0x332211, 255);
    _painter->SetClipping(20, 20, 10, 10);
    Fill(0, 0, 1000, 1000, 0x332211, 255);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, FramesAreNotDrawn)
{
    _painter->DrawFrame(1, 1, 20, 20, 3, 0x332211, 255, BlendSrcCopy);
    EXPECT_TRUE(IsAsExpected());
}

// ---- Modes

TEST_F(PainterTest, ColourHasRedInItsLowestByteAndNoFourth)
{
    Fill(0, 0, 1, 1, 0x99332211, 255);
    Fill(1, 0, 1, 1, 0x99332211, 0x77, BlendSrcCopy);
    Expect({0, 0, 1, 1}, 0xff112233);
    Expect({1, 0, 2, 1}, 0x77112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, TransparentSourceOverDrawsNothing)
{
    Fill(0, 0, 10, 10, 0x332211, 0);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, TransparentCopyReplacesThePixels)
{
    Fill(0, 0, 10, 10, 0x332211, 0, BlendSrcCopy);
    Expect({0, 0, 10, 10}, 0x00112233);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, CopyModeOfThePainterAloneDrawsNothing)
{
    _painter->SetBlendMode(BlendSrcCopy);
    Fill(0, 0, 10, 10, 0x332211, 255);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterTest, ColourKeyFillUsesTheColourSetLast)
{
    Fill(0, 0, 1, 1, 0x332211, 0x77, BlendSrcCopy);
    Fill(10, 10, 5, 5, 0xffffff, 255, BlendSrcOver, Blit_SRC_COLORKEY, 0);
    Fill(20, 10, 5, 5, 0xffffff, 0, BlendSrcOver, Blit_DST_COLORKEY, 0);
    Expect({0, 0, 1, 1}, 0x77112233);
    Expect({10, 10, 15, 15}, 0x77112233);
    Expect({20, 10, 25, 15}, 0x77112233);
    EXPECT_TRUE(IsAsExpected()) << "blitting flags do not hold back a fill";
}

TEST_F(PainterTest, CopyLeavesTheCanvasClearingUnderItsRule)
{
    Fill(0, 0, 1, 1, 0, 0, BlendSrcCopy);
    _canvas->Clear(0, 0, 5, 5, 0x112233, 0x44);
    Expect({0, 0, 5, 5}, 0x44112233);
    EXPECT_TRUE(IsAsExpected());
    // The flag is still set: another rule makes the next clear blend, here with the colour added.
    SurfaceOf(_canvas)->SetPorterDuff(SurfaceOf(_canvas), DSPD_DST_OVER);
    _canvas->Clear(10, 10, 5, 5, 0xffffff, 0xff);
    EXPECT_TRUE(IsAsExpected()) << "opaque pixels stay under the destination-over rule";
}

TEST_F(PainterTest, SourceOverEndsWithTheFlagsCleared)
{
    Fill(0, 0, 1, 1, 0, 0, BlendSrcCopy);
    Fill(0, 0, 1, 1, 0x332211, 255);
    _canvas->Clear(10, 10, 5, 5, 0x112233, 0x44);
    Expect({0, 0, 1, 1}, 0xff112233);
    Expect({10, 10, 15, 15}, 0x44112233);
    EXPECT_TRUE(IsAsExpected());
}

// ---- Random rectangles against a model

struct RandomRectangle
{
    int x, y, w, h;
    Box box; ///< what of it is on the canvas

    /** Around a canvas with a random origin and clip, which it gives the painter. */
    RandomRectangle(SeededRandom& random, zelxxx::IPainter& painter)
    {
        const auto pick = [&random](int least, int most) {
            return static_cast<int>(random.Between(least, most));
        };
        const int origin_x = pick(-300, 300);
        const int origin_y = pick(-300, 300);
        const Box clip = {pick(-10, kWidth), pick(-10, kHeight), pick(0, kWidth + 10),
                          pick(0, kHeight + 10)};
        x = pick(-20, kWidth) + origin_x;
        y = pick(-20, kHeight) + origin_y;
        w = pick(-2, kWidth);
        h = pick(-2, kHeight);
        painter.SetOrigin(static_cast<MetricValue>(origin_x), static_cast<MetricValue>(origin_y));
        painter.SetClipping(static_cast<MetricValue>(clip.x1), static_cast<MetricValue>(clip.y1),
                            static_cast<MetricValue>(clip.x2), static_cast<MetricValue>(clip.y2));
        box = {std::max(clip.x1, x - origin_x), std::max(clip.y1, y - origin_y),
               std::min(clip.x2, x - origin_x + w), std::min(clip.y2, y - origin_y + h)};
    }
};

ColorValue RandomColor(SeededRandom& random)
{
    return static_cast<ColorValue>(random.Between(0, 0xffffff));
}

TEST_F(PainterTest, OpaqueAndCopiedRectanglesMatchTheModel)
{
    SeededRandom random;
    for (int i = 0; i < 300; ++i) {
        const RandomRectangle r(random, *_painter);
        const ColorValue color = RandomColor(random);
        const bool copy = random.Between(0, 1) != 0;
        const auto blend = static_cast<BlendValue>(copy ? random.Between(0, 255) : 255);
        Fill(r.x, r.y, r.w, r.h, color, blend, copy ? BlendSrcCopy : BlendSrcOver);
        Expect(r.box, Argb(color, blend));
        ASSERT_TRUE(IsAsExpected()) << "rectangle " << i;
    }
}

/**
 * Source over in real numbers. DirectFB does not multiply a fill's colour by its opacity: the
 * colour is added in full to what the opacity leaves of the ground, and cut at 255.
 */
double SourceOver(unsigned source, unsigned ground, unsigned alpha)
{
    return std::min(255.0, source + ground * (255 - alpha) / 255.0);
}

TEST_F(PainterTest, TranslucentRectanglesMatchTheModelWithinOneStep)
{
    SeededRandom random;
    for (int i = 0; i < 300; ++i) {
        ArgbImage ground(kWidth, kHeight, 0);
        for (std::uint32_t& pixel : ground.pixels)
            pixel = static_cast<std::uint32_t>(random.Between(0, 0xffffffff));
        SetPixels(SurfaceOf(_canvas), ground);
        const RandomRectangle r(random, *_painter);
        const ColorValue color = RandomColor(random);
        const auto blend = static_cast<BlendValue>(random.Between(1, 254));
        Fill(r.x, r.y, r.w, r.h, color, blend);

        const std::uint32_t source = Argb(color, blend);
        const ArgbImage drawn = Drawn();
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                if (!r.box.Holds(x, y)) {
                    ASSERT_EQ(drawn.At(x, y), ground.At(x, y)) << x << " " << y;
                    continue;
                }
                for (int shift = 0; shift < 32; shift += 8) {
                    const double expected =
                        SourceOver(source >> shift & 0xff, ground.At(x, y) >> shift & 0xff, blend);
                    ASSERT_NEAR(drawn.At(x, y) >> shift & 0xff, expected, 1.0)
                        << "at " << x << " " << y << " bit " << shift << ", " << std::hex << source
                        << " over " << ground.At(x, y);
                }
            }
        }
    }
}

// ---- 8-bit canvases

class PainterOn8Bit : public PainterTest
{
protected:
    PainterOn8Bit() : PainterTest(Color8Bit, 60) {}
};

TEST_F(PainterOn8Bit, CopyWritesTheIndex)
{
    Fill(5, 6, 7, 8, 201, 0, BlendSrcCopy);
    Expect({5, 6, 12, 14}, 201);
    EXPECT_TRUE(IsAsExpected());
}

TEST_F(PainterOn8Bit, IndicesMatchTheModelInEveryFillMode)
{
    SeededRandom random;
    _painter->SetBlendMode(BlendSrcOver8BIT);
    for (int i = 0; i < 400; ++i) {
        const RandomRectangle r(random, *_painter);
        const auto index = static_cast<ColorValue>(random.Between(0, 187));
        const bool copy = random.Between(0, 3) == 0;
        // The opacity plays no part.
        const auto blend = static_cast<BlendValue>(random.Between(0, 255));
        Fill(r.x, r.y, r.w, r.h, index, blend, copy ? BlendSrcCopy : BlendSrcOver);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                if (!r.box.Holds(x, y))
                    continue;
                auto pixel = static_cast<UInt8>(_expected.At(x, y));
                if (copy)
                    pixel = static_cast<UInt8>(index);
                else
                    zelxxx::OSD_BlendPixels(&pixel, static_cast<UInt8>(index));
                _expected.At(x, y) = pixel;
            }
        }
        ASSERT_TRUE(IsAsExpected()) << "rectangle " << i << " index " << index;
    }
}

TEST_F(PainterOn8Bit, ColourKeyFillUsesTheIndexSetLast)
{
    Fill(0, 0, 1, 1, 77, 255, BlendSrcCopy);
    Fill(5, 6, 7, 8, 90, 255, BlendSrcOver, Blit_SRC_COLORKEY, 91);
    Expect({0, 0, 1, 1}, 77);
    Expect({5, 6, 12, 14}, 77);
    EXPECT_TRUE(IsAsExpected());
}

} // namespace
