/**
 * Runs the examples and looks at what they leave on the screen.
 */
#include "display_fixture.h"
#include "run_command.h"
#include "temp_directory.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(Examples, FirstShowsItsCaptionInItsBox)
{
    const kestrin_test::TempDirectory directory;
    const kestrin_test::TestDisplay display;
    const kestrin_test::Outcome outcome =
        kestrin_test::RunCommand("cd " + directory.Path("") + " && DFBARGS='" +
                                 display.Arguments() + "' " KESTRIN_EXAMPLES "/first");
    ASSERT_EQ(outcome.status, 0) << outcome.output;

    const kestrin_display::ArgbImage shot = display.Shot();
    EXPECT_EQ(shot.At(330, 570), 0xC8102040);
    EXPECT_EQ(shot.At(319, 570), 0u);
    const auto light = std::count(shot.pixels.begin(), shot.pixels.end(), 0xFFFFDC78);
    EXPECT_GT(light, 1000);
}

} // namespace
