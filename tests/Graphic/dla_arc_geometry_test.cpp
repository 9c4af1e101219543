// Arcs and sectors against geometry. The end points of an arc may be off by a pixel, so some pixels
// must be set, some must not, and some near the ends may be either.
#include "dla_model.h"
#include "dla_trial.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::DlaArguments;
using kestrin_test::DlaCanvas;
using kestrin_test::DlaModel;
using kestrin_test::EllipseArithmetic;
using kestrin_test::EllipseBox;
using kestrin_test::EllipseStep;
using kestrin_test::SeededRandom;
using kestrin_test::TraceEllipse;

namespace {

constexpr std::uint32_t kBackground = 0x00102030;
constexpr std::uint32_t kFill = 0xff8040c0;
constexpr std::uint32_t kLine = 0x80ffe010;
constexpr int kTurn = 23040;
constexpr double kRadian = 3.14159265358979323846 / 180;

struct Vector
{
    double x, y; // y upwards

    double Length() const { return std::hypot(x, y); }
};

enum Verdict
{
    MustNot,
    May,
    Must
};

/** The part of a turn that an arc covers once its ends are rounded to degrees. */
class Sweep
{
public:
    Sweep(const EllipseBox& box, int start, int arc) : _box(box), _start((start + 32) / 64)
    {
        int end = start + arc - 1;
        end -= end > kTurn ? kTurn : 0;
        _extent = (end + 32) / 64 - _start + (end <= start ? 360 : 0);
    }

    /** The exact point of the ellipse at the first or the second end. */
    Vector End(bool second) const
    {
        const double angle = (_start + (second ? _extent : 0)) * kRadian;
        const double x = std::cos(angle);
        const double y = std::sin(angle);
        const double scale =
            std::hypot(static_cast<double>(_box.ry) * x, static_cast<double>(_box.rx) * y);
        const auto area = static_cast<double>(_box.rx * _box.ry);
        return {area * x / scale, area * y / scale};
    }

    Verdict Covers(Vector at) const
    {
        if (_extent == 360)
            return Must;
        if (IsNear(at, End(false)) || IsNear(at, End(true)))
            return May;
        double angle = std::atan2(at.y, at.x) / kRadian - _start;
        angle -= std::floor(angle / 360) * 360;
        return angle <= _extent ? Must : MustNot;
    }

private:
    /**
     * An end point that is off by 1.5 pixels in both directions turns its radius by that much, seen
     * at the end's distance from the centre; elsewhere in proportion.
     */
    static bool IsNear(Vector at, Vector end)
    {
        const double across = std::abs(at.x * end.y - at.y * end.x) / end.Length();
        const double along = (at.x * end.x + at.y * end.y) / end.Length();
        const double reach = std::max(2.2, 2.2 * at.Length() / end.Length());
        return across <= reach && along >= -reach;
    }

    EllipseBox _box;
    int _start, _extent; // degrees
};

struct ArcShape
{
    S16BIT x, y;
    U16BIT w, h, start, arc, width;

    EllipseBox Box() const { return {x, y, w, h}; }

    std::string Text() const
    {
        return "box of " + std::to_string(w) + " x " + std::to_string(h) + " at " +
               std::to_string(x) + ", " + std::to_string(y) + ", arc of " + std::to_string(arc) +
               " from " + std::to_string(start) + ", width " + std::to_string(width);
    }
};

/** What an arc leaves at least and at most, as pictures. */
struct Bounds
{
    Bounds(int width, int height)
        : least(width, height, kBackground), most(width, height, kBackground)
    {
    }

    DlaModel least, most;
};

DlaModel::Point AtOffset(const EllipseBox& box, std::int64_t x, std::int64_t y, bool right, bool up)
{
    return {static_cast<std::int16_t>(right ? box.cx + x + box.shift_x : box.cx - x),
            static_cast<std::int16_t>(up ? box.cy - y : box.cy + y + box.shift_y)};
}

void DrawBounds(Bounds& bounds, const ArcShape& shape)
{
    const EllipseBox box = shape.Box();
    const Sweep sweep(box, shape.start, shape.arc);
    for (const EllipseStep& step : TraceEllipse(box.rx, box.ry, EllipseArithmetic::Exact)) {
        for (int corner = 0; corner < 4; ++corner) {
            const bool right = corner % 2 == 0;
            const bool up = corner < 2;
            const Verdict verdict = sweep.Covers({static_cast<double>(right ? step.x : -step.x),
                                                  static_cast<double>(up ? step.y : -step.y)});
            const DlaModel::Point at = AtOffset(box, step.x, step.y, right, up);
            if (verdict == Must)
                bounds.least.Disc(at, shape.width, kLine);
            if (verdict != MustNot)
                bounds.most.Disc(at, shape.width, kLine);
        }
    }
}

testing::AssertionResult IsWithin(const DlaCanvas& canvas, const Bounds& bounds)
{
    for (int y = 0; y < canvas.Height(); ++y) {
        for (int x = 0; x < canvas.Width(); ++x) {
            const std::uint32_t colour = canvas.At(x, y);
            const char* fault = nullptr;
            if (colour != kLine && bounds.least.Picture().At(x, y) == kLine)
                fault = "misses";
            else if (colour != kBackground && bounds.most.Picture().At(x, y) != kLine)
                fault = "has";
            if (fault)
                return testing::AssertionFailure() << fault << " (" << x << ", " << y << ")";
        }
    }
    return canvas.GuardsAreIntact();
}

/** Boxes that the outline of is in sight, with angles of all kinds. */
ArcShape RandomShape(DlaArguments& arguments)
{
    SeededRandom& random = arguments.Random();
    ArcShape shape{};
    shape.w = static_cast<U16BIT>(random.Between(3, 2 * arguments.Width() + 20));
    shape.h = static_cast<U16BIT>(random.Between(3, 2 * arguments.Height() + 20));
    shape.x = static_cast<S16BIT>(random.Between(-shape.w + 1, arguments.Width() - 1));
    shape.y = static_cast<S16BIT>(random.Between(-shape.h + 1, arguments.Height() - 1));
    const auto angle = [&](int least) {
        const std::int64_t around = random.Between(0, 8) * kTurn / 8 + random.Between(-40, 40);
        const std::int64_t any = random.Chance(30) ? around : random.Between(0, kTurn - 1);
        return static_cast<U16BIT>(
            std::min<std::int64_t>(std::max<std::int64_t>(any, least), kTurn - 1));
    };
    shape.start = angle(0);
    shape.arc = angle(1);
    shape.width = static_cast<U16BIT>(random.Chance(50) ? 1 : random.Between(0, 40));
    return shape;
}

class DlaArcGeometry : public testing::TestWithParam<int>
{
protected:
    template <typename Draw>
    void Repeat(int cases, Draw draw)
    {
        SeededRandom random(1789 + static_cast<std::uint32_t>(GetParam()));
        for (int i = 0; i < SeededRandom::Rounds(cases) && !HasFailure(); ++i) {
            const int width = DlaArguments::BufferSize(random, 300);
            const int height = DlaArguments::BufferSize(random, 200);
            const DlaCanvas canvas(width, height, kBackground);
            DlaArguments arguments(random, width, height);
            draw(arguments, canvas);
        }
    }
};

TEST_P(DlaArcGeometry, ArcsCoverTheirAngles)
{
    Repeat(3000, [](DlaArguments& arguments, const DlaCanvas& canvas) {
        const ArcShape shape = RandomShape(arguments);
        ASSERT_TRUE(DLA_Arc(shape.x, shape.y, shape.w, shape.h, shape.start, shape.arc, shape.width,
                            kLine));
        Bounds bounds(canvas.Width(), canvas.Height());
        DrawBounds(bounds, shape);
        EXPECT_TRUE(IsWithin(canvas, bounds)) << shape.Text();
    });
}

// Radii up to 32767, seen where one of the arc's ends lies.
TEST_P(DlaArcGeometry, ArcsOfHugeBoxesEndWhereTheyShould)
{
    Repeat(40, [](DlaArguments& arguments, const DlaCanvas& canvas) {
        SeededRandom& random = arguments.Random();
        ArcShape shape = RandomShape(arguments);
        shape.w = static_cast<U16BIT>(random.Between(3, random.Chance(30) ? 3000 : UINT16_MAX));
        shape.h = static_cast<U16BIT>(random.Between(3, random.Chance(30) ? 3000 : UINT16_MAX));
        shape.x = 0;
        shape.y = 0;
        shape.width = static_cast<U16BIT>(random.Chance(70) ? 1 : random.Between(0, 6));
        const EllipseBox box = shape.Box();
        const Vector end = Sweep(box, shape.start, shape.arc).End(random.Chance(50));
        shape.x = static_cast<S16BIT>(canvas.Width() / 2 - std::lround(end.x) - box.rx);
        shape.y = static_cast<S16BIT>(canvas.Height() / 2 + std::lround(end.y) - box.ry);
        ASSERT_TRUE(DLA_Arc(shape.x, shape.y, shape.w, shape.h, shape.start, shape.arc, shape.width,
                            kLine));
        Bounds bounds(canvas.Width(), canvas.Height());
        DrawBounds(bounds, shape);
        EXPECT_TRUE(IsWithin(canvas, bounds)) << shape.Text();
    });
}

/** Angles that cut a turn into pieces of a degree at least. */
std::vector<int> RandomCuts(SeededRandom& random, bool whole_degrees)
{
    std::vector<int> cuts;
    int at = static_cast<int>(random.Between(0, 40 * 64));
    while (at < kTurn - 64) {
        // Halves of degrees are rounded up, so that pieces that meet there have a degree between.
        if (whole_degrees)
            at -= at % 64;
        else if (at % 64 == 32)
            ++at;
        if (cuts.empty() || at - cuts.back() >= 64)
            cuts.push_back(at);
        at += static_cast<int>(random.Between(64, kTurn / 2));
    }
    return cuts;
}

template <typename Draw>
void DrawPieces(const std::vector<int>& cuts, Draw draw)
{
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        const int next = i + 1 < cuts.size() ? cuts[i + 1] : cuts[0] + kTurn;
        draw(static_cast<U16BIT>(cuts[i]), static_cast<U16BIT>(next - cuts[i]));
    }
}

TEST_P(DlaArcGeometry, ArcsThatMeetLeaveNoGap)
{
    Repeat(1500, [](DlaArguments& arguments, const DlaCanvas& canvas) {
        const ArcShape shape = RandomShape(arguments);
        const std::vector<int> cuts = RandomCuts(arguments.Random(), false);
        if (cuts.size() < 2)
            return;
        DrawPieces(cuts, [&](U16BIT start, U16BIT arc) {
            DLA_Arc(shape.x, shape.y, shape.w, shape.h, start, arc, shape.width, kLine);
        });
        ArcShape whole = shape;
        whole.start = 0;
        whole.arc = kTurn - 1;
        Bounds bounds(canvas.Width(), canvas.Height());
        DrawBounds(bounds, whole);
        EXPECT_TRUE(canvas.Shows(bounds.least.Picture()))
            << shape.Text() << ", " << cuts.size() << " pieces";
    });
}

TEST_P(DlaArcGeometry, SectorsThatMeetFillTheEllipse)
{
    Repeat(1500, [](DlaArguments& arguments, const DlaCanvas& canvas) {
        const ArcShape shape = RandomShape(arguments);
        const std::vector<int> cuts = RandomCuts(arguments.Random(), arguments.Random().Chance(50));
        if (cuts.size() < 2)
            return;
        DrawPieces(cuts, [&](U16BIT start, U16BIT arc) {
            DLA_Sector(shape.x, shape.y, shape.w, shape.h, start, arc, 0, kFill, kLine);
        });
        DlaModel model(canvas.Width(), canvas.Height(), kBackground);
        model.Ellipse(shape.x, shape.y, shape.w, shape.h, 0, kFill, kLine);
        EXPECT_TRUE(canvas.Shows(model.Picture()))
            << shape.Text() << ", " << cuts.size() << " pieces";
    });
}

/** How far a point is from the radius that ends there. */
double DistanceFromRadius(Vector at, Vector end)
{
    const double along = (at.x * end.x + at.y * end.y) / (end.x * end.x + end.y * end.y);
    const double t = std::min(1.0, std::max(0.0, along));
    return Vector{at.x - t * end.x, at.y - t * end.y}.Length();
}

/** Whether a point lies beside the radius, not beyond its ends or close to these. */
bool IsBesideRadius(Vector at, Vector end)
{
    const double along = (at.x * end.x + at.y * end.y) / end.Length();
    return along > 3 && along < end.Length() - 3;
}

/** What a sector's pixel may be, from the ellipse's fill, its outline and the two radii. */
class SectorJudge
{
public:
    SectorJudge(const DlaCanvas& canvas, const ArcShape& shape)
        : _canvas(canvas), _shape(shape), _box(shape.Box()), _sweep(_box, shape.start, shape.arc),
          _fill(canvas.Width(), canvas.Height(), kBackground),
          _outline(canvas.Width(), canvas.Height())
    {
        _fill.Ellipse(shape.x, shape.y, shape.w, shape.h, 0, kFill, kLine);
        DrawBounds(_outline, shape);
    }

    const char* Fault(int x, int y) const
    {
        const std::uint32_t colour = _canvas.At(x, y);
        const Vector at = Offset(x, y);
        const bool in_fill = _fill.Picture().At(x, y) == kFill;
        const Verdict verdict = in_fill ? _sweep.Covers(at) : MustNot;
        const bool may_be_line = IsNearRadius(at) || _outline.most.Picture().At(x, y) == kLine;
        if (colour != kLine && _outline.least.Picture().At(x, y) == kLine)
            return "the arc is not drawn";
        if (colour != kLine && IsInRadius(at))
            return "the radius is not drawn";
        if (colour == kLine && !may_be_line)
            return "is line beside the outline";
        if (colour == kBackground && verdict == Must && at.Length() > 0)
            return "is not painted";
        if (colour == kFill && verdict == MustNot)
            return "is filled";
        return nullptr;
    }

private:
    Vector Offset(int x, int y) const
    {
        const std::int64_t right = x > _box.cx ? x - _box.cx - _box.shift_x : x - _box.cx;
        const std::int64_t down = y > _box.cy ? y - _box.cy - _box.shift_y : y - _box.cy;
        return {static_cast<double>(right), static_cast<double>(-down)};
    }

    double FromRadii(Vector at) const
    {
        return std::min(DistanceFromRadius(at, _sweep.End(false)),
                        DistanceFromRadius(at, _sweep.End(true)));
    }

    // A slanting line is up to 7 % wider or narrower than it says; its ends are square.
    bool IsNearRadius(Vector at) const
    {
        return _shape.width > 0 && FromRadii(at) <= 0.76 * _shape.width + 3.5;
    }
    bool IsInRadius(Vector at) const
    {
        for (const Vector end : {_sweep.End(false), _sweep.End(true)}) {
            if (IsBesideRadius(at, end) && DistanceFromRadius(at, end) <= 0.46 * _shape.width - 3)
                return true;
        }
        return false;
    }

    const DlaCanvas& _canvas;
    ArcShape _shape;
    EllipseBox _box;
    Sweep _sweep;
    DlaModel _fill;
    Bounds _outline;
};

TEST_P(DlaArcGeometry, SectorsLieBetweenTheirRadii)
{
    Repeat(2000, [](DlaArguments& arguments, const DlaCanvas& canvas) {
        ArcShape shape = RandomShape(arguments);
        if (arguments.Random().Chance(40))
            shape.width = 0;
        ASSERT_TRUE(DLA_Sector(shape.x, shape.y, shape.w, shape.h, shape.start, shape.arc,
                               shape.width, kFill, kLine));
        const SectorJudge judge(canvas, shape);
        for (int y = 0; y < canvas.Height(); ++y) {
            for (int x = 0; x < canvas.Width(); ++x) {
                const char* fault = judge.Fault(x, y);
                ASSERT_TRUE(fault == nullptr)
                    << fault << " at " << x << ", " << y << ": " << shape.Text();
            }
        }
        EXPECT_TRUE(canvas.GuardsAreIntact());
    });
}

INSTANTIATE_TEST_SUITE_P(Share, DlaArcGeometry, testing::Range(0, 4));

// Quarters need no rounding: each is exactly a quadrant of the trace.
TEST(DlaArcQuarters, AreTheQuadrantsOfTheOutline)
{
    for (const int size : {4, 5, 40, 41, 120, 121}) {
        const int height = size * 2 / 3;
        const auto w = static_cast<U16BIT>(size);
        const auto h = static_cast<U16BIT>(height);
        for (int quarter = 0; quarter < 4; ++quarter) {
            const DlaCanvas canvas(size + 6, height + 6, kBackground);
            DLA_Arc(3, 3, w, h, static_cast<U16BIT>(quarter * kTurn / 4), kTurn / 4, 1, kLine);
            DlaModel model(size + 6, height + 6, kBackground);
            const EllipseBox box(3, 3, w, h);
            for (const EllipseStep& step : TraceEllipse(box.rx, box.ry, EllipseArithmetic::Exact)) {
                model.Disc(AtOffset(box, step.x, step.y, quarter == 0 || quarter == 3, quarter < 2),
                           1, kLine);
            }
            EXPECT_TRUE(canvas.Shows(model.Picture())) << size << ", quarter " << quarter;
        }
    }
}

// The radii at right angles are in the sector. They start in the one pixel that is the centre of
// even boxes too, whose right and lower halves are a pixel larger.
TEST(DlaSectorQuarters, AreTheQuadrantsOfTheFill)
{
    for (const int size : {4, 5, 40, 41, 120, 121}) {
        const int height = size * 2 / 3;
        const auto w = static_cast<U16BIT>(size);
        const auto h = static_cast<U16BIT>(height);
        DlaModel whole(size + 6, height + 6, kBackground);
        whole.Ellipse(3, 3, w, h, 0, kFill, kLine);
        const EllipseBox box(3, 3, w, h);
        for (int quarter = 0; quarter < 4; ++quarter) {
            const DlaCanvas canvas(size + 6, height + 6, kBackground);
            DLA_Sector(3, 3, w, h, static_cast<U16BIT>(quarter * kTurn / 4), kTurn / 4, 0, kFill,
                       kLine);
            kestrin_display::ArgbImage expected = whole.Picture();
            for (int y = 0; y < expected.height; ++y) {
                for (int x = 0; x < expected.width; ++x) {
                    const bool right = quarter == 0 || quarter == 3;
                    const bool in_column = right ? x >= box.cx : x <= box.cx;
                    const bool in_row = quarter < 2 ? y <= box.cy : y >= box.cy;
                    if (!in_column || !in_row)
                        expected.At(x, y) = kBackground;
                }
            }
            EXPECT_TRUE(canvas.Shows(expected)) << size << ", quarter " << quarter;
        }
    }
}

} // namespace
