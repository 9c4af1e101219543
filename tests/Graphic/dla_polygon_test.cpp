#include "dla_sketch.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using testing::ElementsAre;

namespace {

/** The picture of a fill in a buffer. */
std::vector<std::string> FillIn(int width, int height, const std::vector<S_POINT>& points)
{
    const DlaSketch sketch(width, height);
    FillPolygon(points.data(), static_cast<U16BIT>(points.size()), 'f');
    return sketch.Rows();
}

std::vector<std::string> Blank(int width, int height)
{
    return DlaSketch(width, height).Rows();
}

// Edges that run to the left are rounded toward where they came from.
TEST(DlaPolygonFill, ATopApexAndABottomEdgeAreNotDrawn)
{
    EXPECT_THAT(FillIn(9, 5, {{4, 0}, {8, 4}, {0, 4}}), ElementsAre(".........", //
                                                                    "....f....", //
                                                                    "...fff...", //
                                                                    "..fffff..", //
                                                                    "........."));
}

TEST(DlaPolygonFill, ATopEdgeIsDrawn)
{
    EXPECT_THAT(FillIn(9, 5, {{0, 0}, {8, 0}, {4, 4}}), ElementsAre("ffffffff.", //
                                                                    ".fffffff.", //
                                                                    "..fffff..", //
                                                                    "...fff...", //
                                                                    "........."));
}

TEST(DlaPolygonFill, ASquareLeavesOutItsRightAndBottomEdge)
{
    EXPECT_THAT(FillIn(5, 5, {{0, 0}, {4, 0}, {4, 4}, {0, 4}}),
                ElementsAre("ffff.", "ffff.", "ffff.", "ffff.", "....."));
}

TEST(DlaPolygonFill, TheDirectionDoesNotMatter)
{
    EXPECT_EQ(FillIn(12, 12, {{5, 1}, {10, 4}, {8, 10}, {1, 7}}),
              FillIn(12, 12, {{5, 1}, {1, 7}, {8, 10}, {10, 4}}));
}

TEST(DlaPolygonFill, NorDoesTheFirstPoint)
{
    const auto picture = FillIn(12, 12, {{5, 1}, {10, 4}, {8, 10}, {1, 7}});
    EXPECT_EQ(picture, FillIn(12, 12, {{10, 4}, {8, 10}, {1, 7}, {5, 1}}));
    EXPECT_EQ(picture, FillIn(12, 12, {{8, 10}, {1, 7}, {5, 1}, {10, 4}}));
    EXPECT_EQ(picture, FillIn(12, 12, {{1, 7}, {5, 1}, {10, 4}, {8, 10}}));
}

TEST(DlaPolygonFill, AnApexGivenSeveralTimesIsOne)
{
    EXPECT_EQ(FillIn(9, 5, {{4, 0}, {4, 0}, {8, 4}, {0, 4}, {4, 0}}),
              FillIn(9, 5, {{4, 0}, {8, 4}, {0, 4}}));
}

TEST(DlaPolygonFill, ATopEdgeOfSeveralPoints)
{
    EXPECT_EQ(FillIn(9, 5, {{3, 0}, {6, 0}, {8, 0}, {4, 4}, {0, 0}}),
              FillIn(9, 5, {{0, 0}, {8, 0}, {4, 4}}));
}

TEST(DlaPolygonFill, PolygonsWithoutHeightDrawNothing)
{
    EXPECT_EQ(FillIn(9, 5, {{1, 2}, {7, 2}, {4, 2}}), Blank(9, 5));
    EXPECT_EQ(FillIn(9, 5, {{3, 3}, {3, 3}, {3, 3}}), Blank(9, 5));
    EXPECT_EQ(FillIn(9, 5, {{3, 3}}), Blank(9, 5));
    EXPECT_EQ(FillIn(9, 5, {}), Blank(9, 5));
}

// The only row would be that of the apex.
TEST(DlaPolygonFill, AnApexOneRowAboveItsBaseDrawsNothing)
{
    EXPECT_EQ(FillIn(9, 5, {{4, 1}, {8, 2}, {0, 2}}), Blank(9, 5));
}

TEST(DlaPolygonFill, PolygonsBesideTheBufferDrawNothing)
{
    EXPECT_EQ(FillIn(9, 5, {{-9, 0}, {-1, 2}, {-5, 4}}), Blank(9, 5));
    EXPECT_EQ(FillIn(9, 5, {{9, 0}, {15, 2}, {12, 4}}), Blank(9, 5));
    EXPECT_EQ(FillIn(9, 5, {{0, -9}, {8, -9}, {4, -1}}), Blank(9, 5));
    EXPECT_EQ(FillIn(9, 5, {{0, 9}, {8, 9}, {4, 5}}), Blank(9, 5));
}

TEST(DlaPolygonFill, ClippingACoveringPolygonLeavesTheBuffer)
{
    const DlaSketch sketch(9, 5);
    const S_POINT points[] = {{-32768, -32768}, {32767, -32768}, {32767, 32767}, {-32768, 32767}};
    FillPolygon(points, 4, 'f');
    EXPECT_EQ(sketch.Count('f'), 45);
}

// Clipping leaves a flat top, which is drawn, where the apex is cut off.
TEST(DlaPolygonFill, ClippedAtTheTop)
{
    EXPECT_THAT(FillIn(9, 3, {{4, -2}, {8, 2}, {0, 2}}),
                ElementsAre("..ffff...", //
                            "..fffff..", //
                            "........."));
}

TEST(DlaPolygonFill, ClippedAtLeftAndRight)
{
    EXPECT_THAT(FillIn(5, 5, {{-3, 0}, {8, 0}, {8, 4}, {-3, 4}}),
                ElementsAre("fffff", "fffff", "fffff", "fffff", "....."));
}

TEST(DlaPolygonFill, ClippedAtTheBottomTheLastRowIsDrawn)
{
    EXPECT_THAT(FillIn(5, 3, {{1, 1}, {4, 1}, {4, 9}, {1, 9}}),
                ElementsAre(".....", ".fff.", ".fff."));
}

// The line from (-30000, -10000) to (32000, 20000) crosses column 0 at row 4516; the products
// pass 32 bits.
TEST(DlaPolygonFill, IntersectionsOfTheLongestEdgesAreRight)
{
    const DlaSketch sketch(3, 6000);
    const S_POINT points[] = {{-30000, -10000}, {32000, 20000}, {-30000, 20000}};
    FillPolygon(points, 3, 'f');
    EXPECT_EQ(sketch.At(0, 4517), '.'); // the apex, rounded toward the inside
    EXPECT_EQ(sketch.At(2, 4518), 'f');
    EXPECT_EQ(sketch.Count('f'), 3 * (6000 - 4518));
}

/** Where an edge from (x, 0) to (x + dx, dy) is in a row, by the definition. */
int EdgeColumn(int x, int dx, int dy, int row)
{
    return x + static_cast<int>((dy - 1 + std::int64_t{row} * dx) / dy);
}

// The rows of a wedge that is open downward, so that its top is drawn and both edges are in sight.
void ExpectExactEdges(int left, int left_dx, int right, int right_dx, int dy)
{
    std::vector<U32BIT> pixels(32767 * 64);
    const bool flat = dy < 64;
    ASSERT_TRUE(DLA_Init(pixels.data(), flat ? 32767 : 64, flat ? 64 : 32767));
    const S_POINT points[] = {{static_cast<S16BIT>(left), 0},
                              {static_cast<S16BIT>(right), 0},
                              {static_cast<S16BIT>(right + right_dx), static_cast<S16BIT>(dy)},
                              {static_cast<S16BIT>(left + left_dx), static_cast<S16BIT>(dy)}};
    FillPolygon(points, 4, 1);
    for (int y = 0; y < dy; ++y) {
        const auto row = pixels.begin() + static_cast<std::ptrdiff_t>(y) * dla_info.width;
        const auto end = row + dla_info.width;
        const auto first = std::find(row, end, U32BIT{1});
        ASSERT_EQ(first - row, EdgeColumn(left, left_dx, dy, y)) << "row " << y;
        ASSERT_EQ(std::find(first, end, U32BIT{0}) - row, EdgeColumn(right, right_dx, dy, y))
            << "row " << y;
    }
    dla_info = DLA_INFO();
}

TEST(DlaPolygonFill, TheLongestSteepEdgesAreExact)
{
    for (const int dy : {32766, 32765, 16384, 181}) {
        for (const int dx : {0, 1, 2, 7, 13, 29}) {
            ExpectExactEdges(30, -dx, 33, dx, dy);
            ExpectExactEdges(1, dx, 32, 31 - dx, dy);
        }
    }
}

TEST(DlaPolygonFill, TheLongestFlatEdgesAreExact)
{
    for (const int dy : {1, 2, 3, 7, 47, 63}) {
        for (const int dx : {0, 1, 63, 64, 8191, 16382}) {
            ExpectExactEdges(16382, -dx, 16384, dx, dy);
            ExpectExactEdges(0, dx, 20000, -dx / 8, dy);
        }
    }
}

// Convex, with rows that begin right of where they end.
TEST(DlaPolygonFill, ReversedRowsOfASlenderTriangleDrawNothing)
{
    EXPECT_EQ(FillIn(20, 12, {{15, 0}, {10, 5}, {4, 10}}), Blank(20, 12));
    EXPECT_EQ(FillIn(12, 12, {{11, 0}, {6, 5}, {0, 10}}), Blank(12, 12));
}

// A bow tie: below the crossing the sides have changed places.
TEST(DlaPolygonFill, WhereSidesHaveCrossedNothingIsDrawn)
{
    EXPECT_THAT(FillIn(9, 9, {{0, 0}, {8, 0}, {0, 8}, {8, 8}}), ElementsAre("ffffffff.", //
                                                                            ".fffffff.", //
                                                                            "..fffff..", //
                                                                            "...fff...", //
                                                                            "....f....", //
                                                                            ".........", //
                                                                            ".........", //
                                                                            ".........", //
                                                                            "........."));
}

// The right side goes down, up to row 0 again and down: only its last crossing of a row counts.
TEST(DlaPolygonFill, ASideThatComesBackCountsWhereItCrossesLast)
{
    EXPECT_THAT(FillIn(11, 6, {{0, 0}, {2, 0}, {4, 3}, {8, 0}, {10, 5}, {0, 5}}),
                ElementsAre("ffffffff...", //
                            "fffffffff..", //
                            "fffffffff..", //
                            "ffffffffff.", //
                            "ffffffffff.", //
                            "..........."));
}

// The chain comes back to the apex's row, for which there is no span.
TEST(DlaPolygonFill, AChainThatComesBackToTheApexRowWritesNothingThere)
{
    const auto picture = FillIn(11, 6, {{1, 0}, {4, 3}, {8, 0}, {10, 5}, {0, 5}});
    EXPECT_EQ(picture[0], "...........");
    EXPECT_EQ(picture[1], ".ffffffff..");
}

TEST(DlaPolygonFill, TouchingTheRightAndBottomEdgeOfTheBuffer)
{
    EXPECT_THAT(FillIn(4, 3, {{0, 0}, {3, 0}, {3, 2}, {0, 2}}),
                ElementsAre("fff.", "fff.", "...."));
}

TEST(DlaPolygon, FewerThanThreePointsDrawNothing)
{
    const DlaSketch sketch(9, 5);
    S_POINT points[] = {{1, 1}, {7, 3}};
    EXPECT_TRUE(DLA_Polygon(points, 2, 3, 'f', 'l'));
    EXPECT_TRUE(DLA_Polygon(points, 1, 3, 'f', 'l'));
    EXPECT_TRUE(DLA_Polygon(points, 0, 3, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaPolygon, NullDrawsNothing)
{
    const DlaSketch sketch(9, 5);
    EXPECT_TRUE(DLA_Polygon(nullptr, 0, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Polygon(nullptr, 7, 1, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaPolygon, ATriangleIsFilledAndOutlined)
{
    const DlaSketch sketch(9, 5);
    S_POINT points[] = {{4, 0}, {8, 4}, {0, 4}};
    EXPECT_TRUE(DLA_Polygon(points, 3, 1, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("....l....", //
                                           "...lfl...", //
                                           "..lfffl..", //
                                           ".lfffffl.", //
                                           "lllllllll"));
}

TEST(DlaPolygon, WidthZeroFillsOnly)
{
    const DlaSketch sketch(9, 5);
    S_POINT points[] = {{4, 0}, {8, 4}, {0, 4}};
    EXPECT_TRUE(DLA_Polygon(points, 3, 0, 'f', 'l'));
    EXPECT_EQ(sketch.Rows(), FillIn(9, 5, {{4, 0}, {8, 4}, {0, 4}}));
}

TEST(DlaPolygon, WideOutlinesHaveADiscAtEveryPoint)
{
    const DlaSketch sketch(30, 30);
    S_POINT points[] = {{15, 4}, {25, 25}, {5, 20}};
    EXPECT_TRUE(DLA_Polygon(points, 3, 5, 'f', 'l'));
    const DlaSketch parts(30, 30);
    FillPolygon(points, 3, 'f');
    for (int i = 0; i < 3; ++i) {
        const S_POINT& to = points[(i + 1) % 3];
        DrawLine(points[i].x, points[i].y, to.x, to.y, 5, 'l');
        FillCircle(to.x, to.y, 5, 'l');
    }
    EXPECT_EQ(sketch.Rows(), parts.Rows());
}

TEST(DlaPolyline, FewerThanThreePointsDrawNothing)
{
    const DlaSketch sketch(9, 5);
    S_POINT points[] = {{1, 1}, {7, 3}};
    EXPECT_TRUE(DLA_Polyline(points, 2, 3, 'l'));
    EXPECT_TRUE(DLA_Polyline(points, 1, 3, 'l'));
    EXPECT_TRUE(DLA_Polyline(points, 0, 3, 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaPolyline, NullDrawsNothing)
{
    const DlaSketch sketch(9, 5);
    EXPECT_TRUE(DLA_Polyline(nullptr, 0, 1, 'l'));
    EXPECT_TRUE(DLA_Polyline(nullptr, 7, 1, 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaPolyline, ThinOnesHaveNoDiscs)
{
    const DlaSketch sketch(9, 5);
    S_POINT points[] = {{0, 4}, {4, 0}, {8, 4}};
    EXPECT_TRUE(DLA_Polyline(points, 3, 1, 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("....l....", //
                                           "...l.l...", //
                                           "..l...l..", //
                                           ".l.....l.", //
                                           "l.......l"));
}

// A disc at each joint, none at the ends.
TEST(DlaPolyline, WideOnesHaveADiscAtTheJoint)
{
    const DlaSketch sketch(20, 16);
    S_POINT points[] = {{4, 12}, {4, 4}, {15, 4}};
    EXPECT_TRUE(DLA_Polyline(points, 3, 5, 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre("....................", //
                                           "....................", //
                                           "...lllllllllllll....", //
                                           "..llllllllllllll....", //
                                           "..llllllllllllll....", //
                                           "..llllllllllllll....", //
                                           "..llllllllllllll....", //
                                           "..lllll.............", //
                                           "..lllll.............", //
                                           "..lllll.............", //
                                           "..lllll.............", //
                                           "..lllll.............", //
                                           "..lllll.............", //
                                           "....................", //
                                           "....................", //
                                           "...................."));
}

// Every vertex in turn left and right of the buffer, above and below: clipping makes more of them.
TEST(DlaPolygon, TheMostPointsThatThereCanBe)
{
    const DlaSketch sketch(40, 30);
    std::vector<S_POINT> points;
    for (int i = 0; i < 65535; ++i)
        points.push_back({static_cast<S16BIT>(i % 2 ? 32767 - i % 1000 : -32768 + i % 700),
                          static_cast<S16BIT>(i % 3 ? 32767 - i % 900 : -32768 + i % 800)});
    EXPECT_TRUE(DLA_Polygon(points.data(), 65535, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Polyline(points.data(), 65535, 0, 'l'));
}

} // namespace
