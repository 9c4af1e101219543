/**
 * Reads screen files that the test writes itself: the lock, the conversions and damaged files.
 */
#include "display_setup.h"
#include "screen_reader.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::LayerBlock;
using kestrin_display::LayerBlockOffset;
using kestrin_display::LayerFacts;
using kestrin_display::PixelFormat;
using kestrin_display::ScreenError;
using kestrin_display::ScreenHeader;
using kestrin_display::ScreenReader;
using testing::HasSubstr;

namespace {

constexpr std::uint64_t memory_offset = 12288;

/** A screen file in memory, correct until a test spoils it; layer 1 shows 4 x 2 pixels of ARGB. */
class ScreenFile : public testing::Test
{
protected:
    ScreenFile() : bytes(memory_offset + 4096)
    {
        std::memcpy(header.magic, kestrin_display::screen_file_magic, sizeof(header.magic));
        header.version = kestrin_display::screen_file_version;
        header.layer_count = 2;
        header.width = 4;
        header.height = 2;
        header.memory_offset = memory_offset;
        header.memory_size = 4096;

        facts.shown = 1;
        facts.width = 4;
        facts.height = 2;
        facts.pitch = 16;
        facts.format = PixelFormat::Argb;
        facts.opacity = 255;
        facts.offset = memory_offset;
    }

    ~ScreenFile() override { std::filesystem::remove(path); }

    void Write()
    {
        std::memcpy(bytes.data(), &header, sizeof(header));
        std::memcpy(&bytes[LayerBlockOffset(1)], &sequence, sizeof(sequence));
        std::memcpy(&bytes[LayerBlockOffset(1) + offsetof(LayerBlock, facts)], &facts,
                    sizeof(facts));
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }

    /** The message of the error that opening the file and reading layer 1 ends in. */
    std::string Failure(int layer = 1)
    {
        try {
            ScreenReader(path).Snapshot(layer);
        } catch (const ScreenError& error) {
            return error.what();
        }
        return "no failure";
    }

    const std::string path = testing::TempDir() + "/screen-" + std::to_string(getpid());
    ScreenHeader header = {};
    std::uint32_t sequence = 2;
    LayerFacts facts = {};
    std::vector<std::uint8_t> bytes;
};

TEST_F(ScreenFile, GivesRawBytesAndPixels)
{
    const std::uint32_t pixel = 0x11223344;
    std::memcpy(&bytes[memory_offset + 16 + 8], &pixel, sizeof(pixel));
    Write();

    const auto snapshot = ScreenReader(path).Snapshot(1);
    EXPECT_EQ(snapshot.image.width, 4);
    EXPECT_EQ(snapshot.image.height, 2);
    EXPECT_EQ(snapshot.image.At(2, 1), pixel);
    EXPECT_EQ(snapshot.image.At(1, 1), 0U);
    EXPECT_EQ(snapshot.bytes.size(), 32U);
    EXPECT_EQ(std::memcmp(&snapshot.bytes[24], &pixel, sizeof(pixel)), 0);
}

TEST_F(ScreenFile, PitchMayBeLongerThanARow)
{
    facts.pitch = 32;
    const std::uint32_t pixel = 0x11223344;
    std::memcpy(&bytes[memory_offset + 32], &pixel, sizeof(pixel));
    Write();
    EXPECT_EQ(ScreenReader(path).Snapshot(1).image.At(0, 1), pixel);
}

TEST_F(ScreenFile, MissingFileIsNamed)
{
    EXPECT_THAT(Failure(), HasSubstr(path));
    EXPECT_THAT(Failure(), HasSubstr("No such file"));
}

TEST_F(ScreenFile, DirectoryIsRefused)
{
    EXPECT_THROW(ScreenReader{testing::TempDir()}, ScreenError);
}

TEST_F(ScreenFile, EmptyFileIsTruncated)
{
    bytes.clear();
    const std::ofstream empty(path);
    EXPECT_THAT(Failure(), HasSubstr("truncated"));
}

TEST_F(ScreenFile, OtherFilesAreRecognised)
{
    header.magic[0] = 'X';
    Write();
    EXPECT_THAT(Failure(), HasSubstr("is not a screen file"));
}

TEST_F(ScreenFile, OtherVersionsAreNamed)
{
    header.version = 77;
    Write();
    EXPECT_THAT(Failure(), HasSubstr("version 77"));
}

TEST_F(ScreenFile, MissingLayersAreNamed)
{
    Write();
    EXPECT_THAT(Failure(2), HasSubstr("has no layer 2; its layers are 0 to 1"));
    EXPECT_THAT(Failure(-1), HasSubstr("has no layer -1"));
    EXPECT_THAT(Failure(0), HasSubstr("no picture on layer 0"));
}

TEST_F(ScreenFile, TruncationAnywhereIsReported)
{
    for (std::uint64_t size : {std::uint64_t{20}, LayerBlockOffset(1) + 3,
                               LayerBlockOffset(1) + 100, memory_offset, memory_offset + 31}) {
        Write();
        std::filesystem::resize_file(path, size);
        EXPECT_THAT(Failure(), HasSubstr("truncated")) << size;
    }
}

TEST_F(ScreenFile, SenselessHeaderIsReported)
{
    header.layer_count = 0x80000000;
    Write();
    EXPECT_THAT(Failure(), HasSubstr("damaged"));
}

TEST_F(ScreenFile, SenselessFactsAreReported)
{
    const LayerFacts good = facts;
    const std::vector<void (*)(LayerFacts&)> damages = {
        [](LayerFacts& bad) { bad.format = static_cast<PixelFormat>(99); },
        [](LayerFacts& bad) { bad.width = 0; },
        [](LayerFacts& bad) { bad.width = 0xffffffff; },
        [](LayerFacts& bad) { bad.height = 100000; },
        [](LayerFacts& bad) { bad.pitch = 15; },
        [](LayerFacts& bad) { bad.pitch = 0xfffffff0; },
        [](LayerFacts& bad) { bad.opacity = 256; },
        [](LayerFacts& bad) { bad.offset = 0; },
        [](LayerFacts& bad) { bad.offset = 0xffffffffffffff00; },
    };
    for (auto damage : damages) {
        facts = good;
        damage(facts);
        Write();
        EXPECT_THAT(Failure(), HasSubstr("damaged"));
    }
}

TEST_F(ScreenFile, WriterThatDiedInTheMiddleIsReported)
{
    sequence = 3;
    Write();
    EXPECT_THAT(Failure(), HasSubstr("stays locked"));
}

/** Ends a child process with the test, however the test ends. */
class KilledAtTheEnd
{
public:
    explicit KilledAtTheEnd(pid_t process) : _process(process) {}
    ~KilledAtTheEnd()
    {
        kill(_process, SIGKILL);
        waitpid(_process, nullptr, 0);
    }

    KilledAtTheEnd(const KilledAtTheEnd&) = delete;
    KilledAtTheEnd& operator=(const KilledAtTheEnd&) = delete;

private:
    const pid_t _process;
};

// Facts that belong together are equal numbers here; a mixture would be a torn copy.
TEST_F(ScreenFile, ReaderNeverSeesHalfAnUpdate)
{
    Write();
    const int file = open(path.c_str(), O_RDWR);
    void* mapped = mmap(nullptr, bytes.size(), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    close(file);
    auto& block =
        *reinterpret_cast<LayerBlock*>(static_cast<std::uint8_t*>(mapped) + LayerBlockOffset(1));
    const auto numbered = [](std::uint32_t number) {
        LayerFacts made = {};
        made.width = number;
        made.flip_count = number;
        for (std::uint32_t& entry : made.palette)
            entry = number;
        return made;
    };
    kestrin_display::PublishFacts(block, numbered(1));

    const pid_t writer = fork();
    if (writer == 0) {
        // Bursts with far more updates than any program makes; between them the reader may have the
        // processor when both must share one.
        for (std::uint32_t number = 2;; number++) {
            kestrin_display::PublishFacts(block, numbered(number));
            if (number % 500 == 0)
                usleep(20);
        }
    }

    const KilledAtTheEnd guard(writer);
    const ScreenReader reader(path);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    std::uint32_t last = 0;
    int changes = 0;
    while (changes < 1000 && std::chrono::steady_clock::now() < end) {
        const LayerFacts seen = reader.Facts(1);
        ASSERT_EQ(seen.flip_count, seen.width);
        for (std::uint32_t entry : seen.palette)
            ASSERT_EQ(entry, seen.width);
        changes += seen.width != last;
        last = seen.width;
    }
    munmap(mapped, bytes.size());
    EXPECT_EQ(changes, 1000);
}

struct Conversion
{
    std::vector<std::uint8_t> bytes; // the lowest first, as on little-endian machines
    PixelFormat format;
    std::uint32_t argb;
};

TEST(ConvertToArgb, KnowsEveryFormat)
{
    const Conversion conversions[] = {
        {{7}, PixelFormat::Lut8, 0x40506070},
        {{0x44, 0x33, 0x22, 0x11}, PixelFormat::Argb, 0x11223344},
        {{0x44, 0x33, 0x22, 0x11}, PixelFormat::Rgb32, 0xff223344},
        {{0x44, 0x33, 0x22}, PixelFormat::Rgb24, 0xff223344},
        {{0xff, 0xff}, PixelFormat::Rgb16, 0xffffffff},
        {{0x00, 0xf8}, PixelFormat::Rgb16, 0xffff0000},
        {{0xe0, 0x07}, PixelFormat::Rgb16, 0xff00ff00},
        {{0x1f, 0x00}, PixelFormat::Rgb16, 0xff0000ff},
        {{0x00, 0x7c}, PixelFormat::Argb1555, 0x00ff0000},
        {{0x1f, 0x80}, PixelFormat::Argb1555, 0xff0000ff},
        {{0x23, 0xf1}, PixelFormat::Argb4444, 0xff112233},
    };
    for (const Conversion& conversion : conversions) {
        LayerFacts facts = {};
        facts.width = 1;
        facts.height = 1;
        facts.pitch = static_cast<std::uint32_t>(conversion.bytes.size());
        facts.format = conversion.format;
        facts.palette[7] = 0x40506070;
        std::vector<std::uint8_t> bytes = conversion.bytes;
        if (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
            std::reverse(bytes.begin(), bytes.end());
        EXPECT_EQ(kestrin_display::ConvertToArgb(facts, bytes).At(0, 0), conversion.argb)
            << kestrin_display::FormatName(conversion.format);
    }
}

TEST(UseScreenFile, SetsDirectFBsArguments)
{
    unsetenv("DFBARGS");
    EXPECT_EQ(kestrin_display::UseScreenFile("/tmp/a-screen", 720, 576),
              kestrin_display::SetupResult::Applied);
    const char* arguments = getenv("DFBARGS");
    EXPECT_THAT(arguments, HasSubstr("system=kestrin_screen,"));
    EXPECT_THAT(arguments, HasSubstr(",fbdev=/tmp/a-screen,mode=720x576,"));
}

TEST(UseScreenFile, EndsWithOptionsOfTheEnvironment)
{
    unsetenv("KESTRIN_DISPLAY_OPTIONS");
    const std::string arguments = kestrin_display::ScreenFileArguments("/tmp/a-screen", 720, 576);
    setenv("KESTRIN_DISPLAY_OPTIONS", "no-hardware,debug", 1);
    EXPECT_EQ(kestrin_display::ScreenFileArguments("/tmp/a-screen", 720, 576),
              arguments + ",no-hardware,debug");
    setenv("KESTRIN_DISPLAY_OPTIONS", "", 1);
    EXPECT_EQ(kestrin_display::ScreenFileArguments("/tmp/a-screen", 720, 576), arguments);
}

TEST(UseScreenFile, LeavesTheUsersArgumentsAlone)
{
    setenv("DFBARGS", "system=x11", 1);
    EXPECT_EQ(kestrin_display::UseScreenFile("/tmp/a-screen", 720, 576),
              kestrin_display::SetupResult::KeptUserArguments);
    EXPECT_STREQ(getenv("DFBARGS"), "system=x11");
}

TEST(UseScreenFile, RefusesWhatDirectFBCannotTake)
{
    unsetenv("DFBARGS");
    EXPECT_THROW(kestrin_display::UseScreenFile("/tmp/a,b", 720, 576), std::invalid_argument);
    EXPECT_THROW(kestrin_display::UseScreenFile("/tmp/a", 0, 576), std::invalid_argument);
    EXPECT_THROW(kestrin_display::UseScreenFile("/tmp/a", 720, 4097), std::invalid_argument);
    EXPECT_THROW(kestrin_display::UseScreenFile("/nowhere/screen", 720, 576), std::runtime_error);
    EXPECT_EQ(getenv("DFBARGS"), nullptr);
}

TEST(DefaultScreenFile, FollowsTheRuntimeDirectory)
{
    setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
    EXPECT_EQ(kestrin_display::DefaultScreenFile(), "/run/user/7/kestrin-screen");
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(kestrin_display::DefaultScreenFile(),
              "/tmp/kestrin-screen-" + std::to_string(getuid()));
}

} // namespace
