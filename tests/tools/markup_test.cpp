/**
 * Tags in subtitle texts.
 */
#include "markup.h"

#include <gtest/gtest.h>

namespace kestrin_play {
namespace {

std::u16string Text(const std::u16string& line)
{
    return MarkupReader().ReadLine(line).text;
}

TEST(Markup, StyleTagsAndPositionsGo)
{
    EXPECT_EQ(Text(u"<i>a</i> <B>b</B> {\\an8}c <u></u>"), u"a b c ");
}

TEST(Markup, OtherAngleBracketsAreText)
{
    EXPECT_EQ(Text(u"1 < 2 > 0, <3, {x}, <x>, <"), u"1 < 2 > 0, <3, {x}, <x>, <");
}

TEST(Markup, InvisibleCharactersGoAndTabsAreBlanks)
{
    EXPECT_EQ(Text(u"a\tb\u0007\u009F\uFEFFc"), u"a bc");
}

TEST(Markup, WhatShapesAndBreaksLinesStays)
{
    EXPECT_EQ(Text(u"a\u00ADb\u200Bc\u200C\u200D\u200E\u200F\u2067d"),
              u"a\u00ADb\u200Bc\u200C\u200D\u200E\u200F\u2067d");
}

TEST(Markup, FontColoursBeginAndEnd)
{
    const StyledLine line =
        MarkupReader().ReadLine(u"a<font color=\"#FFD24A\">b<FONT COLOR=red>c</font>d</font>e");
    EXPECT_EQ(line.text, u"abcde");
    ASSERT_EQ(line.colours.size(), 5u);
    const std::uint32_t expected[] = {0xFFFFFF, 0xFFD24A, 0xFF0000, 0xFFD24A, 0xFFFFFF};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(line.colours[i].begin, i);
        EXPECT_EQ(line.colours[i].rgb, expected[i]);
    }
}

TEST(Markup, AColourGoesOnToTheNextLineOfTheCue)
{
    MarkupReader reader;
    reader.ReadLine(u"<font color='lime'>one");
    const StyledLine second = reader.ReadLine(u"two</font> three");
    ASSERT_EQ(second.colours.size(), 2u);
    EXPECT_EQ(second.colours[0].rgb, 0x00FF00u);
    EXPECT_EQ(second.colours[1].begin, 3u);
    EXPECT_EQ(second.colours[1].rgb, default_text_colour);
}

TEST(Markup, UnknownColoursKeepTheColour)
{
    for (const char16_t* tag : {u"<font color=\"#12\">", u"<font color=\"#GGGGGG\">",
                                u"<font color=mauve>", u"<font face=x>", u"<font color=>"}) {
        const StyledLine line = MarkupReader().ReadLine(std::u16string(tag) + u"x");
        EXPECT_EQ(line.text, u"x");
        ASSERT_EQ(line.colours.size(), 1u);
        EXPECT_EQ(line.colours[0].rgb, default_text_colour);
    }
}

TEST(Markup, AnEndTagTooManyIsIgnored)
{
    EXPECT_EQ(Text(u"</font></font>x"), u"x");
}

} // namespace
} // namespace kestrin_play
