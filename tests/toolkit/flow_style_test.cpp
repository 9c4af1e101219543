/** What a formatter draws beside the characters: colours, shadows, outlines, marks. */
#include "flow_recorder.h"

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

Record At(int x, int y, char16_t glyph)
{
    return {Record::Char, x, y, glyph, 0};
}

Record Cursor(int x, int y, char16_t glyph, UInt32 color)
{
    return {Record::Cursor, x, y, glyph, color};
}

Record Color(UInt32 color)
{
    return {Record::Color, 0, 0, 0, color};
}

Record Index(UInt32 index)
{
    return {Record::Index, 0, 0, 0, index};
}

constexpr UInt32 kOpaqueWhite = 0xffffffff;

class FlowStyleTest : public testing::Test
{
protected:
    FlowStyleTest() { text.attributes[AttrTextFormat] = TextAlignLeft | TextAlignTop; }

    FlowFormatter formatter{Color32Bit};
    FlowFormatter indexed{Color8Bit};
    FlowStyle style;
    RecordingText text; // 100 x 72: ten characters wide, three lines high
};

// ---- Colours ----

TEST_F(FlowStyleTest, TextHasTheWidgetsColour)
{
    text.attributes[AttrColor] = 0x332211;
    EXPECT_THAT(text.Show(u"ab", formatter).records,
                ElementsAre(Color(0xff332211), At(0, 0, u'a'), At(10, 0, u'b')));
}

TEST_F(FlowStyleTest, On8BitsAColourIsAnIndex)
{
    text.attributes[AttrColor] = 77;
    EXPECT_THAT(text.Show(u"a", indexed).records, ElementsAre(Index(77), At(0, 0, u'a')));
}

TEST_F(FlowStyleTest, On8BitsWhatCannotBeAnIndexIsTheNearestColour)
{
    text.attributes[AttrColor] = 0xffffff; // a new widget's
    EXPECT_THAT(text.Show(u"a", indexed).records, ElementsAre(Index(187), At(0, 0, u'a')));
    text.attributes[AttrColor] = 0xff0000; // blue
    EXPECT_THAT(text.Show(u"a", indexed).Of(Record::Index), ElementsAre(Index(55)));
}

TEST_F(FlowStyleTest, RunsColourTheirUnits)
{
    const FlowColorRun runs[] = {{1, 3, 0x0000ff, 255}, {5, 99, 0x00ff00, 128}};
    formatter.SetColors(runs, 2);
    EXPECT_THAT(text.Show(u"abcdefg", formatter).records,
                ElementsAre(Color(kOpaqueWhite), At(0, 0, u'a'), Color(0xff0000ff), At(10, 0, u'b'),
                            At(20, 0, u'c'), Color(kOpaqueWhite), At(30, 0, u'd'), At(40, 0, u'e'),
                            Color(0x8000ff00), At(50, 0, u'f'), At(60, 0, u'g')));
}

TEST_F(FlowStyleTest, LaterRunsLieOverEarlierOnes)
{
    const FlowColorRun runs[] = {{0, 4, 1, 255}, {1, 3, 2, 255}, {2, 2, 3, 255}, {9, 3, 4, 255}};
    formatter.SetColors(runs, 4);
    EXPECT_THAT(
        text.Show(u"abcde", formatter).Of(Record::Color),
        ElementsAre(Color(0xff000001), Color(0xff000002), Color(0xff000001), Color(kOpaqueWhite)));
}

TEST_F(FlowStyleTest, RunsThatMeetKeepTheirEnds)
{
    const FlowColorRun runs[] = {{2, 4, 1, 255}, {0, 2, 2, 255}, {4, 5, 3, 255}, {1, 5, 4, 255}};
    formatter.SetColors(runs, 4);
    EXPECT_THAT(text.Show(u"abcdef", formatter).Of(Record::Color),
                ElementsAre(Color(0xff000002), Color(0xff000004), Color(kOpaqueWhite)));
}

TEST_F(FlowStyleTest, RunsFollowTheirCharactersIntoVisualOrder)
{
    const FlowColorRun run = {0, 1, 0x0000ff, 255};
    formatter.SetColors(&run, 1);
    EXPECT_THAT(
        text.Show(u"אב", formatter).records,
        ElementsAre(Color(kOpaqueWhite), At(0, 0, u'ב'), Color(0xff0000ff), At(10, 0, u'א')));
}

TEST_F(FlowStyleTest, RunsAreIndicesOn8Bits)
{
    const FlowColorRun runs[] = {{0, 1, 100, 3}, {1, 2, 0x00ff0000, 255}};
    indexed.SetColors(runs, 2);
    EXPECT_THAT(text.Show(u"ab", indexed).Of(Record::Index), ElementsAre(Index(100), Index(55)));
}

TEST_F(FlowStyleTest, NoRunsTakeTheColoursBack)
{
    const FlowColorRun run = {0, 9, 1, 255};
    formatter.SetColors(&run, 1);
    formatter.SetColors(nullptr, 0);
    EXPECT_THAT(text.Show(u"a", formatter).Of(Record::Color), ElementsAre(Color(kOpaqueWhite)));
}

// ---- Shadow and outline ----

TEST_F(FlowStyleTest, ShadowsComeBeforeAllCharacters)
{
    style.shadow_x = 2;
    style.shadow_y = 3;
    style.shadow_blend = 200;
    style.shadow_color = 0x010203;
    formatter.SetStyle(style);
    EXPECT_THAT(text.Show(u"a\nb", formatter).records,
                ElementsAre(Color(0xc8010203), At(2, 3, u'a'), At(2, 27, u'b'), Color(kOpaqueWhite),
                            At(0, 0, u'a'), At(0, 24, u'b')));
}

TEST_F(FlowStyleTest, ShadowLiesInsideTheBox)
{
    style.shadow_x = 2;
    style.shadow_y = 3;
    style.shadow_blend = 255;
    formatter.SetStyle(style);
    text.Show(u"a", formatter, TextAlignRight | TextAlignBottom);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(At(90, 48, u'a'), At(88, 45, u'a')));
    style.shadow_x = -2;
    style.shadow_y = -3;
    formatter.SetStyle(style);
    text.Show(u"a", formatter, TextAlignLeft | TextAlignTop);
    EXPECT_THAT(text.Of(Record::Char), ElementsAre(At(0, 0, u'a'), At(2, 3, u'a')));
    // The width that is left decides where lines end.
    EXPECT_THAT(text.Show(u"abcdefghij", formatter, TextWrap).Rows(), SizeIs(4));
}

TEST_F(FlowStyleTest, OutlineSurroundsEveryGlyph)
{
    style.outline_width = 1;
    style.outline_blend = 255;
    style.outline_color = 0x102030;
    formatter.SetStyle(style);
    text.Show(u"a", formatter);
    std::vector<std::pair<int, int>> around;
    const std::vector<Record> drawn = text.Of(Record::Char);
    ASSERT_THAT(drawn, SizeIs(9));
    for (std::size_t i = 0; i < 8; ++i)
        around.emplace_back(drawn[i].x, drawn[i].y);
    EXPECT_THAT(around, testing::UnorderedElementsAre(testing::Pair(0, 0), testing::Pair(1, 0),
                                                      testing::Pair(2, 0), testing::Pair(0, 1),
                                                      testing::Pair(2, 1), testing::Pair(0, 2),
                                                      testing::Pair(1, 2), testing::Pair(2, 2)));
    EXPECT_EQ(drawn.back(), At(1, 1, u'a'));
    EXPECT_THAT(text.Of(Record::Color), ElementsAre(Color(0xff102030), Color(kOpaqueWhite)));
}

TEST_F(FlowStyleTest, WideOutlineIsACircleOfAtMost8Pixels)
{
    style.outline_width = 200;
    style.outline_blend = 255;
    formatter.SetStyle(style);
    text.Show(u"a", formatter);
    const std::vector<Record> drawn = text.Of(Record::Char);
    const Record center = drawn.back();
    EXPECT_EQ(center, At(8, 8, u'a'));
    for (std::size_t i = 0; i + 1 < drawn.size(); ++i) {
        const double distance = std::hypot(drawn[i].x - center.x, drawn[i].y - center.y);
        EXPECT_NEAR(distance, 8, 0.75);
    }
    EXPECT_GT(drawn.size(), 32U);
}

TEST_F(FlowStyleTest, ShadowComesBeforeTheOutline)
{
    style.outline_width = 1;
    style.outline_blend = 255;
    style.outline_color = 1;
    style.shadow_x = 4;
    style.shadow_blend = 255;
    style.shadow_color = 2;
    formatter.SetStyle(style);
    EXPECT_THAT(text.Show(u"a", formatter).Of(Record::Color),
                ElementsAre(Color(0xff000002), Color(0xff000001), Color(kOpaqueWhite)));
}

TEST_F(FlowStyleTest, OpacityOf0SwitchesThemOff)
{
    style.outline_width = 1;
    style.shadow_x = 4;
    formatter.SetStyle(style);
    EXPECT_THAT(text.Show(u"a", formatter).Of(Record::Char), ElementsAre(At(0, 0, u'a')));
}

// ---- Marks ----

class FlowMarks : public FlowStyleTest
{
protected:
    FlowMarks() { text.attributes[AttrTextFormat] = TextAlignLeft | TextAlignTop | TextMarked; }

    std::vector<Record> Marks(const std::u16string& units, FlowFormatter& with)
    {
        return text.Show(units, with).Of(Record::Cursor);
    }
};

TEST_F(FlowMarks, CharacterAtTheCursorIndexIsMarked)
{
    EXPECT_THAT(Marks(u"abc", formatter), ElementsAre(Cursor(0, 0, u'a', kOpaqueWhite)));
    text.attributes[AttrCursorIndex] = 2;
    EXPECT_THAT(Marks(u"abc", formatter), ElementsAre(Cursor(20, 0, u'c', kOpaqueWhite)));
}

TEST_F(FlowMarks, WithoutTheBitNothingIs)
{
    text.attributes[AttrTextFormat] = TextAlignLeft;
    style.mark_begin = 0;
    style.mark_end = 3;
    formatter.SetStyle(style);
    EXPECT_THAT(Marks(u"abc", formatter), IsEmpty());
}

TEST_F(FlowMarks, MarksComeAfterAllCharacters)
{
    EXPECT_EQ(text.Show(u"abc", formatter).records.back().kind, Record::Cursor);
}

TEST_F(FlowMarks, RangeIsMarkedWithItsBlanks)
{
    style.mark_begin = 1;
    style.mark_end = 4;
    formatter.SetStyle(style);
    EXPECT_THAT(Marks(u"ab de", formatter),
                ElementsAre(Cursor(10, 0, u'b', kOpaqueWhite), Cursor(20, 0, u' ', kOpaqueWhite),
                            Cursor(30, 0, u'd', kOpaqueWhite)));
}

TEST_F(FlowMarks, RangeGoesOverLines)
{
    style.mark_begin = 1;
    style.mark_end = 5;
    formatter.SetStyle(style);
    EXPECT_THAT(Marks(u"ab\ncd", formatter),
                ElementsAre(Cursor(10, 0, u'b', kOpaqueWhite), Cursor(0, 24, u'c', kOpaqueWhite),
                            Cursor(10, 24, u'd', kOpaqueWhite)));
}

TEST_F(FlowMarks, RangeFromRightToLeftIsMarkedWhereItsCharactersAre)
{
    style.mark_begin = 0;
    style.mark_end = 2;
    formatter.SetStyle(style);
    EXPECT_THAT(Marks(u"אבג", formatter),
                ElementsAre(Cursor(10, 0, u'ב', kOpaqueWhite), Cursor(20, 0, u'א', kOpaqueWhite)));
}

TEST_F(FlowMarks, PartOfACharacterMarksItOnce)
{
    text.numbers->advances[0x301] = 0;
    text.attributes[AttrCursorIndex] = 1;
    EXPECT_THAT(Marks(u"e\u0301", formatter), ElementsAre(Cursor(0, 0, u'e', kOpaqueWhite)));
    EXPECT_THAT(Marks(u"\U0001F600", formatter),
                ElementsAre(Cursor(0, 0, u'\ufffd', kOpaqueWhite)));
    EXPECT_THAT(Marks(u"لا", formatter), ElementsAre(Cursor(0, 0, u'\ufefb', kOpaqueWhite)));
}

TEST_F(FlowMarks, CursorBehindTheTextMarksTheNextPlace)
{
    text.attributes[AttrCursorIndex] = 2;
    EXPECT_THAT(Marks(u"ab", formatter), ElementsAre(Cursor(20, 0, u' ', kOpaqueWhite)));
    text.attributes[AttrCursorIndex] = -1;
    EXPECT_THAT(Marks(u"אב", formatter), ElementsAre(Cursor(-10, 0, u' ', kOpaqueWhite)));
    EXPECT_THAT(Marks(u"", formatter), ElementsAre(Cursor(0, 0, u' ', kOpaqueWhite)));
}

TEST_F(FlowMarks, CursorIndexBehindACutTextMarksNothing)
{
    text.attributes[AttrTextFormat] = TextEndEllipsis | TextMarked;
    text.attributes[AttrCursorIndex] = 99;
    EXPECT_THAT(Marks(u"abcdefghijklm", formatter), IsEmpty());
}

TEST_F(FlowMarks, AddedGlyphsAreNotMarked)
{
    text.attributes[AttrTextFormat] = TextEndEllipsis | TextMarked;
    style.mark_begin = 8;
    style.mark_end = 99;
    formatter.SetStyle(style);
    EXPECT_THAT(Marks(u"abcdefghijklm", formatter),
                ElementsAre(Cursor(80, 24, u'i', kOpaqueWhite)));
}

TEST_F(FlowMarks, MarkHasTheTextsColourUnlessItHasItsOwn)
{
    const FlowColorRun run = {1, 2, 0x0000ff, 128};
    formatter.SetColors(&run, 1);
    text.attributes[AttrCursorIndex] = 1;
    EXPECT_THAT(Marks(u"ab", formatter), ElementsAre(Cursor(10, 0, u'b', 0x800000ff)));
    style.mark_color = 0x00ff00;
    style.mark_blend = 100;
    formatter.SetStyle(style);
    EXPECT_THAT(Marks(u"ab", formatter), ElementsAre(Cursor(10, 0, u'b', 0x6400ff00)));
    style.mark_color = 9;
    indexed.SetStyle(style);
    EXPECT_THAT(Marks(u"ab", indexed), ElementsAre(Cursor(10, 0, u'b', 9)));
}

TEST_F(FlowMarks, LineIsBelowTheBaselineOfItsRow)
{
    // At nine tenths of the font's 24 pixels, which stand in the middle of the row's 30.
    text.attributes[AttrLineHeight] = 30;
    EXPECT_THAT(Marks(u"a", formatter), ElementsAre(Cursor(0, 3, u'a', kOpaqueWhite)));
}

// ---- Several widgets ----

TEST_F(FlowStyleTest, WidgetsMayHaveSettingsOfTheirOwn)
{
    RecordingText other;
    other.attributes[AttrTextFormat] = TextAlignLeft | TextAlignTop;
    const FlowColorRun red = {0, 9, 0x0000ff, 255};
    const FlowColorRun green = {0, 9, 0x00ff00, 255};
    formatter.SetColors(&red, 1);
    formatter.SetColors(&green, 1, &other);
    EXPECT_THAT(text.Show(u"a", formatter).Of(Record::Color), ElementsAre(Color(0xff0000ff)));
    EXPECT_THAT(other.Show(u"a", formatter).Of(Record::Color), ElementsAre(Color(0xff00ff00)));
    // What a widget has nothing of is what applies to all.
    style.shadow_blend = 255;
    formatter.SetStyle(style);
    EXPECT_THAT(other.Show(u"a", formatter).Of(Record::Char), SizeIs(2));
    formatter.Forget(&other);
    EXPECT_THAT(other.Show(u"a", formatter).Of(Record::Color),
                ElementsAre(Color(0xff000000), Color(0xff0000ff)));
}

TEST_F(FlowStyleTest, SettingForAWidgetHasItDrawnAnew)
{
    formatter.SetStyle(style);
    EXPECT_EQ(text.sets, 0);
    text.attributes[AttrColor] = 5;
    formatter.SetStyle(style, &text);
    formatter.SetColors(nullptr, 0, &text);
    formatter.SetLineHandler(nullptr, &text);
    EXPECT_EQ(text.sets, 3);
    EXPECT_EQ(text.attributes[AttrColor], 5);
}

class LineList : public IFlowLineHandler
{
public:
    void HandleLine(IText*, UInt32 index, UInt32 count, const FlowLine& line) override
    {
        calls.push_back({static_cast<int>(index), static_cast<int>(count), line.box.left,
                         line.box.top, line.box.right, line.box.bottom});
    }
    std::vector<std::vector<int>> calls;
};

TEST_F(FlowStyleTest, HandlerIsToldEveryLinesBox)
{
    LineList lines;
    formatter.SetLineHandler(&lines);
    text.Show(u"ab\nc", formatter, TextAlignRight);
    EXPECT_THAT(lines.calls, ElementsAre(ElementsAre(0, 2, 80, 12, 100, 36),
                                         ElementsAre(1, 2, 90, 36, 100, 60)));
    lines.calls.clear();
    text.Show(u"", formatter);
    EXPECT_THAT(lines.calls, ElementsAre(ElementsAre(0, 0, 0, 0, 0, 0)));
}

TEST_F(FlowStyleTest, HandlerMayChangeTheSettings)
{
    struct Changer : IFlowLineHandler
    {
        void HandleLine(IText* widget, UInt32, UInt32, const FlowLine&) override
        {
            formatter->Forget(widget);
            formatter->SetLineHandler(nullptr);
            formatter->Clear();
        }
        FlowFormatter* formatter = nullptr;
    } changer;
    changer.formatter = &formatter;
    formatter.SetLineHandler(&changer, &text);
    EXPECT_THAT(text.Show(u"a\nb", formatter).Of(Record::Char), SizeIs(2));
}

// ---- Glyphs on 8-bit displays ----

std::vector<int> Buffer(FlowFormatter& formatter, std::vector<UInt8> coverage, ColorValue color,
                        BlendValue blend)
{
    CharMetrics glyph = {2, static_cast<Int32>(coverage.size()), 1, 0, 0, coverage.data()};
    std::vector<SChar> buffer(coverage.size() + 1, 99);
    formatter.GetCharBuffer(&glyph, color, blend, buffer.data());
    EXPECT_EQ(buffer.back(), 99);
    std::vector<int> indices;
    for (std::size_t i = 0; i < coverage.size(); ++i)
        indices.push_back(static_cast<UInt8>(buffer[i]));
    return indices;
}

TEST_F(FlowStyleTest, CoverageBecomesTheNearestIndexOfTheColourAtThatOpacity)
{
    // Pure red: transparent below 25, semi-transparent up to 230, opaque from 231.
    EXPECT_THAT(Buffer(indexed, {0, 24, 25, 128, 230, 231, 255}, 0x0000ff, 255),
                ElementsAre(0, 0, 7, 7, 7, 161, 161));
    for (int coverage = 0; coverage < 256; ++coverage) {
        for (const BlendValue blend : {0, 77, 200, 255}) {
            const UInt32 alpha = static_cast<UInt32>(coverage) * blend / 255;
            EXPECT_THAT(Buffer(indexed, {static_cast<UInt8>(coverage)}, 0x302010, blend),
                        ElementsAre(OSD_FindNearestColourIndex(alpha << 24 | 0x102030)));
        }
    }
}

TEST_F(FlowStyleTest, ManyColoursInTurnKeepTheirIndices)
{
    for (int round = 0; round < 3; ++round) {
        for (UInt32 grey = 0; grey < 256; grey += 5) {
            EXPECT_THAT(Buffer(indexed, {255}, grey * 0x010101, 255),
                        ElementsAre(OSD_FindNearestColourIndex(0xff000000 | grey * 0x010101)));
        }
    }
}

TEST_F(FlowStyleTest, OnAKnownGroundEdgesFadeTowardsIt)
{
    indexed.SetGround(0x000000);
    const std::vector<int> white = Buffer(indexed, {0, 31, 32, 64, 128, 192, 255}, 0xffffff, 255);
    EXPECT_THAT(white, ElementsAre(0, 0, 49, 50, 120, 52, 187)) << "greys without a tint";
    // Opaque blue ground, red text: half of both.
    indexed.SetGround(0xff0000);
    EXPECT_THAT(Buffer(indexed, {128}, 0x0000ff, 255),
                ElementsAre(OSD_FindNearestColourIndex(0xff80007f)));
    indexed.ResetGround();
    EXPECT_THAT(Buffer(indexed, {128}, 0x0000ff, 255), ElementsAre(7));
}

TEST_F(FlowStyleTest, GlyphWithoutAPictureLeavesTheBuffer)
{
    CharMetrics glyph = {2, 1, 1, 0, 0, nullptr};
    SChar buffer[] = {55};
    indexed.GetCharBuffer(&glyph, 0, 255, buffer);
    EXPECT_EQ(buffer[0], 55);
}

} // namespace
