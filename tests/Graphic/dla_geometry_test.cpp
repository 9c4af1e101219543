// Lines, polygons and ellipses against plane geometry, without knowing how they are drawn: pixels
// well inside a shape are set, pixels well outside are not.
#include "dla_trial.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaArguments;
using kestrin_test::DlaCanvas;
using kestrin_test::SeededRandom;

namespace {

constexpr std::uint32_t kBackground = 0x00102030;
constexpr std::uint32_t kFill = 0xff8040c0;
constexpr std::uint32_t kLine = 0x80ffe010;

/** `inside(x, y)` and `outside(x, y)` say which pixels must and must not have the colour. */
template <typename Inside, typename Outside>
testing::AssertionResult Covers(const DlaCanvas& canvas, std::uint32_t colour, Inside inside,
                                Outside outside)
{
    for (int y = 0; y < canvas.Height(); ++y) {
        for (int x = 0; x < canvas.Width(); ++x) {
            const bool set = canvas.At(x, y) == colour;
            if (!set && inside(x, y))
                return testing::AssertionFailure() << "misses (" << x << ", " << y << ")";
            if (set && outside(x, y))
                return testing::AssertionFailure() << "has (" << x << ", " << y << ")";
        }
    }
    return canvas.GuardsAreIntact();
}

class DlaGeometry : public testing::TestWithParam<int>
{
protected:
    SeededRandom random{1815 + static_cast<std::uint32_t>(GetParam())};
};

struct Segment
{
    double x1, y1, x2, y2;

    double Length() const { return std::hypot(x2 - x1, y2 - y1); }
    double Along(double x, double y) const
    {
        return ((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / Length();
    }
    double Across(double x, double y) const
    {
        return std::abs((x - x1) * (y2 - y1) - (y - y1) * (x2 - x1)) / Length();
    }
};

// The length that a width is measured with is up to 6 % short and 3 % long, corners are rounded.
TEST_P(DlaGeometry, LinesAreAsWideAsTheySay)
{
    for (int i = 0; i < SeededRandom::Rounds(3000); ++i) {
        const DlaCanvas canvas(120, 90, kBackground);
        const auto x1 = static_cast<S16BIT>(random.Between(-60, 180));
        const auto y1 = static_cast<S16BIT>(random.Between(-60, 150));
        const auto x2 = static_cast<S16BIT>(random.Between(-60, 180));
        const auto y2 = static_cast<S16BIT>(random.Between(-60, 150));
        if (x1 == x2 && y1 == y2)
            continue;
        const auto width = static_cast<U16BIT>(random.Between(1, 40));
        ASSERT_TRUE(DLA_Line(x1, y1, x2, y2, width, kLine));
        const Segment line{double(x1), double(y1), double(x2), double(y2)};
        const double half = width / 2.0;
        const auto inside = [&](int x, int y) {
            return line.Across(x, y) < 0.97 * half - 2.5 && line.Along(x, y) > 2.5 &&
                   line.Along(x, y) < line.Length() - 2.5;
        };
        const auto outside = [&](int x, int y) {
            return line.Across(x, y) > 1.07 * half + 2.5 || line.Along(x, y) < -3 ||
                   line.Along(x, y) > line.Length() + 3;
        };
        ASSERT_TRUE(Covers(canvas, kLine, inside, outside))
            << x1 << ", " << y1 << " to " << x2 << ", " << y2 << ", width " << width;
    }
}

// Cut at the edges or not, a line of width 1 has one pixel in each step of its longer extent.
TEST_P(DlaGeometry, ThinLinesHaveAPixelInEachStep)
{
    for (int i = 0; i < SeededRandom::Rounds(6000); ++i) {
        const DlaCanvas canvas(80, 60, kBackground);
        DlaArguments arguments(random, 80, 60);
        const S_POINT from = arguments.Point();
        const S_POINT to = arguments.Point();
        if (from.x == to.x && from.y == to.y)
            continue;
        ASSERT_TRUE(DLA_Line(from.x, from.y, to.x, to.y, 1, kLine));
        const Segment line{double(from.x), double(from.y), double(to.x), double(to.y)};
        const bool steep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
        const auto distance = [&](int x, int y) { // along the shorter extent
            const double length = steep ? line.y2 - line.y1 : line.x2 - line.x1;
            return line.Across(x, y) * line.Length() / std::abs(length);
        };
        const auto inside = [&](int x, int y) {
            // Its neighbours would do as well where the line passes between them; not at its ends.
            return distance(x, y) < 1e-9 && line.Along(x, y) > 2 &&
                   line.Along(x, y) < line.Length() - 2 && x > 1 && y > 1 && x < 78 && y < 58;
        };
        const auto outside = [&](int x, int y) {
            return distance(x, y) > 1.51 || line.Along(x, y) < -1 ||
                   line.Along(x, y) > line.Length() + 1;
        };
        ASSERT_TRUE(Covers(canvas, kLine, inside, outside))
            << from.x << ", " << from.y << " to " << to.x << ", " << to.y;
    }
}

std::vector<S_POINT> ConvexHull(std::vector<S_POINT> points)
{
    const auto turn = [](S_POINT a, S_POINT b, S_POINT c) {
        return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    };
    std::sort(points.begin(), points.end(), [](const S_POINT& a, const S_POINT& b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
    std::vector<S_POINT> hull;
    for (int side = 0; side < 2; ++side) {
        const std::size_t first = hull.size();
        for (const S_POINT& point : points) {
            while (hull.size() >= first + 2 && turn(hull[hull.size() - 2], hull.back(), point) <= 0)
                hull.pop_back();
            hull.push_back(point);
        }
        hull.pop_back();
        std::reverse(points.begin(), points.end());
    }
    return hull;
}

/** Where the row's middle line enters and leaves the polygon. */
bool CrossRow(const std::vector<S_POINT>& hull, int row, double& left, double& right)
{
    left = 1e9;
    right = -1e9;
    for (std::size_t i = 0; i < hull.size(); ++i) {
        const S_POINT a = hull[i];
        const S_POINT b = hull[(i + 1) % hull.size()];
        if (a.y == b.y || row < std::min(a.y, b.y) || row > std::max(a.y, b.y))
            continue;
        const double x = a.x + double(row - a.y) * (b.x - a.x) / (b.y - a.y);
        left = std::min(left, x);
        right = std::max(right, x);
    }
    return left <= right;
}

// A boundary column is rounded up, on edges that lead to the left by up to one more.
TEST_P(DlaGeometry, ConvexPolygonsAreFilledBetweenTheirEdges)
{
    for (int i = 0; i < SeededRandom::Rounds(2500); ++i) {
        const DlaCanvas canvas(100, 80, kBackground);
        std::vector<S_POINT> points(static_cast<std::size_t>(random.Between(3, 12)));
        for (S_POINT& point : points) {
            point.x = static_cast<S16BIT>(random.Between(0, 99));
            point.y = static_cast<S16BIT>(random.Between(0, 79));
        }
        points = ConvexHull(points);
        if (points.size() < 3)
            continue;
        if (random.Chance(50))
            std::reverse(points.begin(), points.end());
        std::rotate(points.begin(), points.begin() + random.Between(0, 2), points.end());
        const auto by_row = [](S_POINT a, S_POINT b) { return a.y < b.y; };
        const int top = std::min_element(points.begin(), points.end(), by_row)->y;
        const int bottom = std::max_element(points.begin(), points.end(), by_row)->y;
        ASSERT_TRUE(
            DLA_Polygon(points.data(), static_cast<U16BIT>(points.size()), 0, kFill, kLine));
        const auto inside = [&](int x, int y) {
            double left = 0;
            double right = 0;
            return y > top && y < bottom && CrossRow(points, y, left, right) &&
                   x >= std::ceil(left - 1e-9) + 1 && x <= std::ceil(right - 1e-9) - 1;
        };
        const auto outside = [&](int x, int y) {
            double left = 0;
            double right = 0;
            return y == bottom || !CrossRow(points, y, left, right) || x < left - 1e-9 ||
                   x > std::ceil(right - 1e-9);
        };
        ASSERT_TRUE(Covers(canvas, kFill, inside, outside)) << points.size() << " corners";
    }
}

TEST_P(DlaGeometry, EllipsesFollowTheirEquation)
{
    for (int i = 0; i < SeededRandom::Rounds(2500); ++i) {
        const DlaCanvas canvas(100, 80, kBackground);
        const auto w = static_cast<U16BIT>(random.Between(3, 220));
        const auto h = static_cast<U16BIT>(random.Between(3, 180));
        // The tips of narrower ones are left out, see below.
        const double narrow = std::min(w, h) / 2.0;
        if (narrow * narrow < 4 * (std::max(w, h) / 2.0))
            continue;
        const auto left = static_cast<S16BIT>(random.Between(-w, 99));
        const auto top = static_cast<S16BIT>(random.Between(-h, 79));
        ASSERT_TRUE(DLA_Ellipse(left, top, w, h, 0, kFill, kLine));
        // From the middle of the box, so that even boxes need no shift.
        const double rx = (w - 1) / 2.0;
        const double ry = (h - 1) / 2.0;
        const auto radius = [&](int x, int y, double margin) {
            return std::hypot((x - left - rx) / (rx + margin), (y - top - ry) / (ry + margin));
        };
        // Where the slope is 1 the traces from the side and from the tip meet: a row may be
        // missing.
        const double seam = ry * ry / std::hypot(rx, ry);
        const auto inside = [&](int x, int y) {
            return std::abs(std::abs(y - top - ry) - seam) > 3 && radius(x, y, -1.5) < 1;
        };
        const auto outside = [&](int x, int y) { return radius(x, y, 1.5) > 1; };
        ASSERT_TRUE(Covers(canvas, kFill, inside, outside))
            << w << " x " << h << " at " << left << ", " << top;
    }
}

/** How many pixels of a row have a colour. */
int Count(const DlaCanvas& canvas, int row, std::uint32_t colour)
{
    int count = 0;
    for (int x = 0; x < canvas.Width(); ++x)
        count += canvas.At(x, row) == colour ? 1 : 0;
    return count;
}

// The trace from the side ends where it reaches the middle column, and the one from the tip leaves
// that at its first step: the rows between get neither fill nor outline.
TEST(DlaNarrowEllipse, HasNothingBetweenItsTipsAndItsBody)
{
    const DlaCanvas canvas(3, 77, kBackground);
    ASSERT_TRUE(DLA_Ellipse(0, 0, 3, 77, 0, kFill, kLine));
    EXPECT_EQ(Count(canvas, 0, kFill), 1);
    for (int row = 1; row <= 11; ++row)
        EXPECT_EQ(Count(canvas, row, kBackground), 3) << row;
    for (int row = 12; row <= 64; ++row)
        EXPECT_EQ(Count(canvas, row, kFill), 3) << row;
    for (int row = 65; row <= 75; ++row)
        EXPECT_EQ(Count(canvas, row, kBackground), 3) << row;
    EXPECT_EQ(Count(canvas, 76, kFill), 1);
}

// Region 1 of the trace ends above the row in which region 2 stops: nobody fills it.
TEST(DlaEllipse, MayLeaveARowUnfilledWhereItsTracesMeet)
{
    const DlaCanvas canvas(27, 65, kBackground);
    ASSERT_TRUE(DLA_Ellipse(0, 0, 27, 65, 0, kFill, kLine));
    for (const int row : {2, 62}) {
        EXPECT_EQ(Count(canvas, row - 1, kFill), row == 2 ? 7 : 11);
        EXPECT_EQ(Count(canvas, row, kFill), 0);
        EXPECT_EQ(Count(canvas, row + 1, kFill), row == 2 ? 11 : 7);
    }
}

INSTANTIATE_TEST_SUITE_P(Share, DlaGeometry, testing::Range(0, 2));

} // namespace
