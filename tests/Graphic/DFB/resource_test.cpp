#include "DFB/resource.h"

#include "DFB/font.h"
#include "temp_directory.h"
#include "test_font.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

using namespace zelxxx;
using kestrin_test::kSans;
using kestrin_test::kSerif;
using kestrin_test::TempDirectory;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/** What was printed to standard output. */
template <class Work>
std::string OutputOf(Work work)
{
    testing::internal::CaptureStdout();
    work();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

IFont* Open(IResource& resource, int index)
{
    bool download = true;
    return resource.OpenFont(static_cast<ResIndex>(index), download);
}

/** Tells the fonts apart: the width of "m" in font units. */
Int32 WidthOf(IFont* font)
{
    return font ? font->GetFTNoScaleCharMetricsX('m', 1, FontRegular) : -1;
}

class ResourceTest : public testing::Test
{
protected:
    ResourceTest()
    {
        Font::Initialize();
        std::filesystem::copy_file(kSans, _directory.Path("a.ttf"));
        std::filesystem::copy_file(kSerif, _directory.Path("b.ttf"));
        Font sans(kSans.c_str());
        _sans_width = WidthOf(&sans);
    }

    PResource OpenIndex(const std::string& text) const
    {
        return zelOpenResource(_directory.Write("res.txt", text).c_str());
    }

    TempDirectory _directory;
    Int32 _sans_width = 0;
};

// ---- The index file ----

TEST_F(ResourceTest, EntriesAreTheFilesBesideTheIndexFile)
{
    const PResource resource = OpenIndex("2\nfnt:a.ttf\nfnt:b.ttf\n");
    ASSERT_TRUE(resource);
    EXPECT_EQ(WidthOf(Open(*resource, 1)), _sans_width);
    EXPECT_NE(WidthOf(Open(*resource, 2)), _sans_width);
    EXPECT_GT(WidthOf(Open(*resource, 2)), 0);
}

TEST_F(ResourceTest, FactoryHandsItOutWithoutAReference)
{
    IResource* resource = zelOpenResource(_directory.Write("res.txt", "1\nfnt:a.ttf\n").c_str());
    EXPECT_EQ(resource->Hold(), 1);
    EXPECT_EQ(resource->Release(), 0);
}

TEST_F(ResourceTest, PathWithoutASlashMeansTheCurrentDirectory)
{
    OpenIndex("1\nfnt:a.ttf\n");
    const std::filesystem::path before = std::filesystem::current_path();
    ASSERT_EQ(chdir(_directory.Path("").c_str()), 0);
    const PResource resource(zelOpenResource("res.txt"));
    ASSERT_TRUE(resource);
    EXPECT_EQ(WidthOf(Open(*resource, 1)), _sans_width);
    std::filesystem::current_path(before);
}

TEST_F(ResourceTest, FilesMayLieInDirectoriesBelow)
{
    std::filesystem::create_directory(_directory.Path("fonts"));
    std::filesystem::copy_file(kSans, _directory.Path("fonts/c.ttf"));
    EXPECT_EQ(WidthOf(Open(*OpenIndex("1\nfnt:fonts/c.ttf\n"), 1)), _sans_width);
}

TEST_F(ResourceTest, IndexFileThatCannotBeReadIsNoResource)
{
    EXPECT_EQ(zelOpenResource(_directory.Path("missing").c_str()), nullptr);
    EXPECT_EQ(zelOpenResource(_directory.Path("").c_str()), nullptr);
    EXPECT_EQ(zelOpenResource(_directory.Path(".").c_str()), nullptr);
    EXPECT_EQ(zelOpenResource(""), nullptr);
}

TEST_F(ResourceTest, CountMustBeginWithADigitAndNotBeZero)
{
    for (const char* first : {"", "0\n", "0000\n", "fonts\n", " 2\n", "-1\n", "+2\n", "\n2\n"})
        EXPECT_FALSE(OpenIndex(std::string(first) + "fnt:a.ttf\n")) << first;
}

TEST_F(ResourceTest, WhatFollowsTheCountOnItsLineIsIgnored)
{
    for (const char* first : {"1 font\n", "1:\n", "1.9\n", "0001\r\n", "1x2\n"})
        EXPECT_EQ(WidthOf(Open(*OpenIndex(std::string(first) + "fnt:a.ttf\n"), 1)), _sans_width)
            << first;
}

TEST_F(ResourceTest, OnlyTheExactTypeIsAFont)
{
    for (const char* type : {"font", "fn", "FNT", " fnt", "fnt ", "", "img"})
        EXPECT_EQ(Open(*OpenIndex("1\n" + std::string(type) + ":a.ttf\n"), 1), nullptr) << type;
}

TEST_F(ResourceTest, FieldsEndAtTheFirstSeparatorSoADoubledOneIsAnEmptyFile)
{
    const PResource resource = OpenIndex("1\nfnt::a.ttf\n");
    ASSERT_TRUE(resource);
    EXPECT_THAT(OutputOf([&] { EXPECT_EQ(Open(*resource, 1), nullptr); }), IsEmpty());
}

TEST_F(ResourceTest, FileEndsAtColonCarriageReturnOrLineFeed)
{
    for (const char* rest : {"\n", "\r\n", ":anything\n", "\rjunk\n", ""})
        EXPECT_EQ(WidthOf(Open(*OpenIndex("1\nfnt:a.ttf" + std::string(rest)), 1)), _sans_width)
            << rest;
}

TEST_F(ResourceTest, LineWithoutASeparatorHasATypeAndNoFile)
{
    for (const char* line : {"fnt", "fnt\n", "fnt\r\n", "fnt:\n", "fnt:\r\n", "\n"}) {
        const PResource resource = OpenIndex("1\n" + std::string(line));
        ASSERT_TRUE(resource) << line;
        EXPECT_THAT(OutputOf([&] { EXPECT_EQ(Open(*resource, 1), nullptr); }), IsEmpty()) << line;
    }
}

TEST_F(ResourceTest, EmptyLinesAreEntriesToo)
{
    const PResource resource = OpenIndex("2\n\nfnt:a.ttf\n");
    EXPECT_EQ(Open(*resource, 1), nullptr);
    EXPECT_EQ(WidthOf(Open(*resource, 2)), _sans_width);
}

TEST_F(ResourceTest, EntriesMissingAtTheEndOfTheFileHaveNoFont)
{
    const PResource resource = OpenIndex("2\nfnt:a.ttf");
    EXPECT_EQ(WidthOf(Open(*resource, 1)), _sans_width);
    EXPECT_EQ(Open(*resource, 2), nullptr);
}

TEST_F(ResourceTest, LinesBeyondTheCountAreNotRead)
{
    EXPECT_EQ(Open(*OpenIndex("1\nfnt:a.ttf\nfnt:b.ttf\n"), 2), nullptr);
}

TEST_F(ResourceTest, LongLineIsSplitAfter1023BytesAndItsRestIsTheNextEntry)
{
    // The rest, "fnt:a.ttf", begins exactly where the buffer ends.
    const std::string split = "2\n" + std::string(1023, 'x') + "fnt:a.ttf\nfnt:b.ttf\n";
    const PResource resource = OpenIndex(split);
    EXPECT_EQ(Open(*resource, 1), nullptr);
    EXPECT_EQ(WidthOf(Open(*resource, 2)), _sans_width);

    const std::string whole = "2\n" + std::string(1022, 'x') + "\nfnt:a.ttf\n";
    EXPECT_EQ(WidthOf(Open(*OpenIndex(whole), 2)), _sans_width);
}

TEST_F(ResourceTest, LongFirstLineIsSplitToo)
{
    const std::string text = "1" + std::string(1022, ' ') + "fnt:a.ttf\n";
    EXPECT_EQ(WidthOf(Open(*OpenIndex(text), 1)), _sans_width);
}

TEST_F(ResourceTest, HugeCountsAreServedWithoutHugeMemory)
{
    for (const char* count : {"65535", "65537", "4294967295", "99999999999999999999999999"})
        EXPECT_EQ(WidthOf(Open(*OpenIndex(std::string(count) + "\nfnt:a.ttf\n"), 1)), _sans_width)
            << count;
}

TEST_F(ResourceTest, OnlyTheLow16BitsOfTheCountAreCompared)
{
    const PResource none = OpenIndex("65536\nfnt:a.ttf\nfnt:b.ttf\n");
    ASSERT_TRUE(none);
    EXPECT_EQ(Open(*none, 1), nullptr);
    const PResource one = OpenIndex("65537\nfnt:a.ttf\nfnt:b.ttf\n");
    EXPECT_NE(Open(*one, 1), nullptr);
    EXPECT_EQ(Open(*one, 2), nullptr);
}

TEST_F(ResourceTest, DirectoryOf199CharactersFitsAndOneMoreIsNoResource)
{
    for (const std::size_t length : {199U, 200U, 230U}) {
        // With its slash the directory takes `length` characters.
        const std::string base = _directory.Path("");
        const std::string directory = std::string(length - base.size() - 1, 'd') + '/';
        std::filesystem::create_directory(base + directory);
        std::filesystem::copy_file(kSans, base + directory + "a.ttf");
        ASSERT_EQ((base + directory).size(), length);
        _directory.Write(directory + "res.txt", "1\nfnt:a.ttf\n");
        const PResource resource(zelOpenResource((base + directory + "res.txt").c_str()));
        EXPECT_EQ(resource != nullptr, length < 200) << length;
        if (resource) {
            EXPECT_EQ(WidthOf(Open(*resource, 1)), _sans_width);
        }
    }
}

TEST_F(ResourceTest, NameOfTheIndexFileMayBeLongIfItsDirectoryFits)
{
    const std::string name = _directory.Write(std::string(240, 'n'), "1\nfnt:a.ttf\n");
    const PResource resource(zelOpenResource(name.c_str()));
    ASSERT_TRUE(resource);
    EXPECT_EQ(WidthOf(Open(*resource, 1)), _sans_width);
}

TEST_F(ResourceTest, PathOfManyThousandCharactersIsNoResource)
{
    EXPECT_EQ(zelOpenResource(std::string(100000, 'p').c_str()), nullptr);
    EXPECT_EQ(zelOpenResource(('/' + std::string(100000, 'p') + "/x").c_str()), nullptr);
}

// ---- Fonts ----

TEST_F(ResourceTest, OnlyIndices1And2AreServed)
{
    const PResource resource =
        OpenIndex("5\nfnt:a.ttf\nfnt:b.ttf\nfnt:a.ttf\nfnt:a.ttf\nfnt:a.ttf\n");
    EXPECT_NE(Open(*resource, 1), nullptr);
    EXPECT_NE(Open(*resource, 2), nullptr);
    for (const int index : {0, 3, 4, 5, 65535})
        EXPECT_EQ(Open(*resource, index), nullptr) << index;
}

TEST_F(ResourceTest, DownloadFlagIsClearedForAcceptedIndicesAndElseLeft)
{
    const PResource resource = OpenIndex("1\nfnt:a.ttf\n");
    for (const auto& [index, expected] : {std::pair{1, false}, {2, false}, {0, true}, {3, true}}) {
        bool download = true;
        resource->OpenFont(static_cast<ResIndex>(index), download);
        EXPECT_EQ(download, expected) << index;
    }
}

TEST_F(ResourceTest, FontIsReadOnceAndKept)
{
    const PResource resource = OpenIndex("1\nfnt:a.ttf\n");
    IFont* font = Open(*resource, 1);
    ASSERT_NE(font, nullptr);
    std::filesystem::remove(_directory.Path("a.ttf"));
    EXPECT_EQ(Open(*resource, 1), font);
    EXPECT_EQ(WidthOf(font), _sans_width);
}

TEST_F(ResourceTest, ResourceHoldsOneReferenceAndTheCallerNone)
{
    const PResource resource = OpenIndex("1\nfnt:a.ttf\n");
    IFont* font = Open(*resource, 1);
    EXPECT_EQ(font->Hold(), 2);
    EXPECT_EQ(font->Release(), 1);
}

TEST_F(ResourceTest, FontHeldBeyondItsResourceKeepsItsBytes)
{
    PResource resource = OpenIndex("1\nfnt:a.ttf\n");
    const ZELObjPtr<IFont> font(Open(*resource, 1));
    resource = nullptr;
    // Takes over the memory of the bytes if they were freed.
    const std::vector<std::string> junk(8, std::string(std::filesystem::file_size(kSans), 'x'));
    CharMetrics glyph = {};
    font->GetFTCharMetrics('g', 40, FontRegular, &glyph, 100, 100);
    EXPECT_NE(glyph.buffer, nullptr);
    EXPECT_EQ(WidthOf(font), _sans_width);
}

TEST_F(ResourceTest, MissingFontFileIsPrintedAndTriedAgain)
{
    const PResource resource = OpenIndex("1\nfnt:later.ttf\n");
    const std::string path = _directory.Path("later.ttf");
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Open(*resource, 1), nullptr); }),
              "Failed to open font file " + path + "\n");
    std::filesystem::copy_file(kSans, path);
    EXPECT_EQ(WidthOf(Open(*resource, 1)), _sans_width);
}

TEST_F(ResourceTest, DirectoryNamedAsAFontFileFailsCleanly)
{
    std::filesystem::create_directory(_directory.Path("dir.ttf"));
    const PResource resource = OpenIndex("2\nfnt:dir.ttf\nfnt:a.ttf\n");
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Open(*resource, 1), nullptr); }),
              "Failed to open font file " + _directory.Path("dir.ttf") + "\n");
    EXPECT_EQ(WidthOf(Open(*resource, 2)), _sans_width);
}

TEST_F(ResourceTest, FileThatClaimsMoreThanItGivesIsPrintedAndReadAsFarAsItGoes)
{
    // A file of the kernel whose size is a page and whose content is a few bytes.
    const std::string name = "/sys/kernel/mm/transparent_hugepage/enabled";
    if (!std::filesystem::exists(name))
        GTEST_SKIP() << "no " << name;
    std::filesystem::create_symlink(name, _directory.Path("short.ttf"));
    const PResource resource = OpenIndex("1\nfnt:short.ttf\n");
    IFont* font = nullptr;
    EXPECT_EQ(OutputOf([&] { font = Open(*resource, 1); }),
              "Failed to read  font file " + _directory.Path("short.ttf") + "\n");
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(WidthOf(font), 0);
}

TEST_F(ResourceTest, FileThatCannotBeMeasuredIsPrinted)
{
    // A sparse file longer than a signed number.
    const std::string name = _directory.Write("huge.ttf", "");
    std::filesystem::resize_file(name, std::uintmax_t{3} << 30);
    const PResource resource = OpenIndex("1\nfnt:huge.ttf\n");
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Open(*resource, 1), nullptr); }),
              "Failed to read  font file " + name + "\n");
}

TEST_F(ResourceTest, FileThatIsNoFontIsABlankFont)
{
    _directory.Write("text.ttf", "not a font");
    _directory.Write("empty.ttf", "");
    const PResource resource = OpenIndex("2\nfnt:text.ttf\nfnt:empty.ttf\n");
    for (const int index : {1, 2}) {
        IFont* font = Open(*resource, index);
        ASSERT_NE(font, nullptr);
        EXPECT_EQ(WidthOf(font), 0);
        EXPECT_EQ(font->GetFTYOffsetTop(100), 0);
    }
}

// ---- Fonts in memory ----

std::string BytesOf(const std::string& name)
{
    std::string bytes(std::filesystem::file_size(name), '\0');
    std::FILE* file = std::fopen(name.c_str(), "rb");
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    std::fclose(file);
    return bytes;
}

TEST_F(ResourceTest, MemoryFontAnswersBothIndicesAsDownloaded)
{
    const std::string bytes = BytesOf(kSans);
    const PResource resource(zelOpenResource("sans", bytes.data(), static_cast<int>(bytes.size())));
    for (const int index : {1, 2}) {
        bool download = false;
        IFont* font = resource->OpenFont(static_cast<ResIndex>(index), download);
        EXPECT_TRUE(download);
        EXPECT_EQ(WidthOf(font), _sans_width);
        EXPECT_EQ(font, Open(*resource, 1));
    }
    for (const int index : {0, 3}) {
        bool download = false;
        EXPECT_EQ(resource->OpenFont(static_cast<ResIndex>(index), download), nullptr);
        EXPECT_FALSE(download);
    }
}

TEST_F(ResourceTest, MemoryResourceIsHandedOutAlthoughItIsNotAvailable)
{
    const std::string bytes = BytesOf(kSans);
    Resource resource("sans", bytes.data(), static_cast<int>(bytes.size()));
    EXPECT_FALSE(resource.IsAvailable());
    const PResource blank(zelOpenResource("none", "junk", 4));
    ASSERT_TRUE(blank);
    EXPECT_EQ(WidthOf(Open(*blank, 1)), 0);
}

TEST_F(ResourceTest, MemoryFontIsReleasedWithItsResource)
{
    const std::string bytes = BytesOf(kSans);
    PResource resource(zelOpenResource("sans", bytes.data(), static_cast<int>(bytes.size())));
    const ZELObjPtr<IFont> font(Open(*resource, 1));
    EXPECT_EQ(font->Hold(), 3);
    font->Release();
    resource = nullptr;
    EXPECT_EQ(font->Hold(), 2);
    font->Release();
}

TEST_F(ResourceTest, ManyResourcesComeAndGoWithTheirBytes)
{
    const PResource first = OpenIndex("1\nfnt:b.ttf\n");
    IFont* kept = Open(*first, 1);
    ASSERT_GT(kept->GetFTNoScaleCharMetricsX('R', 1, FontRegular), 0);
    for (int i = 0; i < 40; ++i) {
        const PResource resource = OpenIndex("1\nfnt:a.ttf\n");
        CharMetrics glyph = {};
        Open(*resource, 1)->GetFTCharMetrics('a', 20, FontRegular, &glyph, 100, 100);
        EXPECT_NE(glyph.buffer, nullptr);
    }
    // The cache gave the kept font's face up, and nothing is left to reopen it from.
    EXPECT_EQ(kept->GetFTNoScaleCharMetricsX('Q', 1, FontRegular), 0);
    EXPECT_GT(kept->GetFTYOffsetTop(20), 0);
}

} // namespace
