/** What a widget's attributes do to its text. */
#include "flow_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class FlowFormat : public testing::Test
{
protected:
    std::vector<Row> Rows(const std::u16string& units, int format)
    {
        return text.Show(units, formatter, format).Rows();
    }

    FlowFormatter formatter{Color32Bit};
    RecordingText text; // 100 x 72: ten characters wide, three lines high
};

// ---- Alignment ----

struct AlignmentCase
{
    int format;
    int x; /**< of four characters in 100 pixels */
    int y; /**< of one line in 72 */
};

class FlowAlignment : public FlowFormat, public testing::WithParamInterface<AlignmentCase>
{
};

TEST_P(FlowAlignment, PutsALineIntoItsBox)
{
    const AlignmentCase& expected = GetParam();
    EXPECT_THAT(Rows(u"text", expected.format), ElementsAre(Row{expected.x, expected.y, u"text"}));
    // Neither wrapping nor an ellipsis matters to a line that fits.
    EXPECT_THAT(Rows(u"text", expected.format | TextWrap | TextEndEllipsis),
                ElementsAre(Row{expected.x, expected.y, u"text"}));
}

INSTANTIATE_TEST_SUITE_P(AllBits, FlowAlignment,
                         testing::Values(AlignmentCase{TextAlignCenter, 30, 24},
                                         AlignmentCase{TextAlignLeft, 0, 24},
                                         AlignmentCase{TextAlignRight, 60, 24},
                                         AlignmentCase{TextAlignTop, 30, 0},
                                         AlignmentCase{TextAlignBottom, 30, 48},
                                         AlignmentCase{TextAlignLeft | TextAlignTop, 0, 0},
                                         AlignmentCase{TextAlignLeft | TextAlignBottom, 0, 48},
                                         AlignmentCase{TextAlignRight | TextAlignTop, 60, 0},
                                         AlignmentCase{TextAlignRight | TextAlignBottom, 60, 48},
                                         // Left goes before right and top before bottom.
                                         AlignmentCase{TextAlignLeft | TextAlignRight, 0, 24},
                                         AlignmentCase{TextAlignTop | TextAlignBottom, 30, 0}));

TEST_F(FlowFormat, LinesAreAlignedEachForItself)
{
    EXPECT_THAT(Rows(u"one\nthree", TextAlignCenter),
                ElementsAre(Row{35, 12, u"one"}, Row{25, 36, u"three"}));
    EXPECT_THAT(Rows(u"one\nthree", TextAlignRight | TextAlignBottom),
                ElementsAre(Row{70, 24, u"one"}, Row{50, 48, u"three"}));
}

TEST_F(FlowFormat, OddRestsAreRoundedTowardsTheTopLeft)
{
    text.attributes[AttrSpanX] = 45;
    text.attributes[AttrSpanY] = 29;
    EXPECT_THAT(Rows(u"text", TextAlignCenter), ElementsAre(Row{2, 2, u"text"}));
}

TEST_F(FlowFormat, TallTextInTheMiddleBeginsAtTheTop)
{
    text.attributes[AttrSpanY] = 30;
    EXPECT_THAT(Rows(u"a\nb", TextAlignCenter), ElementsAre(Row{45, 0, u"a"}, Row{45, 24, u"b"}));
    EXPECT_THAT(Rows(u"a\nb", TextAlignBottom), ElementsAre(Row{45, -18, u"a"}, Row{45, 6, u"b"}));
}

TEST_F(FlowFormat, WideLineInTheCentreBeginsWhereItIsReadFrom)
{
    text.attributes[AttrSpanX] = 45;
    EXPECT_THAT(Rows(u"sixsix", TextAlignCenter), ElementsAre(Row{0, 24, u"sixsix"}));
    EXPECT_THAT(Rows(u"sixsix", TextAlignRight), ElementsAre(Row{-15, 24, u"sixsix"}));
    FlowStyle style;
    style.direction = FlowRightToLeft;
    formatter.SetStyle(style);
    EXPECT_THAT(Rows(u"sixsix", TextAlignCenter), ElementsAre(Row{-15, 24, u"sixsix"}));
}

// ---- Wrapping ----

TEST_F(FlowFormat, WithoutWrappingOnlyForcedBreaksEndLines)
{
    EXPECT_THAT(Rows(u"one two three", TextAlignLeft), ElementsAre(Row{0, 24, u"one two three"}));
}

TEST_F(FlowFormat, WrapsBetweenWordsWhereTheBoxEnds)
{
    EXPECT_THAT(Rows(u"one two three", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"one two"}, Row{0, 36, u"three"}));
    // Ten characters fit exactly, and the blank behind them takes no room.
    EXPECT_THAT(Rows(u"one twothr three", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"one twothr"}, Row{0, 36, u"three"}));
    EXPECT_THAT(Rows(u"one twothre three", TextWrap | TextAlignLeft | TextAlignTop),
                ElementsAre(Row{0, 0, u"one"}, Row{0, 24, u"twothre"}, Row{0, 48, u"three"}));
}

TEST_F(FlowFormat, BlanksAtALinesEndAreNotCentred)
{
    EXPECT_THAT(Rows(u"four    three", TextWrap),
                ElementsAre(Row{30, 12, u"four"}, Row{25, 36, u"three"}));
    EXPECT_THAT(Rows(u"four   ", TextAlignRight), ElementsAre(Row{60, 24, u"four"}));
    EXPECT_THAT(Rows(u"four\u3000\u3000\nab\t", TextAlignRight),
                ElementsAre(Row{60, 12, u"four"}, Row{80, 36, u"ab"}));
}

TEST_F(FlowFormat, BlanksAtALinesBeginningStay)
{
    EXPECT_THAT(Rows(u"  ab", TextAlignLeft), ElementsAre(Row{20, 24, u"ab"}));
}

TEST_F(FlowFormat, NoBreakSpaceAtALinesEndTakesRoom)
{
    EXPECT_THAT(Rows(u"ab\u00a0", TextAlignRight).front().x, 70);
}

TEST_F(FlowFormat, LongWordIsCutWhereNothingElseFits)
{
    EXPECT_THAT(Rows(u"abcdefghijklmno", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"abcdefghij"}, Row{0, 36, u"klmno"}));
    EXPECT_THAT(Rows(u"ab cdefghijklmno", TextWrap | TextAlignLeft | TextAlignTop),
                ElementsAre(Row{0, 0, u"ab"}, Row{0, 24, u"cdefghijkl"}, Row{0, 48, u"mno"}));
}

TEST_F(FlowFormat, ChineseIsBrokenBetweenCharacters)
{
    text.attributes[AttrSpanX] = 30;
    EXPECT_THAT(Rows(u"中文字，幕", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"中文"}, Row{0, 36, u"字，幕"}));
}

TEST_F(FlowFormat, ThaiIsBrokenBetweenWords)
{
    // The marks of this text have no width of their own.
    for (const WChar mark : {0xe47, 0xe48, 0xe35})
        text.numbers->advances[mark] = 0;
    text.attributes[AttrSpanX] = 60;
    const auto rows = Rows(u"ภาษาไทย", TextWrap | TextAlignLeft);
    EXPECT_THAT(rows, ElementsAre(Row{0, 12, u"ภาษา"}, Row{0, 36, u"ไทย"}));
}

TEST_F(FlowFormat, KoreanWordsStayWholeIfAsked)
{
    text.attributes[AttrSpanX] = 50;
    EXPECT_THAT(Rows(u"안녕 하세요요", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"안녕 하세"}, Row{0, 36, u"요요"}));
    FlowStyle style;
    style.korean_words = true;
    formatter.SetStyle(style);
    EXPECT_THAT(Rows(u"안녕 하세요요", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"안녕"}, Row{0, 36, u"하세요요"}));
}

TEST_F(FlowFormat, SoftHyphenShowsOnlyWhereTheLineEndsAtIt)
{
    EXPECT_THAT(Rows(u"ab\u00adcd", TextWrap | TextAlignLeft), ElementsAre(Row{0, 24, u"abcd"}));
    EXPECT_THAT(Rows(u"abcdef\u00adghijkl", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"abcdef-"}, Row{0, 36, u"ghijkl"}));
    // The hyphen itself has to fit.
    EXPECT_THAT(Rows(u"ab cdefghi\u00adjklm", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 0, u"ab"}, Row{0, 24, u"cdefghi-"}, Row{0, 48, u"jklm"}));
}

TEST_F(FlowFormat, MarksStayWithTheirLetters)
{
    text.numbers->advances[0x301] = 0;
    text.numbers->inks[0x301] = {-9, -1};
    text.attributes[AttrSpanX] = 20;
    EXPECT_THAT(Rows(u"ae\u0301io", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"ae\u0301"}, Row{0, 36, u"io"}));
}

TEST_F(FlowFormat, BalancedLinesAreAboutEquallyLong)
{
    EXPECT_THAT(Rows(u"one two thr four", TextWrap),
                ElementsAre(Row{15, 12, u"one two"}, Row{10, 36, u"thr four"}));
    EXPECT_THAT(Rows(u"a b c d e f", TextWrap),
                ElementsAre(Row{5, 12, u"a b c d e"}, Row{45, 36, u"f"}));
    FlowStyle style;
    style.balanced = true;
    formatter.SetStyle(style);
    EXPECT_THAT(Rows(u"a b c d e f", TextWrap),
                ElementsAre(Row{25, 12, u"a b c"}, Row{25, 36, u"d e f"}));
    EXPECT_THAT(Rows(u"abcdefghijkl", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"abcdef"}, Row{0, 36, u"ghijkl"}));
}

TEST_F(FlowFormat, BalancingDoesNotCutWords)
{
    FlowStyle style;
    style.balanced = true;
    formatter.SetStyle(style);
    EXPECT_THAT(Rows(u"abcdefgh ij", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"abcdefgh"}, Row{0, 36, u"ij"}));
}

TEST_F(FlowFormat, LineIsFullWhenThePictureAtItsRightEndIs)
{
    text.attributes[AttrTextFormat] = TextWrap;
    text.numbers->inks['j'] = {1, 13};
    EXPECT_EQ(LayOut(formatter, text, u"abcdefghij").GetLineCount(), 2U);
    text.numbers->inks[u'א'] = {1, 13};
    EXPECT_EQ(LayOut(formatter, text, u"בגדהוזחטיא").GetLineCount(), 1U) << "that is its left end";
    EXPECT_EQ(LayOut(formatter, text, u"אבגדהוזחטי").GetLineCount(), 2U);
}

// ---- Forced breaks ----

TEST_F(FlowFormat, EveryKindOfBreakEndsALine)
{
    for (const std::u16string brk :
         {u"\n", u"\r", u"\r\n", u"\v", u"\f", u"\u0085", u"\u2028", u"\u2029"}) {
        EXPECT_THAT(Rows(u"ab" + brk + u"cd", TextAlignLeft),
                    ElementsAre(Row{0, 12, u"ab"}, Row{0, 36, u"cd"}));
    }
}

TEST_F(FlowFormat, EmptyLinesTakeRoomButABreakAtTheEndDoesNot)
{
    EXPECT_THAT(Rows(u"ab\n\ncd", TextAlignTop),
                ElementsAre(Row{40, 0, u"ab"}, Row{40, 48, u"cd"}));
    EXPECT_THAT(Rows(u"ab\n", TextAlignBottom), ElementsAre(Row{40, 48, u"ab"}));
    EXPECT_THAT(Rows(u"\nab", TextAlignBottom), ElementsAre(Row{40, 48, u"ab"}));
    EXPECT_EQ(LayOut(formatter, text, u"ab\n").GetLineCount(), 1U);
    EXPECT_EQ(LayOut(formatter, text, u"\nab").GetLineCount(), 2U);
    EXPECT_EQ(LayOut(formatter, text, u"\n\r\n\r").GetLineCount(), 3U);
}

// ---- Ellipsis ----

TEST_F(FlowFormat, LineThatIsTooWideEndsInAnEllipsis)
{
    EXPECT_THAT(Rows(u"abcdefghijkl", TextEndEllipsis),
                ElementsAre(Row{0, 24, u"abcdefghi\u2026"}));
    EXPECT_THAT(Rows(u"abcdefghij", TextEndEllipsis), ElementsAre(Row{0, 24, u"abcdefghij"}));
    // No blank before the dots; what is left is aligned.
    EXPECT_THAT(Rows(u"abcd fgh  xyz", TextEndEllipsis | TextAlignRight),
                ElementsAre(Row{10, 24, u"abcd fgh\u2026"}));
}

TEST_F(FlowFormat, EachLineHasItsOwnEllipsis)
{
    EXPECT_THAT(Rows(u"abcdefghijkl\nok\n0123456789x", TextEndEllipsis | TextAlignLeft),
                ElementsAre(Row{0, 0, u"abcdefghi\u2026"}, Row{0, 24, u"ok"},
                            Row{0, 48, u"012345678\u2026"}));
}

TEST_F(FlowFormat, TooManyLinesEndInAnEllipsisOnTheLastThatFits)
{
    EXPECT_THAT(
        Rows(u"one two three four five six seven", TextWrap | TextEndEllipsis | TextAlignLeft),
        ElementsAre(Row{0, 0, u"one two"}, Row{0, 24, u"three four"},
                    Row{0, 48, u"five six\u2026"}));
    // More of a long word is shown than would stand on the line without an ellipsis.
    EXPECT_THAT(
        Rows(u"one two three four ab cdefghijk", TextWrap | TextEndEllipsis | TextAlignLeft),
        ElementsAre(Row{0, 0, u"one two"}, Row{0, 24, u"three four"},
                    Row{0, 48, u"ab cdefgh\u2026"}));
    EXPECT_THAT(Rows(u"a\nb\nc\nd", TextEndEllipsis | TextAlignLeft),
                ElementsAre(Row{0, 0, u"a"}, Row{0, 24, u"b"}, Row{0, 48, u"c\u2026"}));
}

TEST_F(FlowFormat, TextThatFitsExactlyHasNoEllipsis)
{
    EXPECT_THAT(Rows(u"one two three four five", TextWrap | TextEndEllipsis | TextAlignLeft),
                ElementsAre(Row{0, 0, u"one two"}, Row{0, 24, u"three four"}, Row{0, 48, u"five"}));
}

TEST_F(FlowFormat, BoxLowerThanALineShowsOneLine)
{
    text.attributes[AttrSpanY] = 10;
    EXPECT_THAT(Rows(u"one two three", TextWrap | TextEndEllipsis),
                ElementsAre(Row{0, 0, u"one two t\u2026"}));
}

TEST_F(FlowFormat, FontWithoutEllipsisShowsThreeDots)
{
    text.numbers->missing.insert(0x2026);
    EXPECT_THAT(Rows(u"abcdefghijkl", TextEndEllipsis), ElementsAre(Row{0, 24, u"abcdefg..."}));
}

TEST_F(FlowFormat, BoxNarrowerThanTheDotsShowsThemAlone)
{
    text.attributes[AttrSpanX] = 5;
    EXPECT_THAT(Rows(u"abc", TextEndEllipsis | TextAlignLeft), ElementsAre(Row{0, 24, u"\u2026"}));
}

TEST_F(FlowFormat, WithoutTheBitWhatDoesNotFitRunsOut)
{
    EXPECT_THAT(
        Rows(u"a\nb\nc\nd", TextAlignTop),
        ElementsAre(Row{45, 0, u"a"}, Row{45, 24, u"b"}, Row{45, 48, u"c"}, Row{45, 72, u"d"}));
}

// ---- Sizes ----

TEST_F(FlowFormat, LineHeightSpacesLinesAroundTheirBaselines)
{
    text.attributes[AttrLineHeight] = 30;
    EXPECT_THAT(Rows(u"a\nb", TextAlignTop), ElementsAre(Row{45, 3, u"a"}, Row{45, 33, u"b"}));
    text.attributes[AttrLineHeight] = 19;
    EXPECT_THAT(Rows(u"a\nb", TextAlignTop), ElementsAre(Row{45, -3, u"a"}, Row{45, 16, u"b"}));
}

TEST_F(FlowFormat, LineHeightOf0IsTheFontsOwn)
{
    text.attributes[AttrLineHeight] = 0;
    EXPECT_THAT(Rows(u"a\nb", TextAlignTop), ElementsAre(Row{45, 0, u"a"}, Row{45, 24, u"b"}));
}

TEST_F(FlowFormat, FontSizeScalesAdvancesAndBaseline)
{
    text.attributes[AttrFontSize] = 40;
    text.Show(u"ab", formatter, TextAlignLeft | TextAlignTop);
    // Lines of 24 pixels around the 48 that characters of 40 need: 12 of them are above.
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 0, -12, u'a', 0},
                                                   Record{Record::Char, 20, -12, u'b', 0}));
}

TEST_F(FlowFormat, ScalerPairStretchesSideways)
{
    text.attributes[AttrFontScalerMolecule] = 3;
    text.attributes[AttrFontScalerDenominator] = 2;
    text.Show(u"abc", formatter, TextAlignRight);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 55, 24, u'a', 0},
                                                   Record{Record::Char, 70, 24, u'b', 0},
                                                   Record{Record::Char, 85, 24, u'c', 0}));
    EXPECT_EQ(LayOut(formatter, text, u"abc").GetWidth(), 45);
    EXPECT_THAT(text.Show(u"abcdef ghi", formatter, TextWrap).Rows(), SizeIs(2));
}

TEST_F(FlowFormat, LetterSpaceGoesBetweenCharacters)
{
    text.attributes[AttrLetterSpace] = 5;
    text.Show(u"abc", formatter, TextAlignRight);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 60, 24, u'a', 0},
                                                   Record{Record::Char, 75, 24, u'b', 0},
                                                   Record{Record::Char, 90, 24, u'c', 0}));
    // Seven characters and six spaces are 100 pixels; one more needs a line of its own.
    EXPECT_EQ(LayOut(formatter, text, u"1234567").GetWidth(), 100);
    text.attributes[AttrTextFormat] = TextWrap;
    EXPECT_EQ(LayOut(formatter, text, u"1234567").GetLineCount(), 1U);
    EXPECT_EQ(LayOut(formatter, text, u"12345678").GetLineCount(), 2U);
    text.attributes[AttrLetterSpace] = -2;
    EXPECT_EQ(LayOut(formatter, text, u"1234567").GetWidth(), 58);
}

TEST_F(FlowFormat, LetterSpaceDoesNotPartMarksFromLetters)
{
    text.numbers->advances[0x301] = 0;
    text.attributes[AttrLetterSpace] = 5;
    text.Show(u"e\u0301a", formatter, TextAlignLeft);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 0, 24, u'e', 0},
                                                   Record{Record::Char, 10, 24, u'\u0301', 0},
                                                   Record{Record::Char, 15, 24, u'a', 0}));
}

TEST_F(FlowFormat, KerningBringsPairsTogether)
{
    text.numbers->kernings[{'A', 'V'}] = -10; // two pixels
    text.Show(u"AVA", formatter, TextAlignLeft);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 0, 24, u'A', 0},
                                                   Record{Record::Char, 8, 24, u'V', 0},
                                                   Record{Record::Char, 18, 24, u'A', 0}));
    EXPECT_EQ(LayOut(formatter, text, u"AVA").GetWidth(), 28);
}

TEST_F(FlowFormat, MarksAreNotKerned)
{
    text.numbers->advances[0x301] = 0;
    text.numbers->kernings[{'e', 0x301}] = -10;
    EXPECT_EQ(LayOut(formatter, text, u"e\u0301").GetWidth(), 10);
}

TEST_F(FlowFormat, KerningDoesNotReachOverALinesEnd)
{
    text.numbers->kernings[{'A', 'V'}] = -10;
    text.attributes[AttrSpanX] = 10;
    text.attributes[AttrTextFormat] = TextWrap;
    EXPECT_EQ(LayOut(formatter, text, u"AV").GetLine(0).box.right, 10);
}

TEST_F(FlowFormat, RoundingDoesNotAddUp)
{
    text.numbers->advances['i'] = 12; // 2.4 pixels at size 20
    text.Show(u"iiiiii", formatter, TextAlignLeft);
    std::vector<int> pens;
    for (const Record& record : text.Of(Record::Char))
        pens.push_back(record.x);
    EXPECT_THAT(pens, ElementsAre(0, 3, 5, 8, 10, 12));
}

TEST_F(FlowFormat, InkThatReachesOverTheEdgeIsMovedInside)
{
    text.numbers->inks['f'] = {1, 13};
    EXPECT_THAT(Rows(u"abf", TextAlignRight).front().x, 67);
    text.numbers->inks['j'] = {-2, 9};
    EXPECT_THAT(Rows(u"jab", TextAlignLeft).front().x, 2);
    // Where there is no room on the other side, it stays.
    text.attributes[AttrSpanX] = 30;
    text.numbers->inks['j'] = {0, 9};
    EXPECT_THAT(Rows(u"jbf", TextAlignRight).front().x, 0);
}

TEST_F(FlowFormat, ReferenceSpanScalesTheOrgSizes)
{
    FlowStyle style;
    style.reference_sizes = true;
    formatter.SetStyle(style);
    text.attributes[AttrOrgSpanX] = 50;
    text.attributes[AttrOrgSpanY] = 24;
    text.attributes[AttrOrgFontSize] = 10;
    text.attributes[AttrOrgLineHeight] = 12;
    // The box is twice as wide and three times as high.
    EXPECT_THAT(Rows(u"text", TextAlignCenter), ElementsAre(Row{30, 24, u"text"}));
    EXPECT_EQ(text.attributes[AttrFontSize], 20);
    EXPECT_EQ(text.attributes[AttrLineHeight], 24);
    text.attributes[AttrSpanY] = 12;
    EXPECT_EQ(LayOut(formatter, text, u"text").GetWidth(), 10);
    EXPECT_EQ(LayOut(formatter, text, u"text").GetHeight(), 6);
    text.attributes[AttrSpanY] = 18; // 7.5 is rounded to 8
    EXPECT_EQ(LayOut(formatter, text, u"text").GetWidth(), 16);
}

TEST_F(FlowFormat, ReferenceSpanThatIsNoneHasNoEffect)
{
    FlowStyle style;
    style.reference_sizes = true;
    formatter.SetStyle(style);
    text.attributes[AttrOrgSpanX] = 0;
    text.attributes[AttrOrgSpanY] = 36;
    text.attributes[AttrOrgFontSize] = 10;
    EXPECT_EQ(LayOut(formatter, text, u"text").GetWidth(), 40);
    text.attributes[AttrOrgSpanY] = -1;
    EXPECT_EQ(LayOut(formatter, text, u"text").GetWidth(), 20);
}

TEST_F(FlowFormat, WithoutReferenceSizesTheyAreLeftAlone)
{
    text.attributes[AttrOrgSpanX] = 50;
    Rows(u"text", TextAlignCenter);
    EXPECT_EQ(text.attributes[AttrFontSize], 20);
    EXPECT_EQ(text.sets, 0);
}

// ---- Nothing to lay out ----

TEST_F(FlowFormat, EmptyTextAndMissingFontDrawNothing)
{
    EXPECT_THAT(text.Show(u"", formatter).records, IsEmpty());
    formatter.Format(&text, nullptr, 0);
    EXPECT_THAT(text.records, IsEmpty());
    text.font = nullptr;
    EXPECT_THAT(text.Show(u"text", formatter).records, IsEmpty());
    text.font = text.numbers;
    text.attributes[AttrFontSize] = 0;
    EXPECT_THAT(text.Show(u"text", formatter).records, IsEmpty());
}

} // namespace
