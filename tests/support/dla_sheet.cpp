#include "dla_sheet.h"

#include "vrel_kestrin_dlautils.h"

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace kestrin_test {

using kestrin_display::ArgbImage;

namespace {

constexpr int kCellWidth = 112;
constexpr int kCellHeight = 88;
constexpr int kGap = 4;

constexpr U32BIT kPaper = 0xfff4f1e8;
constexpr U32BIT kGround = 0xffffffff;
constexpr U32BIT kInk = 0xff20304a;
constexpr U32BIT kBlue = 0xff8fb8de;
constexpr U32BIT kGreen = 0xff9bc99b;
constexpr U32BIT kYellow = 0xfff2d272;
constexpr U32BIT kRed = 0xffe08a7a;

constexpr S16BIT kCentreX = kCellWidth / 2;
constexpr S16BIT kCentreY = kCellHeight / 2;

using Cell = std::function<void()>;
using Row = std::vector<Cell>;
using Points = std::vector<S_POINT>;

void Polygon(Points points, U16BIT width, U32BIT fill)
{
    DLA_Polygon(points.data(), static_cast<U16BIT>(points.size()), width, fill, kInk);
}

void Polyline(Points points, U16BIT width)
{
    DLA_Polyline(points.data(), static_cast<U16BIT>(points.size()), width, kInk);
}

/** The corners of a regular polygon, or of a star that takes every `step`th of them. */
Points Regular(int corners, int step, double first_degree)
{
    Points points;
    for (int i = 0; i < corners; ++i) {
        const double angle =
            (first_degree + 360.0 * i * step / corners) * 3.14159265358979323846 / 180;
        points.push_back({static_cast<S16BIT>(kCentreX + std::lround(38 * std::cos(angle))),
                          static_cast<S16BIT>(kCentreY + std::lround(38 * std::sin(angle)))});
    }
    return points;
}

/** Lines in sixteen directions. */
Cell Fan(U16BIT width)
{
    return [width] {
        for (int i = 0; i < 16; ++i) {
            const double angle = i * 3.14159265358979323846 / 8;
            const auto at = [&](double radius) {
                return S_POINT{
                    static_cast<S16BIT>(kCentreX + std::lround(radius * std::cos(angle))),
                    static_cast<S16BIT>(kCentreY + std::lround(radius * std::sin(angle)))};
            };
            const S_POINT from = at(4 + 2.0 * width);
            const S_POINT to = at(42);
            DLA_Line(from.x, from.y, to.x, to.y, width, i % 2 == 0 ? kInk : kRed);
        }
    };
}

Cell Zigzag(U16BIT width)
{
    return [width] {
        Polyline({{12, 70}, {30, 20}, {44, 68}, {60, 20}, {60, 60}, {98, 60}, {78, 26}, {100, 14}},
                 width);
    };
}

Cell Box(U16BIT width)
{
    return [width] {
        DLA_Rectangle(14, 14, 70, 50, width, kBlue, kInk);
        DLA_Rectangle(86, 14, 87, 50, width, kGreen, kInk); // one column
        DLA_Rectangle(14, 70, 70, 71, width, kGreen, kInk); // one row
        DLA_Rectangle(86, 70, 86, 80, width, kRed, kInk);   // none
        DLA_Rectangle(90, 64, 150, 140, width, kYellow, kInk);
    };
}

Cell Border(U16BIT width)
{
    return [width] {
        DLA_Border(width, kInk);
        DLA_Rectangle(40, 30, 72, 58, 0, kYellow, kInk);
    };
}

Cell Ellipse(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT width)
{
    return [=] { DLA_Ellipse(x, y, w, h, width, kGreen, kInk); };
}

/** Boxes of 1 x 1 to 12 x 8. */
void SmallEllipses(U16BIT width)
{
    S16BIT y = 2;
    for (U16BIT h = 1; h <= 8; ++h) {
        S16BIT x = 2;
        for (U16BIT w = 1; w <= 12; ++w) {
            DLA_Ellipse(x, y, w, h, width, kRed, kInk);
            x = static_cast<S16BIT>(x + w + 2);
        }
        y = static_cast<S16BIT>(y + h + 3);
    }
}

Cell Arcs(U16BIT width, const std::vector<std::pair<int, int>>& degrees)
{
    return [=] {
        S16BIT inset = 6;
        for (const auto& arc : degrees) {
            const auto w = static_cast<U16BIT>(kCellWidth - 2 * inset);
            const auto h = static_cast<U16BIT>(kCellHeight - 2 * inset);
            DLA_Arc(inset, inset, w, h, static_cast<U16BIT>(arc.first * 64),
                    static_cast<U16BIT>(arc.second * 64), width, kInk);
            inset = static_cast<S16BIT>(inset + width + 5);
        }
    };
}

/** Sectors next to each other, in turn of four colours. */
Cell Pie(U16BIT w, U16BIT h, U16BIT width, const std::vector<int>& degrees)
{
    return [=] {
        const U32BIT fills[] = {kBlue, kYellow, kGreen, kRed};
        for (std::size_t i = 0; i + 1 < degrees.size(); ++i) {
            DLA_Sector(static_cast<S16BIT>(kCentreX - w / 2), static_cast<S16BIT>(kCentreY - h / 2),
                       w, h, static_cast<U16BIT>(degrees[i] * 64),
                       static_cast<U16BIT>((degrees[i + 1] - degrees[i]) * 64), width, fills[i % 4],
                       kInk);
        }
    };
}

std::vector<Row> LineRows()
{
    return {
        {Fan(1), Fan(2), Fan(3), Fan(4), Fan(5), Fan(7), Fan(10)},
        {Zigzag(1), Zigzag(2), Zigzag(3), Zigzag(6), Zigzag(7), Zigzag(11), Zigzag(14)},
        {Box(0), Box(1), Box(2), Box(5), Border(1), Border(2), Border(9)},
    };
}

Row ConvexPolygons()
{
    return {
        [] {
            Polygon({{56, 8}, {100, 76}, {12, 76}}, 0, kBlue);
        },
        [] {
            Polygon({{12, 10}, {100, 10}, {56, 78}}, 0, kBlue);
        },
        [] {
            Polygon({{20, 10}, {92, 30}, {80, 76}, {8, 60}}, 1, kGreen);
        },
        [] { Polygon(Regular(6, 1, 0), 2, kYellow); },
        [] { Polygon(Regular(12, 1, 10), 5, kRed); },
        [] {
            Polygon({{-30, 20}, {60, -40}, {150, 50}, {50, 120}}, 3, kBlue);
        },
        [] {
            Polygon({{30, 30}, {30, 30}, {80, 30}, {80, 60}, {30, 60}}, 0, kGreen);
        },
    };
}

// Of these each row has one span, from the left side to the right one.
Row OtherPolygons()
{
    return {
        [] {
            Polygon({{10, 10}, {100, 10}, {70, 44}, {100, 78}, {10, 78}}, 1, kBlue);
        },
        [] {
            Polygon({{10, 78}, {10, 20}, {40, 60}, {70, 8}, {100, 78}}, 1, kBlue);
        },
        [] {
            Polygon({{14, 10}, {98, 10}, {14, 78}, {98, 78}}, 1, kGreen);
        },
        [] {
            Polygon({{14, 10}, {98, 78}, {98, 10}, {14, 78}}, 1, kGreen);
        },
        [] { Polygon(Regular(5, 2, -90), 1, kYellow); },
        [] { Polygon(Regular(7, 3, -90), 3, kRed); },
        [] {
            Polygon({{8, 8}, {104, 8}, {104, 80}, {60, 80}, {60, 40}, {50, 40}, {50, 80}, {8, 80}},
                    2, kYellow);
        },
    };
}

std::vector<Row> CurveRows()
{
    const std::vector<std::pair<int, int>> quarters = {{0, 90}, {90, 90}, {180, 90}, {270, 90}};
    const std::vector<std::pair<int, int>> others = {{30, 200}, {300, 100}, {190, 340}};
    return {
        {[] { SmallEllipses(0); }, [] { SmallEllipses(1); }, Ellipse(6, 6, 100, 76, 0),
         Ellipse(6, 6, 101, 77, 1), Ellipse(10, 20, 92, 40, 6), Ellipse(40, 8, 30, 72, 3),
         Ellipse(-40, 30, 130, 100, 5)},
        {Arcs(1, quarters), Arcs(4, quarters), Arcs(1, others), Arcs(3, others),
         Arcs(8, {{45, 90}, {225, 90}}), Arcs(0, quarters),
         [] {
             DLA_Arc(8, 8, 96, 72, 0, 1, 1, kInk); // an extent of 1 is the whole ellipse
             DLA_Arc(30, 24, 52, 40, 64 * 10, 64 * 3, 5, kRed);
         }},
        {Pie(100, 76, 0, {0, 60, 135, 230, 360}), Pie(101, 77, 1, {0, 60, 135, 230, 360}),
         Pie(100, 76, 5, {20, 110, 180, 300}), Pie(76, 76, 1, {45, 315}), Pie(100, 40, 2, {10, 50}),
         Pie(1, 60, 3, {0, 90}),
         [] { DLA_Sector(-50, 20, 160, 160, 64 * 20, 64 * 100, 4, kYellow, kInk); }},
        {[] { DLA_Line(-40, -30, 160, 120, 9, kInk); },
         [] { DLA_Line(-300, 90, 300, -20, 1, kInk); },
         [] { DLA_Line(-32768, 60, 32767, 30, 4, kInk); },
         [] {
             Polyline({{-20, 10}, {60, 30}, {130, -10}, {90, 100}, {-10, 60}}, 12);
         },
         Ellipse(-200, -300, 500, 340, 8), Arcs(30, {{0, 180}}),
         [] {
             Polygon({{-500, 40}, {56, -500}, {500, 60}, {56, 60}}, 7, kRed);
         }},
    };
}

void Show(const Cell& draw, ArgbImage& sheet, int left, int top)
{
    ArgbImage cell(kCellWidth, kCellHeight, kGround);
    DLA_Init(cell.pixels.data(), kCellWidth, kCellHeight);
    draw();
    for (int y = 0; y < kCellHeight; ++y) {
        for (int x = 0; x < kCellWidth; ++x)
            sheet.At(left + x, top + y) = cell.At(x, y);
    }
}

} // namespace

ArgbImage DrawDlaSheet()
{
    std::vector<Row> rows = LineRows();
    rows.push_back(ConvexPolygons());
    rows.push_back(OtherPolygons());
    for (Row& row : CurveRows())
        rows.push_back(std::move(row));

    const auto columns = static_cast<int>(rows.front().size());
    ArgbImage sheet(columns * (kCellWidth + kGap) + kGap,
                    static_cast<int>(rows.size()) * (kCellHeight + kGap) + kGap, kPaper);
    int top = kGap;
    for (const Row& row : rows) {
        int left = kGap;
        for (const Cell& cell : row) {
            Show(cell, sheet, left, top);
            left += kCellWidth + kGap;
        }
        top += kCellHeight + kGap;
    }
    return sheet;
}

} // namespace kestrin_test
