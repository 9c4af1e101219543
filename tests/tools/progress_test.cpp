/**
 * What long work says of itself.
 */
#include "progress.h"

#include "command_line.h"

#include <gtest/gtest.h>

using kestrin_tools::Progress;

namespace {

TEST(Progress, WorkThatTakesLongSaysHowFarItIs)
{
    testing::internal::CaptureStderr();
    Progress progress("tool: reading", std::chrono::milliseconds(0));
    progress.Tell(3, 200);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tool: reading: 3 of 200\n");
}

TEST(Progress, ShortWorkSaysNothing)
{
    testing::internal::CaptureStderr();
    Progress progress("tool: reading", std::chrono::hours(1));
    for (std::size_t i = 0; i < 100; ++i)
        progress.Tell(i, 100);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Wrapped, LinesAreNotLongerThanTheirRoom)
{
    std::string words;
    for (int i = 0; i < 40; ++i)
        words += "word ";
    const std::string wrapped = kestrin_tools::Wrapped(words);
    EXPECT_EQ(wrapped.substr(0, 20), "word word word word ");
    std::size_t line = 0, lines = 1;
    for (const char c : wrapped) {
        line = c == '\n' ? 0 : line + 1;
        lines += c == '\n';
        EXPECT_LE(line, 68u);
    }
    EXPECT_EQ(lines, 4u); // 13 words fit
}

} // namespace
