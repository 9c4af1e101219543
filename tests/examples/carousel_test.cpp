/**
 * Runs the carousel and looks at its moving picture with the GIF library's own reader.
 */
#include "movie.h"
#include "picture_compare.h"
#include "run_command.h"
#include "temp_directory.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using kestrin_display::ArgbImage;

using kestrin_test::Movie;
using kestrin_test::ReadMovie;

double Channel(std::uint32_t color, unsigned shift)
{
    return color >> shift & 0xff;
}

/** Whether colours are the same but for what a palette of 255 leaves out. */
bool Alike(std::uint32_t a, std::uint32_t b)
{
    return std::abs(Channel(a, 16) - Channel(b, 16)) <= 8 &&
           std::abs(Channel(a, 8) - Channel(b, 8)) <= 8 &&
           std::abs(Channel(a, 0) - Channel(b, 0)) <= 8;
}

/** The faces' colours in the order of the menu. */
constexpr std::uint32_t kFaces[] = {0xdc463c, 0xe67828, 0xd2a01e, 0x3ca050,
                                    0x2d9696, 0x3282c8, 0x6450c8, 0x9646aa};
constexpr std::uint32_t kBackdrop = 0x0c1422;
constexpr std::size_t kFramesOfAnItem = 6;

/** A card seen on the screen, by geometry in real numbers. */
struct Seen
{
    explicit Seen(int turn)
    {
        const double angle = turn * std::acos(-1.0) / 4;
        scale = 760 / (760 + 430 * (1 - std::cos(angle)));
        x = 400 + 430 * std::sin(angle) * scale;
        ground = 66 + (338 - 66) * scale;
        opacity = 1 - (338 - ground) / 205;
    }
    /** A face's colour at this opacity over the backdrop. */
    std::uint32_t Faded(std::uint32_t face) const
    {
        std::uint32_t faded = 0;
        for (const unsigned shift : {16U, 8U, 0U}) {
            const double channel =
                Channel(face, shift) * opacity + Channel(kBackdrop, shift) * (1 - opacity);
            faded |= static_cast<std::uint32_t>(std::lround(channel)) << shift;
        }
        return faded;
    }
    double scale, x, ground, opacity;
};

/** Columns of a row from x on to both sides that have its colour. */
int RunOf(const ArgbImage& image, int x, int y, std::uint32_t color)
{
    int left = x, right = x;
    while (left > 0 && Alike(image.At(left - 1, y), color))
        --left;
    while (right < image.width && Alike(image.At(right, y), color))
        ++right;
    return right - left;
}

/** A half-open box. */
struct Box
{
    int left, top, right, bottom;

    double Middle() const { return (left + right) / 2.0; }
};

/** What is at least so light in a part of a picture; turned inside out if nothing is. */
Box LightIn(const ArgbImage& image, const Box& part, double least)
{
    Box found = {part.right, part.bottom, part.left, part.top};
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            if (Channel(image.At(x, y), 8) >= least)
                found = {std::min(found.left, x), std::min(found.top, y),
                         std::max(found.right, x + 1), std::max(found.bottom, y + 1)};
        }
    }
    return found;
}

class Carousel : public testing::Test
{
protected:
    void SetUp() override
    {
        const auto outcome = kestrin_test::RunCommand(
            "cd " + directory.Path("") + " && unset DFBARGS && " KESTRIN_EXAMPLES "/carousel out");
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        movie = ReadMovie(directory.Path("out/carousel.gif"));
        ASSERT_EQ(movie.frames.size(), std::size(kFaces) * kFramesOfAnItem);
    }

    const ArgbImage& Rest(std::size_t item) const { return movie.frames[item * kFramesOfAnItem]; }

    const kestrin_test::TempDirectory directory;
    Movie movie;
};

TEST_F(Carousel, WritesOneSmallFileThatRepeats)
{
    namespace fs = std::filesystem;
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.Path("out")), {}), 1);
    EXPECT_LT(fs::file_size(directory.Path("out/carousel.gif")), 600000u);
    EXPECT_EQ(movie.frames[0].width, 800);
    EXPECT_EQ(movie.frames[0].height, 450);
    EXPECT_TRUE(movie.repeats);
    for (std::size_t i = 0; i < movie.frames.size(); ++i)
        EXPECT_EQ(movie.hundredths[i] > 50, i % kFramesOfAnItem == 0) << "rests at each item " << i;
}

TEST_F(Carousel, BringsEachItemToTheFrontInItsFullColorAndSize)
{
    for (std::size_t item = 0; item < std::size(kFaces); ++item) {
        SCOPED_TRACE(item);
        EXPECT_PRED2(Alike, Rest(item).At(320, 200), 0xffffffu) << "no frame";
        EXPECT_PRED2(Alike, Rest(item).At(330, 145), kFaces[item]);
        EXPECT_EQ(RunOf(Rest(item), 330, 145, kFaces[item]), 164 - 2 * 5);
        EXPECT_PRED2(Alike, Rest(item).At(330, 277), kFaces[item]);
        EXPECT_FALSE(Alike(Rest(item).At(330, 283), kFaces[item])) << "no title strip";
    }
}

TEST_F(Carousel, ShrinksAndFadesWhatIsFartherBack)
{
    for (const int turn : {1, -1}) {
        const Seen seen(turn);
        EXPECT_LT(seen.opacity, 0.9);
        for (std::size_t item = 0; item < std::size(kFaces); ++item) {
            SCOPED_TRACE(testing::Message() << item << " turned by " << turn);
            const std::size_t other = (item + 8 + static_cast<std::size_t>(turn)) % 8;
            const std::uint32_t faded = seen.Faded(kFaces[other]);
            const int y = static_cast<int>(seen.ground - 190 * seen.scale); // above the icon
            const int x = static_cast<int>(seen.x);
            EXPECT_PRED2(Alike, Rest(item).At(x, y), faded);
            EXPECT_NEAR(RunOf(Rest(item), x, y, faded), (164 - 2 * 5) * seen.scale, 2);
        }
    }
    // Three turns away: between the cards in front of it, and fainter still.
    const Seen back(3);
    EXPECT_LT(back.opacity, 0.5);
    const int y = static_cast<int>(back.ground - 190 * back.scale);
    for (std::size_t item = 0; item < std::size(kFaces); ++item)
        EXPECT_PRED2(Alike, Rest(item).At(static_cast<int>(back.x), y),
                     back.Faded(kFaces[(item + 3) % 8]))
            << item;
}

TEST_F(Carousel, TextStandsWholeInTheMiddleOfItsCard)
{
    for (std::size_t item = 0; item < std::size(kFaces); ++item) {
        SCOPED_TRACE(item);
        const Box title = LightIn(Rest(item), {323, 281, 477, 332}, 128);
        EXPECT_NEAR(title.Middle(), 400, 2);
        EXPECT_NEAR(title.top, 296, 1) << "capitals, 24 * 0.73 pixels above the baseline";
        EXPECT_GE(title.bottom, 313);
        const Box icon = LightIn(Rest(item), {323, 140, 477, 279}, 225);
        EXPECT_NEAR(icon.Middle(), 400, 2);
        EXPECT_NEAR((icon.top + icon.bottom) / 2.0, 139 + 141 / 2.0, 7);
        EXPECT_GT(icon.bottom - icon.top, 40);
    }
}

TEST_F(Carousel, TextShrinksAndFadesWithItsCard)
{
    for (const int turn : {1, 3}) {
        const Seen seen(turn);
        const auto up = [&](int pixels) {
            return static_cast<int>(seen.ground - pixels * seen.scale);
        };
        const auto x = [&](int pixels) { return static_cast<int>(seen.x + pixels * seen.scale); };
        for (std::size_t item = 0; item < std::size(kFaces); ++item) {
            SCOPED_TRACE(testing::Message() << item << " turned by " << turn);
            const std::uint32_t face =
                seen.Faded(kFaces[(item + static_cast<std::size_t>(turn)) % 8]);
            // As light as the glyphs are over their face, which has faded before.
            const double ink = 255 * seen.opacity + Channel(face, 8) * (1 - seen.opacity);
            const Box part = {x(-70), up(195), x(70), up(65)};
            const Box icon = LightIn(Rest(item), part, ink - 10);
            EXPECT_NEAR(icon.Middle(), seen.x, 3);
            EXPECT_LT(icon.right - icon.left, 66 * seen.scale + 2);
            const Box lighter = LightIn(Rest(item), part, ink + 20);
            EXPECT_GT(lighter.left, lighter.right) << "lighter than its opacity allows";
        }
    }
}

TEST_F(Carousel, MovesInEveryFrameAndOnlyWhereTheCardsAre)
{
    for (std::size_t i = 0; i < movie.frames.size(); ++i) {
        const ArgbImage& now = movie.frames[i];
        const ArgbImage& next = movie.frames[(i + 1) % movie.frames.size()];
        EXPECT_NE(now.pixels, next.pixels) << i;
        EXPECT_TRUE(
            std::equal(now.pixels.begin(), now.pixels.begin() + 80 * 800, next.pixels.begin()))
            << "the head changes after frame " << i;
    }
}

TEST_F(Carousel, SaysWhatTheFrontItemIsFor)
{
    const auto light = [&](const ArgbImage& image) {
        return std::count_if(image.pixels.begin() + 390 * 800, image.pixels.end(),
                             [](std::uint32_t pixel) { return Channel(pixel, 0) > 120; });
    };
    for (std::size_t i = 0; i < movie.frames.size(); ++i) {
        if (i % kFramesOfAnItem == 0)
            EXPECT_GT(light(movie.frames[i]), 300) << i;
        else
            EXPECT_EQ(light(movie.frames[i]), 0) << i;
    }
}

} // namespace
