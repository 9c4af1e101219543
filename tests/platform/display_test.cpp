/**
 * Draws with DirectFB itself on the display module and reads the picture back from the screen file.
 */
#include "directfb_core.h"
#include "directfb_screen.h"
#include "display_fixture.h"
#include "display_setup.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <directfb.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::PixelFormat;
using kestrin_test::Screen;
using kestrin_test::TestDisplay;

namespace {

struct FormatCase
{
    DFBSurfacePixelFormat format;
    PixelFormat recorded;
    std::uint32_t drawn;
    std::uint32_t seen;
};

void PrintTo(const FormatCase& value, std::ostream* out)
{
    *out << kestrin_display::FormatName(value.recorded);
}

class DisplayFormat : public testing::TestWithParam<FormatCase>
{
};

TEST_P(DisplayFormat, FillIsReadBack)
{
    TestDisplay display;
    Screen screen;
    screen.Take(321, 203, GetParam().format);
    screen.Fill(0, 0, 321, 203, 0);
    screen.Fill(300, 100, 21, 103, GetParam().drawn);
    screen.Flip();

    const auto shot = display.Reader().Snapshot(1);
    EXPECT_EQ(shot.facts.format, GetParam().recorded);
    EXPECT_EQ(shot.facts.width, 321U);
    EXPECT_EQ(shot.facts.height, 203U);
    EXPECT_EQ(shot.facts.shown, 1U);
    EXPECT_EQ(shot.image.At(300, 100), GetParam().seen);
    EXPECT_EQ(shot.image.At(320, 202), GetParam().seen);
    EXPECT_NE(shot.image.At(299, 100), GetParam().seen);
    EXPECT_NE(shot.image.At(300, 99), GetParam().seen);
}

INSTANTIATE_TEST_SUITE_P(
    All, DisplayFormat,
    testing::Values(FormatCase{DSPF_ARGB, PixelFormat::Argb, 0x80123456, 0x80123456},
                    FormatCase{DSPF_RGB32, PixelFormat::Rgb32, 0x80123456, 0xff123456},
                    FormatCase{DSPF_RGB24, PixelFormat::Rgb24, 0x80123456, 0xff123456},
                    FormatCase{DSPF_RGB16, PixelFormat::Rgb16, 0xffff8421, 0xffff8621},
                    FormatCase{DSPF_ARGB1555, PixelFormat::Argb1555, 0xffff8421, 0xffff8421},
                    FormatCase{DSPF_ARGB4444, PixelFormat::Argb4444, 0x88ff1122, 0x88ff1122},
                    FormatCase{DSPF_LUT8, PixelFormat::Lut8, 0xffff0000, 0xffff0000}),
    [](const auto& test) { return kestrin_display::FormatName(test.param.recorded); });

bool OneColor(const kestrin_display::ArgbImage& image, std::uint32_t color)
{
    return std::all_of(image.pixels.begin(), image.pixels.end(),
                       [color](std::uint32_t pixel) { return pixel == color; });
}

/** Runs `work` in a process of its own, which then ends without releasing anything. */
pid_t StartProcess(const std::function<void()>& work)
{
    const pid_t process = fork();
    if (process == 0) {
        work();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    }
    return process;
}

int ExitStatusOf(pid_t process)
{
    int status = -1;
    waitpid(process, &status, 0);
    return status;
}

TEST(Display, ScreenHasTheAskedSizeAndTwoLayers)
{
    TestDisplay display(1920, 1080);
    Screen screen;
    IDirectFBScreen* panel = nullptr;
    int width = 0;
    int height = 0;
    ASSERT_EQ(screen.dfb->GetScreen(screen.dfb, 0, &panel), DFB_OK);
    EXPECT_EQ(panel->GetSize(panel, &width, &height), DFB_OK);
    panel->Release(panel);
    EXPECT_EQ(width, 1920);
    EXPECT_EQ(height, 1080);

    for (int id = 0; id < 2; id++) {
        IDirectFBDisplayLayer* layer = nullptr;
        EXPECT_EQ(screen.dfb->GetDisplayLayer(screen.dfb, id, &layer), DFB_OK);
        layer->Release(layer);
    }
    EXPECT_EQ(display.Reader().Header().width, 1920U);
    EXPECT_EQ(display.Reader().Header().height, 1080U);
    EXPECT_EQ(display.Reader().LayerCount(), 2);
}

TEST(Display, LayersDoNotShareTheirPictures)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB);
    screen.Fill(0, 0, 64, 48, 0xff0000ff);
    screen.Flip();

    IDirectFBDisplayLayer* other = nullptr;
    IDirectFBSurface* surface = nullptr;
    ASSERT_EQ(screen.dfb->GetDisplayLayer(screen.dfb, 0, &other), DFB_OK);
    ASSERT_EQ(other->SetCooperativeLevel(other, DLSCL_EXCLUSIVE), DFB_OK);
    ASSERT_EQ(other->GetSurface(other, &surface), DFB_OK);
    ASSERT_EQ(surface->Clear(surface, 0, 255, 0, 255), DFB_OK);
    ASSERT_EQ(surface->Flip(surface, nullptr, DSFLIP_NONE), DFB_OK);

    EXPECT_TRUE(OneColor(display.Shot(0), 0xff00ff00));
    EXPECT_TRUE(OneColor(display.Shot(1), 0xff0000ff));
    surface->Release(surface);
    other->Release(other);
}

TEST(Display, RefusesWhatItCannotShow)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB);

    DFBDisplayLayerConfig config = {};
    DFBDisplayLayerConfigFlags failed = DLCONF_NONE;
    config.flags = static_cast<DFBDisplayLayerConfigFlags>(DLCONF_WIDTH | DLCONF_PIXELFORMAT);
    config.width = 5000;
    config.pixelformat = DSPF_YUY2;
    EXPECT_EQ(screen.layer->TestConfiguration(screen.layer, &config, &failed), DFB_UNSUPPORTED);
    EXPECT_EQ(failed, DLCONF_WIDTH | DLCONF_PIXELFORMAT);
}

TEST(Display, PhysicalAddressIsTheBaseAndTheOffset)
{
    TestDisplay display;
    Screen screen;
    screen.Take(1280, 720, DSPF_ARGB);

    void* address = nullptr;
    int pitch = 0;
    unsigned long physical = 0;
    ASSERT_EQ(screen.surface->Lock(screen.surface, DSLF_READ, &address, &pitch), DFB_OK);
    ASSERT_EQ(screen.surface->GetPhysicalAddress(screen.surface, &physical), DFB_OK);
    screen.surface->Unlock(screen.surface);
    screen.Flip();

    const auto header = display.Reader().Header();
    const auto facts = display.Facts();
    EXPECT_NE(header.physical_base, 0U);
    EXPECT_EQ(physical, header.physical_base + (facts.offset - header.memory_offset));
    EXPECT_LE(physical, 0xffffffffU);
    EXPECT_EQ(static_cast<std::uint32_t>(pitch), facts.pitch);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(address) % 4096, 0U);
}

TEST(Display, OtherSurfacesHaveNoPhysicalAddress)
{
    TestDisplay display;
    Screen screen;
    for (DFBSurfaceCapabilities caps : {DSCAPS_NONE, DSCAPS_SYSTEMONLY, DSCAPS_VIDEOONLY}) {
        DFBSurfaceDescription description = {};
        description.flags =
            static_cast<DFBSurfaceDescriptionFlags>(DSDESC_CAPS | DSDESC_WIDTH | DSDESC_HEIGHT);
        description.caps = caps;
        description.width = 10;
        description.height = 10;
        IDirectFBSurface* surface = nullptr;
        ASSERT_EQ(screen.dfb->CreateSurface(screen.dfb, &description, &surface), DFB_OK);

        void* address = nullptr;
        int pitch = 0;
        unsigned long physical = 0;
        ASSERT_EQ(surface->Lock(surface, DSLF_WRITE, &address, &pitch), DFB_OK);
        EXPECT_EQ(surface->GetPhysicalAddress(surface, &physical), DFB_UNSUPPORTED);
        surface->Unlock(surface);
        surface->Release(surface);
    }
}

TEST(Display, WhatIsDrawnIntoTheFrontBufferIsSeenWithoutFlip)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB);
    screen.Fill(0, 0, 64, 48, 0xff0a0b0c);
    EXPECT_TRUE(OneColor(display.Shot(), 0xff0a0b0c));
}

TEST(Display, FlipOfASingleBufferCountsAnUpdate)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB);
    const auto before = display.Facts();
    screen.Flip();
    screen.Flip();
    const auto after = display.Facts();
    EXPECT_EQ(after.update_count, before.update_count + 2);
    EXPECT_EQ(after.flip_count, before.flip_count);
    EXPECT_EQ(after.offset, before.offset);
}

TEST(Display, FlipShowsTheBackBuffer)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB, DLBM_BACKVIDEO);
    screen.Fill(0, 0, 64, 48, 0xffff0000);
    screen.Flip();
    const auto first = display.Facts();
    screen.Fill(0, 0, 64, 48, 0xff00ff00);
    EXPECT_TRUE(OneColor(display.Shot(), 0xffff0000));

    screen.Flip();
    EXPECT_TRUE(OneColor(display.Shot(), 0xff00ff00));
    const auto second = display.Facts();
    EXPECT_NE(second.offset, first.offset);
    EXPECT_EQ(second.flip_count, first.flip_count + 1);
    EXPECT_EQ(second.update_count, first.update_count + 1);

    screen.Flip();
    EXPECT_EQ(display.Facts().offset, first.offset);
}

TEST(Display, FlipOfARegionCopiesIt)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB, DLBM_BACKVIDEO);
    screen.Fill(0, 0, 64, 48, 0xffff0000);
    screen.Flip();
    const auto before = display.Facts();

    screen.Fill(0, 0, 64, 48, 0xff00ff00);
    const DFBRegion region = {10, 10, 19, 19};
    ASSERT_EQ(screen.surface->Flip(screen.surface, &region, DSFLIP_NONE), DFB_OK);

    const auto shot = display.Shot();
    EXPECT_EQ(shot.At(9, 9), 0xffff0000);
    EXPECT_EQ(shot.At(10, 10), 0xff00ff00);
    EXPECT_EQ(shot.At(19, 19), 0xff00ff00);
    EXPECT_EQ(shot.At(20, 20), 0xffff0000);
    EXPECT_EQ(display.Facts().offset, before.offset);
    EXPECT_EQ(display.Facts().flip_count, before.flip_count);
}

TEST(Display, FlipCopiesFromABackBufferInSystemMemory)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_LUT8, DLBM_BACKSYSTEM);
    screen.surface->Clear(screen.surface, 0, 0, 0, 255);
    screen.Flip();
    screen.surface->SetColorIndex(screen.surface, 77);
    screen.surface->FillRectangle(screen.surface, 0, 0, 64, 48);
    EXPECT_NE(display.Indices()[0], 77);
    screen.Flip();
    EXPECT_THAT(display.Indices(), testing::Each(77));
}

TEST(Display, TripleBufferingGoesRound)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB, DLBM_TRIPLE);
    for (std::uint32_t color : {0xff000001U, 0xff000002U, 0xff000003U, 0xff000004U}) {
        screen.Fill(0, 0, 64, 48, color);
        screen.Flip();
        EXPECT_TRUE(OneColor(display.Shot(), color));
    }
}

// DirectFB freezes a layer when its settings change and hands them to the driver with the next
// Flip.
TEST(Display, OpacityArrivesWithTheNextFlip)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB);
    EXPECT_EQ(display.Facts().opacity, 255U);

    ASSERT_EQ(screen.layer->SetOpacity(screen.layer, 100), DFB_OK);
    screen.Flip();
    EXPECT_EQ(display.Facts().opacity, 100U);
}

TEST(Display, PaletteEntriesAreRecordedAndApplied)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_LUT8);
    screen.surface->SetColorIndex(screen.surface, 5);
    screen.surface->FillRectangle(screen.surface, 0, 0, 64, 48);
    screen.Flip();

    IDirectFBPalette* palette = nullptr;
    ASSERT_EQ(screen.surface->GetPalette(screen.surface, &palette), DFB_OK);
    const DFBColor entry = {0x80, 1, 2, 3};
    ASSERT_EQ(palette->SetEntries(palette, &entry, 1, 5), DFB_OK);
    palette->Release(palette);

    EXPECT_EQ(display.Facts().palette[5], 0x80010203);
    EXPECT_TRUE(OneColor(display.Shot(), 0x80010203));
    EXPECT_THAT(display.Indices(), testing::Each(5));
}

TEST(Display, AnotherPaletteReplacesAllEntries)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_LUT8);
    screen.Flip();

    DFBColor entries[256] = {};
    for (int i = 0; i < 256; i++)
        entries[i] = {255, static_cast<std::uint8_t>(i), 7, static_cast<std::uint8_t>(255 - i)};
    DFBPaletteDescription description = {};
    description.flags = static_cast<DFBPaletteDescriptionFlags>(DPDESC_SIZE | DPDESC_ENTRIES);
    description.size = 256;
    description.entries = entries;
    IDirectFBPalette* palette = nullptr;
    ASSERT_EQ(screen.dfb->CreatePalette(screen.dfb, &description, &palette), DFB_OK);
    ASSERT_EQ(screen.surface->SetPalette(screen.surface, palette), DFB_OK);
    palette->Release(palette);

    const auto facts = display.Facts();
    for (std::uint32_t i = 0; i < 256; i++)
        EXPECT_EQ(facts.palette[i], 0xff000000 | i << 16 | 7U << 8 | (255 - i));
}

TEST(Display, PaletteOfADoubleBufferedLayerLeavesTheShownBuffer)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_LUT8, DLBM_BACKVIDEO);
    screen.surface->SetColorIndex(screen.surface, 5);
    screen.surface->FillRectangle(screen.surface, 0, 0, 64, 48);
    screen.Flip();
    const auto before = display.Facts();

    IDirectFBPalette* palette = nullptr;
    ASSERT_EQ(screen.surface->GetPalette(screen.surface, &palette), DFB_OK);
    const DFBColor entry = {255, 1, 2, 3};
    ASSERT_EQ(palette->SetEntries(palette, &entry, 1, 5), DFB_OK);
    palette->Release(palette);

    EXPECT_EQ(display.Facts().offset, before.offset);
    EXPECT_TRUE(OneColor(display.Shot(), 0xff010203));
}

TEST(Display, BlitsBetweenSurfaces)
{
    TestDisplay display;
    Screen screen;
    screen.Take(64, 48, DSPF_ARGB);
    screen.Fill(0, 0, 64, 48, 0xff000000);

    DFBSurfaceDescription description = {};
    description.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    description.width = 4;
    description.height = 4;
    description.pixelformat = DSPF_ARGB;
    IDirectFBSurface* source = nullptr;
    ASSERT_EQ(screen.dfb->CreateSurface(screen.dfb, &description, &source), DFB_OK);
    source->Clear(source, 0xff, 0, 0, 0x80);
    screen.surface->SetBlittingFlags(screen.surface, DSBLIT_BLEND_ALPHACHANNEL);
    ASSERT_EQ(screen.surface->Blit(screen.surface, source, nullptr, 10, 20), DFB_OK);
    source->Release(source);

    EXPECT_EQ(display.Shot().At(9, 20), 0xff000000);
    EXPECT_NEAR(display.Shot().At(10, 20) >> 16 & 0xff, 0x80, 1);
}

class DisplayDeathTest : public testing::Test
{
protected:
    void SetUp() override
    {
        testing::FLAGS_gtest_death_test_style = "threadsafe";
        screen.Take(1280, 720, DSPF_ARGB);
        ASSERT_EQ(screen.surface->Lock(screen.surface, DSLF_WRITE, &address, &pitch), DFB_OK);
    }

    volatile std::uint8_t* Byte(std::ptrdiff_t offset)
    {
        return static_cast<std::uint8_t*>(address) + offset;
    }

    TestDisplay display;
    Screen screen;
    void* address = nullptr;
    int pitch = 0;
};

// 1280 x 720 fills whole pages, so the very first byte behind it is out of reach.
TEST_F(DisplayDeathTest, WritingPastTheBufferFaults)
{
    *Byte(std::ptrdiff_t{pitch} * 720 - 1) = 1;
    EXPECT_DEATH(*Byte(std::ptrdiff_t{pitch} * 720) = 1, "");
}

TEST_F(DisplayDeathTest, WritingBeforeTheBufferFaults)
{
    *Byte(0) = 1;
    EXPECT_DEATH(*Byte(-1) = 1, "");
}

TEST(Display, CanBeTakenManyTimes)
{
    TestDisplay display;
    Screen screen;
    for (int i = 0; i < 50; i++) {
        const DFBSurfacePixelFormat format = i % 2 == 0 ? DSPF_ARGB : DSPF_LUT8;
        screen.Take(640 + i, 480 - i, format, i % 3 == 0 ? DLBM_BACKVIDEO : DLBM_FRONTONLY);
        screen.Fill(0, 0, 640 + i, 480 - i, 0xffff0000);
        screen.Flip();
        ASSERT_TRUE(OneColor(display.Shot(), 0xffff0000)) << "round " << i;
        ASSERT_EQ(display.Facts().width, 640U + static_cast<unsigned>(i));
        screen.Drop();
    }
}

// After a system that failed to start, DirectFB may end by itself: all that counts is the message.
TEST(DisplayStartDeathTest, TellsWhyNoFileCanBeMade)
{
    TestDisplay display;
    const auto start = [] {
        setenv("DFBARGS", kestrin_display::ScreenFileArguments("/nowhere/screen", 8, 8).c_str(), 1);
        IDirectFB* dfb = nullptr;
        DirectFBInit(nullptr, nullptr);
        if (DirectFBCreate(&dfb) != DFB_OK)
            std::abort();
    };
    EXPECT_DEATH(start(), "cannot create screen file /nowhere/screen: No such file");
}

TEST(Display, ProperEndHidesTheLayerAndKeepsThePicture)
{
    TestDisplay display;
    {
        Screen screen;
        screen.Take(64, 48, DSPF_ARGB);
        screen.Fill(0, 0, 64, 48, 0xff445566);
        screen.Flip();
    }
    EXPECT_EQ(display.Facts().shown, 0U);
    EXPECT_TRUE(OneColor(display.Shot(), 0xff445566));
}

TEST(Display, PictureStaysWhenTheProcessEndsWithoutReleasing)
{
    TestDisplay display;
    const pid_t process = StartProcess([] {
        static auto* screen = new Screen; // never released
        screen->Take(64, 48, DSPF_ARGB, DLBM_BACKVIDEO);
        screen->Fill(0, 0, 64, 48, 0xff778899);
        screen->Flip();
    });
    EXPECT_EQ(ExitStatusOf(process), 0);
    EXPECT_EQ(display.Facts().shown, 1U);
    EXPECT_EQ(display.Reader().Header().process, static_cast<std::uint32_t>(process));
    EXPECT_TRUE(OneColor(display.Shot(), 0xff778899));
}

// DirectFB frees surfaces in a thread of its own, which must not be met by the end of its
// libraries.
TEST(Display, EndOfAProgramWaitsForDirectFBsMessages)
{
    TestDisplay display;
    int finished[2] = {};
    ASSERT_EQ(pipe(finished), 0);
    const auto finish_late = [](void* descriptor, void*) {
        usleep(200'000);
        static_cast<void>(write(*static_cast<int*>(descriptor), "x", 1) == 1);
    };
    const pid_t process = StartProcess([&] {
        static auto* screen = new Screen; // never released
        screen->Take(64, 48, DSPF_ARGB);
        ASSERT_EQ(Core_AsyncCall(finish_late, &finished[1], nullptr), DFB_OK);
    });
    close(finished[1]);
    EXPECT_EQ(ExitStatusOf(process), 0);
    char mark = 0;
    EXPECT_EQ(read(finished[0], &mark, 1), 1);
    close(finished[0]);
}

TEST(Display, ProcessesWithFilesOfTheirOwnDoNotMeet)
{
    TestDisplay displays[3];
    pid_t processes[3] = {};
    for (int i = 0; i < 3; i++) {
        processes[i] = StartProcess([&displays, i] {
            setenv("DFBARGS", displays[i].Arguments().c_str(), 1);
            Screen screen;
            screen.Take(100, 50, i == 1 ? DSPF_RGB32 : DSPF_ARGB, DLBM_BACKVIDEO);
            for (int frame = 0; frame < 200; frame++) {
                screen.Fill(0, 0, 100, 50, 0xff000000 | static_cast<std::uint32_t>(i + 1));
                screen.Flip();
            }
        });
    }
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(ExitStatusOf(processes[i]), 0);
        EXPECT_TRUE(OneColor(displays[i].Shot(), 0xff000000 | static_cast<std::uint32_t>(i + 1)));
    }
}

TEST(Display, SnapshotsOfARunningProgramShowWholePictures)
{
    TestDisplay display;
    const pid_t process = StartProcess([] {
        Screen screen;
        screen.Take(320, 200, DSPF_ARGB, DLBM_BACKVIDEO);
        for (std::uint32_t frame = 1; frame <= 150; frame++) {
            screen.Fill(0, 0, 320, 200, 0xff000000 | frame);
            screen.Flip();
            usleep(2000);
        }
    });

    int seen = 0;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        try {
            const auto snapshot = display.Reader().Snapshot(1);
            if (snapshot.facts.flip_count == 0 || snapshot.facts.width != 320)
                continue;
            EXPECT_TRUE(OneColor(snapshot.image, snapshot.image.At(0, 0)));
            seen++;
        } catch (const kestrin_display::ScreenError&) {
            // The file is not there yet.
        }
    }
    EXPECT_EQ(status, 0);
    EXPECT_GT(seen, 10);
}

} // namespace
