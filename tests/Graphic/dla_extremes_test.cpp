// Arguments of all kinds, for the sanitizers and the guards around the buffer: nothing may be
// written outside it, and every call ends.
#include "dla_sketch.h"
#include "seeded_random.h"

#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;
using kestrin_test::SeededRandom;

namespace {

class Arguments
{
public:
    explicit Arguments(SeededRandom& random) : _random(random) {}

    S16BIT Coordinate()
    {
        switch (_random.Between(0, 4)) {
        case 0:
            return static_cast<S16BIT>(_random.Between(-32768, 32767));
        case 1:
            return static_cast<S16BIT>(_random.Chance(50) ? _random.Between(-32768, -32760)
                                                          : _random.Between(32760, 32767));
        default:
            return static_cast<S16BIT>(_random.Between(-40, 140));
        }
    }
    U16BIT Number()
    {
        switch (_random.Between(0, 5)) {
        case 0:
            return static_cast<U16BIT>(_random.Between(0, 65535));
        case 1:
            return static_cast<U16BIT>(_random.Between(65500, 65535));
        case 2:
            return static_cast<U16BIT>(_random.Between(0, 2));
        default:
            return static_cast<U16BIT>(_random.Between(0, 120));
        }
    }
    U16BIT Angle() { return static_cast<U16BIT>(_random.Between(0, 23100)); }
    std::vector<S_POINT> Points()
    {
        std::vector<S_POINT> points(static_cast<std::size_t>(_random.Between(0, 12)));
        for (S_POINT& point : points)
            point = {Coordinate(), Coordinate()};
        return points;
    }

private:
    SeededRandom& _random;
};

/** Calls `draw` for buffers of many sizes; its guards are looked at after each. */
template <class Draw>
void Repeat(int rounds, Draw draw)
{
    SeededRandom random;
    Arguments arguments(random);
    for (int i = SeededRandom::Rounds(rounds); i > 0; --i) {
        const DlaSketch sketch(static_cast<int>(random.Between(1, 70)),
                               static_cast<int>(random.Between(1, 70)));
        for (int j = 0; j < 4; ++j)
            draw(arguments);
    }
}

TEST(DlaExtremes, Lines)
{
    Repeat(20000, [](Arguments& any) {
        EXPECT_TRUE(DLA_Line(any.Coordinate(), any.Coordinate(), any.Coordinate(), any.Coordinate(),
                             any.Number(), 'l'));
    });
}

TEST(DlaExtremes, ThinLines)
{
    Repeat(20000, [](Arguments& any) {
        EXPECT_TRUE(DLA_Line(any.Coordinate(), any.Coordinate(), any.Coordinate(), any.Coordinate(),
                             1, 'l'));
    });
}

TEST(DlaExtremes, RectanglesAndBorders)
{
    Repeat(5000, [](Arguments& any) {
        EXPECT_TRUE(DLA_Rectangle(any.Coordinate(), any.Coordinate(), any.Coordinate(),
                                  any.Coordinate(), any.Number(), 'f', 'l'));
        EXPECT_TRUE(DLA_Border(any.Number(), 'l'));
    });
}

TEST(DlaExtremes, PolygonsAndPolylines)
{
    Repeat(5000, [](Arguments& any) {
        std::vector<S_POINT> points = any.Points();
        const auto count = static_cast<U16BIT>(points.size());
        EXPECT_TRUE(DLA_Polygon(points.data(), count, any.Number(), 'f', 'l'));
        EXPECT_TRUE(DLA_Polyline(points.data(), count, any.Number(), 'l'));
    });
}

TEST(DlaExtremes, Ellipses)
{
    Repeat(300, [](Arguments& any) {
        EXPECT_TRUE(DLA_Ellipse(any.Coordinate(), any.Coordinate(), any.Number(), any.Number(),
                                any.Number(), 'f', 'l'));
    });
}

TEST(DlaExtremes, ArcsAndSectors)
{
    Repeat(100, [](Arguments& any) {
        EXPECT_TRUE(DLA_Arc(any.Coordinate(), any.Coordinate(), any.Number(), any.Number(),
                            any.Angle(), any.Angle(), any.Number(), 'l'));
        EXPECT_TRUE(DLA_Sector(any.Coordinate(), any.Coordinate(), any.Number(), any.Number(),
                               any.Angle(), any.Angle(), any.Number(), 'f', 'l'));
    });
}

} // namespace
