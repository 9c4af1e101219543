#include "dla_sketch.h"

#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using testing::ElementsAre;

namespace {

/** The picture of one call of DLA_Line. */
std::vector<std::string> LineIn(int buffer_width, int buffer_height, S_POINT from, S_POINT to,
                                U16BIT width)
{
    const DlaSketch sketch(buffer_width, buffer_height);
    EXPECT_TRUE(DLA_Line(from.x, from.y, to.x, to.y, width, '*'));
    return sketch.Rows();
}

TEST(DlaLine, WidthZeroDrawsNothing)
{
    EXPECT_THAT(LineIn(4, 2, {0, 0}, {3, 1}, 0), ElementsAre("....", "...."));
}

TEST(DlaThinLine, BothEndsAreOnIt)
{
    EXPECT_THAT(LineIn(6, 1, {1, 0}, {4, 0}, 1), ElementsAre(".****."));
    EXPECT_THAT(LineIn(6, 1, {4, 0}, {1, 0}, 1), ElementsAre(".****."));
    EXPECT_THAT(LineIn(1, 5, {0, 3}, {0, 1}, 1), ElementsAre(".", "*", "*", "*", "."));
    EXPECT_THAT(LineIn(3, 1, {1, 0}, {1, 0}, 1), ElementsAre(".*."));
}

TEST(DlaThinLine, ATieSteps)
{
    EXPECT_THAT(LineIn(3, 2, {0, 0}, {2, 1}, 1), ElementsAre("*..", ".**"));
    EXPECT_THAT(LineIn(3, 2, {0, 1}, {2, 0}, 1), ElementsAre(".**", "*.."));
}

// So that the direction does not matter, and a tie steps away from the smaller major coordinate.
TEST(DlaThinLine, StartsAtTheSmallerMajorCoordinate)
{
    EXPECT_THAT(LineIn(3, 2, {2, 1}, {0, 0}, 1), ElementsAre("*..", ".**"));
    EXPECT_THAT(LineIn(2, 3, {1, 2}, {0, 0}, 1), ElementsAre("*.", ".*", ".*"));
}

TEST(DlaThinLine, EqualExtentsAreADiagonal)
{
    EXPECT_THAT(LineIn(4, 4, {0, 3}, {3, 0}, 1), ElementsAre("...*", "..*.", ".*..", "*..."));
}

TEST(DlaThinLine, SteepOnesHaveAPixelARow)
{
    EXPECT_THAT(LineIn(3, 6, {2, 0}, {0, 5}, 1),
                ElementsAre("..*", "..*", ".*.", ".*.", "*..", "*.."));
}

TEST(DlaThinLine, WhollyBesideTheBufferNothing)
{
    const DlaSketch sketch(10, 10);
    DLA_Line(-5, 2, -1, 8, 1, '*');
    DLA_Line(10, 2, 15, 8, 1, '*');
    DLA_Line(2, -5, 8, -1, 1, '*');
    DLA_Line(2, 10, 8, 15, 1, '*');
    DLA_Line(-1, 3, -1, 3, 1, '*');
    DLA_Line(-8, 4, 4, -9, 1, '*'); // past the corner
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaThinLine, StraightOnesAreClampedToTheBuffer)
{
    EXPECT_THAT(LineIn(4, 3, {-32768, 1}, {32767, 1}, 1), ElementsAre("....", "****", "...."));
    EXPECT_THAT(LineIn(4, 3, {2, 32767}, {2, -32768}, 1), ElementsAre("..*.", "..*.", "..*."));
}

// Between the clipped ends, (0, 1) and (8, 5): the whole line would pass through other pixels.
TEST(DlaThinLine, ClippedEndsAreJoinedAnew)
{
    EXPECT_THAT(LineIn(9, 7, {-3, 0}, {10, 6}, 1), ElementsAre(".........", //
                                                               "*........", //
                                                               ".**......", //
                                                               "...**....", //
                                                               ".....**..", //
                                                               ".......**", //
                                                               "........."));
}

TEST(DlaThinLine, AcrossTheWholePlane)
{
    const DlaSketch sketch(5, 5);
    EXPECT_TRUE(DLA_Line(-32768, -32768, 32767, 32767, 1, '*'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("*....", ".*...", "..*..", "...*.", "....*"));
    EXPECT_TRUE(DLA_Line(32767, -32768, -32768, 32767, 1, '-'));
    EXPECT_EQ(sketch.At(0, 0), '*');
}

TEST(DlaThinLine, ToTheLastColumnAndRowThatCanBeNamed)
{
    std::vector<U32BIT> row(32768);
    ASSERT_TRUE(DLA_Init(row.data(), 32768, 1));
    EXPECT_TRUE(DLA_Line(0, 0, 32767, 0, 1, '*'));
    EXPECT_EQ(std::count(row.begin(), row.end(), U32BIT{'*'}), 32768);

    ASSERT_TRUE(DLA_Init(row.data(), 1, 32768));
    EXPECT_TRUE(DLA_Line(0, 32767, 0, 0, 1, '-'));
    EXPECT_EQ(std::count(row.begin(), row.end(), U32BIT{'-'}), 32768);

    std::vector<U32BIT> rows(2 * 32768);
    ASSERT_TRUE(DLA_Init(rows.data(), 32768, 2));
    EXPECT_TRUE(DLA_Line(32767, 1, 0, 0, 1, '*'));
    ASSERT_TRUE(DLA_Init(rows.data(), 2, 32768));
    EXPECT_TRUE(DLA_Line(1, 32767, 0, 0, 1, '*'));
    EXPECT_EQ(rows.back(), U32BIT{'*'});
    dla_info = DLA_INFO();
}

// By the error term that a line is defined with.
TEST(DlaThinLine, TheLongestOnesAreExact)
{
    std::vector<U32BIT> pixels(32768 * 40);
    for (const int length : {32767, 32766, 16384}) {
        for (const int climb : {1, 2, 7, 38, 39}) {
            std::fill(pixels.begin(), pixels.end(), 0);
            ASSERT_TRUE(DLA_Init(pixels.data(), 40, 32768));
            EXPECT_TRUE(
                DLA_Line(0, 0, static_cast<S16BIT>(climb), static_cast<S16BIT>(length), 1, 1));
            int error = 0;
            int column = 0;
            for (int row = 0; row <= length; ++row) {
                ASSERT_EQ(pixels[static_cast<std::size_t>(row * 40 + column)], 1U)
                    << row << " of " << length << ", " << climb;
                error += climb;
                if (2 * error >= length) {
                    ++column;
                    error -= length;
                }
            }
            EXPECT_EQ(std::count(pixels.begin(), pixels.end(), U32BIT{1}), length + 1);
        }
    }
    dla_info = DLA_INFO();
}

TEST(DlaThickLine, AnEvenWidthReachesFurtherUpAndLeft)
{
    const DlaSketch sketch(30, 30);
    EXPECT_TRUE(DLA_Line(10, 10, 20, 10, 2, '*'));
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 30; ++x)
            EXPECT_EQ(sketch.At(x, y) == '*', (y == 9 || y == 10) && x >= 10 && x <= 20);
    EXPECT_THAT(LineIn(4, 3, {2, 0}, {2, 2}, 2), ElementsAre(".**.", ".**.", ".**."));
}

TEST(DlaThickLine, StraightOnesHaveSquareEnds)
{
    EXPECT_THAT(LineIn(6, 5, {4, 2}, {1, 2}, 3),
                ElementsAre("......", ".****.", ".****.", ".****.", "......"));
    EXPECT_THAT(LineIn(5, 4, {2, 1}, {2, 2}, 5), ElementsAre(".....", "*****", "*****", "....."));
}

TEST(DlaThickLine, APointIsABarAcross)
{
    EXPECT_THAT(LineIn(7, 3, {3, 1}, {3, 1}, 5), ElementsAre(".......", ".*****.", "......."));
}

// A line of 10 by 5 has the length 11.45; a width of 4 moves the corners by (2, 3).
TEST(DlaThickLine, SlantingOnesAreQuadrilaterals)
{
    const DlaSketch line(20, 20);
    EXPECT_TRUE(DLA_Line(4, 5, 14, 10, 6, '*'));
    const DlaSketch polygon(20, 20);
    S_POINT points[] = {{5, 2}, {3, 8}, {13, 13}, {15, 7}};
    FillPolygon(points, 4, '*');
    EXPECT_EQ(line.Rows(), polygon.Rows());
    EXPECT_GT(line.Count('*'), 40);
}

TEST(DlaThickLine, RisingOnesLeanTheOtherWay)
{
    const DlaSketch line(20, 20);
    EXPECT_TRUE(DLA_Line(4, 10, 14, 5, 6, '*'));
    const DlaSketch polygon(20, 20);
    S_POINT points[] = {{3, 7}, {5, 13}, {15, 8}, {13, 2}};
    FillPolygon(points, 4, '*');
    EXPECT_EQ(line.Rows(), polygon.Rows());
    EXPECT_GT(line.Count('*'), 40);
}

TEST(DlaThickLine, BesideTheBufferNothing)
{
    const DlaSketch sketch(10, 10);
    // Width 5 reaches two pixels, width 4 two to the left and one to the right.
    DLA_Line(-3, 0, -3, 9, 5, '*');
    DLA_Line(-2, 0, -2, 9, 4, '*');
    DLA_Line(12, 0, 12, 9, 5, '*');
    DLA_Line(0, -3, 9, -3, 5, '*');
    DLA_Line(0, 12, 9, 12, 4, '*');
    EXPECT_TRUE(sketch.IsBlank());
    DLA_Line(11, 0, 11, 0, 4, '*');
    EXPECT_EQ(sketch.Count('*'), 1);
}

// The test comes first: of a slanting line only rows and columns near its own count.
TEST(DlaThickLine, SlantingOnesBesideTheBufferAreDroppedBeforeTheyAreMade)
{
    const DlaSketch sketch(10, 10);
    EXPECT_TRUE(DLA_Line(-30, 0, -21, 9, 40, '*')); // reaches column -2
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaThickLine, SidesWrapTo16Bits)
{
    const DlaSketch sketch(10, 3);
    EXPECT_TRUE(DLA_Line(0, 0, 0, 2, 65535, '*'));
    EXPECT_EQ(sketch.Count('*'), 30);
    // The right side, 32768, wraps to the left of the left side.
    EXPECT_TRUE(DLA_Line(1, 0, 1, 2, 65535, '-'));
    EXPECT_EQ(sketch.Count('-'), 0);
}

// 32 bits would not hold the products; the middle lies on the line all the same.
TEST(DlaThickLine, ExtremesKeepTheirPlace)
{
    const DlaSketch sketch(21, 21);
    EXPECT_TRUE(DLA_Line(-32000, -32010, 32020, 32010, 5, '*'));
    EXPECT_EQ(sketch.At(15, 5), '*');
    EXPECT_EQ(sketch.At(2, 18), '.');
    EXPECT_EQ(sketch.At(18, 2), '.');
}

TEST(DlaThickLine, TheSignOfLargeExtentsIsRight)
{
    const DlaSketch sketch(21, 21);
    EXPECT_TRUE(DLA_Line(-32000, 32010, 32020, -32010, 5, '*'));
    EXPECT_EQ(sketch.At(5, 5), '*');
    EXPECT_EQ(sketch.At(2, 2), '.');
    EXPECT_EQ(sketch.At(18, 18), '.');
}

} // namespace
