/**
 * Renders the pictures of the examples' gallery and compares them with those in docs/pictures,
 * pixel by pixel. scripts/gallery makes the latter anew when a change is meant.
 */
#include "movie.h"
#include "picture_compare.h"
#include "png_file.h"
#include "run_command.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using kestrin_display::ArgbImage;
using kestrin_test::SamePicture;
using testing::HasSubstr;

const char* const kExamples[] = {"first",       "captions",    "teletext", "worker",
                                 "player",      "banner",      "move_to",  "translate",
                                 "perspective", "space_scale", "fading",   "carousel"};

/** Whether a picture's name begins with its example's. */
bool IsOf(const std::string& picture, const std::string& example)
{
    return picture.rfind(example + ".", 0) == 0 || picture.rfind(example + "-", 0) == 0;
}

std::set<std::string> PicturesIn(const fs::path& directory)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory))
        names.insert(entry.path().filename());
    return names;
}

/**
 * The pictures are those of a 64-bit machine. On 32-bit ones FreeType and floating point round
 * otherwise, which shows as a step of a channel in one pixel of some thousands, and in a moving
 * picture as the next colour of its palette.
 */
testing::AssertionResult IsPicture(ArgbImage actual, const ArgbImage& expected)
{
    const std::size_t count = expected.pixels.size();
    if (sizeof(void*) > 4 || actual.pixels.size() != count)
        return SamePicture(actual, expected);
    std::size_t rounded = 0;
    for (std::size_t i = 0; i < count; ++i) {
        int most = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const auto channel = [shift](std::uint32_t pixel) {
                return static_cast<int>(pixel >> shift & 0xff);
            };
            most =
                std::max(most, std::abs(channel(actual.pixels[i]) - channel(expected.pixels[i])));
        }
        if (most == 0 || most > 32)
            continue;
        actual.pixels[i] = expected.pixels[i];
        ++rounded;
    }
    if (rounded > count / 1000)
        return testing::AssertionFailure() << rounded << " pixels are rounded otherwise";
    return SamePicture(actual, expected);
}

void ExpectSameFrames(const std::string& rendered, const std::string& kept)
{
    const kestrin_test::Movie actual = kestrin_test::ReadMovie(rendered);
    const kestrin_test::Movie expected = kestrin_test::ReadMovie(kept);
    EXPECT_FALSE(expected.frames.empty());
    EXPECT_EQ(actual.hundredths, expected.hundredths);
    ASSERT_EQ(actual.frames.size(), expected.frames.size());
    for (std::size_t i = 0; i < expected.frames.size(); ++i)
        ASSERT_TRUE(IsPicture(actual.frames[i], expected.frames[i])) << "frame " << i;
}

class Gallery : public testing::TestWithParam<const char*>
{
};

TEST_P(Gallery, PicturesAreWhatTheExampleShows)
{
    const std::string example = GetParam();
    const fs::path rendered = fs::path(KESTRIN_RENDERED) / example, kept = KESTRIN_PICTURES;
    fs::remove_all(rendered);
    fs::create_directories(rendered);
    const auto outcome = kestrin_test::RunCommand(
        KESTRIN_GALLERY " --built " KESTRIN_EXAMPLES " --to " + rendered.string() + " " + example);
    ASSERT_EQ(outcome.status, 0) << outcome.output;

    std::set<std::string> expected;
    for (const std::string& name : PicturesIn(kept)) {
        if (IsOf(name, example))
            expected.insert(name);
    }
    EXPECT_FALSE(expected.empty());
    ASSERT_EQ(PicturesIn(rendered), expected);
    for (const std::string& name : expected) {
        const std::string actual = rendered / name, before = kept / name;
        SCOPED_TRACE(testing::Message() << "rendered " << actual << "\nexpected " << before);
        if (fs::path(name).extension() == ".gif") {
            ExpectSameFrames(actual, before);
        } else {
            EXPECT_TRUE(IsPicture(kestrin_tools::ReadPng(actual), kestrin_tools::ReadPng(before)));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Gallery, testing::ValuesIn(kExamples),
                         [](const auto& example) { return std::string(example.param); });

TEST(GalleryPage, ShowsEveryExampleAndEveryPicture)
{
    std::ifstream file(KESTRIN_GALLERY_PAGE);
    const std::string page((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    for (const auto& entry : fs::directory_iterator(fs::path(KESTRIN_GALLERY_PAGE).parent_path())) {
        if (entry.path().extension() == ".cpp") {
            EXPECT_THAT(page, HasSubstr("(" + entry.path().filename().string() + ")"));
        }
    }
    for (const std::string& name : PicturesIn(KESTRIN_PICTURES))
        EXPECT_THAT(page, HasSubstr("../docs/pictures/" + name));
}

TEST(GalleryPage, HasNoPictureThatNothingRenders)
{
    for (const std::string& name : PicturesIn(KESTRIN_PICTURES)) {
        bool rendered = false;
        for (const char* example : kExamples)
            rendered |= IsOf(name, example);
        EXPECT_TRUE(rendered) << name;
    }
}

TEST(GalleryPage, PicturesTakeLessThanAMegabyte)
{
    std::uintmax_t bytes = 0;
    for (const std::string& name : PicturesIn(KESTRIN_PICTURES))
        bytes += fs::file_size(fs::path(KESTRIN_PICTURES) / name);
    EXPECT_LT(bytes, 1000000u);
}

} // namespace
