/**
 * Runs the examples and looks at what they leave on the screen.
 */
#include "display_fixture.h"
#include "run_command.h"
#include "temp_directory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using kestrin_display::ArgbImage;

/** What a program leaves on a display of its own. */
ArgbImage ScreenOf(const std::string& program, int width, int height)
{
    const kestrin_test::TempDirectory directory;
    const kestrin_test::TestDisplay display(width, height);
    const kestrin_test::Outcome outcome =
        kestrin_test::RunCommand("cd " + directory.Path("") + " && DFBARGS='" +
                                 display.Arguments() + "' " KESTRIN_EXAMPLES "/" + program);
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    return display.Shot();
}

/** Pixels of a colour in x1 <= x < x2, y1 <= y < y2. */
int Count(const ArgbImage& shot, std::uint32_t color, int x1, int y1, int x2, int y2)
{
    int count = 0;
    for (int y = y1; y < y2; ++y) {
        for (int x = x1; x < x2; ++x)
            count += shot.At(x, y) == color;
    }
    return count;
}

TEST(Examples, CaptionsShowTwoColoursOverBoxesInEveryCell)
{
    const ArgbImage shot = ScreenOf("captions", 1280, 720);
    constexpr std::uint32_t sung = 0xFFFFE040, white = 0xFFFFFFFF, box = 0xFF202840;
    for (int cell = 0; cell < 6; ++cell) {
        SCOPED_TRACE(cell);
        const int x = 24 + cell % 3 * 418;
        const int y = 24 + cell / 3 * 348;
        EXPECT_GT(Count(shot, sung, x, y, x + 394, y + 324), 500);
        EXPECT_GT(Count(shot, white, x, y + 40, x + 394, y + 324), 1000) << "below the name";
        EXPECT_GT(Count(shot, box, x, y, x + 394, y + 324), 5000);
        EXPECT_EQ(Count(shot, white, x + 394, y, x + 418, y + 324), 0) << "beside the cell";
    }
}

TEST(Examples, TeletextShowsColouredCellsAndDoubleHeight)
{
    const ArgbImage shot = ScreenOf("teletext", 720, 576);
    constexpr std::uint32_t white = 0xFFFFFFFF, yellow = 0xFFFFFF00, red = 0xFFFF0000,
                            blue = 0xFF0000FF, cyan = 0xFF00FFFF, black = 0xFF000000;
    EXPECT_EQ(shot.At(1, 24), red);
    EXPECT_EQ(shot.At(1, 68), red) << "both rows of the title";
    EXPECT_EQ(shot.At(719, 40), blue);
    EXPECT_EQ(shot.At(719, 232), cyan);
    EXPECT_EQ(shot.At(719, 300), black);
    EXPECT_GT(Count(shot, yellow, 0, 92, 648, 115), 300) << "upper half of the headline";
    EXPECT_GT(Count(shot, yellow, 0, 115, 648, 138), 300) << "lower half";
    EXPECT_GT(Count(shot, white, 0, 138, 720, 207), 1500) << "three rows of text";
    EXPECT_EQ(Count(shot, white, 0, 207, 720, 230), 0) << "an empty row";
}

} // namespace
