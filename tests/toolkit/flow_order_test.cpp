/** Texts that run from right to left, and what is no character of 16 bits. */
#include "flow_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FlowOrderTest : public testing::Test
{
protected:
    std::vector<Row> Rows(const std::u16string& units, int format = TextAlignLeft)
    {
        return text.Show(units, formatter, format).Rows();
    }

    FlowFormatter formatter{Color32Bit};
    RecordingText text; // 100 x 72: ten characters wide, three lines high
};

// ---- Order ----

TEST_F(FlowOrderTest, HebrewRunsFromRightToLeft)
{
    EXPECT_THAT(Rows(u"אבג דה"), ElementsAre(Row{0, 24, u"הד גבא"}));
}

TEST_F(FlowOrderTest, AlignmentIsThatOfTheScreenInEitherDirection)
{
    EXPECT_THAT(Rows(u"אבג", TextAlignLeft).front().x, 0);
    EXPECT_THAT(Rows(u"אבג", TextAlignRight).front().x, 70);
    EXPECT_THAT(Rows(u"אבג", TextAlignCenter).front().x, 35);
}

TEST_F(FlowOrderTest, NumbersAndLatinWordsKeepTheirOrder)
{
    EXPECT_THAT(Rows(u"אב 12 גד"), ElementsAre(Row{0, 24, u"דג 12 בא"}));
    EXPECT_THAT(Rows(u"אב ab גד"), ElementsAre(Row{0, 24, u"דג ab בא"}));
    EXPECT_THAT(Rows(u"ab אב cd"), ElementsAre(Row{0, 24, u"ab בא cd"}));
}

TEST_F(FlowOrderTest, BracketsAreMirrored)
{
    EXPECT_THAT(Rows(u"א(ב)<ג"), ElementsAre(Row{0, 24, u"ג>(ב)א"}));
}

TEST_F(FlowOrderTest, WrappedLinesComeInReadingOrder)
{
    EXPECT_THAT(Rows(u"אבגד הוזח טיכל", TextWrap | TextAlignRight),
                ElementsAre(Row{10, 12, u"חזוה דגבא"}, Row{60, 36, u"לכיט"}));
}

TEST_F(FlowOrderTest, BlanksAtTheEndOfALineHangToItsLeft)
{
    text.attributes[AttrSpanX] = 50;
    EXPECT_THAT(Rows(u"אבג   דהו", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"גבא"}, Row{0, 36, u"והד"}));
    EXPECT_THAT(Rows(u"אבג   דהו", TextWrap | TextAlignRight),
                ElementsAre(Row{20, 12, u"גבא"}, Row{20, 36, u"והד"}));
}

TEST_F(FlowOrderTest, EllipsisStandsAtTheLeftEnd)
{
    text.attributes[AttrSpanX] = 50;
    EXPECT_THAT(Rows(u"אבגדהו", TextEndEllipsis), ElementsAre(Row{0, 24, u"\u2026דגבא"}));
    // Of a mixed line too: its paragraph decides.
    EXPECT_THAT(Rows(u"אב abcd", TextEndEllipsis), ElementsAre(Row{0, 24, u"\u2026a בא"}));
}

TEST_F(FlowOrderTest, HyphenGoesWithItsWord)
{
    text.attributes[AttrSpanX] = 60;
    EXPECT_THAT(Rows(u"אב cd\u00adefgh", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"cd- בא"}, Row{0, 36, u"efgh"}));
}

TEST_F(FlowOrderTest, EachParagraphHasItsDirection)
{
    EXPECT_THAT(Rows(u"אב!\nab!\nגד!"),
                ElementsAre(Row{0, 0, u"!בא"}, Row{0, 24, u"ab!"}, Row{0, 48, u"!דג"}));
    // A line separator does not begin a new one.
    EXPECT_THAT(Rows(u"אב!\u2028ab!"), ElementsAre(Row{0, 12, u"!בא"}, Row{0, 36, u"!ab"}));
}

TEST_F(FlowOrderTest, DirectionMayBeGiven)
{
    FlowStyle style;
    style.direction = FlowRightToLeft;
    formatter.SetStyle(style);
    EXPECT_THAT(Rows(u"ab!"), ElementsAre(Row{0, 24, u"!ab"}));
    style.direction = FlowLeftToRight;
    formatter.SetStyle(style);
    EXPECT_THAT(Rows(u"אב!"), ElementsAre(Row{0, 24, u"בא!"}));
}

TEST_F(FlowOrderTest, DirectionMarksWorkAndDrawNothing)
{
    EXPECT_THAT(Rows(u"\u202eabc\u202c d"), ElementsAre(Row{0, 24, u"cba d"}));
    EXPECT_THAT(Rows(u"\u200fab!"), ElementsAre(Row{0, 24, u"!ab"}));
    EXPECT_THAT(Rows(u"\u200e\u2066\u2069\u200b\ufeff\u0007\u009f"), IsEmpty());
}

TEST_F(FlowOrderTest, MarksFollowTheirLettersAlsoFromRightToLeft)
{
    text.numbers->advances[0x5b8] = 0; // qamats
    text.Show(u"אָב", formatter, TextAlignLeft);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 0, 24, u'ב', 0},
                                                   Record{Record::Char, 10, 24, u'א', 0},
                                                   Record{Record::Char, 20, 24, u'\u05b8', 0}));
}

TEST_F(FlowOrderTest, KerningIsOfThePairOnTheScreen)
{
    text.numbers->kernings[{u'ב', u'א'}] = -10;
    text.numbers->kernings[{u'ב', u'ג'}] = -20;
    text.Show(u"אבג", formatter, TextAlignLeft);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(Record{Record::Char, 0, 24, u'ג', 0},
                                                   Record{Record::Char, 10, 24, u'ב', 0},
                                                   Record{Record::Char, 18, 24, u'א', 0}));
    EXPECT_EQ(LayOut(formatter, text, u"אבג").GetWidth(), 28);
}

TEST_F(FlowOrderTest, LetterSpaceKeepsItsWidthFromRightToLeft)
{
    text.attributes[AttrLetterSpace] = 5;
    text.Show(u"אבגab", formatter, TextAlignRight);
    std::vector<int> pens;
    for (const Record& record : text.Of(Record::Char))
        pens.push_back(record.x);
    EXPECT_THAT(pens, ElementsAre(30, 45, 60, 75, 90));
}

// ---- Arabic ----

TEST_F(FlowOrderTest, ArabicLettersJoinByTheirNeighbours)
{
    // beh three times: final, medial, initial from the left.
    EXPECT_THAT(Rows(u"ببب"), ElementsAre(Row{0, 24, u"\ufe90\ufe92\ufe91"}));
    EXPECT_THAT(Rows(u"ب"), ElementsAre(Row{0, 24, u"\ufe8f"}));
    // dal joins only to the right.
    EXPECT_THAT(Rows(u"بدب"), ElementsAre(Row{0, 24, u"\ufe8f\ufeaa\ufe91"}));
}

TEST_F(FlowOrderTest, PersianLettersJoinToo)
{
    EXPECT_THAT(Rows(u"پگ"), ElementsAre(Row{0, 24, u"\ufb93\ufb58"}));
}

TEST_F(FlowOrderTest, LamAndAlefAreOneLigature)
{
    EXPECT_THAT(Rows(u"لا"), ElementsAre(Row{0, 24, u"\ufefb"}));
    EXPECT_THAT(Rows(u"بلاب"), ElementsAre(Row{0, 24, u"\ufe8f\ufefc\ufe91"}));
}

TEST_F(FlowOrderTest, FontWithoutAFormShowsTheLetter)
{
    text.numbers->missing = {0xfe92};
    EXPECT_THAT(Rows(u"ببب"), ElementsAre(Row{0, 24, u"\ufe90ب\ufe91"}));
    text.numbers->missing = {0xfefb};
    formatter.Clear();
    EXPECT_THAT(Rows(u"لا"), ElementsAre(Row{0, 24, u"\ufe8e\ufedf"}));
}

TEST_F(FlowOrderTest, JoinersShapeAndDrawNothing)
{
    EXPECT_THAT(Rows(u"ب\u200dب"), ElementsAre(Row{0, 24, u"\ufe90\ufe91"}));
    EXPECT_THAT(Rows(u"ب\u200cب"), ElementsAre(Row{0, 24, u"\ufe8f\ufe8f"}));
}

TEST_F(FlowOrderTest, LetterSpaceDoesNotPartJoinedLetters)
{
    text.attributes[AttrLetterSpace] = 5;
    text.Show(u"ببدب", formatter, TextAlignLeft);
    std::vector<int> pens;
    for (const Record& record : text.Of(Record::Char))
        pens.push_back(record.x);
    EXPECT_THAT(pens, ElementsAre(0, 15, 25, 35))
        << "one gap, behind the letter that ends the join";
    text.Show(u"بلاب", formatter, TextAlignLeft);
    pens.clear();
    for (const Record& record : text.Of(Record::Char))
        pens.push_back(record.x);
    EXPECT_THAT(pens, ElementsAre(0, 15, 25)) << "and behind a ligature";
}

TEST_F(FlowOrderTest, LigatureIsNotCutAtALinesEnd)
{
    text.attributes[AttrSpanX] = 20;
    EXPECT_THAT(Rows(u"ببلاب", TextWrap | TextAlignRight),
                ElementsAre(Row{0, 12, u"\ufe92\ufe91"}, Row{0, 36, u"\ufe8f\ufefc"}));
}

// ---- Code units that are no characters ----

TEST_F(FlowOrderTest, PairShowsOneReplacement)
{
    EXPECT_THAT(Rows(u"a\U0001F600b"), ElementsAre(Row{0, 24, u"a\ufffdb"}));
    EXPECT_THAT(Rows(u"\U0001F600\U0001F601"), ElementsAre(Row{0, 24, u"\ufffd\ufffd"}));
}

TEST_F(FlowOrderTest, HalfAPairShowsAReplacementOfItsOwn)
{
    EXPECT_THAT(Rows({u'a', 0xd83d, u'b', 0xde00, u'c'}),
                ElementsAre(Row{0, 24, u"a\ufffdb\ufffdc"}));
    EXPECT_THAT(Rows({0xde00, 0xd83d}), ElementsAre(Row{0, 24, u"\ufffd\ufffd"}));
    EXPECT_THAT(Rows({0xd83d}), ElementsAre(Row{0, 24, u"\ufffd"}));
    EXPECT_THAT(Rows({0xd83d, 0xd83d, 0xde00}), ElementsAre(Row{0, 24, u"\ufffd\ufffd"}));
}

TEST_F(FlowOrderTest, PairsAreWholeCharactersForLinesAndOrder)
{
    // An ideograph beyond 16 bits may end a line; a letter of an old script runs to the left.
    text.attributes[AttrSpanX] = 20;
    EXPECT_THAT(Rows(u"中\U00020000中", TextWrap | TextAlignLeft),
                ElementsAre(Row{0, 12, u"中\ufffd"}, Row{0, 36, u"中"}));
    text.attributes[AttrSpanX] = 100;
    EXPECT_THAT(Rows(u"\U00010900(a"), ElementsAre(Row{0, 24, u"a)\ufffd"}));
}

} // namespace
