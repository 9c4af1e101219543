#include "DlaUtils.h"
#include "dla_span_p.h"

#include <cstdlib>
#include <utility>

#include "dla_assert_p.h"

namespace {

/** Minor steps of a line: which row, or column of a steep line, the next pixel is on. */
struct Steps
{
    S32BIT delta_x; /**< extent along the major axis */
    S32BIT delta_y; /**< extent along the minor axis, without its sign */
    S32BIT y_step;
    S32BIT error = 0;

    /** Moves on by one pixel; a tie steps. */
    void Next(S32BIT& y)
    {
        error += delta_y;
        if (2 * error >= delta_x) {
            y += y_step;
            error -= delta_x;
        }
    }
};

/** From left to right, pixel by pixel up to the one outside the buffer that ends the process. */
void DrawShallow(S32BIT x, S32BIT y, S32BIT x_end, S32BIT y_end, U32BIT colour)
{
    Steps steps = {x_end - x, std::abs(y_end - y), y < y_end ? 1 : -1};
    for (; x <= x_end; ++x) {
        assert(x >= 0 && x < dla_info.width);
        assert(y >= 0 && y < dla_info.height);
        *PixelAt(x, y) = colour;
        steps.Next(y);
    }
}

/** The same from top to bottom. As along every line's major axis x runs: here it is the row. */
void DrawSteep(S32BIT x, S32BIT y, S32BIT x_end, S32BIT y_end, U32BIT colour)
{
    Steps steps = {x_end - x, std::abs(y_end - y), y < y_end ? 1 : -1};
    for (; x <= x_end; ++x) {
        assert(x >= 0 && x < dla_info.height);
        assert(y >= 0 && y < dla_info.width);
        *PixelAt(y, x) = colour;
        steps.Next(y);
    }
}

/**
 * A line that lies in the buffer. Its `length` + 1 pixels are `major` words apart, and `minor` more
 * after each of `climb` steps, which a tie makes early.
 *
 * The minor steps are counted in 1/2^40: exact quotients are 2^-16 or more away from the next
 * integer, and 32767 steps, each up to one unit too long, gain less than 2^-25.
 */
void DrawInside(U32BIT* pixel, S32BIT length, std::ptrdiff_t major, S32BIT climb,
                std::ptrdiff_t minor, U32BIT colour)
{
    const uint64_t step = length == 0 ? 0 : (static_cast<uint64_t>(climb) << 40) / length + 1;
    uint64_t at = uint64_t{1} << 39;
    for (S32BIT i = 0; i <= length; ++i, pixel += major, at += step)
        pixel[static_cast<std::ptrdiff_t>(at >> 40) * minor] = colour;
}

S16BIT ClampTo(S16BIT value, S32BIT size)
{
    return static_cast<S16BIT>(std::min(std::max<S32BIT>(value, 0), size - 1));
}

/**
 * A slanting line as the path of a parameter t from 0 to dx * dy. Along the whole path column and
 * row are fractions with the denominators dy and dx: every edge of the buffer is met at a whole t.
 */
class SlantedLine
{
public:
    SlantedLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2)
        : _x1(x1), _y1(y1), _dx(std::abs(x2 - x1)), _dy(std::abs(y2 - y1)), _sx(x2 < x1 ? -1 : 1),
          _sy(y2 < y1 ? -1 : 1), _t1(_dx * _dy)
    {
        Narrow(_x1, _sx, dla_info.width, _dy);
        Narrow(_y1, _sy, dla_info.height, _dx);
    }

    bool IsEmpty() const { return _t0 > _t1; }
    S_POINT First() const { return At(_t0); }
    S_POINT Last() const { return At(_t1); }

private:
    /** Leaves the part from coordinate 0 to `size` - 1; `pace` is what t grows by for a pixel. */
    void Narrow(int64_t from, int64_t sign, int64_t size, int64_t pace)
    {
        const int64_t near = sign > 0 ? -from : from - (size - 1);
        const int64_t far = sign > 0 ? size - 1 - from : from;
        _t0 = std::max(_t0, near * pace);
        _t1 = std::min(_t1, far * pace);
    }

    /** The pixel at t, rounded half up along the line. */
    S_POINT At(int64_t t) const
    {
        return {static_cast<S16BIT>(_x1 + _sx * ((_dy / 2 + t) / _dy)),
                static_cast<S16BIT>(_y1 + _sy * ((_dx / 2 + t) / _dx))};
    }

    int64_t _x1, _y1, _dx, _dy, _sx, _sy;
    int64_t _t0 = 0;
    int64_t _t1;
};

void DrawClippedLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U32BIT colour)
{
    if ((x1 < 0 && x2 < 0) || (y1 < 0 && y2 < 0) || std::min(x1, x2) >= dla_info.width ||
        std::min(y1, y2) >= dla_info.height)
        return;
    if (x1 == x2) {
        DrawThinLine(x1, ClampTo(y1, dla_info.height), x2, ClampTo(y2, dla_info.height), colour);
    } else if (y1 == y2) {
        DrawThinLine(ClampTo(x1, dla_info.width), y1, ClampTo(x2, dla_info.width), y2, colour);
    } else {
        const SlantedLine line(x1, y1, x2, y2);
        if (line.IsEmpty())
            return;
        const S_POINT first = line.First();
        const S_POINT last = line.Last();
        DrawThinLine(first.x, first.y, last.x, last.y, colour);
    }
}

S_POINT Moved(S16BIT x, S16BIT y, S32BIT by_x, S32BIT by_y)
{
    return {static_cast<S16BIT>(x + by_x), static_cast<S16BIT>(y + by_y)};
}

/** A slanting line from width 2, as a quadrilateral. */
void DrawThickSlant(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width, U32BIT colour)
{
    const int64_t a = std::abs(x2 - x1);
    const int64_t b = std::abs(y2 - y1);
    // The length times 100, good to a few per cent; 64 bits, since the products below need 39.
    const int64_t length = 94 * std::max(a, b) + 41 * std::min(a, b);
    const auto ox = static_cast<S32BIT>((length + width * b * 100) / (2 * length));
    auto oy = static_cast<S32BIT>((length + width * a * 100) / (2 * length));
    // The offsets go across the line: against its extents when these have the same sign.
    if ((y2 > y1) == (x2 > x1)) {
        const S_POINT points[] = {Moved(x1, y1, ox, -oy), Moved(x1, y1, -ox, oy),
                                  Moved(x2, y2, -ox, oy), Moved(x2, y2, ox, -oy)};
        FillPolygon(points, 4, colour);
    } else {
        const S_POINT points[] = {Moved(x1, y1, -ox, -oy), Moved(x1, y1, ox, oy),
                                  Moved(x2, y2, ox, oy), Moved(x2, y2, -ox, -oy)};
        FillPolygon(points, 4, colour);
    }
}

void DrawThickLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width, U32BIT colour)
{
    const S32BIT hw = (width - 1) >> 1;
    const S32BIT hw2 = width >> 1;
    const S32BIT left = std::min(x1, x2);
    const S32BIT right = std::max(x1, x2);
    const S32BIT top = std::min(y1, y2);
    const S32BIT bottom = std::max(y1, y2);
    if (right + hw < 0 || bottom + hw < 0 || left - hw2 >= dla_info.width ||
        top - hw2 >= dla_info.height)
        return;
    // The sides wrap to 16 bits here, as far outside as they then lie.
    if (x1 == x2)
        FillSimpleRectangle(static_cast<S16BIT>(x1 - hw2), static_cast<S16BIT>(top),
                            static_cast<S16BIT>(x1 + hw), static_cast<S16BIT>(bottom), colour);
    else if (y1 == y2)
        FillSimpleRectangle(static_cast<S16BIT>(left), static_cast<S16BIT>(y1 - hw2),
                            static_cast<S16BIT>(right), static_cast<S16BIT>(y1 + hw), colour);
    else
        DrawThickSlant(x1, y1, x2, y2, width, colour);
}

} // namespace

void DrawThinLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U32BIT colour)
{
    const S32BIT dx = std::abs(x2 - x1);
    const S32BIT dy = std::abs(y2 - y1);
    const bool steep = dy > dx;
    if (steep ? y1 > y2 : x1 > x2) {
        std::swap(x1, x2);
        std::swap(y1, y2);
    }
    if (IsColumn(x1) && IsColumn(x2) && IsRow(y1) && IsRow(y2)) {
        const std::ptrdiff_t row = dla_info.width;
        if (steep)
            DrawInside(PixelAt(x1, y1), dy, row, dx, x1 < x2 ? 1 : -1, colour);
        else
            DrawInside(PixelAt(x1, y1), dx, 1, dy, y1 < y2 ? row : -row, colour);
    } else if (steep) {
        DrawSteep(y1, x1, y2, x2, colour);
    } else {
        DrawShallow(x1, y1, x2, y2, colour);
    }
}

void DrawLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width, U32BIT colour)
{
    if (width == 1)
        DrawClippedLine(x1, y1, x2, y2, colour);
    else if (width > 1)
        DrawThickLine(x1, y1, x2, y2, width, colour);
}

BOOLEAN DLA_Line(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width, U32BIT colour)
{
    if (!dla_info.init)
        return FALSE;
    DrawLine(x1, y1, x2, y2, width, colour);
    return TRUE;
}
