#include "dla_sketch.h"

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using testing::ElementsAre;

namespace {

TEST(DlaDisc, WidthZeroDrawsNothing)
{
    const DlaSketch sketch(5, 5);
    FillCircle(2, 2, 0, '*');
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaDisc, WidthOneIsAPixel)
{
    const DlaSketch sketch(3, 3);
    FillCircle(1, 1, 1, '*');
    EXPECT_THAT(sketch.Rows(), ElementsAre("...", ".*.", "..."));
}

TEST(DlaDisc, WidthTwoLiesLeftOfAndAboveItsCentre)
{
    const DlaSketch sketch(5, 5);
    FillCircle(2, 2, 2, '*');
    EXPECT_THAT(sketch.Rows(), ElementsAre(".....", //
                                           ".**..", //
                                           ".**..", //
                                           ".....", //
                                           "....."));
}

// The rows above and below would have one pixel.
TEST(DlaDisc, WidthThreeIsItsCentreRow)
{
    const DlaSketch sketch(5, 5);
    FillCircle(2, 2, 3, '*');
    EXPECT_THAT(sketch.Rows(), ElementsAre(".....", //
                                           ".....", //
                                           ".***.", //
                                           ".....", //
                                           "....."));
}

TEST(DlaDisc, AnOddWidthIsCentred)
{
    const DlaSketch sketch(9, 9);
    FillCircle(4, 4, 7, '*');
    EXPECT_THAT(sketch.Rows(), ElementsAre(".........", //
                                           "...***...", //
                                           "..*****..", //
                                           ".*******.", //
                                           ".*******.", //
                                           ".*******.", //
                                           "..*****..", //
                                           "...***...", //
                                           "........."));
}

TEST(DlaDisc, AnEvenWidthCoversAsManyRowsAndColumns)
{
    const DlaSketch sketch(9, 9);
    FillCircle(4, 4, 6, '*');
    EXPECT_THAT(sketch.Rows(), ElementsAre(".........", //
                                           "...**....", //
                                           "..****...", //
                                           ".******..", //
                                           ".******..", //
                                           "..****...", //
                                           "...**....", //
                                           ".........", //
                                           "........."));
}

TEST(DlaDisc, ARowClippedToOnePixelIsNotDrawn)
{
    const DlaSketch sketch(9, 9);
    FillCircle(-2, 4, 6, '*'); // columns -5 to 0
    EXPECT_TRUE(sketch.IsBlank());
    FillCircle(-1, 4, 6, '*');                          // columns -4 to 1
    EXPECT_THAT(sketch.Rows(), ElementsAre(".........", //
                                           ".........", //
                                           ".........", //
                                           "**.......", //
                                           "**.......", //
                                           ".........", //
                                           ".........", //
                                           ".........", //
                                           "........."));
}

TEST(DlaDisc, ButTheCentreRowOfAnOddWidthIs)
{
    const DlaSketch sketch(9, 5);
    FillCircle(-3, 2, 7, '*');
    EXPECT_THAT(sketch.Rows(), ElementsAre(".........", //
                                           ".........", //
                                           "*........", //
                                           ".........", //
                                           "........."));
}

TEST(DlaDisc, ACentreRowOutsideTheBufferIsNotDrawn)
{
    const DlaSketch sketch(9, 3);
    FillCircle(4, -2, 7, '*');
    FillCircle(4, 4, 7, '-');
    EXPECT_THAT(sketch.Rows(), ElementsAre("..*****..", //
                                           "...---...", //
                                           "..-----.."));
}

TEST(DlaDisc, OutsideTheBufferNothing)
{
    const DlaSketch sketch(9, 9);
    FillCircle(-4, 4, 7, '*');
    FillCircle(12, 4, 7, '*');
    FillCircle(4, -4, 7, '*');
    FillCircle(4, 12, 7, '*');
    FillCircle(-32768, -32768, 65535, '*');
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaDisc, TheLargestCoversTheBuffer)
{
    for (const U16BIT width : {65534, 65535}) {
        const DlaSketch sketch(9, 9);
        FillCircle(4, 4, width, '*');
        EXPECT_EQ(sketch.Count('*'), 81) << width;
    }
}

} // namespace
