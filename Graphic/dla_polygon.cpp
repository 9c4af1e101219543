/**
 * Filled polygons. The vertices are clipped edge by edge of the buffer, each time into a new list;
 * then two chains of edges, from the topmost vertex down both sides to the bottommost, say where
 * each row's span begins and ends.
 */
#include "dla_disc_p.h"
#include "dla_polygon_p.h"
#include "dla_span_p.h"

#include <cstdlib>

#include "dla_assert_p.h"

namespace {

/** A vertex list in one block; `owned` unless it is the caller's own. */
struct S_POINT_LIST_HEADER
{
    S32BIT length;
    const S_POINT* point_list;
    S_POINT* owned;
};

template <class T>
T* Allocate(std::size_t count)
{
    return static_cast<T*>(MHEG5_MALLOC(static_cast<int>(count * sizeof(T))));
}

void Free(void* memory)
{
    MHEG5_FREE(static_cast<U8BIT*>(memory));
}

// ---- Clipping -------------------------------------------------------------------------------

/** The left and right edge are at a column, the others at a row. */
enum ClipEdge
{
    EdgeLeft,
    EdgeRight,
    EdgeTop,
    EdgeBottom
};

/** Where clipping cuts: beyond the buffer's last column and row at the right and at the bottom. */
S32BIT EdgePosition(ClipEdge edge)
{
    return edge == EdgeRight ? dla_info.width : edge == EdgeBottom ? dla_info.height : 0;
}

bool IsInside(const S_POINT& point, ClipEdge edge, S32BIT position)
{
    switch (edge) {
    case EdgeLeft:
        return point.x >= 0;
    case EdgeRight:
        return point.x < position;
    case EdgeTop:
        return point.y >= 0;
    default:
        return point.y < position;
    }
}

/** Where the line to `b` meets an edge, reckoned from `inside`, one of its ends, toward zero. */
S_POINT Intersection(const S_POINT& inside, const S_POINT& a, const S_POINT& b, ClipEdge edge,
                     S32BIT position)
{
    const int64_t dx = a.x - b.x;
    const int64_t dy = a.y - b.y;
    if (edge == EdgeLeft || edge == EdgeRight)
        return {static_cast<S16BIT>(position),
                static_cast<S16BIT>(inside.y + dy * (position - inside.x) / dx)};
    return {static_cast<S16BIT>(inside.x + dx * (position - inside.y) / dy),
            static_cast<S16BIT>(position)};
}

/** Appends what clipping leaves of each edge from a vertex to the next; returns how much that is.
 */
S32BIT ClipPoints(const S_POINT* from, S32BIT length, ClipEdge edge, S_POINT* to)
{
    const S32BIT position = EdgePosition(edge);
    S32BIT count = 0;
    for (S32BIT i = 0; i < length; ++i) {
        const S_POINT& a = from[i];
        const S_POINT& b = from[i + 1 < length ? i + 1 : 0];
        const bool a_inside = IsInside(a, edge, position);
        const bool b_inside = IsInside(b, edge, position);
        if (a_inside != b_inside)
            to[count++] = Intersection(a_inside ? a : b, a, b, edge, position);
        if (b_inside)
            to[count++] = b;
    }
    return count;
}

/** Clips against one edge, if any vertex is beyond it; false without memory. */
bool ClipList(S_POINT_LIST_HEADER& list, ClipEdge edge)
{
    const S32BIT position = EdgePosition(edge);
    if (std::all_of(list.point_list, list.point_list + list.length,
                    [=](const S_POINT& point) { return IsInside(point, edge, position); }))
        return true;

    // Coming in adds a vertex, and happens at most at every other edge.
    const S32BIT most = list.length + list.length / 2;
    auto* points = Allocate<S_POINT>(static_cast<std::size_t>(most));
    if (!points)
        return false;
    const S32BIT length = ClipPoints(list.point_list, list.length, edge, points);
    Free(list.owned);
    list = {length, points, points};
    return true;
}

bool ClipToBuffer(S_POINT_LIST_HEADER& list)
{
    return ClipList(list, EdgeLeft) && ClipList(list, EdgeRight) && ClipList(list, EdgeTop) &&
           ClipList(list, EdgeBottom);
}

// ---- The two sides --------------------------------------------------------------------------

/** A closed walk through the vertices, in either direction. */
class Ring
{
public:
    explicit Ring(const S_POINT_LIST_HEADER& list) : _points(list.point_list), _length(list.length)
    {
    }

    const S_POINT& operator[](S32BIT index) const { return _points[index]; }
    S32BIT Next(S32BIT index, S32BIT direction) const
    {
        index += direction;
        return index < 0 ? _length - 1 : index < _length ? index : 0;
    }

    S32BIT Top() const
    {
        return static_cast<S32BIT>(std::min_element(_points, _points + _length, Above) - _points);
    }
    S32BIT Bottom() const
    {
        return static_cast<S32BIT>(std::max_element(_points, _points + _length, Above) - _points);
    }
    /** The last vertex in a direction that is still as high as `index`; not for a flat polygon. */
    S32BIT EndOfRun(S32BIT index, S32BIT direction) const
    {
        S32BIT next = Next(index, direction);
        while (_points[next].y == _points[index].y) {
            index = next;
            next = Next(index, direction);
        }
        return index;
    }

private:
    static bool Above(const S_POINT& a, const S_POINT& b) { return a.y < b.y; }

    const S_POINT* _points;
    S32BIT _length;
};

/** Where the chains begin, and which way they go. */
struct Sides
{
    S32BIT left;           /**< index of the left chain's first vertex */
    S32BIT right;          /**< index of the right chain's first vertex */
    S32BIT left_direction; /**< 1 or -1; the right chain goes the other way */
    S32BIT skip;           /**< 1 if the top row is not drawn, being a single apex */
};

/** Negative if the vertices after the apex lie to the left of those before it. */
int64_t ApexTurn(const Ring& ring, S32BIT backward_end, S32BIT forward_end)
{
    const S_POINT& top = ring[forward_end];
    const S_POINT& previous = ring[ring.Next(backward_end, -1)];
    const S_POINT& next = ring[ring.Next(forward_end, 1)];
    return int64_t{previous.y - top.y} * (next.x - top.x) -
           int64_t{previous.x - top.x} * (next.y - top.y);
}

Sides FindSides(const Ring& ring, S32BIT top)
{
    const S32BIT forward = ring.EndOfRun(top, 1);
    const S32BIT backward = ring.EndOfRun(top, -1);
    const bool apex = ring[forward].x == ring[backward].x;
    const bool left_is_forward =
        apex ? ApexTurn(ring, backward, forward) < 0 : ring[forward].x < ring[backward].x;
    if (left_is_forward)
        return {forward, backward, 1, apex};
    return {backward, forward, -1, apex};
}

/**
 * Where an edge from `a` down to `b` is in a row: a.x + (dy - 1 + k * dx) / dy in the k-th, rounded
 * toward zero before a.x is added. Counted in 1/2^32 of a column, each row then takes an addition.
 *
 * No row is more than 32767 from `a` (the polygon is clipped), and so the steps, which are up to
 * one unit too long, gain less than 2^-17 of a column, while the exact quotient stays at least
 * 2^-15 away from the next integer. The starts are put in between.
 */
class EdgeColumns
{
public:
    EdgeColumns(const S_POINT& a, const S_POINT& b, S32BIT k) : _x(a.x)
    {
        const auto dy = static_cast<uint64_t>(b.y - a.y);
        const auto dx = static_cast<uint64_t>(std::abs(b.x - a.x));
        _leftward = b.x < a.x;
        _step = (dx << 32) / dy + 1;
        // To the right, (dy - 1) / dy or a little more. To the left 1 / dy, and a column less:
        // -((k * dx - dy + 1) / dy), once k * dx has reached dy.
        const uint64_t start = _leftward ? kColumn / dy + 1 : kColumn - (kColumn >> 16);
        _at = start + static_cast<uint64_t>(k) * _step;
    }

    S32BIT Next()
    {
        const auto columns = static_cast<S32BIT>(_at >> 32);
        _at += _step;
        return _leftward ? _x - std::max(columns - 1, 0) : _x + columns;
    }

private:
    static constexpr uint64_t kColumn = uint64_t{1} << 32;

    S32BIT _x;
    bool _leftward;
    uint64_t _at;
    uint64_t _step;
};

/**
 * Walks a chain down to the bottom vertex and puts where it is in every row into a field of the
 * row's span, moved by `offset`.
 *
 * A chain of a polygon that is not convex may come back to a row, which then counts as crossed
 * where it is crossed last, or to one above the first drawn.
 */
void WalkChain(const Ring& ring, S32BIT from, S32BIT bottom, S32BIT direction, S32BIT skip,
               const S_HLINE_LIST& rows, U16BIT S_HLINE::*field, S32BIT offset)
{
    for (S32BIT index = from; index != bottom; skip = 0) {
        const S_POINT& a = ring[index];
        index = ring.Next(index, direction);
        const S_POINT& b = ring[index];
        const S32BIT first = std::max(a.y + skip, rows.y_start);
        const S32BIT end = std::min<S32BIT>(b.y, rows.y_start + rows.length);
        if (first >= end)
            continue;
        EdgeColumns columns(a, b, first - a.y);
        S_HLINE* hline = rows.hline + (first - rows.y_start);
        for (S32BIT row = first; row < end; ++row, ++hline)
            hline->*field = static_cast<U16BIT>(columns.Next() + offset);
    }
}

/** Scan-converts a polygon that lies in the buffer. */
void FillClipped(const Ring& ring, U32BIT colour)
{
    const S32BIT top = ring.Top();
    const S32BIT bottom = ring.Bottom();
    if (ring[top].y == ring[bottom].y)
        return;
    const Sides sides = FindSides(ring, top);

    S_HLINE_LIST rows = {ring[bottom].y - ring[top].y - sides.skip, ring[top].y + sides.skip,
                         nullptr};
    if (rows.length == 0)
        return;
    rows.hline = Allocate<S_HLINE>(static_cast<std::size_t>(rows.length));
    if (!rows.hline)
        return;
    WalkChain(ring, sides.left, bottom, sides.left_direction, sides.skip, rows, &S_HLINE::x_start,
              0);
    WalkChain(ring, sides.right, bottom, -sides.left_direction, sides.skip, rows, &S_HLINE::x_end,
              -1);
    FillHLines(rows, colour);
    Free(rows.hline);
}

} // namespace

void FillHLines(const S_HLINE_LIST& rows, U32BIT colour)
{
    const S_HLINE* hline = rows.hline;
    for (S32BIT i = 0; i < rows.length; ++i, ++hline) {
        // Sides that have changed places leave a span of negative length.
        const auto length = static_cast<S16BIT>(hline->x_end + 1 - hline->x_start);
        if (length <= 0)
            continue;
        assert(hline->x_end < dla_info.width);
        FillWords(PixelAt(hline->x_start, rows.y_start + i), static_cast<std::size_t>(length),
                  colour);
    }
}

void FillPolygon(const S_POINT* points, U16BIT num_points, U32BIT colour)
{
    S_POINT_LIST_HEADER list = {num_points, points, nullptr};
    if (ClipToBuffer(list) && list.length >= 2)
        FillClipped(Ring(list), colour);
    Free(list.owned);
}

BOOLEAN DLA_Polygon(S_POINT* points, U16BIT num_points, U16BIT width, U32BIT fill_colour,
                    U32BIT line_colour)
{
    if (!dla_info.init)
        return FALSE;
    if (!points || num_points < 3)
        return TRUE;
    FillPolygon(points, num_points, fill_colour);
    const Disc joint(width);
    for (S32BIT i = 0; i < num_points; ++i) {
        const S_POINT& from = points[i];
        const S_POINT& to = points[i + 1 < num_points ? i + 1 : 0];
        DrawLine(from.x, from.y, to.x, to.y, width, line_colour);
        if (width > 1)
            joint.Draw(to.x, to.y, line_colour);
    }
    return TRUE;
}

BOOLEAN DLA_Polyline(S_POINT* points, U16BIT num_points, U16BIT width, U32BIT colour)
{
    if (!dla_info.init)
        return FALSE;
    // Two points draw nothing, on purpose: a polyline has a joint.
    if (!points || num_points < 3)
        return TRUE;
    const Disc joint(width);
    for (S32BIT i = 0; i < num_points - 1; ++i) {
        const S_POINT& from = points[i];
        const S_POINT& to = points[i + 1];
        DrawLine(from.x, from.y, to.x, to.y, width, colour);
        if (width > 1 && i < num_points - 2)
            joint.Draw(to.x, to.y, colour);
    }
    return TRUE;
}
