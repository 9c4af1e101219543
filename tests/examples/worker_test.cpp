/** Runs the example with threads and looks at what it says and leaves on the screen. */
#include "display_fixture.h"
#include "run_command.h"
#include "temp_directory.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::Outcome;

namespace {

constexpr char kJoinLines[] = "Before join...\nAfter join...\n"
                              "Before join...\nAfter join...\n";

class WorkerExample : public testing::Test
{
protected:
    Outcome Run(const std::string& arguments) const
    {
        return kestrin_test::RunCommand("cd " + _directory.Path("") + " && DFBARGS='" +
                                        display.Arguments() + "' " KESTRIN_EXAMPLES "/worker " +
                                        arguments);
    }

    const kestrin_test::TestDisplay display;

private:
    const kestrin_test::TempDirectory _directory;
};

long LightPixels(const ArgbImage& shot)
{
    return std::count(shot.pixels.begin(), shot.pixels.end(), 0xFFFFDC78);
}

TEST_F(WorkerExample, ShowsTheChannelsOneAfterTheOther)
{
    const Outcome outcome = Run("3");
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, testing::HasSubstr(std::string("Channel 21: 474 MHz\n"
                                                               "Channel 22: 482 MHz\n"
                                                               "Channel 23: 490 MHz\n") +
                                                   kJoinLines));
    const ArgbImage shot = display.Shot();
    EXPECT_EQ(shot.At(330, 570), 0xC8102040);
    EXPECT_EQ(shot.At(319, 570), 0U);
    EXPECT_GT(LightPixels(shot), 1000);
}

TEST_F(WorkerExample, TextOnTheScreenChangesWithEachChannel)
{
    ASSERT_EQ(Run("1").status, 0);
    const std::uint64_t updates_for_one = display.Facts().update_count;
    const ArgbImage one = display.Shot();
    ASSERT_EQ(Run("4").status, 0);
    const std::uint64_t updates_for_four = display.Facts().update_count;
    const ArgbImage four = display.Shot();

    EXPECT_EQ(updates_for_four, updates_for_one + 3);
    EXPECT_NE(one.pixels, four.pixels);
    // What a caption leaves behind would make it lighter than "24: 498" over "21: 474" can be.
    EXPECT_LT(LightPixels(four), LightPixels(one) * 3 / 2);
}

TEST_F(WorkerExample, RefusesChannelsOutsideTheBand)
{
    for (const char* channels : {"0", "49", "many"})
        EXPECT_EQ(Run(channels).status, 2) << channels;
}

} // namespace
