#include "dla_model.h"

#include <algorithm>
#include <cstdlib>

namespace kestrin_test {

using std::int64_t;
using Point = DlaModel::Point;

namespace {

std::int16_t Wrap16(int64_t value)
{
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
}

int64_t Sign(int64_t value)
{
    return (value > 0) - (value < 0);
}

} // namespace

/** Every pixel of the picture within the inclusive corners that belongs to the shape. */
template <typename Belongs>
void DlaModel::Paint(int64_t x1, int64_t y1, int64_t x2, int64_t y2, std::uint32_t colour,
                     Belongs belongs)
{
    const int64_t right = std::min<int64_t>(x2, _picture.width - 1);
    const int64_t bottom = std::min<int64_t>(y2, _picture.height - 1);
    for (int64_t y = std::max<int64_t>(y1, 0); y <= bottom; ++y) {
        for (int64_t x = std::max<int64_t>(x1, 0); x <= right; ++x) {
            if (belongs(x, y))
                _picture.At(static_cast<int>(x), static_cast<int>(y)) = colour;
        }
    }
}

void DlaModel::Box(std::int16_t x1, std::int16_t y1, std::int16_t x2, std::int16_t y2,
                   std::uint32_t colour)
{
    Paint(x1, y1, x2, y2, colour, [](int64_t, int64_t) { return true; });
}

void DlaModel::Rectangle(std::int16_t x1, std::int16_t y1, std::int16_t x2, std::int16_t y2,
                         std::uint16_t width, std::uint32_t fill, std::uint32_t line)
{
    if (x1 >= x2 || y1 >= y2)
        return;
    const std::int16_t right = Wrap16(x2 - 1);
    const std::int16_t bottom = Wrap16(y2 - 1);
    Box(x1, y1, right, bottom, fill);
    const Point corners[] = {{x1, y1}, {right, y1}, {right, bottom}, {x1, bottom}};
    for (int i = 0; i < 4; ++i)
        Join(corners[i], corners[(i + 1) % 4], width, line);
}

void DlaModel::Border(std::uint16_t width, std::uint32_t colour)
{
    const int64_t w = _picture.width;
    const int64_t h = _picture.height;
    if (width == 1) {
        Paint(0, 0, w - 1, h - 1, colour,
              [&](int64_t x, int64_t y) { return x == 0 || y == 0 || x == w - 1 || y == h - 1; });
    } else if (width > 1) {
        // The corners are passed on in 16 bits: a border of more than 32768 is none.
        Box(0, 0, Wrap16(w - 1), Wrap16(width - 1), colour);
        Box(Wrap16(w - width), 0, Wrap16(w - 1), Wrap16(h - 1), colour);
        Box(0, 0, Wrap16(width - 1), Wrap16(h - 1), colour);
        Box(0, Wrap16(h - width), Wrap16(w - 1), Wrap16(h - 1), colour);
    }
}

void DlaModel::Polyline(const std::vector<Point>& points, std::uint16_t width, std::uint32_t colour)
{
    if (points.size() < 3)
        return;
    for (std::size_t i = 0; i + 2 < points.size(); ++i)
        Join(points[i], points[i + 1], width, colour);
    Line(points[points.size() - 2], points.back(), width, colour);
}

void DlaModel::Polygon(const std::vector<Point>& points, std::uint16_t width, std::uint32_t fill,
                       std::uint32_t line)
{
    if (points.size() < 3)
        return;
    FillPolygon(points, fill);
    for (std::size_t i = 0; i < points.size(); ++i)
        Join(points[i], points[(i + 1) % points.size()], width, line);
}

/** A segment and the disc at its end. */
void DlaModel::Join(Point from, Point to, std::uint16_t width, std::uint32_t colour)
{
    Line(from, to, width, colour);
    if (width > 1)
        Disc(to, width, colour);
}

void DlaModel::Disc(Point centre, std::uint16_t width, std::uint32_t colour)
{
    const int64_t radius = width / 2;
    const int64_t even = width % 2 == 0 ? 1 : 0;
    if (!even) {
        Paint(centre.x - radius, centre.y, centre.x + radius, centre.y, colour,
              [](int64_t, int64_t) { return true; });
    }
    // Only this row and column decide; a span that the edge cuts down to one pixel is dropped.
    const auto span = [&](int64_t row, int64_t half) {
        const int64_t left = std::max<int64_t>(centre.x - half, 0);
        const int64_t right = std::min<int64_t>(centre.x + half - even, _picture.width - 1);
        if (left < right)
            Paint(left, row, right, row, colour, [](int64_t, int64_t) { return true; });
    };
    if (centre.x + radius < 0 || centre.x - radius >= _picture.width || centre.y + radius < 0 ||
        centre.y - radius >= _picture.height)
        return;
    int64_t y = radius;
    for (int64_t x = 1; y > x - 1; ++x) {
        if (x * x + y * y - y >= radius * radius)
            --y;
        span(centre.y + y - even, x);
        span(centre.y - y, x);
        span(centre.y + x - even, y);
        span(centre.y - x, y);
    }
}

void DlaModel::Line(Point from, Point to, std::uint16_t width, std::uint32_t colour)
{
    if (width == 1)
        ThinLine(from, to, colour);
    else if (width > 1)
        ThickLine(from, to, width, colour);
}

/**
 * The line is cut at the edges of the picture, and the rounded ends of what is left are joined
 * anew: not quite the same pixels as those of the whole line.
 */
void DlaModel::ThinLine(Point from, Point to, std::uint32_t colour)
{
    const int64_t last_x = _picture.width - 1;
    const int64_t last_y = _picture.height - 1;
    const int64_t sx = Sign(to.x - from.x);
    const int64_t sy = Sign(to.y - from.y);
    const int64_t dx = std::abs(to.x - from.x);
    const int64_t dy = std::abs(to.y - from.y);
    if (dx == 0 || dy == 0) {
        Paint(std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x),
              std::max(from.y, to.y), colour, [](int64_t, int64_t) { return true; });
        return;
    }
    // t counts in units that are 1/dy of a column and 1/dx of a row at once.
    int64_t first = 0;
    int64_t last = dx * dy;
    const auto narrow = [&](int64_t start, int64_t sign, int64_t edge, int64_t unit) {
        const int64_t enters = sign > 0 ? -start : start - edge;
        const int64_t leaves = sign > 0 ? edge - start : start;
        first = std::max(first, enters * unit);
        last = std::min(last, leaves * unit);
    };
    narrow(from.x, sx, last_x, dy);
    narrow(from.y, sy, last_y, dx);
    if (first > last)
        return;
    const auto column = [&](int64_t t) { return from.x + sx * ((dy / 2 + t) / dy); };
    const auto row = [&](int64_t t) { return from.y + sy * ((dx / 2 + t) / dx); };
    ThinLineInside(column(first), row(first), column(last), row(last), colour);
}

/** The pixels at most half a minor step from the line; of two that are equally near the later. */
void DlaModel::ThinLineInside(int64_t x1, int64_t y1, int64_t x2, int64_t y2, std::uint32_t colour)
{
    const bool steep = std::abs(y2 - y1) > std::abs(x2 - x1);
    const auto major = [&](int64_t x, int64_t y) { return steep ? y : x; };
    const auto minor = [&](int64_t x, int64_t y) { return steep ? x : y; };
    if (major(x2, y2) < major(x1, y1)) {
        std::swap(x1, x2);
        std::swap(y1, y2);
    }
    const int64_t length = major(x2, y2) - major(x1, y1);
    const int64_t climb = minor(x2, y2) - minor(x1, y1);
    Paint(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2), colour,
          [&](int64_t x, int64_t y) {
              if (length == 0)
                  return true;
              const int64_t along = major(x, y) - major(x1, y1);
              const int64_t aside = Sign(climb) * (minor(x, y) - minor(x1, y1));
              const int64_t twice_error = 2 * (along * std::abs(climb) - aside * length);
              return -length <= twice_error && twice_error < length;
          });
}

void DlaModel::ThickLine(Point from, Point to, int64_t width, std::uint32_t colour)
{
    const int64_t half = (width - 1) / 2; // to the right and below
    const int64_t rest = width / 2;       // to the left and above
    if (std::max(from.x, to.x) + half < 0 || std::max(from.y, to.y) + half < 0 ||
        std::min(from.x, to.x) - rest >= _picture.width ||
        std::min(from.y, to.y) - rest >= _picture.height)
        return;
    if (from.x == to.x) {
        Box(Wrap16(from.x - rest), std::min(from.y, to.y), Wrap16(from.x + half),
            std::max(from.y, to.y), colour);
        return;
    }
    if (from.y == to.y) {
        Box(std::min(from.x, to.x), Wrap16(from.y - rest), std::max(from.x, to.x),
            Wrap16(from.y + half), colour);
        return;
    }
    const int64_t a = std::abs(to.x - from.x);
    const int64_t b = std::abs(to.y - from.y);
    const int64_t length = 94 * std::max(a, b) + 41 * std::min(a, b); // in hundredths
    const int64_t ox = (length + width * b * 100) / (2 * length);
    const int64_t oy = (length + width * a * 100) / (2 * length);
    const bool falls = Sign(to.y - from.y) == Sign(to.x - from.x);
    const int64_t across = falls ? -ox : ox; // of the side that is below
    const auto corner = [](Point p, int64_t x, int64_t y) {
        return Point{Wrap16(p.x + x), Wrap16(p.y + y)};
    };
    FillPolygon({corner(from, -across, -oy), corner(from, across, oy), corner(to, across, oy),
                 corner(to, -across, -oy)},
                colour);
}

namespace {

/** One pass of the clipping: what of the closed polygon lies on the inner side of one edge. */
template <typename Inside, typename Cut>
std::vector<Point> CutOff(const std::vector<Point>& points, Inside inside, Cut cut)
{
    if (std::all_of(points.begin(), points.end(), inside))
        return points;
    std::vector<Point> kept;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point a = points[i];
        const Point b = points[(i + 1) % points.size()];
        if (inside(a) != inside(b))
            kept.push_back(inside(a) ? cut(a, b) : cut(b, a));
        if (inside(b))
            kept.push_back(b);
    }
    return kept;
}

/** Cuts are counted from the end that is inside, and rounded towards it. */
std::vector<Point> ClipTo(std::vector<Point> points, int64_t width, int64_t height)
{
    const auto at_column = [](int64_t column) {
        return [column](Point in, Point out) {
            const int64_t dy = int64_t{in.y} - out.y;
            return Point{Wrap16(column), Wrap16(in.y + dy * (column - in.x) / (in.x - out.x))};
        };
    };
    const auto at_row = [](int64_t row) {
        return [row](Point in, Point out) {
            const int64_t dx = int64_t{in.x} - out.x;
            return Point{Wrap16(in.x + dx * (row - in.y) / (in.y - out.y)), Wrap16(row)};
        };
    };
    points = CutOff(
        points, [](Point p) { return p.x >= 0; }, at_column(0));
    points = CutOff(
        points, [=](Point p) { return p.x < width; }, at_column(width));
    points = CutOff(
        points, [](Point p) { return p.y >= 0; }, at_row(0));
    return CutOff(
        points, [=](Point p) { return p.y < height; }, at_row(height));
}

/** The edges from a start to the bottom vertex, walking forward or backward. */
struct Chain
{
    std::vector<Point> points;
    bool skips_first_row;

    /** Where the last edge that crosses the row has its boundary; no edge crosses: false. */
    bool Boundary(int64_t row, int64_t& column) const
    {
        for (std::size_t i = points.size() - 1; i > 0; --i) {
            const Point a = points[i - 1];
            const Point b = points[i];
            const int64_t first = a.y + (skips_first_row && i == 1 ? 1 : 0);
            if (row < first || row >= b.y)
                continue;
            const int64_t dy = b.y - a.y;
            column = a.x + (dy - 1 + (row - a.y) * (b.x - a.x)) / dy;
            return true;
        }
        return false;
    }
};

Chain Walk(const std::vector<Point>& points, std::size_t from, std::size_t to, std::size_t step,
           bool skips_first_row)
{
    Chain chain{{points[from]}, skips_first_row};
    for (std::size_t i = from; i != to;) {
        i = (i + step) % points.size();
        chain.points.push_back(points[i]);
    }
    return chain;
}

} // namespace

void DlaModel::FillPolygon(const std::vector<Point>& given, std::uint32_t colour)
{
    const std::vector<Point> points = ClipTo(given, _picture.width, _picture.height);
    if (points.size() < 2)
        return;
    const auto higher = [](Point a, Point b) { return a.y < b.y; };
    const auto index = [&](auto at) { return static_cast<std::size_t>(at - points.begin()); };
    const std::size_t top = index(std::min_element(points.begin(), points.end(), higher));
    const int64_t top_row = points[top].y;
    const std::size_t bottom = index(std::max_element(points.begin(), points.end(), higher));
    const int64_t bottom_row = points[bottom].y;
    if (top_row == bottom_row)
        return;

    const std::size_t forward = 1;
    const std::size_t backward = points.size() - 1;
    std::size_t ends[2] = {top, top}; // of the run of highest vertices: behind, before
    while (points[(ends[0] + backward) % points.size()].y == top_row)
        ends[0] = (ends[0] + backward) % points.size();
    while (points[(ends[1] + forward) % points.size()].y == top_row)
        ends[1] = (ends[1] + forward) % points.size();

    const Point apex = points[ends[0]];
    const bool flat = apex.x != points[ends[1]].x;
    bool left_is_forward = points[ends[1]].x < apex.x;
    if (!flat) {
        const Point before = points[(ends[0] + backward) % points.size()];
        const Point after = points[(ends[1] + forward) % points.size()];
        left_is_forward = int64_t{before.y - apex.y} * (after.x - apex.x) -
                              int64_t{before.x - apex.x} * (after.y - apex.y) <
                          0;
    }
    const Chain forwards = Walk(points, ends[1], bottom, forward, !flat);
    const Chain backwards = Walk(points, ends[0], bottom, backward, !flat);
    const Chain& left = left_is_forward ? forwards : backwards;
    const Chain& right = left_is_forward ? backwards : forwards;
    for (int64_t row = top_row + (flat ? 0 : 1); row < bottom_row; ++row) {
        int64_t start = 0;
        int64_t end = 0;
        if (left.Boundary(row, start) && right.Boundary(row, end)) {
            Paint(start, row, end - 1, row, colour, [](int64_t, int64_t) { return true; });
        }
    }
}

EllipseBox::EllipseBox(std::int16_t x, std::int16_t y, std::uint16_t w, std::uint16_t h)
    : rx((w + 1) / 2 - 1), ry((h + 1) / 2 - 1), cx(Wrap16(x + rx)), cy(Wrap16(y + ry)),
      shift_x(w % 2 == 0 ? 1 : 0), shift_y(h % 2 == 0 ? 1 : 0)
{
}

/**
 * All running terms of the trace are values of the curve's polynomial b²x² + a²y² - a²b² and of its
 * differences, whatever the steps before; unsigned, they are right modulo 2^32 as well.
 */
std::vector<EllipseStep> TraceEllipse(int64_t rx, int64_t ry, EllipseArithmetic arithmetic)
{
    using std::uint64_t;
    const auto reduced = [&](uint64_t value) {
        return arithmetic == EllipseArithmetic::Exact
                   ? static_cast<int64_t>(value)
                   : static_cast<int64_t>(
                         static_cast<std::int32_t>(static_cast<std::uint32_t>(value)));
    };
    const auto a2 = static_cast<uint64_t>(rx * rx);
    const auto b2 = static_cast<uint64_t>(ry * ry);
    const auto curve = [&](uint64_t x, uint64_t y) { return b2 * x * x + a2 * y * y - a2 * b2; };
    const auto x_slope = [&](int64_t x) { return reduced(2 * b2 * static_cast<uint64_t>(x)); };
    const auto y_slope = [&](int64_t y) { return reduced(2 * a2 * static_cast<uint64_t>(y)); };

    std::vector<EllipseStep> steps;
    if (rx == 0 && ry == 0)
        return {{0, 0, true}};
    for (int64_t x = rx, y = 0; x_slope(x) >= y_slope(y); ++y) {
        steps.push_back({x, y, true});
        const auto ux = static_cast<uint64_t>(x);
        if (reduced(2 * curve(ux, static_cast<uint64_t>(y + 1)) + b2 * (1 - 2 * ux)) > 0)
            --x;
    }
    for (int64_t x = 0, y = ry; x_slope(x) <= y_slope(y); ++x) {
        const auto uy = static_cast<uint64_t>(y);
        const bool falls =
            reduced(2 * curve(static_cast<uint64_t>(x + 1), uy) + a2 * (1 - 2 * uy)) > 0;
        steps.push_back({x, y, falls});
        if (falls)
            --y;
    }
    return steps;
}

void DlaModel::Ellipse(std::int16_t x, std::int16_t y, std::uint16_t w, std::uint16_t h,
                       std::uint16_t width, std::uint32_t fill, std::uint32_t line)
{
    if (w == 0 || h == 0)
        return;
    const EllipseBox box(x, y, w, h);
    const auto trace = TraceEllipse(box.rx, box.ry, EllipseArithmetic::Wraps32);
    for (const EllipseStep& step : trace) {
        if (!step.fills)
            continue;
        const int64_t left = box.cx - step.x;
        const int64_t right = box.cx + step.x + box.shift_x;
        for (const int64_t row : {box.cy - step.y, box.cy + box.shift_y + step.y})
            Paint(left, row, right, row, fill, [](int64_t, int64_t) { return true; });
    }
    for (const EllipseStep& step : trace) {
        const std::int16_t left = Wrap16(box.cx - step.x);
        const std::int16_t right = Wrap16(box.cx + step.x + box.shift_x);
        const std::int16_t top = Wrap16(box.cy - step.y);
        const std::int16_t bottom = Wrap16(box.cy + step.y + box.shift_y);
        for (const Point& at : {Point{right, bottom}, {left, bottom}, {left, top}, {right, top}})
            Disc(at, width, line); // of width 1 a single pixel
    }
}

} // namespace kestrin_test
