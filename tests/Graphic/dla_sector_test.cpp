#include "dla_sketch.h"

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

/** The picture of a sector of the box of w x h at (2, 2). */
Rows Sector(U16BIT w, U16BIT h, int start, int arc, U16BIT width)
{
    const DlaSketch sketch(w + 4, h + 4);
    EXPECT_TRUE(DLA_Sector(2, 2, w, h, static_cast<U16BIT>(start), static_cast<U16BIT>(arc), width,
                           'f', 'l'));
    return sketch.Rows();
}

Rows Fill(U16BIT w, U16BIT h)
{
    const DlaSketch sketch(w + 4, h + 4);
    EXPECT_TRUE(DLA_Ellipse(2, 2, w, h, 0, 'f', 'l'));
    return sketch.Rows();
}

TEST(DlaSector, AnglesAndSizesOutsideTheirRangeDrawNothing)
{
    const DlaSketch sketch(44, 34);
    EXPECT_TRUE(DLA_Sector(3, 2, 31, 21, 0, 0, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(3, 2, 31, 21, 0, 23040, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(3, 2, 31, 21, 23040, 100, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(3, 2, 0, 21, 0, 100, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(3, 2, 31, 0, 0, 100, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(3, 2, 1, 0, 0, 100, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(3, 2, 1, 21, 0, 0, 1, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaSector, ABoxOneWideIsARectangle)
{
    const DlaSketch sketch(7, 9);
    EXPECT_TRUE(DLA_Sector(3, 2, 1, 5, 0, 10, 0, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(5, 2, 1, 5, 0, 10, 1, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre(".......", ".......", //
                                           "...f.l.", "...f.l.", "...f.l.", "...f.l.", "...f.l.",
                                           ".......", "......."));
}

TEST(DlaSector, ABoxOneHighIsARectangle)
{
    const DlaSketch sketch(7, 3);
    EXPECT_TRUE(DLA_Sector(1, 1, 5, 1, 20000, 10, 0, 'f', 'l'));
    EXPECT_THAT(sketch.Rows(), ElementsAre(".......", ".fffff.", "......."));
}

// Its sums wrap to 16 bits: the rectangle would end left of where it begins.
TEST(DlaSector, ADegenerateBoxThatWrapsDrawsNothing)
{
    const DlaSketch sketch(7, 3);
    EXPECT_TRUE(DLA_Sector(0, 1, 40000, 1, 0, 100, 1, 'f', 'l'));
    EXPECT_TRUE(DLA_Sector(1, 0, 1, 40000, 0, 100, 1, 'f', 'l'));
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaSector, AQuarterIsFilledUpToItsRadii)
{
    EXPECT_THAT(Sector(13, 9, 0, 90 * kDegree, 0), ElementsAre(".................", //
                                                               ".................", //
                                                               "........fff......", //
                                                               "........fffff....", //
                                                               "........ffffff...", //
                                                               "........fffffff..", //
                                                               "........fffffff..", //
                                                               ".................", //
                                                               ".................", //
                                                               ".................", //
                                                               ".................", //
                                                               ".................", //
                                                               "................."));
}

TEST(DlaSector, TheOutlineIsTheArcAndBothRadii)
{
    EXPECT_THAT(Sector(13, 9, 90 * kDegree, 90 * kDegree, 1), ElementsAre(".................", //
                                                                          ".................", //
                                                                          "......lll........", //
                                                                          "....llffl........", //
                                                                          "...lffffl........", //
                                                                          "..lfffffl........", //
                                                                          "..lllllll........", //
                                                                          ".................", //
                                                                          ".................", //
                                                                          ".................", //
                                                                          ".................", //
                                                                          ".................", //
                                                                          "................."));
}

TEST(DlaSector, WideOutlinesHaveDiscsAtTheCentreAndBothEnds)
{
    const DlaSketch sector(60, 60);
    EXPECT_TRUE(DLA_Sector(9, 9, 41, 41, 90 * kDegree, 90 * kDegree, 5, 'f', 'l'));
    const DlaSketch parts(60, 60);
    EXPECT_TRUE(DLA_Sector(9, 9, 41, 41, 90 * kDegree, 90 * kDegree, 0, 'f', 'l'));
    EXPECT_TRUE(DLA_Arc(9, 9, 41, 41, 90 * kDegree, 90 * kDegree, 5, 'l'));
    DrawLine(29, 29, 29, 9, 5, 'l');
    DrawLine(29, 29, 9, 29, 5, 'l');
    for (const S_POINT& point : {S_POINT{29, 29}, S_POINT{29, 9}, S_POINT{9, 29}})
        FillCircle(point.x, point.y, 5, 'l');
    EXPECT_EQ(sector.Rows(), parts.Rows());
}

TEST(DlaSector, AlmostAWholeTurnIsTheFillOfTheEllipse)
{
    for (const U16BIT w : {20, 21})
        for (const U16BIT h : {14, 15})
            EXPECT_EQ(Sector(w, h, 0, kTurn - 1, 0), Fill(w, h)) << w << " x " << h;
}

TEST(DlaSector, AnExtentOfOneFillsTheWholeEllipse)
{
    EXPECT_EQ(Sector(20, 15, 3000, 1, 0), Fill(20, 15));
}

TEST(DlaSector, SectorsThatShareARadiusLeaveNoPixelBetween)
{
    for (const U16BIT w : {20, 33})
        for (const U16BIT h : {14, 27}) {
            for (const int pieces : {2, 3, 5, 8, 12, 36, 360}) {
                for (const int from : {0, 7 * kDegree, 7 * kDegree + 11, 300 * kDegree + 50}) {
                    const DlaSketch sketch(w + 4, h + 4);
                    for (int i = 0; i < pieces; ++i)
                        DLA_Sector(2, 2, w, h,
                                   static_cast<U16BIT>((from + i * kTurn / pieces) % kTurn),
                                   static_cast<U16BIT>(kTurn / pieces), 0, 'f', 'l');
                    EXPECT_EQ(sketch.Rows(), Fill(w, h))
                        << w << " x " << h << ", " << pieces << " from " << from;
                }
            }
        }
}

// Also in boxes of even size, whose halves stand a pixel apart.
TEST(DlaSector, NoPixelIsLeftBetweenTheFillAndItsRadii)
{
    for (const U16BIT size : {40, 41}) {
        for (int start = 0; start < 360; start += 7) {
            const DlaSketch sketch(size + 4, size + 4);
            DLA_Sector(2, 2, size, size, static_cast<U16BIT>(start * kDegree),
                       static_cast<U16BIT>(100 * kDegree), 1, 'f', 'l');
            DLA_Sector(2, 2, size, size, static_cast<U16BIT>((start + 100) % 360 * kDegree),
                       static_cast<U16BIT>(260 * kDegree), 1, 'f', 'l');
            const Rows fill = Fill(size, size);
            for (int y = 0; y < size + 4; ++y)
                for (int x = 0; x < size + 4; ++x)
                    if (fill[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == 'f') {
                        EXPECT_NE(sketch.At(x, y), '.') << start << ": " << x << ", " << y;
                    }
        }
    }
}

TEST(DlaSector, BoxesWithoutRadiiEnd)
{
    EXPECT_EQ(Sector(2, 2, 0, kTurn - 1, 0), Fill(2, 2));
    EXPECT_EQ(Only('f', Sector(2, 2, 0, kTurn - 1, 1)), DlaSketch(6, 6).Rows());
}

TEST(DlaSector, HugeBoxesAreFilled)
{
    const DlaSketch sketch(9, 9);
    EXPECT_TRUE(DLA_Sector(-32768, -32768, 65535, 65535, 0, 90 * kDegree, 0, 'f', 'l'));
    // The centre is (-1, -1): the buffer is in the fourth quadrant.
    EXPECT_TRUE(sketch.IsBlank());
    EXPECT_TRUE(DLA_Sector(-32768, -32768, 65535, 65535, 270 * kDegree, 90 * kDegree, 0, 'f', 'l'));
    EXPECT_EQ(sketch.Count('f'), 81);
}

} // namespace
