#include "DFB/palette.h"

#include "temp_directory.h"

#include <array>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

using namespace zelxxx;
using kestrin_test::TempDirectory;

namespace {

/** 0xAARRGGBB of an entry, through the interface. */
UInt32 EntryOf(IPalette& palette, int index)
{
    const auto i = static_cast<UInt8>(index);
    return static_cast<UInt32>(palette.GetColorBlending(i)) << 24 |
           static_cast<UInt32>(palette.GetColorRed(i)) << 16 |
           static_cast<UInt32>(palette.GetColorGreen(i)) << 8 | palette.GetColorBlue(i);
}

/** A file whose byte number n is n + n / 256, so that no two records are alike. */
std::string FileBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    for (std::size_t n = 0; n < count; ++n)
        bytes[n] = static_cast<char>(n + n / 256);
    return bytes;
}

/** The record that a complete file of FileBytes has at an index. */
UInt32 RecordOf(int index)
{
    const std::string bytes = FileBytes(1024);
    UInt32 record = 0;
    for (int channel = 0; channel < 4; ++channel)
        record = record << 8 | static_cast<UInt8>(bytes[4 * index + channel]);
    return record;
}

TEST(Palette, TableEntriesEndWithTheirOpacity)
{
    std::array<PaletteEntry, 256> table = {};
    for (int i = 0; i < 256; ++i)
        table[i] = {static_cast<UInt8>(i), static_cast<UInt8>(255 - i),
                    static_cast<UInt8>(i ^ 0x55), static_cast<UInt8>(i * 3)};
    const ZELObjPtr<IPalette> palette(zelCreatePalette(table.data()));
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(palette->GetColorRed(static_cast<UInt8>(i)), table[i].red);
        EXPECT_EQ(palette->GetColorGreen(static_cast<UInt8>(i)), table[i].green);
        EXPECT_EQ(palette->GetColorBlue(static_cast<UInt8>(i)), table[i].blue);
        EXPECT_EQ(palette->GetColorBlending(static_cast<UInt8>(i)), table[i].blending);
    }
}

TEST(Palette, TableIsCopied)
{
    std::array<PaletteEntry, 256> table = {};
    table[7] = {1, 2, 3, 4};
    const ZELObjPtr<IPalette> palette(zelCreatePalette(table.data()));
    table[7] = {9, 9, 9, 9};
    EXPECT_EQ(EntryOf(*palette, 7), 0x04010203U);
}

TEST(Palette, FactoryHandsItOutWithoutAReference)
{
    IPalette* palette = zelCreatePalette(nullptr);
    EXPECT_EQ(palette->Hold(), 1);
    EXPECT_EQ(palette->Release(), 0);
}

TEST(Palette, AlwaysHas256Colours)
{
    const ZELObjPtr<IPalette> palette(zelCreatePalette(nullptr));
    EXPECT_EQ(palette->GetColorCount(), 256);
}

TEST(Palette, WithoutATableEveryColourIsTransparentBlack)
{
    const ZELObjPtr<IPalette> palette(zelCreatePalette(nullptr));
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(EntryOf(*palette, i), 0U) << i;
}

TEST(Palette, FileRecordsBeginWithTheirOpacity)
{
    const TempDirectory directory;
    Palette palette(directory.Write("palette", FileBytes(1024)).c_str());
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(EntryOf(palette, i), RecordOf(i)) << i;
}

TEST(Palette, ShortFileLeavesTheRestTransparentBlack)
{
    const TempDirectory directory;
    Palette palette(directory.Write("palette", FileBytes(512)).c_str());
    EXPECT_EQ(EntryOf(palette, 127), RecordOf(127));
    for (int i = 128; i < 256; ++i)
        EXPECT_EQ(EntryOf(palette, i), 0U) << i;
}

TEST(Palette, FileThatEndsInARecordSetsTheChannelsItHas)
{
    const TempDirectory directory;
    Palette palette(directory.Write("palette", FileBytes(4 * 10 + 2)).c_str());
    EXPECT_EQ(EntryOf(palette, 10), RecordOf(10) & 0xffff0000U);
    EXPECT_EQ(EntryOf(palette, 11), 0U);
}

TEST(Palette, BytesBehindTheLastRecordAreNotRead)
{
    const TempDirectory directory;
    Palette palette(directory.Write("palette", FileBytes(5000)).c_str());
    EXPECT_EQ(EntryOf(palette, 0), RecordOf(0));
    EXPECT_EQ(EntryOf(palette, 255), RecordOf(255));
}

TEST(Palette, FileThatCannotBeReadGivesAnAvailablePaletteWithoutColours)
{
    const TempDirectory directory;
    for (const std::string& name :
         {directory.Path("missing"), directory.Path(""), directory.Write("empty", "")}) {
        Palette palette(name.c_str());
        EXPECT_TRUE(palette.IsAvailable()) << name;
        for (int i = 0; i < 256; ++i)
            EXPECT_EQ(EntryOf(palette, i), 0U) << name << ' ' << i;
    }
}

TEST(Palette, ColoursAreInDirectFbsLayout)
{
    const TempDirectory directory;
    Palette palette(directory.Write("palette", FileBytes(1024)).c_str());
    const std::string bytes = FileBytes(1024);
    static_assert(sizeof(DFBColor) == 4, "a record of the file is a colour of DirectFB");
    EXPECT_EQ(std::memcmp(palette.GetColors(), bytes.data(), bytes.size()), 0);
}

} // namespace
