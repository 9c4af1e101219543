/**
 * Follows the README's steps: its first program, taken from the page and built as it stands there,
 * runs on a display in a file, and is looked at before and after Enter.
 */
#include "picture_compare.h"
#include "png_file.h"
#include "run_command.h"
#include "screen_reader.h"
#include "temp_directory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace {

using kestrin_display::ArgbImage;
using kestrin_test::AreaHasColor;
using kestrin_test::RunCommand;

std::string ContentOf(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class ReadmeProgram : public testing::Test
{
protected:
    ReadmeProgram()
    {
        // Asked for a screen that is not there, the tool says how to make one.
        const std::string said = RunCommand(KESTRIN_SCREEN_TOOL " info --screen " + screen).output;
        const std::size_t begin = said.find("DFBARGS="), end = said.find(" PROGRAM");
        if (begin != std::string::npos && end != std::string::npos)
            setting = said.substr(begin, end - begin);
        EXPECT_NE(setting, "") << said;
    }

    /** Whether there is something at the last pixel of a box that is drawn from its top on. */
    bool ShowsBoxTo(int right, int bottom) const
    {
        try {
            const ArgbImage image = kestrin_display::ScreenReader(screen).Snapshot(1).image;
            return image.At(right - 1, bottom - 1) != 0;
        } catch (const kestrin_display::ScreenError&) {
            return false; // there is no screen yet
        }
    }
    ArgbImage Shot(const std::string& name) const
    {
        const std::string file = directory.Path(name);
        const auto outcome =
            RunCommand(KESTRIN_SCREEN_TOOL " shot --screen " + screen + " " + file);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return kestrin_tools::ReadPng(file);
    }

    const kestrin_test::TempDirectory directory;
    const std::string screen = directory.Path("tv");
    std::string setting;
};

/** The box of 640 x 90 pixels with its text stands here, and nothing anywhere else. */
void ExpectCaptionAt(const ArgbImage& shot, int left, int top)
{
    constexpr std::uint32_t box = 0xC8102040;
    ASSERT_EQ(shot.width, 1280);
    ASSERT_EQ(shot.height, 720);
    EXPECT_TRUE(AreaHasColor(shot, left, top, left + 640, top + 15, box));
    EXPECT_TRUE(AreaHasColor(shot, left, top, left + 100, top + 90, box));
    EXPECT_TRUE(AreaHasColor(shot, 0, 0, 1280, top, 0));
    EXPECT_TRUE(AreaHasColor(shot, 0, top + 90, 1280, 720, 0));
    EXPECT_TRUE(AreaHasColor(shot, 0, top, left, top + 90, 0));
    EXPECT_TRUE(AreaHasColor(shot, left + 640, top, 1280, top + 90, 0));
    int white = 0;
    for (int y = top; y < top + 90; ++y) {
        for (int x = left; x < left + 640; ++x)
            white += shot.At(x, y) == 0xFFFFFFFF;
    }
    EXPECT_GT(white, 1000) << "the text";
}

TEST_F(ReadmeProgram, ShowsItsCaptionAndMovesItOnEnter)
{
    const std::string command =
        "cd " + directory.Path("") + " && " + setting + " exec " KESTRIN_README_PROGRAM;
    std::FILE* program = popen(command.c_str(), "w");
    ASSERT_NE(program, nullptr);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(40);
    while (!ShowsBoxTo(960, 650) && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_TRUE(ShowsBoxTo(960, 650)) << command;

    ExpectCaptionAt(Shot("before.png"), 320, 560);
    std::fputc('\n', program);
    EXPECT_EQ(pclose(program), 0);
    ExpectCaptionAt(Shot("after.png"), 320, 40);
}

TEST_F(ReadmeProgram, IsTheFirstExample)
{
    const std::string example = ContentOf(KESTRIN_EXAMPLE);
    EXPECT_EQ(example.substr(example.find("#include")), ContentOf(KESTRIN_README_SOURCE));
}

} // namespace
