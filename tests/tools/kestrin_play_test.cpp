/**
 * Runs the player on the samples and on files that are not as they should be.
 *
 * Pictures are taken over a background of one colour, so that everything that differs from it was
 * drawn by the player: a caption box, which ends a ninth of the height above the bottom, and the
 * bar below it.
 */
#include "picture.h"
#include "png_file.h"
#include "run_command.h"
#include "temp_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <ostream>
#include <string>

namespace fs = std::filesystem;
using kestrin_play::ArgbImage;
using kestrin_test::Outcome;
using kestrin_test::RunCommand;
using kestrin_tools::ReadPng;
using testing::HasSubstr;

namespace {

constexpr std::uint32_t backdrop = 0xFF406080;

struct Box
{
    int left, top, right, bottom; ///< half open
};

int Channel(std::uint32_t pixel, int shift)
{
    return static_cast<int>(pixel >> shift & 0xFF);
}

/** Characters are drawn in light colours, everything else in darker ones or orange. */
bool IsLight(std::uint32_t pixel)
{
    return Channel(pixel, 8) > 200;
}

bool IsMagenta(std::uint32_t pixel)
{
    return Channel(pixel, 16) > 180 && Channel(pixel, 0) > 180 && Channel(pixel, 8) < 100;
}

int BarTop(const ArgbImage& picture)
{
    return picture.height - picture.height / 14;
}

/** Around everything drawn above the bar; empty if nothing is. */
Box CaptionBox(const ArgbImage& picture)
{
    Box box = {picture.width, picture.height, 0, 0};
    for (int y = 0; y < BarTop(picture); ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.At(x, y) != backdrop)
                box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                       std::max(box.bottom, y + 1)};
        }
    }
    return box;
}

int CountLight(const ArgbImage& picture, const Box& box)
{
    int count = 0;
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x)
            count += IsLight(picture.At(x, y));
    }
    return count;
}

/** Text, all of it, in a box in the middle, and nothing else. */
void ExpectCaption(const ArgbImage& picture)
{
    const Box box = CaptionBox(picture);
    ASSERT_LT(box.left, box.right);
    EXPECT_NEAR(box.left, picture.width - box.right, 1);
    EXPECT_EQ(box.bottom, picture.height - picture.height / 9);
    EXPECT_GE(box.left, picture.width / 20);
    EXPECT_GT(CountLight(picture, box), picture.height / 2);
    const int margin = picture.height / 180;
    const Box inner = {box.left + margin, box.top + margin, box.right - margin,
                       box.bottom - margin};
    EXPECT_EQ(CountLight(picture, box), CountLight(picture, inner)) << "text touches the edge";
    const Box all = {0, 0, picture.width, picture.height};
    EXPECT_EQ(CountLight(picture, box), CountLight(picture, all)) << "text outside the box";
    EXPECT_EQ(std::count_if(picture.pixels.begin(), picture.pixels.end(), IsMagenta), 0);
}

class KestrinPlay : public testing::Test
{
protected:
    KestrinPlay()
    {
        fs::create_directory(directory.Path("tmp"));
        kestrin_tools::WritePng(directory.Path("back.png"), ArgbImage(4, 4, backdrop));
    }

    Outcome Play(const std::string& arguments) const
    {
        return RunCommand("cd " + directory.Path("") + " && TMPDIR=" + directory.Path("tmp") +
                          " env -u DFBARGS " KESTRIN_PLAY_TOOL " --background back.png " +
                          arguments);
    }

    ArgbImage Picture(const std::string& name) const { return ReadPng(directory.Path(name)); }

    bool Exists(const std::string& name) const { return fs::exists(directory.Path(name)); }

    const kestrin_test::TempDirectory directory;
};

const char two_cues[] = "1\n00:00:01,000 --> 00:00:03,000\nFirst line\nSecond\n\n"
                        "2\n00:00:04,000 --> 00:00:05,000\nOther\n";

struct Sample
{
    const char* file;
    const char* encoding;
    int cues;
};

/** Keeps addresses out of the names of tests. */
void PrintTo(const Sample& sample, std::ostream* out)
{
    *out << sample.file;
}

class KestrinPlaySample : public KestrinPlay,
                          public testing::WithParamInterface<std::tuple<Sample, int>>
{
};

TEST_P(KestrinPlaySample, EveryCueIsShownAndOnTheSheet)
{
    const auto& [sample, mode] = GetParam();
    const std::string name = fs::path(sample.file).stem();
    const Outcome outcome = Play("--mode " + std::to_string(mode) + " --encoding " +
                                 sample.encoding + " --out out " KESTRIN_SAMPLES "/" + sample.file);
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("0 cues skipped, 0 warnings"));

    const ArgbImage sheet = Picture("out/" + name + "-sheet.png");
    const int width = mode == 8 ? 720 : 1280;
    const int height = mode == 8 ? 576 : 720;
    const kestrin_play::ContactSheet plan(static_cast<std::size_t>(sample.cues), width, height);
    ASSERT_EQ(sheet.width, plan.Image().width);
    ASSERT_EQ(sheet.height, plan.Image().height);
    for (int cue = 1; cue <= sample.cues; ++cue) {
        SCOPED_TRACE(cue);
        const ArgbImage picture = Picture("out/" + name + "-00" + std::to_string(cue) + ".png");
        ASSERT_EQ(picture.width, width);
        ASSERT_EQ(picture.height, height);
        ExpectCaption(picture);
        const auto place = plan.PlaceOf(static_cast<std::size_t>(cue - 1));
        const ArgbImage small = kestrin_play::Scaled(picture, place.width, place.height);
        for (int y = 0; y < place.height; ++y) {
            for (int x = 0; x < place.width; ++x)
                ASSERT_EQ(sheet.At(place.x + x, place.y + y), small.At(x, y));
        }
    }
    EXPECT_FALSE(Exists("out/" + name + "-00" + std::to_string(sample.cues + 1) + ".png"));
}

const Sample samples[] = {
    {"bakeries-iso6937.srt", "iso6937", 6},     {"garden-euc-jp.srt", "euc-jp", 5},
    {"kimchi-euc-kr.srt", "euc-kr", 5},         {"markets-utf-8.srt", "utf-8", 8},
    {"noodles-gb2312.srt", "gb2312", 5},        {"pie-iso-8859-7.srt", "iso-8859-7", 5},
    {"river-iso-8859-1.srt", "iso-8859-1", 5},  {"tea-big5.srt", "big5", 5},
    {"tundra-iso-8859-5.srt", "iso-8859-5", 5},
};

INSTANTIATE_TEST_SUITE_P(Samples, KestrinPlaySample,
                         testing::Combine(testing::ValuesIn(samples), testing::Values(32, 8)),
                         [](const auto& tested) {
                             std::string name = std::get<0>(tested.param).file;
                             name.erase(name.find('-'));
                             return name + std::to_string(std::get<1>(tested.param));
                         });

TEST_F(KestrinPlay, TellsFramesDirtySharesAndTimes)
{
    directory.Write("a.srt", two_cues);
    const Outcome outcome = Play("a.srt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("frames after the first: 4"));
    EXPECT_THAT(outcome.output, HasSubstr("dirty: pixels that changed, %"));
    EXPECT_THAT(outcome.output, HasSubstr("time of an update, µs"));
}

TEST_F(KestrinPlay, LeavesNoTemporaryFiles)
{
    directory.Write("a.srt", two_cues);
    EXPECT_EQ(Play("a.srt").status, 0);
    EXPECT_EQ(Play("--font nothing.ttf a.srt").status, 1);
    EXPECT_TRUE(fs::is_empty(directory.Path("tmp")));
}

TEST_F(KestrinPlay, TheSizeIsTheUsers)
{
    directory.Write("a.srt", two_cues);
    ASSERT_EQ(Play("--size 640x360 --out . a.srt").status, 0);
    const ArgbImage picture = Picture("a-002.png");
    EXPECT_EQ(picture.width, 640);
    EXPECT_EQ(picture.height, 360);
    ExpectCaption(picture);
}

TEST_F(KestrinPlay, OverlappingCuesStandTogether)
{
    directory.Write("a.srt",
                    "00:00:01,000 --> 00:00:04,000\nOne\n\n00:00:02,000 --> 00:00:03,000\nTwo\n");
    ASSERT_EQ(Play("--out . a.srt").status, 0);
    const Box first = CaptionBox(Picture("a-001.png"));
    const Box both = CaptionBox(Picture("a-002.png"));
    const int line = 720 / 18 * 13 / 10;
    EXPECT_EQ(both.bottom - both.top, first.bottom - first.top + line);
}

TEST_F(KestrinPlay, LinesThatDoNotFitAreCountedAndTheRestIsShown)
{
    std::string content = "00:00:01,000 --> 00:00:04,000\n";
    for (int i = 1; i <= 20; ++i)
        content += "line " + std::to_string(i) + "\n";
    directory.Write("a.srt", content);
    const Outcome outcome = Play("--out . a.srt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("a.srt:1: 9 lines do not fit on the screen at "
                                          "00:00:01,000; shorten the text"));
    ExpectCaption(Picture("a-001.png"));
}

TEST_F(KestrinPlay, ALongLineIsWrapped)
{
    std::string text;
    for (int i = 0; i < 15; ++i)
        text += "word" + std::to_string(i) + " ";
    directory.Write("a.srt", "00:00:01,000 --> 00:00:04,000\n" + text + "\n");
    ASSERT_EQ(Play("--out . a.srt").status, 0);
    const ArgbImage picture = Picture("a-001.png");
    ExpectCaption(picture);
    EXPECT_GT(CaptionBox(picture).bottom - CaptionBox(picture).top, 2 * 720 / 18);
}

TEST_F(KestrinPlay, FontTagsColourTheText)
{
    directory.Write("a.srt", "00:00:01,000 --> 00:00:04,000\n<font color=lime>green</font>\n");
    for (const std::string mode : {"32", "8"}) {
        ASSERT_EQ(Play("--out . --mode " + mode + " a.srt").status, 0);
        const ArgbImage picture = Picture("a-001.png");
        const auto count = [&](std::uint32_t colour) {
            return std::count(picture.pixels.begin(), picture.pixels.end(), colour);
        };
        EXPECT_GT(count(0xFF00FF00), 100) << mode;
        EXPECT_EQ(count(0xFFFFFFFF), 0) << mode;
    }
}

TEST_F(KestrinPlay, RealTimeTakesAsLongAsTheProgramme)
{
    directory.Write("a.srt", "00:00:00,200 --> 00:00:00,700\nText\n");
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(Play("--realtime --screen screen a.srt").status, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(700));
}

TEST_F(KestrinPlay, OneBadCueCostsThatCueOnly)
{
    directory.Write("a.srt", std::string("1\n00:00:01,000 > 00:00:03,000\nLost\n\n") + two_cues);
    const Outcome outcome = Play("--out . a.srt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("a.srt:2: "));
    EXPECT_THAT(outcome.output, HasSubstr("1 cues skipped"));
    EXPECT_TRUE(Exists("a-002.png"));
    EXPECT_FALSE(Exists("a-003.png"));
}

TEST_F(KestrinPlay, TextThatCannotBeDecodedIsNamedWithItsLine)
{
    directory.Write("a.srt",
                    std::string("1\n00:00:01,000 --> 00:00:02,000\nfine\ncaf\xE9\n\n") + two_cues);
    const Outcome outcome = Play("--out . a.srt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("a.srt:4: not valid utf-8 text: \"caf\\xE9\"; name the "
                                          "file's encoding with --encoding (cue skipped)"));
    EXPECT_TRUE(Exists("a-002.png"));
    EXPECT_FALSE(Exists("a-003.png"));
}

TEST_F(KestrinPlay, CharactersWithoutAFontAreNamed)
{
    directory.Write("a.srt", "00:00:01,000 --> 00:00:04,000\nfish and\nчипс 🐟\n");
    const Outcome outcome =
        Play("--font /usr/share/fonts/truetype/tiresias/tiresias_lpfont.ttf a.srt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                HasSubstr("a.srt:3: no font has U+0447 U+0438 U+043F U+0441 U+D83D U+DC1F"));
    EXPECT_THAT(outcome.output, HasSubstr("1 warnings"));
}

TEST_F(KestrinPlay, FilesThatCannotBePlayedAreNamedWithARemedy)
{
    directory.Write("empty.srt", "");
    directory.Write("wide.srt", "\xFF\xFE\x31");
    directory.Write("text.srt", "Just a letter.\n\nYours\n");
    const std::pair<std::string, std::string> cases[] = {
        {"missing.srt", "missing.srt: no such file; check the name"},
        {".", ".: not a file; name a SubRip file"},
        {"empty.srt", "empty.srt: no cue to play; name a SubRip file"},
        {"wide.srt", "wide.srt: written in UTF-16; add --encoding utf-16"},
        {"text.srt", "text.srt:1: no times where a cue should begin: \"Just a letter.\""},
    };
    for (const auto& [file, message] : cases) {
        const Outcome outcome = Play(file);
        EXPECT_EQ(outcome.status, 1) << file;
        EXPECT_THAT(outcome.output, HasSubstr(message));
    }
}

TEST_F(KestrinPlay, FontsThatCannotBeUsedAreNamedWithARemedy)
{
    directory.Write("a.srt", two_cues);
    directory.Write("font.ttf", "no font at all");
    for (const auto& [font, message] : {std::pair("nothing.ttf", "nothing.ttf: no such font file"),
                                        std::pair("font.ttf", "font.ttf: not a readable font")}) {
        const Outcome outcome = Play(std::string("--font ") + font + " a.srt");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.output, HasSubstr(message));
        EXPECT_THAT(outcome.output, HasSubstr("after --font"));
    }
}

TEST_F(KestrinPlay, AnUnusableOutDirectoryIsNamed)
{
    directory.Write("a.srt", two_cues);
    const Outcome outcome = Play("--out a.srt/below a.srt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("a.srt/below: "));
    EXPECT_THAT(outcome.output, HasSubstr("--out"));
}

TEST_F(KestrinPlay, WrongArgumentsAreToldApart)
{
    for (const std::string arguments :
         {"", "--mode 16 a.srt", "--size 12 a.srt", "--size 5000x5000 a.srt",
          "--encoding klingon a.srt", "a.srt b.srt", "--what a.srt"}) {
        const Outcome outcome = Play(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr("--help")) << arguments;
    }
    const Outcome help = Play("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("iso-8859-15"));
}

} // namespace
