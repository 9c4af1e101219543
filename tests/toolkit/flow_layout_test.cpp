/** Measuring without drawing, what is kept, and texts that are not as they should be. */
#include "flow_recorder.h"
#include "seeded_random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace zelxxx {

static bool operator==(const FlowRect& one, const FlowRect& other)
{
    return one.left == other.left && one.top == other.top && one.right == other.right &&
           one.bottom == other.bottom;
}

static std::ostream& operator<<(std::ostream& out, const FlowRect& rect)
{
    return out << rect.left << ' ' << rect.top << ' ' << rect.right << ' ' << rect.bottom;
}

} // namespace zelxxx

namespace {

class FlowMeasure : public testing::Test
{
protected:
    FlowMeasure() { text.attributes[AttrTextFormat] = TextAlignLeft | TextAlignTop | TextWrap; }

    FlowLayout Measure(const std::u16string& units) { return LayOut(formatter, text, units); }
    FlowRect RectOf(const std::u16string& units, UInt32 unit)
    {
        return Measure(units).GetCharacterRect(unit);
    }

    FlowFormatter formatter{Color32Bit};
    RecordingText text; // 100 x 72: ten characters wide, three lines high
};

// ---- Lines ----

TEST_F(FlowMeasure, SaysWhatLinesHold)
{
    const FlowLayout layout = Measure(u"one two   three\nx");
    ASSERT_EQ(layout.GetLineCount(), 3U);
    EXPECT_EQ(layout.GetLine(0).begin, 0U);
    EXPECT_EQ(layout.GetLine(0).end, 10U) << "with the blanks at its end";
    EXPECT_EQ(layout.GetLine(0).box, (FlowRect{0, 0, 70, 24}));
    EXPECT_EQ(layout.GetLine(1).begin, 10U);
    EXPECT_EQ(layout.GetLine(1).end, 16U) << "with the break";
    EXPECT_EQ(layout.GetLine(1).box, (FlowRect{0, 24, 50, 48}));
    EXPECT_EQ(layout.GetLine(2).box, (FlowRect{0, 48, 10, 72}));
    EXPECT_EQ(layout.GetWidth(), 70);
    EXPECT_EQ(layout.GetHeight(), 72);
    EXPECT_FALSE(layout.IsCut());
}

TEST_F(FlowMeasure, LineThatIsNotThereIsAllZero)
{
    const FlowLayout layout = Measure(u"a");
    EXPECT_EQ(layout.GetLine(1).box, FlowRect());
    EXPECT_EQ(layout.GetLine(FlowNoCharacter).end, 0U);
}

TEST_F(FlowMeasure, SaysDirectionAndEllipsis)
{
    text.attributes[AttrTextFormat] = TextEndEllipsis;
    const FlowLayout layout = Measure(u"אב\nabcdefghijkl");
    EXPECT_TRUE(layout.GetLine(0).right_to_left);
    EXPECT_FALSE(layout.GetLine(0).ellipsis);
    EXPECT_FALSE(layout.GetLine(1).right_to_left);
    EXPECT_TRUE(layout.GetLine(1).ellipsis);
    EXPECT_EQ(layout.GetLine(1).end, 12U);
    EXPECT_EQ(layout.GetLine(1).box.right, 100);
    EXPECT_TRUE(layout.IsCut());
}

TEST_F(FlowMeasure, EmptyTextHasNoLinesButAPlaceForACharacter)
{
    text.attributes[AttrTextFormat] = TextAlignCenter;
    const FlowLayout layout = Measure(u"");
    EXPECT_EQ(layout.GetLineCount(), 0U);
    EXPECT_EQ(layout.GetWidth(), 0);
    EXPECT_EQ(layout.GetHeight(), 0);
    EXPECT_EQ(layout.GetCharacterAt(50, 30), UInt32{FlowNoCharacter});
    EXPECT_EQ(layout.GetCharacterRect(0), (FlowRect{50, 24, 50, 48}));
}

TEST_F(FlowMeasure, NewLayoutAndOneWithoutAFontAreEmpty)
{
    text.font = nullptr;
    for (const FlowLayout& layout : {FlowLayout(), Measure(u"text")}) {
        EXPECT_EQ(layout.GetLineCount(), 0U);
        EXPECT_EQ(layout.GetWidth(), 0);
        EXPECT_EQ(layout.GetHeight(), 0);
        EXPECT_FALSE(layout.IsCut());
        EXPECT_EQ(layout.GetLine(0).box, FlowRect());
        EXPECT_EQ(layout.GetCharacterAt(0, 0), UInt32{FlowNoCharacter});
        EXPECT_EQ(layout.GetCharacterRect(0), FlowRect());
    }
}

TEST_F(FlowMeasure, ReadsEveryEncoding)
{
    EXPECT_EQ(formatter.LayOut(&text, "a\xc3\xa9", 3, EncodingUTF8).GetWidth(), 20);
    EXPECT_EQ(formatter.LayOut(&text, "a\xe9", 2, Encoding8859_1).GetWidth(), 20);
    EXPECT_EQ(formatter.LayOut(&text, "\xff\xff", 2, EncodingUTF8).GetWidth(), 0);
    EXPECT_EQ(formatter.LayOut(&text, "a\0b", 3, EncodingUnicode).GetWidth(), 10) << "odd byte";
    EXPECT_EQ(formatter.LayOut(&text, nullptr, 9, EncodingUTF8).GetWidth(), 0);
}

TEST_F(FlowMeasure, DrawsNothing)
{
    Measure(u"text");
    EXPECT_THAT(text.records, IsEmpty());
    EXPECT_EQ(text.sets, 0);
}

// ---- Characters ----

TEST_F(FlowMeasure, CharacterHasItsPartOfTheLine)
{
    EXPECT_EQ(RectOf(u"abc", 1), (FlowRect{10, 0, 20, 24}));
    EXPECT_EQ(RectOf(u"ab cdefghijk", 3), (FlowRect{0, 24, 10, 48}));
    EXPECT_EQ(RectOf(u"abc", 3), (FlowRect{30, 0, 30, 24})) << "the next character's place";
    EXPECT_EQ(RectOf(u"abc", 4), FlowRect());
}

TEST_F(FlowMeasure, PartsReachToTheNextCharacter)
{
    text.attributes[AttrLetterSpace] = 4;
    text.numbers->kernings[{'A', 'V'}] = -10;
    EXPECT_EQ(RectOf(u"AVx", 0), (FlowRect{0, 0, 12, 24}));
    EXPECT_EQ(RectOf(u"AVx", 1), (FlowRect{12, 0, 26, 24}));
    EXPECT_EQ(RectOf(u"AVx", 2), (FlowRect{26, 0, 36, 24})) << "no letter space at the end";
}

TEST_F(FlowMeasure, FromRightToLeftThePlacesAreMirrored)
{
    EXPECT_EQ(RectOf(u"אבג", 0), (FlowRect{20, 0, 30, 24}));
    EXPECT_EQ(RectOf(u"אבג", 2), (FlowRect{0, 0, 10, 24}));
    EXPECT_EQ(RectOf(u"אבג", 3), (FlowRect{0, 0, 0, 24}));
    // A blank at the end hangs out to the left.
    EXPECT_EQ(RectOf(u"אב ", 2), (FlowRect{-10, 0, 0, 24}));
}

TEST_F(FlowMeasure, UnitsOfOneCharacterShareItsPlace)
{
    text.numbers->advances[0x301] = 0;
    for (const UInt32 unit : {1U, 2U}) {
        EXPECT_EQ(RectOf(u"ae\u0301b", unit), (FlowRect{10, 0, 20, 24}));
        EXPECT_EQ(RectOf(u"a\U0001F600b", unit), (FlowRect{10, 0, 20, 24}));
        EXPECT_EQ(RectOf(u"a\r\nb", unit), (FlowRect{10, 0, 10, 24}));
    }
}

TEST_F(FlowMeasure, LettersOfALigatureHaveEqualShares)
{
    EXPECT_EQ(RectOf(u"لا", 0), (FlowRect{5, 0, 10, 24}));
    EXPECT_EQ(RectOf(u"لا", 1), (FlowRect{0, 0, 5, 24}));
    EXPECT_EQ(Measure(u"لا").GetCharacterAt(7, 5), 0U);
    EXPECT_EQ(Measure(u"لا").GetCharacterAt(2, 5), 1U);
}

TEST_F(FlowMeasure, WhatDrawsNothingHasNoWidth)
{
    EXPECT_EQ(RectOf(u"a\u200bb", 1), (FlowRect{10, 0, 10, 24}));
    EXPECT_EQ(RectOf(u"a\nb", 1), (FlowRect{10, 0, 10, 24}));
    EXPECT_EQ(RectOf(u"a\n", 2), (FlowRect{10, 0, 10, 24}));
    EXPECT_EQ(RectOf(u"\nb", 0), (FlowRect{0, 0, 0, 24}));
}

TEST_F(FlowMeasure, CharactersThatAreLeftOutHaveNoPlace)
{
    text.attributes[AttrTextFormat] = TextEndEllipsis | TextAlignTop;
    EXPECT_EQ(RectOf(u"abcdefghijkl", 8), (FlowRect{80, 0, 90, 24}));
    EXPECT_EQ(RectOf(u"abcdefghijkl", 9), FlowRect());
    EXPECT_EQ(RectOf(u"abcdefghijkl", 12), FlowRect());
}

TEST_F(FlowMeasure, FindsTheCharacterUnderAPoint)
{
    const FlowLayout layout = Measure(u"ab cd\nxyz");
    EXPECT_EQ(layout.GetCharacterAt(0, 0), 0U);
    EXPECT_EQ(layout.GetCharacterAt(9, 23), 0U);
    EXPECT_EQ(layout.GetCharacterAt(10, 0), 1U);
    EXPECT_EQ(layout.GetCharacterAt(25, 0), 2U) << "a blank";
    EXPECT_EQ(layout.GetCharacterAt(29, 24), 8U);
    EXPECT_EQ(layout.GetCharacterAt(30, 24), UInt32{FlowNoCharacter});
    EXPECT_EQ(layout.GetCharacterAt(0, 48), UInt32{FlowNoCharacter});
    EXPECT_EQ(layout.GetCharacterAt(0, -1), UInt32{FlowNoCharacter});
    EXPECT_EQ(layout.GetCharacterAt(-1, 0), UInt32{FlowNoCharacter});
}

TEST_F(FlowMeasure, EveryPlaceIsFoundAgain)
{
    SeededRandom random;
    const std::u16string letters = u"ab cאבג دلا\u0301中ไ(\n";
    text.numbers->advances[0x301] = 0;
    for (int round = 0; round < SeededRandom::Rounds(300); ++round) {
        std::u16string units;
        for (std::int64_t i = random.Between(1, 30); i > 0; --i)
            units += letters[static_cast<std::size_t>(
                random.Between(0, static_cast<std::int64_t>(letters.size()) - 1))];
        text.attributes[AttrSpanX] = static_cast<int>(random.Between(1, 120));
        const FlowLayout layout = Measure(units);
        UInt32 unit = 0;
        for (UInt32 line = 0; line < layout.GetLineCount(); ++line) {
            ASSERT_EQ(layout.GetLine(line).begin, unit);
            unit = layout.GetLine(line).end;
        }
        ASSERT_EQ(unit, units.size()) << "lines hold everything";
        for (unit = 0; unit < units.size(); ++unit) {
            const FlowRect rect = layout.GetCharacterRect(unit);
            ASSERT_LT(rect.top, rect.bottom);
            if (rect.left == rect.right)
                continue;
            const UInt32 found = layout.GetCharacterAt(rect.left, rect.top);
            ASSERT_LE(found, unit);
            ASSERT_EQ(layout.GetCharacterRect(found), rect);
        }
    }
}

TEST_F(FlowMeasure, LayoutStaysWhatItIs)
{
    FlowLayout layout;
    {
        FlowFormatter other(Color32Bit);
        layout = LayOut(other, text, u"one");
        text.attributes[AttrSpanX] = 5;
    }
    EXPECT_EQ(layout.GetWidth(), 30);
}

// ---- What is kept ----

TEST_F(FlowMeasure, SameTextAndBoxAreLaidOutOnce)
{
    Measure(u"one two three");
    const int asked = text.numbers->asked;
    const int converted = text.numbers->converted;
    EXPECT_GT(asked, 10);
    EXPECT_GT(converted, 13);
    text.Show(u"one two three", formatter);
    text.attributes[AttrColor] = 3;
    text.attributes[AttrTextFormat] |= TextMarked;
    text.attributes[AttrCursorIndex] = 2;
    text.Show(u"one two three", formatter);
    Measure(u"one two three");
    EXPECT_EQ(text.numbers->asked, asked);
    EXPECT_EQ(text.numbers->converted, converted);
}

TEST_F(FlowMeasure, WidgetsWithTheSameTextShareALayout)
{
    RecordingText other;
    other.attributes = text.attributes;
    other.font = text.font;
    Measure(u"one two three");
    const int converted = text.numbers->converted;
    EXPECT_EQ(LayOut(formatter, other, u"one two three").GetLineCount(), 2U);
    EXPECT_EQ(text.numbers->converted, converted);
}

TEST_F(FlowMeasure, SeveralTextsInTurnAreKept)
{
    const std::vector<std::u16string> units = {u"one", u"two", u"three"};
    for (const std::u16string& one : units)
        Measure(one);
    const int converted = text.numbers->converted;
    for (const std::u16string& one : units)
        Measure(one);
    EXPECT_EQ(text.numbers->converted, converted);
}

TEST_F(FlowMeasure, AnotherBoxDoesNotShapeTheTextAgain)
{
    const std::u16string units = u"one two three four five six seven";
    Measure(units);
    const int asked = text.numbers->asked;
    const int holds = text.numbers->Hold();
    text.numbers->Release();
    text.attributes[AttrSpanX] = 60;
    EXPECT_EQ(Measure(units).GetLineCount(), 7U);
    EXPECT_LT(text.numbers->asked - asked, 33) << "some pictures at the lines' ends, no advances";
    EXPECT_EQ(text.numbers->Hold(), holds) << "both have the one text that holds the font";
    text.numbers->Release();
}

TEST_F(FlowMeasure, WhateverMattersMakesAnotherLayout)
{
    text.attributes[AttrTextFormat] = TextAlignLeft;
    const auto width = [&] { return Measure(u"text").GetWidth(); };
    EXPECT_EQ(width(), 40);
    text.attributes[AttrFontSize] = 40;
    EXPECT_EQ(width(), 80);
    text.attributes[AttrFontScalerMolecule] = 50;
    EXPECT_EQ(width(), 40);
    text.attributes[AttrFontScalerDenominator] = 50;
    EXPECT_EQ(width(), 80);
    text.attributes[AttrLetterSpace] = 1;
    EXPECT_EQ(width(), 83);
    RecordingText other;
    other.numbers->advances['t'] = 0;
    other.numbers->inks['t'] = {0, 0};
    text.font = other.numbers;
    EXPECT_EQ(width(), 43);
    text.attributes[AttrLineHeight] = 11;
    EXPECT_EQ(Measure(u"text").GetHeight(), 11);
    EXPECT_EQ(Measure(u"text").GetLine(0).box.left, 0);
    text.attributes[AttrTextFormat] = TextAlignRight;
    EXPECT_EQ(Measure(u"text").GetLine(0).box.right, 100);
    text.attributes[AttrSpanX] = 200;
    EXPECT_EQ(Measure(u"text").GetLine(0).box.right, 200);
    text.attributes[AttrSpanY] = 11;
    EXPECT_EQ(Measure(u"text").GetLine(0).box.top, 0);
}

TEST_F(FlowMeasure, FontIsAskedOnceForALetter)
{
    text.attributes[AttrSpanX] = 32767;
    Measure(u"aaaaaaaaaa");
    const int asked = text.numbers->asked;
    EXPECT_LT(asked, 6) << "an advance, a pair, and pictures at both ends";
    Measure(u"aaaaa");
    EXPECT_LE(text.numbers->asked - asked, 2) << "the pictures";
}

TEST_F(FlowMeasure, LettersThatTakeEachOthersPlaceKeepTheirAdvances)
{
    // More letters, pairs and sizes than are remembered.
    text.attributes[AttrTextFormat] = TextAlignLeft;
    std::u16string units;
    for (char16_t letter = 0; letter < 5000; ++letter) {
        const auto unit = static_cast<char16_t>(0x4e00 + letter);
        units += unit;
        text.numbers->advances[unit] = letter % 50;
    }
    for (int round = 0; round < 2; ++round) {
        for (const int size : {20, 40}) {
            text.attributes[AttrFontSize] = size;
            formatter.Clear();
            Measure(units);
            // 100 times the advances 0 to 49, in hundredths of the size.
            EXPECT_EQ(Measure(units + u"\n").GetWidth(), 100 * (49 * 50 / 2) * size / 100);
        }
    }
}

TEST_F(FlowMeasure, ClearGivesUpLayoutsAndFonts)
{
    Measure(u"one two three");
    const int holds = text.numbers->Hold();
    text.numbers->Release();
    const int asked = text.numbers->asked;
    formatter.Clear();
    EXPECT_LT(text.numbers->Hold(), holds);
    text.numbers->Release();
    Measure(u"one two three");
    EXPECT_GT(text.numbers->asked, asked);
}

TEST_F(FlowMeasure, FontsAreHeldSoThatNoOtherTakesTheirPlace)
{
    const int before = text.numbers->Hold();
    Measure(u"one");
    EXPECT_GT(text.numbers->Hold(), before + 1);
    text.numbers->Release();
    text.numbers->Release();
}

TEST_F(FlowMeasure, OldLayoutsAreGivenUp)
{
    // Each layout holds its font.
    const auto holds = [&] {
        const int count = text.numbers->Hold();
        text.numbers->Release();
        return count;
    };
    const int before = holds();
    for (char16_t i = 0; i < 300; ++i)
        Measure({static_cast<char16_t>(0x4e00 + i)});
    EXPECT_LE(holds() - before, 257);
    EXPECT_GT(holds() - before, 250);
    // Of large ones there are fewer.
    for (const char16_t unit : {u'a', u'b', u'c', u'd', u'e', u'f'})
        Measure(std::u16string(60000, unit));
    EXPECT_LE(holds() - before, 5);
    const int asked = text.numbers->asked;
    Measure(std::u16string(60000, u'f'));
    EXPECT_EQ(text.numbers->asked, asked) << "the last ones stay";
}

// ---- Texts that are not as they should be ----

TEST_F(FlowMeasure, BoxNarrowerThanAGlyphHasACharacterOnEachLine)
{
    for (const int width : {9, 1, 0, -5}) {
        text.attributes[AttrSpanX] = width;
        const FlowLayout layout = Measure(u"abc d");
        EXPECT_EQ(layout.GetLineCount(), 4U);
        EXPECT_EQ(layout.GetWidth(), 10);
    }
}

TEST_F(FlowMeasure, HugeTextIsCutAt65536Units)
{
    const FlowLayout whole = Measure(std::u16string(65536, u'a'));
    EXPECT_FALSE(whole.IsCut());
    const FlowLayout cut = Measure(std::u16string(1000000, u'a'));
    EXPECT_TRUE(cut.IsCut());
    EXPECT_EQ(cut.GetLine(cut.GetLineCount() - 1).end, 65536U);
    EXPECT_EQ(cut.GetCharacterRect(65536), FlowRect());
    EXPECT_LT(text.numbers->asked, 3 * 2 * 65536 + 4 * 6554);
}

TEST_F(FlowMeasure, CutDoesNotHalveAPair)
{
    std::u16string units(65535, u'a');
    units += u"\U0001F600\U0001F600";
    const FlowLayout layout = Measure(units);
    EXPECT_TRUE(layout.IsCut());
    EXPECT_EQ(layout.GetLine(layout.GetLineCount() - 1).end, 65535U);
}

TEST_F(FlowMeasure, OfAHugeTextOnlyWhatShowsIsDrawn)
{
    std::u16string units;
    while (units.size() < 60000)
        units += u"words and words ";
    EXPECT_LT(text.Show(units, formatter, TextWrap).records.size(), 500U);
    EXPECT_LT(text.Show(units, formatter, TextAlignLeft).records.size(), 500U);
    EXPECT_LT(text.Show(units, formatter, TextAlignRight).records.size(), 500U);
    text.Show(units, formatter, TextWrap | TextAlignBottom);
    EXPECT_FALSE(text.Rows().empty());
    EXPECT_LT(text.records.size(), 500U);
}

TEST_F(FlowMeasure, PositionsNeverWrapInto16Bits)
{
    text.attributes[AttrSpanX] = 32767;
    text.attributes[AttrSpanY] = 32767;
    FlowStyle style;
    style.shadow_x = 32767;
    style.shadow_y = -32768;
    style.shadow_blend = 255;
    formatter.SetStyle(style);
    for (const int format : {int{TextAlignLeft}, int{TextAlignRight}, int{TextWrap}}) {
        text.Show(std::u16string(20000, u'a'), formatter, format | TextMarked);
        for (const Record& record : text.Of(Record::Char))
            EXPECT_TRUE(record.x >= -200 || format == TextAlignRight) << record;
    }
}

TEST_F(FlowMeasure, ExtremeAttributesAreSurvived)
{
    const int extremes[] = {0, 1, -1, 32767, -32768, 65535, 2147483647, -2147483647 - 1};
    const AttrIndex indices[] = {
        AttrSpanX,       AttrSpanY,      AttrFontScalerMolecule, AttrFontScalerDenominator,
        AttrLetterSpace, AttrLineHeight, AttrFontSize,           AttrCursorIndex,
        AttrTextFormat};
    SeededRandom random;
    for (int round = 0; round < SeededRandom::Rounds(2000); ++round) {
        RecordingText any;
        for (const AttrIndex index : indices) {
            if (random.Chance(40))
                any.attributes[index] = extremes[random.Between(0, 7)];
        }
        FlowStyle style;
        style.balanced = random.Chance(30);
        style.reference_sizes = random.Chance(30);
        style.shadow_blend = static_cast<BlendValue>(random.Between(0, 1));
        style.shadow_x = static_cast<MetricValue>(extremes[random.Between(0, 4)]);
        style.outline_width = static_cast<UInt8>(random.Between(0, 255));
        style.outline_blend = static_cast<BlendValue>(random.Between(0, 1));
        formatter.SetStyle(style);
        any.Show(u"one two\nשלום لا \U0001F600 three", formatter);
        const FlowLayout layout = LayOut(formatter, any, u"one two");
        for (UInt32 unit = 0; unit < 9; ++unit)
            ASSERT_LE(layout.GetCharacterRect(unit).left, layout.GetCharacterRect(unit).right);
    }
}

TEST_F(FlowMeasure, AnyUnitsAreSurvived)
{
    SeededRandom random;
    for (int round = 0; round < SeededRandom::Rounds(500); ++round) {
        std::u16string units;
        for (std::int64_t i = random.Between(0, 60); i > 0; --i) {
            const std::int64_t blocks[][2] = {{0, 0xffff},      {0xd800, 0xdfff}, {0x600, 0x6ff},
                                              {0x2000, 0x206f}, {0x590, 0x5ff},   {0, 0x7f},
                                              {0xe00, 0xe7f},   {0xac00, 0xac20}};
            const auto& block = blocks[random.Between(0, 7)];
            units += static_cast<char16_t>(random.Between(block[0], block[1]));
        }
        text.attributes[AttrSpanX] = static_cast<int>(random.Between(0, 150));
        text.Show(units, formatter, static_cast<int>(random.Between(0, 127)));
        const FlowLayout layout = Measure(units);
        for (UInt32 unit = 0; unit <= units.size(); ++unit)
            ASSERT_LE(layout.GetCharacterRect(unit).left, layout.GetCharacterRect(unit).right);
    }
}

TEST_F(FlowMeasure, FontWithoutWidthsIsSurvived)
{
    for (char16_t unit = 0; unit < 0x80; ++unit)
        text.numbers->advances[unit] = 0;
    EXPECT_EQ(Measure(u"some text").GetWidth(), 0);
    for (char16_t unit = 0; unit < 0x80; ++unit)
        text.numbers->advances[unit] = -70;
    formatter.Clear();
    EXPECT_EQ(Measure(u"some text").GetWidth(), 0);
}

} // namespace
