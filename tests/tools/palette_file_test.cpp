/**
 * Palettes in files, and what the engine makes of the same files.
 */
#include "palette_file.h"

#include "DFB/color_util.h"
#include "engine_palette.h"
#include "temp_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::TempDirectory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using namespace kestrin_tools;

namespace {

/** A palette in which every byte of the file is another than its neighbours. */
Palette Ramp()
{
    Palette palette = {};
    for (std::uint32_t i = 0; i < palette.size(); ++i)
        palette[i] = (255 - i) << 24 | i << 16 | (i ^ 0x55) << 8 | (i * 7 & 0xff);
    return palette;
}

Palette ColoursOf(zelxxx::IPalette* held)
{
    const zelxxx::ZELObjPtr<zelxxx::IPalette> palette(held);
    Palette colours = {};
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const auto index = static_cast<zelxxx::UInt8>(i);
        colours[i] = std::uint32_t{held->GetColorBlending(index)} << 24 |
                     std::uint32_t{held->GetColorRed(index)} << 16 |
                     std::uint32_t{held->GetColorGreen(index)} << 8 | held->GetColorBlue(index);
    }
    return colours;
}

std::string ErrorOf(const std::string& path, GimpPalette (*read)(const std::string&))
{
    try {
        read(path);
    } catch (const PaletteError& error) {
        return error.what();
    }
    return {};
}

class PaletteFile : public testing::Test
{
protected:
    std::string Gpl(const std::string& content) const { return files.Write("a.gpl", content); }
    std::string GplError(const std::string& content) const
    {
        return ErrorOf(Gpl(content), ReadGimpPalette);
    }

    const TempDirectory files;
};

TEST_F(PaletteFile, FixedPaletteIsTheEnginesOwn)
{
    const Palette fixed = FixedPalette();
    for (int i = 0; i < zelxxx::kMhegColorCount; ++i)
        EXPECT_EQ(fixed[static_cast<std::size_t>(i)],
                  zelxxx::MhegPaletteWord(static_cast<zelxxx::UInt8>(i)) ^ 0xFF000000)
            << i;
    for (std::size_t i = zelxxx::kMhegColorCount; i < fixed.size(); ++i)
        EXPECT_EQ(fixed[i], 0u) << i;
}

TEST_F(PaletteFile, EngineReadsWhatIsPacked)
{
    const std::string path = files.Write("ramp.pal", PackPalette(Ramp()));
    EXPECT_EQ(ColoursOf(zelxxx::zelCreatePalette(path.c_str())), Ramp());
    EXPECT_EQ(ReadPalette(path), Ramp());
}

TEST_F(PaletteFile, PalettesForTheEngineHaveTheSameColours)
{
    EXPECT_EQ(ColoursOf(CreatePalette(Ramp())), Ramp());
}

TEST_F(PaletteFile, ShortFileIsTakenAsTheEngineTakesIt)
{
    for (const std::size_t size : {0, 1, 3, 512, 513, 1023}) {
        const std::string path = files.Write("short.pal", PackPalette(Ramp()).substr(0, size));
        const PaletteReport report = InspectPalette(path);
        EXPECT_EQ(report.palette, ColoursOf(zelxxx::zelCreatePalette(path.c_str()))) << size;
        EXPECT_EQ(report.damage.size(), size % 4 == 0 ? 1u : 2u) << size;
    }
    EXPECT_THAT(InspectPalette(files.Write("short.pal", PackPalette(Ramp()).substr(0, 513))).damage,
                ElementsAre("it has 513 bytes instead of 1024: the colours from index 129 on are "
                            "transparent black",
                            "it ends within the colour of index 128"));
}

TEST_F(PaletteFile, LongFileIsDamaged)
{
    const std::string path = files.Write("long.pal", PackPalette(Ramp()) + "x");
    EXPECT_EQ(InspectPalette(path).palette, Ramp());
    EXPECT_THAT(InspectPalette(path).damage, ElementsAre(HasSubstr("1025 bytes")));
    EXPECT_THROW(ReadPalette(path), PaletteError);
}

TEST_F(PaletteFile, MissingFileAndDirectoryAreErrorsThatNameThem)
{
    for (const std::string& path : {files.Path("none.pal"), files.Path("")}) {
        try {
            InspectPalette(path);
            ADD_FAILURE() << path;
        } catch (const PaletteError& error) {
            EXPECT_THAT(error.what(), StartsWith(path + ": "));
        }
    }
}

TEST_F(PaletteFile, GimpPaletteHasNamesCommentsAndColoursOfAnyWidth)
{
    const GimpPalette gimp = ReadGimpPalette(
        Gpl("GIMP Palette\r\nName:  Evening sky\nColumns: 3\n#\n# a remark\n\n"
            "  0   0   0\tBlack\n255 128 0 Orange peel # 2\n\t12\t34\t56\r\n1 2 3"));
    EXPECT_EQ(gimp.name, "Evening sky");
    EXPECT_EQ(gimp.count, 4);
    EXPECT_EQ(gimp.palette[0], 0xFF000000u);
    EXPECT_EQ(gimp.palette[1], 0xFFFF8000u);
    EXPECT_EQ(gimp.palette[2], 0xFF0C2238u);
    EXPECT_EQ(gimp.palette[3], 0xFF010203u);
    EXPECT_EQ(gimp.palette[4], 0u);
}

TEST_F(PaletteFile, GimpPalettesBadLinesAreNamed)
{
    const std::string head = "GIMP Palette\nName: x\n";
    for (const char* bad :
         {"256 0 0", "-1 0 0", "1 2", "1 2 3x", "1,2,3", "red", "1 2 1e9", "99999999999 0 0"}) {
        EXPECT_THAT(GplError(head + "1 2 3\n" + bad + "\n"),
                    HasSubstr("a.gpl: line 4 is no colour: \"" + std::string(bad) + "\""));
    }
    EXPECT_THAT(GplError(head), HasSubstr("has no colour"));
    EXPECT_THAT(GplError(""), HasSubstr("line 1 is not"));
    EXPECT_THAT(GplError("JASC-PAL\n"), HasSubstr("line 1 is not"));
}

TEST_F(PaletteFile, GimpPaletteHasAtMost256Colours)
{
    std::string content = "GIMP Palette\n";
    for (int i = 0; i < 256; ++i)
        content += "1 2 3\n";
    EXPECT_EQ(ReadGimpPalette(Gpl(content)).count, 256);
    EXPECT_THAT(GplError(content + "1 2 3\n"), HasSubstr("line 258 is a colour too many"));
}

TEST_F(PaletteFile, GimpPaletteIsKnownByItsFirstLine)
{
    EXPECT_TRUE(IsGimpPalette(Gpl("GIMP Palette\n")));
    EXPECT_FALSE(IsGimpPalette(Gpl("GIMP")));
    EXPECT_FALSE(IsGimpPalette(files.Path("none.gpl")));
}

} // namespace
