/**
 * SubRip files as they are found, and as they should not be.
 */
#include "srt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrin_play {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

Subtitles Parse(const std::string& content, const std::string& encoding = "utf-8")
{
    return ParseSubtitles(content, *FindEncoding(encoding));
}

std::vector<std::string> Texts(const Cue& cue)
{
    std::vector<std::string> texts;
    for (const TextLine& line : cue.text)
        texts.push_back(line.bytes);
    return texts;
}

/** UTF-16 bytes of an ASCII text. */
std::string Wide(const std::string& ascii, bool little)
{
    std::string bytes;
    for (const char c : ascii)
        bytes += little ? std::string{c, '\0'} : std::string{'\0', c};
    return bytes;
}

const char plain[] = "1\n00:00:01,000 --> 00:00:03,500\nOne\nTwo\n\n"
                     "2\n01:02:03,004 --> 01:02:04,005\nThree\n";

TEST(Srt, ReadsNumberTimesAndLines)
{
    const Subtitles read = Parse(plain);
    ASSERT_THAT(read.cues, SizeIs(2));
    EXPECT_THAT(read.problems, IsEmpty());
    EXPECT_EQ(read.cues[0].number, "1");
    EXPECT_EQ(read.cues[0].line, 2);
    EXPECT_EQ(read.cues[0].start, 1000);
    EXPECT_EQ(read.cues[0].end, 3500);
    EXPECT_THAT(Texts(read.cues[0]), ElementsAre("One", "Two"));
    EXPECT_EQ(read.cues[0].text[1].line, 4);
    EXPECT_EQ(read.cues[1].start, 3723004);
}

TEST(Srt, AByteOrderMarkIsNoText)
{
    EXPECT_THAT(Parse(std::string("\xEF\xBB\xBF") + plain).cues, SizeIs(2));
}

TEST(Srt, LineEndsOfEverySystem)
{
    for (const std::string end : {"\r\n", "\r"}) {
        std::string content;
        for (const char c : std::string(plain))
            content += c == '\n' ? end : std::string(1, c);
        const Subtitles read = Parse(content);
        ASSERT_THAT(read.cues, SizeIs(2));
        EXPECT_THAT(Texts(read.cues[0]), ElementsAre("One", "Two"));
        EXPECT_EQ(read.cues[1].line, 7);
    }
}

TEST(Srt, TheLastCueNeedsNoEmptyLineAndNoLineEnd)
{
    const Subtitles read = Parse("1\n00:00:01,000 --> 00:00:02,000\nLast");
    ASSERT_THAT(read.cues, SizeIs(1));
    EXPECT_THAT(Texts(read.cues[0]), ElementsAre("Last"));
}

TEST(Srt, ACueNeedsNoNumber)
{
    const Subtitles read = Parse("00:00:01,000 --> 00:00:02,000\nText\n");
    ASSERT_THAT(read.cues, SizeIs(1));
    EXPECT_EQ(read.cues[0].number, "");
    EXPECT_THAT(read.problems, IsEmpty());
}

TEST(Srt, CuesWithoutAnEmptyLineBetweenThemAreApart)
{
    const Subtitles read = Parse("1\n00:00:01,000 --> 00:00:02,000\nOne\n"
                                 "2\n00:00:03,000 --> 00:00:04,000\nTwo\n"
                                 "00:00:05,000 --> 00:00:06,000\nThree\n");
    ASSERT_THAT(read.cues, SizeIs(3));
    EXPECT_THAT(Texts(read.cues[0]), ElementsAre("One"));
    EXPECT_THAT(Texts(read.cues[1]), ElementsAre("Two"));
}

TEST(Srt, ALineOfDigitsMayBeText)
{
    const Subtitles read = Parse("1\n00:00:01,000 --> 00:00:02,000\n1984\nby nobody\n");
    ASSERT_THAT(read.cues, SizeIs(1));
    EXPECT_THAT(Texts(read.cues[0]), ElementsAre("1984", "by nobody"));
}

TEST(Srt, OverlappingCuesAreKeptAndSortedByStart)
{
    const Subtitles read = Parse("1\n00:00:05,000 --> 00:00:09,000\nLater\n\n"
                                 "2\n00:00:01,000 --> 00:00:08,000\nEarlier\n");
    ASSERT_THAT(read.cues, SizeIs(2));
    EXPECT_EQ(read.cues[0].number, "2");
    EXPECT_EQ(read.cues[1].number, "1");
    EXPECT_THAT(read.problems, IsEmpty());
}

TEST(Srt, TimesWithBlanksPointsShortFractionsAndCoordinates)
{
    const Subtitles read = Parse(" 0:00:01.5-->0:00:02   X1:10 X2:20\nText\n");
    ASSERT_THAT(read.cues, SizeIs(1));
    EXPECT_EQ(read.cues[0].start, 1500);
    EXPECT_EQ(read.cues[0].end, 2000);
}

TEST(Srt, BadTimesCostThatCueOnly)
{
    const char* const bad[] = {
        "00:00:01,000 --> oops",          "00:61:01,000 --> 00:62:00,000",
        "00:00:99,000 --> 00:01:40,000",  "00:00:01,0000 --> 00:00:02,000",
        "00:00:01,000 --> 00:00:02,000x", "--> 00:00:02,000",
        "-1:00:01,000 --> 00:00:02,000",
    };
    for (const std::string times : bad) {
        const Subtitles read = Parse("1\n" + times + "\nText\nmore\n\n" + plain);
        EXPECT_THAT(read.cues, SizeIs(2)) << times;
        ASSERT_THAT(read.problems, SizeIs(1)) << times;
        EXPECT_EQ(read.problems[0].line, 2);
        EXPECT_THAT(read.problems[0].message, HasSubstr("bad times"));
        EXPECT_THAT(read.problems[0].remedy, HasSubstr("00:00:01,000 --> 00:00:02,500"));
    }
}

TEST(Srt, HugeNumbersAreBadTimesAndDoNotOverflow)
{
    const Subtitles read =
        Parse("99999999999999999999\n99999999999999999999:00:01,000 --> "
              "99999999999999999999:00:02,000\nText\n\n9999:59:59,000 --> 9999:59:59,999\nText\n");
    ASSERT_THAT(read.problems, SizeIs(1));
    EXPECT_THAT(read.problems[0].message, HasSubstr("bad times"));
    ASSERT_THAT(read.cues, SizeIs(1));
    EXPECT_EQ(FormatTime(read.cues[0].end), "9999:59:59,999");
}

TEST(Srt, ACueThatEndsBeforeItBeginsIsLeftOut)
{
    const Subtitles read = Parse("1\n00:00:02,000 --> 00:00:02,000\nText\n");
    EXPECT_THAT(read.cues, IsEmpty());
    ASSERT_THAT(read.problems, SizeIs(1));
    EXPECT_EQ(read.problems[0].line, 2);
}

TEST(Srt, ACueWithoutTextIsLeftOut)
{
    const Subtitles read = Parse(std::string("1\n00:00:01,000 --> 00:00:02,000\n\n") + plain);
    EXPECT_THAT(read.cues, SizeIs(2));
    ASSERT_THAT(read.problems, SizeIs(1));
    EXPECT_THAT(read.problems[0].message, HasSubstr("without text"));
}

TEST(Srt, TextWithoutTimesIsNamedOnce)
{
    const Subtitles read = Parse(std::string("stray\nlines\n\n") + plain);
    EXPECT_THAT(read.cues, SizeIs(2));
    ASSERT_THAT(read.problems, SizeIs(1));
    EXPECT_EQ(read.problems[0].line, 1);
    EXPECT_THAT(read.problems[0].message, HasSubstr("\"stray\""));
}

TEST(Srt, NothingIsNoCueAndNoProblem)
{
    for (const char* content : {"", "\n", "\r\n\r\n", "\xEF\xBB\xBF"}) {
        EXPECT_THAT(Parse(content).cues, IsEmpty());
        EXPECT_THAT(Parse(content).problems, IsEmpty());
    }
}

TEST(Srt, BytesOfDoubleByteCharactersAreNoStructure)
{
    // The second byte of this Big5 character is a backslash.
    const Subtitles read = Parse("1\n00:00:01,000 --> 00:00:02,000\n\xA5\x5C\n", "big5");
    ASSERT_THAT(read.cues, SizeIs(1));
    EXPECT_EQ(Decode(read.cues[0].text[0].bytes, *FindEncoding("big5")), u"\u529F");
}

TEST(Srt, Utf16InEitherOrderWithAndWithoutMark)
{
    const std::string little = Wide(plain, true);
    const std::string big = Wide(plain, false);
    const std::pair<std::string, std::string> files[] = {{"utf-16", "\xFF\xFE" + little},
                                                         {"utf-16", "\xFE\xFF" + big},
                                                         {"utf-16", little},
                                                         {"utf-16le", little},
                                                         {"utf-16be", "\xFE\xFF" + big},
                                                         {"utf-16be", big + "\x7F"}};
    for (const auto& [name, content] : files) {
        const Subtitles read = Parse(content, name);
        ASSERT_THAT(read.cues, SizeIs(2)) << name;
        EXPECT_EQ(Decode(read.cues[1].text[0].bytes, *FindEncoding(name)), u"Three") << name;
    }
}

TEST(Encoding, NamesIgnoreCaseAndDashes)
{
    EXPECT_EQ(FindEncoding("ISO8859_7")->text, zelxxx::Encoding8859_7);
    EXPECT_EQ(FindEncoding("UTF8")->text, zelxxx::EncodingUTF8);
    EXPECT_FALSE(FindEncoding("iso-8859-12"));
}

TEST(Encoding, BytesThatAreNoTextAreTold)
{
    EXPECT_FALSE(Decode("caf\xE9", *FindEncoding("utf-8")));
    EXPECT_FALSE(Decode("\xA4", *FindEncoding("euc-jp")));
    EXPECT_EQ(Decode("caf\xE9", *FindEncoding("iso-8859-1")), u"caf\u00E9");
    EXPECT_EQ(Decode("caf\xC2"
                     "e",
                     *FindEncoding("iso6937")),
              u"caf\u00E9");
    EXPECT_EQ(Decode("", *FindEncoding("big5")), u"");
}

TEST(Problem, NamesFileLineMessageAndRemedy)
{
    EXPECT_EQ(Describe("a.srt", {7, "bad", "mend it"}), "a.srt:7: bad; mend it");
    EXPECT_EQ(Describe("a.srt", {0, "bad", ""}), "a.srt: bad");
    EXPECT_EQ(Quoted("a\x1B\xFFz"), "\"a\\x1B\\xFFz\"");
    EXPECT_EQ(Quoted(std::string(60, 'x')), "\"" + std::string(40, 'x') + "...\"");
}

} // namespace
} // namespace kestrin_play
