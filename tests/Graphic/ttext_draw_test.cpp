#include "text_support.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/** A text whose layout a test gives, in a scene whose painter records. */
class TextDraw : public testing::Test
{
protected:
    TextDraw() : _scene(0, 720, 576, Color32Bit, SceneUseSingleBuffer, BlendSrcOver)
    {
        _scene.CurrentPainter = &_painter;
        _text->ParentScene = &_scene;
        _text->DirtyBound = {10, 20, 110, 60};
        _text->SetAttribute(AttrFontIndex, 1);
        _text->SetAttribute(AttrFontSize, 24);
        _text->SetText("x", 1, EncodingASCII, &_formater);
    }
    ~TextDraw() override { _text->ParentScene = nullptr; }

    /** What is drawn for a layout on a display of the mode. */
    const std::vector<Drawn>& Draw(ColorMode mode, TestFormater::Layout layout)
    {
        _painter.mode = mode;
        _painter.drawn.clear();
        _formater.layout = std::move(layout);
        _text->SetAttribute(AttrNone, 0);
        _text->Paint();
        return _painter.drawn;
    }
    CharMetrics Metrics(WChar ch, UInt16 size, UInt32 molecule, UInt32 denominator)
    {
        CharMetrics glyph = {};
        _text->GetFont()->GetFTCharMetrics(ch, size, FontRegular, &glyph, molecule, denominator);
        return glyph;
    }
    int Advance(WChar ch, UInt16 size) const
    {
        IFont* font = _text->GetFont();
        return font->NoScaleFontUnitsToPixelsInDrawText(
            font->GetFTNoScaleCharMetricsX(ch, size, FontRegular), 100, 100);
    }

    Scene _scene;
    RecordingPainter _painter{Color32Bit};
    TestFormater _formater;
    PText _text = new Text(PResource(OpenSans()));
};

void OneCharacter(IText& text)
{
    text.AddCharInfo(0, 0, 0, 'A');
}

// ---- 32-bit displays ----

TEST_F(TextDraw, CharacterStandsAtTheBoundPlusItsOffset)
{
    EXPECT_THAT(Draw(Color32Bit, [](IText& text) { text.AddCharInfo(7, -5, 99, 'A'); }),
                ElementsAre(Drawn{"glyph", {24, 17, 15, 0x00ffffff, 255}}));
    EXPECT_EQ(_painter.font, _text->GetFont());
}

TEST_F(TextDraw, GlyphsOfWhichNothingIsSeenAreLeftOut)
{
    const CharMetrics glyph = Metrics('A', 24, 100, 100);
    const int x = 10 + glyph.hori_bearing_x;
    const int y = 20 - glyph.bitmap_top + _text->GetFont()->GetFTYOffsetTop(24);
    const int right = x + glyph.width;
    const int bottom = y + glyph.height;
    const auto drawn = [&](int x1, int y1, int x2, int y2) {
        const DirtyRect seen = {Wrap(x1), Wrap(y1), Wrap(x2), Wrap(y2)};
        _scene.CurrentSeen = &seen;
        const std::size_t count = Draw(Color32Bit, OneCharacter).size();
        _scene.CurrentSeen = nullptr;
        return count;
    };
    EXPECT_EQ(drawn(x, y, right, bottom), 1U);
    // A pixel at each edge, and none.
    EXPECT_EQ(drawn(right - 1, 0, 720, 576), 1U);
    EXPECT_EQ(drawn(right, 0, 720, 576), 0U);
    EXPECT_EQ(drawn(0, 0, x + 1, 576), 1U);
    EXPECT_EQ(drawn(0, 0, x, 576), 0U);
    EXPECT_EQ(drawn(0, bottom - 1, 720, 576), 1U);
    EXPECT_EQ(drawn(0, bottom, 720, 576), 0U);
    EXPECT_EQ(drawn(0, 0, 720, y + 1), 1U);
    EXPECT_EQ(drawn(0, 0, 720, y), 0U);
}

TEST_F(TextDraw, PositionsWrapTo16Bits)
{
    EXPECT_THAT(Draw(Color32Bit, [](IText& text) { text.AddCharInfo(32767, -32768, 0, 'A'); }),
                ElementsAre(Drawn{"glyph", {24, 32777 - 65536, -32748, 0x00ffffff, 255}}));
}

TEST_F(TextDraw, GlyphIsTheFontsAtTheWidgetsSizeAndScalers)
{
    _text->SetAttribute(AttrFontScalerMolecule, 3);
    _text->SetAttribute(AttrFontScalerDenominator, 2);
    Draw(Color32Bit, [](IText& text) { text.AddCharInfo(0, 0, 0, 0x3a9); });
    const CharMetrics glyph = Metrics(0x3a9, 24, 3, 2);
    EXPECT_EQ(_painter.last_glyph.width, glyph.width);
    EXPECT_EQ(_painter.last_glyph.height, glyph.height);
    EXPECT_EQ(_painter.last_glyph.bitmap_top, glyph.bitmap_top);
    ASSERT_THAT(_painter.coverage, SizeIs(1));
    EXPECT_EQ(_painter.coverage[0],
              std::string(glyph.buffer, glyph.buffer + glyph.width * glyph.height));
    EXPECT_GT(glyph.width, Metrics(0x3a9, 24, 100, 100).width);
}

TEST_F(TextDraw, WithoutAColourRecordCharactersAreWhiteWhateverTheColourAttribute)
{
    _text->SetAttribute(AttrColor, 0x00112233);
    EXPECT_THAT(Draw(Color32Bit, OneCharacter),
                ElementsAre(Drawn{"glyph", {24, 10, 20, 0x00ffffff, 255}}));
}

TEST_F(TextDraw, ColourRecordHoldsForAllThatFollows)
{
    EXPECT_THAT(Draw(Color32Bit,
                     [](IText& text) {
                         text.AddCharInfo(0, 0, 0, 'A');
                         text.AddColorInfo(0x11, 0x22, 0x33, 128);
                         text.AddCharInfo(1, 0, 0, 'B');
                         text.AddCharInfo(2, 0, 0, 'C');
                         text.AddColorInfo(0xff, 0, 0, 0);
                         text.AddCharInfo(3, 0, 0, 'D');
                     }),
                ElementsAre(Drawn{"glyph", {24, 10, 20, 0x00ffffff, 255}},
                            Drawn{"glyph", {24, 11, 20, 0x00332211, 128}},
                            Drawn{"glyph", {24, 12, 20, 0x00332211, 128}},
                            Drawn{"glyph", {24, 13, 20, 0x000000ff, 0}}));
}

TEST_F(TextDraw, ColourDoesNotOutliveTheReplay)
{
    const auto layout = [](IText& text) {
        text.AddCharInfo(0, 0, 0, 'A');
        text.AddColorInfo(1, 2, 3, 4);
    };
    Draw(Color32Bit, layout);
    _painter.drawn.clear();
    _text->Paint();
    EXPECT_THAT(_painter.drawn, ElementsAre(Drawn{"glyph", {24, 10, 20, 0x00ffffff, 255}}));
}

TEST_F(TextDraw, GlyphBlendIsTheWidgetsOwnTimesTheAlphaRoundedDown)
{
    const auto layout = [](IText& text) {
        text.AddColorInfo(0, 0, 0, 128);
        text.AddCharInfo(0, 0, 0, 'A');
    };
    EXPECT_THAT(Draw(Color32Bit, layout), ElementsAre(Drawn{"glyph", {24, 10, 20, 0, 128}}));
    _text->SetAttribute(AttrBlend, 128);
    EXPECT_THAT(Draw(Color32Bit, layout), ElementsAre(Drawn{"glyph", {24, 10, 20, 0, 64}}));
}

TEST_F(TextDraw, BlendOfTheLayerOrAModifierDoesNotReachTheGlyphs)
{
    _text->DirtyBlend = 9;
    _text->BlendPainter = 8;
    EXPECT_THAT(Draw(Color32Bit, OneCharacter),
                ElementsAre(Drawn{"glyph", {24, 10, 20, 0x00ffffff, 255}}));
}

TEST_F(TextDraw, WithOpacityZeroNothingIsDrawnNotEvenACursor)
{
    _text->DirtyBlend = 0;
    EXPECT_THAT(Draw(Color32Bit,
                     [](IText& text) {
                         text.AddCharInfo(0, 0, 0, 'A');
                         text.AddCursorInfo(0, 0, 'A', 0xffffffff);
                     }),
                IsEmpty());
    EXPECT_EQ(_formater.runs, 1) << "the layout is made all the same";
}

TEST_F(TextDraw, LayoutWithoutRecordsDrawsNothing)
{
    EXPECT_THAT(Draw(Color32Bit, nullptr), IsEmpty());
}

TEST_F(TextDraw, CursorIsALineAtNineTenthsOfTheLineHeight)
{
    // Lines of size 24 are 28 pixels high.
    EXPECT_THAT(Draw(Color32Bit, [](IText& text) { text.AddCursorInfo(3, 0, 'W', 0x80112233); }),
                ElementsAre(Drawn{"rectangle",
                                  {13, 20 + 25, Advance('W', 24), 1, 0x00112233, 0x80, 0, 0, 0}}));
    EXPECT_THAT(
        Draw(Color32Bit, [](IText& text) { text.AddCursorInfo(-3, -30, 'i', 0x00ffffff); }),
        ElementsAre(Drawn{"rectangle", {7, 15, Advance('i', 24), 1, 0x00ffffff, 0, 0, 0, 0}}));
}

TEST_F(TextDraw, CursorIsAsWideAsItsCharacterStretched)
{
    const int plain = Advance('W', 24);
    _text->SetAttribute(AttrFontScalerMolecule, 200);
    const auto& drawn =
        Draw(Color32Bit, [](IText& text) { text.AddCursorInfo(0, 0, 'W', 0xff000000); });
    ASSERT_THAT(drawn, SizeIs(1));
    EXPECT_EQ(drawn[0].numbers[2], 2 * plain);
}

TEST_F(TextDraw, CursorTakesNoPartInTheColourOfCharacters)
{
    EXPECT_THAT(Draw(Color32Bit,
                     [](IText& text) {
                         text.AddCursorInfo(0, 0, 'i', 0xff010203);
                         text.AddCharInfo(0, 0, 0, 'A');
                     })[1],
                (Drawn{"glyph", {24, 10, 20, 0x00ffffff, 255}}));
}

/** Attribute of the modified copy while it is attached. */
class FontSizeModifier : public Modifier
{
public:
    void Modify(IWidget* widget) override
    {
        widget->SetAttribute(AttrFontSize, 40);
        widget->SetAttribute(AttrBlend, 1);
        widget->SetAttribute(AttrFontScalerMolecule, 1);
    }
    void SetAttribute(AttrIndex, AttrValue) override {}
    AttrValue GetAttribute(AttrIndex) override { return 0; }
};

TEST_F(TextDraw, ModifiedCopyDecidesTheSizeButNotTheBlendNorTheScalers)
{
    static_cast<IText&>(*_text).AddModifier(new FontSizeModifier);
    _text->Modify();
    EXPECT_THAT(Draw(Color32Bit, OneCharacter),
                ElementsAre(Drawn{"glyph", {40, 10, 20, 0x00ffffff, 255}}));
    EXPECT_EQ(_painter.last_glyph.width, Metrics('A', 40, 100, 100).width);
}

TEST_F(TextDraw, GlyphTooLargeForTheCacheIsHandedOnWithoutABitmap)
{
    _text->SetAttribute(AttrFontSize, 500);
    ASSERT_THAT(Draw(Color32Bit, OneCharacter), SizeIs(1));
    EXPECT_EQ(_painter.last_glyph.buffer, nullptr);
    ASSERT_THAT(Draw(Color8Bit, OneCharacter), SizeIs(1));
    EXPECT_EQ(_painter.pixels.back(), "");
}

TEST_F(TextDraw, LongTextIsReplayedToItsEnd)
{
    const auto& drawn = Draw(Color32Bit, [](IText& text) {
        for (Int16 i = 0; i < 2000; ++i)
            text.AddCharInfo(i, 0, 0, 'i');
    });
    ASSERT_THAT(drawn, SizeIs(2000));
    EXPECT_EQ(drawn.back().numbers[1], 10 + 1999);
}

// ---- 8-bit displays ----

/** Makes a palette current whose entry i has red i, green i + 1, blue i + 2 and opacity i / 2. */
class CurrentPalette
{
public:
    CurrentPalette() : _view(zelCreateView(0, 720, 576, Color8Bit, false))
    {
        PaletteEntry entries[256];
        for (int i = 0; i < 256; ++i)
            entries[i] = {static_cast<UInt8>(i), static_cast<UInt8>(i + 1),
                          static_cast<UInt8>(i + 2), static_cast<UInt8>(i / 2)};
        _view->SetPalette(PPalette(zelCreatePalette(entries)));
    }
    ~CurrentPalette() { _view->SetPalette(nullptr); }
    CurrentPalette(const CurrentPalette&) = delete;
    CurrentPalette& operator=(const CurrentPalette&) = delete;

private:
    PView _view;
};

void IndexedCharacter(IText& text)
{
    text.AddColorIndex(100);
    text.AddCharInfo(7, -5, 0, 'A');
}

TEST_F(TextDraw, OnAnEightBitDisplayTheFormaterTurnsGlyphsIntoIndices)
{
    const CurrentPalette palette;
    _formater.ink = 60;
    EXPECT_THAT(Draw(Color8Bit, IndexedCharacter),
                ElementsAre(Drawn{"indices", {24, 17, 15, 255}}));
    const CharMetrics glyph = Metrics('A', 24, 100, 100);
    EXPECT_THAT(_formater.asked,
                ElementsAre(Drawn{"buffer", {glyph.width, glyph.height, 0x00666564, 50}}));
    ASSERT_THAT(_painter.pixels, SizeIs(1));
    ASSERT_THAT(_painter.pixels[0], SizeIs(glyph.width * glyph.height));
    for (std::size_t i = 0; i < _painter.pixels[0].size(); ++i)
        ASSERT_EQ(_painter.pixels[0][i], glyph.buffer[i] >= 128 ? 60 : 0);
}

TEST_F(TextDraw, BufferIsClearForEveryGlyph)
{
    Draw(Color8Bit, [](IText& text) {
        text.AddCharInfo(0, 0, 0, 'W');
        text.AddCharInfo(0, 0, 0, 'W');
        text.AddCharInfo(0, 0, 0, '.');
    });
    ASSERT_THAT(_formater.entry_pixels, SizeIs(3));
    for (const std::string& pixels : _formater.entry_pixels)
        EXPECT_THAT(pixels, Each('\0'));
}

TEST_F(TextDraw, FormaterGetsTheBlendAndThePainterDoesNot)
{
    const CurrentPalette palette;
    _text->SetAttribute(AttrBlend, 128);
    EXPECT_THAT(Draw(Color8Bit, IndexedCharacter),
                ElementsAre(Drawn{"indices", {24, 17, 15, 255}}));
    EXPECT_EQ(_formater.asked.back().numbers[3], 128 * 50 / 255);
}

TEST_F(TextDraw, WithoutAPaletteAColourIndexIsWhiteAndOpaque)
{
    Draw(Color8Bit, IndexedCharacter);
    const CharMetrics glyph = Metrics('A', 24, 100, 100);
    EXPECT_THAT(_formater.asked,
                ElementsAre(Drawn{"buffer", {glyph.width, glyph.height, 0x00ffffff, 255}}));
}

TEST_F(TextDraw, OnlyAnEightBitDisplayLooksAtThePalette)
{
    const CurrentPalette palette;
    for (const ColorMode mode : {Color1Bit, Color4Bit, Color16Bit, Color24Bit}) {
        EXPECT_THAT(Draw(mode, IndexedCharacter), ElementsAre(Drawn{"indices", {24, 17, 15, 255}}));
        EXPECT_EQ(_formater.asked.back().numbers[2], 0x00ffffff) << mode;
    }
}

TEST_F(TextDraw, CursorOnAnEightBitDisplayIsAnOpaqueIndex)
{
    EXPECT_THAT(Draw(Color8Bit, [](IText& text) { text.AddCursorInfo(0, 0, 'W', 0x80112233); }),
                ElementsAre(Drawn{"rectangle", {10, 45, Advance('W', 24), 1, 0x33, 255, 0, 0, 0}}));
}

// ---- Streams made for the other kind of display ----

TEST_F(TextDraw, ColourRecordEndsTheReplayOnAnEightBitDisplay)
{
    EXPECT_THAT(Draw(Color8Bit,
                     [](IText& text) {
                         text.AddCharInfo(0, 0, 0, 'A');
                         text.AddColorInfo(1, 2, 3, 4); // read as an index and three loose bytes
                         text.AddCharInfo(1, 0, 0, 'B');
                     }),
                ElementsAre(Drawn{"indices", {24, 10, 20, 255}}));
}

TEST_F(TextDraw, ColourIndexSwallowsTheStartOfTheNextRecordOnA32BitDisplay)
{
    EXPECT_THAT(Draw(Color32Bit,
                     [](IText& text) {
                         text.AddCharInfo(0, 0, 0, 'A');
                         text.AddColorIndex(100);
                         text.AddCharInfo(1, 0, 0, 'B');
                     }),
                ElementsAre(Drawn{"glyph", {24, 10, 20, 0x00ffffff, 255}}));
}

TEST_F(TextDraw, ColourIndexAtTheVeryEndIsNotReadBeyond)
{
    // 99 of 100 bytes: what is read as six bytes begins three before the end.
    EXPECT_THAT(Draw(Color32Bit,
                     [](IText& text) {
                         for (int i = 0; i < 12; ++i)
                             text.AddCharInfo(0, 0, 0, 'i');
                         text.AddColorIndex(1);
                     }),
                SizeIs(12));
}

TEST_F(TextDraw, FormaterThatTakesTheResourceAwayIsSafe)
{
    EXPECT_THAT(Draw(Color32Bit,
                     [](IText& text) {
                         text.AddCharInfo(0, 0, 0, 'A');
                         text.SwitchResource(nullptr);
                     }),
                IsEmpty());
}

} // namespace
