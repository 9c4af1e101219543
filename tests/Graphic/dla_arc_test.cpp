#include "dla_sketch.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using kestrin_test::Only;
using testing::ElementsAre;

namespace {

constexpr int kDegree = 64;
constexpr int kTurn = 23040;

using Rows = std::vector<std::string>;

/** The picture of arcs in one box of a 44 x 34 buffer, as (start, extent). */
Rows Arcs(U16BIT w, U16BIT h, U16BIT width, const std::vector<std::pair<int, int>>& arcs)
{
    const DlaSketch sketch(44, 34);
    for (const auto& arc : arcs)
        EXPECT_TRUE(DLA_Arc(3, 2, w, h, static_cast<U16BIT>(arc.first),
                            static_cast<U16BIT>(arc.second), width, 'l'));
    return sketch.Rows();
}

/** The outline of the ellipse of the same box. */
Rows Outline(U16BIT w, U16BIT h, U16BIT width)
{
    const DlaSketch sketch(44, 34);
    EXPECT_TRUE(DLA_Ellipse(3, 2, w, h, width, 'f', 'l'));
    return Only('l', sketch.Rows());
}

/** The part of a picture that lies in some columns and rows, half-open. */
Rows Part(Rows rows, int left, int top, int right, int bottom)
{
    for (int y = 0; y < static_cast<int>(rows.size()); ++y)
        for (int x = 0; x < static_cast<int>(rows[y].size()); ++x)
            if (x < left || x >= right || y < top || y >= bottom)
                rows[y][x] = '.';
    return rows;
}

Rows Blank()
{
    return DlaSketch(44, 34).Rows();
}

TEST(DlaArc, AnglesAndSizesOutsideTheirRangeDrawNothing)
{
    const DlaSketch sketch(44, 34);
    EXPECT_TRUE(DLA_Arc(3, 2, 31, 21, 0, 0, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(3, 2, 31, 21, 0, 23040, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(3, 2, 31, 21, 0, 65535, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(3, 2, 31, 21, 23040, 100, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(3, 2, 31, 21, 65535, 100, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(3, 2, 0, 21, 0, 100, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(3, 2, 31, 0, 0, 100, 1, 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

// Columns 3 to 32, so that 18 is the first of the right half; rows 2 to 21.
TEST(DlaArc, QuartersRunCounterClockwiseFromThreeOClock)
{
    const Rows outline = Outline(30, 20, 1);
    const int quarter = 90 * kDegree;
    EXPECT_EQ(Arcs(30, 20, 1, {{0, quarter}}), Part(outline, 18, 2, 33, 12));
    EXPECT_EQ(Arcs(30, 20, 1, {{quarter, quarter}}), Part(outline, 3, 2, 18, 12));
    EXPECT_EQ(Arcs(30, 20, 1, {{2 * quarter, quarter}}), Part(outline, 3, 12, 18, 22));
    EXPECT_EQ(Arcs(30, 20, 1, {{3 * quarter, quarter}}), Part(outline, 18, 12, 33, 22));
}

TEST(DlaArc, AQuarterOfAnOddBoxSharesTheMiddlePixels)
{
    const Rows outline = Outline(31, 21, 1);
    EXPECT_EQ(Arcs(31, 21, 1, {{0, 90 * kDegree}}), Part(outline, 18, 2, 34, 13));
    EXPECT_EQ(Arcs(31, 21, 1, {{180 * kDegree, 90 * kDegree}}), Part(outline, 3, 12, 19, 23));
}

TEST(DlaArc, WholeQuadrantsLieBetweenTheTwoEnds)
{
    const Rows outline = Outline(30, 20, 1);
    EXPECT_EQ(Arcs(30, 20, 1, {{0, 270 * kDegree}}),
              Arcs(30, 20, 1, {{0, 5760}, {5760, 5760}, {11520, 5760}}));
    // Through three o'clock.
    EXPECT_EQ(Arcs(30, 20, 1, {{180 * kDegree, 270 * kDegree}}),
              Arcs(30, 20, 1, {{11520, 5760}, {17280, 5760}, {0, 5760}}));
    EXPECT_EQ(Arcs(30, 20, 1, {{0, kTurn - 1}}), outline);
}

TEST(DlaArc, EndsLieOnTheirDirectionInEveryQuadrant)
{
    // Of a circle of radius 15 at (18, 17): from 30 to 60 degrees past each quarter.
    const Rows rows = Arcs(31, 31, 1,
                           {{30 * kDegree, 30 * kDegree},
                            {120 * kDegree, 30 * kDegree},
                            {210 * kDegree, 30 * kDegree},
                            {300 * kDegree, 30 * kDegree}});
    for (int y = 2; y < 33; ++y) {
        for (int x = 3; x < 34; ++x) {
            if (rows[y][x] != 'l')
                continue;
            // A pixel across the directions is a twelfth of the radius.
            const double steepness = std::abs(17.0 - y) / std::abs(18.0 - x);
            EXPECT_GE(steepness, 0.5) << x << ", " << y;
            EXPECT_LE(steepness, 2.0) << x << ", " << y;
        }
    }
    for (int y = 0; y < 15; ++y) {
        const std::string& upper = rows[static_cast<std::size_t>(17 - y)];
        EXPECT_EQ(upper, rows[static_cast<std::size_t>(17 + y)]) << y;
        EXPECT_EQ(upper.substr(3, 31), std::string(upper.rend() - 34, upper.rend() - 3)) << y;
    }
}

// Its end is its start, and so everything lies between.
TEST(DlaArc, AnExtentOfOneDrawsTheWholeEllipse)
{
    for (const int start : {0, 1, 2000, 5759, 5760, 14000, kTurn - 1})
        EXPECT_EQ(Arcs(30, 21, 1, {{start, 1}}), Outline(30, 21, 1)) << start;
}

TEST(DlaArc, AnEndInTheQuadrantOfTheStartAndBeforeItGoesAround)
{
    const Rows rows = Arcs(30, 20, 1, {{60 * kDegree, 330 * kDegree}});
    const Rows outline = Outline(30, 20, 1);
    EXPECT_EQ(Part(rows, 0, 12, 44, 34), Part(outline, 0, 12, 44, 34));
    EXPECT_EQ(Part(rows, 0, 0, 18, 34), Part(outline, 0, 0, 18, 34));
    EXPECT_NE(rows, outline);
    const Rows rest = Arcs(30, 20, 1, {{30 * kDegree, 30 * kDegree}});
    EXPECT_NE(rest, Blank());
    EXPECT_EQ(Arcs(30, 20, 1, {{60 * kDegree, 330 * kDegree}, {30 * kDegree, 30 * kDegree}}),
              outline);
}

// It is in no quadrant: everything up to three o'clock is drawn, and nothing behind.
TEST(DlaArc, AnEndAfterExactlyAWholeTurn)
{
    const int start = 270 * kDegree;
    EXPECT_EQ(Arcs(30, 20, 1, {{start, kTurn - start + 1}}), Arcs(30, 20, 1, {{start, 5760}}));
    EXPECT_EQ(Arcs(30, 20, 1, {{2, kTurn - 1}}), Outline(30, 20, 1));
    // One more is in the first quadrant again.
    const Rows beyond = Arcs(30, 20, 1, {{start, kTurn - start + 30 * kDegree}});
    EXPECT_NE(Part(beyond, 18, 0, 44, 12), Blank());
}

TEST(DlaArc, AFullTurnInSeveralLeavesNoGap)
{
    for (const U16BIT width : {1, 2, 5}) {
        for (const int pieces : {2, 3, 4, 5, 8, 9, 12, 36, 90, 360}) {
            for (const int from : {0, 7 * kDegree, 7 * kDegree + 11, 300 * kDegree + 50}) {
                std::vector<std::pair<int, int>> arcs;
                for (int i = 0; i < pieces; ++i)
                    arcs.emplace_back((from + i * kTurn / pieces) % kTurn, kTurn / pieces);
                EXPECT_EQ(Arcs(30, 27, width, arcs), Outline(30, 27, width))
                    << pieces << " from " << from << ", width " << width;
            }
        }
    }
}

// Ends are rounded to whole degrees, halves up: here to 22 and 23.
TEST(DlaArc, TwoThatMeetAtHalfADegreeStandADegreeApart)
{
    const int half = 22 * kDegree + 32;
    const DlaSketch sketch(60, 100);
    // A circle of radius 3000, at the point in the direction of 22.5 degrees.
    const S16BIT left = 30 - 2772 - 3000;
    const S16BIT top = 50 + 1148 - 3000;
    EXPECT_TRUE(DLA_Arc(left, top, 6001, 6001, 0, half, 1, 'l'));
    EXPECT_TRUE(DLA_Arc(left, top, 6001, 6001, half, 1000, 1, 'l'));
    // The directions of 22 and 23 degrees are met in rows 75 and 26.
    const Rows rows = sketch.Rows();
    for (int y = 0; y < 100; ++y)
        EXPECT_EQ(rows[static_cast<std::size_t>(y)].find('l') == std::string::npos,
                  y > 26 && y < 75)
            << y;
}

TEST(DlaArc, WidthZeroDrawsNothing)
{
    EXPECT_EQ(Arcs(30, 20, 0, {{0, 5760}}), Blank());
}

TEST(DlaArc, WideOnesAreMadeOfDiscs)
{
    EXPECT_EQ(Arcs(30, 20, 5, {{0, kTurn - 1}}), Outline(30, 20, 5));
    const DlaSketch quarter(44, 34);
    EXPECT_TRUE(DLA_Arc(3, 2, 30, 20, 5760, 5760, 5, 'l'));
    const Rows points = Arcs(30, 20, 1, {{5760, 5760}});
    const DlaSketch target(44, 34);
    for (S16BIT y = 0; y < 34; ++y)
        for (S16BIT x = 0; x < 44; ++x)
            if (points[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == 'l')
                FillCircle(x, y, 5, 'l');
    EXPECT_EQ(quarter.Rows(), target.Rows());
}

TEST(DlaArc, BoxesWithoutRadiiEnd)
{
    EXPECT_THAT(Part(Arcs(2, 2, 1, {{0, kTurn - 1}}), 0, 0, 44, 34),
                testing::Contains("...ll......."
                                  "................................"));
    for (const U16BIT w : {1, 2}) {
        for (const U16BIT h : {1, 2}) {
            EXPECT_EQ(Arcs(w, h, 1, {{0, kTurn - 1}}), Outline(w, h, 1));
            EXPECT_EQ(Arcs(w, h, 1, {{0, 1}}), Outline(w, h, 1));
        }
    }
}

TEST(DlaArc, BoxesOneWideAreNotSpecial)
{
    EXPECT_EQ(Arcs(1, 20, 1, {{0, kTurn - 1}}), Outline(1, 20, 1));
    EXPECT_EQ(Arcs(30, 1, 1, {{0, kTurn - 1}}), Outline(30, 1, 1));
}

// An ellipse of these radii needs sums of more than 32 bits.
TEST(DlaArc, HugeBoxesAreTraced)
{
    const DlaSketch sketch(9, 9);
    EXPECT_TRUE(DLA_Arc(-20000, 4, 40001, 40001, 0, 180 * kDegree, 1, 'l'));
    EXPECT_EQ(sketch.Rows()[4], "lllllllll");
    EXPECT_EQ(sketch.Count('l'), 9);
    EXPECT_TRUE(DLA_Arc(4, -32768, 65535, 65535, 90 * kDegree, 180 * kDegree, 1, 'm'));
    EXPECT_EQ(sketch.Count('m'), 9);
    EXPECT_EQ(sketch.At(4, 0), 'm');
}

} // namespace
