#include "flow_breaks_p.h"
#include "unicode_data.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using namespace zelxxx;

namespace {

/** The text with a bar at each boundary of the kind. */
std::u16string Divided(const std::u16string& text, FlowBoundary kind)
{
    FlowBreaker breaker;
    const std::vector<UInt8> found = breaker.Find(reinterpret_cast<PtrConstWChar>(text.data()),
                                                  static_cast<UInt32>(text.size()));
    EXPECT_EQ(found.size(), text.size() + 1);
    std::u16string divided;
    for (std::size_t i = 0; i < text.size(); ++i) {
        divided += text[i];
        if (found[i + 1] & kind)
            divided += u'|';
    }
    return divided;
}

struct Case
{
    std::string line;
    std::vector<WChar> units;
    std::vector<bool> boundaries; /**< before each unit and at the end */
};

/** A line of the form "÷ 0061 × 0308 ÷". */
Case ReadCase(const std::string& line)
{
    Case read = {line, {}, {}};
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        read.boundaries.resize(read.units.size() + 1);
        if (word == "÷")
            read.boundaries.back() = true;
        else if (word != "×")
            Append(read.units, CodeOf(word));
    }
    read.boundaries[0] = false; // the files differ in what they say of the start
    return read;
}

/** Cases of a file that come out otherwise. */
std::vector<Case> Differing(const std::string& file, FlowBoundary kind, int* count)
{
    FlowBreaker breaker;
    std::vector<Case> differing;
    EXPECT_TRUE(ForEachLine(file, [&](const std::string& line) {
        Case expected = ReadCase(line);
        ++*count;
        const std::vector<UInt8> found =
            breaker.Find(expected.units.data(), static_cast<UInt32>(expected.units.size()));
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (expected.boundaries[i] != ((found[i] & kind) != 0)) {
                differing.push_back(std::move(expected));
                break;
            }
        }
    })) << "install unicode-data";
    return differing;
}

/**
 * The library's own deviations: what a hyphen begins, and a number after a point or a comma, stays
 * together.
 */
bool IsKnownDeviation(const std::string& line)
{
    const auto has = [&](const char* part) { return line.find(part) != std::string::npos; };
    return line.find("× 002D ") == 0 || has("002E ÷ 003") || has("002C ÷ 003") ||
           has("002C × 0308 ÷ 003");
}

TEST(FlowBreaks, LinesEndWhereUnicodesTestFileSaysButForSignsAndDecimalPoints)
{
    int count = 0;
    const std::vector<Case> differing = Differing("auxiliary/LineBreakTest.txt", FlowBreak, &count);
    for (const Case& one : differing)
        EXPECT_TRUE(IsKnownDeviation(one.line)) << one.line;
    EXPECT_LE(differing.size(), 22U);
    EXPECT_GT(count, 7000);
}

TEST(FlowBreaks, CharactersAreThoseOfUnicodesTestFile)
{
    int count = 0;
    const std::vector<Case> differing =
        Differing("auxiliary/GraphemeBreakTest.txt", FlowCluster, &count);
    EXPECT_TRUE(differing.empty()) << differing.front().line;
    EXPECT_GT(count, 600);
}

TEST(FlowBreaks, ChineseAndJapaneseBreakBetweenCharactersButNotBeforePunctuation)
{
    EXPECT_EQ(Divided(u"中文字幕，换行！", FlowBreak), u"中|文|字|幕，|换|行！|");
    EXPECT_EQ(Divided(u"「はい」と言う。", FlowBreak), u"「は|い」|と|言|う。|");
}

TEST(FlowBreaks, ThaiBreaksBetweenWords)
{
    EXPECT_EQ(Divided(u"ภาษาไทยเป็นภาษา", FlowBreak), u"ภาษา|ไทย|เป็น|ภาษา|");
}

TEST(FlowBreaks, NumbersAndPricesStayTogether)
{
    EXPECT_EQ(Divided(u"for $12.50 (all)", FlowBreak), u"for |$12.50 |(all)|");
}

TEST(FlowBreaks, NoBreakSpaceHoldsWords)
{
    EXPECT_EQ(Divided(u"10\u00a0km to", FlowBreak), u"10\u00a0km |to|");
}

TEST(FlowBreaks, MarksBelongToTheirLetters)
{
    EXPECT_EQ(Divided(u"e\u0301a", FlowCluster), u"e\u0301|a|");
    EXPECT_EQ(Divided(u"a\r\nb\n\r", FlowCluster), u"a|\r\n|b|\n|\r|");
}

TEST(FlowBreaks, UnpairedSurrogatesAndReservedCodesAreCharacters)
{
    const std::u16string text = {u'a', 0xdc00, 0xd800, u'b', 0xffff, 0xfffc, 0xd83d, 0xde00};
    const std::u16string expected = {u'a',   u'|', 0xdc00, u'|', 0xd800, u'|',   u'b', u'|',
                                     0xffff, u'|', 0xfffc, u'|', 0xd83d, 0xde00, u'|'};
    EXPECT_EQ(Divided(text, FlowCluster), expected);
}

TEST(FlowBreaks, EmptyTextEndsAtOnce)
{
    FlowBreaker breaker;
    EXPECT_THAT(breaker.Find(nullptr, 0), testing::ElementsAre(FlowCluster | FlowBreak));
}

TEST(FlowBreaks, NothingEndsBeforeTheFirstUnit)
{
    FlowBreaker breaker;
    const WChar units[] = {'a', 'b'};
    EXPECT_THAT(breaker.Find(units, 2),
                testing::ElementsAre(FlowInside, FlowCluster, FlowCluster | FlowBreak));
}

} // namespace
