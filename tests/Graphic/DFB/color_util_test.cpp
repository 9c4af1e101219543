#include "DFB/color_util.h"

#include "color_model.h"
#include "seeded_random.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

using namespace zelxxx;
using namespace kestrin_test;

namespace {

int Blend(int back, int colour)
{
    auto pixel = static_cast<UInt8>(back);
    OSD_BlendPixels(&pixel, static_cast<UInt8>(colour));
    return pixel;
}

// ---- The fixed palette and the nearest colour ----

TEST(MhegPalette, FollowsItsRules)
{
    EXPECT_EQ(MhegPaletteWord(0), 0xff000000U);
    for (int index = 1; index < kMhegColorCount; ++index) {
        const Rgb c = ColourOf(index);
        const UInt32 transparency = index < 49 ? 0x4c : 0;
        const UInt32 word = transparency << 24 | static_cast<UInt32>(c.red) << 16 |
                            static_cast<UInt32>(c.green) << 8 | static_cast<UInt32>(c.blue);
        EXPECT_EQ(MhegPaletteWord(static_cast<UInt8>(index)), word) << index;
    }
}

TEST(MhegPalette, HasTheColoursThatBroadcastersName)
{
    EXPECT_EQ(MhegPaletteWord(1), 0x4c000000U);
    EXPECT_EQ(MhegPaletteWord(48), 0x4cffffffU);
    EXPECT_EQ(MhegPaletteWord(49), 0x002a2a2aU);
    EXPECT_EQ(MhegPaletteWord(52), 0x00d4d4d4U);
    EXPECT_EQ(MhegPaletteWord(53), 0x00000000U);
    EXPECT_EQ(MhegPaletteWord(120), 0x007f7f7fU);
    EXPECT_EQ(MhegPaletteWord(187), 0x00ffffffU);
}

TEST(NearestLevels, AreTheNearestOfEachChannel)
{
    for (int v = 0; v < 256; ++v) {
        const auto value = static_cast<UInt8>(v);
        EXPECT_EQ(GetNearestRed(value), 27 * Nearest(kCubeRed, v)) << v;
        EXPECT_EQ(GetNearestGreen(value), 3 * Nearest(kCubeGreen, v)) << v;
        EXPECT_EQ(GetNearestBlue(value), Nearest(kCubeBlue, v)) << v;
        EXPECT_EQ(GetNearestSemiRed(value), 2 * Nearest(kSemiRed, v)) << v;
        EXPECT_EQ(GetNearestSemiBlue(value), Nearest(kSemiBlue, v)) << v;
        EXPECT_EQ(GetNearestGrey(value), v / 64) << v;
    }
}

TEST(NearestLevels, SemiTransparentGreenRisesEarlyAt72)
{
    for (int v = 0; v < 256; ++v) {
        const bool early = v >= 72 && v <= 76;
        const int level = early ? 2 : Nearest(kSemiGreen, v);
        EXPECT_EQ(GetNearestSemiGreen(static_cast<UInt8>(v)), 8 * level) << v;
    }
}

TEST(FindNearestColourIndex, DarkestMiddleAndLightestGreyBelongToTheCube)
{
    EXPECT_EQ(OSD_FindNearestColourIndex(0xff808080), 120);
    EXPECT_EQ(OSD_FindNearestColourIndex(0xff404040), 50);
    for (UInt32 v = 0; v < 256; ++v) {
        const UInt8 index = OSD_FindNearestColourIndex(0xff000000 | v << 16 | v << 8 | v);
        const bool cube = v < 22 || (v > 105 && v < 149) || v > 232;
        EXPECT_EQ(index >= 53, cube) << v;
        EXPECT_EQ(index,
                  NearestOpaque({static_cast<int>(v), static_cast<int>(v), static_cast<int>(v)}))
            << v;
    }
}

TEST(FindNearestColourIndex, OpacityChoosesTheRange)
{
    EXPECT_EQ(OSD_FindNearestColourIndex(0x10ffffff), 0);
    EXPECT_EQ(OSD_FindNearestColourIndex(0x18ffffff), 0);
    EXPECT_EQ(OSD_FindNearestColourIndex(0x19ffffff), 48);
    EXPECT_EQ(OSD_FindNearestColourIndex(0x80ff0000), 7);
    EXPECT_EQ(OSD_FindNearestColourIndex(0xe6ffffff), 48);
    EXPECT_EQ(OSD_FindNearestColourIndex(0xe7ffffff), 187);
}

TEST(FindNearestColourIndex, PaletteColoursFindThemselves)
{
    for (int index = 1; index < kMhegColorCount; ++index) {
        const UInt32 word = MhegPaletteWord(static_cast<UInt8>(index));
        EXPECT_EQ(OSD_FindNearestColourIndex(word ^ 0xff000000), index);
    }
}

TEST(FindNearestColourIndex, AnyColourAlsoAskedTwiceFindsTheNearest)
{
    SeededRandom random;
    UInt32 colour = 0;
    for (int i = 0; i < 300000; ++i) {
        // Every third question is the one before, which the cache answers.
        if (i % 3 == 1)
            colour = static_cast<UInt32>(random.Between(0, UINT32_MAX));
        else if (i % 3 == 2) // the same colour in another opacity
            colour = (colour & 0xffffff) | static_cast<UInt32>(random.Between(0, 255)) << 24;
        ASSERT_EQ(OSD_FindNearestColourIndex(colour), NearestIndex(colour)) << std::hex << colour;
    }
}

TEST(BlendPixels, AllPairsInRandomOrderMatchTheModel)
{
    SeededRandom random;
    std::vector<int> pairs(256 * 256);
    std::iota(pairs.begin(), pairs.end(), 0);
    std::shuffle(pairs.begin(), pairs.end(), random.Engine());
    for (const int pair : pairs) {
        ASSERT_EQ(Blend(pair >> 8, pair & 255), BlendModel(pair >> 8, pair & 255))
            << (pair & 255) << " over " << (pair >> 8);
    }
}

TEST(BlendPixels, RecentPairsComeBackFromTheCacheUnchanged)
{
    SeededRandom random;
    // Few enough pairs that the two cached ones are asked for again and again, in every order.
    for (int round = 0; round < 1000; ++round) {
        std::array<int, 3> backs;
        std::array<int, 3> colours;
        for (int i = 0; i < 3; ++i) {
            backs[i] = static_cast<int>(random.Between(0, 255));
            colours[i] = static_cast<int>(random.Between(0, 52));
        }
        for (int i = 0; i < 20; ++i) {
            const int back = backs[random.Between(0, 2)];
            const int colour = colours[random.Between(0, 2)];
            ASSERT_EQ(Blend(back, colour), BlendModel(back, colour)) << colour << " over " << back;
        }
    }
}

TEST(BlendPixels, TransparentColourLeavesThePixel)
{
    for (int back = 0; back < 256; ++back)
        EXPECT_EQ(Blend(back, 0), back);
}

TEST(BlendPixels, OverATransparentOrSemiTransparentPixelTheColourReplaces)
{
    for (int back = 0; back < 49; ++back)
        EXPECT_EQ(Blend(back, 7), 7) << back;
}

TEST(BlendPixels, PixelsAboveThePaletteGiveTheColour)
{
    for (int back = 188; back < 256; ++back)
        EXPECT_EQ(Blend(back, 7), 7) << back;
}

TEST(BlendPixels, ColoursAboveThePaletteReplaceLikeOpaqueOnes)
{
    for (int colour = 188; colour < 256; ++colour)
        EXPECT_EQ(Blend(100, colour), colour);
}

TEST(BlendPixels, WhiteOverTheMiddleGreysLeansToTheWhiteSide)
{
    EXPECT_EQ(Blend(50, 48), 51);
    EXPECT_EQ(Blend(51, 48), 187);
}

} // namespace
