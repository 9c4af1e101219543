/**
 * Runs the examples of the modifiers and looks at their pictures: each shows what it says.
 */
#include "picture_compare.h"
#include "png_file.h"
#include "run_command.h"
#include "temp_directory.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using kestrin_display::ArgbImage;
using kestrin_test::AreaHasColor;
using kestrin_test::RunCommand;
using testing::ElementsAreArray;

/** The names of all files in a directory, hidden ones too. */
std::set<std::string> NamesIn(const std::string& directory)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.insert(entry.path().filename());
    return names;
}

std::uint32_t Alpha(std::uint32_t pixel)
{
    return pixel >> 24;
}

/** The pixels of an opaque colour, 0xRRGGBB. */
struct Area
{
    int left, top, right, bottom; ///< half open; all 0 if there are none
    int count;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
};

Area Find(const ArgbImage& image, std::uint32_t rgb)
{
    Area area = {image.width, image.height, 0, 0, 0};
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            if (image.At(x, y) != (0xff000000 | rgb))
                continue;
            area = {std::min(area.left, x), std::min(area.top, y), std::max(area.right, x + 1),
                    std::max(area.bottom, y + 1), area.count + 1};
        }
    }
    return area.count > 0 ? area : Area{0, 0, 0, 0, 0};
}

class ModifierExamples : public testing::Test
{
protected:
    /** Runs an example, which is to leave these pictures and nothing else, and reads them. */
    std::vector<ArgbImage> PicturesOf(const std::string& example, std::vector<std::string> names)
    {
        const std::string folder = directory.Path("pictures");
        const auto outcome =
            RunCommand("cd " + directory.Path("") + " && unset DFBARGS && " KESTRIN_EXAMPLES "/" +
                       example + " pictures");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        for (std::string& name : names)
            name += ".png";
        EXPECT_THAT(NamesIn(directory.Path("")), testing::ElementsAre("pictures"));
        EXPECT_THAT(NamesIn(folder), ElementsAreArray(names));

        std::vector<ArgbImage> pictures;
        for (const std::string& name : names) {
            std::string file = folder;
            file += '/';
            file += name;
            pictures.push_back(kestrin_tools::ReadPng(file));
        }
        return pictures;
    }

    const kestrin_test::TempDirectory directory;
};

TEST_F(ModifierExamples, MoveToSlidesTheBannerIn)
{
    const auto pictures = PicturesOf("move_to", {"1-hidden", "2-half-way", "3-shown"});
    constexpr std::uint32_t stripe = 0xffa030; // at the banner's left edge
    EXPECT_EQ(std::count(pictures[0].pixels.begin(), pictures[0].pixels.end(), 0u), 1280 * 720);
    const Area half = Find(pictures[1], stripe);
    EXPECT_EQ(half.left, 120);
    EXPECT_EQ(half.top, 640);
    EXPECT_EQ(half.bottom, 720);
    const Area shown = Find(pictures[2], stripe);
    EXPECT_EQ(shown.top, 560);
    EXPECT_EQ(shown.bottom, 680);
    EXPECT_GT(Find(pictures[2], 0xffffff).count, 1000) << "no text";
}

TEST_F(ModifierExamples, TranslateScrollsThePageAndLeavesItsHead)
{
    const auto pictures = PicturesOf("translate", {"1-top", "2-between", "3-end"});
    constexpr std::uint32_t row = 0xe6142440;
    for (const ArgbImage& picture : pictures) {
        EXPECT_TRUE(AreaHasColor(picture, 160, 60, 180, 150, 0xff204880));
        EXPECT_TRUE(AreaHasColor(picture, 0, 550, 1280, 720, 0)) << "rows leave the page";
    }
    // The lines between the rows: 2 pixels at the end of each 80, and half a row further between.
    EXPECT_TRUE(AreaHasColor(pictures[0], 170, 228, 180, 230, 0));
    EXPECT_TRUE(AreaHasColor(pictures[0], 170, 188, 180, 190, row));
    EXPECT_TRUE(AreaHasColor(pictures[1], 170, 228, 180, 230, row));
    EXPECT_TRUE(AreaHasColor(pictures[1], 170, 188, 180, 190, 0));
    EXPECT_TRUE(AreaHasColor(pictures[2], 170, 228, 180, 230, 0));

    // Text: where the first row's lower half was is that of the third now, and no row is left out.
    const auto title = [&](const ArgbImage& picture, int y) {
        std::vector<std::uint32_t> pixels;
        for (int i = 0; i < 38 * 700; ++i)
            pixels.push_back(picture.At(350 + i % 700, y + i / 700));
        return pixels;
    };
    EXPECT_EQ(title(pictures[0], 150 + 3 * 80), title(pictures[1], 150 + 40));
    EXPECT_NE(title(pictures[0], 150), title(pictures[2], 150));
    EXPECT_GT(Find(pictures[2], 0xffc860).count, 100) << "no times";
}

TEST_F(ModifierExamples, PerspectiveShrinksWhatIsFartherTowardsTheEyesPoint)
{
    const auto pictures =
        PicturesOf("perspective", {"1-flat", "2-perspective", "3-from-the-right"});
    // The cards' pictures, from the nearest to the farthest.
    constexpr std::uint32_t colors[] = {0xe6503c, 0xf09628, 0x3cb450, 0x28a0b4, 0x326edc, 0x8c3cb4};
    for (const std::uint32_t color : colors) {
        EXPECT_EQ(Find(pictures[0], color).Width(), 188);
        EXPECT_EQ(Find(pictures[0], color).Height(), 188);
    }
    for (const std::size_t picture : {1U, 2U}) {
        EXPECT_EQ(Find(pictures[picture], colors[0]).Width(), 188) << "depth 0 keeps its size";
        for (std::size_t i = 1; i < std::size(colors); ++i) {
            const Area nearer = Find(pictures[picture], colors[i - 1]);
            const Area farther = Find(pictures[picture], colors[i]);
            EXPECT_LT(farther.Height(), nearer.Height()) << i;
            EXPECT_LT(farther.bottom, nearer.bottom) << i; // towards the eye's height, 300
            EXPECT_GT(farther.top, 300) << i;
        }
        // 200 behind the plane of size 1: 1000 / 1200 of it.
        EXPECT_NEAR(Find(pictures[picture], colors[1]).Height(), 188 / 1.2, 2);
    }
    // Seen from the right, the far end moves there, and depth 0 stays.
    EXPECT_EQ(Find(pictures[2], colors[0]).left, Find(pictures[1], colors[0]).left);
    EXPECT_GT(Find(pictures[2], colors[5]).left, Find(pictures[1], colors[5]).left + 100);
}

TEST_F(ModifierExamples, SpaceScaleOpensAGapBeneathTheFocusedItem)
{
    const auto pictures = PicturesOf("space_scale", {"1-closed", "2-first-open", "3-third-open"});
    // Rows of an item's colour at its left edge, by the pixel they begin at.
    const auto tops = [](const ArgbImage& picture) {
        std::vector<int> found;
        for (int y = 1; y < picture.height; ++y) {
            if (picture.At(345, y) == 0xe6103060 && picture.At(345, y - 1) == 0)
                found.push_back(y);
        }
        return found;
    };
    EXPECT_THAT(tops(pictures[0]), testing::ElementsAre(130, 202, 274, 346, 418));
    EXPECT_THAT(tops(pictures[1]), testing::ElementsAre(130, 274, 346, 418, 490));
    EXPECT_THAT(tops(pictures[2]), testing::ElementsAre(130, 202, 274, 418, 490));
    // The details' text stands in the gap only.
    constexpr std::uint32_t hint = 0xc8c8c8;
    EXPECT_EQ(Find(pictures[0], hint).count, 0);
    for (const std::size_t picture : {1U, 2U}) {
        const Area text = Find(pictures[picture], hint);
        const int gap = picture == 1 ? 202 : 346;
        EXPECT_GT(text.count, 50);
        EXPECT_GE(text.top, gap);
        EXPECT_LE(text.bottom, gap + 72);
    }
}

TEST_F(ModifierExamples, FadingLowersTheOpacityWithTheDistanceFromTheMiddle)
{
    const auto pictures = PicturesOf("fading", {"1-without", "2-first", "3-fifth"});
    constexpr int y = 550;
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(Alpha(pictures[0].At(640 + 170 * i, y)), 255u) << i;
    // The first is in the middle, the others farther and farther away: 255 * (1 - 170 i / 720).
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(Alpha(pictures[1].At(640 + 170 * i, y)), 255 * (1 - 170 * i / 720.0), 2) << i;
    // Scrolled to the fifth, both ends fade alike, and the very ends are faintest.
    EXPECT_EQ(Alpha(pictures[2].At(640, y)), 255u);
    for (int i = 1; i < 4; ++i) {
        const std::uint32_t alpha = Alpha(pictures[2].At(640 + 170 * i, y));
        EXPECT_EQ(alpha, Alpha(pictures[2].At(640 - 170 * i, y))) << i;
        EXPECT_LT(alpha, Alpha(pictures[2].At(640 + 170 * (i - 1), y))) << i;
        EXPECT_GT(alpha, 0u) << i;
    }
    EXPECT_LT(Alpha(pictures[2].At(1270, y)), 30u);
}

TEST_F(ModifierExamples, NameTheirFolderThemselvesIfNobodyElseDoes)
{
    const auto outcome = RunCommand("cd " + directory.Path("") +
                                    " && unset DFBARGS && " KESTRIN_EXAMPLES "/move_to");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(NamesIn(directory.Path("")), testing::ElementsAre("move_to"));
    EXPECT_EQ(NamesIn(directory.Path("move_to")).size(), 3u);
}

TEST_F(ModifierExamples, TakeNoPicturesOfADisplayThatIsNotTheirs)
{
    const auto outcome =
        RunCommand("cd " + directory.Path("") + " && DFBARGS=quiet " KESTRIN_EXAMPLES "/move_to");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, testing::HasSubstr("unset it"));
}

} // namespace
