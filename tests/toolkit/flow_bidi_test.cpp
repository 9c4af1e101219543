#include "flow_bidi_p.h"
#include "unicode_data.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <fribidi.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin_test;
using namespace zelxxx;
using testing::ElementsAre;

namespace {

std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);)
        parts.push_back(part);
    return parts;
}

/** Order of one line without the characters that `removed` names. */
std::vector<int> OrderOf(FlowOrder& order, bool right_to_left, const std::vector<bool>& removed)
{
    std::vector<signed char> levels = order.levels;
    std::vector<int> shown;
    for (const int i : VisualOrder(order.types, levels, right_to_left)) {
        if (!removed[static_cast<std::size_t>(i)])
            shown.push_back(i);
    }
    return shown;
}

/** Mirrored pairs of Unicode's table. */
std::map<UInt32, UInt32> ReadMirrors()
{
    std::map<UInt32, UInt32> mirrors;
    EXPECT_TRUE(ForEachLine("BidiMirroring.txt", [&](const std::string& line) {
        const std::vector<std::string> fields = Split(line, ';');
        mirrors[CodeOf(fields[0])] = CodeOf(fields[1]);
    }));
    return mirrors;
}

constexpr int kParts = 4;

/** Every fourth case of the file, which is long. */
class FlowBidiFile : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Parts, FlowBidiFile, testing::Range(0, kParts));

TEST_P(FlowBidiFile, LevelsOrderAndMirrorsAreThoseOfUnicodesTestFile)
{
    const std::map<UInt32, UInt32> mirrors = ReadMirrors();
    int number = 0;
    int count = 0;
    int ordered = 0;
    const auto run = [&](const std::string& line) {
        const std::vector<std::string> fields = Split(line, ';');
        std::vector<UInt32> text;
        for (const std::string& code : Split(fields[0], ' '))
            text.push_back(CodeOf(code));
        const FlowDirection directions[] = {FlowLeftToRight, FlowRightToLeft, FlowAutomatic};
        FlowOrder order(text);
        const bool right_to_left = order.Resolve(0, text.size(), directions[CodeOf(fields[1]) % 3]);
        ASSERT_EQ(right_to_left, fields[2] == "1") << line;

        const std::vector<std::string> levels = Split(fields[3], ' ');
        std::vector<bool> removed;
        std::vector<signed char> reset = order.levels;
        VisualOrder(order.types, reset, right_to_left); // the file's levels are those of a line
        for (std::size_t i = 0; i < text.size(); ++i) {
            removed.push_back(levels[i] == "x");
            if (removed[i])
                continue;
            ASSERT_EQ(reset[i], std::stoi(levels[i])) << line;
            const auto mirror = mirrors.find(text[i]);
            if (mirror != mirrors.end()) {
                ASSERT_EQ(order.shapes[i], reset[i] & 1 ? mirror->second : text[i]) << line;
            }
        }
        std::vector<int> expected;
        if (fields.size() > 4) {
            for (const std::string& index : Split(fields[4], ' '))
                expected.push_back(std::stoi(index));
        }
        // The file's order is that of rule L2 alone; marks stay where that puts them.
        const bool has_marks = std::find(order.types.begin(), order.types.end(),
                                         FRIBIDI_TYPE_NSM) != order.types.end();
        if (!has_marks) {
            ++ordered;
            ASSERT_EQ(OrderOf(order, right_to_left, removed), expected) << line;
        }
        ++count;
    };
    EXPECT_TRUE(ForEachLine("BidiCharacterTest.txt", [&](const std::string& line) {
        if (++number % kParts == GetParam() && !HasFatalFailure())
            run(line);
    })) << "install unicode-data";
    EXPECT_GT(count, 90000 / kParts);
    EXPECT_GT(ordered, 90000 / kParts);
}

TEST(FlowBidi, PlainTextIsLeftAlone)
{
    const std::vector<UInt32> text = {'a', '(', 0x301, 0x3b1};
    FlowOrder order(text);
    EXPECT_FALSE(order.Resolve(0, text.size(), FlowAutomatic));
    EXPECT_EQ(order.shapes, text);
    EXPECT_THAT(order.levels, testing::Each(0));
}

TEST(FlowBidi, MarksFollowTheirLetters)
{
    const std::vector<UInt32> text = {0x5d0, 0x5b8, 0x5d1};
    FlowOrder order(text);
    EXPECT_TRUE(order.Resolve(0, text.size(), FlowAutomatic));
    EXPECT_THAT(OrderOf(order, true, {false, false, false}), ElementsAre(2, 0, 1));
}

TEST(FlowBidi, LettersJoinAndLigaturesHaveTheirSecondPlace)
{
    const std::vector<UInt32> text = {0x628, 0x644, 0x627, 0x628}; // beh lam alef beh
    FlowOrder order(text);
    EXPECT_TRUE(order.Resolve(0, text.size(), FlowAutomatic));
    EXPECT_THAT(order.shapes, ElementsAre(0xfe91, 0xfee0, 0xfe8e, 0xfe8f));
    EXPECT_THAT(order.ligatures, ElementsAre(0xfe91, kLigatureFill, 0xfefc, 0xfe8f));
    EXPECT_THAT(order.joined, ElementsAre(true, true, false, false));
}

TEST(FlowBidi, ParagraphsDoNotTouchEachOther)
{
    const std::vector<UInt32> text = {'a', 0x5d0, '\n', 0x5d1, 'b'};
    FlowOrder order(text);
    EXPECT_FALSE(order.Resolve(0, 3, FlowAutomatic));
    EXPECT_THAT(order.levels, ElementsAre(0, 1, 0, 0, 0));
    EXPECT_TRUE(order.Resolve(3, 5, FlowAutomatic));
    EXPECT_THAT(order.levels, ElementsAre(0, 1, 0, 1, 2));
}

} // namespace
