/**
 * Runs the tool on pictures that DirectFB drew.
 */
#include "directfb_screen.h"
#include "display_fixture.h"
#include "png_file.h"
#include "run_command.h"

#include <cstdint>
#include <filesystem>
#include <string>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::Outcome;
using kestrin_test::Screen;
using kestrin_test::TestDisplay;
using kestrin_tools::ReadPng;
using kestrin_tools::WritePng;
using testing::HasSubstr;

namespace {

Outcome RunTool(const std::string& arguments)
{
    return kestrin_test::RunCommand(KESTRIN_SCREEN_TOOL " " + arguments);
}

class KestrinScreen : public testing::Test
{
protected:
    ~KestrinScreen() override
    {
        std::filesystem::remove(output);
        std::filesystem::remove(background);
    }

    const std::string output = testing::TempDir() + "/shot-" + std::to_string(getpid()) + ".png";
    const std::string background =
        testing::TempDir() + "/background-" + std::to_string(getpid()) + ".png";
};

TEST_F(KestrinScreen, ShotWritesTheLayer)
{
    TestDisplay display;
    Screen screen;
    screen.Take(320, 240, DSPF_ARGB);
    screen.Fill(0, 0, 320, 240, 0x00000000);
    screen.Fill(10, 20, 30, 40, 0x80ff8040);
    screen.Flip();

    const Outcome outcome = RunTool("shot " + output + " --screen " + display.Path());
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(ReadPng(output).pixels, display.Shot().pixels);
    EXPECT_EQ(ReadPng(output).At(39, 59), 0x80ff8040U);
}

TEST_F(KestrinScreen, ShotAppliesTheOpacityOfTheLayer)
{
    TestDisplay display;
    Screen screen;
    screen.Take(32, 24, DSPF_ARGB);
    screen.Fill(0, 0, 32, 24, 0x80ff8040);
    screen.layer->SetOpacity(screen.layer, 128);
    screen.Flip();

    ASSERT_EQ(RunTool("shot " + output + " --screen " + display.Path()).status, 0);
    EXPECT_EQ(ReadPng(output).At(5, 5), 0x40ff8040U);
}

TEST_F(KestrinScreen, ShotAppliesThePalette)
{
    TestDisplay display;
    Screen screen;
    screen.Take(32, 24, DSPF_LUT8);
    screen.Fill(0, 0, 32, 24, 0xff00ff00);
    screen.Flip();

    ASSERT_EQ(RunTool("shot " + output + " --screen " + display.Path()).status, 0);
    EXPECT_EQ(ReadPng(output).At(5, 5), 0xff00ff00U);
}

TEST_F(KestrinScreen, BackgroundIsStretchedBehindTheLayer)
{
    TestDisplay display;
    Screen screen;
    screen.Take(32, 24, DSPF_ARGB);
    screen.Fill(0, 0, 32, 24, 0x00000000);
    screen.Fill(0, 0, 4, 4, 0xff0000ff);
    screen.Fill(4, 0, 4, 4, 0x80000000);
    screen.Flip();

    ArgbImage picture(2, 1, 0xffff0000);
    picture.At(1, 0) = 0xff00ff00;
    WritePng(background, picture);
    ASSERT_EQ(
        RunTool("shot " + output + " --background " + background + " --screen " + display.Path())
            .status,
        0);
    const ArgbImage shot = ReadPng(output);
    EXPECT_EQ(shot.width, 32);
    EXPECT_EQ(shot.height, 24);
    EXPECT_EQ(shot.At(0, 0), 0xff0000ffU);
    EXPECT_EQ(shot.At(4, 0), 0xff7f0000U);
    EXPECT_EQ(shot.At(15, 23), 0xffff0000U);
    EXPECT_EQ(shot.At(16, 23), 0xff00ff00U);
}

TEST_F(KestrinScreen, LayerIsChosen)
{
    TestDisplay display(640, 480);
    Screen screen;
    screen.Take(32, 24, DSPF_ARGB);

    ASSERT_EQ(RunTool("shot " + output + " --layer 0 --screen " + display.Path()).status, 0);
    EXPECT_EQ(ReadPng(output).width, 640);

    const Outcome outcome = RunTool("shot " + output + " --layer 5 --screen " + display.Path());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("has no layer 5"));
}

TEST_F(KestrinScreen, InfoTellsTheFacts)
{
    TestDisplay display(640, 480);
    Screen screen;
    screen.Take(321, 240, DSPF_LUT8);
    screen.Flip();

    const Outcome outcome = RunTool("info --screen " + display.Path());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr(display.Path()));
    EXPECT_THAT(outcome.output, HasSubstr("640 x 480 pixels"));
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex("1  shown  321 x 240 +LUT8 +336 +255 +[1-9]"));
}

TEST_F(KestrinScreen, MissingScreenFileTellsHowToMakeOne)
{
    const Outcome outcome = RunTool("shot " + output + " --screen /tmp/no-screen-here");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("/tmp/no-screen-here: No such file"));
    EXPECT_THAT(outcome.output, HasSubstr("DFBARGS=system=kestrin_screen,"));
    EXPECT_THAT(outcome.output, HasSubstr("fbdev=/tmp/no-screen-here,"));
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(KestrinScreen, UsesTheDefaultScreenFile)
{
    const Outcome outcome = RunTool("info");
    const std::string file = kestrin_display::DefaultScreenFile();
    EXPECT_THAT(outcome.output, HasSubstr(file));
}

TEST_F(KestrinScreen, UnwritableOutputIsReported)
{
    TestDisplay display;
    Screen screen;
    const Outcome outcome = RunTool("shot /nowhere/shot.png --screen " + display.Path());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("/nowhere/shot.png: No such file"));
}

TEST_F(KestrinScreen, HelpIsEverywhere)
{
    for (const char* command : {"", "shot ", "info "}) {
        const Outcome outcome = RunTool(std::string(command) + "--help");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, HasSubstr("Usage: kestrin-screen"));
    }
    EXPECT_THAT(RunTool("shot --help").output, HasSubstr("$XDG_RUNTIME_DIR/kestrin-screen"));
    EXPECT_NE(RunTool("").status, 0);
    EXPECT_NE(RunTool("shot").status, 0);
}

} // namespace
