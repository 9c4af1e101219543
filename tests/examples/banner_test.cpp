/** The banner's pictures are made, and it shows them on both kinds of display. */
#include "display_fixture.h"
#include "png_file.h"
#include "run_command.h"
#include "temp_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace {

/** The banner's pictures and what 8-bit displays need, made by the tools. */
class Banner : public testing::Test
{
protected:
    Banner()
    {
        Run(KESTRIN_EXAMPLES "/banner-pictures .");
        Run(KESTRIN_TOOLS "/kestrin-palette make logo.png tile.png text.png photo.png icon-*.png "
                          "banner.pal");
        for (const char* files : {"logo.png logo.img", "tile.png tile.img", "photo.png photo.img",
                                  "icon-*.png icon.img"})
            Run(std::string(KESTRIN_TOOLS "/kestrin-image make --palette banner.pal ") + files);
    }
    void Run(const std::string& command) const
    {
        const kestrin_test::Outcome outcome =
            kestrin_test::RunCommand("cd " + directory.Path("") + " && " + command);
        EXPECT_EQ(outcome.status, 0) << command << outcome.output;
    }
    kestrin_display::ArgbImage Shown(int bits, int steps) const
    {
        Run("DFBARGS='" + display.Arguments() + "' " KESTRIN_EXAMPLES "/banner . " +
            std::to_string(bits) + " " + std::to_string(steps));
        return display.Shot();
    }

    const kestrin_test::TempDirectory directory;
    const kestrin_test::TestDisplay display;
};

/** Pixels of a part that are nearly of one colour. */
std::ptrdiff_t CountNear(const kestrin_display::ArgbImage& image, int left, int top, int width,
                         int height, std::uint32_t colour)
{
    std::ptrdiff_t count = 0;
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            int distance = 0;
            for (const unsigned shift : {0U, 8U, 16U, 24U})
                distance += std::abs(static_cast<int>(image.At(x, y) >> shift & 0xff) -
                                     static_cast<int>(colour >> shift & 0xff));
            count += distance < 24;
        }
    }
    return count;
}

TEST_F(Banner, ShowsItsPartsInBothModes)
{
    const kestrin_display::ArgbImage photo = kestrin_tools::ReadPng(directory.Path("photo.png"));
    for (const int bits : {32, 8}) {
        const kestrin_display::ArgbImage shot = Shown(bits, 1);
        EXPECT_EQ(shot.At(60, 560), 0u) << "beside the banner";
        EXPECT_GT(CountNear(shot, 64, 472, 1152, 4, 0xFFFFB54A), 1152 * 3) << "line";
        EXPECT_GT(CountNear(shot, 256, 484, 530, 60, 0xFFFFFFFF), 2000) << "title";
        EXPECT_GT(CountNear(shot, 256, 600, 80, 50, 0xFFFFB54A), 200) << "accent";
        EXPECT_GT(CountNear(shot, 86, 496, 140, 140, 0xFFFFFFFF), 2000) << "logo's letter";
        EXPECT_GT(CountNear(shot, 800, 492, 100, 90, 0xFFFFFFFF), 300) << "cloud";
        EXPECT_GT(CountNear(shot, 1072, 44, 144, 60, 0xFFFFFFFF), 500) << "clock";
        int near = 0;
        for (int y = 0; y < 144; ++y) {
            for (int x = 0; x < 256; ++x)
                near += CountNear(shot, 936 + x, 492 + y, 1, 1, photo.At(x, y)) != 0;
        }
        EXPECT_GT(near, 256 * 144 * 9 / 10) << "photo";
    }
}

TEST_F(Banner, StepsTurnTheIconAndMoveTheBar)
{
    for (const int bits : {32, 8}) {
        const kestrin_display::ArgbImage first = Shown(bits, 1);
        const kestrin_display::ArgbImage later = Shown(bits, 6);
        int changed = 0, outside = 0;
        for (int y = 0; y < first.height; ++y) {
            for (int x = 0; x < first.width; ++x) {
                const bool icon = x >= 802 && x < 898 && y >= 492 && y < 580;
                const bool bar = x >= 556 && x < 566 && y >= 586 && y < 592;
                const bool differs = first.At(x, y) != later.At(x, y);
                changed += differs;
                outside += differs && !icon && !bar;
            }
        }
        EXPECT_GT(changed, 500) << bits;
        EXPECT_EQ(outside, 0) << bits;
    }
}

TEST_F(Banner, MissingPicturesAreNamed)
{
    std::filesystem::remove(directory.Path("photo.img"));
    const kestrin_test::Outcome outcome =
        kestrin_test::RunCommand("cd " + directory.Path("") + " && DFBARGS='" +
                                 display.Arguments() + "' " KESTRIN_EXAMPLES "/banner . 8 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("./photo.img: cannot be read"), std::string::npos);
}

} // namespace
