// The drawing primitives against a model that decides pixel by pixel, with arguments inside, at the
// edges of, across and far outside the buffer.
#include "dla_model.h"
#include "dla_trial.h"

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaArguments;
using kestrin_test::DlaCanvas;
using kestrin_test::DlaModel;
using kestrin_test::SeededRandom;

namespace {

constexpr std::uint32_t kBackground = 0x00102030;
constexpr std::uint32_t kFill = 0xff8040c0;
constexpr std::uint32_t kLine = 0x80ffe010;

/** Each parameter is a share of the cases, with a seed of its own. */
class DlaAgainstModel : public testing::TestWithParam<int>
{
protected:
    /** `draw(arguments, model)` draws in both and returns the call as text. */
    template <typename Draw>
    void Compare(int cases, Draw draw)
    {
        SeededRandom random(1953 + static_cast<std::uint32_t>(GetParam()));
        for (int i = 0; i < SeededRandom::Rounds(cases); ++i) {
            const int width = DlaArguments::BufferSize(random, 300);
            const int height = DlaArguments::BufferSize(random, 200);
            const DlaCanvas canvas(width, height, kBackground);
            DlaModel model(width, height, kBackground);
            DlaArguments arguments(random, width, height);
            const std::string call = draw(arguments, model);
            ASSERT_TRUE(canvas.Shows(model.Picture()))
                << "case " << i << ", buffer " << width << " x " << height << ": " << call;
        }
    }
};

template <typename... Values>
std::string Call(const char* name, Values... values)
{
    std::ostringstream text;
    text << name;
    ((text << ' ' << static_cast<long>(values)), ...);
    return text.str();
}

std::string ShapeCall(const char* name, const std::vector<S_POINT>& points, int width)
{
    std::ostringstream text;
    text << name << " of width " << width << ':';
    for (const S_POINT& point : points)
        text << " (" << point.x << ", " << point.y << ')';
    return text.str();
}

DlaModel::Point ForModel(const S_POINT& point)
{
    return {point.x, point.y};
}

std::vector<DlaModel::Point> ForModel(const std::vector<S_POINT>& points)
{
    std::vector<DlaModel::Point> copies;
    for (const S_POINT& point : points)
        copies.push_back(ForModel(point));
    return copies;
}

std::string DrawLine(DlaArguments& arguments, DlaModel& model, U16BIT width)
{
    const S_POINT from = arguments.Point();
    S_POINT to = arguments.Point();
    if (arguments.Random().Chance(10))
        to.x = from.x;
    if (arguments.Random().Chance(10))
        to.y = from.y;
    EXPECT_TRUE(DLA_Line(from.x, from.y, to.x, to.y, width, kLine));
    model.Line(ForModel(from), ForModel(to), width, kLine);
    return Call("line", from.x, from.y, to.x, to.y, width);
}

std::string DrawPolygon(DlaModel& model, std::vector<S_POINT> points, U16BIT width)
{
    EXPECT_TRUE(
        DLA_Polygon(points.data(), static_cast<U16BIT>(points.size()), width, kFill, kLine));
    model.Polygon(ForModel(points), width, kFill, kLine);
    return ShapeCall("polygon", points, width);
}

TEST_P(DlaAgainstModel, Rectangles)
{
    Compare(12000, [](DlaArguments& arguments, DlaModel& model) {
        const S_POINT from = arguments.Point();
        S_POINT to = arguments.Point();
        if (arguments.Random().Chance(50) && from.x > to.x)
            to.x = static_cast<S16BIT>(from.x + arguments.Random().Between(0, 2));
        const U16BIT width = arguments.LineWidth();
        EXPECT_TRUE(DLA_Rectangle(from.x, from.y, to.x, to.y, width, kFill, kLine));
        model.Rectangle(from.x, from.y, to.x, to.y, width, kFill, kLine);
        return Call("rectangle", from.x, from.y, to.x, to.y, width);
    });
}

TEST_P(DlaAgainstModel, Borders)
{
    Compare(3000, [](DlaArguments& arguments, DlaModel& model) {
        const U16BIT width = arguments.LineWidth();
        EXPECT_TRUE(DLA_Border(width, kLine));
        model.Border(width, kLine);
        return Call("border", width);
    });
}

TEST_P(DlaAgainstModel, ThinLines)
{
    Compare(20000,
            [](DlaArguments& arguments, DlaModel& model) { return DrawLine(arguments, model, 1); });
}

TEST_P(DlaAgainstModel, ThickLines)
{
    Compare(16000, [](DlaArguments& arguments, DlaModel& model) {
        return DrawLine(arguments, model, arguments.LineWidth());
    });
}

TEST_P(DlaAgainstModel, Polylines)
{
    Compare(6000, [](DlaArguments& arguments, DlaModel& model) {
        std::vector<S_POINT> points(static_cast<std::size_t>(arguments.Random().Between(0, 8)));
        for (S_POINT& point : points)
            point = arguments.Point();
        const U16BIT width = arguments.LineWidth();
        EXPECT_TRUE(DLA_Polyline(points.data(), static_cast<U16BIT>(points.size()), width, kLine));
        model.Polyline(ForModel(points), width, kLine);
        return ShapeCall("polyline", points, width);
    });
}

// Corners on an ellipse, in either direction, now and then some of them twice.
TEST_P(DlaAgainstModel, ConvexPolygons)
{
    Compare(12000, [](DlaArguments& arguments, DlaModel& model) {
        SeededRandom& random = arguments.Random();
        const S_POINT centre = arguments.Point();
        const auto rx = static_cast<double>(arguments.BoxWidth());
        const auto ry = static_cast<double>(arguments.BoxHeight());
        const auto corners = static_cast<int>(random.Between(3, 14));
        const double turn = (random.Chance(50) ? 1 : -1) * 2 * 3.14159265358979 / corners;
        const auto first = static_cast<double>(random.Between(0, 359));
        std::vector<S_POINT> points;
        for (int i = 0; i < corners; ++i) {
            S_POINT point;
            point.x = static_cast<S16BIT>(std::lround(centre.x + rx * std::cos(first + i * turn)));
            point.y = static_cast<S16BIT>(std::lround(centre.y + ry * std::sin(first + i * turn)));
            points.insert(points.end(), random.Chance(5) ? 2 : 1, point);
        }
        return DrawPolygon(model, points, random.Chance(60) ? U16BIT{0} : arguments.LineWidth());
    });
}

TEST_P(DlaAgainstModel, ConcaveAndCrossingPolygons)
{
    Compare(14000, [](DlaArguments& arguments, DlaModel& model) {
        SeededRandom& random = arguments.Random();
        std::vector<S_POINT> points(static_cast<std::size_t>(random.Between(1, 9)));
        for (S_POINT& point : points) {
            point = arguments.Point();
            // Corners in common rows, columns and places are where walks around a polygon differ.
            if (random.Chance(25))
                point.y = points.front().y;
            if (random.Chance(15))
                point.x = points.front().x;
        }
        return DrawPolygon(model, points, random.Chance(70) ? U16BIT{0} : arguments.LineWidth());
    });
}

TEST_P(DlaAgainstModel, Ellipses)
{
    Compare(9000, [](DlaArguments& arguments, DlaModel& model) {
        const S_POINT at = arguments.Point();
        const U16BIT w = arguments.BoxWidth();
        const U16BIT h = arguments.BoxHeight();
        const auto width = static_cast<U16BIT>(std::min<int>(arguments.LineWidth(), 300));
        EXPECT_TRUE(DLA_Ellipse(at.x, at.y, w, h, width, kFill, kLine));
        model.Ellipse(at.x, at.y, w, h, width, kFill, kLine);
        return Call("ellipse", at.x, at.y, w, h, width);
    });
}

// The terms of such ellipses do not fit 32 bits: fragments are drawn, always the same.
TEST_P(DlaAgainstModel, HugeEllipses)
{
    Compare(1500, [](DlaArguments& arguments, DlaModel& model) {
        SeededRandom& random = arguments.Random();
        const auto size = [&](int step) {
            const std::int64_t largest = step == 0 ? 800 : step == 1 ? 6000 : UINT16_MAX;
            return static_cast<U16BIT>(random.Between(1, largest));
        };
        const U16BIT w = size(static_cast<int>(random.Between(0, 2)));
        const U16BIT h = size(static_cast<int>(random.Between(1, 2)));
        // About where some part of the curve meets the buffer.
        const auto x = static_cast<S16BIT>(arguments.X() - random.Between(0, 2) * w / 2);
        const auto y = static_cast<S16BIT>(arguments.Y() - random.Between(0, 2) * h / 2);
        const auto width = static_cast<U16BIT>(random.Chance(80) ? 1 : random.Between(0, 8));
        EXPECT_TRUE(DLA_Ellipse(x, y, w, h, width, kFill, kLine));
        model.Ellipse(x, y, w, h, width, kFill, kLine);
        return Call("ellipse", x, y, w, h, width);
    });
}

INSTANTIATE_TEST_SUITE_P(Share, DlaAgainstModel, testing::Range(0, 4));

// With these radii the wrapping terms keep the trace going far beyond the box.
// Coordinates reach only half of such buffers, and sums of them wrap.
TEST_P(DlaAgainstModel, BuffersWiderOrHigherThanCoordinates)
{
    SeededRandom random(1066 + static_cast<std::uint32_t>(GetParam()));
    for (int i = 0; i < SeededRandom::Rounds(120); ++i) {
        const auto length = static_cast<int>(random.Between(32760, UINT16_MAX));
        const auto other = static_cast<int>(random.Between(1, 3));
        const int width = random.Chance(50) ? length : other;
        const int height = width == length ? other : length;
        const DlaCanvas canvas(width, height, kBackground);
        DlaModel model(width, height, kBackground);
        DlaArguments arguments(random, width, height);
        const S_POINT from = arguments.Point();
        const S_POINT to = arguments.Point();
        const U16BIT w = arguments.LineWidth();
        std::string call;
        switch (random.Between(0, 3)) {
        case 0:
            call = DrawLine(arguments, model, w);
            break;
        case 1:
            call = DrawPolygon(model, {from, to, arguments.Point(), arguments.Point()}, w);
            break;
        case 2:
            EXPECT_TRUE(DLA_Rectangle(from.x, from.y, to.x, to.y, w, kFill, kLine));
            model.Rectangle(from.x, from.y, to.x, to.y, w, kFill, kLine);
            call = Call("rectangle", from.x, from.y, to.x, to.y, w);
            break;
        default:
            EXPECT_TRUE(DLA_Border(w, kLine));
            model.Border(w, kLine);
            call = Call("border", w);
        }
        ASSERT_TRUE(canvas.Shows(model.Picture())) << width << " x " << height << ": " << call;
    }
}

TEST(DlaModelOfHugeEllipses, TracesThatOutrunTheirBoxAreDrawnToTheirEnd)
{
    const struct
    {
        U16BIT w, h;
    } boxes[] = {{401, 53511}, {383, 50765}, {487, 35031},
                 {56757, 383}, {505, 32769}, {307, 46343}};
    for (const auto& box : boxes) {
        for (int part = 0; part < 24; ++part) {
            const DlaCanvas canvas(300, 200, kBackground);
            DlaModel model(300, 200, kBackground);
            // The trace wanders far: look at it from several places.
            const auto x = static_cast<S16BIT>(part % 3 * 100 - box.w / 2);
            const auto y = static_cast<S16BIT>(part / 3 * 8192 - 32768);
            ASSERT_TRUE(DLA_Ellipse(x, y, box.w, box.h, 1, kFill, kLine));
            model.Ellipse(x, y, box.w, box.h, 1, kFill, kLine);
            ASSERT_TRUE(canvas.Shows(model.Picture()))
                << "box of " << box.w << " x " << box.h << " at " << x << ", " << y;
        }
    }
}

} // namespace
