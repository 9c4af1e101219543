// Every drawing primitive with the most unlikely arguments: it returns, and stays in the buffer and
// in the arrays it is given. Pages around these cannot be touched.
#include "guarded_buffer.h"
#include "seeded_random.h"
#include "vrel_kestrin_dlautils.h"

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::GuardedBuffer;
using kestrin_test::SeededRandom;

namespace {

constexpr U32BIT kColour = 0xff8040c0;

struct Size
{
    U16BIT width, height;
};

void PrintTo(const Size& size, std::ostream* out)
{
    *out << size.width << " x " << size.height;
}

class DlaHammer : public testing::TestWithParam<Size>
{
protected:
    S16BIT Coordinate(U16BIT size)
    {
        const std::int64_t values[] = {INT16_MIN, INT16_MIN + 1, -1,       0,
                                       1,         size / 2,      size - 1, size,
                                       size + 1,  INT16_MAX - 1, INT16_MAX};
        if (random.Chance(20))
            return static_cast<S16BIT>(random.Between(INT16_MIN, INT16_MAX));
        return static_cast<S16BIT>(values[random.Between(0, 10)]);
    }
    S16BIT X() { return Coordinate(GetParam().width); }
    S16BIT Y() { return Coordinate(GetParam().height); }

    U16BIT Width()
    {
        const U16BIT values[] = {0, 1, 2, 3, 5, 40, 255, 32766, 32767, 32768, 32769, 65534, 65535};
        return values[random.Between(0, 12)];
    }

    /** A box's size. */
    U16BIT Extent()
    {
        const U16BIT values[] = {0,    1,    2,     3,     4,     100,   1023,
                                 2048, 4097, 32767, 32768, 53511, 65534, 65535};
        return values[random.Between(0, 13)];
    }

    /** Of an outline: each of its pixels becomes a disc, so not both are huge. */
    U16BIT Outline(U16BIT w, U16BIT h)
    {
        const U16BIT width = Width();
        const std::int64_t effort = std::int64_t{width} * (w + h);
        return effort < 2000000 ? width : static_cast<U16BIT>(random.Between(0, 9));
    }

    U16BIT Angle()
    {
        const U16BIT values[] = {0,     1,     31,    32,    33,    2880,  5759,  5760,  5761,
                                 11520, 17279, 17280, 20000, 23008, 23038, 23039, 23040, 65535};
        if (random.Chance(20))
            return static_cast<U16BIT>(random.Between(0, 23040));
        return values[random.Between(0, 17)];
    }

    /** Calls `draw` often, on buffers that end and that begin where memory does. */
    template <typename Draw>
    void Hammer(int rounds, Draw draw)
    {
        const Size size = GetParam();
        for (const auto side : {GuardedBuffer::AtEnd, GuardedBuffer::AtBegin}) {
            const GuardedBuffer buffer(std::size_t{4} * size.width * size.height, side);
            ASSERT_TRUE(
                DLA_Init(reinterpret_cast<U32BIT*>(buffer.Data()), size.width, size.height));
            for (int i = 0; i < SeededRandom::Rounds(rounds); ++i)
                ASSERT_TRUE(draw());
        }
    }

    SeededRandom random{1848};
};

TEST_P(DlaHammer, Lines)
{
    Hammer(4000, [&] { return DLA_Line(X(), Y(), X(), Y(), Width(), kColour); });
}

TEST_P(DlaHammer, RectanglesAndBorders)
{
    Hammer(800, [&] {
        return DLA_Border(Width(), kColour) &&
               DLA_Rectangle(X(), Y(), X(), Y(), Width(), kColour, kColour);
    });
}

TEST_P(DlaHammer, PolygonsAndPolylines)
{
    Hammer(300, [&] {
        const auto count = static_cast<std::size_t>(random.Between(0, 9));
        std::vector<S_POINT> points(count);
        for (S_POINT& point : points)
            point = {X(), Y()};
        const GuardedBuffer array(count * sizeof(S_POINT));
        auto* given = reinterpret_cast<S_POINT*>(array.Data());
        if (count > 0)
            std::memcpy(given, points.data(), count * sizeof(S_POINT));
        const auto n = static_cast<U16BIT>(count);
        return DLA_Polygon(given, n, Width(), kColour, kColour) &&
               DLA_Polyline(given, n, Width(), kColour);
    });
}

TEST_P(DlaHammer, PolygonsOfAllPointsThatAreCounted)
{
    const GuardedBuffer array(65535 * sizeof(S_POINT));
    auto* points = reinterpret_cast<S_POINT*>(array.Data());
    for (int kind = 0; kind < 4; ++kind) {
        for (int i = 0; i < 65535; ++i) {
            // In turn inside and outside one edge: clipping makes three points of two.
            const bool out = i % 2 == 0;
            switch (kind) {
            case 0:
                points[i] = {X(), static_cast<S16BIT>(random.Between(-9, 200))};
                break;
            case 1:
                points[i] = {static_cast<S16BIT>(out ? -9 : 3), static_cast<S16BIT>(i / 3)};
                break;
            case 2:
                points[i] = {static_cast<S16BIT>(i / 3), static_cast<S16BIT>(out ? -9 : 3)};
                break;
            default:
                points[i] = {static_cast<S16BIT>(out ? -20000 : 20000),
                             static_cast<S16BIT>(i % 4 < 2 ? -20000 : 20000)};
            }
        }
        Hammer(1, [&] { return DLA_Polygon(points, 65535, 1, kColour, kColour); });
    }
}

TEST_P(DlaHammer, MissingArrays)
{
    Hammer(10, [&] {
        const auto count = static_cast<U16BIT>(random.Between(0, 65535));
        return DLA_Polygon(nullptr, count, Width(), kColour, kColour) &&
               DLA_Polyline(nullptr, count, Width(), kColour) &&
               DLA_Polygon(nullptr, 65535, 1, kColour, kColour) &&
               DLA_Polyline(nullptr, 65535, 1, kColour);
    });
}

TEST_P(DlaHammer, Ellipses)
{
    Hammer(150, [&] {
        const S16BIT x = X();
        const S16BIT y = Y();
        const U16BIT w = Extent();
        const U16BIT h = Extent();
        return DLA_Ellipse(x, y, w, h, Outline(w, h), kColour, kColour);
    });
}

TEST_P(DlaHammer, Arcs)
{
    Hammer(150, [&] {
        const S16BIT x = X();
        const S16BIT y = Y();
        const U16BIT w = Extent();
        const U16BIT h = Extent();
        return DLA_Arc(x, y, w, h, Angle(), Angle(), Outline(w, h), kColour);
    });
}

TEST_P(DlaHammer, Sectors)
{
    Hammer(150, [&] {
        const S16BIT x = X();
        const S16BIT y = Y();
        const U16BIT w = Extent();
        const U16BIT h = Extent();
        return DLA_Sector(x, y, w, h, Angle(), Angle(), Outline(w, h), kColour, kColour);
    });
}

INSTANTIATE_TEST_SUITE_P(Buffer, DlaHammer,
                         testing::Values(Size{1, 1}, Size{3, 2}, Size{300, 200}, Size{65535, 1},
                                         Size{2, 65535}, Size{40000, 3}),
                         [](const testing::TestParamInfo<Size>& size) {
                             return "Of" + std::to_string(size.param.width) + "x" +
                                    std::to_string(size.param.height);
                         });

TEST(DlaMemory, SmallSizesAreGivenAndNullIsFreed)
{
    void* nothing = MHEG5_MALLOC(0);
    EXPECT_NE(nothing, nullptr);
    MHEG5_FREE(static_cast<U8BIT*>(nothing));
    auto* bytes = static_cast<U8BIT*>(MHEG5_MALLOC(4096));
    ASSERT_NE(bytes, nullptr);
    std::memset(bytes, 1, 4096);
    MHEG5_FREE(bytes);
    MHEG5_FREE(nullptr);
}

} // namespace
