/**
 * The ellipse in a box, as all curved primitives trace it.
 *
 * The trace runs through one quarter, as offsets (X, Y) from the centre, in two regions:
 *
 *        |  region 2: a point for every column,
 *     ry +----...      from X = 0 on
 *        |        '-.
 *        |            \  region 1: a point for every row,
 *        |             |   from Y = 0 on
 *        +-------------+-
 *                      rx
 *
 * The other quarters mirror it. In a box of even size two columns, or rows, have the offset 0, so
 * that the right half stands one column further right, and the lower half one row further down.
 */
#pragma once

#include "dla_disc_p.h"
#include "dla_span_p.h"

#include <type_traits>

struct EllipseBox
{
    EllipseBox(S16BIT x, S16BIT y, U16BIT w, U16BIT h)
        : rx(((w + 1U) >> 1) - 1), ry(((h + 1U) >> 1) - 1), cx(static_cast<S16BIT>(x + rx)),
          cy(static_cast<S16BIT>(y + ry)), ew(w % 2 == 0 ? 1 : 0), eh(h % 2 == 0 ? 1 : 0)
    {
    }

    S32BIT Left(S32BIT offset) const { return cx - offset; }
    S32BIT Right(S32BIT offset) const { return cx + ew + offset; }
    S32BIT Upper(S32BIT offset) const { return cy - offset; }
    S32BIT Lower(S32BIT offset) const { return cy + eh + offset; }

    U32BIT rx, ry; /**< radii; 0 for a size of 1 or 2 */
    S32BIT cx, cy; /**< the centre, its left and upper pixel, wrapped to 16 bits */
    S32BIT ew, eh; /**< 1 for an even width and height */
};

/**
 * The midpoint steps of one region: one offset, starting at 0, grows by every step, the other,
 * starting at its radius, falls by some. Before each step `visit` is given the falling offset, the
 * growing one, and whether the first falls by this step.
 *
 * All arithmetic wraps at the size of Word, which is unsigned, and is compared as signed: with 32
 * bits large ellipses go astray. No box of at most 65535 pixels a side needs as many steps as the
 * loop allows, but for radii that are both 0, where one point is all there is.
 */
template <class Word, class Visit>
void TraceRegion(Word falling_radius, Word growing_radius, Visit visit)
{
    using Signed = typename std::make_signed<Word>::type;
    const Word f2 = falling_radius * falling_radius;
    const Word g2 = growing_radius * growing_radius;
    const Word two_f2 = 2 * f2;
    const Word two_g2 = 2 * g2;
    Word fall_change = g2 * (1 - 2 * falling_radius);
    Word grow_change = f2;
    Word error = 0;
    Word stop_falling = two_g2 * falling_radius;
    Word stop_growing = 0;
    auto falling = static_cast<S32BIT>(falling_radius);
    const S32BIT most_steps = falling_radius == 0 && growing_radius == 0 ? 1 : 0x10000;
    for (S32BIT growing = 0; growing < most_steps &&
                             static_cast<Signed>(stop_falling) >= static_cast<Signed>(stop_growing);
         ++growing) {
        stop_growing += two_f2;
        error += grow_change;
        grow_change += two_f2;
        const bool falls = static_cast<Signed>(2 * error + fall_change) > 0;
        visit(falling, growing, falls);
        // By a mask rather than a branch, which could not be foreseen.
        const Word mask = Word{0} - Word{falls};
        stop_falling -= two_g2 & mask;
        error += fall_change & mask;
        fall_change += two_g2 & mask;
        falling -= falls ? 1 : 0;
    }
}

/**
 * Calls `visit` with every point of the trace, those of region 2 that are in one row at once: with
 * the first and the last X, and Y.
 */
template <class Word, class Visit>
void TraceOutline(const EllipseBox& box, Visit visit)
{
    TraceRegion<Word>(box.rx, box.ry, [&](S32BIT x, S32BIT y, bool) { visit(x, x, y); });
    S32BIT first = 0;
    S32BIT next = 0;
    S32BIT row = 0;
    TraceRegion<Word>(box.ry, box.rx, [&](S32BIT y, S32BIT x, bool falls) {
        next = x + 1;
        row = y;
        if (falls) {
            visit(first, x, y);
            first = next;
        }
    });
    if (first < next)
        visit(first, next - 1, row);
}

/**
 * Calls `visit` with the rows to fill, as their offset and that of their ends. Where the trace runs
 * flat a row counts once, as wide as it is when the trace leaves it; it may come from both regions.
 */
template <class Word, class Visit>
void TraceRows(const EllipseBox& box, Visit visit)
{
    TraceRegion<Word>(box.rx, box.ry, [&](S32BIT x, S32BIT y, bool) { visit(x, y); });
    TraceRegion<Word>(box.ry, box.rx, [&](S32BIT y, S32BIT x, bool falls) {
        if (falls)
            visit(x, y);
    });
}

/**
 * Draws the points of an outline in one of the quarters, in order: pixels at width 1, else discs.
 * Coordinates wrap to 16 bits. Not for width 0.
 */
class OutlinePen
{
public:
    OutlinePen(const Disc& disc, U32BIT colour) : _disc(disc), _colour(colour) {}

    /** Draws the points from x1 to x2, both included. */
    void Draw(S32BIT x1, S32BIT x2, S32BIT y)
    {
        const DiscRun run = {static_cast<S16BIT>(x1), static_cast<S16BIT>(x2),
                             static_cast<S16BIT>(y)};
        if (run.x2 - run.x1 == x2 - x1) {
            DrawRun(run);
            return;
        }
        for (; x1 <= x2; ++x1)
            DrawRun({static_cast<S16BIT>(x1), static_cast<S16BIT>(x1), run.y});
    }

private:
    void DrawRun(const DiscRun& run)
    {
        if (_disc.Radius() == 0) {
            FillRow(run.y, run.x1, run.x2 + 1, _colour);
            return;
        }
        _disc.DrawAfter(_drawn, run, _colour);
        _drawn = run;
    }

    const Disc& _disc;
    U32BIT _colour;
    DiscRun _drawn = {0, -1, 0x20000}; // far below any buffer
};
