#include "dla_sketch.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using kestrin_test::Only;
using testing::ElementsAre;

namespace {

/** A box of a size with a pixel around it, and the ellipse in it. */
std::vector<std::string> EllipseOf(U16BIT w, U16BIT h, U16BIT width)
{
    const DlaSketch sketch(w + 2, h + 2);
    EXPECT_TRUE(DLA_Ellipse(1, 1, w, h, width, 'f', 'l'));
    return sketch.Rows();
}

TEST(DlaEllipse, ASizeOfZeroDrawsNothing)
{
    const DlaSketch sketch(9, 9);
    EXPECT_TRUE(DLA_Ellipse(1, 1, 0, 7, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Ellipse(1, 1, 7, 0, 1, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaEllipse, IsFilledAndOutlined)
{
    EXPECT_THAT(EllipseOf(11, 7, 1), ElementsAre(".............", //
                                                 "....lllll....", //
                                                 "..llfffffll..", //
                                                 ".lfffffffffl.", //
                                                 ".lfffffffffl.", //
                                                 ".lfffffffffl.", //
                                                 "..llfffffll..", //
                                                 "....lllll....", //
                                                 "............."));
}

TEST(DlaEllipse, AnEvenBoxIsCoveredToItsLastColumnAndRow)
{
    EXPECT_THAT(EllipseOf(4, 4, 1), ElementsAre("......", //
                                                "..ll..", //
                                                ".lffl.", //
                                                ".lffl.", //
                                                "..ll..", //
                                                "......"));
}

TEST(DlaEllipse, WidthZeroFillsOnly)
{
    const auto picture = EllipseOf(11, 7, 0);
    EXPECT_EQ(Only('l', picture), DlaSketch(13, 9).Rows());
    EXPECT_EQ(picture[4], ".fffffffffff.");
}

TEST(DlaEllipse, TheOutlineLiesOnTheFill)
{
    const DlaSketch fill(40, 30);
    EXPECT_TRUE(DLA_Ellipse(3, 4, 31, 22, 0, 'f', 'l'));
    const auto filled = fill.Rows();
    const DlaSketch both(40, 30);
    EXPECT_TRUE(DLA_Ellipse(3, 4, 31, 22, 1, 'f', 'l'));
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            EXPECT_EQ(both.At(x, y) == 'f', filled[y][x] == 'f' && both.At(x, y) != 'l');
    EXPECT_GT(both.Count('l'), 40);
}

TEST(DlaEllipse, AWideOutlineIsMadeOfDiscs)
{
    for (const U16BIT width : {2, 3, 4, 5, 12}) {
        const DlaSketch thin(60, 50);
        EXPECT_TRUE(DLA_Ellipse(8, 7, 40, 31, 1, 'f', 'l'));
        const auto points = thin.Rows();
        const DlaSketch discs(60, 50);
        EXPECT_TRUE(DLA_Ellipse(8, 7, 40, 31, 0, 'f', 'l'));
        for (S16BIT y = 0; y < 50; ++y)
            for (S16BIT x = 0; x < 60; ++x)
                if (points[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == 'l')
                    FillCircle(x, y, width, 'l');
        const DlaSketch wide(60, 50);
        EXPECT_TRUE(DLA_Ellipse(8, 7, 40, 31, width, 'f', 'l'));
        EXPECT_EQ(wide.Rows(), discs.Rows()) << width;
    }
}

TEST(DlaEllipse, OneRadiusOfZero)
{
    EXPECT_THAT(EllipseOf(3, 1, 0), ElementsAre(".....", ".fff.", "....."));
    EXPECT_THAT(EllipseOf(6, 2, 0), ElementsAre("........", ".ffffff.", ".ffffff.", "........"));
    EXPECT_THAT(EllipseOf(1, 4, 0), ElementsAre("...", ".f.", ".f.", ".f.", ".f.", "..."));
}

// The trace of a box that has no width takes a single step in either region.
TEST(DlaEllipse, ATallBoxWithoutAHorizontalRadiusHasItsMiddleAndItsEndsOnly)
{
    EXPECT_THAT(EllipseOf(1, 7, 0),
                ElementsAre("...", ".f.", "...", "...", ".f.", "...", "...", ".f.", "..."));
    EXPECT_THAT(EllipseOf(2, 6, 0),
                ElementsAre("....", ".ff.", "....", ".ff.", ".ff.", "....", ".ff.", "...."));
}

TEST(DlaEllipse, BoxesOfAtMostTwoByTwoAreFilledAndOutlinedOnce)
{
    EXPECT_THAT(EllipseOf(1, 1, 0), ElementsAre("...", ".f.", "..."));
    EXPECT_THAT(EllipseOf(2, 1, 0), ElementsAre("....", ".ff.", "...."));
    EXPECT_THAT(EllipseOf(1, 2, 0), ElementsAre("...", ".f.", ".f.", "..."));
    EXPECT_THAT(EllipseOf(2, 2, 0), ElementsAre("....", ".ff.", ".ff.", "...."));
    EXPECT_THAT(EllipseOf(1, 1, 1), ElementsAre("...", ".l.", "..."));
    EXPECT_THAT(EllipseOf(2, 2, 1), ElementsAre("....", ".ll.", ".ll.", "...."));
    // Discs of width 3 are bars.
    EXPECT_THAT(EllipseOf(2, 2, 3), ElementsAre("....", "llll", "llll", "...."));
}

// Where clipping does not change what is drawn: a part of the picture in a larger buffer.
TEST(DlaEllipse, IsClippedRowByRow)
{
    const DlaSketch large(60, 60);
    EXPECT_TRUE(DLA_Ellipse(10, 12, 41, 30, 1, 'f', 'l'));
    const auto whole = large.Rows();
    for (const int left : {0, 15, 30, 48}) {
        for (const int top : {0, 15, 25, 40}) {
            const DlaSketch part(12, 11);
            EXPECT_TRUE(DLA_Ellipse(static_cast<S16BIT>(10 - left), static_cast<S16BIT>(12 - top),
                                    41, 30, 1, 'f', 'l'));
            for (int y = 0; y < 11; ++y)
                EXPECT_EQ(part.Rows()[y], whole[top + y].substr(left, 12));
        }
    }
}

TEST(DlaEllipse, OutsideTheBufferNothing)
{
    const DlaSketch sketch(9, 9);
    EXPECT_TRUE(DLA_Ellipse(-8, 0, 8, 8, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Ellipse(9, 0, 8, 8, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Ellipse(0, -8, 8, 8, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Ellipse(0, 9, 8, 8, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Ellipse(32767, 32767, 65535, 65535, 1, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

// Twice the cube of the radius is the first sum that 32 bits cannot hold as a positive number.
TEST(DlaEllipse, ACircleOfRadius1024DrawsNothing)
{
    const DlaSketch sketch(9, 9);
    EXPECT_TRUE(DLA_Ellipse(-1000, -1000, 2049, 2049, 1, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
    EXPECT_TRUE(DLA_Ellipse(-1000, -1000, 2047, 2047, 1, 'f', 'l'));
    EXPECT_EQ(sketch.Count('f'), 81);
}

// Outline points are 16 bit: those beyond 32767 come out at the left.
TEST(DlaEllipse, OutlinePointsWrap)
{
    const DlaSketch sketch(9, 1);
    // From column 2 to column 65536; neither is the centre's row between them in sight, at -32767.
    EXPECT_TRUE(DLA_Ellipse(2, 0, 65535, 1, 1, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("l.l......"));
}

TEST(DlaEllipse, FlatBoxesOfTheWholePlane)
{
    const DlaSketch sketch(7, 3);
    EXPECT_TRUE(DLA_Ellipse(-32768, 1, 65535, 1, 0, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre(".......", "fffffff", "......."));
}

} // namespace
