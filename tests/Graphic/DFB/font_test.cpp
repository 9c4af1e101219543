#include "font_support.h"
#include "seeded_random.h"

#include <climits>
#include <cmath>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace kestrin_test;

namespace {

// ---- Metrics ----

TEST_F(FontTest, LineHeightIsTheSameForEveryFont)
{
    const PFont sans = OpenFile(kSans);
    const PFont blank = OpenFile("missing");
    for (int size = 0; size <= 65535; size += size < 200 ? 1 : 997) {
        FontMetrics metrics = {};
        sans->GetFTFontMetrics(static_cast<UInt16>(size), FontBold, &metrics);
        const auto below = static_cast<int>(std::ceil(size * 62 / 256.0));
        const auto above = static_cast<int>(std::ceil(size * 231 / 256.0));
        EXPECT_EQ(metrics.height, static_cast<UInt16>(below + above)) << size;
        FontMetrics other = {};
        blank->GetFTFontMetrics(static_cast<UInt16>(size), FontRegular, &other);
        EXPECT_EQ(other.height, metrics.height) << size;
    }
}

TEST_F(FontTest, Size24HasLinesOf28PixelsAndSize0HasNone)
{
    const PFont font = OpenFile(kSans);
    FontMetrics metrics = {};
    font->GetFTFontMetrics(24, FontRegular, &metrics);
    EXPECT_EQ(metrics.height, 28);
    font->GetFTFontMetrics(0, FontRegular, &metrics);
    EXPECT_EQ(metrics.height, 0);
}

TEST_F(FontTest, LineMetricsButForTheHeightAreConstants)
{
    const PFont font = OpenFile(kSans);
    for (const bool through_directfb : {false, true}) {
        FontMetrics m = {};
        if (through_directfb)
            font->GetFontMetrics(24, FontItalic, &m);
        else
            font->GetFTFontMetrics(24, FontItalic, &m);
        EXPECT_EQ(std::tie(m.x_min, m.y_min, m.x_max, m.y_max), std::make_tuple(40, 62, 271, 231));
        EXPECT_EQ(std::tie(m.outline_resolution, m.metrics_resolution), std::make_tuple(0U, 1U));
        EXPECT_EQ(std::tie(m.metrics_x_scale, m.metrics_y_scale), std::make_tuple(0, 0));
        EXPECT_EQ(m.height, 28);
    }
}

TEST_F(FontTest, OffsetsAreTheFacesBoxRoundedOutward)
{
    for (const std::string& name : {kSans, kSerif, kScreen}) {
        const PFont font = OpenFile(name);
        const Oracle oracle(name);
        const double units = oracle.face->units_per_EM;
        const FT_BBox& box = oracle.face->bbox;
        for (int size = 0; size < 300; ++size) {
            const auto s = static_cast<UInt16>(size);
            EXPECT_EQ(font->GetFTYOffsetTop(s), std::ceil(box.yMax * size / units)) << size;
            EXPECT_EQ(font->GetFTYOffsetBottom(s), std::ceil(-box.yMin * size / units)) << size;
            EXPECT_EQ(font->GetFTXOffsetLeft(s, 150, 100),
                      std::ceil(-box.xMin * size * 1.5 / units))
                << size;
        }
    }
}

TEST_F(FontTest, AdvancesAreFontUnitsTimesSize)
{
    for (const std::string& name : {kSans, kScreen}) {
        const PFont font = OpenFile(name);
        const Oracle oracle(name);
        for (int ch = 1; ch < 0x500; ++ch) {
            const auto c = static_cast<WChar>(ch);
            FT_Load_Glyph(oracle.face, oracle.Glyph(c), FT_LOAD_NO_SCALE);
            const auto advance = static_cast<Int32>(oracle.face->glyph->advance.x);
            EXPECT_EQ(font->GetFTNoScaleCharMetricsX(c, 24, FontRegular), 24 * advance) << ch;
            EXPECT_EQ(font->GetFTNoScaleCharMetricsX(c, 65535, FontBold), 65535 * advance) << ch;
        }
    }
}

TEST_F(FontTest, KerningIsFontUnitsTimesSize)
{
    const PFont font = OpenFile(kSans);
    const Oracle oracle(kSans);
    int kerned = 0;
    for (WChar left = 'A'; left <= 'z'; ++left) {
        for (WChar right = 'A'; right <= 'z'; ++right) {
            FT_Vector kerning = {};
            FT_Get_Kerning(oracle.face, oracle.Glyph(left), oracle.Glyph(right),
                           FT_KERNING_UNSCALED, &kerning);
            kerned += kerning.x != 0;
            EXPECT_EQ(font->GetFTKerning(left, right, 20, FontRegular), 20 * kerning.x);
        }
    }
    EXPECT_GT(kerned, 0) << "the font has no pair to look at";
}

// ---- Unit conversions ----

/** The first division of the two conversions, by arithmetic that cannot overflow. */
using Wide = std::int64_t;

Int32 Pixels(Int32 val, Int32 units)
{
    return static_cast<Int32>((static_cast<Wide>(val) + units - 1) / units);
}

TEST_F(FontTest, UnitConversionsMatchWideArithmeticEverywhere)
{
    const PFont font = OpenFile(kSans);
    constexpr Int32 units = 2048;
    SeededRandom random;
    const auto any = [&] {
        const std::int64_t ends[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, 100, INT_MAX};
        switch (random.Between(0, 2)) {
        case 0:
            return static_cast<Int32>(ends[random.Between(0, 6)]);
        case 1:
            return static_cast<Int32>(random.Between(-5000, 5000));
        default:
            return static_cast<Int32>(random.Between(INT_MIN, INT_MAX));
        }
    };
    for (int i = 0; i < 100000; ++i) {
        const Int32 val = any();
        const Int32 m = any();
        const Int32 d = any();
        const Int32 t = Pixels(val, units);
        const Int32 drawn = d == 0 ? 0 : static_cast<Int32>((static_cast<Wide>(m) * t + d - 1) / d);
        ASSERT_EQ(font->NoScaleFontUnitsToPixelsInDrawText(val, m, d), drawn)
            << val << ' ' << m << ' ' << d;
        const UInt32 um = static_cast<UInt32>(m);
        const UInt32 ud = static_cast<UInt32>(d);
        const UInt32 laid_out = ud == 0 ? 0 : (um * static_cast<UInt32>(t) + ud - 1) / ud;
        ASSERT_EQ(font->NoScaleFontUnitsToPixelsInCalculate(val, um, ud),
                  static_cast<Int32>(laid_out))
            << val << ' ' << m << ' ' << d;
    }
}

TEST_F(FontTest, OnlyDrawingKeepsNegativeWidthsNegative)
{
    const PFont font = OpenFile(kSans);
    EXPECT_EQ(font->NoScaleFontUnitsToPixelsInDrawText(-4096 * 4, 200, 100), -13);
    EXPECT_EQ(font->NoScaleFontUnitsToPixelsInCalculate(-4096 * 4, 200, 100),
              static_cast<Int32>((0U - 1400 + 99) / 100));
    EXPECT_GT(font->NoScaleFontUnitsToPixelsInCalculate(-4096 * 4, 200, 100), 1000000);
}

TEST_F(FontTest, DenominatorZeroGivesZeroAndGlyphsWithoutStretch)
{
    const PFont font = OpenFile(kSans);
    EXPECT_EQ(font->NoScaleFontUnitsToPixelsInCalculate(100000, 100, 0), 0);
    EXPECT_EQ(font->NoScaleFontUnitsToPixelsInDrawText(100000, 100, 0), 0);
    EXPECT_EQ(font->GetFTXOffsetLeft(20, 100, 0), 0);
    EXPECT_EQ(Rows(GlyphOf(*font, 'R', 30, 100, 0)), Rows(GlyphOf(*font, 'R', 30)));
}

TEST_F(FontTest, DivisorThatLeavesNothingIn32BitsGivesZero)
{
    const PFont font = OpenFile(kSans);
    EXPECT_EQ(font->GetFTXOffsetLeft(20, 100, 1U << 21), 0); // 2048 units x 2^21
    EXPECT_EQ(font->NoScaleFontUnitsToPixelsInDrawText(INT_MIN, 100, -1), 100 * 1048575 + 2);
}

TEST_F(FontTest, LeftOffsetTakesEveryScaler)
{
    const PFont font = OpenFile(kSans);
    const Oracle oracle(kSans);
    SeededRandom random;
    for (int i = 0; i < 20000; ++i) {
        const auto size = static_cast<UInt16>(random.Between(0, 65535));
        const auto m = static_cast<UInt32>(random.Between(0, UINT32_MAX));
        const auto d = static_cast<UInt32>(random.Between(0, UINT32_MAX));
        const UInt32 divisor = 2048 * d;
        const UInt32 overhang = static_cast<UInt32>(-oracle.face->bbox.xMin) * size;
        const UInt32 expected = divisor == 0 ? 0 : (overhang * m + divisor - 1) / divisor;
        ASSERT_EQ(font->GetFTXOffsetLeft(size, m, d), static_cast<Int32>(expected));
    }
}

// ---- Glyphs ----

TEST_F(FontTest, GlyphsAreFreeTypesOwnAtEverySize)
{
    for (const std::string& name : {kSans, kScreen}) {
        const PFont font = OpenFile(name);
        Oracle oracle(name);
        for (const int size : {1, 8, 16, 24, 37, 60, 100}) {
            for (const WChar ch : {0x41, 0x67, 0x20, 0xe9, 0x416, 0x3a9}) {
                SCOPED_TRACE(testing::Message() << name << ' ' << size << ' ' << ch);
                ExpectGlyph(GlyphOf(*font, ch, static_cast<UInt16>(size)), oracle, oracle.Glyph(ch),
                            size, 72);
            }
        }
    }
}

TEST_F(FontTest, ScalersStretchSidewaysOnly)
{
    const PFont font = OpenFile(kSans);
    Oracle oracle(kSans);
    for (const auto& [molecule, denominator] : {std::pair{150U, 100U}, {1U, 2U}, {77U, 100U}}) {
        SCOPED_TRACE(testing::Message() << molecule << " / " << denominator);
        const CharMetrics glyph = GlyphOf(*font, 'm', 30, molecule, denominator);
        ExpectGlyph(glyph, oracle, oracle.Glyph('m'), 30,
                    static_cast<int>(molecule * 72 / denominator));
    }
    EXPECT_GT(GlyphOf(*font, 'm', 30, 150, 100).width, GlyphOf(*font, 'm', 30).width);
    EXPECT_EQ(GlyphOf(*font, 'm', 30, 150, 100).height, GlyphOf(*font, 'm', 30).height);
}

TEST_F(FontTest, LargestScalersAreSafe)
{
    const PFont font = OpenFile(kSans);
    for (const UInt32 molecule : {0U, 1U, 0x80000000U, 0xffffffffU}) {
        for (const UInt32 denominator : {1U, 0x7fffffffU, 0xffffffffU}) {
            const CharMetrics glyph = GlyphOf(*font, 'A', 65535, molecule, denominator);
            EXPECT_EQ(glyph.buffer == nullptr, glyph.width * glyph.height == 0);
        }
    }
}

TEST_F(FontTest, CharacterWithoutAGlyphIsASpace)
{
    const PFont font = OpenFile(kSans);
    const FT_UInt space = font->GetFontIndex(' ');
    ASSERT_NE(space, 0U);
    for (const WChar ch : {0x01, 0x4e2d, 0xffff}) { // one below 256, where the index is cached
        EXPECT_EQ(font->GetFontIndex(ch), space) << ch;
        EXPECT_EQ(font->GetFTNoScaleCharMetricsX(ch, 20, FontRegular),
                  font->GetFTNoScaleCharMetricsX(' ', 20, FontRegular));
        EXPECT_EQ(GlyphOf(*font, ch, 20).width, 0);
    }
}

TEST_F(FontTest, IndicesOfAllCharactersAreTheFaces)
{
    const PFont font = OpenFile(kSans);
    const Oracle oracle(kSans);
    for (int ch = 0; ch <= 0xffff; ++ch)
        EXPECT_EQ(font->GetFontIndex(static_cast<WChar>(ch)), oracle.Glyph(static_cast<WChar>(ch)));
}

TEST_F(FontTest, GlyphBeyond255PixelsHasNoBitmap)
{
    const PFont font = OpenFile(kSans);
    for (const WChar ch : {'W', 'I'}) {
        const CharMetrics glyph = GlyphOf(*font, ch, 400);
        EXPECT_EQ(glyph.buffer, nullptr);
        EXPECT_EQ(glyph.width, 255);
        EXPECT_EQ(glyph.height, 0);
        EXPECT_EQ(glyph.hori_bearing_x, 0);
        EXPECT_EQ(glyph.bitmap_top, 0);
    }
}

TEST_F(FontTest, GlyphWhoseAdvanceOrBearingPasses127PixelsHasNoBitmapEither)
{
    const PFont font = OpenFile(kSans);
    Oracle oracle(kSans);
    const auto fits = [](FT_Pos pixels) { return pixels >= -128 && pixels <= 127; };
    int drawn = 0;
    int dropped = 0;
    for (int size = 80; size < 300; size += 3) {
        for (const WChar ch : {'I', 'W', 'g', 'j', '-'}) {
            const FT_Bitmap& bitmap = oracle.Render(oracle.Glyph(ch), size, 72);
            const FT_GlyphSlot slot = oracle.face->glyph;
            const bool small = bitmap.width <= 255 && bitmap.rows <= 255 &&
                               fits(slot->bitmap_left) && fits(slot->bitmap_top) &&
                               fits((slot->advance.x + 32) >> 6);
            const CharMetrics glyph = GlyphOf(*font, ch, static_cast<UInt16>(size));
            EXPECT_EQ(glyph.buffer != nullptr, small) << size << ' ' << ch;
            ++(small ? drawn : dropped);
        }
    }
    EXPECT_GT(drawn, 0);
    EXPECT_GT(dropped, 0);
}

/** A bitmap font with an 11 x 3 glyph for "A", one bit a pixel. */
const std::string kBitmapFont = "STARTFONT 2.1\n"
                                "FONT test\n"
                                "SIZE 3 72 72\n"
                                "FONTBOUNDINGBOX 11 3 0 0\n"
                                "STARTPROPERTIES 2\n"
                                "CHARSET_REGISTRY \"ISO10646\"\n"
                                "CHARSET_ENCODING \"1\"\n"
                                "ENDPROPERTIES\n"
                                "CHARS 1\n"
                                "STARTCHAR A\n"
                                "ENCODING 65\n"
                                "SWIDTH 500 0\n"
                                "DWIDTH 12 0\n"
                                "BBX 11 3 0 0\n"
                                "BITMAP\n"
                                "8020\n"
                                "5540\n"
                                "FFE0\n"
                                "ENDCHAR\n"
                                "ENDFONT\n";

TEST_F(FontTest, BitmapsOfTheFontFileBecomeOneByteAPixel)
{
    const PFont font = OpenBytes(kBitmapFont);
    const CharMetrics glyph = GlyphOf(*font, 'A', 3);
    ASSERT_EQ(glyph.width, 11);
    ASSERT_EQ(glyph.height, 3);
    EXPECT_EQ(glyph.bitmap_top, 3);
    const auto x = 255;
    EXPECT_EQ(Rows(glyph), (std::vector<std::vector<int>>{{x, 0, 0, 0, 0, 0, 0, 0, 0, 0, x},
                                                          {0, x, 0, x, 0, x, 0, x, 0, x, 0},
                                                          {x, x, x, x, x, x, x, x, x, x, x}}));
}

} // namespace
