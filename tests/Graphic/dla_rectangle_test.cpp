#include "dla_sketch.h"

#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using testing::Each;
using testing::ElementsAre;

namespace {

TEST(DlaRectangle, RightAndBottomAreExclusive)
{
    const DlaSketch sketch(6, 5);
    EXPECT_TRUE(DLA_Rectangle(1, 1, 5, 4, 0, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("......", //
                                           ".ffff.", //
                                           ".ffff.", //
                                           ".ffff.", //
                                           "......"));
}

TEST(DlaRectangle, TheOutlineLiesOnTheOutermostPixels)
{
    const DlaSketch sketch(6, 5);
    EXPECT_TRUE(DLA_Rectangle(1, 0, 6, 4, 1, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre(".lllll", //
                                           ".lfffl", //
                                           ".lfffl", //
                                           ".lllll", //
                                           "......"));
}

TEST(DlaRectangle, AWideOutlineHasDiscsAtItsCorners)
{
    const DlaSketch sketch(14, 12);
    EXPECT_TRUE(DLA_Rectangle(3, 3, 11, 9, 5, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("..............", //
                                           "..llllllllll..", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           ".llllllllllll.", //
                                           "..llllllllll..", //
                                           ".............."));
}

TEST(DlaRectangle, OneColumnWide)
{
    const DlaSketch sketch(4, 3);
    EXPECT_TRUE(DLA_Rectangle(2, 0, 3, 3, 0, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), Each("..f."));
}

TEST(DlaRectangle, AnEmptyOneDrawsNotEvenTheOutline)
{
    const DlaSketch sketch(8, 8);
    EXPECT_TRUE(DLA_Rectangle(2, 2, 2, 6, 3, 'f', 'l'));
    EXPECT_TRUE(DLA_Rectangle(2, 2, 6, 2, 3, 'f', 'l'));
    EXPECT_TRUE(DLA_Rectangle(6, 2, 2, 6, 3, 'f', 'l'));
    EXPECT_TRUE(DLA_Rectangle(2, 6, 6, 2, 3, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaRectangle, IsClippedToTheBuffer)
{
    const DlaSketch sketch(4, 3);
    EXPECT_TRUE(DLA_Rectangle(-32768, -32768, 32767, 32767, 1, 'f', 'l'));
    EXPECT_EQ(sketch.Count('f'), 12);
    EXPECT_TRUE(DLA_Rectangle(2, 1, 32767, 32767, 1, 'g', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("ffff", "ffll", "fflg"));
}

TEST(DlaRectangle, OutsideTheBufferNothing)
{
    const DlaSketch sketch(4, 3);
    EXPECT_TRUE(DLA_Rectangle(-5, 0, 0, 3, 0, 'f', 'l'));
    EXPECT_TRUE(DLA_Rectangle(4, 0, 9, 3, 0, 'f', 'l'));
    EXPECT_TRUE(DLA_Rectangle(0, -5, 4, 0, 0, 'f', 'l'));
    EXPECT_TRUE(DLA_Rectangle(0, 3, 4, 9, 0, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaSimpleRectangle, CornersAreInclusive)
{
    const DlaSketch sketch(4, 3);
    FillSimpleRectangle(1, 1, 2, 1, 'f');
    EXPECT_THAT(sketch.Rows(), ElementsAre("....", ".ff.", "...."));
}

TEST(DlaSimpleRectangle, CornersTheWrongWayRoundDrawNothing)
{
    const DlaSketch sketch(4, 3);
    FillSimpleRectangle(3, 0, 1, 2, 'f');
    FillSimpleRectangle(0, 2, 3, 0, 'f');
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaSimpleRectangle, TheLastCoordinateDoesNotWrap)
{
    std::vector<U32BIT> row(32769);
    ASSERT_TRUE(DLA_Init(row.data(), 32769, 1));
    FillSimpleRectangle(32766, 0, 32767, 32767, '*');
    EXPECT_EQ(row[32765], 0U);
    EXPECT_EQ(row[32766], U32BIT{'*'});
    EXPECT_EQ(row[32767], U32BIT{'*'});
    EXPECT_EQ(row[32768], 0U);
    dla_info = DLA_INFO();
}

TEST(DlaBorder, WidthZeroDrawsNothing)
{
    const DlaSketch sketch(4, 3);
    EXPECT_TRUE(DLA_Border(0, '#'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaBorder, WidthOne)
{
    const DlaSketch sketch(5, 4);
    EXPECT_TRUE(DLA_Border(1, '#'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("#####", "#...#", "#...#", "#####"));
}

TEST(DlaBorder, WiderOnesGrowInward)
{
    const DlaSketch sketch(7, 6);
    EXPECT_TRUE(DLA_Border(2, '#'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("#######", //
                                           "#######", //
                                           "##...##", //
                                           "##...##", //
                                           "#######", //
                                           "#######"));
}

TEST(DlaBorder, WiderThanTheBufferFillsIt)
{
    const DlaSketch sketch(7, 6);
    EXPECT_TRUE(DLA_Border(32768, '#'));
    EXPECT_EQ(sketch.Count('#'), 42);
}

// Corners wrap to 16 bits.
TEST(DlaBorder, WiderThan32768DrawsNothing)
{
    const DlaSketch sketch(7, 6);
    EXPECT_TRUE(DLA_Border(32769 + 7, '#'));
    EXPECT_TRUE(DLA_Border(65535, '#'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaBorder, OfABufferOfOnePixel)
{
    const DlaSketch sketch(1, 1);
    EXPECT_TRUE(DLA_Border(1, '#'));
    EXPECT_EQ(sketch.At(0, 0), '#');
    EXPECT_TRUE(DLA_Border(2, '2'));
    EXPECT_EQ(sketch.At(0, 0), '2');
}

TEST(DlaBorder, WidthOneOnBuffersWiderThan32768)
{
    const DlaSketch sketch(40000, 3);
    EXPECT_TRUE(DLA_Border(1, '#'));
    EXPECT_EQ(sketch.Count('#'), 2 * 40000 + 2);
    EXPECT_EQ(sketch.At(39999, 1), '#');
    EXPECT_EQ(sketch.At(39998, 1), '.');
}

TEST(DlaBorder, WidthOneOnBuffersHigherThan32768)
{
    const DlaSketch sketch(3, 40000);
    EXPECT_TRUE(DLA_Border(1, '#'));
    EXPECT_EQ(sketch.Count('#'), 2 * 40000 + 2);
    EXPECT_EQ(sketch.At(1, 39999), '#');
    EXPECT_EQ(sketch.At(1, 39998), '.');
}

} // namespace
