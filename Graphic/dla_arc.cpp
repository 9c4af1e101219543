#include "dla_angle_p.h"
#include "dla_ellipse_p.h"
#include "dla_span_p.h"

#include <cstdlib>

namespace {

/** How much of a quadrant is drawn; the quadrants are numbered from the upper right, leftward. */
enum QuadrantType
{
    Whole = 0,
    Nothing = 1,
    FromStart = 2,
    ToEnd = 3,
    FromStartToEnd = 4,
    ToEndAndFromStart = 5
};

/** An offset from the centre, signed as on the screen. */
struct Offset
{
    S32BIT x;
    S32BIT y;
};

/** Where an angle hits the ellipse, as if both halves met in the centre. */
Offset HitOffset(const EllipseBox& box, U32BIT angle)
{
    Offset hit;
    GetHitPoints(box.rx, box.ry, static_cast<U16BIT>(angle), &hit.x, &hit.y);
    return hit;
}

/** The same where the halves stand: those of even boxes one pixel further right and down. */
Offset ScreenOffset(const EllipseBox& box, Offset hit)
{
    return {hit.x + (hit.x > 0 ? box.ew : 0), hit.y + (hit.y > 0 ? box.eh : 0)};
}

S_POINT ScreenPoint(const EllipseBox& box, Offset offset)
{
    return {static_cast<S16BIT>(box.cx + offset.x), static_cast<S16BIT>(box.cy + offset.y)};
}

/** The end angle of an arc, inclusive. An end after exactly a whole turn stays there. */
U32BIT EndAngle(U16BIT start, U16BIT arc)
{
    const U32BIT end = start + arc - 1U;
    return end > kFullTurn ? end - kFullTurn : end;
}

/** Part of a row: the distances from `first` to `last`, both included, or none. */
struct Range
{
    S32BIT first;
    S32BIT last;
};

/** The direction of one end of an arc, mirrored into one quadrant as all points are. */
class Direction
{
public:
    explicit Direction(Offset offset) : _x(std::abs(offset.x)), _y(std::abs(offset.y)) {}

    /** Positive for a point steeper than this direction, 0 for one in it. */
    int Compare(S32BIT x, S32BIT y) const
    {
        return S64CompareS64(S64MultiplyS32(S64FromS32(_x), y), S64MultiplyS32(S64FromS32(_y), x));
    }
    /** Of row `y`, up to distance `x`, what is at least as steep. */
    Range Steeper(S32BIT x, S32BIT y) const { return {0, _y == 0 ? x : std::min(x, _x * y / _y)}; }
    /** Of row `y`, up to distance `x`, what is at most as steep. */
    Range Flatter(S32BIT x, S32BIT y) const
    {
        if (_y == 0)
            return {_x * y > 0 ? x + 1 : 0, x};
        return {(_x * y + _y - 1) / _y, x};
    }

private:
    S32BIT _x;
    S32BIT _y;
};

/** What lies between the two ends of an arc. */
class ArcSelection
{
public:
    ArcSelection(U32BIT start_angle, U32BIT end_angle, Offset start, Offset end)
        : _start(start), _end(end)
    {
        SetTypes(start_angle, end_angle);
    }

    /** Whether a point of a quadrant, at these distances from the axes, is selected. */
    bool Selects(int quadrant, S32BIT x, S32BIT y) const;
    /** Calls `draw` with the ranges selected of a row's part in a quadrant; none to two. */
    template <class Draw>
    void SelectRow(int quadrant, S32BIT x, S32BIT y, Draw draw) const;

private:
    void SetTypes(U32BIT start_angle, U32BIT end_angle);
    // Angles grow toward steeper points in the first and third quadrant, flatter ones in the
    // others.
    static bool GrowsSteeper(int quadrant) { return quadrant % 2 == 0; }
    bool IsFromStart(int quadrant, S32BIT x, S32BIT y) const
    {
        const int steeper = _start.Compare(x, y);
        return GrowsSteeper(quadrant) ? steeper >= 0 : steeper <= 0;
    }
    bool IsToEnd(int quadrant, S32BIT x, S32BIT y) const
    {
        const int steeper = _end.Compare(x, y);
        return GrowsSteeper(quadrant) ? steeper <= 0 : steeper >= 0;
    }

    Direction _start;
    Direction _end;
    // An end after exactly a whole turn is in a fifth quadrant, which holds nothing.
    QuadrantType _types[5] = {Nothing, Nothing, Nothing, Nothing, Nothing};
};

void ArcSelection::SetTypes(U32BIT start_angle, U32BIT end_angle)
{
    const U32BIT first = start_angle / kQuarterTurn;
    const U32BIT last = end_angle / kQuarterTurn;
    if (first == last) {
        const bool around = end_angle <= start_angle;
        if (around)
            std::fill_n(_types, 4, Whole);
        _types[first] = around ? ToEndAndFromStart : FromStartToEnd;
        return;
    }
    for (U32BIT i = first + 1; i < (first < last ? last : last + 4); ++i)
        _types[i % 4] = Whole;
    _types[first] = FromStart;
    _types[last] = ToEnd;
}

bool ArcSelection::Selects(int quadrant, S32BIT x, S32BIT y) const
{
    switch (_types[quadrant]) {
    case Whole:
        return true;
    case FromStart:
        return IsFromStart(quadrant, x, y);
    case ToEnd:
        return IsToEnd(quadrant, x, y);
    case FromStartToEnd:
        return IsFromStart(quadrant, x, y) && IsToEnd(quadrant, x, y);
    case ToEndAndFromStart:
        return IsFromStart(quadrant, x, y) || IsToEnd(quadrant, x, y);
    default:
        return false;
    }
}

template <class Draw>
void ArcSelection::SelectRow(int quadrant, S32BIT x, S32BIT y, Draw draw) const
{
    const QuadrantType type = _types[quadrant];
    if (type == Nothing)
        return;
    if (type == Whole) {
        draw(Range{0, x});
        return;
    }
    const bool steeper = GrowsSteeper(quadrant);
    const auto from_start = [&] { return steeper ? _start.Steeper(x, y) : _start.Flatter(x, y); };
    const auto to_end = [&] { return steeper ? _end.Flatter(x, y) : _end.Steeper(x, y); };
    if (type == FromStartToEnd) {
        const Range after = from_start();
        const Range before = to_end();
        draw(Range{std::max(after.first, before.first), std::min(after.last, before.last)});
        return;
    }
    if (type != ToEnd)
        draw(from_start());
    if (type != FromStart)
        draw(to_end());
}

// ---- Drawing --------------------------------------------------------------------------------

/** Calls `draw` with the runs of selected points between two of a row, both included. */
template <class Draw>
void SelectPoints(const ArcSelection& selection, int quadrant, S32BIT first, S32BIT last, S32BIT y,
                  Draw draw)
{
    for (S32BIT x = first; x <= last; ++x) {
        if (!selection.Selects(quadrant, x, y))
            continue;
        const S32BIT start = x;
        while (x < last && selection.Selects(quadrant, x + 1, y))
            ++x;
        draw(start, x);
    }
}

void DrawSelectedOutline(const EllipseBox& box, const ArcSelection& selection, const Disc& disc,
                         U32BIT colour)
{
    OutlinePen pens[4] = {{disc, colour}, {disc, colour}, {disc, colour}, {disc, colour}};
    TraceOutline<uint64_t>(box, [&](S32BIT first, S32BIT last, S32BIT y) {
        for (int quadrant = 0; quadrant < 4; ++quadrant) {
            const S32BIT row = quadrant < 2 ? box.Upper(y) : box.Lower(y);
            const bool right = quadrant == 0 || quadrant == 3;
            SelectPoints(selection, quadrant, first, last, y, [&](S32BIT from, S32BIT to) {
                if (right)
                    pens[quadrant].Draw(box.Right(from), box.Right(to), row);
                else
                    pens[quadrant].Draw(box.Left(to), box.Left(from), row);
            });
        }
    });
}

/**
 * Fills what is selected of a row. Quadrants meet in the centre, also those of even boxes: their
 * right and lower parts reach one pixel further from it. The centre's row is part of all four.
 */
void FillSelectedRow(const EllipseBox& box, const ArcSelection& selection, S32BIT x, S32BIT y,
                     U32BIT colour)
{
    const S32BIT row = box.cy + y;
    if (!IsRow(row))
        return;
    const auto right = [&](Range range) {
        FillRow(row, box.cx + range.first, box.cx + range.last + 1, colour);
    };
    const auto left = [&](Range range) {
        FillRow(row, box.cx - range.last, box.cx - range.first + 1, colour);
    };
    if (y <= 0) {
        selection.SelectRow(0, x + box.ew, -y, right);
        selection.SelectRow(1, x, -y, left);
    }
    if (y >= 0) {
        selection.SelectRow(2, x, y, left);
        selection.SelectRow(3, x + box.ew, y, right);
    }
}

void DrawArc(const EllipseBox& box, U16BIT start, U16BIT arc, const Disc& disc, U32BIT colour)
{
    const U32BIT end = EndAngle(start, arc);
    const ArcSelection selection(start, end, HitOffset(box, start), HitOffset(box, end));
    DrawSelectedOutline(box, selection, disc, colour);
}

void DrawSector(const EllipseBox& box, U16BIT start, U16BIT arc, U16BIT width, U32BIT fill_colour,
                U32BIT line_colour)
{
    const U32BIT end = EndAngle(start, arc);
    const Offset ends[] = {ScreenOffset(box, HitOffset(box, start)),
                           ScreenOffset(box, HitOffset(box, end))};
    // The fill keeps to the radii as they stand on the screen.
    const ArcSelection selection(start, end, ends[0], ends[1]);
    TraceRows<uint64_t>(box, [&](S32BIT dx, S32BIT dy) {
        FillSelectedRow(box, selection, dx, -dy, fill_colour);
        FillSelectedRow(box, selection, dx, dy + box.eh, fill_colour);
    });

    if (width == 0)
        return;
    const Disc disc(width);
    DrawArc(box, start, arc, disc, line_colour);
    const S_POINT centre = ScreenPoint(box, {0, 0});
    for (const Offset& offset : ends) {
        const S_POINT to = ScreenPoint(box, offset);
        DrawLine(centre.x, centre.y, to.x, to.y, width, line_colour);
        if (width > 1)
            disc.Draw(to.x, to.y, line_colour);
    }
    if (width > 1)
        disc.Draw(centre.x, centre.y, line_colour);
}

bool IsDrawn(U16BIT w, U16BIT h, U16BIT start, U16BIT arc)
{
    return start < kFullTurn && arc >= 1 && arc < kFullTurn && w != 0 && h != 0;
}

} // namespace

BOOLEAN DLA_Arc(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT start, U16BIT arc, U16BIT width,
                U32BIT colour)
{
    if (!dla_info.init)
        return FALSE;
    if (IsDrawn(w, h, start, arc) && width > 0)
        DrawArc(EllipseBox(x, y, w, h), start, arc, Disc(width), colour);
    return TRUE;
}

BOOLEAN DLA_Sector(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT start, U16BIT arc, U16BIT width,
                   U32BIT fill_colour, U32BIT line_colour)
{
    if (!dla_info.init)
        return FALSE;
    if (!IsDrawn(w, h, start, arc))
        return TRUE;
    if (w == 1)
        return DLA_Rectangle(x, y, static_cast<S16BIT>(x + 1), static_cast<S16BIT>(y + h), width,
                             fill_colour, line_colour);
    if (h == 1)
        return DLA_Rectangle(x, y, static_cast<S16BIT>(x + w), static_cast<S16BIT>(y + 1), width,
                             fill_colour, line_colour);
    DrawSector(EllipseBox(x, y, w, h), start, arc, width, fill_colour, line_colour);
    return TRUE;
}
