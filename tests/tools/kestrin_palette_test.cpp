/**
 * Runs the tool, and looks at the swatch of a palette.
 */
#include "lay_over.h"
#include "palette_file.h"
#include "png_file.h"
#include "swatch.h"
#include "tool_pictures.h"
#include "tool_test.h"
#include "whole_file.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::Outcome;
using testing::AllOf;
using testing::HasSubstr;
using namespace kestrin_tools;

namespace {

class KestrinPalette : public kestrin_test::ToolTest
{
protected:
    KestrinPalette() : ToolTest(KESTRIN_PALETTE_TOOL) {}

    Palette Make(const std::string& arguments) const
    {
        const Outcome outcome = Run("make " + arguments + " out.pal");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return ReadPalette(files.Path("out.pal"));
    }
};

TEST_F(KestrinPalette, MakesTheFixedPalette)
{
    EXPECT_EQ(Make("--fixed"), FixedPalette());
}

TEST_F(KestrinPalette, MakesThePaletteOfAGimpPaletteInItsOrder)
{
    files.Write("a.gpl", "GIMP Palette\nName: a\n# remark\n255 0 128 pink\n0 0 0\n1 2 3\n");
    Palette wanted = {0xFFFF0080, 0xFF000000, 0xFF010203};
    EXPECT_EQ(Make("a.gpl"), wanted);
    wanted[1] = wanted[2] = 0;
    EXPECT_EQ(Make("--transparent 1 --transparent 2 a.gpl"), wanted);
}

TEST_F(KestrinPalette, FewColoursOfPicturesAreAllTaken)
{
    ArgbImage picture(3, 1, 0xFF804020);
    picture.At(1, 0) = 0x00FFFFFF;
    WritePng(files.Path("1.png"), picture);
    WritePng(files.Path("2.png"), ArgbImage(7, 5, 0x8000FF00));
    const Palette palette = Make("1.png 2.png");
    EXPECT_EQ(palette[0], 0u);
    EXPECT_EQ(std::set<std::uint32_t>(palette.begin() + 1, palette.begin() + 3),
              (std::set<std::uint32_t>{0xFF804020, 0x8000FF00}));
    EXPECT_EQ(std::count(palette.begin() + 3, palette.end(), 0u), 253);
}

TEST_F(KestrinPalette, ManyColoursBecomeAsManyAsAreAskedFor)
{
    WritePng(files.Path("photo.png"), kestrin_test::Gradient(120, 90));
    const auto used = [](const Palette& palette) {
        return 256 - std::count(palette.begin(), palette.end(), 0u);
    };
    EXPECT_EQ(used(Make("photo.png")), 255);
    const Palette few = Make("--colours 9 photo.png");
    EXPECT_GE(used(few), 6);
    EXPECT_LE(used(few), 8);
    EXPECT_EQ(few[0], 0u);
}

TEST_F(KestrinPalette, BadSourcesLeaveNoFile)
{
    files.Write("bad.gpl", "GIMP Palette\n1 2 3\n1 2\n");
    files.Write("good.gpl", "GIMP Palette\n1 2 3\n");
    files.Write("text", "no picture");
    files.Write("empty", "");
    ExpectNoFile("make bad.gpl out.pal", "bad.gpl: line 3 is no colour: \"1 2\"");
    ExpectNoFile("make good.gpl text out.pal", "good.gpl: is a GIMP palette, which");
    ExpectNoFile("make text out.pal", "text: ");
    ExpectNoFile("make empty out.pal", "empty: ");
    ExpectNoFile("make . out.pal", ".: ");
    ExpectNoFile("make none.png out.pal", "none.png: No such file");
    ExpectNoFile("make out.pal", "is the only name");
    ExpectNoFile("make --fixed good.gpl out.pal", "good.gpl: is not needed");
    ExpectNoFile("make good.gpl none/out.pal", "none/out.pal: No such file");
}

TEST_F(KestrinPalette, ASourceIsNotTakenForTheOutput)
{
    const std::string gpl = "GIMP Palette\n1 2 3\n";
    files.Write("a.gpl", gpl);
    files.Write("plain", gpl);
    ExpectNoFile("make a.gpl", "named like a source");
    ExpectNoFile("make --fixed a.png", "named like a source");
    ExpectNoFile("make plain plain", "is one of the sources as well");
    EXPECT_EQ(ReadWhole(files.Path("a.gpl")), gpl);
}

TEST_F(KestrinPalette, SwatchHasEveryColourInItsPlace)
{
    Palette palette = FixedPalette();
    palette[255] = 0xFF123456;
    files.Write("a.pal", PackPalette(palette));
    const Outcome outcome = Run("show a.pal out.png");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    const ArgbImage swatch = ReadPng(files.Path("out.png"));
    EXPECT_EQ(swatch.pixels, Swatch(palette).pixels);
    EXPECT_EQ(swatch.width, 16 * swatch_cell_width);
    EXPECT_EQ(swatch.height, 16 * swatch_cell_height);
    for (int i = 0; i < 256; ++i) {
        // The lower right corner of a place has no digits.
        const int x = i % 16 * swatch_cell_width + swatch_cell_width - 4;
        const int y = i / 16 * swatch_cell_height + swatch_cell_height - 4;
        const std::uint32_t colour = palette[static_cast<std::size_t>(i)];
        if (colour >> 24 == 255) {
            ASSERT_EQ(swatch.At(x, y), colour) << i;
        } else if (colour >> 24 == 0) {
            EXPECT_NE(swatch.At(x, y), swatch.At(x - 8, y)) << "no squares at " << i;
        }
        ASSERT_EQ(swatch.At(x, y) >> 24, 255u) << i;
    }
    // A colour of 70 % over squares of two greys.
    ArgbImage over(1, 1, palette[48]);
    LayOver(over, ArgbImage(1, 1, 0xFF484848));
    EXPECT_GT(std::count(swatch.pixels.begin(), swatch.pixels.end(), over.At(0, 0)), 100);
}

TEST_F(KestrinPalette, SwatchIndicesDiffer)
{
    Palette palette;
    palette.fill(0xFF202020);
    const ArgbImage swatch = Swatch(palette);
    std::set<std::vector<std::uint32_t>> places;
    for (int i = 0; i < 256; ++i) {
        std::vector<std::uint32_t> place;
        for (int y = 0; y < swatch_cell_height; ++y) {
            for (int x = 0; x < swatch_cell_width; ++x)
                place.push_back(
                    swatch.At(i % 16 * swatch_cell_width + x, i / 16 * swatch_cell_height + y));
        }
        places.insert(place);
    }
    EXPECT_EQ(places.size(), 256u);
}

TEST_F(KestrinPalette, ShortFileIsShownWithAWord)
{
    files.Write("short.pal", PackPalette(FixedPalette()).substr(0, 400));
    const Outcome outcome = Run("show short.pal out.png");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("short.pal: it has 400 bytes instead of 1024"));
    Palette cut = FixedPalette();
    std::fill(cut.begin() + 100, cut.end(), 0u);
    EXPECT_EQ(ReadPng(files.Path("out.png")).pixels, Swatch(cut).pixels);
    ExpectNoFile("show none.pal none.png", "none.pal: No such file");
}

TEST_F(KestrinPalette, InfoCountsAndNamesDamage)
{
    files.Write("fixed", PackPalette(FixedPalette()));
    files.Write("short", std::string(13, '\x7f'));
    files.Write("long", PackPalette(FixedPalette()) + "x");
    files.Write("empty", "");
    const auto expect = [&](const std::string& name, int status, const std::string& text) {
        const Outcome outcome = Run("info " + name);
        EXPECT_EQ(outcome.status, status) << name;
        EXPECT_THAT(outcome.output, HasSubstr(text));
    };
    expect("fixed", 0, "139 opaque, 48 semi-transparent, 69 transparent");
    expect("fixed", 0, "different  188\n");
    expect("fixed", 0, "fixed      yes");
    expect("fixed", 0, "damage     none");
    expect("short", 1, "damage     it has 13 bytes instead of 1024");
    expect("short", 1, "damage     it ends within the colour of index 3");
    expect("short", 1, "note       index 0 is not transparent");
    expect("short", 1, "fixed      no");
    expect("long", 1, "damage     it has 1025 bytes");
    expect("empty", 1, "damage     it has 0 bytes");
    expect("none", 1, "none: No such file");
    expect(".", 1, ".: Is a directory");
}

TEST_F(KestrinPalette, HelpHasExamplesAndExitCodes)
{
    EXPECT_THAT(Run("--help").output,
                AllOf(HasSubstr("Usage: kestrin-palette"), HasSubstr("2 for")));
    for (const char* command : {"make", "show", "info"}) {
        const Outcome outcome = Run(std::string(command) + " --help");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, HasSubstr("\n  kestrin-palette " + std::string(command)));
    }
    for (const char* wrong :
         {"", "make", "show a", "info", "make --colours 1 a b", "make --transparent 256 a b"})
        EXPECT_EQ(Run(wrong).status, 2) << wrong;
}

} // namespace
